#include "merge/chosen_objects.h"

#include <vector>

#include "merge/federation/place/map_places.h"
#include "merge/marker_pair.h"
#include "merge/project_offsets.h"

namespace corvel {

namespace {

// A single model is the first one, which no map places, and which stays where it is on its own.
bool Move(IfcDocument& document, HostObject project, HostScene& scene, bool placeByMap) {
  if (!placeByMap) return ApplyProjectOffsets(document, project, scene);
  const MapPlaces::Model model = {&document, project};
  return MapPlaces({model}, scene).Place(model, scene);
}

}  // namespace

// The offset comes first: what carries it is kept with the objects.
Outcome KeepChosenObjects(IfcDocument& document, HostObject project, HostScene& scene,
                          const ObjectChoice& choice, RunObserver* observer) {
  if (observer != nullptr) observer->ModelHasItsTurn(document);
  if (!Move(document, project, scene, choice.placeByMap)) return Outcome::kFailed;
  ObjectSelection selection(scene);
  std::vector<HostObject> save;
  std::vector<HostObject> leftOut;
  selection.getObjectsID(choice.mode, project, save, leftOut);
  std::vector<MarkerPair> savePairs = selection.ToMarkerPairs(save);
  std::vector<MarkerPair> deletePairs = selection.ToMarkerPairs(leftOut);
  TellChoice(observer, document, project, scene, choice.mode, leftOut);
  constexpr int kOneFile = 1;
  if (!document.DeleteObjects(deletePairs, savePairs, false, choice.deleteOpenings, kOneFile,
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
  return [observer, &document](MarkingStep step, bool anyIsDeleted) {
    observer->ModelIsMarked(document, step, anyIsDeleted);
  };
}

}  // namespace corvel
