// What objects of a model hold beside their attributes. Only tolerant readings leave such: a value
// that its attribute does not take, arguments beyond those of the class, the spelling of a record
// that another release has read.
//
// It stands in a table beside the objects, which have a flag for it (IfcEntity::carries), so that
// models without it pay nothing.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "core/entity.h"

namespace corvel {

struct FactoryTable;
struct RecordSpelling;

// An argument that stands in the file as it was read, whatever the attribute of its place holds.
struct CarriedArgument {
  std::uint32_t index = 0;          // among the arguments of the record, from 0
  IFC::IfcEntity* value = nullptr;  // an object of the model, or an inline value; never null
};

// Of one object. All of it belongs to the pool of the object's model.
struct CarriedParts {
  std::uint32_t argumentCount = 0;            // of the record
  std::span<CarriedArgument> arguments = {};  // in ascending order
  // Objects that they refer to.
  std::span<IFC::IfcEntity* const> children = {};
  // Null, or how the whole record is written while it has the values that it was read with.
  const RecordSpelling* spelling = nullptr;
  // The classes that it was read with, and whether these are another release's than its model's.
  const FactoryTable* release = nullptr;
  bool byOtherRelease = false;

  // Null when the argument is not carried.
  const CarriedArgument* Find(std::size_t index) const;
};

// The objects of one model that carry something. Objects may move on to other models: what they
// carry is found as long as the table lives that it was entered in.
class CarriedTable {
 public:
  CarriedTable() = default;
  ~CarriedTable();
  CarriedTable(const CarriedTable&) = delete;
  CarriedTable& operator=(const CarriedTable&) = delete;

  // Replaces what `holder` carried and sets its flag.
  void Set(IFC::IfcEntity& holder, const CarriedParts& parts);
  // The argument is not carried any more: its attribute has got a value. What it referred to stays
  // among the children.
  static void Drop(const IFC::IfcEntity& holder, std::size_t index);
  // Null when `holder` carries nothing beside its attributes. Void after the next Set.
  static const CarriedParts* Find(const IFC::IfcEntity& holder);

 private:
  std::vector<const IFC::IfcEntity*> holders_;
};

// Whether the object is of none of the classes of its model's release: text, or read by another
// one. Whatever refers to it does so on purpose.
bool IsOfNoClassOfModel(const IFC::IfcEntity& entity);

// Whether something that is not marked as deleted is referred to by what `holder` carries.
bool CarriesLiveObject(const IFC::IfcEntity& holder);

}  // namespace corvel

namespace IFC {

// Base of the objects that are no more than text with references in it: a record whose class nobody
// knows, and a value in the place of a reference. They are written by themselves, without brackets
// or a name around them. Their flag is set, and they are in no table.
class CarriedEntity : public virtual IfcEntity {
 public:
  // `IFCNEW(1.,#2)` or a value, without a comma behind it.
  virtual void writeWhole(corvel::StepWriter& writer) const = 0;

 protected:
  ~CarriedEntity() = default;
  CarriedEntity() { carries = true; }
};

}  // namespace IFC
