// Bodies of Prototype, the properties and quantities, their sets and their relation.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

#include "core/list.h"
#include "core/root_interfaces.h"
#include "schema/interfaces/implement_support.h"
#include "schema/interfaces/properties.h"
#include "schema/interfaces/units.h"

namespace IFC::implement {

// --- Prototype -----------------------------------------------------------------------------------
template <class Object>
IfcEntity* Clone(const Object& object, corvel::MemoryPool& pool) {
  return pool.New<Object>(object);
}

// For a class with a list of members, which must not be shared: both objects may change theirs.
template <class Object>
IfcEntity* Clone(const Object& object, corvel::EntityList Object::*members,
                 corvel::MemoryPool& pool) {
  auto* const copy = pool.New<Object>(object);
  copy->*members = (object.*members).Clone(pool);
  return copy;
}

// --- Values and units ----------------------------------------------------------------------------
template <class SingleValue>
bool SetNominalValue(SingleValue& property, IfcEntity* value) {
  property.NominalValue = value;
  if constexpr (requires { property.NominalValuePresent; }) property.NominalValuePresent = true;
  return true;
}

// The literals of a boolean are rows of an enumeration in which T is 0 and F is 1.
constexpr std::int32_t BooleanRow(bool value) { return value ? 0 : 1; }

template <class SingleValue>
bool SetUnit(SingleValue& property, IfcEntity* unit) {
  SetOptional(property.Unit, property.UnitPresent, Admitted<IFC::IfcUnit>(unit));
  return property.UnitPresent;
}

template <class SIUnit, class Owner>
IfcEntity* SetNewSIUnit(Owner& owner, std::int32_t prefix, std::int32_t unitName, bool hasPrefix,
                        std::int32_t unitType, corvel::MemoryPool& pool) {
  auto* const unit = pool.New<SIUnit>();
  unit->UnitType = unitType;
  if (hasPrefix) {
    unit->Prefix = prefix;
    unit->PrefixPresent = true;
  }
  unit->Name = unitName;
  SetOptional(owner.Unit, owner.UnitPresent, unit);
  return unit;
}

inline void SetQuantityValue(double& attribute, double value) { attribute = value; }

inline void SetQuantityValue(std::int32_t& attribute, double value) {
  using Limits = std::numeric_limits<std::int32_t>;
  if (std::isnan(value)) {
    attribute = 0;
  } else if (value >= Limits::max()) {
    attribute = Limits::max();
  } else if (value <= Limits::min()) {
    attribute = Limits::min();
  } else {
    attribute = static_cast<std::int32_t>(value);
  }
}

// --- Sets ----------------------------------------------------------------------------------------
// `Member` is the class that declares the name. Null members have none.
template <class Member>
IfcEntity* RemoveByName(corvel::EntityList& members, corvel::WideView name) {
  for (std::size_t i = 0; i < members.size(); ++i) {
    IfcEntity* const entity = members[i];
    const auto* const member = corvel::EntityCast<Member>(entity);
    if (member != nullptr && member->Name.ToWide() == name) {
      members.Erase(i);
      return entity;
    }
  }
  return nullptr;
}

// --- Relation ------------------------------------------------------------------------------------
inline void AppendMembers(const corvel::EntityList& members, std::vector<IfcEntity*>& entities) {
  entities.insert(entities.end(), members.begin(), members.end());
}

inline bool RemoveByGlobalId(corvel::EntityList& members, std::string_view globalId) {
  for (std::size_t i = 0; i < members.size(); ++i) {
    const auto* const member = corvel::EntityCast<VirtualIfcRoot>(members[i]);
    if (member != nullptr && member->getGlobalId() == globalId) {
      members.Erase(i);
      return true;
    }
  }
  return false;
}

}  // namespace IFC::implement
