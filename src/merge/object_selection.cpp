#include "merge/object_selection.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string_view>

namespace corvel {

namespace {

bool Counts(const ObjectState& state, SavingMode mode) {
  switch (mode) {
    case SavingMode::kMergeActive: return state.active != 0;
    case SavingMode::kMergeVisible: return state.active != 0 && state.visible == 1;
    case SavingMode::kMergeSelected: return state.selected != 0;
  }
  return false;
}

// Not quite the opposite: the host's visibility is a number, of which 1 is shown and 0 is hidden.
bool IsLeftOut(const ObjectState& state, SavingMode mode) {
  switch (mode) {
    case SavingMode::kMergeActive: return state.active == 0;
    case SavingMode::kMergeVisible: return state.visible == 0 || state.active == 0;
    case SavingMode::kMergeSelected: return state.selected == 0;
  }
  throw std::runtime_error("Wrong SavingMode in function getObjectsID");
}

std::vector<HostObject> LeftOut(const std::vector<HostObject>& objects,
                                const std::vector<ObjectState>& states, SavingMode mode) {
  if (objects.empty()) IsLeftOut({}, mode);  // what is no mode is found without an object too
  std::vector<HostObject> leftOut;
  for (std::size_t i = 0; i < objects.size(); ++i) {
    if (IsLeftOut(states[i], mode)) leftOut.push_back(objects[i]);
  }
  return leftOut;
}

bool IsOpening(const ObjectInfo& info) {
  return info.className != nullptr && std::string_view(info.className) == "IfcOpeningElement";
}

}  // namespace

std::set<HostObject> ObjectSelection::ProjectsOf(SavingMode mode) {
  const std::vector<HostObject> objects = scene_.AllObjects();
  const std::vector<ObjectInfo> owners = scene_.Projects(objects);
  const std::vector<ObjectState> states = scene_.States(objects);
  std::set<HostObject> projects;
  for (std::size_t i = 0; i < objects.size(); ++i) {
    if (Counts(states[i], mode)) projects.insert(owners[i].project);
  }
  return projects;
}

void ObjectSelection::getObjectsID(SavingMode mode, HostObject project,
                                   std::vector<HostObject>& save,
                                   std::vector<HostObject>& toDelete) {
  scene_.Redraw();
  const std::vector<HostObject> objects = ObjectsOf(project);
  const std::vector<ObjectState> states = scene_.States(objects);
  const std::vector<ObjectInfo> infos = scene_.Infos(objects);
  if (mode == SavingMode::kMergeVisible) SyncOpeningVisibility(objects, infos);
  // By the states from before the openings were set, and the kept ones by those from after: an
  // opening may be in both lists.
  toDelete = LeftOut(objects, states, mode);
  save = CollectKeptObjects(mode, project);
}

std::vector<HostObject> ObjectSelection::CollectKeptObjects(SavingMode mode, HostObject project) {
  const std::vector<HostObject> objects = ObjectsOf(project);
  const std::vector<ObjectState> states = scene_.States(objects);
  std::vector<HostObject> kept;
  for (std::size_t i = 0; i < objects.size(); ++i) {
    if (Counts(states[i], mode)) kept.push_back(objects[i]);
  }
  return kept;
}

std::vector<MarkerPair> ObjectSelection::ToMarkerPairs(const std::vector<HostObject>& objects) {
  if (objects.empty()) return {};
  std::vector<MarkerPair> pairs;
  std::vector<HostObject> parents;
  for (const ObjectInfo& info : scene_.Infos(objects)) {
    if (info.number == 0) continue;
    // The parent's number follows, asked for once for all.
    pairs.push_back({info.number, 0});
    parents.push_back(info.parent);
  }
  const std::vector<ObjectInfo> infos = scene_.Infos(parents);
  for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i].parentNumber = infos[i].number;
  return pairs;
}

std::vector<LeftOutObject> ObjectSelection::Reasons(SavingMode mode,
                                                    const std::vector<HostObject>& leftOut) {
  std::vector<LeftOutObject> reasons;
  if (leftOut.empty()) return reasons;
  const std::vector<ObjectInfo> infos = scene_.Infos(leftOut);
  const std::vector<ObjectState> states = scene_.States(leftOut);
  for (std::size_t i = 0; i < leftOut.size(); ++i) {
    if (infos[i].number == 0) continue;
    const bool isSelection = mode == SavingMode::kMergeSelected;
    const LeftOutReason reason = isSelection             ? LeftOutReason::kNotSelected
                                 : states[i].active == 0 ? LeftOutReason::kInactive
                                                         : LeftOutReason::kHidden;
    reasons.push_back({infos[i].number, reason});
  }
  return reasons;
}

std::vector<HostObject> ObjectSelection::ObjectsOf(HostObject project) {
  return project == 0 ? scene_.AllObjects() : scene_.ObjectsOf(project);
}

// A user does not see an opening, only that what it is in has a hole. An opening in something that
// the host does not know stays as it is.
void ObjectSelection::SyncOpeningVisibility(const std::vector<HostObject>& objects,
                                            const std::vector<ObjectInfo>& infos) {
  std::vector<HostObject> openings;
  std::vector<HostObject> parents;
  for (std::size_t i = 0; i < objects.size(); ++i) {
    if (!IsOpening(infos[i])) continue;
    openings.push_back(objects[i]);
    parents.push_back(infos[i].parent);
  }
  if (openings.empty()) return;
  const std::vector<ObjectState> states = scene_.States(parents);
  std::vector<HostObject> known = scene_.AllObjects();
  std::sort(known.begin(), known.end());
  for (std::size_t i = 0; i < openings.size(); ++i) {
    if (!std::binary_search(known.begin(), known.end(), parents[i])) continue;
    scene_.SetVisible(openings[i], states[i].visible);
  }
}

}  // namespace corvel
