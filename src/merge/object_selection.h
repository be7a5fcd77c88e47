// Which projects take part in a command, and which objects of them: what the host shows is what is
// merged. The link between the host's objects and a model is the object's number in its file.
#pragma once

#include <cstdint>
#include <set>
#include <vector>

#include "merge/host_scene.h"
#include "merge/marker_pair.h"
#include "merge/marking_steps.h"

namespace corvel {

// Which objects count: the active ones, those of them that are visible, or the selected ones.
enum class SavingMode : std::uint32_t { kMergeActive = 0, kMergeVisible = 1, kMergeSelected = 2 };

// Nothing is kept between calls: the scene is read at the moment of each, which costs a look at all
// objects of the host.
class ObjectSelection {
 public:
  // Borrowed.
  explicit ObjectSelection(HostScene& scene) : scene_(scene) {}

  // The projects with an object that counts. None for a value that is no mode.
  std::set<HostObject> ProjectsOf(SavingMode mode);

  // The objects of `project` (0: of all) that are to be saved and to be deleted; one may be in both
  // lists. With kMergeVisible the openings take the visibility of what they are in, and the host is
  // told. Throws std::runtime_error for a value that is no mode.
  void getObjectsID(SavingMode mode, HostObject project, std::vector<HostObject>& save,
                    std::vector<HostObject>& toDelete);
  // Those that count, in the order of the host.
  std::vector<HostObject> CollectKeptObjects(SavingMode mode, HostObject project);
  // Numbers of the file for objects of the host; what has none is left out. A parent that the host
  // does not know, or that has no number, is 0.
  std::vector<MarkerPair> ToMarkerPairs(const std::vector<HostObject>& objects);
  // Why objects are left out that the mode leaves out: one that is hidden and inactive is inactive.
  // What has no number is left out here too.
  std::vector<LeftOutObject> Reasons(SavingMode mode, const std::vector<HostObject>& leftOut);

 private:
  std::vector<HostObject> ObjectsOf(HostObject project);
  void SyncOpeningVisibility(const std::vector<HostObject>& objects,
                             const std::vector<ObjectInfo>& infos);

  HostScene& scene_;
};

}  // namespace corvel
