// Hints about objects that a walk will come to.
#pragma once

#include <cstddef>

#include "core/entity.h"
#include "platform/prefetch.h"

namespace corvel {

// So many objects ahead a walk says where it will be: as many as the processor waits for at once.
constexpr std::size_t kObjectsAhead = 16;

// The object will be read. Its attributes are in front of what all objects have.
inline void PrefetchObject(const IFC::IfcEntity* object) {
  constexpr std::ptrdiff_t kCacheLine = 64;
  const char* const at = reinterpret_cast<const char*>(object);
  platform::PrefetchToRead(at);
  platform::PrefetchToRead(at - kCacheLine);
  platform::PrefetchToRead(at - 2 * kCacheLine);
}

}  // namespace corvel
