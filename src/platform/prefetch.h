// Hints to the processor.
#pragma once

namespace platform {

// The line of the cache at this address, which need not be one of the program's, will be read soon.
// Means nothing to compilers without such a hint.
inline void PrefetchToRead([[maybe_unused]] const void* address) {
#ifdef __GNUC__
  __builtin_prefetch(address);
#endif
}

// The line of the cache at this address, which need not be one of the program's, will be written
// soon: what another core has in its cache is on its way here by then. Likewise.
inline void PrefetchToWrite([[maybe_unused]] const void* address) {
#ifdef __GNUC__
  __builtin_prefetch(address, 1);
#endif
}

}  // namespace platform
