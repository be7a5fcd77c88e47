// From the name of a class, as files write it, to a new object of it.
#pragma once

#include <cstdint>
#include <string_view>

#include "core/entity.h"
#include "core/memory_pool.h"

namespace corvel {

// The releases whose classes the engine knows.
enum class SchemaNamespace {
  IFC2X_FINAL,
  IFC2X2_PLATFORM,
  IFC2X2_FINAL,
  IFC2X3,
  IFC4,
  IFC4X1,
  IFC4X2,
  IFC4X3_ADD2,
  IFC4X4,
};

// Makes a blank object in `pool`.
using EntityCreator = IFC::IfcEntity* (*)(MemoryPool& pool);

struct FactoryRow {
  std::string_view name;  // "IFCWALL"; empty in a free slot
  EntityCreator create = nullptr;
};

// 64-bit FNV-1a over the bytes of the key.
constexpr std::uint64_t Fnv1a(std::string_view key) {
  std::uint64_t hash = 0xcbf29ce484222325ull;
  for (const char byte : key) {
    hash ^= static_cast<unsigned char>(byte);
    hash *= 0x100000001b3ull;
  }
  return hash;
}

// The classes of one release: a row for each entity (abstract ones too) and each typed value, none
// for a select. The rows stand in an open hash table laid out when the program was built: slot of a
// key is Fnv1a(key) & mask, then the next free one.
struct FactoryTable {
  const FactoryRow* slots = nullptr;
  std::uint32_t mask = 0;   // number of slots - 1
  std::uint32_t count = 0;  // number of rows

  // Exact, case-sensitive. Null: no such class.
  EntityCreator Find(std::string_view name) const {
    for (std::uint64_t i = Fnv1a(name) & mask;; i = (i + 1) & mask) {
      if (slots[i].name == name) return slots[i].create;
      if (slots[i].name.empty()) return nullptr;
    }
  }
};

// Defined by the schema layer: the only place where a release is chosen.
const FactoryTable& FactoriesOf(SchemaNamespace schema);
// "IFC2X3"
std::string_view NameOf(SchemaNamespace schema);

}  // namespace corvel
