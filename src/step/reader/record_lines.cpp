#include "step/reader/record_lines.h"

#include <limits>

#include "step/reader/byte_kinds.h"

namespace corvel {

void RecordLines::Take(char byte) {
  if (byte == '\n' || byte == '\r' || (byte == ';' && text_ != Text::kComment)) {
    seen_ = Seen::kNothing;
    return;
  }
  if (seen_ == Seen::kOther) return;
  const bool behindNumber = seen_ == Seen::kDigits || seen_ == Seen::kBlankBehindDigits;
  if (byte == '=' && behindNumber && count_ != std::numeric_limits<std::uint32_t>::max()) ++count_;
  seen_ = AfterOrdinary(byte);
}

RecordLines::Seen RecordLines::AfterOrdinary(char byte) const {
  if (IsBlank(byte)) {
    if (seen_ == Seen::kNothing) return Seen::kNothing;
    if (seen_ == Seen::kDigits || seen_ == Seen::kBlankBehindDigits) {
      return Seen::kBlankBehindDigits;
    }
  }
  if (byte == '#' && seen_ == Seen::kNothing) return Seen::kHash;
  if (IsDigit(byte) && (seen_ == Seen::kHash || seen_ == Seen::kDigits)) return Seen::kDigits;
  return Seen::kOther;
}

}  // namespace corvel
