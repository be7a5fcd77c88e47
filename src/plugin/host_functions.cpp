#include "plugin/host_functions.h"

#include <cstring>

namespace corvel::plugin {

const std::array<const char*, kHostNameCount> kHostNames = {
#define CORVEL_HOST_NAME(name) #name,
#include "plugin/host_names.inc"
#undef CORVEL_HOST_NAME
};

namespace {

template <class Function>
void Keep(const char* name, HostAddress address, const char* wanted, Function*& function) {
  if (std::strcmp(name, wanted) == 0) function = reinterpret_cast<Function*>(address);
}

void Keep(const char* name, HostAddress address, HostFunctions& functions) {
#define CORVEL_HOST_FUNCTION(Result, function, parameters) \
  Keep(name, address, #function, functions.function);
#include "plugin/host_functions.inc"
#undef CORVEL_HOST_FUNCTION
}

}  // namespace

HostFunctions BindHostFunctions(HostLookup lookup) {
  HostFunctions functions;
  for (std::size_t i = 0; i < kHostNameCount; ++i) {
    const char* const name = kHostNames[(i + kLateHostNames) % kHostNameCount];
    Keep(name, lookup(name), functions);
  }
  return functions;
}

HostFunctions& Host() {
  static HostFunctions functions;
  return functions;
}

HostHandle& TheHostHandle() {
  static HostHandle handle = 0;
  return handle;
}

WideString TextOrEmpty(const char16_t* text) {
  return text == nullptr ? WideString() : WideString(text);
}

}  // namespace corvel::plugin
