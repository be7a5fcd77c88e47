#include "merge/chosen_objects.h"

#include <vector>

#include "merge/marker_pair.h"
#include "merge/project_offsets.h"

namespace corvel {

// The offset comes first: what carries it is kept with the objects.
Outcome KeepChosenObjects(IfcDocument& document, HostObject project, HostScene& scene,
                          SavingMode mode, bool deleteOpenings, RunObserver* observer) {
  if (!ApplyProjectOffsets(document, project, scene)) return Outcome::kFailed;
  ObjectSelection selection(scene);
  std::vector<HostObject> save;
  std::vector<HostObject> leftOut;
  selection.getObjectsID(mode, project, save, leftOut);
  std::vector<MarkerPair> savePairs = selection.ToMarkerPairs(save);
  std::vector<MarkerPair> deletePairs = selection.ToMarkerPairs(leftOut);
  TellChoice(observer, document, project, scene, mode, leftOut);
  constexpr int kOneFile = 1;
  if (!document.DeleteObjects(deletePairs, savePairs, false, deleteOpenings, kOneFile,
                              ListenerFor(observer, document))) {
    return Outcome::kCancelled;
  }
  document.mainContainer->FillMarkers();
  return Outcome::kComplete;
}

void TellChoice(RunObserver* observer, const IfcDocument& document, HostObject project,
                HostScene& scene, SavingMode mode, const std::vector<HostObject>& leftOut) {
  if (observer == nullptr) return;
  observer->ModelIsMoved(document, OffsetOf(project, scene));
  observer->ObjectsAreLeftOut(document, ObjectSelection(scene).Reasons(mode, leftOut));
}

MarkingListener ListenerFor(RunObserver* observer, const IfcDocument& document) {
  if (observer == nullptr) return {};
  return [observer, &document](MarkingStep step) { observer->ModelIsMarked(document, step); };
}

}  // namespace corvel
