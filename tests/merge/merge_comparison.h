// One merge run by the engine and by LiteralMerge, and everything compared that either of them did.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/entity_cast.h"
#include "merge/guid_choice.h"
#include "random_models.h"
#include "support/numbers_up_to.h"

namespace corvel::test {

// What a run begins with.
struct MergePlan {
  std::vector<PlannedModel> models;  // the first is the destination
  struct Indexed {
    std::size_t model, place;
  };
  std::vector<Indexed> index;
  unsigned mergeLevel = 0;
  bool nameAndGuid = false;
  int rememberedChoice = kAskAboutGuids;
  bool userWantsNewGuids = true;
  bool numberingStartsLow = false;
  std::uint32_t largestNumber = IFC::kLargestNumber;
  std::size_t cancelAt = std::numeric_limits<std::size_t>::max();
  bool userMeansIt = true;

  // Of all records, as they are read.
  std::uint32_t HighestNumber() const {
    std::uint32_t highest = 0;
    for (const PlannedModel& model : models) {
      for (const PlannedEntity& entity : model) highest = std::max(highest, entity.number);
    }
    return highest;
  }
};

// Borrows the plan. Fails the test that it runs in.
class MergeComparison {
 public:
  MergeComparison(const MergePlan& plan, unsigned allocation) : plan_(plan) {
    int firstId = 0;
    for (const PlannedModel& model : plan.models) {
      models_.push_back(std::make_unique<BuiltModel>(
          model, firstId, u"model" + Widen(std::to_string(firstId)) + u".ifc", ++allocation));
      for (std::size_t i = 0; i < model.size(); ++i) {
        const IFC::IfcEntity* const entity = models_.back()->objects[i];
        ids_[entity] = firstId + static_cast<int>(i);
      }
      firstId += static_cast<int>(model.size());
    }
    FillIndexes();
  }

  // Both sides fold all models into the first, one after the other.
  void Go() {
    engineWorld_.UserWantsNewGuids(plan_.userWantsNewGuids);
    engineWorld_.system.userMeansToCancel = plan_.userMeansIt;
    engineWorld_.progress.CancelAt(plan_.cancelAt);
    RememberedGuidChoice() = plan_.rememberedChoice;
    const NumbersUpTo largest(plan_.largestNumber);
    for (auto& model : models_) model->FileEngine();
    if (plan_.numberingStartsLow) IFC::MainContainer::uniqueMarker = 1;

    literalWorld_.userWantsNewGuids = plan_.userWantsNewGuids;
    literalWorld_.userMeansIt = plan_.userMeansIt;
    literalWorld_.cancelAt = plan_.cancelAt;
    literalWorld_.rememberedGuidChoice = plan_.rememberedChoice;
    literalWorld_.largestNumber = plan_.largestNumber;
    LiteralMerge literal(literalWorld_);
    TestPlatform literalSystem;  // counts GUIDs of its own
    for (auto& model : models_) model->FileLiteral(literal);
    if (plan_.numberingStartsLow) literalWorld_.uniqueMarker = 1;

    for (std::size_t i = 1; i < models_.size(); ++i) {
      const bool wanted = literal.MergeDocument(models_[0]->literal, models_[i]->literal,
                                                plan_.mergeLevel, plan_.nameAndGuid);
      platform::Replace(&engineWorld_.system);
      const bool got = models_[0]->engine->MergeDocument(*models_[i]->engine, plan_.mergeLevel,
                                                         plan_.nameAndGuid);
      platform::Replace(&literalSystem);
      if (literalWorld_.orderIsOpen) return;
      EXPECT_EQ(wanted, got);
      Compare(i);
      if (!models_[0]->engine->mainContainer->HasRunOutOfNumbers()) CheckNumbers(i);
      if (testing::Test::HasFailure()) return;
    }
  }

  const LiteralWorld& World() const { return literalWorld_; }

 private:
  void FillIndexes() {
    for (const MergePlan::Indexed& entry : plan_.index) {
      LiteralEntity& twin = models_[entry.model]->twins[entry.place];
      if (!twin.isRoot || twin.guid.empty()) continue;
      models_[0]->literal.guidIndex[twin.guid] = &twin;
      models_[0]->engine.GuidIndex()[twin.guid] = models_[entry.model]->objects[entry.place];
    }
  }

  int IdOf(const IFC::IfcEntity* entity) const { return ids_.at(entity); }
  std::set<int> IdsOf(const ParentSet& set) const {
    std::set<int> ids;
    for (const IFC::IfcEntity* const member : set.Members()) ids.insert(IdOf(member));
    return ids;
  }
  static std::set<int> IdsOf(const std::set<LiteralEntity*>& set) {
    std::set<int> ids;
    for (const LiteralEntity* const member : set) ids.insert(member->id);
    return ids;
  }

  void Compare(std::size_t merged) {
    const IfcDocument& destination = *models_[0]->engine;
    EXPECT_EQ(nullptr, models_[merged]->engine->mainContainer);
    ASSERT_EQ(merged, destination.absorbedContainers.size());
    CompareContainers(*models_[0]->literal.container, *destination.mainContainer);
    EXPECT_EQ(models_[0]->literal.mergeStatus, static_cast<int>(destination.mergeStatus));
    EXPECT_EQ(models_[0]->literal.generatedGuids, destination.generatedGuids);
    CompareObjects();
    EXPECT_EQ(literalWorld_.uniqueMarker, IFC::MainContainer::uniqueMarker);
    EXPECT_EQ(literalWorld_.rememberedGuidChoice, RememberedGuidChoice());
    EXPECT_EQ(literalWorld_.questions, engineWorld_.Questions());
    EXPECT_EQ(literalWorld_.ticks, *engineWorld_.progress);
    EXPECT_EQ(literalWorld_.boxes, engineWorld_.system.boxes);
    EXPECT_EQ(literalWorld_.reports, *engineWorld_.reports);
  }

  // Nothing is lost, and no number above the largest is given: the destination has everything that
  // has no better there, under numbers of its own.
  void CheckNumbers(std::size_t merged) {
    const NumberTable& entities = models_[0]->engine->mainContainer->entities;
    const std::uint32_t highestRead = plan_.HighestNumber();
    std::set<const IFC::IfcEntity*> filed;
    for (const auto& [number, entity] : entities) {
      EXPECT_TRUE(filed.insert(entity).second) << number;
      EXPECT_TRUE(number <= plan_.largestNumber || number <= highestRead) << number;
    }
    if (plan_.mergeLevel != 0 || !plan_.index.empty() || plan_.numberingStartsLow) return;
    if (plan_.cancelAt != std::numeric_limits<std::size_t>::max()) return;
    std::size_t missing = 0;
    for (std::size_t i = 0; i < models_[merged]->objects.size(); ++i) {
      const PlannedEntity& planned = plan_.models[merged][i];
      if (planned.number == 0 || planned.deleted) continue;
      missing += filed.contains(models_[merged]->objects[i]) ? 0 : 1;
    }
    EXPECT_LE(missing, 1u);  // the project that gives way
  }

  void CompareContainers(const LiteralContainer& wanted, const IFC::MainContainer& got) const {
    std::map<std::uint32_t, int> wantedEntities, gotEntities;
    for (const auto& [number, entity] : wanted.entities) wantedEntities[number] = entity->id;
    for (auto at = got.entities.First(); at; at = got.entities.Next(at.number)) {
      gotEntities[at.number] = IdOf(at.entity);
    }
    EXPECT_EQ(wantedEntities, gotEntities);
    std::map<std::string, int> wantedGuids, gotGuids;
    for (const auto& [guid, entity] : wanted.entitiesGuidMap) wantedGuids[guid] = entity->id;
    for (const auto& [guid, root] : got.entitiesGUIDmap) gotGuids[std::string(guid)] = IdOf(root);
    EXPECT_EQ(wantedGuids, gotGuids);
    EXPECT_EQ(wanted.generatedGuids, (std::map<WideString, std::string>(got.generatedGUIDs.begin(),
                                                                        got.generatedGUIDs.end())));
    EXPECT_EQ(wanted.hasTree, got.ifcTree != nullptr);
  }

  void CompareObjects() {
    for (const auto& model : models_) {
      for (std::size_t i = 0; i < model->objects.size(); ++i) {
        GraphNode& object = *model->objects[i];
        const LiteralEntity& twin = model->twins[i];
        EXPECT_EQ(twin.marker, object.marker) << twin.id;
        EXPECT_EQ(IdsOf(twin.parents), IdsOf(object.parents)) << twin.id;
        EXPECT_EQ(IdsOf(twin.mergedParents), IdsOf(object.mergedParents)) << twin.id;
        if (auto* const root = EntityCast<IFC::VirtualIfcRoot>(&object)) {
          EXPECT_EQ(twin.guid, root->getGlobalId()) << twin.id;
        }
      }
    }
  }

  const MergePlan& plan_;
  MergeWorld engineWorld_;
  LiteralWorld literalWorld_;
  std::vector<std::unique_ptr<BuiltModel>> models_;
  std::unordered_map<const IFC::IfcEntity*, int> ids_;
};

}  // namespace corvel::test
