// The marking as a whole: its order, its ticks, and what is left to be written.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "marked_model.h"

namespace corvel {
namespace {

using test::MarkedModel;
using test::Points;
using test::Tick;
using test::TicksFrom;

constexpr std::string_view kTwoWalls =
    "#1=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n"
    "#2=IFCBUILDING('b',$,$,$,$,$,$,$,$,$,$,$);\n"
    "#3=IFCRELAGGREGATES('r',$,$,$,#1,(#2));\n"
    "#4=IFCWALL('a',$,$,$,$,#7,$,$,$);\n"
    "#5=IFCWALL('c',$,$,$,$,#9,$,$,$);\n"
    "#6=IFCRELCONTAINEDINSPATIALSTRUCTURE('s',$,$,$,(#4,#5),#2);\n"
    "#7=IFCLOCALPLACEMENT($,#8);\n"
    "#8=IFCAXIS2PLACEMENT3D(#12,#11,$);\n"
    "#9=IFCLOCALPLACEMENT($,#10);\n"
    "#10=IFCAXIS2PLACEMENT3D(#13,#11,$);\n"
    "#11=IFCDIRECTION((0.,0.,1.));\n"
    "#12=IFCCARTESIANPOINT((0.,0.,0.));\n"
    "#13=IFCCARTESIANPOINT((1.,0.,0.));\n"
    "#14=IFCPROPERTYSINGLEVALUE('n',$,IFCLABEL('x'),$);\n"
    "#15=IFCPROPERTYSET('t',$,$,$,(#14));\n"
    "#16=IFCRELDEFINESBYPROPERTIES('u',$,$,$,(#4),#15);\n"
    "#17=IFCRELDEFINESBYPROPERTIES('v',$,$,$,(#5),#15);\n"
    "#18=IFCMATERIAL('m',$,$);\n"
    "#19=IFCRELASSOCIATESMATERIAL('w',$,$,$,(#5),#18);\n";

TEST(DeleteObjects, WhatIsDeletedTakesItsOwnAndLeavesWhatIsShared) {
  MarkedModel model(kTwoWalls);
  model.deletePairs = {{5, 2}};
  model.savePairs = {{1, 0}, {2, 1}, {4, 2}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ(
      "#1=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n"
      "#2=IFCBUILDING('b',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#3=IFCRELAGGREGATES('r',$,$,$,#1,(#2));\n"
      "#4=IFCWALL('a',$,$,$,$,#7,$,$,$);\n"
      "#6=IFCRELCONTAINEDINSPATIALSTRUCTURE('s',$,$,$,(#4),#2);\n"
      "#7=IFCLOCALPLACEMENT($,#8);\n"
      "#8=IFCAXIS2PLACEMENT3D(#12,#11,$);\n"
      "#11=IFCDIRECTION((0.,0.,1.));\n"
      "#12=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#14=IFCPROPERTYSINGLEVALUE('n',$,IFCLABEL('x'),$);\n"
      "#15=IFCPROPERTYSET('t',$,$,$,(#14));\n"
      "#16=IFCRELDEFINESBYPROPERTIES('u',$,$,$,(#4),#15);\n",
      model.Lines());
}

// The wall's own parent is kept only because the host says that the wall is in it.
TEST(DeleteObjects, AKeptObjectKeepsItsSpatialChain) {
  MarkedModel model(kTwoWalls);
  model.deletePairs = {{1, 0}, {2, 1}, {5, 2}};
  model.savePairs = {{4, 2}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 1 2 4 7 8 11 12, deleted 5 9 10 13 17 18 19, undecided 3 6 14 15 16",
            model.Marks());
}

TEST(DeleteObjects, AnObjectInBothListsStays) {
  MarkedModel model(kTwoWalls);
  model.deletePairs = {{4, 2}, {5, 2}};
  model.savePairs = {{1, 0}, {2, 1}, {4, 2}, {5, 2}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 1 2 4 5 7 8 9 10 11 12 13, undecided 3 6 14 15 16 17 18 19", model.Marks());
}

TEST(DeleteObjects, WithoutAnythingDeletedOnlyWhatHangsOnNothingSavedGoes) {
  MarkedModel model(std::string(kTwoWalls) +
                    "#20=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n"
                    "#21=IFCUNITASSIGNMENT((#20));\n");
  model.savePairs = {{1, 0}, {2, 1}, {4, 2}, {5, 2}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 1 2 4 5 7 8 9 10 11 12 13, deleted 20 21, undecided 3 6 14 15 16 17 18 19",
            model.Marks());
}

TEST(DeleteObjects, EmptyListsDeleteEverything) {
  MarkedModel model(kTwoWalls);
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("deleted 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19", model.Marks());
  EXPECT_EQ("", model.Lines());
}

TEST(DeleteObjects, MarksOfBeforeAreForgotten) {
  MarkedModel model(kTwoWalls);
  model.SetDeleted({1, 2, 4, 7});
  model.savePairs = {{1, 0}, {2, 1}, {4, 2}, {5, 2}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 1 2 4 5 7 8 9 10 11 12 13, undecided 3 6 14 15 16 17 18 19", model.Marks());
}

TEST(DeleteObjects, ASecondRunDecidesAnew) {
  MarkedModel model(kTwoWalls);
  model.deletePairs = {{4, 2}, {5, 2}};
  EXPECT_TRUE(model.DeleteObjects());
  model.deletePairs = {{5, 2}};
  model.savePairs = {{1, 0}, {2, 1}, {4, 2}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 1 2 4 7 8 11 12, deleted 5 9 10 13 17 18 19, undecided 3 6 14 15 16",
            model.Marks());
}

// #8 has lost its wall and is linked to the kept wall by the direction alone.
TEST(DeleteObjects, APlacementThatSharesADirectionWithAKeptOneGoes) {
  MarkedModel model(
      "#1=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n"
      "#2=IFCDIRECTION((0.,0.,1.));\n"
      "#3=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#4=IFCAXIS2PLACEMENT3D(#3,#2,$);\n"
      "#5=IFCLOCALPLACEMENT($,#4);\n"
      "#6=IFCWALL('a',$,$,$,$,#5,$,$,$);\n"
      "#7=IFCCARTESIANPOINT((1.,0.,0.));\n"
      "#8=IFCAXIS2PLACEMENT3D(#7,#2,$);\n"
      "#9=IFCLOCALPLACEMENT($,#8);\n"
      "#10=IFCLOCALPLACEMENT($,#8);\n"
      "#11=IFCWALL('b',$,$,$,$,#9,$,$,$);\n"
      "#12=IFCWALL('c',$,$,$,$,#10,$,$,$);\n");
  model.deletePairs = {{11, 1}, {12, 1}};
  model.savePairs = {{1, 0}, {6, 1}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 1 2 3 4 5 6, deleted 7 8 9 10 11 12", model.Marks());
}

constexpr std::string_view kSite =
    "#1=IFCPERSON($,'f',$,$,$,$,$,$);\n"
    "#2=IFCORGANIZATION($,'n',$,$,$);\n"
    "#3=IFCPERSONANDORGANIZATION(#1,#2,$);\n"
    "#4=IFCAPPLICATION(#2,'1','n','i');\n"
    "#5=IFCOWNERHISTORY(#3,#4,$,.NOCHANGE.,$,$,$,1);\n"
    "#6=IFCPROJECT('p',#5,$,$,$,$,$,$,$);\n"
    "#7=IFCCARTESIANPOINT((0.,0.,0.));\n"
    "#8=IFCAXIS2PLACEMENT3D(#7,$,$);\n"
    "#9=IFCLOCALPLACEMENT($,#8);\n"
    "#10=IFCPRODUCTDEFINITIONSHAPE($,$,(#11));\n"
    "#11=IFCSHAPEREPRESENTATION($,$,$,(#12));\n"
    "#12=IFCPOLYLINE((#7));\n"
    "#13=IFCSITE('s',#5,$,$,$,#9,#10,$,.ELEMENT.,$,$,$,$,$);\n"
    "#14=IFCRELAGGREGATES('r',#5,$,$,#6,(#13));\n"
    "#15=IFCLOCALPLACEMENT(#9,#8);\n"
    "#16=IFCWALL('w',#5,$,$,$,#15,$,$);\n"
    "#17=IFCRELCONTAINEDINSPATIALSTRUCTURE('t',#5,$,$,(#16),#13);\n";

// The site is inactive, its wall is not: the shape of the site goes, and nothing that the wall, the
// relations and the record of the site need.
TEST(DeleteObjects, ASiteThatStaysForItsWallKeepsWhatItNeeds) {
  MarkedModel model(kSite, "IFC2X3");
  model.deletePairs = {{13, 6}};
  model.savePairs = {{16, 13}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 1 2 3 4 5 6 7 8 9 13 15 16, deleted 10 11 12, undecided 14 17", model.Marks());
}

TEST(DeleteObjects, ASiteOfItsOwnKeepsItsShape) {
  MarkedModel model(kSite, "IFC2X3");
  model.savePairs = {{6, 0}, {13, 6}, {16, 13}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 1 2 3 4 5 6 7 8 9 10 11 12 13 15 16, undecided 14 17", model.Marks());
}

TEST(DeleteObjects, ADeletedSiteLeavesTheOwnerHistoryToTheOthers) {
  MarkedModel model(kSite, "IFC2X3");
  model.deletePairs = {{13, 6}, {16, 13}};
  model.savePairs = {{6, 0}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 1 2 3 4 5 6, deleted 7 8 9 10 11 12 13 14 15 16 17", model.Marks());
}

// An aggregation of IFC2X3 cannot do without its owner history, which nobody else here uses.
TEST(DeleteObjects, ADeletedSiteLeavesTheOwnerHistoryToARelationThatStays) {
  MarkedModel model(
      "#1=IFCOWNERHISTORY($,$,$,.NOCHANGE.,$,$,$,1);\n"
      "#2=IFCPROJECT('p',$,$,$,$,$,$,(),$);\n"
      "#3=IFCSITE('s',#1,$,$,$,$,$,$,.ELEMENT.,$,$,$,$,$);\n"
      "#4=IFCBUILDING('b',$,$,$,$,$,$,$,.ELEMENT.,$,$,$);\n"
      "#5=IFCRELAGGREGATES('r',#1,$,$,#2,(#3,#4));\n",
      "IFC2X3");
  model.savePairs = {{2, 0}, {4, 2}};
  model.deletePairs = {{3, 2}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 2 4, deleted 3, undecided 1 5", model.Marks());
}

constexpr std::string_view kSetsInAValue =
    "#1=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
    "#2=IFCWALL('b',$,$,$,$,$,$,$,$);\n"
    "#3=IFCPROPERTYSINGLEVALUE('p',$,IFCLABEL('x'),$);\n"
    "#4=IFCPROPERTYSET('s',$,$,$,(#3));\n"
    "#5=IFCPROPERTYSET('t',$,$,$,(#3));\n"
    "#6=IFCRELDEFINESBYPROPERTIES('r',$,$,$,(#1),IFCPROPERTYSETDEFINITIONSET((#4,#5)));\n"
    "#7=IFCRELDEFINESBYPROPERTIES('r',$,$,$,(#2),#5);\n";

TEST(DeleteObjects, SetsThatStandInAValueStayWithTheirObject) {
  MarkedModel model(kSetsInAValue);
  model.savePairs = {{1, 0}};
  model.deletePairs = {{2, 0}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 1, deleted 2 7, undecided 3 4 5 6", model.Marks());
}

TEST(DeleteObjects, SetsThatStandInAValueGoWithTheirObjectUnlessTheyAreShared) {
  MarkedModel model(kSetsInAValue);
  model.savePairs = {{2, 0}};
  model.deletePairs = {{1, 0}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 2, deleted 1 4 6, undecided 3 5 7", model.Marks());
}

// --- Progress ------------------------------------------------------------------------------------

std::vector<Tick> FixedTicks(int third, int fifth) {
  return {{10, third, u"1/3", false, 10},
          {20, third, u"1/3", true, 20},
          {65, fifth, u"1/3", true, 65},
          {100, fifth, u"1/3", true, 100}};
}

TEST(DeleteObjectsProgress, ASmallModelTicksFourTimesAndOncePerRecord) {
  MarkedModel model(Points(1, 3));
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ(FixedTicks(3, 5) + TicksFrom(1, 3, 10, u"3/3", false, 100), model.Ticks());
}

TEST(DeleteObjectsProgress, TheSharesAreDividedAmongTheFiles) {
  MarkedModel model(Points(1, 1));
  model.fileCount = 2;
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ(FixedTicks(1, 2) + TicksFrom(1, 1, 5, u"3/3", false, 100), model.Ticks());
}

TEST(DeleteObjectsProgress, NoShareIsBelowOne) {
  MarkedModel model(Points(1, 1));
  model.fileCount = 11;
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ(FixedTicks(1, 1) + TicksFrom(1, 1, 1, u"3/3", false, 100), model.Ticks());
}

TEST(DeleteObjectsProgress, ALargeModelTicksInEveryStep) {
  MarkedModel model(Points(1, 100));
  model.deletePairs = test::Pairs(100, {1, 0});
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ(FixedTicks(3, 5) + TicksFrom(1, 25, 5, u"2/3", false, 50) +
                TicksFrom(51, 100, 5, u"2/3", true, 100) +
                TicksFrom(1, 100, 10, u"3/3", false, 100),
            model.Ticks());
}

TEST(DeleteObjectsProgress, ACancelAtAnyTickEndsItThere) {
  for (std::size_t tick = 0; tick < 7; ++tick) {
    MarkedModel model(Points(1, 3));
    model.CancelAt(tick);
    EXPECT_FALSE(model.DeleteObjects()) << tick;
    EXPECT_EQ(tick + 1, model.Ticks().size());
    EXPECT_EQ(std::vector{test::CancelQuestionBox()}, model.World().system.boxes);
  }
}

TEST(DeleteObjectsProgress, ACancelThatIsNotMeantChangesNothing) {
  for (std::size_t tick = 0; tick < 7; ++tick) {
    MarkedModel model(Points(1, 3));
    model.CancelAt(tick, false);
    EXPECT_TRUE(model.DeleteObjects()) << tick;
    EXPECT_EQ("deleted 1 2 3", model.Marks());
    EXPECT_EQ(7u, model.Ticks().size());
  }
}

TEST(DeleteObjectsProgress, ACancelAtTheFirstTickLeavesTheNumbers) {
  MarkedModel model(Points(2, 3));
  model.CancelAt(0);
  EXPECT_FALSE(model.DeleteObjects());
  EXPECT_EQ(2u, model[2]->marker);
  EXPECT_EQ(3u, model[3]->marker);
}

TEST(DeleteObjectsProgress, ACancelBehindTheListsLeavesTheirMarks) {
  MarkedModel model(kTwoWalls);
  model.deletePairs = {{5, 2}};
  model.savePairs = {{4, 2}};
  model.CancelAt(3);
  EXPECT_FALSE(model.DeleteObjects());
  EXPECT_EQ("saved 2 4 7 8 11 12, deleted 5 9, undecided 1 3 6 10 13 14 15 16 17 18 19",
            model.Marks());
}

// --- What hangs together with the project --------------------------------------------------------

constexpr std::string_view kIsland =
    "#1=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n"
    "#2=IFCBUILDING('b',$,$,$,$,#5,$,$,$,$,$,$);\n"
    "#3=IFCRELAGGREGATES('r',$,$,$,#1,(#2));\n"
    "#4=IFCWALL('a',$,$,$,$,#5,$,$,$);\n"
    "#5=IFCLOCALPLACEMENT($,$);\n"
    "#6=IFCWALL('c',$,$,$,$,#7,$,$,$);\n"
    "#7=IFCLOCALPLACEMENT($,$);\n";

TEST(DeleteUnrelated, AllThatHangsTogetherWithTheProjectIsSaved) {
  MarkedModel model(kIsland);
  EXPECT_TRUE(model.Prepare()->DeleteUnrelatedObjects());
  EXPECT_EQ("saved 1 2 3 4 5, undecided 6 7", model.Marks());
  EXPECT_EQ(7u, model->mainContainer->entities.Size());
  EXPECT_TRUE(model.Reports().empty());
}

TEST(DeleteUnrelated, TheProjectIsReachedOverWhatItRefersTo) {
  MarkedModel model(
      "#1=IFCPROJECT('p',$,$,$,$,$,$,$,#2);\n"
      "#2=IFCUNITASSIGNMENT(());\n"
      "#3=IFCUNITASSIGNMENT(());\n");
  EXPECT_TRUE(model.Prepare()->DeleteUnrelatedObjects());
  EXPECT_EQ("saved 1 2, undecided 3", model.Marks());
}

TEST(DeleteUnrelated, AProjectThatHangsTogetherWithNothingIsNotReached) {
  MarkedModel model("#1=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n" + Points(2, 2));
  EXPECT_TRUE(model.Prepare()->DeleteUnrelatedObjects());
  EXPECT_EQ("undecided 1 2", model.Marks());
}

TEST(DeleteUnrelated, AModelWithoutAProjectIsReported) {
  MarkedModel model(Points(1, 2));
  EXPECT_FALSE(model.Prepare()->DeleteUnrelatedObjects());
  EXPECT_EQ((std::vector<test::Report>{
                {"", u"Unable to delete unrelated objects because project is NULL", kReportShow}}),
            model.Reports());
  EXPECT_EQ("undecided 1 2", model.Marks());
}

TEST(DeleteUnrelated, ARunWithoutAProjectGoesOn) {
  MarkedModel model(Points(1, 2));
  model.deleteUnrelated = true;
  model.savePairs = {{1, 0}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ(1u, model.Reports().size());
  EXPECT_EQ("saved 1, deleted 2", model.Marks());
}

// What the lists say comes afterwards and counts more.
TEST(DeleteUnrelated, AsPartOfARunItSavesWhatTheListsDoNotName) {
  MarkedModel model(kIsland);
  model.deleteUnrelated = true;
  model.deletePairs = {{4, 2}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 1 2 3, deleted 4 5 6 7", model.Marks());
}

TEST(DeleteUnrelated, WhatHasBeenVisitedOnceIsNotVisitedAgain) {
  MarkedModel model(kIsland);
  model.deleteUnrelated = true;
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 1 2 3 4 5, deleted 6 7", model.Marks());
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("deleted 1 2 3 4 5 6 7", model.Marks());
}

}  // namespace
}  // namespace corvel
