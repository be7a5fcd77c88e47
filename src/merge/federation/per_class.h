// What is known of an object by its class alone, worked out once for each class.
//
// For steps that look at all objects of a model: most of them are of no interest, and that costs a
// few instructions, since neighbours are mostly of one class. Each serves one thread at a time, and
// different ones different threads.
#pragma once

#include <cstddef>
#include <string_view>
#include <typeinfo>
#include <unordered_map>

#include "core/entity.h"
#include "core/entity_cast.h"
#include "schema/attributes.h"
#include "step/carried/carried_objects.h"

namespace corvel {

template <class Value>
class PerClass {
 public:
  PerClass() = default;
  PerClass(PerClass&&) = delete;

  // `find` takes the facts of a class, null for one of no release, and is asked once for each. The
  // result is good as long as this.
  template <class Find>
  const Value& Of(const IFC::IfcEntity& entity, Find find) {
    const std::type_info* const dynamicClass = &typeid(entity);
    if (dynamicClass == lastClass_) [[likely]]
      return *lastValue_;
    return OfOtherClass(entity, dynamicClass, find);
  }

 private:
  // Apart, so that what is asked most is put in place wherever it is asked.
  template <class Find>
  const Value& OfOtherClass(const IFC::IfcEntity& entity, const std::type_info* dynamicClass,
                            Find find) {
    const std::ptrdiff_t* const known = memory_.Find(dynamicClass);
    if (known == nullptr) return OfNewClass(entity, dynamicClass, find);
    lastClass_ = dynamicClass;
    lastValue_ = reinterpret_cast<const Value*>(*known);
    return *lastValue_;
  }

  template <class Find>
  const Value& OfNewClass(const IFC::IfcEntity& entity, const std::type_info* dynamicClass,
                          Find find) {
    const ClassFacts* const facts = SearchFacts(entity);
    auto found = values_.find(facts);
    if (found == values_.end()) found = values_.emplace(facts, find(facts)).first;
    // Records of many classes are carried by objects of one.
    if (FindCarriedFacts(entity) == nullptr) {
      memory_.Remember(dynamicClass, reinterpret_cast<std::ptrdiff_t>(&found->second));
    }
    return found->second;
  }

  std::unordered_map<const ClassFacts*, Value> values_;
  ClassMemory memory_;  // the addresses of values
  const std::type_info* lastClass_ = nullptr;
  const Value* lastValue_ = nullptr;
};

// Whether a class is the one of this name or has it above it.
inline bool IsOrIsBelow(const ClassFacts* facts, std::string_view className) {
  for (; facts != nullptr; facts = facts->supertype) {
    if (facts->name == className) return true;
  }
  return false;
}

}  // namespace corvel
