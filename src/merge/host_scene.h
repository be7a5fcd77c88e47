// The scene of the host as the merge asks for it: which objects there are, to which project each
// belongs, and which of them are active, visible and selected.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/text.h"

namespace corvel {

// An object or a project of the host's scene.
using HostObject = std::uint64_t;

// Records of the host, filled by it. Their layouts are part of its interface; members named
// `reserved` are its own affair.
struct ObjectState {
  std::uint32_t visible;
  std::uint8_t active;
  std::uint8_t selected;
  std::uint8_t reserved[2];
};
static_assert(sizeof(ObjectState) == 8);

struct ObjectInfo {
  HostObject project;  // from get_object_info2, the rest from get_object_info
  std::uint64_t reserved[2];
  const char* className;
  std::uint32_t number;  // of the object in its file; 0: it has none
  std::uint32_t reserved2;
  HostObject parent;
};
static_assert(sizeof(ObjectInfo) == 48 && offsetof(ObjectInfo, className) == 24 &&
              offsetof(ObjectInfo, number) == 32 && offsetof(ObjectInfo, parent) == 40);

// By how much the host shows a project away from its own coordinates, in millimetres.
struct ProjectOffsetRecord {
  HostObject project;
  double x, y, z;
};
static_assert(sizeof(ProjectOffsetRecord) == 32);

// Two points of the scene, x, y and z in metres, which count by their sum only: models are moved
// back by it.
struct CoordinateCenters {
  std::array<double, 3> first{};
  std::array<double, 3> second{};
};

// Every call goes out to the host, which takes its time: who needs something for many objects asks
// once for all of them. Nothing throws but for lack of memory.
class HostScene {
 public:
  virtual ~HostScene() = default;

  // Of all projects, in the order of the host; empty where it does not tell.
  virtual std::vector<HostObject> AllObjects() = 0;
  // Those of a project, in the same order.
  virtual std::vector<HostObject> ObjectsOf(HostObject project);
  // One record for each object; zeroed where the host does not tell. Projects fills `project`,
  // Infos everything else.
  virtual std::vector<ObjectInfo> Projects(const std::vector<HostObject>& objects) = 0;
  virtual std::vector<ObjectInfo> Infos(const std::vector<HostObject>& objects) = 0;
  virtual std::vector<ObjectState> States(const std::vector<HostObject>& objects) = 0;
  // `visible`: a number of the host's as in ObjectState, of which 0 is hidden and 1 is shown.
  virtual void SetVisible(HostObject object, std::uint32_t visible) = 0;
  // Has the host draw the scene anew when it comes to it.
  virtual void Redraw() = 0;
  // The file behind a project, or `archive|entry`; empty for a project that is not loaded.
  virtual WideString ProjectPath(HostObject project) = 0;
  // One record for each project that the host moves; none where it does not tell.
  virtual std::vector<ProjectOffsetRecord> ProjectOffsets() = 0;
  // Zeros where the host does not tell.
  virtual CoordinateCenters Centers() = 0;
};

}  // namespace corvel
