#include "platform/platform.h"

#include <utility>

namespace platform {

namespace {

Platform* replacement = nullptr;

}  // namespace

Platform& Get() { return replacement != nullptr ? *replacement : System(); }

Platform* Replace(Platform* other) { return std::exchange(replacement, other); }

}  // namespace platform
