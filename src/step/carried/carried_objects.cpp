#include "step/carried/carried_objects.h"

#include <algorithm>
#include <deque>
#include <map>
#include <mutex>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "core/text.h"
#include "step/writer/step_writer.h"

namespace corvel {

namespace {

// `#12` and nothing else.
bool IsReference(const CarriedText& text) {
  return text.bytes.empty() && text.references.size() == 1;
}

std::size_t OffsetOfArguments() {
  constexpr std::size_t kStep = alignof(IFC::IfcEntity*);
  return (sizeof(CarriedRecord) + kStep - 1) / kStep * kStep;
}

std::size_t OffsetOfFlags(std::size_t count) {
  return OffsetOfArguments() + count * sizeof(IFC::IfcEntity*);
}

bool AdmitsAll(const IFC::IfcEntity* /*entity*/) { return true; }

// Facts of carried records are made when they are asked for. Those of a number of arguments serve
// all classes.
class CarriedFacts {
 public:
  // For any thread. What is returned lives on.
  const ClassFacts& OfRecord(const CarriedRecord& record) {
    const std::scoped_lock oneAtATime(mutex_);
    const std::size_t count = record.Arguments().size();
    const auto [known, isNew] =
        classes_.try_emplace(std::pair(Narrow(record.getClassName()), count));
    ClassFacts& facts = known->second;
    if (isNew) {
      facts.name = known->first.first.c_str();
      facts.type = &typeid(CarriedRecord);
      facts.own = AttributesOf(count);
      facts.ownCount = static_cast<std::uint16_t>(count);
    }
    return facts;
  }

 private:
  const AttributeFacts* AttributesOf(std::size_t count) {
    std::vector<AttributeFacts>& attributes = attributes_[count];
    for (std::size_t i = attributes.size(); i < count; ++i) {
      if (i == names_.size()) names_.push_back("argument " + std::to_string(i + 1));
      const std::size_t offset = OffsetOfArguments() + i * sizeof(IFC::IfcEntity*);
      attributes.push_back({.name = names_[i].c_str(),
                            .type = &anything_,
                            .aggregates = {},
                            .kind = ValueKind::kSelect,
                            .depth = 0,
                            .offset = static_cast<std::uint16_t>(offset),
                            .flagOffset = static_cast<std::uint16_t>(OffsetOfFlags(count) + i)});
    }
    return attributes.data();
  }

  std::mutex mutex_;
  ClassTest admitsAll_{AdmitsAll};
  TypeFacts anything_{.name = "ANYTHING",
                      .base = nullptr,
                      .aggregate = {},
                      .values = nullptr,
                      .admitted = &admitsAll_};
  std::deque<std::string> names_;
  std::map<std::size_t, std::vector<AttributeFacts>> attributes_;
  std::map<std::pair<std::string, std::size_t>, ClassFacts> classes_;
};

const ClassFacts& FactsOfValue(const CarriedValue& value) {
  static constexpr TypeFacts kText{.name = "STRING"};
  const auto* const begin = static_cast<const std::byte*>(dynamic_cast<const void*>(&value));
  const std::ptrdiff_t offset = reinterpret_cast<const std::byte*>(&value.shown) - begin;
  static const AttributeFacts kShown{.name = "text",
                                     .type = &kText,
                                     .aggregates = {},
                                     .kind = ValueKind::kText,
                                     .depth = 0,
                                     .offset = static_cast<std::uint16_t>(offset),
                                     .flagOffset = 0};
  static const ClassFacts kFacts{.name = "CarriedValue",
                                 .type = &typeid(CarriedValue),
                                 .supertype = nullptr,
                                 .own = &kShown,
                                 .ownCount = 1,
                                 .inheritedCount = 0};
  return kFacts;
}

}  // namespace

// --- CarriedValue --------------------------------------------------------------------------------

namespace {

CarriedValue* NewCarriedValue(std::string_view shown, const CarriedText& text, MemoryPool& pool) {
  auto* const value = pool.New<CarriedValue>();
  value->text = text;
  value->shown = pool.InternText(shown);
  return value;
}

}  // namespace

CarriedValue* NewCarriedValue(std::string_view text, const FindRecord& find, MemoryPool& pool) {
  return NewCarriedValue(text, CarryText(text, find, pool), pool);
}

void CarriedValue::collectChildren(IFC::ChildQueue& queue) const {
  for (const CarriedReference& reference : text.references) {
    if (reference.target != nullptr) queue.Append(reference.target, true);
  }
}

void CarriedValue::write(StepWriter& writer) const {
  writeWhole(writer);
  writer.WriteBytes(",");
}

void CarriedValue::writeWhole(StepWriter& writer) const { writer.WriteCarriedText(text); }

namespace {

// The object itself, where the argument is no more than a reference to one.
IFC::IfcEntity* NewArgument(std::string_view text, const FindRecord& find, MemoryPool& pool) {
  const CarriedText carried = CarryText(text, find, pool);
  if (IsReference(carried) && carried.references[0].target != nullptr) {
    return carried.references[0].target;
  }
  return NewCarriedValue(text, carried, pool);
}

}  // namespace

// --- CarriedRecord -------------------------------------------------------------------------------

std::size_t CountOfCarried(const RecordText& record) {
  return std::min(record.arguments.size(), CarriedRecord::kMostArguments);
}

CarriedRecord* CarriedRecord::New(std::size_t count, MemoryPool& pool) {
  const std::size_t bytes = OffsetOfFlags(count) + count * sizeof(bool);
  auto* const storage = pool.NewArray<std::max_align_t>((bytes - 1) / sizeof(std::max_align_t) + 1);
  auto* const record = ::new (storage) CarriedRecord();
  record->count_ = static_cast<std::uint32_t>(count);
  auto* const begin = reinterpret_cast<std::byte*>(storage);
  record->arguments_ = reinterpret_cast<IFC::IfcEntity**>(begin + OffsetOfArguments());
  record->arePresent_ = reinterpret_cast<bool*>(begin + OffsetOfFlags(count));
  std::fill_n(record->arguments_, count, nullptr);
  std::fill_n(record->arePresent_, count, false);
  return record;
}

void CarriedRecord::Fill(const RecordText& record, const FindRecord& find, MemoryPool& pool) {
  className_ = pool.InternWide(Widen(record.name));
  name_ = KeepBytes(record.name, pool);
  hasBrackets_ = record.hasBrackets;
  RecordText kept = record;
  if (record.arguments.size() > count_) {
    const std::string_view& last = record.arguments.back();
    const char* const begin = record.arguments[count_ - 1].data();
    kept.arguments.resize(count_);
    kept.arguments.back() = {begin, static_cast<std::size_t>(last.data() + last.size() - begin)};
    kept.glue[count_] = record.glue.back();
    kept.glue.resize(count_ + 1);
  }
  for (std::size_t i = 0; i < count_; ++i) {
    arePresent_[i] = kept.arguments[i] != "$";
    if (arePresent_[i] && kept.arguments[i] != "*") {
      arguments_[i] = NewArgument(kept.arguments[i], find, pool);
    }
  }
  if (!record.hasBrackets || kept.IsPlain()) return;
  auto* const glue = pool.NewArray<std::string_view>(kept.glue.size());
  std::transform(kept.glue.begin(), kept.glue.end(), glue,
                 [&](std::string_view bytes) { return KeepBytes(bytes, pool); });
  glue_ = {glue, kept.glue.size()};
}

void CarriedRecord::collectChildren(IFC::ChildQueue& queue) const {
  for (IFC::IfcEntity* const argument : Arguments()) {
    if (argument == nullptr) continue;
    queue.Append(argument, true);
    if (argument->inlineValue) argument->collectChildren(queue);
  }
}

void CarriedRecord::write(StepWriter& writer) const {
  for (std::size_t i = 0; i < count_; ++i) WriteArgument(i, writer);
}

void CarriedRecord::WriteArgument(std::size_t index, StepWriter& writer) const {
  if (arePresent_[index]) {
    writer.WriteEntityRef(arguments_[index]);
  } else {
    writer.WriteAbsent();
  }
}

void CarriedRecord::writeWhole(StepWriter& writer) const {
  writer.WriteBytes(name_);
  if (!hasBrackets_) return;
  writer.WriteBytes("(");
  for (std::size_t i = 0; i < count_; ++i) {
    writer.WriteBytes(glue_.empty() ? (i == 0 ? "" : ",") : glue_[i]);
    WriteArgument(i, writer);
    writer.TakeBackComma();
  }
  if (!glue_.empty()) writer.WriteBytes(glue_.back());
  writer.WriteBytes(")");
}

// --- Facts ---------------------------------------------------------------------------------------

const ClassFacts* FindCarriedFacts(const IFC::IfcEntity& object) {
  static CarriedFacts facts;
  if (const auto* const record = dynamic_cast<const CarriedRecord*>(&object)) {
    return &facts.OfRecord(*record);
  }
  const auto* const value = dynamic_cast<const CarriedValue*>(&object);
  return value == nullptr ? nullptr : &FactsOfValue(*value);
}

}  // namespace corvel
