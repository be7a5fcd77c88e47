// The marking of a model as an observer sees it.
#pragma once

#include <cstdint>
#include <functional>

namespace corvel {

enum class MarkingStep : std::uint8_t {
  kChosen,    // what the lists of the host say outright
  kFollowed,  // what cannot be without something that is deleted, and what belonged to it alone
  kSwept      // what hangs together with nothing that is saved
};

// Told each step once it is done; may be empty. `anyIsDeleted`: false where nothing of the model
// has been deleted so far.
using MarkingListener = std::function<void(MarkingStep, bool anyIsDeleted)>;

// Why the host leaves an object out.
enum class LeftOutReason : std::uint8_t { kInactive, kHidden, kNotSelected };

struct LeftOutObject {
  std::uint32_t number = 0;  // in its file
  LeftOutReason reason = LeftOutReason::kInactive;
};

}  // namespace corvel
