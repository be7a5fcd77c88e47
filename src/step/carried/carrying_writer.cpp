// What StepWriter makes of objects that carry something.
#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <utility>

#include "core/carried.h"
#include "step/carried/carried_text.h"
#include "step/carried/record_spelling.h"
#include "step/carried/record_text.h"
#include "step/streams/outpout_text_stream.h"
#include "step/writer/step_writer.h"

namespace corvel {

namespace {

// What the writer makes of an attribute without a value, whatever its kind. Any other value has
// been put in since, and is written.
bool IsBlankValue(std::string_view written) {
  constexpr std::array<std::string_view, 6> kBlank = {"$", "*", "''", "0.", "0", "()"};
  return std::find(kBlank.begin(), kBlank.end(), written) != kBlank.end();
}

// A record that had fewer arguments than its class has them still, unless the others got values.
std::size_t ArgumentsToWrite(const CarriedParts& parts, const RecordText& typed) {
  std::size_t count = typed.arguments.size();
  while (count > parts.argumentCount && IsBlankValue(typed.arguments[count - 1])) --count;
  return std::max<std::size_t>(count, parts.argumentCount);
}

}  // namespace

void StepWriter::WriteBytes(std::string_view bytes) { stream_->Append(bytes); }

void StepWriter::TakeBackComma() { stream_->StepBack(1); }

void StepWriter::WriteCarriedText(const CarriedText& text) {
  WriteBytes(TextOf(text, [this](const CarriedReference& reference) {
    return reference.target != nullptr ? reference.target->marker
                                       : NumberOfMissing(reference.number);
  }));
}

// The number of no record, and of none that has come since: a reference to nothing must not become
// one to another object.
std::uint32_t StepWriter::NumberOfMissing(std::uint32_t number) {
  if (model_.container == nullptr || !model_.container->entities.Contains(number)) return number;
  const auto [known, isNew] = missing_.try_emplace(number);
  if (isNew) known->second = NextMissing();
  return known->second;
}

// Above all numbers of the model, as long as there are any.
std::uint32_t StepWriter::NextMissing() {
  lastMissing_ = std::max(lastMissing_, IFC::MainContainer::uniqueMarker);
  while (lastMissing_ < IFC::MainContainer::largestNumber) {
    if (!model_.container->entities.Contains(++lastMissing_)) return lastMissing_;
  }
  return 0;
}

std::string StepWriter::TextOfTyped(const IFC::IfcEntity& entity) {
  FileStream::OutpoutTextStream text;
  FileStream::OutpoutStream* const stream = std::exchange(stream_, &text);
  try {
    WriteTypedCall(entity);
  } catch (...) {
    stream_ = stream;
    throw;
  }
  stream_ = stream;
  return std::string(text.Text());
}

// False: the object is written by its class alone.
bool StepWriter::WriteCarrying(const IFC::IfcEntity& entity) {
  if (carried_ == Carried::kRefused) throw std::logic_error("an object that carries something");
  if (const auto* const whole = dynamic_cast<const IFC::CarriedEntity*>(&entity)) {
    whole->writeWhole(*this);
    return true;
  }
  const CarriedParts* const parts = CarriedTable::Find(entity);
  if (parts == nullptr) return false;
  const std::string text = TextOfTyped(entity);
  const RecordText typed = CutRecord(text);
  WriteMixed(*parts, typed);
  return true;
}

void StepWriter::WriteMixed(const CarriedParts& parts, const RecordText& typed) {
  const RecordSpelling* const spelling = parts.spelling;
  WriteBytes(spelling != nullptr ? spelling->name : typed.name);
  WriteBytes("(");
  const std::size_t count = ArgumentsToWrite(parts, typed);
  for (std::size_t i = 0; i < count; ++i) {
    const bool hasGlue = spelling != nullptr && i < spelling->arguments.size();
    WriteBytes(hasGlue ? spelling->glue[i] : i == 0 ? "" : ",");
    WriteArgument(parts, typed, i);
  }
  // A record without brackets has none.
  if (spelling != nullptr && !spelling->glue.empty()) WriteBytes(spelling->glue.back());
  WriteBytes(")");
}

void StepWriter::WriteArgument(const CarriedParts& parts, const RecordText& typed,
                               std::size_t index) {
  const bool isTyped = index < typed.arguments.size();
  const std::string_view value = isTyped ? typed.arguments[index] : "$";
  const CarriedArgument* const carried = parts.Find(index);
  if (carried != nullptr && (!isTyped || IsBlankValue(value))) {
    WriteEntityRef(carried->value);
    TakeBackComma();
  } else if (isTyped && parts.spelling != nullptr) {
    WriteBytes(SpellArgument(*parts.spelling, index, value));
  } else {
    WriteBytes(value);
  }
}

}  // namespace corvel
