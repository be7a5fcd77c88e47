// Takes the place of the reporter: keeps what is reported.
#pragma once

#include <string>
#include <vector>

#include "core/reporting.h"

namespace corvel::test {

struct Report {
  std::string key;
  WideString message;
  int mode = kReportShow;
  bool operator==(const Report&) const = default;
};

// The reports since the last RecordedReports was made. Pass `RecordedReports::Reporter`.
class RecordedReports {
 public:
  RecordedReports() { All().clear(); }
  ~RecordedReports() { All().clear(); }
  RecordedReports(const RecordedReports&) = delete;
  RecordedReports& operator=(const RecordedReports&) = delete;

  void Forget() { All().clear(); }

  const std::vector<Report>& operator*() const { return All(); }
  const std::vector<Report>* operator->() const { return &All(); }

  static int Reporter(const char* key, const WideString& message, int mode) {
    All().push_back({key, message, mode});
    return 0;
  }

 private:
  // The reporter is a plain function, so what it keeps is process-wide.
  static std::vector<Report>& All() {
    static std::vector<Report> reports;
    return reports;
  }
};

}  // namespace corvel::test
