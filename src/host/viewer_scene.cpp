#include "host/viewer_scene.h"

#include <algorithm>
#include <utility>

namespace corvel::host {

namespace {

constexpr unsigned kProjectShift = 32;

HostObject HandleOf(HostObject project, std::size_t index) {
  return project << kProjectShift | (index + 1);
}

HostObject ProjectPartOf(HostObject object) { return object >> kProjectShift; }

bool HasProjectsOnly(const ModelScene& scene) {
  return std::all_of(scene.objects.begin(), scene.objects.end(),
                     [](const SceneObject& object) { return object.isProject; });
}

// The state of the projects of a model that has other objects.
ObjectFlags FlagsOfProjects(const LoadedModel& model) {
  ObjectFlags any{false, false, false};
  for (std::size_t i = 0; i < model.flags.size(); ++i) {
    if (model.scene.objects[i].isProject) continue;
    const ObjectFlags& flags = model.flags[i];
    any.active = any.active || flags.active;
    any.visible = any.visible || (flags.active && flags.visible);
    any.selected = any.selected || flags.selected;
  }
  return any;
}

}  // namespace

ViewerScene::ViewerScene(std::vector<LoadedModel> models, const Point& centerMetres)
    : centerMetres_(centerMetres) {
  entries_.reserve(models.size());
  for (LoadedModel& model : models) {
    model.flags.resize(model.scene.objects.size());
    const bool hasProjectsOnly = HasProjectsOnly(model.scene);
    // One that stands for a model without any.
    const std::size_t count = std::max<std::size_t>(model.scene.objects.size(), 1);
    entries_.push_back({std::move(model), hasProjectsOnly, {}});
    for (std::size_t i = 0; i < count; ++i) objects_.push_back(HandleOf(entries_.size(), i));
  }
}

const ViewerScene::Entry* ViewerScene::EntryOf(HostObject object) const {
  const HostObject project = ProjectPartOf(object);
  return project < 1 || project > entries_.size() ? nullptr : &entries_[project - 1];
}

// Nothing for the object that stands for a model without any.
std::optional<std::size_t> ViewerScene::IndexOf(const Entry& entry, HostObject object) {
  const std::size_t index = (object & 0xFFFFFFFFu) - std::size_t{1};
  if (index < entry.model.scene.objects.size()) return index;
  return {};
}

std::vector<HostObject> ViewerScene::Projects() const {
  std::vector<HostObject> projects;
  for (HostObject project = 1; project <= entries_.size(); ++project) projects.push_back(project);
  return projects;
}

std::vector<HostObject> ViewerScene::ObjectsOf(HostObject project) const {
  const auto first = std::lower_bound(objects_.begin(), objects_.end(), HandleOf(project, 0));
  const auto end = std::lower_bound(first, objects_.end(), HandleOf(project + 1, 0));
  return {first, end};
}

HostObject ViewerScene::ProjectOf(HostObject object) const {
  return EntryOf(object) == nullptr ? 0 : ProjectPartOf(object);
}

ObjectInfo ViewerScene::InfoOf(HostObject object) const {
  ObjectInfo info{};
  info.className = "";
  const Entry* const entry = EntryOf(object);
  if (entry == nullptr) return info;
  info.project = ProjectPartOf(object);
  const ModelScene& scene = entry->model.scene;
  if (const auto index = IndexOf(*entry, object)) {
    const SceneObject& found = scene.objects[*index];
    info.className = scene.ClassOf(found).c_str();
    info.number = found.number;
    if (found.parent != kNoObject) info.parent = HandleOf(info.project, found.parent);
  }
  return info;
}

ObjectFlags ViewerScene::FlagsOf(const Entry& entry, HostObject object) {
  const auto index = IndexOf(entry, object);
  if (!index) return {};
  const bool ofItsOwn = entry.hasProjectsOnly || !entry.model.scene.objects[*index].isProject;
  if (ofItsOwn) return entry.model.flags[*index];
  if (!entry.projectFlags) entry.projectFlags = FlagsOfProjects(entry.model);
  return *entry.projectFlags;
}

ObjectState ViewerScene::StateOf(HostObject object) const {
  ObjectState state{};
  if (const Entry* const entry = EntryOf(object)) {
    const ObjectFlags flags = FlagsOf(*entry, object);
    state.visible = flags.visible ? 1 : 0;
    state.active = flags.active ? 1 : 0;
    state.selected = flags.selected ? 1 : 0;
  }
  return state;
}

void ViewerScene::SetVisible(HostObject object, bool visible) {
  const Entry* const found = EntryOf(object);
  if (found == nullptr) return;
  Entry& entry = entries_[ProjectPartOf(object) - 1];
  const auto index = IndexOf(entry, object);
  if (!index) return;
  entry.model.flags[*index].visible = visible;
  entry.projectFlags.reset();
}

bool ViewerScene::AnythingIsActive() const {
  for (const HostObject object : Objects()) {
    if (StateOf(object).active != 0) return true;
  }
  return false;
}

bool ViewerScene::AnythingIsSelected() const {
  for (const HostObject object : Objects()) {
    if (StateOf(object).selected != 0) return true;
  }
  return false;
}

const WideString& ViewerScene::PathOf(HostObject project) const {
  static const WideString none;
  return project < 1 || project > entries_.size() ? none : entries_[project - 1].model.path;
}

std::vector<ProjectOffsetRecord> ViewerScene::Offsets() const {
  std::vector<ProjectOffsetRecord> records;
  for (const HostObject project : Projects()) {
    const Point& offset = entries_[project - 1].model.offsetMm;
    records.push_back({project, offset[0], offset[1], offset[2]});
  }
  return records;
}

}  // namespace corvel::host
