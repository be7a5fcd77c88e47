// What the headless viewer has loaded, as the plug-in asks for it: projects, objects, their states,
// and where the projects are shown.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/text.h"
#include "host/model_scene.h"
#include "merge/host_scene.h"

namespace corvel::host {

using Point = std::array<double, 3>;  // x, y, z

struct ObjectFlags {
  bool active = true;
  bool visible = true;
  bool selected = false;
  bool operator==(const ObjectFlags&) const = default;
};

struct LoadedModel {
  WideString path;
  ModelScene scene;
  std::vector<ObjectFlags> flags;  // one for each object of the scene
  Point offsetMm{};
};

// Handles: projects count from 1 in the order of the models; the object at index i of a scene has
// its project in the upper half and i + 1 in the lower. A model without any object has a nameless
// one without a number in the place of its IfcProject, so that its file takes part and whoever
// reads it tells what is wrong.
class ViewerScene {
 public:
  ViewerScene() = default;
  ViewerScene(std::vector<LoadedModel> models, const Point& centerMetres);

  std::vector<HostObject> Projects() const;
  // In the order of the models.
  const std::vector<HostObject>& Objects() const { return objects_; }
  // Those of one project; none for a project that is not there.
  std::vector<HostObject> ObjectsOf(HostObject project) const;
  // 0 for an object that is not there.
  HostObject ProjectOf(HostObject object) const;
  // Zeroes, and a class without a name, for an object that is not there.
  ObjectInfo InfoOf(HostObject object) const;
  // An IfcProject is active when any other object of its file is, visible when any is both that and
  // active, and selected when any is; in a file with nothing else it has a state of its own.
  ObjectState StateOf(HostObject object) const;
  void SetVisible(HostObject object, bool visible);
  // True when an object of any model is active.
  bool AnythingIsActive() const;
  // The same of selected objects.
  bool AnythingIsSelected() const;

  // Empty for a project that is not there.
  const WideString& PathOf(HostObject project) const;
  std::vector<ProjectOffsetRecord> Offsets() const;
  const Point& CenterMetres() const { return centerMetres_; }

 private:
  struct Entry {
    LoadedModel model;
    bool hasProjectsOnly = false;
    mutable std::optional<ObjectFlags> projectFlags;  // of all its projects, once asked for
  };

  const Entry* EntryOf(HostObject object) const;
  static std::optional<std::size_t> IndexOf(const Entry& entry, HostObject object);
  static ObjectFlags FlagsOf(const Entry& entry, HostObject object);

  std::vector<Entry> entries_;
  std::vector<HostObject> objects_;  // a merge asks for them again and again
  Point centerMetres_{};
};

}  // namespace corvel::host
