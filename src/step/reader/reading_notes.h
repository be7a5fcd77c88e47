// What a reading had to say of its file, for whoever tells it in other words than the remarks do.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "step/reader/record_notes.h"
#include "step/reader/skipped_input.h"
#include "step/reader/tolerance.h"

namespace corvel {

struct ReadingNotes {
  std::vector<SkippedPart> skipped;
  std::vector<MisfitGroup> misfits;  // of tolerant readings
  bool headWasMended = false;        // likewise
  // Where the reading ended without the closing line.
  std::optional<std::int64_t> endWithoutClosingLine;
  // Null, and nothing is noted, unless somebody asks for it before a tolerant reading.
  std::unique_ptr<RecordNotes> records;
};

}  // namespace corvel
