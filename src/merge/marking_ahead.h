// Models are marked by several threads at once, and whoever watches sees one after the other.
#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "core/reporting.h"
#include "merge/document.h"
#include "merge/marker_pair.h"
#include "merge/marking_steps.h"
#include "platform/worker_pool.h"

namespace corvel {

// What is to be marked in a model.
struct MarkingTask {
  std::vector<MarkerPair> deletePairs;
  std::vector<MarkerPair> savePairs;
  bool deleteOpenings = false;
  int fileCount = 1;
  MarkingListener listener{};  // called on the thread that marks
};

// Does the marking of a model, and what a fold asks of it first, on whichever thread is free. The
// models share nothing, so that each comes out as it would alone; ticks wait until they are asked
// for. Used by the thread of the run. Memory: what a marking needs, once for each thread.
class MarkingAhead {
 public:
  // `threads` in all, that of the caller among them. Unless `isFoldNext`, something may change
  // GUIDs between marking and fold: the latter then does everything itself.
  MarkingAhead(unsigned threads, bool isFoldNext);
  // Whatever is not done ends within a tick. All threads have ended then.
  ~MarkingAhead();
  MarkingAhead(const MarkingAhead&) = delete;
  MarkingAhead& operator=(const MarkingAhead&) = delete;

  // Begins with a model, which is borrowed: nobody else touches it until Finish, or the end of
  // this. No model twice.
  void Begin(IfcDocument& document, MarkingTask task);
  // With a model that has been marked: what a fold asks of it first is done meanwhile.
  void BeginFold(IfcDocument& document);
  // Whether Begin was told of the model.
  bool Has(const IfcDocument& document) const { return Find(document) != nullptr; }
  // The model is marked; its ticks go to `progress`. False as for IfcDocument::DeleteObjects.
  // Throws what the marking threw.
  bool Finish(const IfcDocument& document, ProgressCallback progress);
  // All models that this was told of are the caller's again.
  void FinishFolds();

 private:
  class Marking;
  class Folding;

  Marking* Find(const IfcDocument& document) const;

  bool isFoldNext_;
  std::atomic<bool> ends_ = false;
  std::vector<std::unique_ptr<Marking>> markings_;
  std::vector<std::unique_ptr<Folding>> foldings_;
  platform::WorkerPool pool_;  // gone first
};

}  // namespace corvel
