#include "merge/federation/units/number_texts.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "core/text.h"

namespace corvel {

namespace {

constexpr std::size_t kLongestUnit = 6;

template <class View>
std::size_t DigitsAt(View text, std::size_t at) {
  std::size_t end = at;
  while (end < text.size() && text[end] >= '0' && text[end] <= '9') ++end;
  return end - at;
}

template <class View>
bool BeginsWithNumber(View text) {
  std::size_t at = 0;
  while (at < text.size() && text[at] == ' ') ++at;
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;
  const std::size_t whole = DigitsAt(text, at);
  at += whole;
  std::size_t part = 0;
  if (at < text.size() && (text[at] == '.' || text[at] == ',')) {
    part = DigitsAt(text, ++at);
    at += part;
  }
  if (whole + part == 0) return false;
  if (at + 1 < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    const std::size_t sign = text[at + 1] == '-' || text[at + 1] == '+' ? 1 : 0;
    const std::size_t power = DigitsAt(text, at + 1 + sign);
    if (power != 0) at += 1 + sign + power;
  }
  while (at < text.size() && text[at] == ' ') ++at;
  const View rest = text.substr(at);
  // "3. floor", "2020-11-22" and numbers of parts are names.
  const bool hasDigit =
      std::any_of(rest.begin(), rest.end(), [](auto unit) { return unit >= '0' && unit <= '9'; });
  return !hasDigit && rest.size() <= kLongestUnit;
}

}  // namespace

bool HoldsNumber(ModelText text) {
  if (text.IsNull()) return false;
  return text.IsPlain() ? BeginsWithNumber(text.Plain()) : BeginsWithNumber(text.Units());
}

}  // namespace corvel
