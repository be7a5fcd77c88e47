#include "step/streams/outpout_text_stream.h"

#include <algorithm>
#include <stdexcept>

namespace FileStream {

void OutpoutTextStream::MovePosition(std::int64_t delta, int /*whence*/) {
  if (static_cast<std::int64_t>(position_) + delta < 0) {
    throw std::runtime_error("Write to file error. Unable to move pointer below 0.");
  }
  position_ += static_cast<std::uint64_t>(delta);
}

// Nothing is written out: there is room for twice as much.
void OutpoutTextStream::FlushWindow() {
  if (position_ > most_) throw std::length_error("The text is too long.");
  buffer_.resize(std::min(2 * (buffer_.size() + kMaxReserve), most_ + kMaxReserve));
  window_ = buffer_.data();
  windowCapacity_ = buffer_.size();
}

}  // namespace FileStream
