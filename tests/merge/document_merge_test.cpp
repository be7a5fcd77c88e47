// Two models of real records folded into one, as they would be written.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "graph_document.h"
#include "merge/guid_choice.h"
#include "support/model.h"
#include "support/numbers_up_to.h"
#include "support/small_stack.h"

namespace corvel {
namespace {

using test::GraphDocument;
using test::GraphNode;
using test::MergeWorld;
using test::Model;
using test::Of;
using test::Report;

using Reports = std::vector<Report>;
using Wall = Of<u"IfcWall">;
using Project = Of<u"IfcProject">;
using Aggregates = Of<u"IfcRelAggregates">;

const Report kNoProject{
    "", u"Unable to merge projects properly because couldn't find IfcProject entity.", 0};

class Merge : public testing::Test {
 protected:
  std::vector<std::u16string> Boxes() const {
    std::vector<std::u16string> texts;
    for (const auto& box : world_.system.boxes) texts.push_back(box.text);
    return texts;
  }

  MergeWorld world_;
};

TEST_F(Merge, TheLaterProjectGivesWayAndItsRelationsNameTheFirst) {
  Model first(
      "#1=IFCPROJECT('p1',$,'First',$,$,$,$,$,$);\n"
      "#2=IFCSITE('s1',$,'Site',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#3=IFCRELAGGREGATES('r1',$,$,$,#1,(#2));\n");
  Model second(
      "#10=IFCPROJECT('p2',$,'Second',$,$,$,$,$,$);\n"
      "#11=IFCSITE('s2',$,'Other',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#12=IFCRELAGGREGATES('r2',$,$,$,#10,(#11));\n");
  EXPECT_TRUE(first->MergeDocument(*second, 0, false));
  EXPECT_EQ(
      "#1=IFCPROJECT('p1',$,'First',$,$,$,$,$,$);\n"
      "#2=IFCSITE('s1',$,'Site',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#3=IFCRELAGGREGATES('r1',$,$,$,#1,(#2));\n"
      "#11=IFCSITE('s2',$,'Other',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#12=IFCRELAGGREGATES('r2',$,$,$,#1,(#11));\n",
      first.Lines());
  EXPECT_EQ(MergeStatus::kMerged, first->mergeStatus);
  EXPECT_EQ(Reports{}, *world_.reports);
  EXPECT_EQ(0u, world_.system.boxes.size());
}

TEST_F(Merge, TakenNumbersAreGivenAnewInOrderOfTheSource) {
  Model first(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('w1',$,$,$,$,$,$,$,$);\n"
      "#7=IFCWALL('w2',$,$,$,$,$,$,$,$);\n");
  Model second(
      "#1=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('w3',$,$,$,$,$,$,$,$);\n"
      "#5=IFCRELAGGREGATES('r',$,$,$,#2,(#7,#1));\n"
      "#7=IFCWALL('w4',$,$,$,$,$,$,$,$);\n");
  first->MergeDocument(*second, 0, false);
  EXPECT_EQ(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('w1',$,$,$,$,$,$,$,$);\n"
      "#5=IFCRELAGGREGATES('r',$,$,$,#8,(#9,#1));\n"
      "#7=IFCWALL('w2',$,$,$,$,$,$,$,$);\n"
      "#8=IFCWALL('w3',$,$,$,$,$,$,$,$);\n"
      "#9=IFCWALL('w4',$,$,$,$,$,$,$,$);\n",
      first.Lines());
}

TEST_F(Merge, UnitsHistoriesAndContextsOfTheLaterFileAreKept) {
  Model first(
      "#1=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);\n"
      "#2=IFCUNITASSIGNMENT((#1));\n"
      "#3=IFCPROJECT('p1',$,$,$,$,$,$,$,#2);\n");
  Model second(
      "#1=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);\n"
      "#2=IFCUNITASSIGNMENT((#1));\n"
      "#3=IFCPROJECT('p2',$,$,$,$,$,$,$,#2);\n");
  first->MergeDocument(*second, 0, false);
  EXPECT_EQ(
      "#1=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);\n"
      "#2=IFCUNITASSIGNMENT((#1));\n"
      "#3=IFCPROJECT('p1',$,$,$,$,$,$,$,#2);\n"
      "#4=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);\n"
      "#5=IFCUNITASSIGNMENT((#4));\n",
      first.Lines());
}

TEST_F(Merge, TheSameGuidInTwoFilesReachesTheOutputTwice) {
  Model first(
      "#1=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('same',$,'a',$,$,$,$,$,$);\n");
  Model second(
      "#1=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('same',$,'b',$,$,$,$,$,$);\n");
  first->MergeDocument(*second, 0, false);
  EXPECT_EQ(
      "#1=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('same',$,'a',$,$,$,$,$,$);\n"
      "#3=IFCWALL('same',$,'b',$,$,$,$,$,$);\n",
      first.Lines());
  EXPECT_EQ(kAskAboutGuids, RememberedGuidChoice());
  EXPECT_EQ(0, world_.Questions());
  EXPECT_EQ(Reports{}, *world_.reports);
}

TEST_F(Merge, ASourceWithoutAProjectIsToldAndAddedWhole) {
  Model first("#1=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n");
  Model second(
      "#1=IFCWALL('w',$,$,$,$,$,$,$,$);\n"
      "#2=IFCCARTESIANPOINT((0.,1.));\n");
  EXPECT_TRUE(first->MergeDocument(*second, 0, false));
  EXPECT_EQ(
      "#1=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n"
      "#2=IFCCARTESIANPOINT((0.,1.));\n"
      "#3=IFCWALL('w',$,$,$,$,$,$,$,$);\n",
      first.Lines());
  EXPECT_EQ((Reports{kNoProject}), *world_.reports);
  EXPECT_EQ(MergeStatus::kMerged, first->mergeStatus);
}

TEST_F(Merge, WithoutAProjectInTheDestinationTheSourcesIsFiledWithTheRest) {
  Model first("#1=IFCWALL('w',$,$,$,$,$,$,$,$);\n");
  Model second(
      "#1=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n"
      "#2=IFCSITE('s2',$,$,$,$,$,$,$,$,$,$,$,$,$);\n"
      "#3=IFCRELAGGREGATES('r2',$,$,$,#1,(#2));\n");
  EXPECT_TRUE(first->MergeDocument(*second, 0, false));
  EXPECT_EQ(
      "#1=IFCWALL('w',$,$,$,$,$,$,$,$);\n"
      "#2=IFCSITE('s2',$,$,$,$,$,$,$,$,$,$,$,$,$);\n"
      "#3=IFCRELAGGREGATES('r2',$,$,$,#4,(#2));\n"
      "#4=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n",
      first.Lines());
  EXPECT_EQ((Reports{kNoProject}), *world_.reports);
  EXPECT_EQ(MergeStatus::kMerged, first->mergeStatus);
  EXPECT_EQ(0u, world_.system.boxes.size());
}

TEST_F(Merge, ADeletedProjectOfTheDestinationDoesNotCount) {
  Model first(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('w',$,$,$,$,$,$,$,$);\n");
  Model second(
      "#11=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n"
      "#12=IFCRELAGGREGATES('r2',$,$,$,#11,(#11));\n");
  first[1]->marker = IFC::kDeleted;
  EXPECT_TRUE(first->MergeDocument(*second, 0, false));
  EXPECT_EQ(
      "#2=IFCWALL('w',$,$,$,$,$,$,$,$);\n"
      "#11=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n"
      "#12=IFCRELAGGREGATES('r2',$,$,$,#11,(#11));\n",
      first.Lines());
  EXPECT_EQ((Reports{kNoProject}), *world_.reports);
  EXPECT_EQ((std::vector<std::u16string>{u"MainContainer::AddEntity. IfcTree already exists."}),
            Boxes());
  EXPECT_EQ(MergeStatus::kMerged, first->mergeStatus);
}

TEST_F(Merge, ADeletedProjectOfTheSourceDoesNotCount) {
  Model first("#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n");
  Model second("#11=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n");
  second[11]->marker = IFC::kDeleted;
  first->MergeDocument(*second, 0, false);
  EXPECT_EQ("#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n", first.Lines());
  EXPECT_EQ((Reports{kNoProject}), *world_.reports);
}

TEST_F(Merge, NeitherModelHasAProject) {
  Model first("#1=IFCWALL('a',$,$,$,$,$,$,$,$);\n");
  Model second("#2=IFCWALL('b',$,$,$,$,$,$,$,$);\n");
  EXPECT_TRUE(first->MergeDocument(*second, 0, false));
  EXPECT_EQ(
      "#1=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('b',$,$,$,$,$,$,$,$);\n",
      first.Lines());
  EXPECT_EQ((Reports{kNoProject}), *world_.reports);
  EXPECT_EQ(MergeStatus::kMerged, first->mergeStatus);
}

TEST_F(Merge, OfTwoProjectsInTheSourceTheSecondIsAddedWithABox) {
  Model first("#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n");
  Model second(
      "#11=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n"
      "#12=IFCPROJECT('p3',$,$,$,$,$,$,$,$);\n"
      "#13=IFCRELAGGREGATES('r',$,$,$,#11,(#12));\n");
  world_.system.boxes.clear();  // the reading of the second model has told of its two projects
  first->MergeDocument(*second, 0, false);
  EXPECT_EQ(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#12=IFCPROJECT('p3',$,$,$,$,$,$,$,$);\n"
      "#13=IFCRELAGGREGATES('r',$,$,$,#1,(#12));\n",
      first.Lines());
  EXPECT_EQ((std::vector<std::u16string>{u"MainContainer::AddEntity. IfcTree already exists."}),
            Boxes());
  EXPECT_EQ(Reports{}, *world_.reports);
}

// By number: the source's second project has come in before the destination's own.
TEST_F(Merge, TheFirstProjectInOrderOfNumbersStandsForTheSources) {
  Model first("#20=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n");
  Model second(
      "#11=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n"
      "#12=IFCPROJECT('p3',$,$,$,$,$,$,$,$);\n"
      "#13=IFCRELAGGREGATES('r',$,$,$,#11,(#12));\n");
  first->MergeDocument(*second, 0, false);
  EXPECT_EQ(
      "#12=IFCPROJECT('p3',$,$,$,$,$,$,$,$);\n"
      "#13=IFCRELAGGREGATES('r',$,$,$,#12,(#12));\n"
      "#20=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n",
      first.Lines());
}

TEST_F(Merge, DeletedObjectsOfTheSourceStayOut) {
  Model first("#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n");
  Model second(
      "#2=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
      "#3=IFCWALL('b',$,$,$,$,$,$,$,$);\n"
      "#4=IFCRELAGGREGATES('r',$,$,$,#2,(#2,#3));\n");
  second[3]->marker = IFC::kDeleted;
  first->MergeDocument(*second, 0, false);
  EXPECT_EQ(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
      "#4=IFCRELAGGREGATES('r',$,$,$,#2,(#2));\n",
      first.Lines());
}

TEST_F(Merge, TheSourceLosesItsContainerAndTheDestinationOwnsIt) {
  Model first("#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n");
  Model second("#2=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n");
  const IFC::MainContainer* const absorbed = second->mainContainer.get();
  first->MergeDocument(*second, 0, false);
  EXPECT_EQ(nullptr, second->mainContainer);
  ASSERT_EQ(1u, first->absorbedContainers.size());
  EXPECT_EQ(absorbed, first->absorbedContainers[0].get());
}

TEST_F(Merge, ADocumentThatWasFoldedInStillAnswers) {
  Model first("#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n");
  Model second(
      "#1=IFCUNITASSIGNMENT(());\n"
      "#2=IFCPROJECT('p2',$,$,$,$,$,$,$,#1);\n",
      "second.ifc");
  const IFC::IfcEntity* const units = second[1];
  const IFC::IfcEntity* const project = second[2];
  const WideString path = second->getFilePath();
  first->MergeDocument(*second, 0, false);
  EXPECT_TRUE(path.ends_with(u"second.ifc"));
  EXPECT_EQ(path, second->getFilePath());
  EXPECT_EQ(u"IFC4", second->getSchemaIdentifier());
  EXPECT_EQ(u"ISO-10303-21", second->getISO());
  EXPECT_NE(nullptr, second->getHeader());
  EXPECT_EQ(units, second->getIfcUnitAssignment());
  EXPECT_EQ(project, second->getIfcProject());
  EXPECT_TRUE(second->IsParsed());
  EXPECT_FALSE(second->IsCancelled());
}

TEST_F(Merge, ADocumentThatWasFoldedInMakesNoEntity) {
  Model first("#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n");
  Model second("#1=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n", "second.ifc");
  first->MergeDocument(*second, 0, false);
  EXPECT_EQ(nullptr, second->CreateESet("IFCWALL"));
  EXPECT_EQ(
      (Reports{
          {"", u"Creating eSet error. There is no model any more: " + second->getFilePath(), 0}}),
      *world_.reports);
}

TEST_F(Merge, ADocumentWithoutAModelIsNotMerged) {
  Model first("#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n");
  Model second("#1=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n", "second.ifc");
  Model third("#1=IFCPROJECT('p3',$,$,$,$,$,$,$,$);\n", "third.ifc");
  first->MergeDocument(*second, 0, false);
  EXPECT_FALSE(first->MergeDocument(*second, 0, false));
  EXPECT_EQ(MergeStatus::kMerged, first->mergeStatus);
  EXPECT_FALSE(second->MergeDocument(*third, 0, false));
  EXPECT_EQ(MergeStatus::kFailed, second->mergeStatus);
  EXPECT_FALSE(third->MergeDocument(*third, 0, false));
  EXPECT_EQ(MergeStatus::kFailed, third->mergeStatus);
  EXPECT_EQ(1u, third->mainContainer->entities.Size());
  EXPECT_EQ((Reports{{"", u"There is no model to merge: " + second->getFilePath(), 0},
                     {"", u"There is no model to merge: " + third->getFilePath(), 0},
                     {"", u"There is no model to merge: " + third->getFilePath(), 0}}),
            *world_.reports);
}

// The next one would have a number, and come too late.
TEST_F(Merge, OutOfNumbersItHasFailedWhateverWasAndWillBeMerged) {
  const test::NumbersUpTo largest(4);
  Model first("#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n#2=IFCCARTESIANPOINT((1.,2.));\n");
  Model second("#2=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n#3=IFCCARTESIANPOINT((1.,2.));\n");
  Model third("#2=IFCCARTESIANPOINT((1.,2.));\n#3=IFCPROJECT('p3',$,$,$,$,$,$,$,$);\n" +
              std::string("#4=IFCCARTESIANPOINT((1.,2.));\n#5=IFCDIRECTION((1.,2.));\n"));
  Model fourth("#6=IFCPROJECT('p4',$,$,$,$,$,$,$,$);\n#7=IFCDIRECTION((1.,2.));\n");
  EXPECT_TRUE(first->MergeDocument(*second, 0, false));
  EXPECT_EQ(MergeStatus::kMerged, first->mergeStatus);
  Model filler("#1=IFCCARTESIANPOINT((1.,2.));\n#2=IFCPROJECT('p3',$,$,$,$,$,$,$,$);\n");
  EXPECT_TRUE(first->MergeDocument(*filler, 0, false));
  EXPECT_FALSE(first->MergeDocument(*third, 0, false));
  EXPECT_EQ(MergeStatus::kFailed, first->mergeStatus);
  EXPECT_FALSE(first->MergeDocument(*fourth, 0, false));
  EXPECT_EQ(MergeStatus::kFailed, first->mergeStatus);
  EXPECT_EQ(
      (Reports{
          {"", u"All numbers up to #4 are in use: there is none left for another object.\n", 1}}),
      *world_.reports);
}

TEST_F(Merge, TheObjectsOfTheSourceLiveOnWhenItsDocumentIsGone) {
  Model first("#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n");
  {
    Model second("#2=IFCWALL('w',$,'A name that the pool holds',$,$,$,$,$,$);\n");
    first->MergeDocument(*second, 0, false);
  }
  EXPECT_EQ(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('w',$,'A name that the pool holds',$,$,$,$,$,$);\n",
      first.Lines());
}

TEST_F(Merge, EqualAndEmptyGuidsWithinEachFileAreReplacedBeforehand) {
  Model first(
      "#1=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('x',$,$,$,$,$,$,$,$);\n"
      "#3=IFCWALL('x',$,$,$,$,$,$,$,$);\n",
      "first.ifc");
  Model second("#4=IFCWALL('',$,$,$,$,$,$,$,$);\n", "second.ifc");
  world_.system.guids = {{0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1}}, {0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 2}}};
  const WideString firstPath = first->getFilePath();
  first->MergeDocument(*second, 0, false);
  EXPECT_EQ(
      "#1=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('x',$,$,$,$,$,$,$,$);\n"
      "#3=IFCWALL('0000000000000000000002',$,$,$,$,$,$,$,$);\n"
      "#4=IFCWALL('0000000000000000000001',$,$,$,$,$,$,$,$);\n",
      first.Lines());
  EXPECT_EQ(
      (std::unordered_map<WideString, std::string>{{firstPath + u"3x", "0000000000000000000002"}}),
      first->mainContainer->generatedGUIDs);
  EXPECT_EQ(
      (Reports{
          {"", u"Object IfcWall has no GUID. Generating new GUID: 0000000000000000000001\n", 2},
          {"",
           u"Object with GUID: \"x\" already exists. Multiple GUIDs are not allowed. New GUID will "
           u"be created for this object: \"0000000000000000000002\"\n",
           2},
          kNoProject}),
      *world_.reports);
}

TEST_F(Merge, TheDestinationKeepsItsHeaderAndFirstObjects) {
  Model first("#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n", "first.ifc");
  Model second("#2=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n", "second.ifc");
  const IFC::IfcEntity* const project = first[1];
  const HeaderToken* const header = first->getHeader();
  first->MergeDocument(*second, 0, false);
  EXPECT_EQ(project, first->getIfcProject());
  EXPECT_EQ(header, first->getHeader());
}

// Numbers of the source that no record of the destination has are not looked at as originals.
TEST_F(Merge, WhatCameFromAnotherFileIsNoOriginalOfTheDestination) {
  Model first("#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n");
  Model second("#2=IFCWALL('same',$,$,$,$,$,$,$,$);\n");
  Model third("#3=IFCWALL('same',$,$,$,$,$,$,$,$);\n");
  first->MergeDocument(*second, 0, false);
  EXPECT_FALSE(first->mainContainer->HasEntityWithOrginalNumber(2));
  EXPECT_EQ(nullptr, first->mainContainer->entitiesGUIDmap.Find("same"));
  first->MergeDocument(*third, 0, false);
  EXPECT_EQ(nullptr, first->mainContainer->entitiesGUIDmap.Find("same"));
  EXPECT_EQ(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('same',$,$,$,$,$,$,$,$);\n"
      "#3=IFCWALL('same',$,$,$,$,$,$,$,$);\n",
      first.Lines());
  EXPECT_EQ(2u, first->absorbedContainers.size());
}

TEST_F(Merge, ThreeFilesHaveOneProject) {
  Model first("#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n");
  Model second(
      "#1=IFCPROJECT('p2',$,$,$,$,$,$,$,$);\n"
      "#2=IFCRELAGGREGATES('r2',$,$,$,#1,(#1));\n");
  Model third(
      "#1=IFCPROJECT('p3',$,$,$,$,$,$,$,$);\n"
      "#2=IFCRELAGGREGATES('r3',$,$,$,#1,(#1));\n");
  first->MergeDocument(*second, 0, false);
  first->MergeDocument(*third, 0, false);
  EXPECT_EQ(
      "#1=IFCPROJECT('p1',$,$,$,$,$,$,$,$);\n"
      "#2=IFCRELAGGREGATES('r2',$,$,$,#1,(#1));\n"
      "#3=IFCRELAGGREGATES('r3',$,$,$,#1,(#1));\n",
      first.Lines());
}

TEST_F(Merge, ACircleBelowAnIndexedGuidEnds) {
  GraphDocument first(u"first.ifc");
  GraphDocument second(u"second.ifc");
  Wall& target = first.AddRoot<Wall>(1, "target");
  Wall& a = second.AddRoot<Wall>(11, "a");
  Wall& b = second.AddRoot<Wall>(12, "b");
  a.RefersTo(&b);
  b.RefersTo(&a);
  b.RefersTo(&b);
  first.GuidIndex()["a"] = &target;
  RememberedGuidChoice() = kSkipSameGuids;
  EXPECT_TRUE(first->MergeDocument(*second, 0, false));
  EXPECT_EQ(1u, a.marker);
  EXPECT_EQ((std::vector<std::uint32_t>{1, 12}), first.Numbers());
}

// Each rung refers twice to the next: a walk of all ways would have no end.
TEST_F(Merge, SharedChildrenAreWalkedOnce) {
  GraphDocument first(u"first.ifc");
  GraphDocument second(u"second.ifc");
  Wall& target = first.AddRoot<Wall>(1000, "target");
  Wall* below = &second.AddRoot<Wall>(1, "target");
  Wall* const lowest = below;
  for (std::uint32_t number = 2; number <= 200; ++number) {
    Wall& rung = second.AddRoot<Wall>(number, "w" + std::to_string(number));
    rung.RefersTo(below);
    rung.RefersTo(below);
    below = &rung;
  }
  first.GuidIndex()["target"] = &target;
  RememberedGuidChoice() = kSkipSameGuids;
  EXPECT_TRUE(first->MergeDocument(*second, 0, false));
  EXPECT_EQ(1000u, lowest->marker);
  EXPECT_EQ(200u, first.Numbers().size());
}

TEST_F(Merge, AChainOfAMillionNeedsNoDeepStack) {
  GraphDocument first(u"first.ifc");
  GraphDocument second(u"second.ifc");
  Wall& target = first.AddRoot<Wall>(7, "target");
  const std::unique_ptr<Of<u"IfcPoint", GraphNode>[]> chain(
      new Of<u"IfcPoint", GraphNode>[1000000]);
  for (std::size_t i = 0; i + 1 < 1000000; ++i) chain[i].RefersTo(&chain[i + 1]);
  test::Graph graph;
  Wall& last = graph.AddRoot<Wall>("target");
  chain[999999].RefersTo(&last);
  second.File(1, chain[0]);
  first.GuidIndex()["target"] = &target;
  bool merged = false;
  test::RunOnSmallStack([&] { merged = first->MergeDocument(*second, 0, false); });
  EXPECT_TRUE(merged);
  EXPECT_EQ(7u, last.marker);
}

}  // namespace
}  // namespace corvel
