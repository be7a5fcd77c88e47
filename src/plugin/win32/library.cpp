// The notifications of the system's loader.
#include <windows.h>

#include "platform/module.h"
#include "plugin/attachment.h"

#ifdef __GLIBCXX__
// Frees what the runtime of this library keeps for exceptions when there is no memory. It does so
// for checkers of leaks only, and a viewer that loads the library anew would lose it each time.
namespace __gnu_cxx {  // NOLINT(bugprone-reserved-identifier): the runtime's own
void __freeres() noexcept;
}
#endif

namespace {

void FreeRuntimeReserve() {
#ifdef __GLIBCXX__
  __gnu_cxx::__freeres();
#endif
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE /*library*/, DWORD reason, LPVOID processEnds) {
  if (reason == DLL_PROCESS_ATTACH) corvel::plugin::Attach(&platform::FindInMainProgram);
  if (reason == DLL_PROCESS_DETACH) {
    corvel::plugin::Detach();
    if (processEnds == nullptr) FreeRuntimeReserve();
  }
  return TRUE;
}
