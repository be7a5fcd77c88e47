#include "merge/report/shared/byte_text.h"

#include <algorithm>

namespace corvel {

// Apart, so that Append is little and put in place where it is called.
void ByteText::Enlarge(std::size_t bytes) {
  constexpr std::size_t kLeast = 64;
  bytes_.resize(std::max({size_ + bytes, 2 * bytes_.size(), kLeast}));
}

}  // namespace corvel
