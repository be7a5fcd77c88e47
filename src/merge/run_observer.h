// What a run tells to whoever wants to report on it. Nothing is gathered, and nothing costs a look
// at the models, where nobody observes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

#include "core/text.h"
#include "merge/document.h"
#include "merge/marking_steps.h"
#include "merge/run_model.h"

namespace corvel {

struct RunResult;

enum class RunStage : std::uint8_t {
  kRead,     // once for each input
  kCompare,  // schemas and units
  kChoose,   // once for each model that takes part
  kFold,
  kJoin,  // the steps of federation
  kLook,  // what the observer itself looks at
  kWrite
};

// What one step of federation did. All of it is borrowed for the call.
struct FederationNote {
  using Count = std::pair<const char*, std::size_t>;
  using Lines = std::pair<const char*, const std::vector<WideString>*>;

  const char* step = "";  // "contexts"
  std::initializer_list<Count> counts{};
  std::initializer_list<Lines> lists{};
  const IfcDocument* model = nullptr;  // that it is about; null: all of them
  bool foundWork = true;               // false: all was as it is wanted
};

// Called on the thread of the run, in the order of the run, but where it says otherwise. Documents
// are borrowed and live until the last call before RunEnds; nothing of them is to be changed.
class RunObserver {
 public:
  virtual ~RunObserver() = default;

  // The stage before is over. `path`: of the model that it is about; empty for all of them.
  virtual void StageBegins(RunStage /*stage*/, const WideString& /*path*/) {}
  // The input was opened, whether it could be read or not. The next one follows, in the order of
  // the run.
  virtual void ModelIsRead(const IfcDocument& /*document*/) {}
  // By the first one; who takes part is known from here on. Not for runs of one model.
  virtual void ModelsAreCompared(const std::vector<RunModel>& /*models*/) {}
  // By how far the host shows the model away from its own coordinates, in millimetres.
  virtual void ModelIsMoved(const IfcDocument& /*document*/,
                            const std::array<double, 3>& /*offsetMm*/) {}
  // What the host leaves out, by the numbers of the file.
  virtual void ObjectsAreLeftOut(const IfcDocument& /*document*/,
                                 const std::vector<LeftOutObject>& /*objects*/) {}
  // A step of the marking is done: the marker kDeleted tells what it has deleted so far.
  // `anyIsDeleted`: false where that is nothing. Told on the thread that marks the model, which may
  // be another one, with other models on other threads meanwhile.
  virtual void ModelIsMarked(const IfcDocument& /*document*/, MarkingStep /*step*/,
                             bool /*anyIsDeleted*/) {}
  // The turn of the model to be moved and marked has come in the order of the run. The three above
  // may be told ahead of it, and count from here on: a run that ends before knows nothing of them.
  virtual void ModelHasItsTurn(const IfcDocument& /*document*/) {}
  // The documents are folded into the first, and swept.
  virtual void ModelsAreFolded(const std::vector<IfcDocument*>& /*documents*/) {}
  virtual void StepIsDone(const FederationNote& /*note*/) {}
  // The model is what is going to be written.
  virtual void ModelIsDone(const std::vector<IfcDocument*>& /*documents*/) {}
  // Not told of a run that ends by an exception.
  virtual void RunEnds(const RunResult& /*result*/) {}
};

}  // namespace corvel
