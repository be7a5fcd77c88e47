// Objects that are no more than text with references in it.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "core/carried.h"
#include "core/memory_pool.h"
#include "step/carried/carried_text.h"
#include "step/carried/record_text.h"
#include "step/class_facts.h"

namespace corvel {

// A value in the place of an argument or of a reference, written as it stood.
class CarriedValue final : public IFC::IfcSimpleType, public IFC::CarriedEntity {
 public:
  CarriedValue() { inlineValue = true; }

  const char16_t* getClassName() const override { return u"CarriedValue"; }
  void collectChildren(IFC::ChildQueue& queue) const override;
  void write(StepWriter& writer) const override;
  void writeWhole(StepWriter& writer) const override;

  CarriedText text;
  ModelText shown;  // the text, with the numbers as they were read
};

// Makes a value of `text`; it belongs to `pool`.
CarriedValue* NewCarriedValue(std::string_view text, const FindRecord& find, MemoryPool& pool);

// A record of a class that nobody knows: an argument is an object of the model, where it is no more
// than a reference, absent or derived, or a CarriedValue. Each can be lost.
class CarriedRecord final : public IFC::IfcComplexType, public IFC::CarriedEntity {
 public:
  // What a record has beyond that is one more value.
  static constexpr std::size_t kMostArguments = 4000;

  // Blank, with room for `count` arguments; belongs to `pool`.
  static CarriedRecord* New(std::size_t count, MemoryPool& pool);
  // Takes the arguments, of which there are as many as before; the second time for the sake of
  // references that were not found.
  void Fill(const RecordText& record, const FindRecord& find, MemoryPool& pool);

  const char16_t* getClassName() const override { return className_; }
  void collectChildren(IFC::ChildQueue& queue) const override;
  void write(StepWriter& writer) const override;
  void writeWhole(StepWriter& writer) const override;

  // Null where the record has `$` or `*`.
  std::span<IFC::IfcEntity* const> Arguments() const { return {arguments_, count_}; }

 private:
  CarriedRecord() = default;
  void WriteArgument(std::size_t index, StepWriter& writer) const;

  const char16_t* className_ = u"";
  std::string_view name_;
  bool hasBrackets_ = true;
  std::span<const std::string_view> glue_;  // empty: commas alone
  std::uint32_t count_ = 0;
  // Behind the object, so that facts can tell their places.
  IFC::IfcEntity** arguments_ = nullptr;
  bool* arePresent_ = nullptr;  // false: `$`
};

// How many arguments an object of `record` has.
std::size_t CountOfCarried(const RecordText& record);

// The facts of a carried object: attributes "argument 1", "argument 2" of a record, "text" of a
// value. Null for any other.
const ClassFacts* FindCarriedFacts(const IFC::IfcEntity& object);

}  // namespace corvel
