// Plan and elevation of the products of one or more models.
#pragma once

#include <vector>

#include "core/text.h"
#include "merge/report/shared/html_text.h"
#include "merge/report/shared/report_places.h"

namespace corvel {

struct DrawnInput {
  WideString path;
  bool isDrawn = false;  // the legend has it
};

// The section with both drawings. `places`: null where there is nothing to be drawn.
void AddDrawings(const std::vector<DrawnInput>& inputs, const ModelPlaces* places, HtmlText& html);

}  // namespace corvel
