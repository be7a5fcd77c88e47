// Text in memory as a stream.
#pragma once

#include <string>
#include <utility>

#include "step/streams/input_view_stream.h"

namespace FileStream {

class InputTextStream final : public InputViewStream {
 public:
  explicit InputTextStream(std::string text) : text_(std::move(text)) { Show(text_); }

 private:
  std::string text_;
};

}  // namespace FileStream
