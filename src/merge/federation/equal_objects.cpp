#include "merge/federation/equal_objects.h"

#include "step/reader/block_hash.h"

namespace corvel {

namespace {

// The halves of the result find the slot and tell it from others: each depends on all of the text.
std::uint64_t HashOfText(std::string_view text) {
  std::uint64_t hash = HashOfBlock(text);
  hash *= 0x9E3779B97F4A7C15;
  hash ^= hash >> 29;
  hash *= 0xBF58476D1CE4E5B9;
  return hash ^ hash >> 32;
}

}  // namespace

EqualObjects::EqualObjects(FederatedModel& model, SharingGraph& graph, NumberForm numbers)
    : model_(model),
      graph_(graph),
      marks_(graph.Marks()),
      text_(model, graph, numbers),
      textOfOther_(model, graph, numbers),
      table_(graph.CandidateCount()) {}

bool EqualObjects::Find(Ticker& ticker) {
  model_.Container().NoteChangedMarkers();
  for (const auto& [number, entity] : model_.Container().entities) {
    if (marks_.Has(*entity, SharingMark::kCandidate)) TakeTurn(*entity);
    if (!ticker.Advance()) return false;
  }
  return true;
}

void EqualObjects::TakeTurn(IFC::IfcEntity& entity) {
  if (marks_.Has(entity, SharingMark::kDone)) return;
  stack_.push_back(&entity);
  while (!stack_.empty()) {
    IFC::IfcEntity& next = *stack_.back();
    const bool isDone = marks_.Has(next, SharingMark::kDone);
    if (!isDone && !marks_.Has(next, SharingMark::kOpen)) {
      marks_.Set(next, SharingMark::kOpen);
      if (PushWhatComesFirst(next)) continue;
    }
    if (!isDone) Conclude(next);
    stack_.pop_back();
  }
}

// False: nothing does.
bool EqualObjects::PushWhatComesFirst(IFC::IfcEntity& entity) {
  const std::size_t before = stack_.size();
  for (const AttributeFacts* const facts : graph_.PlanOf(entity).references) {
    PushReferred(entity, *facts);
  }
  if (marks_.Has(entity, SharingMark::kDescribed)) PushBehindDescriptions(entity);
  return stack_.size() != before;
}

void EqualObjects::PushReferred(IFC::IfcEntity& holder, const AttributeFacts& facts) {
  const bool owns = graph_.PlanOf(holder).IsOwning(facts);
  graph_.ForEachReferred(holder, facts, [&](IFC::IfcEntity& referred) {
    Meet(holder, referred);
    // Who else refers to a member would have to tell equal members of different owners apart. And
    // of two owners of one member neither goes: it would have one then, and be like any other.
    const IFC::IfcEntity* const target = graph_.Target(&referred);
    if (target == nullptr || !marks_.Has(*target, SharingMark::kOwned)) return;
    if (!owns || marks_.Has(*target, SharingMark::kPinned)) {
      marks_.Set(holder, SharingMark::kPinned);
    }
  });
}

void EqualObjects::Meet(IFC::IfcEntity& holder, IFC::IfcEntity& referred) {
  IFC::IfcEntity* const target = graph_.Target(&referred);
  if (target == nullptr || !marks_.Has(*target, SharingMark::kCandidate)) return;
  if (target != &referred) marks_.Set(holder, SharingMark::kRefersToGone);
  if (marks_.Has(*target, SharingMark::kDone)) return;
  if (marks_.Has(*target, SharingMark::kOpen)) {
    marks_.Set(holder, SharingMark::kLone);
  } else if (WaitsForNothing(*target)) {
    Conclude(*target);
  } else {
    stack_.push_back(target);
  }
}

// Such as points: a list of a million of them needs no stack.
bool EqualObjects::WaitsForNothing(const IFC::IfcEntity& entity) {
  return graph_.PlanOf(entity).references.empty() && !marks_.Has(entity, SharingMark::kDescribed);
}

// What relations say of the object besides.
void EqualObjects::PushBehindDescriptions(const IFC::IfcEntity& entity) {
  for (const auto& [described, number, end] : graph_.DescriptionsOf(entity.marker)) {
    IFC::IfcEntity& describing = *model_.Container().entities.Find(number);
    if (!text_.CountsByValue(describing, entity)) continue;
    const SharingPlan& plan = graph_.PlanOf(describing);
    for (const AttributeFacts* const facts : plan.references) {
      if (!plan.IsDescribed(*facts)) PushReferred(describing, *facts);
    }
    // In a circle with the object: it stays by itself, and so does what it describes.
    if (marks_.Has(describing, SharingMark::kLone)) marks_.Set(describing, SharingMark::kPinned);
  }
}

// What gave way before has the number of its survivor, which may have got another marker now.
void EqualObjects::AlignGone(IFC::IfcEntity& holder) {
  for (const AttributeFacts* const facts : graph_.PlanOf(holder).references) {
    graph_.ForEachReferred(holder, *facts, [this](IFC::IfcEntity& referred) {
      const IFC::IfcEntity* const target = graph_.Target(&referred);
      if (target != nullptr) referred.marker = target->marker;
    });
  }
}

void EqualObjects::AlignDescriptions(const IFC::IfcEntity& entity) {
  for (const auto& [described, number, end] : graph_.DescriptionsOf(entity.marker)) {
    IFC::IfcEntity& describing = *model_.Container().entities.Find(number);
    if (marks_.Has(describing, SharingMark::kRefersToGone)) AlignGone(describing);
  }
}

void EqualObjects::Conclude(IFC::IfcEntity& entity) {
  marks_.Set(entity, SharingMark::kDone);
  if (marks_.Has(entity, SharingMark::kPinned) || marks_.Has(entity, SharingMark::kLone)) return;
  if (marks_.Has(entity, SharingMark::kRefersToGone)) AlignGone(entity);
  if (marks_.Has(entity, SharingMark::kDescribed)) AlignDescriptions(entity);
  const std::string_view text = text_.Of(entity);
  entity.marker = table_.FindOrEnter(HashOfText(text), entity.marker, [&](std::uint32_t number) {
    return textOfOther_.Of(*model_.Container().entities.Find(number)) == text;
  });
}

}  // namespace corvel
