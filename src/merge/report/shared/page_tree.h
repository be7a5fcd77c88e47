// The spatial tree of a model on a page.
#pragma once

#include <vector>

#include "merge/report/shared/html_text.h"
#include "merge/report/shared/report_places.h"

namespace corvel {

// Not empty. The first node is the root.
void AddNodes(const std::vector<SpatialNode>& tree, HtmlText& html);

}  // namespace corvel
