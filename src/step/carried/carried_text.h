// A value as it stood in its file, with the references in it bound.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/entity.h"
#include "core/memory_pool.h"

namespace corvel {

// `#12` within a text, which holds neither the sign nor the digits.
struct CarriedReference {
  std::uint32_t position = 0;        // in the text: what stands there comes behind the number
  std::uint32_t number = 0;          // as it was read
  IFC::IfcEntity* target = nullptr;  // null: no record has the number
  // Directly in the brackets of a list, which a deleted object leaves without a trace.
  bool inList = false;
};

// Belongs to a pool.
struct CarriedText {
  std::string_view bytes;
  std::span<CarriedReference> references;
};

// A copy that belongs to `pool`.
std::string_view KeepBytes(std::string_view bytes, MemoryPool& pool);

// The object of a number; null when there is none.
using FindRecord = std::function<IFC::IfcEntity*(std::uint32_t number)>;

// Takes the references out of `text`, but for those in strings and comments.
CarriedText CarryText(std::string_view text, const FindRecord& find, MemoryPool& pool);

// The number under which a reference is written, 0: none. Asked for live objects and missing ones.
using NumberOf = std::function<std::uint32_t(const CarriedReference& reference)>;

// The text with the numbers of its objects. One that is deleted or has no number is `$`, or
// vanishes from its list.
std::string TextOf(const CarriedText& text, const NumberOf& numberOf);

// `text` without the digits of its references, which go to `numbers`: two texts that refer to
// anything at all in the same places become equal.
std::string WithoutNumbers(std::string_view text, std::vector<std::string_view>* numbers = nullptr);

// Puts `numbers` in the place of those in `text`; nothing when they are not as many.
std::optional<std::string> WithNumbers(std::string_view text,
                                       std::span<const std::string_view> numbers);

}  // namespace corvel
