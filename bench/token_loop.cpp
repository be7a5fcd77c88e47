#include "token_loop.h"

#include <array>
#include <cstdint>

namespace corvel::bench {

namespace {

enum Kind : std::uint8_t { kBlank, kSign, kQuote, kWord };

constexpr std::array<Kind, 256> Kinds() {
  std::array<Kind, 256> kinds{};
  for (std::size_t i = 0; i < kinds.size(); ++i) kinds[i] = i <= ' ' ? kBlank : kWord;
  for (const char sign : {'(', ')', ',', ';', '=', '$', '*'}) {
    kinds[static_cast<unsigned char>(sign)] = kSign;
  }
  kinds[static_cast<unsigned char>('\'')] = kQuote;
  return kinds;
}

constexpr std::array<Kind, 256> kKinds = Kinds();

Kind KindOf(char c) { return kKinds[static_cast<unsigned char>(c)]; }

}  // namespace

std::size_t CountTokens(std::string_view text) {
  std::size_t tokens = 0;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at != end) {
    const Kind kind = KindOf(*at++);
    if (kind == kBlank) continue;
    ++tokens;
    if (kind == kWord) {
      while (at != end && KindOf(*at) == kWord) ++at;
    } else if (kind == kQuote) {
      while (at != end && *at != '\'') ++at;  // a doubled quote counts as two texts
      if (at != end) ++at;
    }
  }
  return tokens;
}

}  // namespace corvel::bench
