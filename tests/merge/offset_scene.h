// A host that moves projects, and the records of small placed models.
#pragma once

#include <string>

#include "core/main_container.h"
#include "merge/document.h"
#include "recorded_scene.h"
#include "support/written_text.h"

namespace corvel::test {

inline constexpr HostObject kMovedProject = 42;

class OffsetScene final : public RecordedScene {
 public:
  OffsetScene() = default;
  // One that moves kMovedProject, in millimetres.
  OffsetScene(double x, double y, double z) { offsets = {{kMovedProject, x, y, z}}; }
};

// "#3=IFCLOCALPLACEMENT($,#2);"
inline std::string Placement(unsigned number, const std::string& relativeTo, unsigned axes) {
  return "#" + std::to_string(number) + "=IFCLOCALPLACEMENT(" + relativeTo + ",#" +
         std::to_string(axes) + ");\n";
}
// "#4=IFCWALL('g4',*,$,$,$,#3,$,$);" as IFC2X3 writes it, where the owner history is mandatory.
inline std::string Wall(unsigned number, const std::string& placement) {
  const std::string text = std::to_string(number);
  return "#" + text + "=IFCWALL('g" + text + "',*,$,$,$," + placement + ",$,$);\n";
}

// The model as it would be written now: every entity under the number that it is filed under.
inline std::string WrittenOut(IfcDocument& document) {
  document.mainContainer->FillMarkers();
  return LinesOf(*document.mainContainer);
}

}  // namespace corvel::test
