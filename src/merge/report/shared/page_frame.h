// What every page of a report is put into: its head, its style, its script.
#pragma once

#include <string>
#include <string_view>

#include "merge/report/shared/html_text.h"
#include "merge/report/shared/page_texts.h"

namespace corvel {

struct PageContent {
  std::string title;         // HTML, here and below
  std::string main;          // the sections
  std::string json;          // the report itself, as JsonText writes
  std::string_view style{};  // CSS beside that of all pages
};

// The last line of the sections.
void AddFooter(HtmlText& html);

// One page that needs nothing beside itself, in UTF-8. `followsReader`: its script puts it into the
// language that the reader's browser asks for.
std::string FramedPage(const PageContent& content, const PageTexts& texts, bool followsReader);

}  // namespace corvel
