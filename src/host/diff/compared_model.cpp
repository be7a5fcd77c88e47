#include "host/diff/compared_model.h"

#include <algorithm>
#include <array>
#include <functional>

#include "platform/prefetch.h"
#include "schema/attributes.h"

namespace corvel::host::diff {

namespace {

// Through typed values that stand in the record, which may hold lists of references.
template <class Action>
void ForEachReferred(const IFC::IfcEntity& holder, const AttributeFacts& facts, Action action) {
  ConstAttribute(holder, facts).ForEach<IFC::IfcEntity*>([&](const IFC::IfcEntity* referred) {
    if (referred == nullptr) return;
    if (!referred->inlineValue) return action(*const_cast<IFC::IfcEntity*>(referred));
    if (FindFacts(*referred) == nullptr) return;
    for (const ConstAttribute attribute : AttributesOf(*referred)) {
      attribute.ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* const inner) {
        if (inner != nullptr && !inner->inlineValue) action(*inner);
      });
    }
  });
}

bool IsBefore(const IFC::IfcEntity* one, const IFC::IfcEntity* other) {
  return std::less<>()(one, other);
}

}  // namespace

ComparedModel::ComparedModel(const IfcDocument& document, ClassWords& words)
    : document_(document), words_(words), scales_(ScalesOf(document.getIfcUnitAssignment())) {
  Sort();
  SetApart();
  Relate();
}

// By roles. So little is done with each record that one waits for nothing but memory: many at once.
void ComparedModel::Sort() {
  constexpr std::size_t kMany = 64;
  std::array<IFC::IfcEntity*, kMany> batch;
  std::size_t size = 0;
  const auto finish = [&] {
    for (std::size_t i = 0; i < size; ++i) Sort(*batch[i]);
    size = 0;
  };
  for (const auto [number, entity] : document_.mainContainer->entities) {
    platform::PrefetchToRead(entity);
    batch[size++] = entity;
    if (size == kMany) finish();
  }
  finish();
  for (std::size_t i = 0; i < objects_.size(); ++i) {
    objects_[i]->visitStamp = static_cast<std::uint32_t>(i + 1);
  }
}

// Most records are values and as reading has left them.
void ComparedModel::Sort(IFC::IfcEntity& entity) {
  if (entity.visited) entity.visited = false;
  if (entity.visitStamp != 0) entity.visitStamp = 0;
  if (PartnerOf(entity) != 0) PartnerOf(entity) = 0;
  const ClassWord* const word = words_.Of(entity);
  if (word == nullptr) return;
  switch (word->role) {
    case Role::kValue: break;
    case Role::kObject: ++rootedCount_; [[fallthrough]];
    case Role::kContext: objects_.push_back(&entity); break;
    case Role::kRelation: relations_.push_back(&entity); break;
    case Role::kProperties: properties_.push_back(&entity); break;
  }
  if (!word->describing.empty()) Describe(entity, *word);
}

void ComparedModel::Describe(IFC::IfcEntity& entity, const ClassWord& word) {
  for (const AttributeFacts* const attribute : word.describing) {
    ForEachReferred(entity, *attribute, [&](const IFC::IfcEntity& described) {
      descriptions_.push_back({&described, &entity});
    });
  }
}

void ComparedModel::MarkProperties(const IFC::IfcEntity& holder, const ClassWord& word) {
  for (const AttributeWord& attribute : word.attributes) {
    const bool mayLead = word.role == Role::kRelation || attribute.isPropertySets;
    if (!mayLead || !Refers(attribute.facts->kind)) continue;
    ForEachReferred(holder, *attribute.facts, [this](IFC::IfcEntity& used) {
      const ClassWord* const ofUsed = words_.Of(used);
      if (used.visited || ofUsed == nullptr || ofUsed->role != Role::kProperties) return;
      used.visited = true;
      used_.push_back(&used);
    });
  }
}

// Relations and sets of properties that belong to nothing.
void ComparedModel::SetApart() {
  for (const auto* const holders : {&objects_, &relations_}) {
    for (const IFC::IfcEntity* const holder : *holders)
      MarkProperties(*holder, *words_.Of(*holder));
  }
  std::vector<IFC::IfcEntity*> alone;
  const auto isAlone = [&](IFC::IfcEntity* relation) {
    if (FindHolding(*relation) != nullptr) return false;
    alone.push_back(relation);
    return true;
  };
  std::erase_if(relations_, isAlone);
  for (IFC::IfcEntity* const properties : properties_) {
    if (!properties->visited) alone.push_back(properties);
  }
  properties_.clear();
  objects_.insert(objects_.end(), alone.begin(), alone.end());
  for (std::size_t i = objects_.size() - alone.size(); i < objects_.size(); ++i) {
    objects_[i]->visitStamp = static_cast<std::uint32_t>(i + 1);
  }
  for (IFC::IfcEntity* const used : used_) used->visited = false;
  used_ = {};
  std::stable_sort(descriptions_.begin(), descriptions_.end(),
                   [](const Description& one, const Description& other) {
                     return IsBefore(one.described, other.described);
                   });
  for (const Description& description : descriptions_) {
    const_cast<IFC::IfcEntity*>(description.described)->visited = true;
  }
}

bool ComparedModel::RefersToIdentity(const IFC::IfcEntity& relation,
                                     const AttributeWord& attribute) const {
  // Nearly always the first one tells it.
  const ConstAttribute held(relation, *attribute.facts);
  if (const auto* const list = held.As<EntityList>(); list != nullptr && !list->empty()) {
    if ((*list)[0] != nullptr && HasIdentity(*(*list)[0])) return true;
  }
  bool refers = false;
  ForEachReferred(relation, *attribute.facts, [&](const IFC::IfcEntity& referred) {
    refers = refers || HasIdentity(referred);
  });
  return refers;
}

const AttributeWord* ComparedModel::FindHolding(const IFC::IfcEntity& relation) const {
  const ClassWord* const word = words_.Of(relation);
  for (const auto side : {&AttributeWord::isRelated, &AttributeWord::isRelating}) {
    for (const AttributeWord& attribute : word->attributes) {
      if (attribute.*side && Refers(attribute.facts->kind) &&
          RefersToIdentity(relation, attribute)) {
        return &attribute;
      }
    }
  }
  return nullptr;
}

void ComparedModel::Relate() {
  struct Fact {
    std::uint32_t about = 0;  // index
    std::uint32_t relation = 0;
  };
  std::vector<Fact> facts;
  firstRelation_.assign(objects_.size() + 1, 0);
  for (std::size_t i = 0; i < relations_.size(); ++i) {
    const IFC::IfcEntity& relation = *relations_[i];
    NumberOf(relation);
    holding_.push_back(FindHolding(relation));
    ForEachReferred(relation, *holding_.back()->facts, [&](const IFC::IfcEntity& holder) {
      if (!HasIdentity(holder)) return;
      facts.push_back({static_cast<std::uint32_t>(IndexOf(holder)), static_cast<std::uint32_t>(i)});
      ++firstRelation_[IndexOf(holder) + 1];
    });
  }
  for (std::size_t i = 0; i < objects_.size(); ++i) firstRelation_[i + 1] += firstRelation_[i];
  relationsOf_.resize(firstRelation_.back());
  std::vector<std::uint32_t> next(firstRelation_.begin(), firstRelation_.end() - 1);
  for (const Fact& fact : facts) relationsOf_[next[fact.about]++] = relations_[fact.relation];
  relations_ = {};
}

std::span<IFC::IfcEntity* const> ComparedModel::RelationsOf(std::size_t index) const {
  const std::uint32_t first = firstRelation_[index];
  return {relationsOf_.data() + first, firstRelation_[index + 1] - first};
}

std::span<const ComparedModel::Description> ComparedModel::DescriptionsOf(
    const IFC::IfcEntity& entity) const {
  if (!entity.visited) return {};
  const auto first = std::lower_bound(descriptions_.begin(), descriptions_.end(), &entity,
                                      [](const Description& one, const IFC::IfcEntity* sought) {
                                        return IsBefore(one.described, sought);
                                      });
  auto last = first;
  while (last != descriptions_.end() && last->described == &entity) ++last;
  return {first, last};
}

}  // namespace corvel::host::diff
