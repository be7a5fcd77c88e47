// The plain tokens that each record has many of. Part of scanner.h.
#pragma once

#include <algorithm>
#include <cstddef>

#include "step/numbers/byte_runs.h"
#include "step/numbers/plain_real.h"
#include "step/reader/scanner.h"

namespace corvel {

inline bool Scanner::TakeSemicolon() {
  if (!TakeSign(';')) return false;
  argument_ = 0;
  afterSemicolon_ = true;
  return true;
}

inline bool Scanner::TakeRecordEnd() {
  if (stopped_ || lookAhead_ != nullptr || afterSemicolon_) return false;
  const char* const at = stream_->Cursor();
  if (stream_->WindowEnd() - at < 2 || at[0] != ')' || at[1] != ';') return false;
  stream_->SetCursor(at + 2);
  argument_ = 0;
  afterSemicolon_ = true;
  return true;
}

inline bool Scanner::TakeIdentifier(std::uint32_t& number) {
  if (PeekSign() != '#') return false;
  const char* const begin = stream_->Cursor() + 1;
  if (stream_->WindowEnd() - begin <= kRunRoom) return TakeAnyIdentifier(number);
  const DigitRun run = DigitsAt(begin);
  if (run.count == 0 || run.count == kRunRoom) [[unlikely]]
    return TakeAnyIdentifier(number);
  number = run.value;
  ++argument_;
  stream_->SetCursor(begin + run.count);
  return true;
}

inline bool Scanner::TakeNumber(double& value) {
  if (const char sign = PeekSign(); !IsDigit(sign) && sign != '-') return false;
  const char* const begin = stream_->Cursor();
  if (stream_->WindowEnd() - begin >= kPlainRealRoom) [[likely]] {
    if (const char* const end = TakePlainReal(begin, value)) [[likely]] {
      stream_->SetCursor(end);
      return true;
    }
  }
  return TakeAnyNumber(value);
}

inline std::string_view Scanner::PeekCall() {
  constexpr std::ptrdiff_t kLongest = 64;
  if (PeekSign() == 0) return {};
  const char* const begin = stream_->Cursor();
  const char* const end = begin + std::min(stream_->WindowEnd() - begin - kRunRoom, kLongest);
  for (const char* at = begin; at < end; at += kRunRoom) {
    const unsigned before = BytesBefore('(', at);
    if (before != kRunRoom) return {begin, static_cast<std::size_t>(at + before - begin)};
  }
  return {};
}

}  // namespace corvel
