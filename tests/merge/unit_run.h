// Documents of a run that differ in units and schema, and a shell that they are told to.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "graph_document.h"
#include "merge/merge_shell.h"
#include "merge/run_model.h"
#include "merge/units.h"
#include "support/quiet_reading.h"
#include "support/recorded_reports.h"
#include "support/step_text.h"
#include "support/temporary_folder.h"

namespace corvel::test {

// A text is its key in angle brackets; everything but texts, options and reports is refused.
class TextShell final : public MergeShell {
 public:
  MergeOptions options;
  ErrorReporter reporter = RecordedReports::Reporter;

  WideString Text(const char* key) override { return u"<" + Widen(key) + u">"; }
  MergeOptions Options() override { return options; }
  ErrorReporter Reporter() override { return reporter; }

  void ShowBox(const WideString&, const WideString&, unsigned) override { Refuse(); }
  bool AskForOutput(const OutputSuggestion&) override { return Refuse(); }
  WideString OutputPath() override { throw std::logic_error("not for this test"); }
  void EnableOpenRecent() override { Refuse(); }
  void RememberOutput(const WideString&) override { Refuse(); }
  void SaveOptions() override { Refuse(); }
  void HideOptionsWindow() override { Refuse(); }
  ProgressCallback Ticks() override { throw std::logic_error("not for this test"); }
  void StartRun() override { Refuse(); }
  void FinishRun() override { Refuse(); }
  void OpenProgress(const WideString&) override { Refuse(); }
  void SetOverallText(const WideString&) override { Refuse(); }
  void SetCurrentText(const WideString&) override { Refuse(); }
  void SetCurrentFile(const WideString&) override { Refuse(); }
  void StartStage(int) override { Refuse(); }
  void StartLastStage() override { Refuse(); }
  void ResetProgress() override { Refuse(); }

 private:
  bool Refuse() { throw std::logic_error("not for this test"); }
};

inline constexpr const char* kMetre = "IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.)";
inline constexpr const char* kMillimetre = "IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.)";
inline constexpr const char* kCentimetre = "IFCSIUNIT(*,.LENGTHUNIT.,.CENTI.,.METRE.)";
inline constexpr const char* kSquareMetre = "IFCSIUNIT(*,.AREAUNIT.,$,.SQUARE_METRE.)";

// Units from #`firstNumber` on and behind them their assignment.
inline std::string Units(std::vector<std::string> units, unsigned firstNumber = 1) {
  std::string records;
  std::string members;
  unsigned number = firstNumber;
  for (const std::string& unit : units) {
    records += "#" + std::to_string(number) + "=" + unit + ";\n";
    members += (members.empty() ? "#" : ",#") + std::to_string(number);
    ++number;
  }
  return records + "#" + std::to_string(number) + "=IFCUNITASSIGNMENT((" + members + "));\n";
}

class UnitRun : public testing::Test {
 protected:
  static constexpr std::size_t kMostModels = 32;

  UnitRun() { models_.reserve(kMostModels); }

  // Reads one more model of the run. What is given stays where it is.
  RunModel& AddModel(std::string_view fileName, std::string_view records,
                     std::string_view schema = "IFC4") {
    const QuietReading quiet;
    auto document =
        std::make_unique<IfcDocument>(false, RecordedReports::Reporter, RecordedProgress::Callback);
    const WideString path = folder_.Write(fileName, ModelFile(records, schema));
    if (document->OpenFile(path, 1) == 0) throw std::runtime_error("unreadable model");
    return Take(std::move(document));
  }
  RunModel& Take(std::unique_ptr<IfcDocument> document) {
    if (models_.size() == kMostModels) throw std::logic_error("more models than planned");
    return models_.emplace_back(std::move(document), 0);
  }
  IfcDocument& Add(std::string_view fileName, std::string_view records,
                   std::string_view schema = "IFC4") {
    return *AddModel(fileName, records, schema).document;
  }
  int Check() { return CheckUnits(models_, shell_); }
  static IFC::IfcEntity* At(IfcDocument& document, std::uint32_t number) {
    return document.mainContainer->GetEntityByOrginalNumber(number);
  }

  MergeWorld world_;
  TemporaryFolder folder_;
  TextShell shell_;
  std::vector<RunModel> models_;
};

}  // namespace corvel::test
