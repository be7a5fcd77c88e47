#include "host/diff/lockstep.h"

#include <algorithm>

#include "host/diff/value_digests.h"
#include "platform/prefetch.h"

namespace corvel::host::diff {

namespace {

constexpr unsigned kDeepest = 200;

// The members of a list lie anywhere in memory: so many are on their way from there.
constexpr std::size_t kAhead = 8;

// Both ends of the objects.
void Fetch(const IFC::IfcEntity* one, const IFC::IfcEntity* other) {
  constexpr std::ptrdiff_t kLine = 64;
  for (const IFC::IfcEntity* const entity : {one, other}) {
    if (entity == nullptr) continue;
    platform::PrefetchToRead(entity);
    platform::PrefetchToRead(reinterpret_cast<const char*>(entity) - kLine);
  }
}

}  // namespace

Lockstep::Lockstep(const ComparedModel& before, const ComparedModel& after, const Pairing& pairing,
                   const Tolerance& tolerance)
    : before_(before),
      after_(after),
      pairing_(pairing),
      tolerance_(tolerance),
      partnersOfRelations_(before.RelationCount()) {}

bool Lockstep::Same(std::size_t before, std::size_t after) {
  depth_ = 0;
  return SameContent(*before_.Objects()[before], *after_.Objects()[after], {}) &&
         SameRelations(before, after);
}

bool Lockstep::SameRelations(std::size_t before, std::size_t after) {
  return SameInAnyOrder(before_.RelationsOf(before), after_.RelationsOf(after),
                        [this](const IFC::IfcEntity* one, const IFC::IfcEntity* other) {
                          return SameRelation(*one, *other);
                        });
}

bool Lockstep::SameRelation(const IFC::IfcEntity& before, const IFC::IfcEntity& after) {
  const IFC::IfcEntity*& partner = partnersOfRelations_[before_.NumberOf(before)];
  if (partner == &after) return true;
  const AttributeWord* const holding = before_.HoldingAttribute(before);
  if (holding == nullptr || holding != after_.HoldingAttribute(after)) return false;
  if (!SameContent(before, after, {.holding = holding})) return false;
  if (!HoldsObjectsAlone(before, *holding) || !HoldsObjectsAlone(after, *holding)) return false;
  partner = &after;
  return true;
}

bool Lockstep::HoldsObjectsAlone(const IFC::IfcEntity& relation, const AttributeWord& holding) {
  bool alone = true;
  ConstAttribute(relation, *holding.facts).ForEach<IFC::IfcEntity*>([&](const auto* held) {
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
  if (before->inlineValue != after->inlineValue || ComparedModel::HasIdentity(*after)) return false;
  if (ArePartners(*before, *after)) return true;
  if (depth_ == kDeepest) return false;
  ++depth_;
  const bool same = SameContent(*before, *after, {});
  --depth_;
  if (same && !before->inlineValue) ComparedModel::PartnerOf(*before) = after->marker;
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
    const Held held = {attribute.dimension, before_.Scales().Of(attribute.dimension),
                       after_.Scales().Of(attribute.dimension),
                       attribute.isUnordered[0] && attribute.facts->depth == 1};
    if (!SameAttribute(one, other, held)) return false;
  }
  return parts.isDescription || SameDescriptions(before, after);
}

bool Lockstep::SameAttribute(const ConstAttribute& before, const ConstAttribute& after,
                             const Held& held) {
  if (before.State() != after.State()) return false;
  bool same = true;
  before.Visit([&](const auto& value) {
    const auto* const other = after.As<std::remove_cvref_t<decltype(value)>>();
    same = other != nullptr && SameHeld(value, *other, held);
  });
  return same;
}

bool Lockstep::SameDescriptions(const IFC::IfcEntity& before, const IFC::IfcEntity& after) {
  if (!before.visited && !after.visited) return true;
  const auto here = before_.DescriptionsOf(before);
  const auto there = after_.DescriptionsOf(after);
  using Description = ComparedModel::Description;
  return SameInAnyOrder(here, there, [this](const Description& one, const Description& other) {
    return SameContent(*one.by, *other.by, {.isDescription = true});
  });
}

bool Lockstep::SameHeld(const EntityList& before, const EntityList& after, const Held& held) {
  if (before.size() != after.size()) return false;
  for (std::size_t i = 0; i < std::min(kAhead, before.size()); ++i) Fetch(before[i], after[i]);
  const auto areSame = [this](const IFC::IfcEntity* one, const IFC::IfcEntity* other) {
    return SameValues(one, other);
  };
  if (held.isUnordered) return SameInAnyOrder(before, after, areSame);
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (!areSame(before[i], after[i])) return false;
  }
  return true;
}

}  // namespace corvel::host::diff
