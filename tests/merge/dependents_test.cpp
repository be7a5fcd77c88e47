// What hangs on deleted objects without being their child: property data, and the shape of a site.
#include <gtest/gtest.h>

#include <vector>

#include "core/entity_cast.h"
#include "marked_model.h"
#include "schema/interfaces/interfaces.h"

namespace corvel {
namespace {

using test::MarkedModel;
using test::Pairs;
using test::Points;
using test::TicksFrom;

bool DeleteDependents(MarkedModel& model, const Pairs& deletePairs) {
  return model->MarkDependentsToDelete(deletePairs, 5, u"2/3");
}

constexpr std::string_view kSharedSet =
    "#1=IFCPROPERTYSINGLEVALUE('p',$,IFCLABEL('x'),$);\n"
    "#2=IFCPROPERTYSET('s',$,$,$,(#1));\n"
    "#3=IFCQUANTITYLENGTH('l',$,$,1.,$);\n"
    "#4=IFCELEMENTQUANTITY('q',$,$,$,$,(#3));\n"
    "#5=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
    "#6=IFCWALL('b',$,$,$,$,$,$,$,$);\n"
    "#7=IFCRELDEFINESBYPROPERTIES('r',$,$,$,(#5),#2);\n"
    "#8=IFCRELDEFINESBYPROPERTIES('t',$,$,$,(#5),#4);\n"
    "#9=IFCRELDEFINESBYPROPERTIES('u',$,$,$,(#6),#2);\n";

// The properties of the set that goes are left to the last step, as they hang on nothing then.
TEST(Dependents, TheRelationAndAnUnsharedSetGoASharedSetStays) {
  MarkedModel model(kSharedSet);
  model.Prepare().SetDeleted({5});
  EXPECT_TRUE(DeleteDependents(model, {{5, 0}}));
  EXPECT_EQ("deleted 4 5 7 8, undecided 1 2 3 6 9", model.Marks());
}

TEST(Dependents, ASharedSetGoesWithTheLastOfItsRelations) {
  MarkedModel model(kSharedSet);
  model.Prepare().SetDeleted({5, 6});
  DeleteDependents(model, {{5, 0}, {6, 0}});
  EXPECT_EQ("deleted 2 4 5 6 7 8 9, undecided 1 3", model.Marks());
}

TEST(Dependents, OnlyRelationsOfTheListedObjectsAreLookedAt) {
  MarkedModel model(kSharedSet);
  model.Prepare().SetDeleted({5, 6});
  DeleteDependents(model, {{6, 0}, {99, 5}});
  EXPECT_EQ("deleted 5 6 9, undecided 1 2 3 4 7 8", model.Marks());
}

TEST(Dependents, ARelationThatStillHasAnObjectStays) {
  MarkedModel model(
      "#1=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
      "#2=IFCWALL('b',$,$,$,$,$,$,$,$);\n"
      "#3=IFCPROPERTYSET('s',$,$,$,());\n"
      "#4=IFCRELDEFINESBYPROPERTIES('r',$,$,$,(#1,#2),#3);\n");
  model.Prepare().SetDeleted({1});
  DeleteDependents(model, {{1, 0}});
  EXPECT_EQ("deleted 1, undecided 2 3 4", model.Marks());
}

TEST(Dependents, AnObjectOfTheListThatIsSavedKeepsItsRelation) {
  MarkedModel model(kSharedSet);
  model.Prepare().SetSaved({5});
  DeleteDependents(model, {{5, 0}});
  EXPECT_EQ("saved 5, undecided 1 2 3 4 6 7 8 9", model.Marks());
}

TEST(Dependents, NullsAmongTheObjectsOfARelationDoNotKeepIt) {
  MarkedModel model(kSharedSet);
  auto* const relation = EntityCast<IFC::VirtualPropertyRelation>(model[7]);
  relation->addRelatedObject(nullptr, model->mainContainer->Pool());
  model.Prepare().SetDeleted({5});
  DeleteDependents(model, {{5, 0}});
  EXPECT_EQ(IFC::kDeleted, model[7]->marker);
}

TEST(Dependents, OtherRelationsOfTheObjectAreLeft) {
  MarkedModel model(
      "#1=IFCWALL('a',$,$,$,$,$,$,$);\n"
      "#2=IFCPROPERTYSET('s',$,$,$,());\n"
      "#3=IFCRELOVERRIDESPROPERTIES('r',$,$,$,(#1),#2,());\n"
      "#4=IFCWALLTYPE('t',$,$,$,$,$,$,$,$,.STANDARD.);\n"
      "#5=IFCRELDEFINESBYTYPE('u',$,$,$,(#1),#4);\n",
      "IFC2X3");
  model.Prepare().SetDeleted({1});
  DeleteDependents(model, {{1, 0}});
  EXPECT_EQ("deleted 1, undecided 2 3 4 5", model.Marks());
}

TEST(Dependents, ASetThatATypeUsesStays) {
  MarkedModel model(
      "#1=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
      "#2=IFCPROPERTYSET('s',$,$,$,());\n"
      "#3=IFCRELDEFINESBYPROPERTIES('r',$,$,$,(#1),#2);\n"
      "#4=IFCWALLTYPE('t',$,$,$,$,(#2),$,$,$,.STANDARD.);\n");
  model.Prepare().SetDeleted({1});
  DeleteDependents(model, {{1, 0}});
  EXPECT_EQ("deleted 1 3, undecided 2 4", model.Marks());
}

// #1 and #2 are deleted already when their set goes: what they used goes now.
TEST(Dependents, WhatDeletedPropertiesUsedGoesWithTheirSet) {
  MarkedModel model(
      "#1=IFCPROPERTYSINGLEVALUE('p',$,IFCLABEL('x'),$);\n"
      "#2=IFCCOMPLEXPROPERTY('c',$,'u',(#1));\n"
      "#3=IFCPROPERTYSET('s',$,$,$,(#2));\n"
      "#4=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
      "#5=IFCRELDEFINESBYPROPERTIES('r',$,$,$,(#4),#3);\n");
  model.Prepare().SetDeleted({1, 2, 4});
  DeleteDependents(model, {{4, 0}});
  EXPECT_EQ("deleted 1 2 3 4 5", model.Marks());
  EXPECT_EQ(IFC::kDeleted, model.MarkerOfValueIn(1));
}

TEST(Dependents, ACircleOfDeletedPropertiesEnds) {
  MarkedModel model(
      "#1=IFCCOMPLEXPROPERTY('c',$,'u',(#1,#2));\n"
      "#2=IFCCOMPLEXPROPERTY('d',$,'u',(#1));\n"
      "#3=IFCPROPERTYSET('s',$,$,$,(#1));\n"
      "#4=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
      "#5=IFCRELDEFINESBYPROPERTIES('r',$,$,$,(#4),#3);\n");
  model.Prepare().SetDeleted({1, 2, 4});
  DeleteDependents(model, {{4, 0}});
  EXPECT_EQ("deleted 1 2 3 4 5", model.Marks());
}

// A site, saved or not, loses its shape, though a building uses it as well.
TEST(Dependents, TheShapeOfASiteGoesWhoeverUsesIt) {
  MarkedModel model(
      "#1=IFCPOLYLINE(());\n"
      "#2=IFCSHAPEREPRESENTATION($,$,$,(#1));\n"
      "#3=IFCPRODUCTDEFINITIONSHAPE($,$,(#2));\n"
      "#4=IFCLOCALPLACEMENT($,$);\n"
      "#5=IFCSITE('s',$,$,$,$,#4,#3,$,$,$,$,$,$,$);\n"
      "#6=IFCBUILDING('b',$,$,$,$,$,#3,$,$,$,$,$);\n");
  model.Prepare().SetSaved({5});
  DeleteDependents(model, {{5, 0}});
  EXPECT_EQ("saved 5, deleted 1 2 3 4, undecided 6", model.Marks());
  EXPECT_EQ(
      "#5=IFCSITE('s',$,$,$,$,$,$,$,$,$,$,$,$,$);\n"
      "#6=IFCBUILDING('b',$,$,$,$,$,$,$,$,$,$,$);\n",
      model.Lines());
}

TEST(Dependents, WhatIsSavedBelowASiteStays) {
  MarkedModel model(
      "#1=IFCOWNERHISTORY($,$,$,.NOCHANGE.,$,$,$,1);\n"
      "#2=IFCAXIS2PLACEMENT3D(#8,$,$);\n"
      "#3=IFCLOCALPLACEMENT($,#2);\n"
      "#4=IFCSHAPEREPRESENTATION($,$,$,());\n"
      "#5=IFCPRODUCTDEFINITIONSHAPE($,$,(#4));\n"
      "#6=IFCSITE('s',#1,$,$,$,#3,#5,$,$,$,$,$,$,$);\n"
      "#7=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n"
      "#8=IFCCARTESIANPOINT((0.,0.,0.));\n");
  model.Prepare().SetSaved({1, 3, 4});
  DeleteDependents(model, {{6, 0}});
  EXPECT_EQ("saved 1 3 4, deleted 5, undecided 2 6 7 8", model.Marks());
}

TEST(Dependents, ASavedShapeIsStillTakenFromItsSite) {
  MarkedModel model(
      "#1=IFCPRODUCTDEFINITIONSHAPE($,$,());\n"
      "#2=IFCSITE('s',$,$,$,$,$,#1,$,$,$,$,$,$,$);\n");
  model.Prepare().SetSaved({1, 2});
  DeleteDependents(model, {{2, 0}});
  EXPECT_EQ(
      "#1=IFCPRODUCTDEFINITIONSHAPE($,$,());\n"
      "#2=IFCSITE('s',$,$,$,$,$,$,$,$,$,$,$,$,$);\n",
      model.Lines());
}

TEST(Dependents, APropertySetOfASiteIsLeft) {
  MarkedModel model(
      "#1=IFCSITE('s',$,$,$,$,$,$,$,$,$,$,$,$,$);\n"
      "#2=IFCPROPERTYSET('s',$,$,$,());\n"
      "#3=IFCRELDEFINESBYPROPERTIES('r',$,$,$,(#1),#2);\n");
  model.Prepare().SetDeleted({1});
  DeleteDependents(model, {{1, 0}});
  EXPECT_EQ("deleted 1, undecided 2 3", model.Marks());
}

TEST(Dependents, AFiftiethOfTheListMakesATick) {
  MarkedModel model(Points(1, 1));
  model.Prepare();
  EXPECT_TRUE(DeleteDependents(model, Pairs(49, {1, 0})));
  EXPECT_EQ(std::vector<test::Tick>{}, model.Ticks());
  DeleteDependents(model, Pairs(99, {1, 0}));
  EXPECT_EQ(TicksFrom(51, 100, 5, u"2/3", true, 100) + TicksFrom(100, 100, 5, u"2/3", true, 100),
            model.Ticks());
}

TEST(Dependents, AConfirmedCancelEndsIt) {
  MarkedModel model(kSharedSet);
  Pairs pairs(100, {1, 0});
  pairs.push_back({5, 0});
  model.Prepare().SetDeleted({5}).CancelAt(2);
  EXPECT_FALSE(DeleteDependents(model, pairs));
  EXPECT_EQ(TicksFrom(51, 53, 5, u"2/3", true, 100), model.Ticks());
  EXPECT_EQ(IFC::kUnfiled, model[7]->marker);
}

}  // namespace
}  // namespace corvel
