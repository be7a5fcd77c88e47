#include "core/main_container.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "support/graph.h"
#include "support/numbers_up_to.h"
#include "support/recorded_reports.h"
#include "support/test_platform.h"

namespace corvel {
namespace {

using IFC::MainContainer;
using test::Graph;
using test::GraphAssigns;
using test::GraphNode;
using test::Of;
using test::RecordedReports;
using test::TestPlatform;

using Wall = Of<u"IfcWall">;
using Project = Of<u"IfcProject">;

class Container : public testing::Test {
 protected:
  Container() { MainContainer::ResetUniqueMarker(); }
  ~Container() override { MainContainer::ResetUniqueMarker(); }

  Wall& AddWall(std::uint32_t marker) {
    Wall& wall = graph_.Add<Wall>();
    wall.marker = marker;
    container_.AddEntity(&wall);
    return wall;
  }
  std::vector<std::uint32_t> Keys() const {
    std::vector<std::uint32_t> keys;
    for (auto at = container_.entities.First(); at; at = container_.entities.Next(at.number)) {
      keys.push_back(at.number);
    }
    return keys;
  }
  // What the boxes said; each is an error box of one title.
  std::vector<std::u16string> Boxes() const {
    std::vector<std::u16string> texts;
    for (const TestPlatform::Box& box : system_.boxes) {
      EXPECT_EQ(u"Logfile error", box.title);
      EXPECT_EQ(platform::Buttons::kOk, box.buttons);
      EXPECT_EQ(platform::Icon::kError, box.icon);
      texts.push_back(box.text);
    }
    return texts;
  }

  TestPlatform system_;
  RecordedReports reports_;
  Graph graph_;
  MainContainer container_{RecordedReports::Reporter, nullptr, 1 << 12};
};

using Texts = std::vector<std::u16string>;
using Numbers = std::vector<std::uint32_t>;

TEST_F(Container, AnEntityWithoutANumberGetsTheNextFreeOne) {
  EXPECT_EQ(1u, AddWall(0).marker);
  EXPECT_EQ(2u, MainContainer::uniqueMarker);
  EXPECT_EQ(2u, AddWall(0).marker);
  EXPECT_EQ((Numbers{1, 2}), Keys());
  EXPECT_EQ(Texts{}, Boxes());
}

TEST_F(Container, TheNextNumberIsAtLeastTheHighestSeen) {
  AddWall(700);
  EXPECT_EQ(700u, MainContainer::uniqueMarker);
  AddWall(20);
  EXPECT_EQ(700u, MainContainer::uniqueMarker);
}

TEST_F(Container, NumbersAreComparedWithoutASign) {
  AddWall(3000000000u);
  AddWall(20);
  EXPECT_EQ(3000000000u, MainContainer::uniqueMarker);
  EXPECT_EQ(3000000001u, AddWall(20).marker);
}

TEST_F(Container, ATakenNumberGivesWayToTheOneAboveTheHighest) {
  AddWall(500);
  MainContainer::uniqueMarker = 900;
  EXPECT_EQ(901u, AddWall(500).marker);
  EXPECT_EQ(901u, MainContainer::uniqueMarker);
  EXPECT_EQ((Numbers{500, 901}), Keys());
  EXPECT_EQ(Texts{}, Boxes());
}

// The highest number seen is in use, so that one more step is needed.
TEST_F(Container, ABlankEntityBehindReadOnesSkipsTheHighest) {
  AddWall(1);
  Wall& blank = AddWall(0);
  EXPECT_EQ(3u, blank.marker);
  EXPECT_EQ(3u, MainContainer::uniqueMarker);
}

TEST_F(Container, AClashIsResolvedOnceOnly) {
  Wall& first = AddWall(500);
  AddWall(501);
  MainContainer::uniqueMarker = 500;
  Wall& refused = AddWall(500);
  EXPECT_EQ((Texts{u"AddEntity. Adding canceled -> Marker exist: 501"}), Boxes());
  EXPECT_EQ(501u, refused.marker);
  EXPECT_EQ((Numbers{500, 501}), Keys());
  EXPECT_EQ(&first, container_.entities.Find(500));
}

TEST_F(Container, TheLastNumberIsGivenAndThenTheSmallestFreeOne) {
  AddWall(2);
  MainContainer::uniqueMarker = IFC::kLargestNumber;
  EXPECT_EQ(IFC::kLargestNumber, AddWall(0).marker);
  EXPECT_EQ(1u, AddWall(0).marker);
  EXPECT_EQ(3u, AddWall(0).marker);
  EXPECT_EQ(4u, AddWall(2).marker);
  EXPECT_EQ((Numbers{1, 2, 3, 4, IFC::kLargestNumber}), Keys());
  EXPECT_EQ(Texts{}, Boxes());
}

TEST_F(Container, AClashAtTheLastNumberGetsTheSmallestFreeOne) {
  AddWall(IFC::kLargestNumber - 1);
  EXPECT_EQ(IFC::kLargestNumber, AddWall(IFC::kLargestNumber - 1).marker);
  EXPECT_EQ(1u, AddWall(IFC::kLargestNumber - 1).marker);
  EXPECT_EQ(2u, AddWall(IFC::kLargestNumber).marker);
  EXPECT_EQ(Texts{}, Boxes());
}

// Another container has them, or they were passed over.
TEST_F(Container, NumbersBelowTheLastOneThatAreFreeHereAreGivenToo) {
  const test::NumbersUpTo largest(5);
  MainContainer other(RecordedReports::Reporter, nullptr, 64);
  Wall& last = graph_.Add<Wall>();
  last.marker = 5;
  other.AddEntity(&last);
  AddWall(2);
  EXPECT_EQ(5u, AddWall(0).marker);
  for (const std::uint32_t number : {1u, 3u, 4u}) EXPECT_EQ(number, AddWall(0).marker);
  EXPECT_FALSE(container_.HasRunOutOfNumbers());
}

TEST_F(Container, TheCounterStopsBehindTheLastNumber) {
  const test::NumbersUpTo largest(3);
  for (int i = 0; i < 5; ++i) AddWall(0);
  EXPECT_EQ(4u, MainContainer::uniqueMarker);
  MainContainer other(RecordedReports::Reporter, nullptr, 64);
  Wall& wall = graph_.Add<Wall>();
  other.AddEntity(&wall);
  EXPECT_EQ(1u, wall.marker);
  EXPECT_EQ(4u, MainContainer::uniqueMarker);
}

TEST_F(Container, WithoutANumberLeftNothingIsFiledAndItIsReportedOnce) {
  const test::NumbersUpTo largest(2);
  AddWall(1);
  AddWall(2);
  EXPECT_FALSE(container_.HasRunOutOfNumbers());
  AddWall(0);
  AddWall(2);
  EXPECT_TRUE(container_.HasRunOutOfNumbers());
  EXPECT_EQ((Numbers{1, 2}), Keys());
  EXPECT_EQ((std::vector<test::Report>{{"",
                                        u"All numbers up to #2 are in use: there is none left for "
                                        u"another object.\n",
                                        1}}),
            *reports_);
  EXPECT_EQ(Texts{}, Boxes());
}

TEST_F(Container, AnErasedNumberIsFreeAgain) {
  const test::NumbersUpTo largest(3);
  for (int i = 0; i < 3; ++i) AddWall(0);
  container_.EraseEntity(2);
  EXPECT_EQ(2u, AddWall(0).marker);
  EXPECT_FALSE(container_.HasRunOutOfNumbers());
}

TEST_F(Container, TheNumberingIsSharedByAllContainers) {
  AddWall(40);
  MainContainer other(RecordedReports::Reporter, nullptr, 64);
  Wall& wall = graph_.Add<Wall>();
  other.AddEntity(&wall);
  EXPECT_EQ(40u, wall.marker);
  EXPECT_EQ(41u, MainContainer::uniqueMarker);
  MainContainer::ResetUniqueMarker();
  EXPECT_EQ(1u, MainContainer::uniqueMarker);
}

TEST_F(Container, FilingByOriginalNumberFillsBothTables) {
  Wall& wall = graph_.Add<Wall>();
  wall.marker = 7;
  EXPECT_TRUE(container_.AddEntityByOrginalNumber(&wall, 7));
  EXPECT_TRUE(container_.HasEntityWithOrginalNumber(7));
  EXPECT_EQ(&wall, container_.GetEntityByOrginalNumber(7));
  EXPECT_EQ(&wall, container_.entities.Find(7));
  EXPECT_FALSE(container_.HasEntityWithOrginalNumber(8));
  EXPECT_EQ(nullptr, container_.GetEntityByOrginalNumber(8));
}

TEST_F(Container, NullIsNotFiledAndNothingIsSaid) {
  EXPECT_FALSE(container_.AddEntityByOrginalNumber(nullptr, 7));
  EXPECT_FALSE(container_.HasEntityWithOrginalNumber(7));
  EXPECT_EQ(Texts{}, Boxes());
}

TEST_F(Container, ATakenOriginalNumberIsRefusedWithABox) {
  Wall& first = graph_.Add<Wall>();
  Wall& second = graph_.Add<Wall>();
  first.marker = second.marker = 4294967279u;
  container_.AddEntityByOrginalNumber(&first, 4294967279u);
  EXPECT_FALSE(container_.AddEntityByOrginalNumber(&second, 4294967279u));
  EXPECT_EQ((Texts{u"AddEntityByOrginalNumber method error: Entity with marker: 4294967279 already "
                   u"exists."}),
            Boxes());
  EXPECT_EQ(&first, container_.GetEntityByOrginalNumber(4294967279u));
  EXPECT_EQ(1u, container_.entities.Size());
}

TEST_F(Container, EraseTakesTheEntryAndNothingElse) {
  Wall& wall = graph_.Add<Wall>();
  wall.marker = 7;
  container_.AddEntityByOrginalNumber(&wall, 7);
  container_.EraseEntity(7);
  EXPECT_EQ(Numbers{}, Keys());
  EXPECT_EQ(&wall, container_.GetEntityByOrginalNumber(7));
  EXPECT_EQ(7u, wall.marker);
}

TEST_F(Container, EraseOfAMissingNumberIsSilent) {
  AddWall(3);
  container_.EraseEntity(4);
  EXPECT_EQ((Numbers{3}), Keys());
  EXPECT_EQ(Texts{}, Boxes());
  EXPECT_TRUE(reports_->empty());
}

TEST_F(Container, AStandInTakesTheNumberOfItsTarget) {
  Wall& target = AddWall(3);
  Wall& wall = AddWall(9);
  container_.OverwriteMarker(&wall, &target);
  EXPECT_EQ(3u, wall.marker);
  EXPECT_EQ(&wall, container_.entities.Find(9));
  container_.OverwriteMarker(&target, &target);
  EXPECT_EQ(3u, target.marker);
}

TEST_F(Container, FillMarkersGivesEveryEntityTheNumberThatItIsFiledUnder) {
  Wall& first = AddWall(3);
  Wall& second = AddWall(9);
  first.marker = 0;
  second.marker = 1;
  container_.FillMarkers();
  EXPECT_EQ(3u, first.marker);
  EXPECT_EQ(9u, second.marker);
}

TEST_F(Container, FillMarkersLeavesTheDeletedOnesAlone) {
  Wall& wall = AddWall(3);
  wall.marker = IFC::kDeleted;
  Wall& placement = AddWall(4);
  placement.marker = IFC::kMadePlacement;
  container_.FillMarkers();
  EXPECT_EQ(IFC::kDeleted, wall.marker);
  EXPECT_EQ(4u, placement.marker);
}

TEST_F(Container, FillMarkersRefusesTheKeyZero) {
  Wall& wall = graph_.Add<Wall>();
  wall.marker = 5;
  container_.entities.Set(0, &wall);
  container_.FillMarkers();
  EXPECT_EQ((Texts{u"SetMarker error: Marker has to be > 0"}), Boxes());
  EXPECT_EQ(5u, wall.marker);
}

TEST_F(Container, TheFirstProjectMakesTheTree) {
  Project& project = graph_.AddRoot<Project>("3Project");
  container_.AddEntity(&project);
  ASSERT_NE(nullptr, container_.ifcTree);
  EXPECT_EQ(&project, container_.ifcTree->root);
  EXPECT_EQ("3Project", container_.ifcTree->rootGuid);
}

TEST_F(Container, ASecondProjectIsFiledAndToldInABox) {
  Project& first = graph_.AddRoot<Project>("a");
  Project& second = graph_.AddRoot<Project>("b");
  container_.AddEntity(&first);
  container_.AddEntity(&second);
  EXPECT_EQ((Texts{u"MainContainer::AddEntity. IfcTree already exists."}), Boxes());
  EXPECT_EQ(&first, container_.ifcTree->root);
  EXPECT_EQ((Numbers{1, 2}), Keys());
}

TEST_F(Container, AProjectWithoutAGuidIsNamedByItsAddress) {
  auto& project = graph_.Add<Of<u"IfcProject", GraphNode>>();
  container_.AddEntity(&project);
  IFC::IfcEntity* const entity = &project;
  EXPECT_EQ(std::to_string(reinterpret_cast<std::uintptr_t>(entity)), container_.ifcTree->rootGuid);
}

// The eighteen lists, in their order.
std::vector<std::vector<IFC::IfcEntity*>> ListsOf(const MainContainer& c) {
  return {c.relAggregates,
          c.relContainedInSpatialStructure,
          c.relDefinesByProperties,
          c.relDefinesByObject,
          c.relDefinesByType,
          c.draughtingCalloutRelationship,
          c.relDecomposes,
          c.documentInformationRelationship,
          c.relAssigns,
          c.relVoidsElement,
          c.relFillsElement,
          c.relSpaceBoundary,
          c.relConnectsPathElements,
          c.relAssociatesClassification,
          c.relAssociatesMaterial,
          c.relAssociatesRepresentation,
          c.relAssociatesLayer,
          c.relAssociatesStyle};
}

template <class... Classes>
std::vector<IFC::IfcEntity*> AddOneOfEach(Graph& graph, MainContainer& container) {
  std::vector<IFC::IfcEntity*> added{&graph.Add<Classes>()...};
  for (IFC::IfcEntity* const entity : added) container.AddEntity(entity);
  return added;
}

std::vector<IFC::IfcEntity*> AddRelations(Graph& graph, MainContainer& container) {
  return AddOneOfEach<Of<u"IfcRelAggregates">, Of<u"IfcRelContainedInSpatialStructure">,
                      Of<u"IfcRelDefinesByProperties">, Of<u"IfcRelDefinesByObject">,
                      Of<u"IfcRelDefinesByType">,
                      Of<u"IfcDraughtingCalloutRelationship", GraphNode>, Of<u"IfcRelDecomposes">,
                      Of<u"IfcDocumentInformationRelationship", GraphNode>,
                      Of<u"IfcRelAssignsToGroup", GraphAssigns>, Of<u"IfcRelVoidsElement">,
                      Of<u"IfcRelFillsElement">, Of<u"IfcRelSpaceBoundary">,
                      Of<u"IfcRelConnectsPathElements">, Of<u"IfcRelAssociatesClassification">,
                      Of<u"IfcRelAssociatesMaterial">, Of<u"IfcRelAssociatesRepresentation">,
                      Of<u"IfcRelAssociatesLayer">, Of<u"IfcRelAssociatesStyle">>(graph, container);
}

TEST_F(Container, EachRelationStandsInTheListOfItsClassInOrderOfFiling) {
  const auto first = AddRelations(graph_, container_);
  const auto second = AddRelations(graph_, container_);
  const auto lists = ListsOf(container_);
  ASSERT_EQ(18u, lists.size());
  for (std::size_t i = 0; i < lists.size(); ++i) {
    EXPECT_EQ((std::vector{first[i], second[i]}), lists[i]) << Narrow(first[i]->getClassName());
  }
}

TEST_F(Container, AllKindsOfAssignmentStandInOneList) {
  const auto assigns = AddOneOfEach<Of<u"IfcRelAssignsToActor", GraphAssigns>,
                                    Of<u"IfcRelAssignsToProduct", GraphAssigns>,
                                    Of<u"IfcRelAssignsTasks", GraphAssigns>>(graph_, container_);
  EXPECT_EQ(assigns, container_.relAssigns);
}

// The bare class is no subtype of itself; neither a longer name nor another case is the class.
TEST_F(Container, ClassesThatMatchNothingStandInNoList) {
  AddOneOfEach<Of<u"IfcRelAssigns">, Of<u"IfcRelAggregatesX">, Of<u"IFCRELAGGREGATES">,
               Of<u"IfcRelAssociates">, Wall>(graph_, container_);
  for (const auto& list : ListsOf(container_)) EXPECT_TRUE(list.empty());
  EXPECT_EQ(5u, container_.entities.Size());
}

TEST_F(Container, ANameComesBeforeTheCast) {
  AddOneOfEach<Of<u"IfcRelAggregates", GraphAssigns>, Of<u"IfcRelAssociatesStyle", GraphAssigns>>(
      graph_, container_);
  EXPECT_EQ(1u, container_.relAggregates.size());
  // The cast comes before the names below it.
  EXPECT_EQ(1u, container_.relAssigns.size());
  EXPECT_TRUE(container_.relAssociatesStyle.empty());
}

TEST_F(Container, AnEntityThatIsNotFiledStandsInNoList) {
  AddWall(500);
  AddWall(501);
  MainContainer::uniqueMarker = 500;
  auto& relation = graph_.Add<Of<u"IfcRelAggregates">>();
  relation.marker = 500;
  container_.AddEntity(&relation);
  EXPECT_TRUE(container_.relAggregates.empty());
}

}  // namespace
}  // namespace corvel
