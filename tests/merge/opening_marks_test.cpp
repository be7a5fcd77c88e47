// Openings: deleted all at once, or with the elements that they are in.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "marked_model.h"

namespace corvel {
namespace {

using test::MarkedModel;
using test::Pairs;

// A wall with an opening, another with another, and numbers far apart.
constexpr std::string_view kTwoOpenings =
    "#1=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n"
    "#2=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
    "#3=IFCOPENINGELEMENT('o',$,$,$,$,$,$,$,$);\n"
    "#4=IFCRELVOIDSELEMENT('r',$,$,$,#2,#3);\n"
    "#5=IFCWALL('b',$,$,$,$,$,$,$,$);\n"
    "#600=IFCOPENINGELEMENT('q',$,$,$,$,$,$,$,$);\n"
    "#7=IFCRELVOIDSELEMENT('s',$,$,$,#5,#600);\n";

// --- All openings --------------------------------------------------------------------------------

TEST(AllOpenings, EveryOpeningComesIntoTheDeleteListWhateverItsNumber) {
  MarkedModel model(kTwoOpenings);
  model.deleteOpenings = true;
  model.deletePairs = {{5, 1}};
  model.savePairs = {{1, 0}, {2, 1}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ((Pairs{{5, 1}, {3, 3}, {600, 600}}), model.deletePairs);
  EXPECT_EQ("saved 1 2, deleted 3 4 5 7 600", model.Marks());
}

TEST(AllOpenings, NoneStaysInTheSaveListTheOthersKeepTheirOrder) {
  MarkedModel model(kTwoOpenings);
  model.deleteOpenings = true;
  model.savePairs = {{600, 5}, {5, 1}, {3, 2}, {99, 1}, {2, 1}, {3, 2}, {1, 0}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ((Pairs{{5, 1}, {99, 1}, {2, 1}, {1, 0}}), model.savePairs);
  EXPECT_EQ((Pairs{{3, 3}, {600, 600}}), model.deletePairs);
  EXPECT_EQ("saved 1 2 5, deleted 3 4 7 600", model.Marks());
}

TEST(AllOpenings, TheirShapesGoWithThem) {
  MarkedModel model(
      "#1=IFCSHAPEREPRESENTATION($,$,$,(#9));\n"
      "#2=IFCPRODUCTDEFINITIONSHAPE($,$,(#1));\n"
      "#3=IFCLOCALPLACEMENT($,$);\n"
      "#4=IFCLOCALPLACEMENT(#3,$);\n"
      "#5=IFCWALL('a',$,$,$,$,#3,$,$,$);\n"
      "#6=IFCOPENINGELEMENT('o',$,$,$,$,#4,#2,$,$);\n"
      "#7=IFCRELVOIDSELEMENT('r',$,$,$,#5,#6);\n"
      "#9=IFCPOLYLINE(());\n");
  model.deleteOpenings = true;
  model.savePairs = {{5, 0}, {6, 5}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 3 5, deleted 1 2 4 6 7 9", model.Marks());
}

TEST(AllOpenings, OtherClassesOfOpeningsAreNotMeant) {
  MarkedModel model("#1=IFCOPENINGSTANDARDCASE('o',$,$,$,$,$,$,$,$);\n");
  model.deleteOpenings = true;
  model.savePairs = {{1, 0}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 1", model.Marks());
  EXPECT_EQ(Pairs{}, model.deletePairs);
}

// They stay in the list to the end, so that their property data goes as well.
TEST(AllOpenings, PropertySetsOfOpeningsGo) {
  MarkedModel model(std::string(kTwoOpenings) +
                    "#8=IFCPROPERTYSINGLEVALUE('n',$,$,$);\n"
                    "#9=IFCPROPERTYSET('x',$,$,$,(#8));\n"
                    "#10=IFCRELDEFINESBYPROPERTIES('y',$,$,$,(#3),#9);\n");
  model.deleteOpenings = true;
  model.savePairs = {{1, 0}, {2, 1}, {5, 1}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 1 2 5, deleted 3 4 7 8 9 10 600", model.Marks());
}

// --- The list of the host ------------------------------------------------------------------------

TEST(ListedOpenings, AnOpeningOfAKeptWallLeavesTheListAndIsDeletedAllTheSame) {
  MarkedModel model(kTwoOpenings);
  model.deletePairs = {{3, 2}};
  model.savePairs = {{1, 0}, {2, 1}, {5, 1}, {600, 5}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ(Pairs{}, model.deletePairs);
  EXPECT_EQ("saved 1 2 5 600, deleted 3 4, undecided 7", model.Marks());
}

TEST(ListedOpenings, AnOpeningOfADeletedWallStaysInTheList) {
  MarkedModel model(kTwoOpenings);
  model.deletePairs = {{2, 1}, {3, 2}};
  model.savePairs = {{1, 0}, {5, 1}, {600, 5}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ((Pairs{{2, 1}, {3, 2}}), model.deletePairs);
  EXPECT_EQ("saved 1 5 600, deleted 2 3 4, undecided 7", model.Marks());
}

TEST(ListedOpenings, OnlyTheParentThatTheHostTellsCounts) {
  MarkedModel model(kTwoOpenings);
  model.Prepare().SetDeleted({2, 3, 600});
  Pairs pairs = {{3, 5}, {600, 2}, {3, 3}, {3, 99}, {3, 0}, {99, 5}, {5, 5}};
  model->RemoveOpeningsFromDeleteList(pairs);
  EXPECT_EQ((Pairs{{600, 2}, {3, 3}, {3, 99}, {3, 0}, {99, 5}, {5, 5}}), pairs);
}

TEST(ListedOpenings, AKeptOpeningOfADeletedWallBringsTheWallBackWithoutItsShape) {
  MarkedModel model(
      "#1=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n"
      "#2=IFCSHAPEREPRESENTATION($,$,$,(#7));\n"
      "#3=IFCPRODUCTDEFINITIONSHAPE($,$,(#2));\n"
      "#4=IFCWALL('a',$,$,$,$,$,#3,$,$);\n"
      "#5=IFCOPENINGELEMENT('o',$,$,$,$,$,$,$,$);\n"
      "#6=IFCRELVOIDSELEMENT('r',$,$,$,#4,#5);\n"
      "#7=IFCPOLYLINE(());\n");
  model.deletePairs = {{4, 1}};
  model.savePairs = {{1, 0}, {5, 4}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ("saved 1 4 5, deleted 2 3 7, undecided 6", model.Marks());
  EXPECT_EQ(
      "#1=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n"
      "#4=IFCWALL('a',$,$,$,$,$,$,$,$);\n"
      "#5=IFCOPENINGELEMENT('o',$,$,$,$,$,$,$,$);\n"
      "#6=IFCRELVOIDSELEMENT('r',$,$,$,#4,#5);\n",
      model.Lines());
}

TEST(ListedOpenings, AWallWithoutItsOpeningsHasNoHoles) {
  MarkedModel model(kTwoOpenings);
  model.deletePairs = {{3, 2}, {5, 1}, {600, 5}};
  model.savePairs = {{1, 0}, {2, 1}};
  EXPECT_TRUE(model.DeleteObjects());
  EXPECT_EQ((Pairs{{5, 1}, {600, 5}}), model.deletePairs);
  EXPECT_EQ("saved 1 2, deleted 3 4 5 7 600", model.Marks());
}

}  // namespace
}  // namespace corvel
