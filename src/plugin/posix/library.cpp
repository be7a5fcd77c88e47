// The notifications of the system's loader.
#include "platform/module.h"
#include "plugin/attachment.h"

namespace {

__attribute__((constructor)) void OnProcessAttach() {
  corvel::plugin::Attach(&platform::FindInMainProgram);
}

__attribute__((destructor)) void OnProcessDetach() { corvel::plugin::Detach(); }

}  // namespace
