// The sections of the page of a check. Each adds its own, or nothing where there is nothing to
// tell.
#pragma once

#include "host/check/check_report.h"
#include "merge/report/shared/html_text.h"

namespace corvel::host {

void AddCheckHead(const CheckReport& report, HtmlText& html);  // with what could not be read
void AddFindings(const CheckReport& report, HtmlText& html);
void AddFactsOfModels(const CheckReport& report, HtmlText& html);
void AddTreesOfModels(const CheckReport& report, HtmlText& html);

}  // namespace corvel::host
