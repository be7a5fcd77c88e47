#include "core/entity.h"

#include "platform/platform.h"

namespace IFC {

void IfcEntity::SetMarker(std::uint32_t value) {
  if (value == kUnfiled) {
    platform::Get().ShowMessageBox(u"Logfile error", u"SetMarker error: Marker has to be > 0",
                                   platform::Buttons::kOk, platform::Icon::kError);
    return;
  }
  marker = value;
}

}  // namespace IFC
