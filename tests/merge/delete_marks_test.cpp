// What goes together with the objects that the host deletes.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "marked_model.h"

namespace corvel {
namespace {

using test::MarkedModel;
using test::Points;
using test::TicksFrom;

bool DeleteParents(MarkedModel& model) { return model->DeleteParentsOfDeleted(5, u"2/3"); }

// --- Objects of the list -------------------------------------------------------------------------

TEST(DeleteMarks, AnObjectTakesItsChildrenAlongOneLevelDeep) {
  MarkedModel model(
      "#1=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#2=IFCAXIS2PLACEMENT3D(#1,$,$);\n"
      "#3=IFCLOCALPLACEMENT($,#2);\n"
      "#4=IFCWALL('a',$,$,$,$,#3,$,$,$);\n"
      "#5=IFCWALL('b',$,$,$,$,#3,$,$,$);\n");
  EXPECT_TRUE(model.Prepare()->MarkEntitiesAndChildrenToDelete({{4, 0}}));
  EXPECT_EQ("deleted 3 4, undecided 1 2 5", model.Marks());
}

TEST(DeleteMarks, ValuesInTheRecordAreChildren) {
  MarkedModel model("#1=IFCPROPERTYSINGLEVALUE('p',$,IFCLABEL('x'),$);\n");
  model.Prepare()->MarkEntitiesAndChildrenToDelete({{1, 0}});
  EXPECT_EQ(IFC::kDeleted, model.MarkerOfValueIn(1));
}

TEST(DeleteMarks, TheOwnerHistoryIsLeft) {
  MarkedModel model(
      "#1=IFCOWNERHISTORY($,$,$,.NOCHANGE.,$,$,$,1);\n"
      "#2=IFCLOCALPLACEMENT($,$);\n"
      "#3=IFCWALL('a',#1,$,$,$,#2,$,$);\n",
      "IFC2X3");
  model.Prepare()->MarkEntitiesAndChildrenToDelete({{3, 0}});
  EXPECT_EQ("deleted 2 3, undecided 1", model.Marks());
}

TEST(DeleteMarks, AnOwnerHistoryInTheListItselfGoes) {
  MarkedModel model("#1=IFCOWNERHISTORY($,$,$,.NOCHANGE.,$,$,$,1);\n");
  model.Prepare()->MarkEntitiesAndChildrenToDelete({{1, 0}});
  EXPECT_EQ("deleted 1", model.Marks());
}

TEST(DeleteMarks, NumbersThatTheModelLacksAreSkipped) {
  MarkedModel model("#7=IFCWALL('w',$,$,$,$,$,$,$,$);\n");
  EXPECT_TRUE(model.Prepare()->MarkEntitiesAndChildrenToDelete({{1, 7}, {0, 7}}));
  EXPECT_EQ("undecided 7", model.Marks());
}

// --- What cannot exist any more ------------------------------------------------------------------

TEST(DeleteParents, ARelationGoesWithTheLastMemberOfItsList) {
  MarkedModel model(
      "#1=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('b',$,$,$,$,$,$,$,$);\n"
      "#3=IFCBUILDING('c',$,$,$,$,$,$,$,$,$,$,$);\n"
      "#4=IFCRELCONTAINEDINSPATIALSTRUCTURE('r',$,$,$,(#1),#3);\n"
      "#5=IFCRELCONTAINEDINSPATIALSTRUCTURE('s',$,$,$,(#1,#2),#3);\n");
  model.Prepare().SetDeleted({1});
  EXPECT_TRUE(DeleteParents(model));
  EXPECT_EQ("deleted 1 4, undecided 2 3 5", model.Marks());
}

TEST(DeleteParents, AnEmptyListHasNoMember) {
  MarkedModel model(
      "#1=IFCPROPERTYSET('s',$,$,$,());\n"
      "#2=IFCRELAGGREGATES('r',$,$,$,$,());\n"
      "#3=IFCWALL('a',$,$,$,$,$,$,$,$);\n");
  model.Prepare();
  EXPECT_TRUE(DeleteParents(model));
  EXPECT_EQ("deleted 1 2, undecided 3", model.Marks());
}

TEST(DeleteParents, TheSecondListOfATrimmedCurveDoesNotCount) {
  MarkedModel model(
      "#1=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#2=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#3=IFCTRIMMEDCURVE($,(#1),(#2),.T.,.CARTESIAN.);\n"
      "#4=IFCTRIMMEDCURVE($,(#2),(#1),.T.,.CARTESIAN.);\n");
  model.Prepare().SetDeleted({2});
  DeleteParents(model);
  EXPECT_EQ("deleted 2 4, undecided 1 3", model.Marks());
}

TEST(DeleteParents, AMandatoryReferenceToADeletedObjectDeletes) {
  MarkedModel model(
      "#1=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
      "#2=IFCOPENINGELEMENT('o',$,$,$,$,$,$,$,$);\n"
      "#3=IFCRELVOIDSELEMENT('r',$,$,$,#1,#2);\n");
  model.Prepare().SetDeleted({2}).SetSaved({1});
  DeleteParents(model);
  EXPECT_EQ("saved 1, deleted 2 3", model.Marks());
}

TEST(DeleteParents, AnOptionalReferenceAndAPlaceInAListCanBeLost) {
  MarkedModel model(
      "#1=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#2=IFCCARTESIANPOINT((1.,0.,0.));\n"
      "#3=IFCPOLYLINE((#1,#2));\n"
      "#4=IFCDIRECTION((1.,0.,0.));\n"
      "#5=IFCAXIS2PLACEMENT3D(#2,#4,$);\n");
  model.Prepare().SetDeleted({1, 4});
  DeleteParents(model);
  EXPECT_EQ("deleted 1 4, undecided 2 3 5", model.Marks());
}

TEST(DeleteParents, ADeletedValueInTheRecordDeletes) {
  MarkedModel model(
      "#1=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n"
      "#2=IFCMEASUREWITHUNIT(IFCREAL(1.),#1);\n");
  model.Prepare();
  IFC::ChildQueue children;
  model[2]->collectChildren(children);
  children[0].entity->marker = IFC::kDeleted;
  DeleteParents(model);
  EXPECT_EQ("deleted 1 2", model.Marks());
}

TEST(DeleteParents, ASavedObjectStaysThoughItsMandatoryReferenceIsGone) {
  MarkedModel model(
      "#1=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#2=IFCAXIS2PLACEMENT3D(#1,$,$);\n"
      "#3=IFCPOLYLINE((#1));\n");
  model.Prepare().SetDeleted({1}).SetSaved({2, 3});
  DeleteParents(model);
  EXPECT_EQ("saved 2 3, deleted 1", model.Marks());
}

// Each record needs the one before it; the numbers run against that.
TEST(DeleteParents, PassesGoOnUntilNothingChanges) {
  MarkedModel model(
      "#1=IFCLOCALPLACEMENT($,#2);\n"
      "#2=IFCAXIS2PLACEMENT3D(#3,$,$);\n"
      "#3=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#4=IFCAXIS2PLACEMENT3D(#3,$,$);\n"
      "#5=IFCLOCALPLACEMENT($,#4);\n");
  model.Prepare().SetDeleted({3});
  DeleteParents(model);
  EXPECT_EQ("deleted 1 2 3 4 5", model.Marks());
}

TEST(DeleteParents, WhatOnlyTheDeletedUsedGoesAtAnyDepth) {
  MarkedModel model(
      "#1=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#2=IFCAXIS2PLACEMENT3D(#1,$,$);\n"
      "#3=IFCPLANE(#2);\n"
      "#4=IFCCONNECTIONSURFACEGEOMETRY(#3,$);\n"
      "#5=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
      "#6=IFCWALL('b',$,$,$,$,$,$,$,$);\n"
      "#7=IFCRELCONNECTSELEMENTS('r',$,$,$,#4,#5,#6);\n");
  model.Prepare().SetDeleted({5}).SetSaved({6});
  DeleteParents(model);
  EXPECT_EQ("saved 6, deleted 1 2 3 4 5 7", model.Marks());
}

TEST(DeleteParents, WhatOthersUseTooStays) {
  MarkedModel model(
      "#1=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#2=IFCAXIS2PLACEMENT3D(#1,$,$);\n"
      "#3=IFCPLANE(#2);\n"
      "#4=IFCCONNECTIONSURFACEGEOMETRY(#3,$);\n"
      "#5=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
      "#6=IFCWALL('b',$,$,$,$,$,$,$,$);\n"
      "#7=IFCRELCONNECTSELEMENTS('r',$,$,$,#4,#5,#6);\n"
      "#8=IFCLOCALPLACEMENT($,#2);\n");
  model.Prepare().SetDeleted({5}).SetSaved({6});
  DeleteParents(model);
  EXPECT_EQ("saved 6, deleted 3 4 5 7, undecided 1 2 8", model.Marks());
}

TEST(DeleteParents, AnUndecidedObjectThatOnlyALostRelationHeldGoesToo) {
  MarkedModel model(
      "#1=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
      "#2=IFCOPENINGELEMENT('o',$,$,$,$,$,$,$,$);\n"
      "#3=IFCRELVOIDSELEMENT('r',$,$,$,#1,#2);\n");
  model.Prepare().SetDeleted({2});
  DeleteParents(model);
  EXPECT_EQ("deleted 1 2 3", model.Marks());
}

// All that uses #2 is deleted, and it is saved.
TEST(DeleteParents, WhatIsSavedStaysAlsoWhenNothingUsesItAnyMore) {
  MarkedModel model(
      "#1=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#2=IFCAXIS2PLACEMENT3D(#1,$,$);\n"
      "#3=IFCPLANE(#2);\n"
      "#4=IFCCONNECTIONSURFACEGEOMETRY(#3,$);\n"
      "#5=IFCRELCONNECTSELEMENTS('r',$,$,$,#4,#6,#6);\n"
      "#6=IFCWALL('a',$,$,$,$,$,$,$,$);\n");
  model.Prepare().SetDeleted({6}).SetSaved({2});
  DeleteParents(model);
  EXPECT_EQ("saved 2, deleted 3 4 5 6, undecided 1", model.Marks());
}

TEST(DeleteParents, ValuesInTheRecordsOfTheDeletedGo) {
  MarkedModel model(
      "#1=IFCPROPERTYSINGLEVALUE('p',$,IFCLABEL('x'),$);\n"
      "#2=IFCPROPERTYSET('s',$,$,$,(#1));\n"
      "#3=IFCRELDEFINESBYPROPERTIES('r',$,$,$,(),#2);\n");
  model.Prepare();
  DeleteParents(model);
  EXPECT_EQ("deleted 1 2 3", model.Marks());
  EXPECT_EQ(IFC::kDeleted, model.MarkerOfValueIn(1));
}

TEST(DeleteParents, ACircleOfPropertiesThatUseEachOtherStays) {
  MarkedModel model(
      "#1=IFCCOMPLEXPROPERTY('a',$,'u',(#2));\n"
      "#2=IFCCOMPLEXPROPERTY('b',$,'u',(#1));\n"
      "#3=IFCPROPERTYSET('s',$,$,$,(#1));\n"
      "#4=IFCRELDEFINESBYPROPERTIES('r',$,$,$,(),#3);\n");
  model.Prepare();
  DeleteParents(model);
  EXPECT_EQ("deleted 3 4, undecided 1 2", model.Marks());
}

TEST(DeleteParents, BelowFiftyRecordsThereAreNoTicks) {
  MarkedModel model(Points(1, 49));
  model.Prepare();
  EXPECT_TRUE(DeleteParents(model));
  EXPECT_EQ(std::vector<test::Tick>{}, model.Ticks());
}

TEST(DeleteParents, TwoFiftiethsOfTheRecordsMakeATick) {
  MarkedModel model(Points(1, 101));
  model.Prepare();
  DeleteParents(model);
  EXPECT_EQ(TicksFrom(1, 25, 5, u"2/3", false, 50), model.Ticks());
}

// 101 records in passes: the counter goes on from one to the next.
TEST(DeleteParents, EachPassTicksOn) {
  MarkedModel model(Points(1, 100) + "#101=IFCPOLYLINE(());\n");
  model.Prepare();
  DeleteParents(model);
  EXPECT_EQ(TicksFrom(1, 50, 5, u"2/3", false, 50), model.Ticks());
}

TEST(DeleteParents, ThereIsOneTickMoreThanTheirMaximumAndItStaysThere) {
  MarkedModel model(
      "#1=IFCLOCALPLACEMENT($,#2);\n"
      "#2=IFCAXIS2PLACEMENT3D(#103,$,$);\n" +
      Points(3, 103));
  model.Prepare().SetDeleted({103});
  DeleteParents(model);
  EXPECT_EQ(TicksFrom(1, 50, 5, u"2/3", false, 50) + TicksFrom(50, 50, 5, u"2/3", false, 50),
            model.Ticks());
}

// #10 needs #101, which goes in the first pass; #16 needs #10. In the second pass #19 is the fifth
// to tick.
TEST(DeleteParents, ALaterPassTakesWhatIsAheadOfItAtOnce) {
  const std::string records =
      Points(1, 9) + "#10=IFCTRIMMEDCURVE(#101,(#1),(#1),.T.,.CARTESIAN.);\n" + Points(11, 15) +
      "#16=IFCTRIMMEDCURVE(#10,(#1),(#1),.T.,.CARTESIAN.);\n" + Points(17, 100) +
      "#101=IFCPOLYLINE(());\n";
  for (const auto& [tick, lastIsDeleted] : {std::pair(27u, false), {28u, false}, {29u, true}}) {
    MarkedModel model(records);
    model.Prepare().CancelAt(tick);
    EXPECT_FALSE(DeleteParents(model));
    EXPECT_EQ(IFC::kDeleted, model[10]->marker);
    EXPECT_EQ(lastIsDeleted, model[16]->marker == IFC::kDeleted);
  }
}

TEST(DeleteParents, AConfirmedCancelEndsIt) {
  MarkedModel model(Points(1, 100) + "#101=IFCPOLYLINE(());\n");
  model.Prepare().CancelAt(24);
  EXPECT_FALSE(DeleteParents(model));
  EXPECT_EQ(TicksFrom(1, 25, 5, u"2/3", false, 50), model.Ticks());
  EXPECT_EQ(IFC::kUnfiled, model[101]->marker);
}

TEST(DeleteParents, ACancelThatIsNotMeantChangesNothing) {
  MarkedModel model(Points(1, 100) + "#101=IFCPOLYLINE(());\n");
  model.Prepare().CancelAt(24, false);
  EXPECT_TRUE(DeleteParents(model));
  EXPECT_EQ(IFC::kDeleted, model[101]->marker);
  EXPECT_EQ(std::vector{test::CancelQuestionBox()}, model.World().system.boxes);
}

}  // namespace
}  // namespace corvel
