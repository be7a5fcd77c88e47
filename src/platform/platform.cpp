#include "platform/platform.h"

#include <utility>

namespace platform {

namespace {

Platform* inPlace = nullptr;  // null: the system's own

}  // namespace

Platform& Get() { return inPlace != nullptr ? *inPlace : System(); }

Platform* Replace(Platform* replacement) { return std::exchange(inPlace, replacement); }

}  // namespace platform
