#include "merge/report/product_fates.h"

#include <gtest/gtest.h>

#include "core/entity_cast.h"
#include "schema/interfaces/product.h"
#include "support/model.h"
#include "support/read_model.h"

namespace corvel::test {
namespace {

// Products of several kinds, the later ones of smaller numbers, and what is none.
constexpr std::string_view kBackwards =
    "#30=IFCWALL('3000000000000000000030',$,'a',$,$,$,$,$,$);\n"
    "#20=IFCDOOR('3000000000000000000020',$,'b',$,$,$,$,$,$,$,$,$,$);\n"
    "#25=IFCCARTESIANPOINT((1.,2.,3.));\n"
    "#11=IFCSITE('3000000000000000000011',$,'c',$,$,$,$,$,$,$,$,$,$,$);\n"
    "#12=IFCPROPERTYSET('3000000000000000000012',$,'d',$,(#13));\n"
    "#13=IFCPROPERTYSINGLEVALUE('e',$,IFCLABEL('f'),$);\n"
    "#10=IFCPROJECT('3000000000000000000010',$,'g',$,$,$,$,$,$);\n";

std::vector<std::string> NamesOf(const ProductFates& fates) {
  std::vector<std::string> names;
  for (const PlacedProduct& product : fates.Placed()) {
    names.push_back(Narrow(product.entity->getClassName()));
  }
  return names;
}

class ProductFatesTest : public ReadTest {};

TEST_F(ProductFatesTest, AStrictReadingListsTheProducts) {
  ReadModel model(kBackwards);
  ASSERT_TRUE(model.IsRead());
  EXPECT_TRUE(model.Container().productsAreListed);
  const std::vector<IFC::IfcEntity*> inOrderOfTheFile = {model[30], model[20], model[11]};
  EXPECT_EQ(inOrderOfTheFile, model.Container().products);
}

TEST_F(ProductFatesTest, ComeByNumberWhetherTheyAreListedOrNot) {
  const std::vector<std::string> byNumber = {"IfcSite", "IfcDoor", "IfcWall"};
  for (const bool tolerant : {false, true}) {
    ReadModel model(kBackwards, {.tolerant = tolerant});
    ASSERT_TRUE(model.IsRead());
    EXPECT_EQ(!tolerant, model.Container().productsAreListed);
    ProductFates fates;
    fates.Collect(model.Container());
    EXPECT_EQ(byNumber, NamesOf(fates));
  }
}

TEST_F(ProductFatesTest, WhatWasForgottenIsKeptAgain) {
  ReadModel model(kBackwards);
  ASSERT_TRUE(model.IsRead());
  ProductFates fates;
  fates.Collect(model.Container());
  model[20]->marker = IFC::kDeleted;
  fates.NoteMarked(MarkingStep::kSwept);
  EXPECT_EQ(1u, fates.Tally().Dropped(DropReason::kNotNeeded));
  fates.Forget();
  EXPECT_EQ(3u, fates.Tally().kept);
  EXPECT_EQ(0u, fates.Tally().Dropped(DropReason::kNotNeeded));
}

}  // namespace
}  // namespace corvel::test
