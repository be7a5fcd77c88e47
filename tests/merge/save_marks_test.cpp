// What is saved for the sake of the objects that the host keeps.
#include <gtest/gtest.h>

#include <string>

#include "marked_model.h"

namespace corvel {
namespace {

using test::MarkedModel;
using test::Pairs;

void Save(MarkedModel& model, const Pairs& savePairs, const Pairs& deletePairs = {}) {
  model->MarkEntitiesAndChildrenAndParentsToSave(savePairs, deletePairs);
}

TEST(SaveMarks, AnObjectIsSavedWithAllThatItRefersToAtAnyDepth) {
  MarkedModel model(
      "#1=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#2=IFCDIRECTION((1.,0.,0.));\n"
      "#3=IFCAXIS2PLACEMENT3D(#1,$,#2);\n"
      "#4=IFCLOCALPLACEMENT($,#3);\n"
      "#5=IFCLOCALPLACEMENT(#4,#3);\n"
      "#6=IFCPOLYLINE((#1,#1));\n"
      "#7=IFCSHAPEREPRESENTATION($,$,$,(#6));\n"
      "#8=IFCPRODUCTDEFINITIONSHAPE($,$,(#7));\n"
      "#9=IFCWALL('w',$,$,$,$,#5,#8,$,$);\n");
  Save(model.Prepare(), {{9, 0}});
  EXPECT_EQ("saved 1 2 3 4 5 6 7 8 9", model.Marks());
}

TEST(SaveMarks, ValuesInRecordsAreSavedToo) {
  MarkedModel model("#1=IFCPROPERTYSINGLEVALUE('p',$,IFCLABEL('x'),$);\n");
  Save(model.Prepare(), {{1, 0}});
  EXPECT_EQ(IFC::kToSave, model.MarkerOfValueIn(1));
}

TEST(SaveMarks, WhatAValueInARecordRefersToIsSavedToo) {
  MarkedModel model(
      "#1=IFCPROPERTYSET('s',$,$,$,());\n"
      "#2=IFCRELDEFINESBYPROPERTIES('r',$,$,$,(),IFCPROPERTYSETDEFINITIONSET((#1)));\n");
  Save(model.Prepare(), {{2, 0}});
  EXPECT_EQ("saved 1 2", model.Marks());
}

TEST(SaveMarks, WhatRefersToTheObjectIsNotSaved) {
  MarkedModel model(
      "#1=IFCWALL('w',$,$,$,$,$,$,$,$);\n"
      "#2=IFCPROPERTYSET('s',$,$,$,());\n"
      "#3=IFCRELDEFINESBYPROPERTIES('r',$,$,$,(#1),#2);\n");
  Save(model.Prepare(), {{1, 0}});
  EXPECT_EQ("saved 1, undecided 2 3", model.Marks());
}

TEST(SaveMarks, SavingOverridesADeletionAlsoOfWhatTheObjectRefersTo) {
  MarkedModel model(
      "#1=IFCLOCALPLACEMENT($,$);\n"
      "#2=IFCWALL('a',$,$,$,$,#1,$,$,$);\n"
      "#3=IFCWALL('b',$,$,$,$,#1,$,$,$);\n");
  model.Prepare()->MarkEntitiesAndChildrenToDelete({{2, 0}, {3, 0}});
  EXPECT_EQ("deleted 1 2 3", model.Marks());
  Save(model, {{2, 0}});
  EXPECT_EQ("saved 1 2, deleted 3", model.Marks());
}

TEST(SaveMarks, NumbersThatTheModelLacksAreSkipped) {
  MarkedModel model("#7=IFCWALL('w',$,$,$,$,$,$,$,$);\n");
  Save(model.Prepare(), {{1, 7}, {0, 7}, {4294967295u, 7}}, {{3, 7}});
  EXPECT_EQ("undecided 7", model.Marks());
}

TEST(SaveMarks, ACircleOfPlacementsIsSavedOnce) {
  MarkedModel model(
      "#1=IFCLOCALPLACEMENT(#2,$);\n"
      "#2=IFCLOCALPLACEMENT(#1,$);\n"
      "#3=IFCLOCALPLACEMENT(#3,$);\n"
      "#4=IFCWALL('a',$,$,$,$,#1,$,$,$);\n"
      "#5=IFCWALL('b',$,$,$,$,#3,$,$,$);\n");
  Save(model.Prepare(), {{4, 0}, {5, 0}});
  EXPECT_EQ("saved 1 2 3 4 5", model.Marks());
}

// --- Upward --------------------------------------------------------------------------------------

// A project, two buildings and a wall. The relations put the wall into building 2.
constexpr std::string_view kTwoBuildings =
    "#1=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n"
    "#2=IFCBUILDING('b',$,$,$,$,$,$,$,$,$,$,$);\n"
    "#3=IFCBUILDING('c',$,$,$,$,$,$,$,$,$,$,$);\n"
    "#4=IFCWALL('w',$,$,$,$,$,$,$,$);\n"
    "#5=IFCRELCONTAINEDINSPATIALSTRUCTURE('r',$,$,$,(#4),#2);\n"
    "#6=IFCRELAGGREGATES('s',$,$,$,#1,(#2,#3));\n";

TEST(SaveMarksUpward, TheParentsAreThoseOfTheHostNotThoseOfTheRelations) {
  MarkedModel model(kTwoBuildings);
  Save(model.Prepare(), {{4, 3}});
  EXPECT_EQ("saved 3 4, undecided 1 2 5 6", model.Marks());
}

TEST(SaveMarksUpward, TheChainGoesOnOverWhatTheHostDeletes) {
  MarkedModel model(kTwoBuildings);
  Save(model.Prepare(), {{4, 3}}, {{3, 1}});
  EXPECT_EQ("saved 1 3 4, undecided 2 5 6", model.Marks());
}

TEST(SaveMarksUpward, AChainOfSavedObjectsAlsoGoesToTheTop) {
  MarkedModel model(kTwoBuildings);
  Save(model.Prepare(), {{4, 3}, {3, 2}, {2, 1}});
  EXPECT_EQ("saved 1 2 3 4, undecided 5 6", model.Marks());
}

TEST(SaveMarksUpward, ItselfAsAParentIsNone) {
  MarkedModel model(kTwoBuildings);
  Save(model.Prepare(), {{4, 4}}, {{3, 3}});
  EXPECT_EQ("saved 4, undecided 1 2 3 5 6", model.Marks());
}

TEST(SaveMarksUpward, ItselfAsAParentLeavesWhatAnEarlierPairSaid) {
  MarkedModel model(kTwoBuildings);
  Save(model.Prepare(), {{4, 4}}, {{4, 2}});
  EXPECT_EQ("saved 2 4, undecided 1 3 5 6", model.Marks());
}

TEST(SaveMarksUpward, ALaterPairOverwritesTheParent) {
  MarkedModel model(kTwoBuildings);
  Save(model.Prepare(), {{4, 2}, {4, 3}});
  EXPECT_EQ("saved 3 4, undecided 1 2 5 6", model.Marks());
}

TEST(SaveMarksUpward, TheSaveListOverwritesTheDeleteList) {
  MarkedModel model(kTwoBuildings);
  Save(model.Prepare(), {{4, 3}}, {{4, 2}});
  EXPECT_EQ("saved 3 4, undecided 1 2 5 6", model.Marks());
}

TEST(SaveMarksUpward, AParentThatTheModelLacksEndsTheChain) {
  MarkedModel model(kTwoBuildings);
  Save(model.Prepare(), {{4, 99}, {99, 2}});
  EXPECT_EQ("saved 4, undecided 1 2 3 5 6", model.Marks());
}

TEST(SaveMarksUpward, AParentThatIsSavedAlreadyEndsTheChain) {
  MarkedModel model(kTwoBuildings);
  model.Prepare().SetSaved({3});
  Save(model, {{4, 3}}, {{3, 1}});
  EXPECT_EQ("saved 3 4, undecided 1 2 5 6", model.Marks());
}

TEST(SaveMarksUpward, ADeletedParentIsSaved) {
  MarkedModel model(kTwoBuildings);
  model.Prepare().SetDeleted({1, 3});
  Save(model, {{4, 3}}, {{3, 1}});
  EXPECT_EQ("saved 1 3 4, undecided 2 5 6", model.Marks());
}

TEST(SaveMarksUpward, ACircleOfHostParentsEnds) {
  MarkedModel model(kTwoBuildings);
  Save(model.Prepare(), {{4, 3}}, {{3, 2}, {2, 3}});
  EXPECT_EQ("saved 2 3 4, undecided 1 5 6", model.Marks());
}

TEST(SaveMarksUpward, ACircleThroughTheObjectEnds) {
  MarkedModel model(kTwoBuildings);
  Save(model.Prepare(), {{4, 3}}, {{3, 4}});
  EXPECT_EQ("saved 3 4, undecided 1 2 5 6", model.Marks());
}

TEST(SaveMarksUpward, TheParentsAreForgottenAfterTheCall) {
  MarkedModel model(kTwoBuildings);
  Save(model.Prepare(), {}, {{4, 3}});
  Save(model, {{4, 0}});
  EXPECT_EQ("saved 4, undecided 1 2 3 5 6", model.Marks());
}

// --- What a saved parent keeps -------------------------------------------------------------------

constexpr std::string_view kOwner =
    "#1=IFCPERSON($,'f',$,$,$,$,$,$);\n"
    "#2=IFCORGANIZATION($,'n',$,$,$);\n"
    "#3=IFCPERSONANDORGANIZATION(#1,#2,$);\n"
    "#4=IFCPERSONANDORGANIZATION(#1,#2,$);\n"
    "#5=IFCAPPLICATION(#2,'1','n','i');\n"
    "#6=IFCOWNERHISTORY(#3,#5,$,.NOCHANGE.,$,#4,$,1);\n"
    "#7=IFCLOCALPLACEMENT($,$);\n";

// Of the owner history, too, only what it cannot do without: #4 is optional.
TEST(SaveMarksUpward, AParentKeepsWhatItsRecordCannotDoWithout) {
  MarkedModel model(std::string(kOwner) +
                        "#8=IFCBUILDINGSTOREY('b',#6,$,$,$,#7,$,$,.ELEMENT.,$);\n"
                        "#9=IFCWALL('w',#6,$,$,$,$,$,$);\n",
                    "IFC2X3");
  model.Prepare();
  // The wall refers to the owner history as well, and would bring #4.
  Save(model, {{7, 8}});
  EXPECT_EQ("saved 1 2 3 5 6 7 8, undecided 4 9", model.Marks());
}

TEST(SaveMarksUpward, AParentDoesNotKeepItsOptionalReferences) {
  MarkedModel model(std::string(kOwner) +
                    "#8=IFCBUILDINGSTOREY('b',#6,$,$,$,#7,$,$,.ELEMENT.,$);\n"
                    "#9=IFCWALL('w',$,$,$,$,$,$,$,$);\n");
  Save(model.Prepare(), {{9, 8}});
  EXPECT_EQ("saved 8 9, undecided 1 2 3 4 5 6 7", model.Marks());
}

TEST(SaveMarksUpward, ARelationAsAParentKeepsItsOneObjectNotTheMembersOfItsList) {
  MarkedModel model(kTwoBuildings);
  Save(model.Prepare(), {{4, 6}});
  EXPECT_EQ("saved 1 4 6, undecided 2 3 5", model.Marks());
}

TEST(SaveMarksUpward, WhatAParentKeepsIsWalkedWholeWhenASavedObjectRefersToIt) {
  MarkedModel model(std::string(kOwner) +
                        "#8=IFCBUILDINGSTOREY('b',#6,$,$,$,$,$,$,.ELEMENT.,$);\n"
                        "#9=IFCWALL('w',#6,$,$,$,$,$,$);\n",
                    "IFC2X3");
  Save(model.Prepare(), {{7, 8}, {9, 0}});
  EXPECT_EQ("saved 1 2 3 4 5 6 7 8 9", model.Marks());
}

TEST(SaveMarksUpward, TheProjectKeepsAllThatItRefersTo) {
  MarkedModel model(
      "#1=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n"
      "#2=IFCUNITASSIGNMENT((#1));\n"
      "#3=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#4=IFCAXIS2PLACEMENT3D(#3,$,$);\n"
      "#5=IFCGEOMETRICREPRESENTATIONCONTEXT($,$,3,$,#4,$);\n"
      "#6=IFCPERSON($,'f',$,$,$,$,$,$);\n"
      "#7=IFCORGANIZATION($,'n',$,$,$);\n"
      "#8=IFCPERSONANDORGANIZATION(#6,#7,$);\n"
      "#9=IFCAPPLICATION(#7,'1','n','i');\n"
      "#10=IFCOWNERHISTORY(#8,#9,$,.NOCHANGE.,$,$,$,1);\n"
      "#11=IFCPROJECT('p',#10,$,$,$,$,$,(#5),#2);\n"
      "#12=IFCWALL('w',$,$,$,$,$,$,$,$);\n"
      "#13=IFCSIUNIT(*,.AREAUNIT.,$,.SQUARE_METRE.);\n");
  Save(model.Prepare(), {{12, 11}});
  EXPECT_EQ("saved 1 2 3 4 5 6 7 8 9 10 11 12, undecided 13", model.Marks());
}

TEST(SaveMarksUpward, TheChainGoesOnAboveAProject) {
  MarkedModel model(kTwoBuildings);
  Save(model.Prepare(), {{4, 1}}, {{1, 2}});
  EXPECT_EQ("saved 1 2 4, undecided 3 5 6", model.Marks());
}

}  // namespace
}  // namespace corvel
