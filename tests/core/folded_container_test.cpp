// What a container keeps up to date from one fold to the next, so that a fold costs what it adds.
#include <gtest/gtest.h>

#include <set>

#include "core/main_container.h"
#include "core/outcome.h"
#include "support/graph.h"
#include "support/recorded_reports.h"
#include "support/test_platform.h"

namespace corvel {
namespace {

using IFC::MainContainer;
using test::Graph;
using test::GraphNode;
using test::Of;
using test::RecordedReports;
using test::TestPlatform;

using Point = Of<u"IfcPoint", GraphNode>;
using Wall = Of<u"IfcWall">;
using Project = Of<u"IfcProject">;
using Set = std::set<IFC::IfcEntity*>;

Set ParentsOf(const IFC::IfcEntity& entity) {
  const auto members = entity.parents.Members();
  return {members.begin(), members.end()};
}

class FoldedContainer : public testing::Test {
 protected:
  FoldedContainer() { MainContainer::ResetUniqueMarker(); }
  ~FoldedContainer() override { MainContainer::ResetUniqueMarker(); }

  template <class Class>
  Class& Filed(MainContainer& container) {
    Class& entity = graph_.Add<Class>();
    container.AddEntity(&entity);
    return entity;
  }
  template <class Class>
  Class& ReadAs(std::uint32_t number, std::string_view guid) {
    Class& entity = graph_.AddRoot<Class>(guid);
    entity.marker = number;
    container_.AddEntityByOrginalNumber(&entity, number);
    return entity;
  }
  Outcome Refresh() { return container_.RefreshParentsLists({.to = 1}); }

  TestPlatform system_;
  RecordedReports reports_;
  Graph graph_;
  MainContainer container_{RecordedReports::Reporter, nullptr, 1 << 12};
  MainContainer source_{RecordedReports::Reporter, nullptr, 1 << 12};
};

TEST_F(FoldedContainer, ARefreshBehindAFoldEntersTheParentsOfWhatCame) {
  Point& here = Filed<Point>(container_);
  Point& above = Filed<Point>(container_);
  above.RefersTo(&here);
  Refresh();
  Point& child = Filed<Point>(source_);
  Point& parent = Filed<Point>(source_);
  Point& leftBehind = Filed<Point>(source_);
  parent.RefersTo(&child);
  leftBehind.RefersTo(&child);
  source_.FillParentsLists();
  container_.AddEntity(&child);
  container_.AddEntity(&parent);
  leftBehind.marker = IFC::kDeleted;
  container_.NoteFolded(source_);
  EXPECT_EQ(Outcome::kComplete, Refresh());
  EXPECT_EQ((Set{&parent}), ParentsOf(child)) << "not what stayed behind";
  EXPECT_EQ((Set{&above}), ParentsOf(here));
}

// What a refresh takes for granted is seen where a reference changes and nobody tells of it.
TEST_F(FoldedContainer, ARefreshBehindAFoldLeavesTheRestAsItIs) {
  Point& here = Filed<Point>(container_);
  Point& above = Filed<Point>(container_);
  above.RefersTo(&here);
  Refresh();
  above.children.clear();
  container_.AddEntity(&Filed<Point>(source_));
  container_.NoteFolded(source_);
  Refresh();
  EXPECT_EQ((Set{&above}), ParentsOf(here));
  container_.AddEntity(&Filed<Point>(source_));
  Refresh();
  EXPECT_EQ(Set{}, ParentsOf(here)) << "filed by nobody who tells what else was done";
}

TEST_F(FoldedContainer, AChangeBehindAFoldHasAllParentsFilledAnew) {
  Point& here = Filed<Point>(container_);
  Point& above = Filed<Point>(container_);
  Refresh();
  container_.AddEntity(&Filed<Point>(source_));
  container_.NoteFolded(source_);
  above.RefersTo(&here);
  container_.NoteChangedReferences();
  Refresh();
  EXPECT_EQ((Set{&above}), ParentsOf(here));
}

TEST_F(FoldedContainer, MarkersAreRefreshedOnlyAfterAChange) {
  Point& point = Filed<Point>(container_);
  const std::uint32_t number = point.marker;
  point.marker = 77;
  container_.RefreshMarkers();
  EXPECT_EQ(number, point.marker);
  point.marker = 78;
  container_.RefreshMarkers();
  EXPECT_EQ(78u, point.marker) << "nobody told";
  container_.NoteChangedMarkers();
  container_.RefreshMarkers();
  EXPECT_EQ(number, point.marker);
}

TEST_F(FoldedContainer, OverwritingAMarkerIsAChangeOfMarkers) {
  Point& first = Filed<Point>(container_);
  Point& second = Filed<Point>(container_);
  const std::uint32_t number = first.marker;
  container_.RefreshMarkers();
  container_.OverwriteMarker(&first, &second);
  container_.RefreshMarkers();
  EXPECT_EQ(number, first.marker);
}

TEST_F(FoldedContainer, AfterAResetTheMarkersAreRefreshed) {
  Point& point = Filed<Point>(container_);
  const std::uint32_t number = point.marker;
  for (const bool withParents : {false, true}) {
    container_.RefreshMarkers();
    withParents ? container_.ResetMarkersAndFillParents() : void(container_.ResetAllMarkers());
    EXPECT_EQ(IFC::kUnfiled, point.marker);
    container_.RefreshMarkers();
    EXPECT_EQ(number, point.marker);
  }
}

TEST_F(FoldedContainer, GuidsAreIndexedAnewOnlyAfterAChange) {
  Wall& wall = ReadAs<Wall>(4, "w");
  EXPECT_TRUE(container_.RefreshEntitiesGUIDmap(u"a.ifc"));
  wall.guid = "changed by nobody";
  EXPECT_TRUE(container_.RefreshEntitiesGUIDmap(u"a.ifc"));
  EXPECT_NE(nullptr, container_.entitiesGUIDmap.Find("w"));
  ReadAs<Wall>(5, "v");
  EXPECT_TRUE(container_.RefreshEntitiesGUIDmap(u"a.ifc"));
  EXPECT_EQ(nullptr, container_.entitiesGUIDmap.Find("w"));
  EXPECT_NE(nullptr, container_.entitiesGUIDmap.Find("v"));
  wall.marker = IFC::kDeleted;
  container_.NoteChangedMarkers();
  EXPECT_TRUE(container_.RefreshEntitiesGUIDmap(u"a.ifc"));
  EXPECT_EQ(1u, container_.entitiesGUIDmap.Size()) << "deleted objects have no place in it";
}

TEST_F(FoldedContainer, TheFirstProjectIsTheOneWithTheLowestNumber) {
  EXPECT_EQ(nullptr, container_.FirstProject());
  Project& high = ReadAs<Project>(9, "high");
  EXPECT_EQ(&high, container_.FirstProject());
  Project& low = ReadAs<Project>(3, "low");
  EXPECT_EQ(&low, container_.FirstProject());
  low.marker = IFC::kDeleted;
  EXPECT_EQ(&high, container_.FirstProject());
  container_.EraseEntity(9);
  EXPECT_EQ(nullptr, container_.FirstProject());
}

}  // namespace
}  // namespace corvel
