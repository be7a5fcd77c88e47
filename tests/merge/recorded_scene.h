// A host's scene for tests: what is in it is set by hand, what is asked of it is written down.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "merge/host_scene.h"

namespace corvel::test {

// An object that is active and visible, not selected, and of project 1.
struct SceneObject {
  HostObject handle = 0;
  HostObject project = 1;
  std::uint32_t number = 0;
  const char* className = "IfcWall";
  HostObject parent = 0;
  bool active = true;
  std::uint32_t visible = 1;
  bool selected = false;
};

class RecordedScene : public HostScene {
 public:
  void Add(SceneObject object) { objects_.push_back(object); }
  // Throws for a handle that is not there.
  const SceneObject& Of(HostObject handle) const {
    const SceneObject* const object = Find(handle);
    if (object == nullptr) throw std::out_of_range("no such object");
    return *object;
  }

  std::vector<ProjectOffsetRecord> offsets;
  CoordinateCenters centers;
  std::map<HostObject, WideString> paths;
  std::vector<std::string> calls;

  std::vector<HostObject> AllObjects() override {
    calls.emplace_back("all objects");
    std::vector<HostObject> handles;
    for (const SceneObject& object : objects_) handles.push_back(object.handle);
    return handles;
  }
  std::vector<ObjectInfo> Projects(const std::vector<HostObject>& handles) override {
    calls.emplace_back("projects");
    return Records<ObjectInfo>(handles, [](const SceneObject& object, ObjectInfo& info) {
      info.project = object.project;
    });
  }
  std::vector<ObjectInfo> Infos(const std::vector<HostObject>& handles) override {
    calls.emplace_back("infos");
    return Records<ObjectInfo>(handles, [](const SceneObject& object, ObjectInfo& info) {
      info.className = object.className;
      info.number = object.number;
      info.parent = object.parent;
    });
  }
  std::vector<ObjectState> States(const std::vector<HostObject>& handles) override {
    calls.emplace_back("states");
    return Records<ObjectState>(handles, [](const SceneObject& object, ObjectState& state) {
      state.visible = object.visible;
      state.active = object.active ? 1 : 0;
      state.selected = object.selected ? 1 : 0;
    });
  }
  void SetVisible(HostObject handle, std::uint32_t visible) override {
    calls.emplace_back("set visible");
    for (SceneObject& object : objects_) {
      if (object.handle == handle) object.visible = visible;
    }
  }
  void Redraw() override { calls.emplace_back("redraw"); }
  std::vector<ProjectOffsetRecord> ProjectOffsets() override { return offsets; }
  CoordinateCenters Centers() override { return centers; }
  WideString ProjectPath(HostObject project) override { return paths[project]; }

 private:
  const SceneObject* Find(HostObject handle) const {
    for (const SceneObject& object : objects_) {
      if (object.handle == handle) return &object;
    }
    return nullptr;
  }

  template <class Record, class Fill>
  std::vector<Record> Records(const std::vector<HostObject>& handles, const Fill& fill) const {
    std::vector<Record> records(handles.size());
    for (std::size_t i = 0; i < handles.size(); ++i) {
      if (const SceneObject* const object = Find(handles[i])) fill(*object, records[i]);
    }
    return records;
  }

  std::vector<SceneObject> objects_;
};

}  // namespace corvel::test
