#include "host/diff/lockstep.h"

#include <algorithm>

#include "host/diff/value_digests.h"

namespace corvel::host::diff {

namespace {

constexpr unsigned kDeepest = 200;

// The members of a list lie anywhere in memory: so many are on their way from there.
constexpr std::size_t kAhead = 8;

void Fetch(const IFC::IfcEntity* one, const IFC::IfcEntity* other) {
  FetchRecord(one);
  FetchRecord(other);
}

}  // namespace

Lockstep::Lockstep(const ComparedModel& before, const ComparedModel& after, const Pairing& pairing,
                   const Tolerance& tolerance, Shortcuts shortcuts)
    : before_(before),
      after_(after),
      pairing_(pairing),
      tolerance_(tolerance),
      isOff_(shortcuts == Shortcuts::kNone),
      partnersOfRelations_(before.RelationCount()) {}

void Lockstep::WalkValues() {
  if (isOff_) return;
  const std::size_t count = pairing_.laterOf.size();
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint32_t later = pairing_.laterOf[i];
    if (later == Pairing::kNone) continue;
    WalkValues(before_.ValuesInFrontOf(i), after_.ValuesInFrontOf(later));
  }
  WalkValues(before_.ValuesBehindAll(), after_.ValuesBehindAll());
}

// From the front up to where there is another class, and from the end as far as is left.
void Lockstep::WalkValues(ComparedModel::Values before, ComparedModel::Values after) {
  constexpr std::size_t kAway = 12;
  depth_ = 0;
  const auto walk = [&](const IFC::IfcEntity& one, const IFC::IfcEntity& other) {
    if (typeid(one) != typeid(other)) return false;
    SameValues(&one, &other);
    return true;
  };
  const std::size_t size = std::min(before.size(), after.size());
  std::size_t first = 0;
  for (; first < size; ++first) {
    if (first + kAway < size) Fetch(before[first + kAway], after[first + kAway]);
    if (!walk(*before[first], *after[first])) break;
  }
  std::size_t left = size - first;
  for (std::size_t end = 1; left > 0; --left, ++end) {
    if (!walk(*before[before.size() - end], *after[after.size() - end])) break;
  }
}

bool Lockstep::Same(std::size_t before, std::size_t after) {
  if (isOff_) return false;
  depth_ = 0;
  FetchRelations(before + 1, after + 1);
  return SameContent(*before_.Objects()[before], *after_.Objects()[after], {}) &&
         SameRelations(before, after);
}

// Most objects are asked for in their order, and most partners come in it too.
void Lockstep::FetchRelations(std::size_t before, std::size_t after) const {
  if (before >= before_.Objects().size() || after >= after_.Objects().size()) return;
  for (const IFC::IfcEntity* const relation : before_.RelationsOf(before)) FetchRecord(relation);
  for (const IFC::IfcEntity* const relation : after_.RelationsOf(after)) FetchRecord(relation);
}

bool Lockstep::SameRelations(std::size_t before, std::size_t after) {
  return SameInAnyOrder(before_.RelationsOf(before), after_.RelationsOf(after),
                        [this](const IFC::IfcEntity* one, const IFC::IfcEntity* other) {
                          return SameRelation(*one, *other);
                        });
}

bool Lockstep::SameRelation(const IFC::IfcEntity& before, const IFC::IfcEntity& after) {
  if (isOff_) return false;
  const IFC::IfcEntity*& partner = partnersOfRelations_[before_.NumberOf(before)];
  if (partner == &after) return true;
  const AttributeWord* const holding = before_.HoldingAttribute(before);
  if (holding == nullptr || holding != after_.HoldingAttribute(after)) return false;
  if (!SameContent(before, after, {.holding = holding})) return false;
  if (!before_.HoldsObjectsAlone(before) || !after_.HoldsObjectsAlone(after)) return false;
  partner = &after;
  return true;
}

bool Lockstep::SameIdentity(const IFC::IfcEntity& before, const IFC::IfcEntity& after) const {
  return ComparedModel::HasIdentity(before) && ComparedModel::HasIdentity(after) &&
         pairing_.laterOf[ComparedModel::IndexOf(before)] == ComparedModel::IndexOf(after);
}

bool Lockstep::SameValues(const IFC::IfcEntity* before, const IFC::IfcEntity* after) {
  if (before == nullptr || after == nullptr) return before == after;
  if (isOff_) return false;
  if (ComparedModel::HasIdentity(*before)) return SameIdentity(*before, *after);
  if (before->inlineValue != after->inlineValue || ComparedModel::HasIdentity(*after)) return false;
  return SameRecords(*before, *after);
}

// What was found is remembered, above all whom a record says the same as.
bool Lockstep::SameRecords(const IFC::IfcEntity& before, const IFC::IfcEntity& after) {
  const ComparedModel::Partner partner = ComparedModel::PartnerOf(before);
  const bool isKnown = partner.number != 0 && partner.number == after.marker;
  if (isKnown) return !partner.isDoubted;
  if (depth_ == kDeepest) return false;
  ++depth_;
  const bool same = SameContent(before, after, {});
  --depth_;
  const bool isNews = same || partner.number == 0 || partner.isDoubted;
  if (isNews && !before.inlineValue) ComparedModel::SetPartner(before, {after.marker, !same});
  return same;
}

// A reference to a relation says less than the relation: digests know what. What tells the unit of
// its own numbers is left to them as well.
bool Lockstep::SameContent(const IFC::IfcEntity& before, const IFC::IfcEntity& after,
                           const Parts& parts) {
  if (before.carries || after.carries || typeid(before) != typeid(after)) return false;
  const ClassWord* const word = before_.Words().Of(before);
  if (word == nullptr) return false;
  if (word->role == Role::kRelation && depth_ != 0) return false;
  if (word->hasBasisCurve && before_.Scales().angle != after_.Scales().angle) return false;
  const ConstAttributes here(before, *word->facts);
  const ConstAttributes there(after, *word->facts);
  for (const AttributeWord& attribute : word->attributes) {
    const bool counts = attribute.isContent && &attribute != parts.holding &&
                        !(parts.isDescription && word->Describes(*attribute.facts));
    if (!counts) continue;
    const ConstAttribute one = here.Of(*attribute.facts);
    const AttributeState state = one.State();
    const ConstAttribute other = there.Of(*attribute.facts);
    if (state != other.State()) return false;
    if (state != AttributeState::kValue) continue;
    if (attribute.isUnit || !SameAttribute(one, other, attribute)) return false;
  }
  return parts.isDescription || SameDescriptions(before, after);
}

bool Lockstep::SameAttribute(const ConstAttribute& before, const ConstAttribute& after,
                             const AttributeWord& attribute) {
  const Held held = {attribute.dimension, before_.Scales().Of(attribute.dimension),
                     after_.Scales().Of(attribute.dimension),
                     attribute.isUnordered[0] && attribute.facts->depth == 1};
  bool same = true;
  before.VisitWith(after,
                   [&](const auto& one, const auto& other) { same = SameHeld(one, other, held); });
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
