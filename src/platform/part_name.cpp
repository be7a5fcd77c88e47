#include "platform/part_name.h"

#include <atomic>
#include <limits>

#include "platform/platform.h"

namespace platform {

namespace {

constexpr std::u16string_view kSign = u".corvel-";
constexpr std::u16string_view kPart = u".part";
constexpr std::u16string_view kBackup = u".was";
constexpr std::u16string_view kKept = u".complete";
constexpr std::u16string_view kDigits = u"0123456789abcdef";

// Of what stands behind the target's name at its longest: the sign, the digits of a process, a
// dash, those of the number, and the longest ending.
constexpr std::size_t kRoomBehind = 8 + 10 + 1 + 16 + 9;

constexpr std::size_t kNumberDigits = 16;

bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }

std::u16string Hexadecimal(std::uint64_t number) {
  std::u16string text(kNumberDigits, u'0');
  for (std::size_t i = kNumberDigits; i-- > 0; number >>= 4) text[i] = kDigits[number & 15];
  return text;
}

std::u16string Decimal(std::uint32_t number) {
  std::u16string text;
  do {
    text.insert(text.begin(), static_cast<char16_t>(u'0' + number % 10));
    number /= 10;
  } while (number != 0);
  return text;
}

// No random bytes: those are for the GUIDs of models, which come in one order for whoever replays
// them. A name that is taken all the same is tried again, and never opened.
std::uint64_t NextNumber() {
  constexpr unsigned kCountShift = 56;
  static std::atomic<std::uint64_t> count{0};
  return (++count << kCountShift) ^ static_cast<std::uint64_t>(System().MonotonicNanoseconds());
}

// Reads digits from the front of `text`; nothing without one, or beyond 32 bits.
std::optional<std::uint32_t> TakeProcess(std::u16string_view& text) {
  constexpr std::uint64_t kLargest = std::numeric_limits<std::uint32_t>::max();
  std::uint64_t number = 0;
  std::size_t count = 0;
  while (count < text.size() && text[count] >= u'0' && text[count] <= u'9' && number <= kLargest) {
    number = number * 10 + static_cast<unsigned>(text[count++] - u'0');
  }
  if (count == 0 || number > kLargest) return {};
  text.remove_prefix(count);
  return static_cast<std::uint32_t>(number);
}

}  // namespace

std::u16string PartStem(std::u16string_view name, std::size_t longest,
                        std::size_t (*length)(std::u16string_view)) {
  while (!name.empty() && 1 + length(name) + kRoomBehind > longest) {
    name.remove_suffix(1);
    if (!name.empty() && IsHighSurrogate(name.back())) name.remove_suffix(1);
  }
  std::u16string stem(u".");
  return stem.append(name).append(kSign);
}

std::u16string PartName(std::u16string_view stem, std::uint32_t process, PartKind kind) {
  std::u16string name(stem);
  name += Decimal(process) + u"-" + Hexadecimal(NextNumber());
  return name.append(kind == PartKind::kPart ? kPart : kBackup);
}

std::u16string KeptName(std::u16string_view part) {
  std::u16string name(part.substr(1, part.size() - 1 - kPart.size()));
  return name.append(kKept);
}

std::optional<PartOwner> OwnerOfPart(std::u16string_view name, std::u16string_view stem) {
  if (!name.starts_with(stem)) return {};
  name.remove_prefix(stem.size());
  const std::optional<std::uint32_t> process = TakeProcess(name);
  if (!process || name.size() <= kNumberDigits || name.front() != u'-') return {};
  const std::u16string_view number = name.substr(1, kNumberDigits);
  if (number.find_first_not_of(kDigits) != std::u16string_view::npos) return {};
  const std::u16string_view ending = name.substr(1 + number.size());
  if (ending == kPart) return PartOwner{*process, PartKind::kPart};
  if (ending == kBackup) return PartOwner{*process, PartKind::kBackup};
  return {};
}

}  // namespace platform
