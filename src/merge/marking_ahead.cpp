#include "merge/marking_ahead.h"

#include <algorithm>
#include <utility>

#include "merge/kept_ticks.h"
#include "merge/marking.h"

namespace corvel {

class MarkingAhead::Marking final : public platform::Job {
 public:
  Marking(IfcDocument& document, MarkingTask task, bool isFoldNext, const std::atomic<bool>& ends)
      : document_(document), task_(std::move(task)), isFoldNext_(isFoldNext), ends_(ends) {}

  const IfcDocument& Document() const { return document_; }
  const KeptTicks& Ticks() const { return ticks_; }

 private:
  // Nothing is reported: only what hangs together with a project can lack one.
  void Run() override {
    IFC::MainContainer& container = *document_.mainContainer;
    try {
      const KeptTicks::Keeping whileItLasts(ticks_, ends_);
      DeleteObjects(container, {.deletePairs = task_.deletePairs,
                                .savePairs = task_.savePairs,
                                .deleteOpenings = task_.deleteOpenings,
                                .fileCount = task_.fileCount,
                                .progress = KeptTicks::Callback,
                                .listener = &task_.listener});
    } catch (const KeptTicks::Ended&) {
      return;
    }
    task_ = {};
    if (isFoldNext_) container.IndexSilently();
  }

  IfcDocument& document_;
  MarkingTask task_;
  bool isFoldNext_;
  const std::atomic<bool>& ends_;
  KeptTicks ticks_;
};

class MarkingAhead::Folding final : public platform::Job {
 public:
  explicit Folding(IfcDocument& document) : document_(document) {}

 private:
  void Run() override { document_.mainContainer->IndexSilently(); }

  IfcDocument& document_;
};

MarkingAhead::MarkingAhead(unsigned threads, bool isFoldNext)
    : isFoldNext_(isFoldNext), pool_(threads) {}

MarkingAhead::~MarkingAhead() { ends_ = true; }

void MarkingAhead::Begin(IfcDocument& document, MarkingTask task) {
  markings_.push_back(std::make_unique<Marking>(document, std::move(task), isFoldNext_, ends_));
  pool_.Submit(*markings_.back());
}

void MarkingAhead::BeginFold(IfcDocument& document) {
  if (!isFoldNext_) return;
  foldings_.push_back(std::make_unique<Folding>(document));
  pool_.Submit(*foldings_.back());
}

MarkingAhead::Marking* MarkingAhead::Find(const IfcDocument& document) const {
  const auto found = std::find_if(markings_.begin(), markings_.end(), [&](const auto& marking) {
    return &marking->Document() == &document;
  });
  return found == markings_.end() ? nullptr : found->get();
}

bool MarkingAhead::Finish(const IfcDocument& document, ProgressCallback progress) {
  Marking& marking = *Find(document);
  pool_.Finish(marking);
  return marking.Ticks().SendTo(progress);
}

void MarkingAhead::FinishFolds() {
  for (const auto& folding : foldings_) pool_.Finish(*folding);
  foldings_.clear();
}

}  // namespace corvel
