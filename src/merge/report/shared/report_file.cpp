#include "merge/report/shared/report_file.h"

#include <array>
#include <cstdio>

#include "platform/file.h"
#include "platform/platform.h"

namespace corvel {

ReportForm ReportFormOf(WideView path) {
  const WideString name = ToLowerAscii(platform::FileNameOf(path));
  if (name.ends_with(u".json")) return ReportForm::kJson;
  if (name.ends_with(u".html")) return ReportForm::kPage;
  return ReportForm::kNone;
}

WideString TimeOfReport() {
  const platform::LocalTime time = platform::Get().Now();
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d", time.year, time.month,
                time.day, time.hour, time.minute, time.second);
  return Widen(text.data());
}

}  // namespace corvel
