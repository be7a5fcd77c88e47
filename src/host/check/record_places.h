// Where records stand in a file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/text.h"
#include "step/reader/record_notes.h"

namespace corvel::host {

// Finds the lines of a few records in one run over the file, which looks closely at those stretches
// alone that may hold one of them.
class RecordPlaces {
 public:
  // What the reading of the file has noted; borrowed.
  explicit RecordPlaces(const RecordNotes& notes) : notes_(notes) {}

  // The place of this record is wanted. Call before Find.
  void Want(std::uint32_t number) { lines_.try_emplace(number); }
  // Reads the file up to the last of the stretches. What cannot be read again gives nothing.
  void Find(const WideString& path);
  // In which the first record of that number begins, from 1 on; 0 when it was not met.
  std::uint64_t LineOf(std::uint32_t number) const;

 private:
  // The end of the last one is that of the file.
  struct Part {
    std::int64_t begin = 0;
    std::int64_t end = 0;
  };

  std::vector<Part> PartsToLookInto() const;
  struct Found {
    std::uint64_t line = 0;
    // One that looks like the start of the record, for files in which a string or comment that is
    // left open takes others along.
    std::uint64_t likeness = 0;
  };

  void LookInto(std::string_view text, std::uint64_t firstLine);
  Found* FoundOf(std::uint32_t number);

  const RecordNotes& notes_;
  std::unordered_map<std::uint32_t, Found> lines_;
  std::size_t left_ = 0;  // of them that were not met
};

}  // namespace corvel::host
