// What every page of a report begins with, and its lists of texts.
#pragma once

#include <string_view>
#include <vector>

#include "core/text.h"
#include "merge/report/shared/html_text.h"
#include "merge/report/shared/told_text.h"

namespace corvel {

void AddTexts(const std::vector<WideString>& texts, HtmlText& html);
// Each with the name of its file in front, unless it names that itself.
void AddTexts(const std::vector<ToldText>& texts, HtmlText& html);
// What went wrong, which comes first on the page; nothing when nothing did.
void AddFailures(const std::vector<ToldText>& failures, HtmlText& html);
// One box of a row of sums: what stands in bold is added between the two.
void BeginSum(HtmlText& html);
void EndSum(std::string_view key, HtmlText& html);

}  // namespace corvel
