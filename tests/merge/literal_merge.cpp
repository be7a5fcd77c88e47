#include "literal_merge.h"

#include <algorithm>

#include "core/guid.h"

namespace corvel::test {

namespace {

constexpr std::uint32_t kDeleted = 0xFFFFFFF7u;

std::vector<LiteralEntity*> InOrderOfNumbers(const std::set<LiteralEntity*>& set) {
  std::vector<LiteralEntity*> sorted(set.begin(), set.end());
  std::sort(sorted.begin(), sorted.end(),
            [](const LiteralEntity* a, const LiteralEntity* b) { return a->marker < b->marker; });
  return sorted;
}

bool ParentIncludesChild(const LiteralEntity* relation, const LiteralEntity* child) {
  for (const LiteralEntity* const member : relation->children) {
    if (member == nullptr) continue;
    if (!child->isRoot || !member->isRoot) {
      if (child->className == member->className) return true;
    } else if (child->guid == member->guid) {
      return true;
    }
  }
  return false;
}

}  // namespace

void LiteralMerge::SetMarker(LiteralEntity* entity, std::uint32_t value) {
  if (value == 0) {
    world_.boxes.push_back(LogfileErrorBox(u"SetMarker error: Marker has to be > 0"));
  } else {
    entity->marker = value;
  }
}

// False when there is no number for it.
bool LiteralMerge::ChooseMarker(LiteralContainer& container, LiteralEntity* entity) {
  if (entity->marker != 0) {
    world_.uniqueMarker = std::max(world_.uniqueMarker, entity->marker);
  } else {
    if (world_.uniqueMarker > world_.largestNumber) return TakeSmallestFree(container, entity);
    SetMarker(entity, world_.uniqueMarker);
    ++world_.uniqueMarker;
  }
  if (container.entities.contains(entity->marker)) {
    Road("number clash");
    if (world_.uniqueMarker >= world_.largestNumber) return TakeSmallestFree(container, entity);
    ++world_.uniqueMarker;
    SetMarker(entity, world_.uniqueMarker);
  }
  return true;
}

bool LiteralMerge::TakeSmallestFree(LiteralContainer& container, LiteralEntity* entity) {
  for (std::uint32_t number = 1; number <= world_.largestNumber; ++number) {
    if (container.entities.contains(number)) continue;
    Road("number from the bottom");
    entity->marker = number;
    return true;
  }
  Road("no number left");
  if (!container.hasRunOutOfNumbers) {
    world_.reports.push_back({"",
                              u"All numbers up to #" + ToWide(world_.largestNumber) +
                                  u" are in use: there is none left for another object.\n",
                              1});
  }
  container.hasRunOutOfNumbers = true;
  return false;
}

void LiteralMerge::AddEntity(LiteralContainer& container, LiteralEntity* entity) {
  if (!ChooseMarker(container, entity)) return;
  if (container.entities.contains(entity->marker)) {
    Road("number clash that stays");
    if (container.hasRunOutOfNumbers) return;
    world_.boxes.push_back(
        LogfileErrorBox(u"AddEntity. Adding canceled -> Marker exist: " + ToWide(entity->marker)));
    return;
  }
  container.entities[entity->marker] = entity;
  if (entity->className != u"IfcProject") return;
  if (container.hasTree) {
    Road("second tree");
    world_.boxes.push_back(LogfileErrorBox(u"MainContainer::AddEntity. IfcTree already exists."));
  }
  container.hasTree = true;
}

void LiteralMerge::FillMarkers(LiteralContainer& container) {
  for (auto& [number, entity] : container.entities) {
    if (entity->marker != kDeleted) SetMarker(entity, number);
  }
}

void LiteralMerge::FillEntitiesGuidMap(LiteralContainer& container, const WideString& path) {
  container.entitiesGuidMap.clear();
  for (auto& [number, entity] : container.originalEntities) {
    if (!entity->isRoot || entity->marker == kDeleted) continue;
    if (entity->guid.empty()) {
      Road("empty GUID");
      entity->guid = CreateGUID();
      world_.reports.push_back({"",
                                u"Object " + entity->className +
                                    u" has no GUID. Generating new GUID: " + Widen(entity->guid) +
                                    u"\n",
                                2});
    }
    const std::string old = entity->guid;
    if (container.entitiesGuidMap.contains(old)) {
      Road("GUID twice in one model");
      entity->guid = CreateGUID();
      container.generatedGuids[path + ToWide(entity->marker) + Widen(old)] = entity->guid;
      world_.reports.push_back(
          {"",
           u"Object with GUID: \"" + Widen(old) +
               u"\" already exists. Multiple GUIDs are not allowed. New GUID will be created for "
               u"this object: \"" +
               Widen(entity->guid) + u"\"\n",
           2});
    }
    container.entitiesGuidMap[entity->guid] = entity;
  }
}

bool LiteralMerge::GoesOnAfterTick(const Tick& tick) {
  world_.ticks.push_back(tick);
  if (world_.ticks.size() - 1 != world_.cancelAt) return true;
  world_.boxes.push_back(CancelQuestionBox());
  return !world_.userMeansIt;
}

bool LiteralMerge::FillParentsLists(LiteralContainer& container, int share, const WideString& text,
                                    bool flag) {
  const std::size_t block = container.entities.size() / 100;
  std::size_t emptied = 0;
  int value = 0;
  for (auto& [number, entity] : container.entities) {
    entity->parents.clear();
    ++emptied;
    if (block == 0 || emptied % block != 0 || value > 100) continue;
    ++value;
    if (!GoesOnAfterTick({std::min(value, 100), share, text, flag, 100})) return false;
  }
  for (auto& [number, parent] : container.entities) {
    for (LiteralEntity* const child : parent->children) {
      if (child != nullptr) child->parents.insert(parent);
    }
  }
  return true;
}

bool LiteralMerge::MergeDocument(LiteralDocument& destination, LiteralDocument& source,
                                 unsigned mergeLevel, bool nameAndGuid) {
  destination_ = &destination;
  const std::shared_ptr<LiteralContainer> sourceOwned = std::move(source.container);
  source.container = nullptr;
  sourceContainer_ = sourceOwned.get();
  specificTypes_.clear();
  specificObjects_.clear();
  deletedDuplicatedParents_.clear();
  sourceProject_ = destinationProject_ = nullptr;
  sourcePath_ = source.path;
  const bool folded = Fold(mergeLevel, nameAndGuid);
  if (!destination.container->hasRunOutOfNumbers) return folded;
  destination.mergeStatus = 2;
  return false;
}

bool LiteralMerge::Fold(unsigned mergeLevel, bool nameAndGuid) {
  LiteralDocument& destination = *destination_;
  FillEntitiesGuidMap(*sourceContainer_, sourcePath_);
  FillParentsLists(*sourceContainer_, 0, u"1/3 ", false);
  FillMarkers(*sourceContainer_);
  FillEntitiesGuidMap(*destination.container, destination.path);
  if (!FillParentsLists(*destination.container, 2, u"2/3 ", true)) return false;
  FillMarkers(*destination.container);
  if (mergeLevel >= 1) specificTypes_.insert(u"IfcSite");
  if (mergeLevel > 1) specificTypes_.insert(u"IfcBuilding");
  if (mergeLevel > 2) specificTypes_.insert(u"IfcBuildingStorey");

  if (!PassOverSource() || !PassOverDestination()) return false;
  MergeProjects();
  if (!specificTypes_.empty()) {
    MergeSpecificObjects(nameAndGuid);
    return true;
  }
  for (LiteralEntity* const entity : deletedDuplicatedParents_) DeleteDuplicatedParents(entity);
  destination.mergeStatus = 1;
  return true;
}

bool LiteralMerge::CountDown() {
  --stepCounter_;
  if (stepCounter_ != 0) return true;
  stepCounter_ = stepSize_;
  if (stepNumber_ < 100) ++stepNumber_;
  return GoesOnAfterTick({stepNumber_, 0, u"3/3", false, 100});
}

bool LiteralMerge::PassOverSource() {
  stepCounter_ = 1;
  stepNumber_ = 0;
  stepSize_ = static_cast<std::int64_t>(sourceContainer_->entities.size() / 50);
  for (auto& [number, entity] : sourceContainer_->entities) {
    if (entity->marker == kDeleted) continue;
    TakeSourceEntity(entity);
    if (destination_->container->hasRunOutOfNumbers) return false;
    if (!CountDown()) return false;
  }
  return true;
}

void LiteralMerge::TakeSourceEntity(LiteralEntity* entity) {
  if (sourceProject_ == nullptr && entity->className == u"IfcProject") {
    sourceProject_ = entity;
    return;
  }
  if (specificTypes_.contains(entity->className)) {
    NoteSpecific(entity, &Pair::source);
    return;
  }
  if (entity->isRoot && destination_->guidIndex.contains(entity->guid)) {
    Collide(entity);
    return;
  }
  AddEntity(*destination_->container, entity);
}

void LiteralMerge::NoteSpecific(LiteralEntity* entity, LiteralEntity* Pair::*side) {
  if (!entity->isRoot) {
    Road("specific object that is no root");
    world_.reports.push_back({"", u"Unable to cast source entity to IfcRoot", 0});
    return;
  }
  LiteralEntity*& slot = specificObjects_[entity->className][entity->name].*side;
  if (slot != nullptr) Road("specific object replaced");
  slot = entity;
}

void LiteralMerge::Collide(LiteralEntity* entity) {
  if (world_.rememberedGuidChoice == -1) {
    ++world_.questions;
    world_.rememberedGuidChoice = world_.userWantsNewGuids ? 1 : 0;
  }
  if (world_.rememberedGuidChoice != 0 && entity->className != u"IfcProject") {
    Road("collision: generate");
    AddWithNewGuid(entity);
  } else if (!entity->parents.empty()) {
    Road(entity->className == u"IfcProject" ? "collision: project" : "collision: folded");
    LiteralEntity* const target = destination_->guidIndex[entity->guid];
    MergeParents(entity, target);
    if (entity != target) entity->marker = target->marker;
    deletedDuplicatedParents_.push_back(entity);
  } else {
    Road("collision: nothing refers to it");
    AddWithNewGuid(entity);
  }
}

void LiteralMerge::AddWithNewGuid(LiteralEntity* entity) {
  entity->guid = CreateGUID();
  destination_->generatedGuids.insert(entity->guid);
  AddEntity(*destination_->container, entity);
}

bool LiteralMerge::PassOverDestination() {
  LiteralContainer& container = *destination_->container;
  stepSize_ = stepCounter_ = static_cast<std::int64_t>(container.entities.size() / 50);
  for (auto& [number, entity] : container.entities) {
    if (entity->marker != kDeleted) {
      if (destinationProject_ == nullptr && entity->className == u"IfcProject") {
        destinationProject_ = entity;
      } else if (specificTypes_.contains(entity->className)) {
        NoteSpecific(entity, &Pair::destination);
      }
      WalkBelow(entity);
    }
    if (!CountDown()) return false;
  }
  return true;
}

void LiteralMerge::WalkBelow(LiteralEntity* entity) {
  for (LiteralEntity* const child : entity->children) {
    if (child == nullptr) continue;
    if (child->isRoot && destination_->guidIndex.contains(child->guid)) {
      LiteralEntity* const target = destination_->guidIndex[child->guid];
      if (child->marker != target->marker && target->marker != kDeleted) {
        Road("redirected");
        if (child != target) child->marker = target->marker;
      }
    }
    if (child->marker != kDeleted) WalkBelow(child);
  }
}

void LiteralMerge::MergeProjects() {
  if (sourceProject_ != nullptr && destinationProject_ != nullptr) {
    sourceProject_->marker = destinationProject_->marker;
    return;
  }
  world_.reports.push_back(
      {"", u"Unable to merge projects properly because couldn't find IfcProject entity.", 0});
  if (sourceProject_ != nullptr) {
    Road("source's project filed");
    AddEntity(*destination_->container, sourceProject_);
  }
}

void LiteralMerge::MergeSpecificObjects(bool nameAndGuid) {
  for (auto& [className, byName] : specificObjects_) {
    for (auto& [name, pair] : byName) {
      if (pair.destination == nullptr) {
        Road("specific object of the source alone");
        AddEntity(*destination_->container, pair.source);
        continue;
      }
      if (pair.source == nullptr) continue;
      if (nameAndGuid && pair.source->guid != pair.destination->guid) {
        Road("same name, other GUID");
        continue;
      }
      Road("specific objects merged");
      MergeParents(pair.source, pair.destination);
      pair.source->marker = pair.destination->marker;
    }
  }
}

void LiteralMerge::MergeParents(LiteralEntity* entity, LiteralEntity* target) {
  for (LiteralEntity* const parent : std::set(entity->parents)) {
    target->mergedParents.insert(parent);
  }
  for (LiteralEntity* const parent : target->mergedParents) target->parents.insert(parent);
}

void LiteralMerge::DeleteDuplicatedParents(LiteralEntity* entity) {
  const std::vector<LiteralEntity*> parents = InOrderOfNumbers(entity->parents);
  for (std::size_t i = 1; i < parents.size(); ++i) {
    if (parents[i]->marker == parents[i - 1]->marker && parents[i]->marker != kDeleted) {
      world_.orderIsOpen = true;
    }
  }
  for (std::size_t i = 0; i < parents.size(); ++i) {
    if (parents[i]->marker == kDeleted) continue;
    for (std::size_t j = i + 1; j < parents.size(); ++j) {
      LiteralEntity* const a = parents[i];
      LiteralEntity* const b = parents[j];
      if (b->marker == kDeleted || a->className != b->className) continue;
      const bool covered =
          std::all_of(a->children.begin(), a->children.end(), [b](const LiteralEntity* child) {
            return child == nullptr || ParentIncludesChild(b, child);
          });
      Road(covered ? "duplicated parent" : "parent that differs");
      if (covered) b->marker = kDeleted;
    }
  }
}

void LiteralMerge::CheckEntityForDuplicates(LiteralEntity* entity) {
  if (entity == nullptr) return;
  std::map<std::string, std::vector<LiteralEntity*>> groups;
  for (LiteralEntity* const parent : InOrderOfNumbers(entity->parents)) {
    if (parent->marker == kDeleted || parent->className != u"IfcRelAggregates") continue;
    std::vector<std::string> guids;
    for (const LiteralEntity* const child : parent->children) {
      if (child != nullptr && child != entity && child->isRoot) guids.push_back(child->guid);
    }
    std::sort(guids.begin(), guids.end());
    std::string key;
    for (const std::string& guid : guids) {
      if (&guid != &guids.front()) key += '|';
      key += guid;
    }
    if (!key.empty()) groups[key].push_back(parent);
  }
  for (auto& [key, relations] : groups) {
    for (std::size_t i = 1; i < relations.size(); ++i) relations[i]->marker = kDeleted;
  }
}

}  // namespace corvel::test
