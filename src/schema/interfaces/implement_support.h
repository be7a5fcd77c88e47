// What the bodies of several interfaces share.
#pragma once

#include <cstdint>
#include <string_view>

#include "core/entity.h"
#include "core/entity_cast.h"
#include "core/memory_pool.h"
#include "core/text.h"
#include "step/enum_table.h"

namespace IFC::implement {

// The entity if it is of the class (or select), otherwise null: what a reference of that type
// takes.
template <class Class>
IfcEntity* Admitted(IfcEntity* entity) {
  return corvel::EntityCast<Class>(entity) != nullptr ? entity : nullptr;
}

// Stores an optional reference: absent when null.
inline void SetOptional(IfcEntity*& attribute, bool& present, IfcEntity* entity) {
  attribute = entity;
  present = entity != nullptr;
}

// A typed value that stands in the record of the object that refers to it.
template <class Class, class Value>
IfcEntity* NewInlineValue(Value value, corvel::MemoryPool& pool) {
  auto* const object = pool.New<Class>();
  object->value = value;
  object->inlineValue = true;
  return object;
}

inline corvel::WideString EnumText(const corvel::EnumTable& table, std::int32_t number) {
  return corvel::Widen(table.ToText(number));
}

}  // namespace IFC::implement
