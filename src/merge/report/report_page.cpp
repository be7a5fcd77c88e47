#include "merge/report/report_page.h"

#include <utility>

#include "merge/report/html_text.h"
#include "merge/report/page_parts.h"
#include "merge/report/page_sections.h"
#include "merge/report/page_texts.h"
#include "merge/report/report_json.h"

namespace corvel {

namespace {

std::string ContentOf(const RunReport& report, const PageTexts& texts) {
  HtmlText html(texts);
  AddHead(report, html);
  AddInputs(report, html);
  AddFlow(report, html);
  AddDrawings(report, html);
  AddMessages(report, html);
  AddSteps(report, html);
  AddTree(report, html);
  AddStages(report, html);
  html.Raw("<footer>corvel " CORVEL_VERSION " \u00b7 ").Word("forPrograms").Raw("</footer>\n");
  return html.Take();
}

std::string TitleOf(const RunReport& report, const PageTexts& texts) {
  HtmlText html(texts);
  const WideString path = !report.output.path.empty() ? report.output.path
                          : report.inputs.empty()     ? WideString()
                                                      : report.inputs.front().path;
  return html.Text(ShortName(path)).Raw(" \u00b7 corvel ").Text(report.command).Take();
}

}  // namespace

// Each piece of the template up to a name in double braces, then what stands for the name: what is
// put in is not looked at again, whatever names are in it.
std::string ReportAsPage(const RunReport& report, std::string_view language) {
  const PageTexts texts(language);
  const auto valueOf = [&](std::string_view name) -> std::string {
    if (name == "language") return std::string(texts.Language());
    if (name == "follows") return language.empty() ? " data-follows" : "";
    if (name == "title") return TitleOf(report, texts);
    if (name == "style") return std::string(kPageStyle);
    if (name == "content") return ContentOf(report, texts);
    if (name == "json") return ReportAsJson(report);
    if (name == "texts") return PageTexts::AllAsJson();
    if (name == "script") return std::string(kPageScript);
    name.remove_prefix(2);  // "t:"
    return HtmlText(texts).Text(texts.Of(name)).Take();
  };
  std::string page;
  std::string_view rest = kPageTemplate;
  for (std::size_t begin = rest.find("{{"); begin != std::string_view::npos;
       begin = rest.find("{{")) {
    const std::size_t end = rest.find("}}", begin);
    page += rest.substr(0, begin);
    page += valueOf(rest.substr(begin + 2, end - begin - 2));
    rest.remove_prefix(end + 2);
  }
  return page.append(rest);
}

}  // namespace corvel
