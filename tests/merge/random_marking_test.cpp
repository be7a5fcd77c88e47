// The engine's marking against the plain one, on thousands of small random models.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "marking_comparison.h"
#include "random_records.h"
#include "record_document.h"

namespace corvel {
namespace {

using test::LiteralMarking;
using test::MarkingComparison;
using test::Pairs;
using test::RandomRecords;
using test::RecordDocument;
using test::RecordsShape;

using Roads = std::map<std::string, int>;

// What a run begins with.
struct MarkingPlan {
  RecordsShape shape;
  RandomRecords records;
  Pairs deletePairs, savePairs;
  bool deleteUnrelated = false;
  bool deleteOpenings = false;
  int fileCount = 1;

  SchemaNamespace Schema() const {
    return shape.isIfc4 ? SchemaNamespace::IFC4 : SchemaNamespace::IFC2X3;
  }
  std::string Description() const {
    std::ostringstream out;
    out << (shape.isIfc4 ? "IFC4\n" : "IFC2X3\n");
    for (const test::PlannedRecord& record : records.records) out << record.Line();
    out << "delete:";
    for (const MarkerPair& pair : deletePairs) out << " " << pair;
    out << "\nsave:";
    for (const MarkerPair& pair : savePairs) out << " " << pair;
    out << "\nunrelated " << deleteUnrelated << " openings " << deleteOpenings << " files "
        << fileCount << "\n";
    return out.str();
  }
};

unsigned Below(std::mt19937& random, std::size_t limit) {
  return static_cast<unsigned>(random() % limit);
}

std::uint32_t AnyNumber(std::mt19937& random, const RandomRecords& records) {
  if (Below(random, 12) == 0) return Below(random, 200);
  const bool anObject = !records.objects.empty() && Below(random, 4) != 0;
  if (anObject) return records.objects[Below(random, records.objects.size())];
  return records.records[Below(random, records.records.size())].number;
}

// Each object is in one of the lists, as a host would tell it.
void FillListsAsAHostDoes(std::mt19937& random, MarkingPlan& plan) {
  const unsigned deleted = Below(random, 5);
  for (std::size_t i = 0; i < plan.records.objects.size(); ++i) {
    Pairs& pairs = Below(random, 4) < deleted ? plan.deletePairs : plan.savePairs;
    pairs.push_back({plan.records.objects[i], plan.records.hostParents[i]});
  }
}

// Numbers of any records and of none, twice and in both lists.
void AddAnyPairs(std::mt19937& random, std::size_t most, MarkingPlan& plan) {
  for (Pairs* const pairs : {&plan.deletePairs, &plan.savePairs}) {
    for (std::size_t count = Below(random, most + 1); count > 0; --count) {
      const std::uint32_t number = AnyNumber(random, plan.records);
      const unsigned way = Below(random, 6);
      const std::uint32_t parent = way == 0   ? number
                                   : way == 1 ? 0
                                              : AnyNumber(random, plan.records);
      pairs->push_back({number, parent});
    }
  }
}

MarkingPlan AnyPlan(std::mt19937& random) {
  MarkingPlan plan;
  plan.shape.isIfc4 = Below(random, 3) != 0;
  plan.shape.records = 2 + static_cast<int>(Below(random, Below(random, 12) == 0 ? 250 : 60));
  if (Below(random, 6) == 0) plan.shape.mostMembers = 40;
  plan.records = test::AnyRecords(random, plan.shape);
  const unsigned way = Below(random, 4);
  if (way != 0) FillListsAsAHostDoes(random, plan);
  if (way != 1) AddAnyPairs(random, way == 0 ? 8 : 2, plan);
  plan.deleteUnrelated = Below(random, 12) == 0;
  plan.deleteOpenings = Below(random, 4) == 0;
  plan.fileCount = 1 + static_cast<int>(Below(random, 12));
  return plan;
}

void CompareDeleteObjects(const MarkingPlan& plan, MarkingComparison& comparison) {
  Pairs deletePairs = plan.deletePairs, savePairs = plan.savePairs;
  Pairs wantedDelete = plan.deletePairs, wantedSave = plan.savePairs;
  comparison.Run(
      [&](IfcDocument& document) {
        return document.DeleteObjects(deletePairs, savePairs, plan.deleteUnrelated,
                                      plan.deleteOpenings, plan.fileCount);
      },
      [&](LiteralMarking& literal) {
        return literal.DeleteObjects(wantedDelete, wantedSave, plan.deleteUnrelated,
                                     plan.deleteOpenings, plan.fileCount);
      });
  EXPECT_EQ(wantedDelete, deletePairs);
  EXPECT_EQ(wantedSave, savePairs);
}

TEST(RandomMarking, DeleteObjectsDoesWhatThePlainOneDoes) {
  Roads roads;
  for (unsigned seed = 1; seed <= 5000; ++seed) {
    std::mt19937 random(seed);
    const MarkingPlan plan = AnyPlan(random);
    RecordDocument document(plan.records.records, plan.Schema());
    MarkingComparison comparison(*document);
    if (Below(random, 6) == 0) comparison.CancelAt(Below(random, 200), Below(random, 2) == 0);
    CompareDeleteObjects(plan, comparison);
    ASSERT_FALSE(HasFailure()) << "seed " << seed << "\n" << plan.Description();
    for (const auto& [road, times] : comparison.World().roads) roads[road] += times;
  }
  for (const char* const road :
       {"circle of host parents", "deleted in a later pass", "linked by what it shares alone",
        "mandatory child lost", "no member left", "opening taken off the list", "orphan",
        "orphan in a record", "property set", "saved child of a site", "saved orphan",
        "saved over deleted", "shared property set", "unlinked", "up to the project"}) {
    EXPECT_GT(roads[road], 20) << road;
  }
  for (const auto& [road, times] : roads) RecordProperty(road, times);
}

// From marks that no run would lead to.
TEST(RandomMarking, EachStepDoesWhatThePlainOneDoes) {
  const WideString prefix = u"2/3";
  using Engine = IfcDocument;
  using Plain = LiteralMarking;
  for (unsigned seed = 1; seed <= 6000; ++seed) {
    std::mt19937 random(seed);
    MarkingPlan plan = AnyPlan(random);
    RecordDocument document(plan.records.records, plan.Schema());
    MarkingComparison comparison(*document);
    comparison.FillParentsLists();
    const unsigned deleted = Below(random, 5), saved = Below(random, 3);
    for (test::PlainObject& object : comparison.Plain().objects) {
      const unsigned mark = Below(random, 10);
      comparison.Mark(object, mark < deleted ? -9 : mark < deleted + saved ? 1 : 0);
    }
    if (Below(random, 6) == 0) comparison.CancelAt(Below(random, 60), Below(random, 2) == 0);
    const Pairs& deletePairs = plan.deletePairs;
    const Pairs& savePairs = plan.savePairs;
    Pairs pairs = deletePairs, wantedPairs = deletePairs;
    switch (seed % 7) {
      case 0:
        comparison.Run(
            [&](Engine& engine) { return engine.MarkEntitiesAndChildrenToDelete(deletePairs); },
            [&](Plain& plain) { return plain.MarkEntitiesAndChildrenToDelete(deletePairs), true; });
        break;
      case 1:
        comparison.Run(
            [&](Engine& engine) {
              return engine.MarkEntitiesAndChildrenAndParentsToSave(savePairs, deletePairs), true;
            },
            [&](Plain& plain) {
              return plain.MarkEntitiesAndChildrenAndParentsToSave(savePairs, deletePairs), true;
            });
        break;
      case 2:
        comparison.Run([&](Engine& engine) { return engine.DeleteParentsOfDeleted(5, prefix); },
                       [&](Plain& plain) { return plain.DeleteParentsOfDeleted(5, prefix); });
        break;
      case 3:
        comparison.Run(
            [&](Engine& engine) { return engine.RemoveOpeningsFromDeleteList(pairs), true; },
            [&](Plain& plain) { return plain.RemoveOpeningsFromDeleteList(wantedPairs), true; });
        EXPECT_EQ(wantedPairs, pairs);
        break;
      case 4:
        comparison.Run(
            [&](Engine& engine) { return engine.MarkDependentsToDelete(deletePairs, 5, prefix); },
            [&](Plain& plain) { return plain.MarkDependentsToDelete(deletePairs, 5, prefix); });
        break;
      case 5: {
        const bool ticks = Below(random, 3) != 0;
        comparison.Run(
            [&](Engine& engine) {
              return engine.RemoveUnsavedEntities(
                  ticks ? test::RecordedProgress::Callback : nullptr, 10, prefix);
            },
            [&](Plain& plain) { return plain.RemoveUnsavedEntities(ticks, 10, prefix); });
        break;
      }
      default:
        comparison.Run([](Engine& engine) { return engine.DeleteUnrelatedObjects(); },
                       [](Plain& plain) { return plain.DeleteUnrelatedObjects(); });
    }
    ASSERT_FALSE(HasFailure()) << "seed " << seed << "\n" << plan.Description();
  }
}

// A model large enough for ticks in all walks; each tick in turn says cancel.
TEST(RandomMarking, CancelAtEachTickLeavesWhatThePlainOneLeaves) {
  std::mt19937 random(5);
  MarkingPlan plan;
  plan.shape.records = 160;
  plan.records = test::AnyRecords(random, plan.shape);
  FillListsAsAHostDoes(random, plan);
  AddAnyPairs(random, 60, plan);
  while (plan.deletePairs.size() < 60) AddAnyPairs(random, 60, plan);
  std::size_t ticks = 0;
  const auto run = [&plan, &ticks](std::size_t cancelled, bool userMeansIt) {
    RecordDocument document(plan.records.records, plan.Schema());
    MarkingComparison comparison(*document);
    comparison.CancelAt(cancelled, userMeansIt);
    CompareDeleteObjects(plan, comparison);
    ticks = std::max(ticks, comparison.World().ticks.size());
  };
  run(std::numeric_limits<std::size_t>::max(), true);
  EXPECT_GT(ticks, 150u);
  for (std::size_t cancelled = 0; cancelled < ticks; ++cancelled) {
    run(cancelled, true);
    run(cancelled, false);
    ASSERT_FALSE(HasFailure()) << "tick " << cancelled << "\n" << plan.Description();
  }
}

}  // namespace
}  // namespace corvel
