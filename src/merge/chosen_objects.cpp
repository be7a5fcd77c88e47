#include "merge/chosen_objects.h"

#include <vector>

#include "merge/marker_pair.h"
#include "merge/project_offsets.h"

namespace corvel {

// The offset comes first: what carries it is kept with the objects.
Outcome KeepChosenObjects(IfcDocument& document, HostObject project, HostScene& scene,
                          SavingMode mode, bool deleteOpenings) {
  if (!ApplyProjectOffsets(document, project, scene)) return Outcome::kFailed;
  ObjectSelection selection(scene);
  std::vector<HostObject> save;
  std::vector<HostObject> leftOut;
  selection.getObjectsID(mode, project, save, leftOut);
  std::vector<MarkerPair> savePairs = selection.ToMarkerPairs(save);
  std::vector<MarkerPair> deletePairs = selection.ToMarkerPairs(leftOut);
  constexpr int kOneFile = 1;
  if (!document.DeleteObjects(deletePairs, savePairs, false, deleteOpenings, kOneFile)) {
    return Outcome::kCancelled;
  }
  document.mainContainer->FillMarkers();
  return Outcome::kComplete;
}

}  // namespace corvel
