// The engine's merge against the plain one, on thousands of small random models.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "merge/duplicate_cleanup.h"
#include "merge_comparison.h"

namespace corvel {
namespace {

using test::BuiltModel;
using test::LiteralEntity;
using test::LiteralMerge;
using test::LiteralWorld;
using test::MergeWorld;
using test::ModelShape;
using test::PlannedModel;

test::MergePlan AnyRun(unsigned seed) {
  std::mt19937 random(seed);
  test::MergePlan run;
  const bool large = random() % 25 == 0;  // large enough for ticks
  const std::size_t models = random() % 3 == 0 ? 3 + random() % 4 : 2;
  for (std::size_t i = 0; i < models; ++i) {
    ModelShape shape;
    shape.entities = 1 + static_cast<int>(random() % (large ? 160 : 12));
    shape.mostChildren = large ? 1 : 4;
    shape.highestNumber =
        static_cast<std::uint32_t>(shape.entities) * (1 + static_cast<std::uint32_t>(random() % 3));
    run.models.push_back(test::AnyModel(random, shape));
  }
  const std::size_t indexed = random() % 5 == 0 ? 0 : random() % 10;
  for (std::size_t i = 0; i < indexed; ++i) {
    const std::size_t model = random() % 6 == 0 ? random() % models : 0;
    run.index.push_back({model, random() % run.models[model].size()});
  }
  if (random() % 3 == 0) run.mergeLevel = static_cast<unsigned>(random() % 5);
  run.nameAndGuid = random() % 2 == 0;
  if (random() % 3 == 0) run.rememberedChoice = static_cast<int>(random() % 3);
  run.userWantsNewGuids = random() % 3 == 0;
  run.numberingStartsLow = random() % 20 == 0;
  if (random() % 6 == 0) run.cancelAt = random() % (large ? 200 : 3);
  run.userMeansIt = random() % 2 == 0;
  return run;
}

// Each run twice, with objects at other addresses.
TEST(RandomMerge, ItDoesWhatThePlainMergeDoesWhereverTheObjectsLie) {
  std::map<std::string, int> roads;
  int open = 0;
  for (unsigned seed = 1; seed <= 3000; ++seed) {
    const test::MergePlan run = AnyRun(seed);
    for (const unsigned allocation : {7 * seed, 1000003 * seed + 11}) {
      test::MergeComparison comparison(run, allocation);
      comparison.Go();
      ASSERT_FALSE(HasFailure()) << "seed " << seed << " level " << run.mergeLevel;
      open += comparison.World().orderIsOpen ? 1 : 0;
      for (const auto& [road, times] : comparison.World().roads) roads[road] += times;
    }
  }
  EXPECT_LT(open, 300);
  for (const char* const road :
       {"number clash", "number clash that stays", "second tree", "empty GUID",
        "GUID twice in one model", "specific object that is no root", "specific object replaced",
        "collision: generate", "collision: project", "collision: folded",
        "collision: nothing refers to it", "redirected", "source's project filed",
        "specific object of the source alone", "same name, other GUID", "specific objects merged",
        "duplicated parent", "parent that differs"}) {
    EXPECT_GT(roads[road], 20) << road;
  }
  for (const auto& [road, times] : roads) RecordProperty(road, times);
}

void NumberToTheEnd(PlannedModel& model) {
  std::uint32_t highest = 0;
  for (const test::PlannedEntity& entity : model) highest = std::max(highest, entity.number);
  for (test::PlannedEntity& entity : model) {
    if (entity.number != 0) entity.number += IFC::kLargestNumber - highest;
  }
}

// Either the records stand at the end of the whole range, or the range is short; then they may
// stand above the largest number that is given.
test::MergePlan AnyRunNearTheEnd(unsigned seed) {
  std::mt19937 random(seed);
  test::MergePlan run = AnyRun(seed);
  run.cancelAt = std::numeric_limits<std::size_t>::max();
  if (random() % 3 != 0) {
    run.mergeLevel = 0;
    run.index.clear();
  }
  run.numberingStartsLow = random() % 12 == 0;
  if (random() % 4 == 0) {
    for (PlannedModel& model : run.models) NumberToTheEnd(model);
    return run;
  }
  std::size_t entities = 0;
  for (const PlannedModel& model : run.models) entities += model.size();
  run.largestNumber = static_cast<std::uint32_t>(1 + random() % (2 * entities));
  return run;
}

TEST(RandomMerge, NearTheLastNumberNothingIsLostAndNoNumberIsGivenTwice) {
  std::map<std::string, int> roads;
  int full = 0;
  for (unsigned seed = 1; seed <= 2000; ++seed) {
    const test::MergePlan run = AnyRunNearTheEnd(seed);
    test::MergeComparison comparison(run, 7 * seed);
    comparison.Go();
    ASSERT_FALSE(HasFailure()) << "seed " << seed << " up to " << run.largestNumber;
    for (const auto& [road, times] : comparison.World().roads) roads[road] += times;
    full += run.largestNumber == IFC::kLargestNumber ? 1 : 0;
  }
  EXPECT_GT(full, 300);
  EXPECT_GT(roads["number from the bottom"], 500);
  EXPECT_GT(roads["no number left"], 200);
}

// Models large enough for ticks in all four walks; each tick in turn says cancel.
TEST(RandomMerge, CancelAtEachTickLeavesWhatThePlainMergeLeaves) {
  std::mt19937 random(77);
  test::MergePlan run;
  ModelShape shape;
  shape.mostChildren = 1;
  for (const int entities : {170, 130, 60}) {
    shape.entities = entities;
    shape.highestNumber = 300;
    run.models.push_back(test::AnyModel(random, shape));
  }
  for (std::size_t place = 0; place < 170; place += 9) run.index.push_back({0, place});
  for (const bool userMeansIt : {true, false}) {
    run.userMeansIt = userMeansIt;
    std::size_t ticks = 1;
    for (run.cancelAt = 0; run.cancelAt <= ticks; ++run.cancelAt) {
      test::MergeComparison comparison(run, 5);
      comparison.Go();
      ASSERT_FALSE(HasFailure()) << "tick " << run.cancelAt;
      ASSERT_FALSE(comparison.World().orderIsOpen);
      ticks = std::max(ticks, comparison.World().ticks.size());
    }
    EXPECT_GT(ticks, 500u);
  }
}

// The cleanup alone, which no merge reaches for objects of the spatial structure.
TEST(RandomMerge, CheckEntityForDuplicatesDoesWhatThePlainOneDoes) {
  int deleted = 0;
  for (unsigned seed = 1; seed <= 3000; ++seed) {
    std::mt19937 random(seed);
    ModelShape shape;
    shape.entities = 10 + static_cast<int>(random() % 60);
    shape.mostChildren = 2;
    shape.highestNumber = 80;
    const PlannedModel plan = test::AnyModel(random, shape);
    MergeWorld world;
    LiteralWorld literalWorld;
    LiteralMerge literal(literalWorld);
    BuiltModel model(plan, 0, u"model.ifc", seed);
    model.FileEngine();
    model.FileLiteral(literal);
    model.engine->mainContainer->RebuildParentsLists({});
    for (LiteralEntity& parent : model.twins) {
      for (LiteralEntity* const child : parent.children) {
        if (child != nullptr && parent.marker != 0) child->parents.insert(&parent);
      }
    }
    for (std::size_t i = 0; i < plan.size(); ++i) {
      CheckEntityForDuplicates(model.objects[i]);
      LiteralMerge::CheckEntityForDuplicates(&model.twins[i]);
    }
    for (std::size_t i = 0; i < plan.size(); ++i) {
      ASSERT_EQ(model.twins[i].marker, model.objects[i]->marker) << "seed " << seed;
      deleted += !plan[i].deleted && model.twins[i].marker == IFC::kDeleted ? 1 : 0;
    }
  }
  EXPECT_GT(deleted, 40);
}

}  // namespace
}  // namespace corvel
