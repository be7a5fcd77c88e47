#include "merge/report/shared/report_file.h"

#include <array>
#include <cstdio>

#include "platform/file.h"
#include "platform/platform.h"
#include "step/writer/unfinished_output.h"

namespace corvel {

ReportForm ReportFormOf(WideView path) {
  const WideString name = ToLowerAscii(platform::FileNameOf(path));
  if (name.ends_with(u".json")) return ReportForm::kJson;
  if (name.ends_with(u".html")) return ReportForm::kPage;
  return ReportForm::kNone;
}

bool WriteReportFile(const WideString& path, const std::string& text) {
  UnfinishedOutput output(path);
  platform::File file = output.Open();
  if (!file.IsOpen()) return false;
  const bool written = file.Write(text.data(), text.size()) == text.size() && file.Sync();
  if (file.Close() && written) return output.Complete();
  output.Discard();
  return false;
}

WideString TimeOfReport() {
  const platform::LocalTime time = platform::Get().Now();
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d", time.year, time.month,
                time.day, time.hour, time.minute, time.second);
  return Widen(text.data());
}

}  // namespace corvel
