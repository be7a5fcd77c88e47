// From the name of a class, as files write it, to a new object of it.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "core/entity.h"
#include "core/memory_pool.h"
#include "core/open_table.h"

namespace corvel {

struct ReleaseClasses;

// The releases whose classes the engine knows.
enum class SchemaNamespace {
#define CORVEL_RELEASE(name) name,
#include "step/releases.inc"
#undef CORVEL_RELEASE
};

// Makes a blank object in `pool`, which owns it: marker 0, filed nowhere, every attribute at its
// default. Throws std::bad_alloc.
using EntityCreator = IFC::IfcEntity* (*)(MemoryPool& pool);

struct FactoryRow {
  std::string_view name;  // "IFCWALL"; empty in a free slot
  EntityCreator create = nullptr;

  bool IsFree() const { return name.empty(); }
};

// Where a class name is looked for: its length and two words of it, mixed. Names differ in the
// letters behind "IFC" and in their last ones. The generator of the tables computes the same.
inline std::uint64_t HashOfName(std::string_view name) {
  static_assert(std::endian::native == std::endian::little, "the words are those of the generator");
  constexpr std::size_t kWord = sizeof(std::uint64_t);
  constexpr std::size_t kPrefix = 3;
  constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15ull;
  std::uint64_t first = 0;
  std::uint64_t last = 0;
  if (name.size() < kWord) {
    std::memcpy(&last, name.data(), name.size());
  } else {
    std::memcpy(&first, name.data() + std::min(kPrefix, name.size() - kWord), kWord);
    std::memcpy(&last, name.data() + name.size() - kWord, kWord);
  }
  const std::uint64_t mixed = (first + name.size()) * kMultiplier;
  return ((mixed ^ (mixed >> 32) ^ last) * kMultiplier) >> 32;
}

// The classes of one release: a row for each entity (abstract ones too) and each typed value, none
// for a select. The rows stand in an open hash table laid out when the program was built: slot of a
// key is HashOfName(key) & mask, then the next free one.
struct FactoryTable {
  const FactoryRow* slots = nullptr;
  std::uint32_t mask = 0;   // number of slots - 1
  std::uint32_t count = 0;  // number of rows
  // What the same classes are, attribute for attribute (step/class_facts.h).
  const ReleaseClasses* classes = nullptr;

  // Exact, case-sensitive, in constant time. Null: no such class. Rows live as long as the program,
  // so that a row may stand for its class.
  const FactoryRow* FindRow(std::string_view name) const {
    const FactoryRow& row = SlotOf(slots, mask, HashOfName(name),
                                   [=](const FactoryRow& known) { return known.name == name; });
    return row.IsFree() ? nullptr : &row;
  }
  EntityCreator Find(std::string_view name) const {
    const FactoryRow* const row = FindRow(name);
    return row == nullptr ? nullptr : row->create;
  }
};

}  // namespace corvel
