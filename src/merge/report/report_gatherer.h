// Fills a report while a run is observed.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "core/shown_paths.h"
#include "merge/report/product_fates.h"
#include "merge/report/run_report.h"
#include "merge/run_observer.h"

namespace corvel {

// For one run. Looks at products, and at each record once where something is deleted and once more
// where steps of federation are taken.
class ReportGatherer final : public RunObserver {
 public:
  // `command`: as the user calls it. `threads`: that may look at the result, see PlacesWanted.
  explicit ReportGatherer(std::string command, unsigned threads = 1);
  ~ReportGatherer() override;

  // What others have to tell. Its text is told as it is; `file` is what was at work, if anything.
  void AddFailure(WideView text, WideView file = {}) {
    report_.failures.push_back({WithShownPaths(text), WithShownPaths(file)});
  }
  // The last failure goes on. There is one.
  void ContinueFailure(WideView text) { report_.failures.back().text += WithShownPaths(text); }
  void AddMessage(WideView text, WideView file = {}) {
    report_.messages.push_back({WithShownPaths(text), WithShownPaths(file)});
  }
  void SetDryRun(bool isDryRun) { report_.isDryRun = isDryRun; }
  // Before RunEnds, which looks how large the file is.
  void SetOutput(WideString path) { report_.output.path = std::move(path); }
  const RunReport& Report() const { return report_; }

  void StageBegins(RunStage stage, const WideString& path) override;
  void ModelIsRead(const IfcDocument& document) override;
  void ModelsAreCompared(const std::vector<RunModel>& models) override;
  void ModelIsMoved(const IfcDocument& document, const std::array<double, 3>& offsetMm) override;
  void ObjectsAreLeftOut(const IfcDocument& document,
                         const std::vector<LeftOutObject>& objects) override;
  void ModelIsMarked(const IfcDocument& document, MarkingStep step, bool anyIsDeleted) override;
  void ModelHasItsTurn(const IfcDocument& document) override;
  void ModelsAreFolded(const std::vector<IfcDocument*>& documents) override;
  void StepIsDone(const FederationNote& note) override;
  void ModelIsDone(const std::vector<IfcDocument*>& documents) override;
  // The first call counts: who started the run calls it for one that ended by an exception.
  void RunEnds(const RunResult& result) override;

 private:
  // What has to be remembered of an input until the run is over.
  struct Input {
    const IfcDocument* document = nullptr;
    ProductFates fates;
    std::size_t deletedByMarking = 0;
    bool isMarked = false;
    bool hadItsTurn = false;
  };

  std::size_t IndexOf(const IfcDocument& document) const;
  bool FoldTookAllButProjects(const std::vector<IfcDocument*>& documents) const;
  void CountRecords(const std::vector<IfcDocument*>& documents);
  void CountFoldedRecords(const std::vector<IfcDocument*>& documents);
  void TallyProducts();
  void EndStage();

  RunReport report_;
  unsigned threads_;
  std::vector<Input> inputs_;  // as those of the report
  std::vector<IfcDocument*> folded_;
  // Whose turn it is to be marked. A marking that did not come to its end has chosen nothing.
  std::optional<std::size_t> beingMarked_;
  bool isOnlyFolded_ = false;  // so that the sizes of the models tell what became of their records
  std::int64_t stageBegan_ = 0;
  bool hasEnded_ = false;
};

}  // namespace corvel
