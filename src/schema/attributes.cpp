#include "schema/attributes.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "core/carried.h"
#include "core/text.h"
#include "schema/registry.h"
#include "step/carried/carried_objects.h"
#include "step/writer/step_writer.h"

namespace corvel {

namespace attribute_detail {

namespace {

bool& FlagAt(std::byte* object, const AttributeFacts& facts) {
  return *reinterpret_cast<bool*>(object + facts.flagOffset);
}

const EnumRow* RowOf(const EnumTable& table, std::int32_t number) {
  const auto row = std::find_if(table.rows.begin(), table.rows.end(),
                                [number](const EnumRow& one) { return one.number == number; });
  return row == table.rows.end() ? nullptr : &*row;
}

// Makes a member what `read` leaves where the file has no value.
class MakeDefault {
 public:
  explicit MakeDefault(const AttributeFacts& facts) : values_(facts.Values()) {}

  void operator()(IFC::IfcEntity*& reference) const { reference = nullptr; }
  void operator()(double& real) const { real = 0.0; }
  void operator()(std::int32_t& number) const {
    number = values_ == nullptr ? 0 : values_->Fallback();
  }
  void operator()(ModelText& text) const { text = kEmptyWide; }
  void operator()(const char*& guid) const { guid = kEmptyNarrow; }
  template <class T>
  void operator()(List<T>& list) const {
    list.Clear();
  }

 private:
  const EnumTable* values_;
};

// The writer's own operations for each kind and depth that a class may hold.
class ValueOnItsWay {
 public:
  ValueOnItsWay(const std::byte* object, const AttributeFacts& facts, StepWriter& writer)
      : object_(object), facts_(facts), writer_(writer) {}

  void Write() const {
    if (facts_.depth == 0) {
      WriteScalar();
    } else if (facts_.depth == 1) {
      WriteList();
    } else {
      WriteLists();
    }
  }

 private:
  template <class T>
  const T& Held() const {
    return At<T>(object_, facts_);
  }

  void WriteScalar() const {
    switch (facts_.kind) {
      case ValueKind::kReference:
      case ValueKind::kSelect: writer_.WriteEntityRef(Held<IFC::IfcEntity*>()); return;
      case ValueKind::kReal: return writer_.WriteReal(Held<double>());
      case ValueKind::kNumber: return writer_.WriteCount(Held<double>());
      case ValueKind::kInteger: return writer_.WriteInteger(Held<std::int32_t>());
      case ValueKind::kBinary: return writer_.WriteBinaryValue(Held<std::int32_t>());
      case ValueKind::kText: return writer_.WriteText(Held<ModelText>());
      case ValueKind::kGuid: return writer_.WriteGuid(Held<const char*>());
      case ValueKind::kBoolean: return writer_.WriteBoolean(Held<std::int32_t>());
      case ValueKind::kLogical: return writer_.WriteLogical(Held<std::int32_t>());
      case ValueKind::kEnumeration:
        return writer_.WriteEnum(*facts_.Values(), Held<std::int32_t>());
    }
  }

  void WriteList() const {
    using Integers = List<std::int32_t>;
    switch (facts_.kind) {
      case ValueKind::kReference:
      case ValueKind::kSelect: return writer_.WriteEntityRefList(Held<EntityList>());
      case ValueKind::kReal: return writer_.WriteRealList(Held<List<double>>());
      case ValueKind::kInteger: return writer_.WriteIntegerList(Held<Integers>());
      case ValueKind::kBinary: return writer_.WriteBinaryList(Held<Integers>());
      case ValueKind::kText: return writer_.WriteStringList(Held<List<ModelText>>());
      case ValueKind::kBoolean: return writer_.WriteBooleanList(Held<Integers>());
      case ValueKind::kLogical: return writer_.WriteLogicalList(Held<Integers>());
      case ValueKind::kEnumeration:
        return writer_.WriteEnumList(*facts_.Values(), Held<Integers>());
      case ValueKind::kNumber:
      case ValueKind::kGuid: break;
    }
    throw std::logic_error("no class holds a list of this kind");
  }

  void WriteLists() const {
    if (Refers(facts_.kind)) return writer_.WriteEntityRefLists(Held<List<EntityList>>());
    if (facts_.kind == ValueKind::kReal) return writer_.WriteRealLists(Held<List<List<double>>>());
    if (facts_.kind == ValueKind::kInteger) {
      return writer_.WriteIntegerLists(Held<List<List<std::int32_t>>>());
    }
    throw std::logic_error("no class holds lists of lists of this kind");
  }

  const std::byte* object_;
  const AttributeFacts& facts_;
  StepWriter& writer_;
};

}  // namespace

namespace {

// Its place in the record; the attribute is one of the object's.
std::size_t IndexOf(const IFC::IfcEntity& object, const AttributeFacts& facts) {
  for (const ClassFacts* declaring = FindFacts(object); declaring != nullptr;
       declaring = declaring->supertype) {
    const std::span own(declaring->own, declaring->ownCount);
    if (!own.empty() && &facts >= &own.front() && &facts <= &own.back()) {
      return declaring->inheritedCount + static_cast<std::size_t>(&facts - &own.front());
    }
  }
  throw std::logic_error("an attribute of another class");
}

// Null when there is none.
const CarriedArgument* FindCarried(const IFC::IfcEntity& holder, const AttributeFacts& facts) {
  const CarriedParts* const parts = CarriedTable::Find(holder);
  return parts == nullptr || parts->arguments.empty() ? nullptr
                                                      : parts->Find(IndexOf(holder, facts));
}

// An object of another release than its model's admits nothing that is in the model.
bool LeadsToMisfit(const IFC::IfcEntity& holder, const IFC::IfcEntity* target,
                   const AttributeFacts& facts) {
  if (target == nullptr || facts.Admits(target) || IsOfNoClassOfModel(*target)) return false;
  const CarriedParts* const parts = CarriedTable::Find(holder);
  const bool isOfAnotherRelease = parts != nullptr && parts->byOtherRelease;
  return !isOfAnotherRelease || target->inlineValue;
}

// As reading leaves a value that is carried; whatever else stands there has been put in since.
class IsBlank {
 public:
  explicit IsBlank(const AttributeFacts& facts) : values_(facts.Values()) {}

  void operator()(const IFC::IfcEntity* reference) { blank = reference == nullptr; }
  void operator()(double real) { blank = real == 0.0; }
  void operator()(std::int32_t number) {
    blank = values_ == nullptr ? number == 0 : RowOf(*values_, number) == nullptr;
  }
  void operator()(ModelText text) { blank = text.ToWide().empty(); }
  void operator()(const char* guid) { blank = *guid == 0; }
  template <class T>
  void operator()(const List<T>& list) {
    blank = list.empty();
  }

  bool blank = false;

 private:
  const EnumTable* values_;
};

}  // namespace

bool IsMisfit(const IFC::IfcEntity& holder, const std::byte* object, const AttributeFacts& facts) {
  if (FindCarried(holder, facts) != nullptr) {
    IsBlank isBlank(facts);
    if (!IsMarkedAbsent(object, facts)) VisitMember(object, facts, isBlank);
    return isBlank.blank || IsMarkedAbsent(object, facts);
  }
  return Refers(facts.kind) && facts.depth == 0 &&
         LeadsToMisfit(holder, At<IFC::IfcEntity*>(object, facts), facts);
}

bool WriteMisfit(const IFC::IfcEntity& holder, const AttributeFacts& facts, StepWriter& writer) {
  const CarriedArgument* const carried = FindCarried(holder, facts);
  if (carried != nullptr) writer.WriteEntityRef(carried->value);
  return carried != nullptr;
}

void DropMisfit(const IFC::IfcEntity& holder, const AttributeFacts& facts) {
  if (FindCarried(holder, facts) != nullptr) CarriedTable::Drop(holder, IndexOf(holder, facts));
}

bool MayBe(const AttributeFacts& /*facts*/, double /*value*/) { return true; }

bool MayBe(const AttributeFacts& facts, std::int32_t value) {
  const EnumTable* const values = facts.Values();
  return values == nullptr || RowOf(*values, value) != nullptr;
}

bool MayBe(const AttributeFacts& /*facts*/, ModelText value) { return !value.IsNull(); }

bool MayBe(const AttributeFacts& /*facts*/, const char* value) { return value != nullptr; }

bool MayBe(const AttributeFacts& facts, IFC::IfcEntity* value) { return facts.Admits(value); }

bool Clear(std::byte* object, const AttributeFacts& facts) {
  const bool isReference = facts.depth == 0 && Refers(facts.kind);
  if (!facts.IsOptional() && !isReference) return false;
  const MakeDefault makeDefault(facts);
  VisitMember(object, facts, makeDefault);
  if (facts.IsOptional()) FlagAt(object, facts) = false;
  return true;
}

void Write(const std::byte* object, const AttributeFacts& facts, StepWriter& writer) {
  if (IsMarkedAbsent(object, facts)) {
    writer.WriteAbsent();
  } else {
    ValueOnItsWay(object, facts, writer).Write();
  }
}

std::string_view EnumerationName(const std::byte* object, const AttributeFacts& facts) {
  const EnumTable* const values = facts.Values();
  if (values == nullptr || facts.depth > 0 || IsMarkedAbsent(object, facts)) return {};
  const EnumRow* const row = RowOf(*values, At<std::int32_t>(object, facts));
  return row == nullptr ? std::string_view() : row->Name();
}

}  // namespace attribute_detail

namespace {

// The class's own record among those of its name, of which each release may have one.
const ClassFacts* SearchReleases(const IFC::IfcEntity& object) {
  const std::string name = Narrow(object.getClassName());
  for (const FactoryTable* const release : BuiltFactories()) {
    const ClassFacts* const found = release->classes->Find(name);
    if (found != nullptr && *found->type == typeid(object)) return found;
  }
  return nullptr;
}

const ClassFacts& FactsOf(const IFC::IfcEntity& object) {
  const ClassFacts* const facts = FindFacts(object);
  if (facts == nullptr) throw std::logic_error("an object of no class of the releases");
  return *facts;
}

}  // namespace

const ClassFacts* FindFacts(const IFC::IfcEntity& object) {
  static ClassMemory memory;  // the address of the facts
  const std::type_info* const dynamicClass = &typeid(object);
  if (const std::ptrdiff_t* const known = memory.Find(dynamicClass)) [[likely]] {
    return reinterpret_cast<const ClassFacts*>(*known);
  }
  // One class for records of many names.
  if (const ClassFacts* const carried = FindCarriedFacts(object)) return carried;
  const ClassFacts* const found = SearchReleases(object);
  memory.Remember(dynamicClass, reinterpret_cast<std::ptrdiff_t>(found));
  return found;
}

const ClassFacts* SearchFacts(const IFC::IfcEntity& object) {
  const ClassFacts* const carried = FindCarriedFacts(object);
  return carried != nullptr ? carried : SearchReleases(object);
}

Attributes AttributesOf(IFC::IfcEntity& object) { return {object, FactsOf(object)}; }

ConstAttributes AttributesOf(const IFC::IfcEntity& object) { return {object, FactsOf(object)}; }

}  // namespace corvel
