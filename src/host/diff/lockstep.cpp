#include "host/diff/lockstep.h"

#include "host/diff/value_digests.h"

namespace corvel::host::diff {

namespace {

constexpr unsigned kDeepest = 200;

}  // namespace

Lockstep::Lockstep(const ComparedModel& before, const ComparedModel& after, const Pairing& pairing,
                   const Tolerance& tolerance)
    : before_(before),
      after_(after),
      pairing_(pairing),
      tolerance_(tolerance),
      partners_(before.ValueCount()) {}

bool Lockstep::Same(std::size_t before, std::size_t after) {
  depth_ = 0;
  return SameContent(*before_.Objects()[before], *after_.Objects()[after], {}) &&
         SameRelations(before, after);
}

bool Lockstep::SameRelations(std::size_t before, std::size_t after) {
  const auto here = before_.RelationsOf(before);
  const auto there = after_.RelationsOf(after);
  if (here.size() != there.size()) return false;
  for (std::size_t i = 0; i < here.size(); ++i) {
    if (!SameRelation(*here[i], *there[i])) return false;
  }
  return true;
}

bool Lockstep::SameRelation(const IFC::IfcEntity& before, const IFC::IfcEntity& after) {
  const IFC::IfcEntity*& partner = partners_[ComparedModel::NumberOf(before)];
  if (partner == &after) return true;
  if (typeid(before) != typeid(after) ||
      !SameContent(before, after, {.holding = before_.HoldingAttribute(before)})) {
    return false;
  }
  if (before_.HoldingAttribute(before) != after_.HoldingAttribute(after)) return false;
  if (!HoldsObjectsAlone(before) || !HoldsObjectsAlone(after)) return false;
  partner = &after;
  return true;
}

bool Lockstep::HoldsObjectsAlone(const IFC::IfcEntity& relation) const {
  bool alone = true;
  const AttributeFacts& holding = *before_.HoldingAttribute(relation)->facts;
  ConstAttribute(relation, holding).ForEach<IFC::IfcEntity*>([&](const IFC::IfcEntity* held) {
    alone = alone && held != nullptr && ComparedModel::HasIdentity(*held);
  });
  return alone;
}

bool Lockstep::SameIdentity(const IFC::IfcEntity& before, const IFC::IfcEntity& after) const {
  return ComparedModel::HasIdentity(before) && ComparedModel::HasIdentity(after) &&
         pairing_.laterOf[ComparedModel::IndexOf(before)] == ComparedModel::IndexOf(after);
}

bool Lockstep::SameValues(const IFC::IfcEntity* before, const IFC::IfcEntity* after) {
  if (before == nullptr || after == nullptr) return before == after;
  if (ComparedModel::HasIdentity(*before)) return SameIdentity(*before, *after);
  const bool isNumbered = ComparedModel::IsNumbered(*before);
  if (isNumbered != ComparedModel::IsNumbered(*after)) return false;
  if (isNumbered && partners_[ComparedModel::NumberOf(*before)] == after) return true;
  if (depth_ == kDeepest) return false;
  const Dimension dimension = dimension_;
  const double scaleBefore = scaleBefore_;
  const double scaleAfter = scaleAfter_;
  ++depth_;
  const bool same = SameContent(*before, *after, {});
  --depth_;
  dimension_ = dimension;
  scaleBefore_ = scaleBefore;
  scaleAfter_ = scaleAfter;
  if (same && isNumbered) partners_[ComparedModel::NumberOf(*before)] = after;
  return same;
}

// A reference to a relation says less than the relation: digests know what.
bool Lockstep::SameContent(const IFC::IfcEntity& before, const IFC::IfcEntity& after,
                           const Parts& parts) {
  if (before.carries || after.carries || typeid(before) != typeid(after)) return false;
  const ClassWord* const word = before_.Words().Of(before);
  if (word == nullptr) return false;
  if (word->role == Role::kRelation && depth_ != 0) return false;
  if (word->hasUnit && (TellsUnit(before, *word) || TellsUnit(after, *word))) return false;
  auto there = ConstAttributes(after, *word->facts).begin();
  auto here = ConstAttributes(before, *word->facts).begin();
  for (const AttributeWord& attribute : word->attributes) {
    const ConstAttribute one = *here;
    const ConstAttribute other = *there;
    ++here;
    ++there;
    const bool counts = attribute.isContent && &attribute != parts.holding &&
                        !(parts.isDescription && word->Describes(*attribute.facts));
    if (!counts) continue;
    dimension_ = attribute.dimension;
    scaleBefore_ = before_.Scales().Of(dimension_);
    scaleAfter_ = after_.Scales().Of(dimension_);
    if (!SameAttribute(one, other)) return false;
  }
  return parts.isDescription || SameDescriptions(before, after);
}

bool Lockstep::SameAttribute(const ConstAttribute& before, const ConstAttribute& after) {
  if (before.State() != after.State()) return false;
  bool same = true;
  before.Visit([&](const auto& value) {
    const auto* const other = after.As<std::remove_cvref_t<decltype(value)>>();
    same = other != nullptr && SameHeld(value, *other);
  });
  return same;
}

bool Lockstep::SameDescriptions(const IFC::IfcEntity& before, const IFC::IfcEntity& after) {
  if (!before.visited && !after.visited) return true;
  const auto here = before_.DescriptionsOf(before);
  const auto there = after_.DescriptionsOf(after);
  if (here.size() != there.size()) return false;
  for (std::size_t i = 0; i < here.size(); ++i) {
    if (!SameContent(*here[i].by, *there[i].by, {.isDescription = true})) return false;
  }
  return true;
}

}  // namespace corvel::host::diff
