// An attribute by name for steps that ask very many objects for it: it is looked for once in each
// class.
#pragma once

#include <string_view>

#include "core/list.h"
#include "merge/federation/per_class.h"
#include "schema/attributes.h"
#include "step/class_facts.h"

namespace corvel {

// As the functions of attribute_values.h, of the attribute of that name.
class NamedAttribute {
 public:
  // "Name", which lives as long.
  explicit NamedAttribute(std::string_view name) : name_(name) {}

  // Null where the class has no such attribute, where it has no value, and where it holds another
  // type.
  template <class T>
  const T* ValueIn(const IFC::IfcEntity& entity) {
    const AttributeFacts* const facts = FactsIn(entity);
    return facts == nullptr ? nullptr : ConstAttribute(entity, *facts).As<T>();
  }
  IFC::IfcEntity* ReferenceIn(const IFC::IfcEntity& entity) {
    auto* const* const reference = ValueIn<IFC::IfcEntity*>(entity);
    return reference == nullptr ? nullptr : *reference;
  }
  const EntityList* ReferencesIn(const IFC::IfcEntity& entity) {
    return ValueIn<EntityList>(entity);
  }
  const List<double>* RealsIn(const IFC::IfcEntity& entity) {
    return ValueIn<List<double>>(entity);
  }
  double RealIn(const IFC::IfcEntity& entity) {
    const auto* const value = ValueIn<double>(entity);
    return value == nullptr ? 0.0 : *value;
  }
  bool IsIn(const IFC::IfcEntity& entity) { return FactsIn(entity) != nullptr; }

 private:
  const AttributeFacts* FactsIn(const IFC::IfcEntity& entity) {
    return facts_.Of(entity, [this](const ClassFacts* facts) -> const AttributeFacts* {
      return facts == nullptr ? nullptr : facts->FindAttribute(name_);
    });
  }

  std::string_view name_;
  PerClass<const AttributeFacts*> facts_;
};

}  // namespace corvel
