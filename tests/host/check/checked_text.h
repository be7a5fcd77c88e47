// Models that are checked from their text.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "host/check/model_check.h"
#include "support/quiet_reading.h"
#include "support/step_text.h"
#include "support/temporary_folder.h"
#include "support/test_platform.h"

namespace corvel::host {

// As a file of that name; its path is gone behind this.
inline CheckedModel CheckFile(std::string_view bytes, bool keepsObjects = false,
                              std::string_view name = "m.ifc") {
  const test::QuietReading quiet;
  const test::TestPlatform boxesGoNowhere;
  const test::TemporaryFolder folder;
  return CheckModel(
      folder.Write(name, bytes),
      {.workFolder = folder.Path(), .keepsHolders = true, .keepsObjects = keepsObjects});
}

// A model against which nothing is to be said. Records up to #19 are taken; #11 is a site.
inline const std::string kGoodRecords =
    "#1=IFCPROJECT('0000000000000000000001',$,'P',$,$,$,$,(#5),#2);\n"
    "#2=IFCUNITASSIGNMENT((#3));\n#3=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n"
    "#5=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-05,#6,$);\n"
    "#6=IFCAXIS2PLACEMENT3D(#7,$,$);\n#7=IFCCARTESIANPOINT((0.,0.,0.));\n"
    "#10=IFCLOCALPLACEMENT($,#6);\n"
    "#11=IFCSITE('0000000000000000000002',$,'S',$,$,#10,$,$,.ELEMENT.,$,$,$,$,$);\n"
    "#12=IFCRELAGGREGATES('0000000000000000000003',$,$,$,#1,(#11));\n";

inline CheckedModel CheckRecords(std::string_view records, std::string_view schema = "IFC4") {
  return CheckFile(test::ModelFile(records, schema));
}

inline std::vector<RuleId> RulesIn(const std::vector<Finding>& findings) {
  std::vector<RuleId> rules;
  for (const Finding& finding : findings) {
    if (rules.empty() || rules.back() != finding.rule) rules.push_back(finding.rule);
  }
  return rules;
}

// The one finding of that rule; a blank one when there are none or several.
inline Finding FindingIn(const CheckedModel& model, RuleId rule) {
  const auto isIt = [rule](const Finding& finding) { return finding.rule == rule; };
  const auto count = std::count_if(model.findings.begin(), model.findings.end(), isIt);
  if (count != 1) return {};
  return *std::find_if(model.findings.begin(), model.findings.end(), isIt);
}

}  // namespace corvel::host
