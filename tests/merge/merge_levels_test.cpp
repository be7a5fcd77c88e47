// Spatial objects merged by name. A run at such a level ends unmerged, whatever it did.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "graph_document.h"
#include "support/model.h"

namespace corvel {
namespace {

using test::GraphDocument;
using test::GraphNode;
using test::MergeWorld;
using test::Model;
using test::Of;
using test::Report;

using Reports = std::vector<Report>;
using Project = Of<u"IfcProject">;

class Levels : public testing::Test {
 protected:
  MergeWorld world_;
};

// One object of each spatial class on both sides, of one name each, and a relation to each.
constexpr char kFirst[] =
    "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
    "#2=IFCSITE('s1',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n"
    "#3=IFCBUILDING('b1',$,'B',$,$,$,$,$,$,$,$,$);\n"
    "#4=IFCBUILDINGSTOREY('f1',$,'F',$,$,$,$,$,$,$);\n";
constexpr char kSecond[] =
    "#11=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n"
    "#12=IFCSITE('s2',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n"
    "#13=IFCBUILDING('b2',$,'B',$,$,$,$,$,$,$,$,$);\n"
    "#14=IFCBUILDINGSTOREY('f2',$,'F',$,$,$,$,$,$,$);\n"
    "#15=IFCRELAGGREGATES('r1',$,$,$,#11,(#12));\n"
    "#16=IFCRELAGGREGATES('r2',$,$,$,#12,(#13));\n"
    "#17=IFCRELAGGREGATES('r3',$,$,$,#13,(#14));\n";

std::string MergedAt(unsigned level, MergeStatus status) {
  Model first(kFirst);
  Model second(kSecond);
  EXPECT_TRUE(first->MergeDocument(*second, level, false));
  EXPECT_EQ(status, first->mergeStatus);
  return first.Lines().substr(sizeof kFirst - 1);
}

TEST_F(Levels, LevelZeroKeepsAllSpatialObjects) {
  EXPECT_EQ(
      "#12=IFCSITE('s2',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#13=IFCBUILDING('b2',$,'B',$,$,$,$,$,$,$,$,$);\n"
      "#14=IFCBUILDINGSTOREY('f2',$,'F',$,$,$,$,$,$,$);\n"
      "#15=IFCRELAGGREGATES('r1',$,$,$,#1,(#12));\n"
      "#16=IFCRELAGGREGATES('r2',$,$,$,#12,(#13));\n"
      "#17=IFCRELAGGREGATES('r3',$,$,$,#13,(#14));\n",
      MergedAt(0, MergeStatus::kMerged));
}

TEST_F(Levels, LevelOneMergesSites) {
  EXPECT_EQ(
      "#13=IFCBUILDING('b2',$,'B',$,$,$,$,$,$,$,$,$);\n"
      "#14=IFCBUILDINGSTOREY('f2',$,'F',$,$,$,$,$,$,$);\n"
      "#15=IFCRELAGGREGATES('r1',$,$,$,#1,(#2));\n"
      "#16=IFCRELAGGREGATES('r2',$,$,$,#2,(#13));\n"
      "#17=IFCRELAGGREGATES('r3',$,$,$,#13,(#14));\n",
      MergedAt(1, MergeStatus::kNotMerged));
}

TEST_F(Levels, LevelTwoMergesBuildingsToo) {
  EXPECT_EQ(
      "#14=IFCBUILDINGSTOREY('f2',$,'F',$,$,$,$,$,$,$);\n"
      "#15=IFCRELAGGREGATES('r1',$,$,$,#1,(#2));\n"
      "#16=IFCRELAGGREGATES('r2',$,$,$,#2,(#3));\n"
      "#17=IFCRELAGGREGATES('r3',$,$,$,#3,(#14));\n",
      MergedAt(2, MergeStatus::kNotMerged));
}

TEST_F(Levels, LevelThreeAndAboveMergesStoreysToo) {
  const std::string expected =
      "#15=IFCRELAGGREGATES('r1',$,$,$,#1,(#2));\n"
      "#16=IFCRELAGGREGATES('r2',$,$,$,#2,(#3));\n"
      "#17=IFCRELAGGREGATES('r3',$,$,$,#3,(#4));\n";
  EXPECT_EQ(expected, MergedAt(3, MergeStatus::kNotMerged));
  EXPECT_EQ(expected, MergedAt(4, MergeStatus::kNotMerged));
  EXPECT_EQ(expected, MergedAt(65535, MergeStatus::kNotMerged));
}

TEST_F(Levels, AnObjectOfTheSourceAloneIsAddedAtTheEnd) {
  Model first(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('w1',$,$,$,$,$,$,$,$);\n");
  Model second(
      "#2=IFCSITE('s2',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#3=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n"
      "#4=IFCRELAGGREGATES('r',$,$,$,#3,(#2));\n");
  first->MergeDocument(*second, 1, false);
  EXPECT_EQ(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('w1',$,$,$,$,$,$,$,$);\n"
      "#4=IFCRELAGGREGATES('r',$,$,$,#1,(#5));\n"
      "#5=IFCSITE('s2',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n",
      first.Lines());
}

TEST_F(Levels, NamesAreComparedExactly) {
  Model first(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCSITE('s1',$,'Site',$,$,$,$,$,$,$,$,$,$,$);\n");
  Model second(
      "#11=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n"
      "#12=IFCSITE('s2',$,'site',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#13=IFCSITE('s3',$,'Site ',$,$,$,$,$,$,$,$,$,$,$);\n");
  first->MergeDocument(*second, 3, false);
  EXPECT_EQ(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCSITE('s1',$,'Site',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#12=IFCSITE('s2',$,'site',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#13=IFCSITE('s3',$,'Site ',$,$,$,$,$,$,$,$,$,$,$);\n",
      first.Lines());
}

TEST_F(Levels, EqualNamesOfDifferentClassesAreApart) {
  Model first(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCSITE('s1',$,'A',$,$,$,$,$,$,$,$,$,$,$);\n");
  Model second(
      "#11=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n"
      "#12=IFCBUILDING('b2',$,'A',$,$,$,$,$,$,$,$,$);\n");
  first->MergeDocument(*second, 3, false);
  EXPECT_EQ(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCSITE('s1',$,'A',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#12=IFCBUILDING('b2',$,'A',$,$,$,$,$,$,$,$,$);\n",
      first.Lines());
}

TEST_F(Levels, NamelessObjectsHaveOneName) {
  Model first(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCSITE('s1',$,$,$,$,$,$,$,$,$,$,$,$,$);\n");
  Model second(
      "#11=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n"
      "#12=IFCSITE('s2',$,'',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#13=IFCRELAGGREGATES('r',$,$,$,#11,(#12));\n");
  first->MergeDocument(*second, 1, false);
  EXPECT_EQ(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCSITE('s1',$,$,$,$,$,$,$,$,$,$,$,$,$);\n"
      "#13=IFCRELAGGREGATES('r',$,$,$,#1,(#2));\n",
      first.Lines());
}

// The earlier one is neither written nor a stand-in.
TEST_F(Levels, TheLastObjectOfAClassAndNameStandsForAll) {
  Model first(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCSITE('s1',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#3=IFCSITE('s2',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n");
  Model second(
      "#11=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n"
      "#12=IFCSITE('s3',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#13=IFCSITE('s4',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#14=IFCRELAGGREGATES('r',$,$,$,#11,(#12,#13));\n");
  first->MergeDocument(*second, 1, false);
  EXPECT_EQ(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCSITE('s1',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#3=IFCSITE('s2',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#14=IFCRELAGGREGATES('r',$,$,$,#1,(#12,#3));\n",
      first.Lines());
}

TEST_F(Levels, WithGuidsToAgreeAnotherGuidLeavesTheSourcesObjectOut) {
  Model first(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCSITE('s1',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n");
  Model second(
      "#11=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n"
      "#12=IFCSITE('s2',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#13=IFCRELAGGREGATES('r',$,$,$,#11,(#12));\n");
  EXPECT_TRUE(first->MergeDocument(*second, 1, true));
  // References to it lead nowhere.
  EXPECT_EQ(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCSITE('s1',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#13=IFCRELAGGREGATES('r',$,$,$,#1,(#12));\n",
      first.Lines());
  EXPECT_EQ(MergeStatus::kNotMerged, first->mergeStatus);
}

TEST_F(Levels, WithGuidsToAgreeTheSameGuidAndNameMerge) {
  Model first(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCSITE('s',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n");
  Model second(
      "#11=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n"
      "#12=IFCSITE('s',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#13=IFCSITE('s',$,'Other',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#14=IFCRELAGGREGATES('r',$,$,$,#11,(#12,#13));\n");
  world_.system.guids = {{0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1}}};
  first->MergeDocument(*second, 1, true);
  EXPECT_EQ(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCSITE('s',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#13=IFCSITE('0000000000000000000001',$,'Other',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#14=IFCRELAGGREGATES('r',$,$,$,#1,(#2,#13));\n",
      first.Lines());
}

TEST_F(Levels, TheSurvivorInheritsTheParents) {
  Model first(kFirst);
  Model second(kSecond);
  const IFC::IfcEntity* const site = first[2];
  const IFC::IfcEntity* const above = second[15];
  const IFC::IfcEntity* const below = second[16];
  first->MergeDocument(*second, 1, false);
  EXPECT_TRUE(site->parents.Contains(above));
  EXPECT_TRUE(site->parents.Contains(below));
  EXPECT_EQ(2u, site->mergedParents.Size());
}

TEST_F(Levels, ASpatialObjectThatIsNoRootIsToldAndLeftOut) {
  GraphDocument first(u"first.ifc");
  GraphDocument second(u"second.ifc");
  first.AddRoot<Project>(1, "p1");
  first.Add<Of<u"IfcSite", GraphNode>>(2);
  second.AddRoot<Project>(11, "p2");
  second.Add<Of<u"IfcSite", GraphNode>>(12);
  second.Add<Of<u"IfcPoint", GraphNode>>(13);
  EXPECT_TRUE(first->MergeDocument(*second, 1, false));
  const Report notARoot{"", u"Unable to cast source entity to IfcRoot", 0};
  EXPECT_EQ((Reports{notARoot, notARoot}), *world_.reports);
  EXPECT_EQ((std::vector<std::uint32_t>{1, 2, 13}), first.Numbers());
}

TEST_F(Levels, AStatusThatWasSetStays) {
  Model first(kFirst);
  Model second("#21=IFCPROJECT('p3',$,$,$,$,$,$,$,$);\n");
  Model third(kSecond);
  first->MergeDocument(*second, 0, false);
  EXPECT_EQ(MergeStatus::kMerged, first->mergeStatus);
  first->MergeDocument(*third, 3, false);
  EXPECT_EQ(MergeStatus::kMerged, first->mergeStatus);
}

TEST_F(Levels, TheMissingProjectIsToldAtEveryLevel) {
  Model first(kFirst);
  Model second("#12=IFCSITE('s2',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n");
  EXPECT_TRUE(first->MergeDocument(*second, 1, false));
  EXPECT_EQ(
      (Reports{
          {"", u"Unable to merge projects properly because couldn't find IfcProject entity.", 0}}),
      *world_.reports);
}

}  // namespace
}  // namespace corvel
