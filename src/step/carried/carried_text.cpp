#include "step/carried/carried_text.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "step/carried/record_text.h"
#include "step/reader/byte_kinds.h"

namespace corvel {

namespace {

bool IsWordByte(char c) { return IsOfKind(c, kLetterByte | kDigitByte) || c == '_'; }

// Walks over a text: take(bytes) gets what stands between references, refer(digits, inList) each of
// them.
template <class Take, class Refer>
void WalkReferences(std::string_view text, Take take, Refer refer) {
  std::vector<bool> isList;  // of each open bracket
  std::size_t taken = 0;
  for (std::size_t at = 0; at < text.size();) {
    const char c = text[at];
    if (c == '(') isList.push_back(at == 0 || !IsWordByte(text[at - 1]));
    if (c == ')' && !isList.empty()) isList.pop_back();
    std::size_t end = BehindPiece(text, at);
    if (c == '#') {
      while (end < text.size() && IsDigit(text[end])) ++end;
      if (end != at + 1) {
        take(text.substr(taken, at - taken));
        refer(text.substr(at + 1, end - at - 1), !isList.empty() && isList.back());
        taken = end;
      }
    }
    at = end;
  }
  take(text.substr(taken));
}

// 0 for what no record can have.
std::uint32_t NumberOfDigits(std::string_view digits) {
  std::uint64_t number = 0;
  for (const char digit : digits) {
    number = number * 10 + static_cast<unsigned>(digit - '0');
    if (number > IFC::kLargestNumber) return 0;
  }
  return static_cast<std::uint32_t>(number);
}

// A list without one of its members: the comma before it goes, or the one behind the first.
class ListCommas {
 public:
  explicit ListCommas(std::string& text) : text_(text) {}

  // A member has been left out at the end of the text.
  void Drop() {
    std::size_t end = text_.size();
    while (end != 0 && IsBlank(text_[end - 1])) --end;
    if (end != 0 && text_[end - 1] == ',') {
      text_.resize(end - 1);
    } else {
      dropNext_ = true;
    }
  }
  void Append(std::string_view bytes) {
    if (dropNext_) {
      const std::size_t comma = bytes.find_first_not_of(" \t\r\n");
      if (comma != std::string_view::npos && bytes[comma] == ',') bytes.remove_prefix(comma + 1);
      dropNext_ = false;
    }
    text_ += bytes;
  }

 private:
  std::string& text_;
  bool dropNext_ = false;
};

}  // namespace

std::string_view KeepBytes(std::string_view bytes, MemoryPool& pool) {
  if (bytes.empty()) return {};
  char* const kept = pool.NewArray<char>(bytes.size());
  std::memcpy(kept, bytes.data(), bytes.size());
  return {kept, bytes.size()};
}

CarriedText CarryText(std::string_view text, const FindRecord& find, MemoryPool& pool) {
  std::string bytes;
  std::vector<CarriedReference> references;
  WalkReferences(
      text, [&](std::string_view piece) { bytes += piece; },
      [&](std::string_view digits, bool inList) {
        const std::uint32_t number = NumberOfDigits(digits);
        // What is no number of a record stays text.
        if (number == 0) {
          bytes.append("#").append(digits);
          return;
        }
        references.push_back({.position = static_cast<std::uint32_t>(bytes.size()),
                              .number = number,
                              .target = find(number),
                              .inList = inList});
      });
  CarriedText carried{.bytes = KeepBytes(bytes, pool), .references = {}};
  if (!references.empty()) {
    auto* const kept = pool.NewArray<CarriedReference>(references.size());
    std::copy(references.begin(), references.end(), kept);
    carried.references = {kept, references.size()};
  }
  return carried;
}

std::string TextOf(const CarriedText& text, const NumberOf& numberOf) {
  std::string written;
  ListCommas commas(written);
  std::size_t taken = 0;
  for (const CarriedReference& reference : text.references) {
    commas.Append(text.bytes.substr(taken, reference.position - taken));
    taken = reference.position;
    const bool isDeleted = reference.target != nullptr && reference.target->marker == IFC::kDeleted;
    if (const std::uint32_t number = isDeleted ? 0 : numberOf(reference)) {
      commas.Append("#" + std::to_string(number));
    } else if (reference.inList) {
      commas.Drop();
    } else {
      commas.Append("$");
    }
  }
  commas.Append(text.bytes.substr(taken));
  return written;
}

std::string WithoutNumbers(std::string_view text, std::vector<std::string_view>* numbers) {
  std::string masked;
  WalkReferences(
      text, [&](std::string_view piece) { masked += piece; },
      [&](std::string_view digits, bool /*inList*/) {
        masked += '#';
        if (numbers != nullptr) numbers->push_back(digits);
      });
  return masked;
}

std::optional<std::string> WithNumbers(std::string_view text,
                                       std::span<const std::string_view> numbers) {
  std::string written;
  std::size_t used = 0;
  WalkReferences(
      text, [&](std::string_view piece) { written += piece; },
      [&](std::string_view /*digits*/, bool /*inList*/) {
        if (used < numbers.size()) written.append("#").append(numbers[used]);
        ++used;
      });
  if (used != numbers.size()) return std::nullopt;
  return written;
}

}  // namespace corvel
