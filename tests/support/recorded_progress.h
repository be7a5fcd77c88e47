// Takes the place of the progress window: keeps every tick and presses cancel to order.
#pragma once

#include <cstddef>
#include <limits>
#include <ostream>
#include <vector>

#include "core/text.h"

namespace corvel::test {

struct Tick {
  int value = 0;
  int stageWeight = 0;
  WideString extraText;
  bool exactMode = false;
  int maximum = 0;
  bool operator==(const Tick&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Tick& tick) {
  return out << tick.value << "/" << tick.maximum << " weight " << tick.stageWeight << " \""
             << Narrow(tick.extraText) << "\"" << (tick.exactMode ? " exact" : "");
}

// What one stage ticks, then what the next one does.
inline std::vector<Tick> operator+(std::vector<Tick> a, const std::vector<Tick>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// The ticks since the last RecordedProgress was made. Pass `RecordedProgress::Callback`.
class RecordedProgress {
 public:
  RecordedProgress() { State() = {}; }
  ~RecordedProgress() { State() = {}; }
  RecordedProgress(const RecordedProgress&) = delete;
  RecordedProgress& operator=(const RecordedProgress&) = delete;

  // The tick (counted from 0) that says cancel; none unless this is called.
  void CancelAt(std::size_t index) { State().cancelAt = index; }
  void Forget() { State().ticks.clear(); }

  const std::vector<Tick>& operator*() const { return State().ticks; }
  const std::vector<Tick>* operator->() const { return &State().ticks; }

  static bool Callback(int value, int stageWeight, const WideString* extraText, bool exactMode,
                       int maximum) {
    std::vector<Tick>& ticks = State().ticks;
    ticks.push_back(
        {value, stageWeight, extraText == nullptr ? WideString() : *extraText, exactMode, maximum});
    return ticks.size() - 1 != State().cancelAt;
  }

 private:
  struct Recording {
    std::vector<Tick> ticks;
    std::size_t cancelAt = std::numeric_limits<std::size_t>::max();
  };
  // The callback is a plain function, so what it keeps is process-wide.
  static Recording& State() {
    static Recording recording;
    return recording;
  }
};

}  // namespace corvel::test
