// The sections of the report page. Each adds its own, or nothing where there is nothing to tell.
#pragma once

#include "merge/report/run_report.h"
#include "merge/report/shared/html_text.h"

namespace corvel {

void AddHead(const RunReport& report, HtmlText& html);  // with the failures
void AddInputs(const RunReport& report, HtmlText& html);
void AddFlow(const RunReport& report, HtmlText& html);
void AddDrawings(const RunReport& report, HtmlText& html);
void AddMessages(const RunReport& report, HtmlText& html);
void AddSteps(const RunReport& report, HtmlText& html);
void AddTree(const RunReport& report, HtmlText& html);
void AddStages(const RunReport& report, HtmlText& html);

}  // namespace corvel
