#include "merge/federation/share_equal.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "merge/federation/equal_objects.h"
#include "merge/federation/sharing_graph.h"
#include "merge/federation/whole_reals.h"

namespace corvel {

namespace {

class Sharer {
 public:
  Sharer(FederatedModel& model, NumberForm numbers)
      : model_(model), numbers_(numbers), graph_(model) {}

  bool Run(Ticker& ticker, std::size_t& shared) {
    model_.Container().RefreshMarkers();
    model_.Settle();
    if (numbers_ == NumberForm::kTold && !MakeRealsAsWritten(model_, graph_.Plans(), ticker)) {
      return false;
    }
    if (!graph_.Gather(ticker) || !FindEqual(ticker)) return false;
    std::size_t pinned = 0;
    if (!graph_.PinEqualMembers(ticker, pinned)) return false;
    if (pinned != 0) {
      // They and all that leads to them are not equal to anything any more.
      StartAnew();
      if (!FindEqual(ticker)) return false;
    }
    shared = LetGiveWay();
    return true;
  }

 private:
  using Pair = std::pair<IFC::IfcEntity*, IFC::IfcEntity*>;  // who gives way, and to whom

  bool FindEqual(Ticker& ticker) { return EqualObjects(model_, graph_, numbers_).Find(ticker); }

  void StartAnew() {
    for (const auto& [number, entity] : model_.Container().entities) {
      if (IsCandidate(*entity)) graph_.Marks().ForgetPass(*entity);
    }
    model_.Container().FillMarkers();
    model_.Settle();
  }

  bool IsCandidate(const IFC::IfcEntity& entity) const {
    return graph_.Marks().Has(entity, SharingMark::kCandidate);
  }
  bool IsOwned(const IFC::IfcEntity& entity) const {
    return graph_.Marks().Has(entity, SharingMark::kOwned);
  }

  std::size_t LetGiveWay() {
    IFC::MainContainer& container = model_.Container();
    // Members are equal to those of others, and give way with their owner only.
    for (const auto& [number, entity] : container.entities) {
      if (IsCandidate(*entity) && IsOwned(*entity)) entity->marker = number;
    }
    std::size_t shared = 0;
    for (const auto& [number, entity] : container.entities) {
      if (!IsCandidate(*entity) || entity->marker == number) continue;
      if (entity->marker == IFC::kDeleted) continue;
      shared += GiveWay(number, *entity, *container.entities.Find(entity->marker));
    }
    return shared;
  }

  // With its members, and theirs.
  std::size_t GiveWay(std::uint32_t number, IFC::IfcEntity& entity, IFC::IfcEntity& survivor) {
    model_.GiveWayForGood(number, entity, survivor);
    std::size_t count = 1;
    waiting_.emplace_back(&entity, &survivor);
    while (!waiting_.empty()) {
      const Pair owners = waiting_.back();
      waiting_.pop_back();
      for (const AttributeFacts* const facts : graph_.PlanOf(*owners.first).owning) {
        count += LetMembersGiveWay(owners, *facts);
      }
    }
    return count;
  }

  std::size_t LetMembersGiveWay(const Pair& owners, const AttributeFacts& facts) {
    const std::vector<IFC::IfcEntity*> members = MembersOf(*owners.first, facts);
    const std::vector<IFC::IfcEntity*> survivors = MembersOf(*owners.second, facts);
    std::size_t count = 0;
    for (std::size_t i = 0; i < std::min(members.size(), survivors.size()); ++i) {
      if (members[i] == survivors[i] || !IsOwned(*members[i])) continue;
      model_.GiveWayForGood(members[i]->marker, *members[i], *survivors[i]);
      waiting_.emplace_back(members[i], survivors[i]);
      ++count;
    }
    return count;
  }

  // Both owners are written alike, so that what stays of their lists corresponds.
  std::vector<IFC::IfcEntity*> MembersOf(IFC::IfcEntity& owner, const AttributeFacts& facts) {
    std::vector<IFC::IfcEntity*> members;
    graph_.ForEachReferred(owner, facts, [&](IFC::IfcEntity& member) {
      if (IFC::IfcEntity* const target = graph_.Target(&member)) members.push_back(target);
    });
    return members;
  }

  FederatedModel& model_;
  NumberForm numbers_;
  SharingGraph graph_;
  std::vector<Pair> waiting_;
};

}  // namespace

bool ShareEqual(FederatedModel& model, NumberForm numbers, Ticker& ticker, std::size_t& shared) {
  return Sharer(model, numbers).Run(ticker, shared);
}

}  // namespace corvel
