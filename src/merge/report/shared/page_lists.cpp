#include "merge/report/shared/page_lists.h"

namespace corvel {

void AddTexts(const std::vector<WideString>& texts, HtmlText& html) {
  html.Raw("<ul class='texts'>\n");
  for (const WideString& text : texts) {
    const std::size_t last = text.find_last_not_of(u" \n\r");
    html.Raw("<li>").Name(text.substr(0, last + 1)).Raw("</li>\n");
  }
  html.Raw("</ul>\n");
}

void AddFailures(const std::vector<WideString>& failures, HtmlText& html) {
  if (failures.empty()) return;
  html.Raw("<section id='failures'>\n").Word("h2", "failures").Raw("\n");
  AddTexts(failures, html);
  html.Raw("</section>\n");
}

void BeginSum(HtmlText& html) { html.Raw("<li><b>"); }

void EndSum(std::string_view key, HtmlText& html) { html.Raw("</b>").Word(key).Raw("</li>\n"); }

}  // namespace corvel
