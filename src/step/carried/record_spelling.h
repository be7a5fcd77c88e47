// How a record is spelled that is to be written byte for byte.
//
// Its object has typed values, which are written as the writer writes them: 1. for 1.000. Each
// argument is given back its own spelling while its value is the one that was read.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "core/memory_pool.h"
#include "step/carried/record_text.h"

namespace corvel {

// Belongs to a pool.
struct RecordSpelling {
  std::string_view name;
  std::span<const std::string_view> arguments;
  std::span<const std::string_view> glue;
  // Of what the writer makes of each value, the numbers of references left out.
  std::span<const std::uint64_t> hashes;
};

// `written`: what the writer makes of the object that was read from `record`.
const RecordSpelling* SpellingOf(const RecordText& record, const RecordText& written,
                                 MemoryPool& pool);

// How the argument is written, `written` being what the writer makes of its value now. `index` is
// below the number of arguments of both.
std::string SpellArgument(const RecordSpelling& spelling, std::size_t index,
                          std::string_view written);

}  // namespace corvel
