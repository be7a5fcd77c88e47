// How a run ended, as the calling program sees it.
#pragma once

namespace corvel::host {

enum class ExitStatus {
  kDone = 0,            // written (or shown), and nothing was reported
  kNothingWritten = 1,  // or, of `info`: a file had a problem
  kWrongUsage = 2,
  kCancelled = 3,  // nothing was written because the user, or who ended the session, wanted so
  kWrittenWithReports = 4,
  kDifferent = 4,    // of `diff`: the models are not the same
  kErrorsFound = 4,  // of `check`
};

}  // namespace corvel::host
