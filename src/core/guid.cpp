#include "core/guid.h"

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/platform.h"

namespace corvel {

namespace {

constexpr std::string_view kDigits =
    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$";

// `count` base-64 digits, most significant first.
void AppendDigits(std::uint32_t number, unsigned count, std::string& text) {
  for (unsigned digit = count; digit-- > 0;) text.push_back(kDigits[(number >> (6 * digit)) & 63]);
}

// 128 bits are 8 and five times 24.
using Numbers = std::array<std::uint32_t, 6>;

// Two digits, of which the first is below 4, and five times four.
std::string TextOf(const Numbers& numbers) {
  std::string text;
  text.reserve(22);
  AppendDigits(numbers[0], 2, text);
  for (std::size_t i = 1; i < numbers.size(); ++i) AppendDigits(numbers[i], 4, text);
  return text;
}

// Spreads each bit of `state` over all of them (the finalizer of SplitMix64).
std::uint64_t Mixed(std::uint64_t state) {
  state = (state ^ (state >> 30)) * 0xBF58476D1CE4E5B9ull;
  state = (state ^ (state >> 27)) * 0x94D049BB133111EBull;
  return state ^ (state >> 31);
}

}  // namespace

std::string CreateGUID() {
  const platform::Guid guid = platform::Get().NewGuid();
  const auto& d4 = guid.data4;
  const Numbers numbers = {
      guid.data1 >> 24,
      guid.data1 & 0xFFFFFFu,
      guid.data2 * 256u + (guid.data3 >> 8u),
      ((guid.data3 & 0xFFu) * 256u + d4[0]) * 256u + d4[1],
      (d4[2] * 256u + d4[3]) * 256u + d4[4],
      (d4[5] * 256u + d4[6]) * 256u + d4[7],
  };
  // What a source without random bytes gives (see Platform::NewGuid).
  bool allZero = true;
  for (const std::uint32_t number : numbers) allZero = allZero && number == 0;
  if (allZero) {
    platform::Get().ShowMessageBox(u"Utils", u"CreateGUID function returned NULL",
                                   platform::Buttons::kOkCancel, platform::Icon::kNone);
    return {};
  }
  return TextOf(numbers);
}

std::string DeriveGuid(std::string_view old, std::uint64_t number) {
  constexpr std::uint64_t kStep = 0x9E3779B97F4A7C15ull;
  std::uint64_t high = Mixed(number + kStep);
  std::uint64_t low = Mixed(number + 2 * kStep);
  for (const char c : old) {
    high = Mixed(high ^ static_cast<unsigned char>(c)) + kStep;
    low = Mixed(low + static_cast<unsigned char>(c)) ^ high;
  }
  constexpr std::uint32_t kMask = 0xFFFFFFu;
  return TextOf(
      {static_cast<std::uint32_t>(high >> 56), static_cast<std::uint32_t>(high >> 32) & kMask,
       static_cast<std::uint32_t>(high >> 8) & kMask, static_cast<std::uint32_t>(low >> 40) & kMask,
       static_cast<std::uint32_t>(low >> 16) & kMask,
       static_cast<std::uint32_t>(Mixed(low)) & kMask});
}

}  // namespace corvel
