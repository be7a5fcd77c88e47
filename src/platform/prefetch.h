// Hints to the processor.
#pragma once

namespace platform {

// The line of the cache at this address, which need not be one of the program's, will be written
// soon: what another core has in its cache is on its way here by then. Means nothing to compilers
// without such a hint.
inline void PrefetchToWrite([[maybe_unused]] const void* address) {
#ifdef __GNUC__
  __builtin_prefetch(address, 1);
#endif
}

}  // namespace platform
