// What the engine asks of units.
//
// Texts of enumerations have the form of a file, with dots and the comma that ends a value:
// ".LENGTHUNIT.,". The numbers given to setters are rows of IfcUnitEnum, IfcSIPrefix, IfcSIUnitName
// (the same in all releases) and IfcDerivedUnitEnum. An operation that makes an object or may grow
// a list takes the pool of the model; objects made here are not filed in the container.
#pragma once

#include <cstdint>
#include <optional>

#include "core/entity.h"
#include "core/memory_pool.h"
#include "core/text.h"

namespace IFC {

// Every unit of every release, and IfcUnitAssignment. It stands for the schemas' select of the same
// name: an attribute of that type admits exactly the classes with this interface.
class IfcUnit : public virtual IfcEntity {
 protected:
  ~IfcUnit() = default;
};

// IfcNamedUnit and its subtypes.
class VIfcNamedUnit : public virtual IfcEntity {
 public:
  virtual void setUnitType(std::int32_t unitType) = 0;
  virtual corvel::WideString getUnitTypeText() const = 0;

 protected:
  ~VIfcNamedUnit() = default;
};

// IfcSIUnit.
class VIfcSIUnit : public virtual IfcEntity {
 public:
  // ".MILLI.," of a millimetre and ".METRE.," of a metre.
  virtual corvel::WideString getPrefixOrName() const = 0;
  virtual corvel::WideString getNameText() const = 0;
  // Empty when there is no prefix.
  virtual corvel::WideString getPrefixText() const = 0;
  virtual void setName(std::int32_t name) = 0;
  virtual void setPrefix(std::optional<std::int32_t> prefix) = 0;

 protected:
  ~VIfcSIUnit() = default;
};

// IfcConversionBasedUnit and, from IFC4, its subtype with an offset.
class VIfcConversionBasedUnit : public virtual IfcEntity {
 public:
  virtual corvel::WideString getUnitName() const = 0;
  // Names the unit and makes it `factor` times `unit`. Gives the new IfcMeasureWithUnit back. The
  // text lives in the model's pool and is not null.
  virtual IfcEntity* setConversion(corvel::ModelText name, double factor, VIfcNamedUnit* unit,
                                   corvel::MemoryPool& pool) = 0;

 protected:
  ~VIfcConversionBasedUnit() = default;
};

// IfcDerivedUnit.
class VIfcDerivedUnit : public virtual IfcEntity {
 public:
  virtual void setUnitType(std::int32_t unitType) = 0;
  // Appends a new IfcDerivedUnitElement and gives it back. What is no IfcNamedUnit leaves the
  // element without a unit.
  virtual IfcEntity* addElement(IfcEntity* unit, std::int32_t exponent,
                                corvel::MemoryPool& pool) = 0;

 protected:
  ~VIfcDerivedUnit() = default;
};

// IfcMonetaryUnit. Only told by cast.
class VIfcMonetaryUnit : public virtual IfcEntity {
 protected:
  ~VIfcMonetaryUnit() = default;
};

// IfcUnitAssignment.
class VirtualIfcUnitAssignment : public virtual IfcEntity {
 public:
  virtual void addUnit(IfcUnit* unit, corvel::MemoryPool& pool) = 0;

 protected:
  ~VirtualIfcUnitAssignment() = default;
};

}  // namespace IFC
