// Reads records that the classes of their file's release do not take.
//
// What fits costs a tolerant reading no more than a strict one: the readers of attributes raise
// MisfitInRecord where a strict reading would report, and only then the record is looked at as
// text, argument by argument.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/carried.h"
#include "core/entity.h"
#include "step/carried/carried_text.h"
#include "step/carried/record_text.h"
#include "step/class_facts.h"
#include "step/factories.h"

namespace corvel {

class Parser;

// What the readers of attributes have to know in tolerant readings.
struct CarryingState {
  // Releases whose classes may stand in for one that the file's release lacks; borrowed.
  std::span<const FactoryTable* const> otherReleases;
  IFC::IfcEntity* object = nullptr;  // whose attributes are read
  bool byOtherRelease = false;       // than that of the file
  bool allAreFiled = false;          // a number that is not filed is none of the file's
};

class CarryingReader {
 public:
  // Borrows `parser`, whose reading is tolerant.
  explicit CarryingReader(Parser& parser) : parser_(parser) {}

  // Whether the object holds its record as text, or some of it.
  static bool IsCarried(const IFC::IfcEntity& entity);

  // Within a record that did not fit, or whose object is carried: reads the attributes of `entity`,
  // and carries what does not fit. Leaves the ";". Gives the object of the record: `entity`, or
  // what has to stand in its place.
  IFC::IfcEntity* Read(IFC::IfcEntity& entity);
  // As Read, behind the name of a class that the release lacks.
  IFC::IfcEntity* ReadUnknown(std::uint32_t number);

 private:
  bool Fits(IFC::IfcEntity& entity);
  std::string TakeRecord();
  IFC::IfcEntity* ReadText(IFC::IfcEntity& entity, const RecordText& record);
  IFC::IfcEntity* ReadAgain(IFC::IfcEntity& entity, const RecordText& record);
  // By the classes of the file's release, misfits and all.
  bool ReadMended(IFC::IfcEntity& entity, const ClassFacts& facts, const RecordText& record,
                  std::vector<std::size_t>& misfits);
  // Those of `misfits` that would be none if their whole numbers were smaller. The values of the
  // entity are those of the record afterwards, as they were before.
  std::vector<std::size_t> LargeOnes(IFC::IfcEntity& entity, const ClassFacts& facts,
                                     const RecordText& record,
                                     const std::vector<std::size_t>& misfits);
  void Carry(IFC::IfcEntity& entity, const ClassFacts& facts, const RecordText& record,
             const std::vector<std::size_t>& misfits);
  // By those of another release. Null: the values do not fit.
  IFC::IfcEntity* ReadByOther(const RecordText& record, std::uint32_t number);
  bool ReadBy(const FactoryTable& release, IFC::IfcEntity& entity, const RecordText& record);
  const RecordSpelling* Spelling(const IFC::IfcEntity& entity, const RecordText& record);
  // By none.
  IFC::IfcEntity* ReadByNone(const RecordText& record, std::uint32_t number);

  FindRecord FindTarget() const;
  void NoteArguments(IFC::IfcEntity& entity, const ClassFacts& facts, const RecordText& record,
                     const std::vector<std::size_t>& misfits);
  void NoteAbsent(const IFC::IfcEntity& entity, const RecordText& record);

  Parser& parser_;
  std::int64_t offset_ = -1;  // of the record in the file, where it is known
};

// In the place of a reference that its attribute does not take: to an object of a class that is not
// admitted, or (`entity` null) to a number that is not filed. Gives what the attribute holds.
IFC::IfcEntity* KeepReference(Parser& parser, IFC::IfcEntity* entity, std::uint32_t number);
// The same for a typed value, which may be null.
IFC::IfcEntity* KeepValue(Parser& parser, IFC::IfcEntity* value);

}  // namespace corvel
