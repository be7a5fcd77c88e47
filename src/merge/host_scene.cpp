#include "merge/host_scene.h"

namespace corvel {

std::vector<HostObject> HostScene::ObjectsOf(HostObject project) {
  std::vector<HostObject> objects = AllObjects();
  const std::vector<ObjectInfo> owners = Projects(objects);
  std::size_t kept = 0;
  for (std::size_t i = 0; i < objects.size(); ++i) {
    if (owners[i].project == project) objects[kept++] = objects[i];
  }
  objects.resize(kept);
  return objects;
}

}  // namespace corvel
