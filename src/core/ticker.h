// The ticks of long loops: when one is due, what it says, and what follows when the user presses
// cancel.
#pragma once

#include <cstddef>
#include <limits>

#include "core/reporting.h"
#include "core/text.h"

namespace corvel {

// What the ticks of one stage of a run say beside their values.
struct Stage {
  ProgressCallback callback = nullptr;  // null: silent, and never cancelled
  int share = 0;                        // percent of the whole run that begin here; 0: none
  const WideString* text = nullptr;     // stands behind the current text; may be null, borrowed
  bool exactMode = false;               // the value counts as a part of `maximum`, not of 100
  int maximum = 100;                    // no tick says more

  // The same stage, counted in another way.
  Stage CountedTo(int newMaximum, bool newExactMode) const {
    return {callback, share, text, newExactMode, newMaximum};
  }
};

// At which of the many equal pieces of a loop's work a tick is due. Each says one more than the one
// before it.
struct TickSteps {
  std::size_t block = 0;                       // pieces from one tick to the next; 0: there is none
  std::size_t first = 0;                       // pieces up to the first tick; 0: a block
  int valueBefore = 0;                         // the first tick says one more
  int most = std::numeric_limits<int>::max();  // ticks that are sent; later ones are not due
};

// Loops ask this and nothing else. A tick that comes back with "cancel" is followed by the cancel
// question; a No lets the loop go on. Costs a subtraction where no tick is due.
class Ticker {
 public:
  enum class Asking {
    kAlways,
    kUnlessEnding  // no question while the process is in CancelMode::kEndUnasked: it is a Yes
  };

  // Copies what it is given, but for the text of the stage, which has to live as long.
  explicit Ticker(const Stage& stage, const TickSteps& steps = {}, Asking asking = Asking::kAlways);

  // Sends `value`, or the maximum of the stage if it is larger. False: the user pressed cancel and
  // meant it.
  bool Tick(int value) const;
  // Sends `value` and goes on whatever the user does.
  void Show(int value) const;

  // `pieces` more are done: sends the ticks that are due. False as for Tick; the pieces behind that
  // tick don't count then.
  bool Advance(std::size_t pieces = 1) {
    if (pieces < left_) {
      left_ -= pieces;
      return true;
    }
    return SendDueTicks(pieces);
  }
  // The number of pieces from here to the next tick; more than any loop has when there is none.
  std::size_t Left() const { return left_; }
  // Another loop of the same stage, with a block of its own. Its ticks go on counting.
  void StartPass(std::size_t block) { left_ = block_ = OrNever(block); }

 private:
  static constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();
  static std::size_t OrNever(std::size_t block) { return block == 0 ? kNever : block; }
  bool SendDueTicks(std::size_t pieces);

  Stage stage_;
  Asking asking_;
  std::size_t block_;
  std::size_t left_;
  int value_;
  int ticksLeft_;
};

}  // namespace corvel
