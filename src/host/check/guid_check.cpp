#include "host/check/guid_check.h"

#include <array>

namespace corvel::host {

namespace {

constexpr std::string_view kDigits =
    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$";
constexpr std::size_t kLength = 22;
constexpr unsigned kBitsPerDigit = 6;
constexpr std::uint8_t kNoDigit = 0xFF;

constexpr std::array<std::uint8_t, 256> ValuesOfDigits() {
  std::array<std::uint8_t, 256> values{};
  values.fill(kNoDigit);
  for (std::size_t i = 0; i < kDigits.size(); ++i) {
    values[static_cast<unsigned char>(kDigits[i])] = static_cast<std::uint8_t>(i);
  }
  return values;
}

}  // namespace

std::optional<PackedGuid> PackGuid(std::string_view text) {
  static constexpr auto kValues = ValuesOfDigits();
  if (text.size() != kLength || text.front() > '3') return {};
  PackedGuid guid;
  for (const char c : text) {
    const std::uint8_t value = kValues[static_cast<unsigned char>(c)];
    if (value == kNoDigit) return {};
    guid.high = guid.high << kBitsPerDigit | guid.low >> (64 - kBitsPerDigit);
    guid.low = guid.low << kBitsPerDigit | value;
  }
  return guid;
}

std::string PackedGuid::Text() const {
  std::string text(kLength, '0');
  PackedGuid rest = *this;
  for (std::size_t i = kLength; i-- != 0;) {
    text[i] = kDigits[rest.low % kDigits.size()];
    rest.low = rest.low >> kBitsPerDigit | rest.high << (64 - kBitsPerDigit);
    rest.high >>= kBitsPerDigit;
  }
  return text;
}

std::optional<PackedGuid> CheckGuid(const IFC::IfcEntity& entity, const ClassFacts& facts,
                                    std::string_view guid, Findings& findings) {
  std::optional<PackedGuid> packed = PackGuid(guid);
  if (!packed) {
    findings.Add(RuleId::kMalformedGuid, facts.name,
                 {.number = entity.marker, .what = u"'" + FromUtf8(guid) + u"'"});
  }
  return packed;
}

void CheckDoubledGuids(const std::vector<DoubledGuid>& doubled, Findings& findings) {
  for (const DoubledGuid& guid : doubled) {
    WideString what = u"'" + FromUtf8(guid.guid) + u"'";
    constexpr std::size_t kMostTold = 4;
    for (std::size_t i = 1; i < guid.numbers.size() && i <= kMostTold; ++i) {
      what += u" #" + ToWide(guid.numbers[i]);
    }
    if (guid.numbers.size() > kMostTold + 1) what += u" ...";
    findings.Add(RuleId::kDoubledGuid, {}, {.number = guid.numbers.front(), .what = what});
  }
}

}  // namespace corvel::host
