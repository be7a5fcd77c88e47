// Objects that share a GUID are found among very many that do not.
#include "merge/federation/shared_guids.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "federated_documents.h"
#include "merge/federation/renew_guids.h"

namespace corvel {
namespace {

using test::FederatedDocuments;
using test::PlannedRecord;

PlannedRecord WallWithGuid(std::uint32_t number, const std::string& guid) {
  return {number, "IFCWALL", "'" + guid + "',$,'w',$,$,$,$,$"};
}

TEST(RepeatedHashes, AreAllFoundWithFewOthers) {
  constexpr std::size_t kCount = 100000;
  std::mt19937_64 random(7);
  std::vector<std::uint64_t> hashes(kCount);
  for (std::uint64_t& hash : hashes) hash = random();
  for (std::size_t i = 0; i < kCount; i += 1000) hashes[i] = hashes[i + 500];
  const std::vector<std::size_t> places = PlacesOfRepeated(hashes);
  for (std::size_t i = 0; i < kCount; i += 500) {
    EXPECT_TRUE(std::binary_search(places.begin(), places.end(), i)) << i;
  }
  EXPECT_LT(places.size(), kCount / 100);
}

TEST(RepeatedHashes, OfNoneAreNone) { EXPECT_TRUE(PlacesOfRepeated({}).empty()); }

class SharedGuidsOfModels : public testing::Test {
 protected:
  // The original numbers of those that `find` gives, which gets the model.
  template <class Find>
  std::vector<std::uint32_t> NumbersOf(Find find) {
    std::vector<std::uint32_t> numbers;
    models_.RunStep([&](FederatedModel& model) {
      for (const IFC::IfcEntity* const entity : find(model)) numbers.push_back(entity->marker);
    });
    return numbers;
  }

  FederatedDocuments models_{SchemaNamespace::IFC4};
};

TEST_F(SharedGuidsOfModels, AreThoseOfAllInputsInTheirOrder) {
  models_.Add(u"a.ifc", "", {WallWithGuid(10, "one"), WallWithGuid(11, "two")});
  models_.Add(u"b.ifc", "", {WallWithGuid(20, "three"), WallWithGuid(21, "two")});
  models_.Add(u"c.ifc", "", {WallWithGuid(30, "one"), WallWithGuid(31, "four")});
  const auto shared = [](const FederatedModel& model) { return model.HoldersOfSharedGuids(); };
  EXPECT_EQ((std::vector<std::uint32_t>{10, 11, 21, 30}), NumbersOf(shared));
}

// Each file says the same, and is sorted when it is asked for.
TEST_F(SharedGuidsOfModels, ObjectsOfOtherClassesAreNotEvenMet) {
  models_.Add(u"a.ifc", "",
              {WallWithGuid(10, "one"),
               {11, "IFCDOOR", "'d',$,'d',$,$,$,$,$,$,$,$,$,$"},
               {12, "IFCCARTESIANPOINT", "(0.,0.)"}});
  models_.Add(u"b.ifc", "", {{20, "IFCDOOR", "'e',$,'d',$,$,$,$,$,$,$,$,$,$"}});
  const auto doors = [](FederatedModel& model) {
    std::vector<IFC::IfcEntity*> met;
    Ticker ticker{Stage()};
    for (std::size_t input = 0; input < 2; ++input) {
      EXPECT_TRUE(model.ForEachRootOf(
          input, ticker,
          [](const ClassFacts* facts) { return std::string_view(facts->name) == "IfcDoor"; },
          [&](IFC::IfcEntity& door) { met.push_back(&door); }));
    }
    return met;
  };
  EXPECT_EQ((std::vector<std::uint32_t>{11, 20}), NumbersOf(doors));
}

class SortedRecords : public testing::Test {
 protected:
  explicit SortedRecords(const std::vector<PlannedRecord>& records = {})
      : document_(records, SchemaNamespace::IFC4) {}

  static std::size_t CountOfRepeated(SortedObjects& sorted) {
    return PlacesOfRepeated(sorted.GuidHashes()).size();
  }
  IFC::MainContainer& Container() { return *(*document_).mainContainer; }

  test::RecordDocument document_;
};

class RecordsOfOneGuid : public SortedRecords {
 protected:
  RecordsOfOneGuid() : SortedRecords({WallWithGuid(10, "one"), WallWithGuid(11, "one")}) {}
};

TEST_F(RecordsOfOneGuid, DoNotShareItWhenOneGotAnother) {
  SortedObjects sorted(Container().originalEntities);
  EXPECT_EQ(2U, CountOfRepeated(sorted));
  EXPECT_EQ(1U, RenewGuidsWithin(Container(), sorted, 0));
  EXPECT_EQ(0U, CountOfRepeated(sorted));
  EXPECT_EQ(0U, RenewGuidsWithin(Container(), sorted, 0));
}

class RecordsWithoutGuid : public SortedRecords {
 protected:
  RecordsWithoutGuid() : SortedRecords({WallWithGuid(10, "one"), WallWithGuid(11, "")}) {}
};

// The fold gives one to those that have none.
TEST_F(RecordsWithoutGuid, AreLookedAtAgain) {
  SortedObjects sorted(Container().originalEntities);
  EXPECT_EQ(0U, CountOfRepeated(sorted));
  EntityCast<IFC::VirtualIfcRoot>(Container().GetEntityByOrginalNumber(11))->setGlobalId("one");
  EXPECT_EQ(2U, CountOfRepeated(sorted));
}

}  // namespace
}  // namespace corvel
