// The last step: of what is undecided, what hangs together with something saved stays.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "marked_model.h"
#include "merge/marking.h"

namespace corvel {
namespace {

using test::MarkedModel;
using test::Points;
using test::Tick;
using test::TicksFrom;

bool RemoveUnsaved(MarkedModel& model) {
  return model->RemoveUnsavedEntities(test::RecordedProgress::Callback, 10, u"3/3");
}

TEST(UnsavedEntities, WhatHangsOnNothingSavedGoesAsAWhole) {
  MarkedModel model(
      "#1=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#2=IFCAXIS2PLACEMENT3D(#1,$,$);\n"
      "#3=IFCLOCALPLACEMENT($,#2);\n"
      "#4=IFCPROPERTYSINGLEVALUE('p',$,IFCLABEL('x'),$);\n"
      "#5=IFCWALL('a',$,$,$,$,$,$,$,$);\n");
  model.Prepare().SetSaved({5});
  EXPECT_TRUE(RemoveUnsaved(model));
  EXPECT_EQ("saved 5, deleted 1 2 3 4", model.Marks());
  EXPECT_EQ(IFC::kDeleted, model.MarkerOfValueIn(4));
}

TEST(UnsavedEntities, AWayOverParentsAndChildrenInTurnLinks) {
  MarkedModel model(
      "#1=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
      "#2=IFCMATERIAL('m',$,$);\n"
      "#3=IFCRELASSOCIATESMATERIAL('r',$,$,$,(#1),#2);\n"
      "#4=IFCGROUP('g',$,$,$,$);\n"
      "#5=IFCRELASSOCIATESMATERIAL('s',$,$,$,(#4),#2);\n"
      "#6=IFCGROUP('h',$,$,$,$);\n");
  model.Prepare().SetSaved({1});
  RemoveUnsaved(model);
  EXPECT_EQ("saved 1, deleted 6, undecided 2 3 4 5", model.Marks());
}

TEST(UnsavedEntities, NoWayLeadsOverWhatIsDeleted) {
  MarkedModel model(
      "#1=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
      "#2=IFCMATERIAL('m',$,$);\n"
      "#3=IFCRELASSOCIATESMATERIAL('r',$,$,$,(#1),#2);\n");
  model.Prepare().SetSaved({1}).SetDeleted({3});
  RemoveUnsaved(model);
  EXPECT_EQ("saved 1, deleted 2 3", model.Marks());
}

TEST(UnsavedEntities, CirclesWithoutAnythingSavedGo) {
  MarkedModel model(
      "#1=IFCLOCALPLACEMENT(#2,$);\n"
      "#2=IFCLOCALPLACEMENT(#1,$);\n"
      "#3=IFCLOCALPLACEMENT(#3,$);\n");
  model.Prepare();
  RemoveUnsaved(model);
  EXPECT_EQ("deleted 1 2 3", model.Marks());
}

TEST(UnsavedEntities, CirclesThatLeadToSomethingSavedStay) {
  MarkedModel model(
      "#1=IFCLOCALPLACEMENT(#2,$);\n"
      "#2=IFCLOCALPLACEMENT(#1,#4);\n"
      "#3=IFCLOCALPLACEMENT(#3,#4);\n"
      "#4=IFCAXIS2PLACEMENT3D($,$,$);\n");
  model.Prepare().SetSaved({4});
  RemoveUnsaved(model);
  EXPECT_EQ("saved 4, undecided 1 2 3", model.Marks());
}

TEST(UnsavedEntities, NothingSavedMeansThatAllGo) {
  MarkedModel model(Points(1, 3) + "#4=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n");
  model.Prepare();
  RemoveUnsaved(model);
  EXPECT_EQ("deleted 1 2 3 4", model.Marks());
}

TEST(UnsavedEntities, ASecondRunChangesNothing) {
  MarkedModel model(
      "#1=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
      "#2=IFCMATERIAL('m',$,$);\n"
      "#3=IFCRELASSOCIATESMATERIAL('r',$,$,$,(#1),#2);\n"
      "#4=IFCMATERIAL('n',$,$);\n");
  model.Prepare().SetSaved({1});
  for (int run = 0; run < 2; ++run) {
    RemoveUnsaved(model);
    EXPECT_EQ("saved 1, deleted 4, undecided 2 3", model.Marks());
  }
}

// --- Placements and connections, which share points and directions with everything
// ----------------

constexpr std::string_view kSharedDirection =
    "#1=IFCDIRECTION((1.,0.,0.));\n"
    "#2=IFCCARTESIANPOINT((0.,0.,0.));\n"
    "#3=IFCAXIS2PLACEMENT3D(#2,#1,$);\n"
    "#4=IFCLOCALPLACEMENT($,#3);\n"
    "#5=IFCLOCALPLACEMENT($,#3);\n";

TEST(UnsavedPlacement, ItGoesWhenAllItsParentsAreDeleted) {
  MarkedModel model(kSharedDirection);
  model.Prepare().SetSaved({1}).SetDeleted({4, 5});
  RemoveUnsaved(model);
  EXPECT_EQ("saved 1, deleted 2 3 4 5", model.Marks());
}

TEST(UnsavedPlacement, ItStaysWithAParentThatIsNotDeleted) {
  MarkedModel model(kSharedDirection);
  model.Prepare().SetSaved({1}).SetDeleted({4});
  RemoveUnsaved(model);
  EXPECT_EQ("saved 1, deleted 4, undecided 2 3 5", model.Marks());
}

TEST(UnsavedPlacement, ItStaysWithoutParents) {
  MarkedModel model(
      "#1=IFCDIRECTION((1.,0.,0.));\n"
      "#2=IFCAXIS2PLACEMENT3D($,#1,$);\n");
  model.Prepare().SetSaved({1});
  RemoveUnsaved(model);
  EXPECT_EQ("saved 1, undecided 2", model.Marks());
}

TEST(UnsavedPlacement, AConnectionSurfaceGoesTooAndItsOwnSurfaceWithIt) {
  MarkedModel model(
      "#1=IFCAXIS2PLACEMENT3D($,$,$);\n"
      "#2=IFCPLANE(#1);\n"
      "#3=IFCPLANE(#1);\n"
      "#4=IFCCONNECTIONSURFACEGEOMETRY(#2,#3);\n"
      "#5=IFCRELCONNECTSELEMENTS('r',$,$,$,#4,$,$);\n"
      "#6=IFCSHAPEREPRESENTATION($,$,$,(#3));\n");
  model.Prepare().SetSaved({1}).SetDeleted({5});
  RemoveUnsaved(model);
  EXPECT_EQ("saved 1, deleted 2 4 5, undecided 3 6", model.Marks());
}

TEST(UnsavedPlacement, OtherClassesThatLostTheirParentsStay) {
  MarkedModel model(
      "#1=IFCDIRECTION((1.,0.));\n"
      "#2=IFCAXIS2PLACEMENT2D($,#1);\n"
      "#3=IFCCIRCLE(#2,1.);\n");
  model.Prepare().SetSaved({1}).SetDeleted({3});
  RemoveUnsaved(model);
  EXPECT_EQ("saved 1, deleted 3, undecided 2", model.Marks());
}

// The polyline hangs on the saved direction over the point and the placement alone.
TEST(UnsavedPlacement, WhatHungOnItGoesWhenItsTurnIsLater) {
  MarkedModel model(
      "#1=IFCDIRECTION((1.,0.,0.));\n"
      "#2=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#3=IFCAXIS2PLACEMENT3D(#2,#1,$);\n"
      "#4=IFCLOCALPLACEMENT($,#3);\n"
      "#5=IFCPOLYLINE((#2));\n");
  model.Prepare().SetSaved({1}).SetDeleted({4});
  RemoveUnsaved(model);
  EXPECT_EQ("saved 1, deleted 2 3 4 5", model.Marks());
}

TEST(UnsavedPlacement, WhatHungOnItStaysWhenItsTurnWasEarlier) {
  MarkedModel model(
      "#1=IFCDIRECTION((1.,0.,0.));\n"
      "#2=IFCPOLYLINE((#3));\n"
      "#3=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#4=IFCAXIS2PLACEMENT3D(#3,#1,$);\n"
      "#5=IFCLOCALPLACEMENT($,#4);\n");
  model.Prepare().SetSaved({1}).SetDeleted({5});
  RemoveUnsaved(model);
  EXPECT_EQ("saved 1, deleted 4 5, undecided 2 3", model.Marks());
}

// #6 is a parent of #3 and linked over it alone. Its turn comes when #3 has gone.
TEST(UnsavedPlacement, APlacementThatGoesCutsOffTheNextOne) {
  MarkedModel model(
      "#1=IFCDIRECTION((1.,0.,0.));\n"
      "#2=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#3=IFCAXIS2PLACEMENT3D(#2,#1,$);\n"
      "#4=IFCLOCALPLACEMENT($,#3);\n"
      "#5=IFCAXIS2PLACEMENT3D(#2,$,$);\n"
      "#6=IFCLOCALPLACEMENT($,#5);\n");
  model.Prepare().SetSaved({1}).SetDeleted({4});
  RemoveUnsaved(model);
  EXPECT_EQ("saved 1, deleted 2 3 4 5 6", model.Marks());
}

// --- Progress ------------------------------------------------------------------------------------

TEST(UnsavedProgress, EveryRecordOfASmallModelTicks) {
  MarkedModel model(Points(1, 3));
  model.Prepare().SetSaved({1}).SetDeleted({2});
  RemoveUnsaved(model);
  EXPECT_EQ(TicksFrom(1, 3, 10, u"3/3", false, 100), model.Ticks());
}

TEST(UnsavedProgress, AHundredthOfTheRecordsMakesATick) {
  MarkedModel model(Points(1, 299));
  model.Prepare();
  RemoveUnsaved(model);
  EXPECT_EQ(TicksFrom(1, 100, 10, u"3/3", false, 100), model.Ticks());
}

TEST(UnsavedProgress, TheTicksEndAtOneHundred) {
  MarkedModel model(Points(1, 199));
  model.Prepare();
  RemoveUnsaved(model);
  EXPECT_EQ(TicksFrom(1, 100, 10, u"3/3", false, 100), model.Ticks());
}

TEST(UnsavedProgress, WithoutACallbackItIsSilent) {
  MarkedModel model(Points(1, 3) + "#4=IFCPOLYLINE((#2,#3));\n");
  model.Prepare().SetSaved({2}).CancelAt(0);
  EXPECT_TRUE(model->RemoveUnsavedEntities(nullptr, 10, u""));
  EXPECT_EQ(std::vector<Tick>{}, model.Ticks());
  EXPECT_TRUE(model.World().system.boxes.empty());
  EXPECT_EQ("saved 2, deleted 1, undecided 3 4", model.Marks());
}

TEST(UnsavedProgress, NumbersInPlaceOfMarksMeanThatNothingChanges) {
  MarkedModel model(Points(2, 4));
  model->mainContainer->FillParentsLists();
  model[3]->marker = IFC::kDeleted;
  EXPECT_TRUE(model->RemoveUnsavedEntities(nullptr, 10, u""));
  EXPECT_EQ("deleted 3, undecided 2? 4?", model.Marks());
  EXPECT_EQ(2u, model[2]->marker);
  EXPECT_EQ(4u, model[4]->marker);
}

TEST(UnsavedProgress, AConfirmedCancelLeavesWhatComesBehindIt) {
  MarkedModel model(Points(1, 4));
  model.Prepare().CancelAt(1);
  EXPECT_FALSE(RemoveUnsaved(model));
  EXPECT_EQ("deleted 1 2, undecided 3 4", model.Marks());
  EXPECT_EQ(std::vector{test::CancelQuestionBox()}, model.World().system.boxes);
}

TEST(UnsavedProgress, ACancelThatIsNotMeantChangesNothing) {
  MarkedModel model(Points(1, 4));
  model.Prepare().CancelAt(1, false);
  EXPECT_TRUE(RemoveUnsaved(model));
  EXPECT_EQ("deleted 1 2 3 4", model.Marks());
  EXPECT_EQ(4u, model.Ticks().size());
}

TEST(DeletionTest, WhatIsTakenBackWasNeverDeleted) {
  MarkedModel model("#1=IFCGROUP('g',$,$,$,$);\n#2=IFCGROUP('h',$,$,$,$);\n");
  model.Prepare();
  IFC::MainContainer& container = *model->mainContainer;
  Deletion deletion(container);
  EXPECT_TRUE(deletion.AnyIsDeleted());  // nobody knows better
  deletion.NoteNothingIsDeleted();
  deletion.StartRecord();
  deletion.Delete(*container.GetEntityByOrginalNumber(1));
  EXPECT_TRUE(deletion.AnyIsDeleted());
  deletion.Undo();
  EXPECT_FALSE(deletion.AnyIsDeleted());
  deletion.Delete(*container.GetEntityByOrginalNumber(2));
  EXPECT_TRUE(deletion.AnyIsDeleted());
}

}  // namespace
}  // namespace corvel
