#include "plugin/bound_scene.h"

#include "plugin/host_functions.h"
#include "plugin/plugin.h"

namespace corvel::plugin {

namespace {

template <class Record>
std::vector<Record> Ask(void (*function)(HostHandle, const HostObject*, Record*, std::uint32_t),
                        const std::vector<HostObject>& objects) {
  // Zeroed: where the viewer does not tell, this is the answer.
  std::vector<Record> records(objects.size());
  if (!objects.empty()) {
    CallHost(function, objects.data(), records.data(), static_cast<std::uint32_t>(objects.size()));
  }
  return records;
}

}  // namespace

std::vector<HostObject> BoundScene::AllObjects() {
  return ListOf<HostObject>([](HostObject* list, std::uint32_t capacity) {
    return CallHost(Host().get_all_objects, list, capacity);
  });
}

std::vector<HostObject> BoundScene::ObjectsOf(HostObject project) {
  const Plugin* const plugin = Plugin::Instance();
  if (plugin != nullptr && plugin->Listener().objectsOf) {
    return plugin->Listener().objectsOf(project);
  }
  return HostScene::ObjectsOf(project);
}

std::vector<ObjectInfo> BoundScene::Projects(const std::vector<HostObject>& objects) {
  return Ask(Host().get_object_info2, objects);
}

std::vector<ObjectInfo> BoundScene::Infos(const std::vector<HostObject>& objects) {
  return Ask(Host().get_object_info, objects);
}

std::vector<ObjectState> BoundScene::States(const std::vector<HostObject>& objects) {
  return Ask(Host().get_object_state, objects);
}

void BoundScene::SetVisible(HostObject object, std::uint32_t visible) {
  CallHost(Host().set_visible, object, visible);
}

void BoundScene::Redraw() { CallHost(Host().invalidate); }

WideString BoundScene::ProjectPath(HostObject project) {
  const Plugin* const plugin = Plugin::Instance();
  return plugin == nullptr ? WideString() : plugin->ProjectPath(project);
}

std::vector<ProjectOffsetRecord> BoundScene::ProjectOffsets() {
  return ListOf<ProjectOffsetRecord>([](ProjectOffsetRecord* list, std::uint32_t capacity) {
    return CallHost(Host().get_projects_offsets, list, capacity);
  });
}

CoordinateCenters BoundScene::Centers() {
  CoordinateCenters centers;
  CallHost(Host().get_project_and_coordinate_center, centers.first.data(), centers.second.data());
  return centers;
}

}  // namespace corvel::plugin
