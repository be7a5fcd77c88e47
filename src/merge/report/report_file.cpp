#include "merge/report/report_file.h"

#include <string>

#include "merge/report/report_json.h"
#include "merge/report/report_page.h"
#include "platform/file.h"
#include "step/writer/unfinished_output.h"

namespace corvel {

namespace {

bool WriteFile(const WideString& path, const std::string& text) {
  UnfinishedOutput output(path);
  platform::File file = output.Open();
  if (!file.IsOpen()) return false;
  const bool written = file.Write(text.data(), text.size()) == text.size() && file.Sync();
  if (file.Close() && written) return output.Complete();
  output.Discard();
  return false;
}

}  // namespace

ReportForm ReportFormOf(WideView path) {
  const WideString name = ToLowerAscii(platform::FileNameOf(path));
  if (name.ends_with(u".json")) return ReportForm::kJson;
  if (name.ends_with(u".html")) return ReportForm::kPage;
  return ReportForm::kNone;
}

bool WriteReport(const RunReport& report, const WideString& path, std::string_view language) {
  const bool isPage = ReportFormOf(path) == ReportForm::kPage;
  return WriteFile(path, isPage ? ReportAsPage(report, language) : ReportAsJson(report));
}

}  // namespace corvel
