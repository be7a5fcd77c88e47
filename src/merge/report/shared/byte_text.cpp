#include "merge/report/shared/byte_text.h"

#include <algorithm>

namespace corvel {

// Apart, so that Append is little and put in place where it is called. The room is made in steps
// that stay near the processor until they are used: whatever is expected beyond costs nothing.
void ByteText::Enlarge(std::size_t bytes) {
  constexpr std::size_t kLeast = 64;
  constexpr std::size_t kMost = 16'384;
  bytes_.resize(size_ + std::max(bytes, std::clamp(size_, kLeast, kMost)));
}

}  // namespace corvel
