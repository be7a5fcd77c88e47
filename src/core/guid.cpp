#include "core/guid.h"

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

}  // namespace

std::string CreateGUID() {
  const platform::Guid guid = platform::Get().NewGuid();
  const auto& d4 = guid.data4;
  // 128 bits are 8 and five times 24: two digits, of which the first is below 4, and five times
  // four.
  const std::uint32_t numbers[6] = {
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
  std::string text;
  text.reserve(22);
  AppendDigits(numbers[0], 2, text);
  for (int i = 1; i < 6; ++i) AppendDigits(numbers[i], 4, text);
  return text;
}

}  // namespace corvel
