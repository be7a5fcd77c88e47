#include "merge/report/write_report.h"

#include "merge/report/report_json.h"
#include "merge/report/report_page.h"
#include "merge/report/shared/report_file.h"
#include "step/writer/unfinished_output.h"

namespace corvel {

bool WriteReport(const RunReport& report, const WideString& path, std::string_view language,
                 unsigned threads) {
  const bool isPage = ReportFormOf(path) == ReportForm::kPage;
  return WriteInOneStep(path,
                        isPage ? ReportAsPage(report, language, threads) : ReportAsJson(report));
}

}  // namespace corvel
