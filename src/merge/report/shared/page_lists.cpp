#include "merge/report/shared/page_lists.h"

namespace corvel {

namespace {

void AddItem(const ToldText& told, HtmlText& html) {
  html.Raw("<li>");
  const WideString file = ShortName(told.file);
  if (!file.empty() && told.text.find(file) == WideString::npos) {
    html.Raw("<b>").Name(file).Raw("</b>").Colon();
  }
  const std::size_t last = told.text.find_last_not_of(u" \n\r");
  html.Name(told.text.substr(0, last + 1)).Raw("</li>\n");
}

}  // namespace

void AddTexts(const std::vector<WideString>& texts, HtmlText& html) {
  html.Raw("<ul class='texts'>\n");
  for (const WideString& text : texts) AddItem({text}, html);
  html.Raw("</ul>\n");
}

void AddTexts(const std::vector<ToldText>& texts, HtmlText& html) {
  html.Raw("<ul class='texts'>\n");
  for (const ToldText& told : texts) AddItem(told, html);
  html.Raw("</ul>\n");
}

void AddFailures(const std::vector<ToldText>& failures, HtmlText& html) {
  if (failures.empty()) return;
  html.Raw("<section id='failures'>\n").Word("h2", "failures").Raw("\n");
  AddTexts(failures, html);
  html.Raw("</section>\n");
}

void BeginSum(HtmlText& html) { html.Raw("<li><b>"); }

void EndSum(std::string_view key, HtmlText& html) { html.Raw("</b>").Word(key).Raw("</li>\n"); }

}  // namespace corvel
