#include "merge/report/report_page.h"

#include <utility>

#include "merge/report/page_sections.h"
#include "merge/report/report_json.h"
#include "merge/report/shared/html_text.h"
#include "merge/report/shared/page_frame.h"
#include "merge/report/shared/page_texts.h"
#include "platform/worker_pool.h"

namespace corvel {

namespace {

void AddSections(const RunReport& report, HtmlText& html) {
  AddHead(report, html);
  AddInputs(report, html);
  AddFlow(report, html);
  AddDrawings(report, html);
  AddMessages(report, html);
  AddSteps(report, html);
  AddTree(report, html);
  AddStages(report, html);
}

std::string TitleOf(const RunReport& report, const PageTexts& texts) {
  HtmlText html(texts);
  const WideString path = !report.output.path.empty() ? report.output.path
                          : report.inputs.empty()     ? WideString()
                                                      : report.inputs.front().path;
  return html.Text(ShortName(path)).Raw(" \u00b7 corvel ").Text(report.command).Take();
}

// What programs read in the page: about as much work as all the rest.
class JsonOfPage final : public platform::Job {
 public:
  explicit JsonOfPage(const RunReport& report) : report_(report) {}
  std::string Take() { return std::move(json_); }

 protected:
  void Run() override { json_ = ReportAsJson(report_); }

 private:
  const RunReport& report_;
  std::string json_;
};

}  // namespace

std::string ReportAsPage(const RunReport& report, std::string_view language, unsigned threads) {
  const PageTexts texts(language);
  JsonOfPage json(report);
  platform::WorkerPool pool(threads);
  pool.Submit(json);
  HtmlText html(texts);
  BeginPage(
      {TitleOf(report, texts), report.places ? &*report.places : nullptr, {}, language.empty()},
      html);
  AddSections(report, html);
  pool.Finish(json);
  EndPage(json.Take(), html);
  return html.Take();
}

}  // namespace corvel
