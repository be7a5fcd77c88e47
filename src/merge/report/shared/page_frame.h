// What every page of a report is put into: its head, its style, its script.
#pragma once

#include <string>
#include <string_view>

#include "merge/report/shared/html_text.h"
#include "merge/report/shared/report_places.h"

namespace corvel {

struct PageHead {
  std::string title;            // HTML
  const ModelPlaces* places;    // that are drawn, or null: most of the page comes from them
  std::string_view style = {};  // CSS beside that of all pages
  // Its script puts it into the language that the reader's browser asks for.
  bool followsReader = false;
};

// One page that needs nothing beside itself, in UTF-8: between the two come the sections. `json`:
// the report itself, as JsonText writes.
void BeginPage(const PageHead& head, HtmlText& html);
void EndPage(std::string_view json, HtmlText& html);

}  // namespace corvel
