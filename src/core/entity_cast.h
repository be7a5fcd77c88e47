// dynamic_cast that remembers.
//
// A cast across the virtual bases of the schema classes costs about 150 ns. Its outcome depends on
// the dynamic class of the object alone, so each target class keeps a table from dynamic class to
// offset, filled by one real dynamic_cast per class. Semantics and results are those of
// dynamic_cast; like everything in the engine it serves one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <typeinfo>

#include "core/entity.h"
#include "core/open_table.h"

namespace corvel {

// One number for each dynamic class that has been met: an offset, or any other fact that depends on
// the class alone.
class ClassMemory {
 public:
  static constexpr std::ptrdiff_t kNotOfThisClass = std::numeric_limits<std::ptrdiff_t>::min();

  // Null when the class has not been met yet. Void after the next Remember.
  const std::ptrdiff_t* Find(const std::type_info* dynamicClass) const {
    const Entry* const entry = entries_.Find(HashOf(dynamicClass), [=](const Entry& known) {
      return known.dynamicClass == dynamicClass;
    });
    return entry == nullptr ? nullptr : &entry->offset;
  }
  // For a class that Find does not know.
  void Remember(const std::type_info* dynamicClass, std::ptrdiff_t offset);

 private:
  struct Entry {
    const std::type_info* dynamicClass = nullptr;
    std::ptrdiff_t offset = 0;

    bool IsFree() const { return dynamicClass == nullptr; }
    std::size_t Hash() const { return HashOf(dynamicClass); }
  };
  // By address: a class whose type_info exists twice in a process has two entries, which say the
  // same. The lowest bits are those of an aligned object, the upper half of the product is mixed.
  static std::size_t HashOf(const std::type_info* dynamicClass) {
    const auto address = reinterpret_cast<std::uintptr_t>(dynamicClass);
    return static_cast<std::size_t>((address >> 4) * 0x9E3779B97F4A7C15ull >> 32);
  }

  OpenTable<Entry, 8> entries_;
};

// As dynamic_cast<Target*>(entity), null included.
template <class Target>
Target* EntityCast(IFC::IfcEntity* entity) {
  if (entity == nullptr) return nullptr;
  static ClassMemory memory;
  const std::type_info* const dynamicClass = &typeid(*entity);
  if (const std::ptrdiff_t* const known = memory.Find(dynamicClass)) [[likely]] {
    if (*known == ClassMemory::kNotOfThisClass) return nullptr;
    return reinterpret_cast<Target*>(reinterpret_cast<char*>(entity) + *known);
  }
  auto* const target = dynamic_cast<Target*>(entity);
  const std::ptrdiff_t offset =
      target == nullptr ? ClassMemory::kNotOfThisClass
                        : reinterpret_cast<char*>(target) - reinterpret_cast<char*>(entity);
  memory.Remember(dynamicClass, offset);
  return target;
}

// The class that an attribute admits, as the readers see it: an object that answers "is this entity
// one of yours?" without the reader knowing the class. One per class that some attribute names.
class ClassTest {
 public:
  using SlowTest = bool (*)(const IFC::IfcEntity*);
  // `slowTest` is asked once per dynamic class, and never about null.
  explicit ClassTest(SlowTest slowTest) : slowTest_(slowTest) {}

  // False for null.
  bool Admits(const IFC::IfcEntity* entity) {
    if (entity == nullptr) return false;
    const std::type_info* const dynamicClass = &typeid(*entity);
    if (dynamicClass == lastClass_) [[likely]]
      return lastAnswer_;
    return AdmitsAnother(entity, dynamicClass);
  }
  // The same for any thread, and not of null: remembers nothing, at the cost of a dynamic_cast.
  bool AdmitsSlowly(const IFC::IfcEntity* entity) const { return slowTest_(entity); }

 private:
  bool AdmitsAnother(const IFC::IfcEntity* entity, const std::type_info* dynamicClass);

  SlowTest slowTest_;
  // Neighbours in a list are mostly of one class.
  const std::type_info* lastClass_ = nullptr;
  bool lastAnswer_ = false;
  ClassMemory memory_;
};

// `ClassTest isWall(IsOfClass<IfcWall>);`
template <class Target>
bool IsOfClass(const IFC::IfcEntity* entity) {
  return dynamic_cast<const Target*>(entity) != nullptr;
}

}  // namespace corvel
