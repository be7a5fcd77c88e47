// Ticks of work that is done ahead of its turn, kept until then.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "core/reporting.h"
#include "core/text.h"

namespace corvel {

// What ticks of one thread said, in their order.
class KeptTicks {
 public:
  // Takes the ticks of the calling thread that go to Callback while it lives. Borrows both; once
  // `ends` is true the next tick throws Ended.
  class Keeping {
   public:
    Keeping(KeptTicks& ticks, const std::atomic<bool>& ends);
    ~Keeping();
    Keeping(const Keeping&) = delete;
    Keeping& operator=(const Keeping&) = delete;
  };
  // The work is not wanted any more.
  struct Ended {};

  // To be given to the work.
  static bool Callback(int value, int stageWeight, const WideString* extraText, bool exactMode,
                       int maximum);

  // Sends them to `progress`, which is not null, with the cancel question behind one that comes
  // back with "cancel". False: the user meant it, and the rest is not sent.
  bool SendTo(ProgressCallback progress) const;

 private:
  struct Tick {
    int value;
    int share;
    int maximum;
    bool hasText;
    bool exactMode;
    WideString text;
  };

  std::vector<Tick> ticks_;
};

}  // namespace corvel
