// Units in the words of a page.
#pragma once

#include <string_view>

#include "core/text.h"
#include "merge/report/shared/html_text.h"

namespace corvel {

// By the name that a file gives it, or that is made of its parts: "MILLIMETRE", "Square foot",
// "FOOT (0.3048 m)", "KILOGRAM METRE^-3". A name that the page has no words for stands as it is.
void AddUnit(WideView name, HtmlText& html);

// "LENGTHUNIT": "length". Likewise.
void AddKindOfUnit(std::string_view type, HtmlText& html);

}  // namespace corvel
