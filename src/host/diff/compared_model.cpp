#include "host/diff/compared_model.h"

#include <algorithm>
#include <array>
#include <functional>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "platform/prefetch.h"
#include "schema/attributes.h"

namespace corvel::host::diff {

namespace {

// Through typed values that stand in the record, which may hold lists of references.
template <class Action>
void ForEachReferred(const ConstAttribute& held, Action action) {
  held.ForEach<IFC::IfcEntity*>([&](const IFC::IfcEntity* referred) {
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

template <class Action>
void ForEachReferred(const IFC::IfcEntity& holder, const AttributeFacts& facts, Action action) {
  ForEachReferred(ConstAttribute(holder, facts), action);
}

bool IsBefore(const IFC::IfcEntity* one, const IFC::IfcEntity* other) {
  return std::less<>()(one, other);
}

}  // namespace

ComparedModel::ComparedModel(const IfcDocument& document, ClassWords& words, Shortcuts shortcuts)
    : document_(document), words_(words), scales_(ScalesOf(document.getIfcUnitAssignment())) {
  Sort();
  SetApart(shortcuts);
  SortDescriptions();
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
  values_.reserve(document_.mainContainer->entities.Size());
  for (const auto [number, entity] : document_.mainContainer->entities) {
    platform::PrefetchToRead(entity);
    batch[size++] = entity;
    if (size == kMany) finish();
  }
  finish();
  Identify(0);
}

void ComparedModel::AddObject(IFC::IfcEntity& object, const ClassWord& word) {
  const auto* const root = EntityCast<IFC::VirtualIfcRoot>(&object);
  objects_.push_back(&object);
  facets_.push_back({&word, root == nullptr ? kEmptyNarrow : root->getGlobalId()});
}

// Those from `first` on.
void ComparedModel::Identify(std::size_t first) {
  for (std::size_t i = first; i < objects_.size(); ++i) {
    objects_[i]->visitStamp = static_cast<std::uint32_t>(i + 1);
  }
}

// Most records are values and as reading has left them.
void ComparedModel::Sort(IFC::IfcEntity& entity) {
  if (entity.visited) entity.visited = false;
  if (entity.visitStamp != 0) entity.visitStamp = 0;
  if (PartnerOf(entity).number != 0) SetPartner(entity, {});
  const ClassWord* const word = words_.Of(entity);
  if (word == nullptr) return;
  if (word->role == Role::kObject || word->role == Role::kContext) {
    if (word->role == Role::kObject) ++rootedCount_;
    AddObject(entity, *word);
    firstBehind_.push_back(static_cast<std::uint32_t>(values_.size()));
    if (word->hasPropertySets) typesWithSets_.push_back(&entity);
  } else if (word->role == Role::kRelation) {
    relations_.push_back(&entity);
  } else {
    values_.push_back(&entity);
    if (word->role == Role::kProperties) properties_.push_back(&entity);
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

// Relations and sets of properties that belong to nothing get an identity.
void ComparedModel::SetApart(Shortcuts shortcuts) {
  std::vector<IFC::IfcEntity*> used;
  for (const IFC::IfcEntity* const type : typesWithSets_) {
    for (const AttributeWord& attribute : words_.Of(*type)->attributes) {
      if (!attribute.isPropertySets) continue;
      ForEachReferred(*type, *attribute.facts,
                      [&](IFC::IfcEntity& referred) { MarkProperties(referred, used); });
    }
  }
  typesWithSets_ = {};
  std::vector<IFC::IfcEntity*> alone;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < relations_.size(); ++i) {
    constexpr std::size_t kAway = 8;
    if (i + kAway < relations_.size()) FetchRecord(relations_[i + kAway]);
    IFC::IfcEntity* const relation = relations_[i];
    if (Relate(*relation, used)) {
      relations_[kept++] = relation;
    } else {
      alone.push_back(relation);
    }
  }
  relations_.resize(kept);
  const bool knowsAllHolders = alone.empty() && shortcuts == Shortcuts::kTaken;
  for (IFC::IfcEntity* const properties : properties_) {
    if (!properties->visited) alone.push_back(properties);
  }
  properties_ = {};
  const std::size_t first = objects_.size();
  for (IFC::IfcEntity* const one : alone) AddObject(*one, *words_.Of(*one));
  Identify(first);
  for (IFC::IfcEntity* const properties : used) properties->visited = false;
  if (!knowsAllHolders) RelateAnew();
  SortFacts();
}

// A set of properties that something leads to.
void ComparedModel::MarkProperties(IFC::IfcEntity& referred, std::vector<IFC::IfcEntity*>& used) {
  if (referred.visited) return;
  const ClassWord* const word = words_.Of(referred);
  if (word == nullptr || word->role != Role::kProperties) return;
  referred.visited = true;
  used.push_back(&referred);
}

// False: it holds nothing with an identity.
bool ComparedModel::Relate(IFC::IfcEntity& relation, std::vector<IFC::IfcEntity*>& used) {
  const ClassWord& word = *words_.Of(relation);
  const ConstAttributes all(relation, *word.facts);
  const AttributeWord* related = nullptr;
  const AttributeWord* relating = nullptr;
  for (const AttributeWord& attribute : word.attributes) {
    if (!attribute.isContent || !Refers(attribute.facts->kind)) continue;
    bool holds = false;
    ForEachReferred(all.Of(*attribute.facts), [&](IFC::IfcEntity& referred) {
      if (HasIdentity(referred)) {
        holds = true;
      } else {
        MarkProperties(referred, used);
      }
    });
    if (holds && attribute.isRelated && related == nullptr) related = &attribute;
    if (holds && attribute.isRelating && relating == nullptr) relating = &attribute;
  }
  if (related == nullptr && relating == nullptr) return false;
  AddFacts(relation, related != nullptr ? *related : *relating);
  return true;
}

// Relations that belong to nothing have turned out to be objects that others may hold.
void ComparedModel::RelateAnew() {
  holding_.clear();
  holdsObjectsAlone_.clear();
  facts_.clear();
  for (IFC::IfcEntity* const relation : relations_) AddFacts(*relation, *FindHolding(*relation));
}

void ComparedModel::AddFacts(IFC::IfcEntity& relation, const AttributeWord& holding) {
  const std::size_t number = NumberOf(relation);
  ForEachReferred(relation, *holding.facts, [&](const IFC::IfcEntity& holder) {
    if (!HasIdentity(holder)) return;
    facts_.push_back(
        {static_cast<std::uint32_t>(IndexOf(holder)), static_cast<std::uint32_t>(number)});
  });
  bool alone = true;
  ConstAttribute(relation, *holding.facts).ForEach<IFC::IfcEntity*>([&](const auto* held) {
    alone = alone && held != nullptr && HasIdentity(*held);
  });
  holding_.push_back(&holding);
  holdsObjectsAlone_.push_back(alone);
}

// By the objects that they are about.
void ComparedModel::SortFacts() {
  firstRelation_.assign(objects_.size() + 1, 0);
  for (const Fact& fact : facts_) ++firstRelation_[fact.about + 1];
  for (std::size_t i = 0; i < objects_.size(); ++i) firstRelation_[i + 1] += firstRelation_[i];
  relationsOf_.resize(firstRelation_.back());
  std::vector<std::uint32_t> next(firstRelation_.begin(), firstRelation_.end() - 1);
  for (const Fact& fact : facts_) relationsOf_[next[fact.about]++] = relations_[fact.relation];
  facts_ = {};
  relations_ = {};
}

void ComparedModel::SortDescriptions() {
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
