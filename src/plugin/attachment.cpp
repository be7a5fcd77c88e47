#include "plugin/attachment.h"

#include <memory>

#include "plugin/plugin.h"
#include "step/log/ifc_log.h"

namespace corvel::plugin {

namespace {

bool bound = false;
// The system's notifications make and destroy it, in whatever order statics go.
Plugin* attached = nullptr;

}  // namespace

void Attach(HostLookup lookup) {
  if (!bound) {
    Host() = BindHostFunctions(lookup);
    bound = true;
  }
  if (attached == nullptr) attached = std::make_unique<Plugin>().release();
}

void Detach() {
  delete attached;
  attached = nullptr;
}

void ForgetBinding() {
  Host() = {};
  bound = false;
}

}  // namespace corvel::plugin
