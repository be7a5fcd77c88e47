// The functions of the viewer that the plug-in does not call. They are there all the same, for it
// looks them up.
#include <cstdint>

#include "recorded_call.h"

#ifdef _WIN32
#define CORVEL_EXPORT extern "C" __declspec(dllexport)
#else
#define CORVEL_EXPORT extern "C" __attribute__((visibility("default")))
#endif

#define CORVEL_OTHER_HOST_FUNCTION(name)  \
  CORVEL_EXPORT std::uint64_t name();     \
  CORVEL_EXPORT std::uint64_t name() {    \
    corvel::test_host::RecordCall(#name); \
    return 0;                             \
  }
#include "other_host_functions.inc"
