// What the engine asks of properties, quantities, their sets, and what ties a set to objects.
//
// Texts given to a setter are kept as pointers: they live in the model's pool and are never null.
// An operation that makes an object or may grow a list takes the pool of the model that the object
// belongs to. Objects made here are not filed in the container. A cast that fails is not reported:
// each operation says what is stored then.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "core/entity.h"
#include "core/memory_pool.h"
#include "core/text.h"

namespace IFC {

// What can be copied: IfcProperty, IfcPhysicalQuantity and their subtypes, IfcPropertySet,
// IfcElementQuantity.
class Prototype : public virtual IfcEntity {
 public:
  // A new object of the same class with the same attributes, unfiled (marker 0, no parents). The
  // copy is shallow: it refers to what this one refers to, but its list of members is its own. Null
  // for everything but IfcPropertySingleValue, IfcPropertySet, IfcElementQuantity and the simple
  // quantities (IfcQuantityLength ...).
  virtual IfcEntity* clone(corvel::MemoryPool& pool) const = 0;

 protected:
  ~Prototype() = default;
};

// IfcProperty and its subtypes, and the classes of VQuantityProperty.
class VIfcProperty : public virtual Prototype {
 public:
  virtual corvel::WideString getPropertyName() const = 0;
  virtual void setPropertyName(corvel::ModelText name) = 0;

 protected:
  ~VIfcProperty() = default;
};

// IfcPropertySingleValue.
class VIfcPropertySingleValue : public virtual VIfcProperty {
 public:
  // The next three replace the value by a new inline IfcIdentifier, IfcBoolean or IfcReal and give
  // true.
  virtual bool setNominalValueText(corvel::ModelText text, corvel::MemoryPool& pool) = 0;
  virtual bool setNominalValueBoolean(bool value, corvel::MemoryPool& pool) = 0;
  virtual bool setNominalValueReal(double value, corvel::MemoryPool& pool) = 0;
  // Makes an IfcSIUnit the unit of the value and gives it back. The numbers are rows of
  // IfcSIPrefix, IfcSIUnitName and IfcUnitEnum, which are the same in all releases; `prefix` counts
  // only with `hasPrefix`.
  virtual IfcEntity* setNewSIUnit(std::int32_t prefix, std::int32_t unitName, bool hasPrefix,
                                  std::int32_t unitType, corvel::MemoryPool& pool) = 0;
  // Anything but an IfcUnit (null included) takes the unit away, and the result is false.
  virtual bool setUnit(IfcEntity* unit) = 0;

 protected:
  ~VIfcPropertySingleValue() = default;
};

// IfcQuantityLength, -Area, -Volume, -Count, -Weight, -Time, -Number. No class of IFC2X_FINAL and
// IFC2X2_PLATFORM.
class VQuantityProperty : public virtual VIfcProperty {
 public:
  // Where a release counts in integers, a fraction is cut off, what is too large becomes the
  // largest 32-bit number, and NaN becomes 0.
  virtual void setQuantityValue(double value) = 0;
  // As in VIfcPropertySingleValue.
  virtual IfcEntity* setNewSIUnit(std::int32_t prefix, std::int32_t unitName, bool hasPrefix,
                                  std::int32_t unitType, corvel::MemoryPool& pool) = 0;

 protected:
  ~VQuantityProperty() = default;
};

// IfcPropertySet.
class VirtualIfcPropertySet : public virtual Prototype {
 public:
  // Appends the property; null for what is no IfcProperty.
  virtual void addProperty(IfcEntity* property, corvel::MemoryPool& pool) = 0;
  // Takes the first member of that name out of the list and gives it back; null: there is none.
  virtual IfcEntity* removePropertyByName(corvel::WideView name) = 0;
  // The members themselves are left alone.
  virtual void clearProperties() = 0;

 protected:
  ~VirtualIfcPropertySet() = default;
};

// IfcElementQuantity.
class VIfcElementQuantitySet : public virtual Prototype {
 public:
  // Appends the quantity; null for what is no IfcPhysicalQuantity.
  virtual void addQuantity(IfcEntity* quantity, corvel::MemoryPool& pool) = 0;
  // As in VirtualIfcPropertySet.
  virtual IfcEntity* removePropertyByName(corvel::WideView name) = 0;

 protected:
  ~VIfcElementQuantitySet() = default;
};

// IfcRelDefinesByProperties and its subtypes.
class VirtualPropertyRelation : public virtual IfcEntity {
 public:
  // Appends the object; null for what the release does not admit here (IfcObject up to IFC2X3,
  // IfcObjectDefinition from IFC4).
  virtual void addRelatedObject(IfcEntity* object, corvel::MemoryPool& pool) = 0;
  // Null for what is no IfcPropertySetDefinition.
  virtual void setRelatingProperty(IfcEntity* propertySet) = 0;
  // Appends the related objects to `objects`.
  virtual void collectRelatedObjects(std::vector<IfcEntity*>& objects) const = 0;
  // Takes the first related object with that GUID out of the list; true if there was one.
  virtual bool removeRelatedObjectByGlobalId(std::string_view globalId) = 0;

 protected:
  ~VirtualPropertyRelation() = default;
};

}  // namespace IFC
