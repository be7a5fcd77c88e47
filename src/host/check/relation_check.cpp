#include "host/check/relation_check.h"

#include <algorithm>
#include <string>

#include "host/wrapped_text.h"

namespace corvel::host {

RelationCheck::RelationCheck(std::optional<SchemaNamespace> release)
    : release_(release), bounds_(release) {
  for (const InverseBound& bound : InverseBounds()) owners_.emplace_back(bound.owner);
}

RelationCheck::ClassPlan RelationCheck::PlanOf(const IFC::IfcEntity& entity) {
  ClassPlan plan;
  if (!release_) return plan;
  plan.bounds = bounds_.Of(entity);
  const std::span<const InverseBound> all = InverseBounds();
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (all[i].least == 0 || !all[i].HoldsIn(*release_)) continue;
    if (owners_[i].IsTrueOf(entity)) plan.needs.push_back(static_cast<std::uint8_t>(i));
  }
  return plan;
}

void RelationCheck::Enter(const IFC::IfcEntity* object, const BoundsOfRelations::Bound& bound) {
  if (object == nullptr || FindFacts(*object) == nullptr || !bounds_.Binds(bound, *object)) return;
  places_.push_back(EntryOf(*object, bound.index));
}

void RelationCheck::Look(const IFC::IfcEntity& entity, const ClassPlan& plan) {
  for (const std::uint8_t index : plan.needs) needs_.push_back(EntryOf(entity, index));
  for (const BoundsOfRelations::Bound& bound : plan.bounds) {
    const ConstAttribute attribute(entity, *bound.attribute);
    // Who stands in one list twice is told by another rule.
    const std::size_t before = places_.size();
    attribute.ForEach<IFC::IfcEntity*>([&](const IFC::IfcEntity* object) { Enter(object, bound); });
    const auto begin = places_.begin() + static_cast<std::ptrdiff_t>(before);
    std::sort(begin, places_.end());
    places_.erase(std::unique(begin, places_.end()), places_.end());
  }
}

void RelationCheck::Tell(RuleId rule, Entry entry, std::uint64_t count,
                         const IFC::MainContainer& container, Findings& findings) {
  const auto number = static_cast<std::uint32_t>(entry >> kIndexBits);
  const InverseBound& bound = InverseBounds()[entry & ((Entry{1} << kIndexBits) - 1)];
  const IFC::IfcEntity& entity = *container.entities.Find(number);
  const std::string subject =
      std::string(FindFacts(entity)->name) + " in " + std::string(bound.relation);
  findings.Add(rule, subject,
               {.number = number,
                .what = Counted(count, u"relation", u"relations"),
                .parts = {{PlacePart::Kind::kWord, u"said.relations"},
                          {PlacePart::Kind::kNumber, Widen(std::to_string(count))}}});
}

void RelationCheck::Finish(const IFC::MainContainer& container, Findings& findings) {
  std::sort(places_.begin(), places_.end());
  for (auto at = places_.begin(); at != places_.end();) {
    const auto end = std::upper_bound(at, places_.end(), *at);
    const InverseBound& bound = InverseBounds()[*at & ((Entry{1} << kIndexBits) - 1)];
    const auto count = static_cast<std::uint64_t>(end - at);
    if (bound.most != 0 && count > bound.most) {
      Tell(bound.isInverse ? RuleId::kManyRelations : RuleId::kSeveralAnswers, *at, count,
           container, findings);
    }
    at = end;
  }
  for (const Entry need : needs_) {
    const auto [begin, end] = std::equal_range(places_.begin(), places_.end(), need);
    const InverseBound& bound = InverseBounds()[need & ((Entry{1} << kIndexBits) - 1)];
    const auto count = static_cast<std::uint64_t>(end - begin);
    if (count < bound.least) Tell(RuleId::kFewRelations, need, count, container, findings);
  }
}

}  // namespace corvel::host
