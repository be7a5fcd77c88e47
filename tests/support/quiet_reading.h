// Reading a model changes what is process-wide; tests that come later must not notice.
#pragma once

#include <cstdio>

#include "core/cancellation.h"
#include "step/log/ifc_log.h"
#include "step/log/utilities.h"

namespace corvel::test {

// While it lives, the memory report goes nowhere. Afterwards all is as it was.
class QuietReading {
 public:
  QuietReading()
      : output_(MemoryReportOutput()),
        cancelMode_(Cancellation::OfProcess().mode),
        muted_(IfcLog::Instance().IsMuted()),
        flushes_(IfcLog::Instance().FlushesEveryLine()) {
    MemoryReportOutput() = nullptr;
  }
  ~QuietReading() {
    MemoryReportOutput() = output_;
    Cancellation::OfProcess().mode = cancelMode_;
    IfcLog::Instance().SetMuted(muted_);
    IfcLog::Instance().SetFlushEveryLine(flushes_);
  }
  QuietReading(const QuietReading&) = delete;
  QuietReading& operator=(const QuietReading&) = delete;

 private:
  std::FILE* output_;
  CancelMode cancelMode_;
  bool muted_;
  bool flushes_;
};

}  // namespace corvel::test
