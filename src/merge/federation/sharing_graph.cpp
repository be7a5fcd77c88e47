#include "merge/federation/sharing_graph.h"

#include <algorithm>
#include <utility>

namespace corvel {

SharingMarks::SharingMarks() : first_(IFC::NextVisitGeneration()) {
  for (std::uint32_t i = 1; i < kStamps; ++i) IFC::NextVisitGeneration();
}

IFC::IfcEntity* SharingGraph::Target(IFC::IfcEntity* referred) const {
  if (marks_.Has(*referred, SharingMark::kCandidate)) return referred;
  return model_.Container().entities.Find(referred->marker);
}

bool SharingGraph::Gather(Ticker& ticker) {
  for (const auto& [number, entity] : model_.Container().entities) {
    if (entity->marker != IFC::kDeleted && number != IFC::kUnfiled) GatherFrom(number, *entity);
    if (!ticker.Advance()) return false;
  }
  std::sort(descriptions_.begin(), descriptions_.end());
  return true;
}

void SharingGraph::GatherFrom(std::uint32_t number, IFC::IfcEntity& entity) {
  if (entity.carries) return PinAllReferred(entity);
  const SharingPlan& plan = plans_.Of(entity);
  if (plan.isShareable) {
    marks_.Set(entity, SharingMark::kCandidate);
    ++candidates_;
  }
  for (const AttributeFacts* const facts : plan.owning) {
    ForEachReferred(entity, *facts, [this](IFC::IfcEntity& member) {
      if (IFC::IfcEntity* const target = Target(&member)) NoteOwned(*target);
    });
  }
  for (std::uint32_t end = 0; end < plan.described.size(); ++end) {
    ForEachReferred(entity, *plan.described[end], [&](IFC::IfcEntity& described) {
      IFC::IfcEntity* const target = Target(&described);
      if (target == nullptr || !plans_.Of(*target).isShareable) return;
      marks_.Set(*target, SharingMark::kDescribed);
      descriptions_.push_back({target->marker, number, end});
    });
  }
}

// There is more to such an object than its attributes tell, and so may be to what it refers to.
void SharingGraph::PinAllReferred(const IFC::IfcEntity& entity) {
  const auto pin = [this](IFC::IfcEntity& referred) {
    if (IFC::IfcEntity* const target = Target(&referred)) marks_.Set(*target, SharingMark::kPinned);
  };
  ForEachInValue(entity, pin);
}

void SharingGraph::NoteOwned(IFC::IfcEntity& member) const {
  const bool hasOwner = marks_.Has(member, SharingMark::kOwned);
  marks_.Set(member, hasOwner ? SharingMark::kPinned : SharingMark::kOwned);
}

std::span<const SharingGraph::Description> SharingGraph::DescriptionsOf(
    std::uint32_t number) const {
  const auto [first, last] =
      std::equal_range(descriptions_.begin(), descriptions_.end(), Description{number, 0, 0},
                       [](const Description& one, const Description& other) {
                         return one.described < other.described;
                       });
  return {first, last};
}

bool SharingGraph::PinEqualMembers(Ticker& ticker, std::size_t& pinned) {
  for (const auto& [number, entity] : model_.Container().entities) {
    if (entity->marker != IFC::kDeleted && !entity->carries) {
      for (const AttributeFacts* const facts : plans_.Of(*entity).distinct) {
        const auto* const members = Attribute(*entity, *facts).As<EntityList>();
        if (members != nullptr && members->size() > 1) pinned += PinEqual(*members);
      }
    }
    if (!ticker.Advance()) return false;
  }
  return true;
}

// The first stays free: it is the one that the others are told from.
std::size_t SharingGraph::PinEqual(const EntityList& members) {
  members_.clear();
  for (std::size_t i = 0; i < members.size(); ++i) {
    if (members[i] == nullptr || members[i]->inlineValue) continue;
    IFC::IfcEntity* const target = Target(members[i]);
    if (target == nullptr || !marks_.Has(*target, SharingMark::kCandidate)) continue;
    members_.emplace_back(target->marker, i);
  }
  std::sort(members_.begin(), members_.end());
  std::size_t pinned = 0;
  const IFC::IfcEntity* first = nullptr;
  for (std::size_t i = 0; i < members_.size(); ++i) {
    const auto& [marker, place] = members_[i];
    IFC::IfcEntity* const member = Target(members[place]);
    if (i == 0 || members_[i - 1].first != marker) {
      first = member;
    } else if (member != first && !marks_.Has(*member, SharingMark::kPinned)) {
      marks_.Set(*member, SharingMark::kPinned);
      ++pinned;
    }
  }
  return pinned;
}

}  // namespace corvel
