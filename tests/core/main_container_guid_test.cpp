#include <gtest/gtest.h>

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/main_container.h"
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
using test::Report;
using test::TestPlatform;

using Wall = Of<u"IfcWall">;
using Slab = Of<u"IfcSlab">;

// A GUID whose text ends in `last`, "0...01" and the like.
platform::Guid Ending(std::uint8_t last) { return {0, 0, 0, {0, 0, 0, 0, 0, 0, 0, last}}; }

class GuidMap : public testing::Test {
 protected:
  GuidMap() { MainContainer::ResetUniqueMarker(); }
  ~GuidMap() override { MainContainer::ResetUniqueMarker(); }

  template <class Class>
  Class& Add(std::uint32_t number, std::string_view guid) {
    Class& entity = graph_.AddRoot<Class>(guid);
    entity.marker = number;
    container_.AddEntityByOrginalNumber(&entity, number);
    return entity;
  }
  std::map<std::string, IFC::IfcEntity*> Found() const {
    std::map<std::string, IFC::IfcEntity*> sorted;
    for (const auto& [guid, root] : container_.entitiesGUIDmap) sorted[std::string(guid)] = root;
    return sorted;
  }

  TestPlatform system_;
  RecordedReports reports_;
  Graph graph_;
  MainContainer container_{RecordedReports::Reporter, nullptr, 1 << 12};
};

using Map = std::map<std::string, IFC::IfcEntity*>;
using Reports = std::vector<Report>;
using Generated = std::unordered_map<WideString, std::string>;

TEST_F(GuidMap, EveryRootIsFoundUnderItsGuid) {
  Wall& wall = Add<Wall>(4, "w");
  Slab& slab = Add<Slab>(9, "s");
  EXPECT_TRUE(container_.FillEntitiesGUIDmap(u"a.ifc"));
  EXPECT_EQ((Map{{"w", &wall}, {"s", &slab}}), Found());
  EXPECT_EQ(Reports{}, *reports_);
}

TEST_F(GuidMap, WhatIsNoRootHasNoPlace) {
  auto& point = graph_.Add<Of<u"IfcPoint", GraphNode>>();
  point.marker = 3;
  container_.AddEntityByOrginalNumber(&point, 3);
  EXPECT_TRUE(container_.FillEntitiesGUIDmap(u"a.ifc"));
  EXPECT_EQ(0u, container_.entitiesGUIDmap.Size());
}

TEST_F(GuidMap, AnEmptyGuidIsReplacedAndLogged) {
  system_.guids = {Ending(5)};
  Wall& wall = Add<Wall>(4, "");
  container_.FillEntitiesGUIDmap(u"a.ifc");
  EXPECT_STREQ("0000000000000000000005", wall.guid);
  EXPECT_EQ((Map{{"0000000000000000000005", &wall}}), Found());
  EXPECT_EQ(
      (Reports{
          {"", u"Object IfcWall has no GUID. Generating new GUID: 0000000000000000000005\n", 2}}),
      *reports_);
  EXPECT_EQ(container_.Pool().InternNarrow("0000000000000000000005"), wall.guid);
  EXPECT_TRUE(container_.generatedGUIDs.empty());
}

TEST_F(GuidMap, TheSecondHolderOfAGuidGetsANewOneAndTheFirstKeepsIt) {
  system_.guids = {Ending(5)};
  Slab& second = Add<Slab>(90, "x");
  Wall& first = Add<Wall>(4, "x");  // by number, not by order of filing
  container_.FillEntitiesGUIDmap(u"C:\\a.ifc");
  EXPECT_STREQ("x", first.guid);
  EXPECT_STREQ("0000000000000000000005", second.guid);
  EXPECT_EQ((Map{{"x", &first}, {"0000000000000000000005", &second}}), Found());
  EXPECT_EQ(
      (Reports{{"",
                u"Object with GUID: \"x\" already exists. Multiple GUIDs are not allowed. New "
                u"GUID will be created for this object: \"0000000000000000000005\"\n",
                2}}),
      *reports_);
  EXPECT_EQ((Generated{{u"C:\\a.ifc90x", "0000000000000000000005"}}), container_.generatedGUIDs);
}

TEST_F(GuidMap, AnEmptyGuidAndADuplicateInOneModel) {
  system_.guids = {Ending(1), Ending(2), Ending(3)};
  Wall& empty = Add<Wall>(1, "");
  Wall& kept = Add<Wall>(2, "x");
  Wall& duplicate = Add<Wall>(3, "x");
  Wall& third = Add<Wall>(4, "x");
  container_.FillEntitiesGUIDmap(u"p");
  EXPECT_STREQ("0000000000000000000001", empty.guid);
  EXPECT_STREQ("x", kept.guid);
  EXPECT_STREQ("0000000000000000000002", duplicate.guid);
  EXPECT_STREQ("0000000000000000000003", third.guid);
  EXPECT_EQ((Generated{{u"p3x", "0000000000000000000002"}, {u"p4x", "0000000000000000000003"}}),
            container_.generatedGUIDs);
  ASSERT_EQ(3u, reports_->size());
}

TEST_F(GuidMap, AMadeGuidThatIsTakenAlreadyIsReplacedOnceMore) {
  system_.guids = {Ending(1), Ending(2)};
  Add<Wall>(1, "0000000000000000000001");
  Wall& empty = Add<Wall>(2, "");
  container_.FillEntitiesGUIDmap(u"p");
  EXPECT_STREQ("0000000000000000000002", empty.guid);
  EXPECT_EQ((Generated{{u"p20000000000000000000001", "0000000000000000000002"}}),
            container_.generatedGUIDs);
}

TEST_F(GuidMap, ADeletedRootIsPassedOverAndItsGuidIsFree) {
  Wall& deleted = Add<Wall>(1, "x");
  Wall& deletedEmpty = Add<Wall>(2, "");
  deleted.marker = deletedEmpty.marker = IFC::kDeleted;
  Wall& live = Add<Wall>(3, "x");
  container_.FillEntitiesGUIDmap(u"p");
  EXPECT_EQ((Map{{"x", &live}}), Found());
  EXPECT_STREQ("", deletedEmpty.guid);
  EXPECT_EQ(Reports{}, *reports_);
}

TEST_F(GuidMap, ItGoesThroughTheOriginalNumbersAndNotThroughTheMarkers) {
  Wall& erased = Add<Wall>(1, "erased");
  container_.EraseEntity(1);
  Wall& added = graph_.AddRoot<Wall>("added");
  container_.AddEntity(&added);
  container_.FillEntitiesGUIDmap(u"p");
  EXPECT_EQ((Map{{"erased", &erased}}), Found());
}

TEST_F(GuidMap, TheKeyOfAReplacementHasThePresentMarker) {
  system_.guids = {Ending(7)};
  Add<Wall>(1, "x");
  Wall& second = Add<Wall>(2, "x");
  second.marker = 4294967279u;
  container_.FillEntitiesGUIDmap(u"p|");
  EXPECT_EQ((Generated{{u"p|4294967279x", "0000000000000000000007"}}), container_.generatedGUIDs);
}

TEST_F(GuidMap, ASecondCallStartsAnewAndFindsNothingMoreToDo) {
  Wall& first = Add<Wall>(1, "x");
  Wall& second = Add<Wall>(2, "x");
  container_.FillEntitiesGUIDmap(u"p");
  const std::string replacement = second.guid;
  first.guid = "y";
  reports_.Forget();
  container_.FillEntitiesGUIDmap(u"p");
  EXPECT_EQ((Map{{"y", &first}, {replacement, &second}}), Found());
  EXPECT_EQ(Reports{}, *reports_);
}

TEST_F(GuidMap, CreateGuidForDuplicateReplacesAnOlderEntry) {
  system_.guids = {Ending(1), Ending(2)};
  EXPECT_STREQ("0000000000000000000001", container_.CreateGUIDForDuplicate(u"p", "x", 5));
  EXPECT_STREQ("0000000000000000000002", container_.CreateGUIDForDuplicate(u"p", "x", 5));
  EXPECT_EQ((Generated{{u"p5x", "0000000000000000000002"}}), container_.generatedGUIDs);
}

TEST_F(GuidMap, CreateGuidInternsItsText) {
  system_.guids = {Ending(1), Ending(1)};
  const char* const guid = container_.CreateGUID();
  EXPECT_STREQ("0000000000000000000001", guid);
  EXPECT_EQ(guid, container_.CreateGUID());
  EXPECT_EQ(guid, container_.Pool().InternNarrow("0000000000000000000001"));
}

TEST_F(GuidMap, CreateGuidReportsThatNoneCouldBeMade) {
  system_.guids = {platform::Guid{}};
  EXPECT_EQ(nullptr, container_.CreateGUID());
  EXPECT_EQ((Reports{{"", u"CreateGUID function returned NULL", 0}}), *reports_);
  EXPECT_EQ((std::vector<TestPlatform::Box>{{u"Utils", u"CreateGUID function returned NULL",
                                             platform::Buttons::kOkCancel, platform::Icon::kNone}}),
            system_.boxes);
}

}  // namespace
}  // namespace corvel
