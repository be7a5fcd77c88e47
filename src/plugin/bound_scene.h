// The viewer's scene, asked through its functions.
#pragma once

#include <vector>

#include "merge/host_scene.h"

namespace corvel::plugin {

// Keeps nothing itself. A function that the viewer lacks gives an empty answer.
class BoundScene final : public HostScene {
 public:
  std::vector<HostObject> AllObjects() override;
  std::vector<HostObject> ObjectsOf(HostObject project) override;
  std::vector<ObjectInfo> Projects(const std::vector<HostObject>& objects) override;
  std::vector<ObjectInfo> Infos(const std::vector<HostObject>& objects) override;
  std::vector<ObjectState> States(const std::vector<HostObject>& objects) override;
  void SetVisible(HostObject object, std::uint32_t visible) override;
  void Redraw() override;
  WideString ProjectPath(HostObject project) override;
  std::vector<ProjectOffsetRecord> ProjectOffsets() override;
  CoordinateCenters Centers() override;
};

}  // namespace corvel::plugin
