// What an object is called across files, whose numbers mean nothing there.
#pragma once

#include <cstdint>
#include <string>

#include "core/entity.h"
#include "step/streams/outpout_text_stream.h"
#include "step/writer/step_writer.h"

namespace corvel::host {

class ObjectIdentity {
 public:
  ObjectIdentity() : writer_(stream_) {}

  // A hash of the GUID; of an object without one, of its class and values as a save writes them,
  // whatever it refers to.
  std::uint64_t Of(IFC::IfcEntity& entity);

 private:
  FileStream::OutpoutTextStream stream_;
  StepWriter writer_;
};

}  // namespace corvel::host
