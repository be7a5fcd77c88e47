#include "host/check/value_check.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>

#include "merge/federation/attribute_values.h"
#include "step/numbers/exact_real.h"
#include "step/numbers/number_text.h"

namespace corvel::host {

namespace {

// Attributes that a subclass declares anew as derived, so that files have "*" there.
constexpr std::pair<std::string_view, std::string_view> kDerived[] = {
    {"IfcGeometricRepresentationSubContext", "WorldCoordinateSystem"},
    {"IfcGeometricRepresentationSubContext", "CoordinateSpaceDimension"},
    {"IfcGeometricRepresentationSubContext", "TrueNorth"},
    {"IfcGeometricRepresentationSubContext", "Precision"},
    {"IfcOrientedEdge", "EdgeStart"},
    {"IfcOrientedEdge", "EdgeEnd"},
    {"IfcSIUnit", "Dimensions"},
    {"IfcMirroredProfileDef", "Operator"},
    {"IfcSurfaceRenderingProperties", "AmbientColor"}};

bool IsDerived(const ClassFacts& facts, std::string_view attribute) {
  for (const ClassFacts* at = &facts; at != nullptr; at = at->supertype) {
    for (const auto& [name, derived] : kDerived) {
      if (name == at->name && derived == attribute) return true;
    }
  }
  return false;
}

// Optional in every schema, and a plain text in the classes of the oldest releases all the same.
bool IsNameOfRoot(const ClassFacts& facts, std::string_view attribute) {
  return (attribute == "Name" || attribute == "Description") && IsOrIsBelow(&facts, "IfcRoot");
}

WideString Shown(double value) {
  char text[kNumberRoom];
  return Widen({text, static_cast<std::size_t>(FormatExactReal(value, text) - text)});
}

// The lists of an attribute, the outermost first: those around its type, and that of the type.
std::array<Aggregate, 3> ListsOf(const AttributeFacts& attribute) {
  std::array<Aggregate, 3> lists{};
  std::size_t depth = 0;
  for (const Aggregate& aggregate : attribute.aggregates) {
    if (!aggregate.IsNone()) lists[depth++] = aggregate;
  }
  for (const TypeFacts* type = attribute.type; type != nullptr; type = type->base) {
    if (!type->aggregate.IsNone() && depth < lists.size()) lists[depth++] = type->aggregate;
  }
  return lists;
}

// The bounds of an array are those of its index.
std::size_t LeastOf(const Aggregate& list) {
  const bool isArray = list.kind == Aggregate::Kind::kArray;
  if (!isArray) return list.low;
  return list.high == Aggregate::kUnbounded ? 0 : std::size_t{list.high} - list.low + 1;
}

std::size_t MostOf(const Aggregate& list) {
  if (list.high == Aggregate::kUnbounded) return static_cast<std::size_t>(-1);
  return list.kind == Aggregate::Kind::kArray ? std::size_t{list.high} - list.low + 1 : list.high;
}

// The first member that stands in the list before. Null without one.
const IFC::IfcEntity* DoubledMember(const EntityList& list) {
  constexpr std::size_t kFew = 8;
  if (list.size() <= kFew) {
    for (std::size_t i = 1; i < list.size(); ++i) {
      if (std::find(list.begin(), list.begin() + i, list[i]) != list.begin() + i) return list[i];
    }
    return nullptr;
  }
  std::vector<const IFC::IfcEntity*> members(list.begin(), list.end());
  std::sort(members.begin(), members.end());
  const auto found = std::adjacent_find(members.begin(), members.end());
  if (found == members.end()) return nullptr;
  // Which one is told does not come from addresses.
  const IFC::IfcEntity* least = *found;
  for (auto at = found; at != members.end();
       at = std::adjacent_find(std::next(at), members.end())) {
    if ((*at)->marker < least->marker) least = *at;
  }
  return least;
}

// So many members of a list.
FindingPlace CountOf(std::size_t members, std::uint32_t record) {
  const WideString count = Widen(std::to_string(members));
  return {.number = record,
          .what = count + (members == 1 ? u" member" : u" members"),
          .parts = {{PlacePart::Kind::kWord, u"said.members"}, {PlacePart::Kind::kNumber, count}}};
}

}  // namespace

struct ValueCheck::Place {
  const IFC::IfcEntity& entity;
  Findings& findings;

  void Add(Findings::Heap& heap, RuleId rule, const std::string& subject, WideString what) const {
    findings.Add(heap, rule, subject, {.number = entity.marker, .what = std::move(what)});
  }
};

// A double that is the nearest to some decimal text of 15 digits is the nearest to that of its own
// first 15 digits. Those are a whole number that doubles hold exactly, and so is the power of ten
// between the two: the division gives the nearest double.
bool IsFractionWrittenWhole(double value) {
  static constexpr double kTens[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                     1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                     1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  constexpr double kFewest = 1e14;  // of the numbers with 15 digits
  const double size = std::abs(value);
  if (size == 0.0) return true;
  if (size >= 1e-7 && size < kFewest) {
    // Three digits are ten bits, nearly: one too few at most.
    const int bits = static_cast<int>(std::bit_cast<std::uint64_t>(size) >> 52) - 1023;
    int tens = 14 - ((bits * 1233) >> 12);
    if (size * kTens[tens] < kFewest) ++tens;
    if (size * kTens[tens] >= kFewest * 10) --tens;
    // The half is added without a loss, there being 50 bits before it at most.
    // NOLINTNEXTLINE(bugprone-incorrect-roundings): so, and a call costs more than all the rest
    const auto whole = static_cast<std::int64_t>(size * kTens[tens] + 0.5);
    return static_cast<double>(whole) / kTens[tens] == size;
  }
  char text[kNumberRoom];
  return ParseReal({text, static_cast<std::size_t>(FormatReal(value, text) - text)}) == value ||
         !std::isfinite(value);
}

bool IsCountWrittenWhole(double value) {
  char text[kNumberRoom];
  return ParseReal({text, static_cast<std::size_t>(FormatCount(value, text) - text)}) == value ||
         !std::isfinite(value);
}

ValueCheck::ValueCheck(const ClassFacts& facts) {
  for (std::size_t i = 0; i < facts.AttributeCount(); ++i) {
    const AttributeFacts& attribute = facts.Attribute(i);
    Plan plan;
    plan.attribute = &attribute;
    const std::array<Aggregate, 3> lists = ListsOf(attribute);
    for (std::size_t depth = 0; depth < lists.size(); ++depth) {
      if (lists[depth].IsNone()) continue;
      plan.bounds[depth] = {LeastOf(lists[depth]), MostOf(lists[depth])};
      plan.hasBounds = plan.hasBounds || plan.bounds[depth].least != 0 ||
                       lists[depth].high != Aggregate::kUnbounded;
    }
    plan.absent = AbsentOf(facts, attribute);
    plan.isSet =
        attribute.depth == 1 && Refers(attribute.kind) && lists[0].kind == Aggregate::Kind::kSet;
    plan.hasReals = attribute.kind == ValueKind::kReal || attribute.kind == ValueKind::kNumber;
    plan.mayHoldValues = attribute.kind == ValueKind::kSelect;
    plan.isLookedAt = plan.hasBounds || plan.isSet || plan.hasReals || plan.mayHoldValues;
    if (plan.absent == Absent::kNot && !plan.isLookedAt) continue;
    plan.subject = std::string(facts.name) + "." + attribute.name;
    plans_.push_back(std::move(plan));
  }
}

// An enumeration without a value has been told as one that is refused, and a list that needs
// members as one that has too few. Of an optional attribute nothing is wanted.
ValueCheck::Absent ValueCheck::AbsentOf(const ClassFacts& facts, const AttributeFacts& attribute) {
  if (attribute.IsOptional() || attribute.depth != 0 || IsDerived(facts, attribute.name)) {
    return Absent::kNot;
  }
  switch (attribute.kind) {
    case ValueKind::kReference:
    case ValueKind::kSelect: return Absent::kReference;
    case ValueKind::kText:
      return IsNameOfRoot(facts, attribute.name) ? Absent::kOptionalText : Absent::kText;
    case ValueKind::kReal:
    case ValueKind::kNumber:
    case ValueKind::kInteger:
    case ValueKind::kBinary:
    case ValueKind::kGuid:
    case ValueKind::kBoolean:
    case ValueKind::kLogical:
    case ValueKind::kEnumeration: break;
  }
  return Absent::kNot;
}

// Readers have a wide empty text for an absent one, and a plain one for ''.
bool ValueCheck::LooksAbsent(ConstAttribute attribute, const Plan& plan) {
  switch (plan.absent) {
    case Absent::kNot: return false;
    case Absent::kReference: return attribute.State() == AttributeState::kDerived;
    case Absent::kText:
    case Absent::kOptionalText: {
      const auto* const text = attribute.As<ModelText>();
      return text != nullptr && (text->IsNull() || (!text->IsPlain() && text->Units().empty()));
    }
  }
  return false;
}

// Truth values that are read as enumerations have been told as wrong ones.
bool WantsNumberOrTruth(const ClassFacts& facts, const AttributeFacts& attribute) {
  if (attribute.IsOptional() || attribute.depth != 0 || IsDerived(facts, attribute.name)) {
    return false;
  }
  const std::string_view type = attribute.type->name;
  if (type == "IfcBoolean" || type == "IfcLogical") return true;
  return attribute.kind == ValueKind::kReal || attribute.kind == ValueKind::kNumber ||
         attribute.kind == ValueKind::kInteger || attribute.kind == ValueKind::kBinary;
}

void ValueCheck::Look(const IFC::IfcEntity& entity, Findings& findings) {
  const Place place{entity, findings};
  for (Plan& plan : plans_) {
    const ConstAttribute attribute(entity, *plan.attribute);
    if (plan.absent != Absent::kNot && LooksAbsent(attribute, plan)) {
      if (plan.absent == Absent::kOptionalText) {
        findings.Add(RuleId::kAddedText, {},
                     {.number = entity.marker, .what = Widen(plan.subject)});
      } else {
        place.Add(plan.missing, RuleId::kMissingValue, plan.subject, {});
      }
    } else if (plan.isLookedAt && attribute.HasValue()) {
      LookAt(attribute, plan, place);
    }
  }
}

void ValueCheck::LookAt(ConstAttribute attribute, Plan& plan, const Place& place) {
  if (plan.hasBounds) CheckMembers(attribute, plan, place);
  if (plan.isSet) CheckSet(attribute, plan, place);
  if (plan.hasReals) CheckReals(attribute, plan, place);
  if (!plan.mayHoldValues) return;
  attribute.ForEach<IFC::IfcEntity*>([&](const IFC::IfcEntity* value) {
    if (value != nullptr && value->inlineValue) CheckValue(*value, plan, place);
  });
}

void ValueCheck::CheckValue(const IFC::IfcEntity& value, const Plan& plan, const Place& place) {
  const bool holdsReals = holdReals_.Of(value, [](const ClassFacts* facts) {
    if (facts == nullptr || facts->AttributeCount() != 1) return false;
    const ValueKind kind = facts->Attribute(0).kind;
    return kind == ValueKind::kReal || kind == ValueKind::kNumber;
  });
  if (holdsReals) CheckReals(AttributesOf(value)[0], plan, place);
}

namespace {

// Calls check(bounds, size) for each list, depth by depth.
template <class T, class Bounds, class Check>
void ForEachList(const T& /*scalar*/, const Bounds* /*bounds*/, Check& /*check*/) {}
template <class T, class Bounds, class Check>
void ForEachList(const List<T>& held, const Bounds* bounds, Check& check) {
  check(*bounds, held.size());
  for (const T& item : held) ForEachList(item, bounds + 1, check);
}

}  // namespace

void ValueCheck::CheckMembers(ConstAttribute attribute, Plan& plan, const Place& place) {
  const auto check = [&](const Bounds& bounds, std::size_t size) {
    if (size < bounds.least) {
      place.findings.Add(plan.few, RuleId::kFewMembers, plan.subject,
                         CountOf(size, place.entity.marker));
    } else if (size > bounds.most) {
      place.findings.Add(plan.many, RuleId::kManyMembers, plan.subject,
                         CountOf(size, place.entity.marker));
    }
  };
  attribute.Visit([&](const auto& value) { ForEachList(value, plan.bounds.data(), check); });
}

void ValueCheck::CheckSet(ConstAttribute attribute, Plan& plan, const Place& place) {
  const auto* const list = attribute.As<EntityList>();
  const IFC::IfcEntity* const member = list == nullptr ? nullptr : DoubledMember(*list);
  if (member == nullptr) return;
  place.Add(plan.doubled, RuleId::kDoubledMember, plan.subject, u"#" + ToWide(member->marker));
}

// An object counts once an attribute, however many of its numbers are shortened.
void ValueCheck::CheckReals(ConstAttribute attribute, const Plan& plan, const Place& place) {
  const bool isCount = attribute.Facts().kind == ValueKind::kNumber;
  bool isTold = false;
  attribute.ForEach<double>([&](double value) {
    if (isTold || (isCount ? IsCountWrittenWhole(value) : IsWrittenWhole(value))) return;
    isTold = true;
    // One finding for the whole model: some programs write all their numbers with more digits.
    const RuleId rule = isCount ? RuleId::kChangedNumber : RuleId::kChangedReal;
    const bool isShown = place.findings.MayKeepPlace(rule, {});
    place.findings.Add(
        rule, {},
        {.number = place.entity.marker,
         .what = isShown ? Widen(plan.subject) + u" " + Shown(value) : WideString()});
  });
}

}  // namespace corvel::host
