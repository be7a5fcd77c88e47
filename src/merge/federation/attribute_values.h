// Single attributes by name, for steps that look at few objects. Whoever looks at all objects of a
// model takes AttributesOf (schema/attributes.h).
#pragma once

#include <string_view>

#include "core/list.h"
#include "core/text.h"
#include "merge/federation/per_class.h"
#include "schema/attributes.h"
#include "step/class_facts.h"

namespace corvel {

// Empty, null and 0 where the class has no such attribute, where it has no value, and where it
// holds another type. An empty text is no value either.
WideString TextOf(const IFC::IfcEntity& entity, std::string_view attribute);
std::string_view WordOf(const IFC::IfcEntity& entity, std::string_view attribute);  // "ELEMENT"
IFC::IfcEntity* ReferenceOf(const IFC::IfcEntity& entity, std::string_view attribute);
const EntityList* ReferencesOf(const IFC::IfcEntity& entity, std::string_view attribute);
const List<double>* RealsOf(const IFC::IfcEntity& entity, std::string_view attribute);
double RealOf(const IFC::IfcEntity& entity, std::string_view attribute);
std::int32_t IntegerOf(const IFC::IfcEntity& entity, std::string_view attribute);

// "IfcWall 'Wall' (#12)", for the log; without a name it is left out.
WideString DisplayName(const IFC::IfcEntity& entity);

// Puts a value in, as BasicAttribute::Set. False also where the class has no such attribute.
template <class T>
bool SetAttribute(IFC::IfcEntity& entity, std::string_view attribute, T value) {
  const auto found = AttributesOf(entity).Find(attribute);
  return found && found->Set(value);
}

// Appends to a list of references; an absent one gets its first member. `pool` is that of the
// model.
bool AppendReference(IFC::IfcEntity& entity, std::string_view attribute, IFC::IfcEntity& member,
                     MemoryPool& pool);

// Asks objects whether they are of a class or of a subtype of it, once for each class.
class ClassQuestion {
 public:
  explicit ClassQuestion(std::string_view className) : className_(className) {}  // "IfcWall"
  bool IsTrueOf(const IFC::IfcEntity& entity) {
    return answers_.Of(entity,
                       [this](const ClassFacts* facts) { return IsOrIsBelow(facts, className_); });
  }

 private:
  std::string_view className_;
  PerClass<bool> answers_;
};

}  // namespace corvel
