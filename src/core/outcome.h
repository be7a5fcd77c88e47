// How an operation that the user can stop has ended.
#pragma once

namespace corvel {

// The numbers are those that callers outside of the engine are given.
enum class Outcome {
  kFailed = 0,  // and it has been reported
  kComplete = 1,
  kCancelled = 2
};

}  // namespace corvel
