#include "step/carried/large_integers.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <system_error>

#include "core/text.h"
#include "step/carried/record_text.h"

namespace corvel {

namespace {

bool IsPartOfWord(char c) {
  return IsDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '#' ||
         c == '.';
}

bool IsTooLarge(std::string_view digits) {
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return error == std::errc::result_out_of_range;
}

}  // namespace

std::string WithSmallIntegers(std::string_view argument) {
  std::string small;
  for (std::size_t at = 0; at < argument.size();) {
    const bool begins = IsDigit(argument[at]) && (at == 0 || !IsPartOfWord(argument[at - 1]));
    std::size_t end = at;
    while (begins && end < argument.size() && IsDigit(argument[end])) ++end;
    const bool isWhole = begins && (end == argument.size() || !IsPartOfWord(argument[end]));
    if (isWhole) {
      const std::string_view digits = argument.substr(at, end - at);
      small += IsTooLarge(digits) ? std::string_view("0") : digits;
    } else {
      end = BehindPiece(argument, at);
      small += argument.substr(at, end - at);
    }
    at = end;
  }
  return small;
}

}  // namespace corvel
