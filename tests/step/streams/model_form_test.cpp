#include "step/streams/model_form.h"

#include <gtest/gtest.h>

namespace FileStream {

TEST(FormOf, TheExtensionCountsInAnyCase) {
  EXPECT_EQ(ModelForm::kPlain, FormOf(u"/m/a.b.Ifc"));
  EXPECT_EQ(ModelForm::kPacked, FormOf(u"C:\\m\\a.IFCZIP"));
  EXPECT_EQ(ModelForm::kContained, FormOf(u"a.olf|sub/model.ifc"));
}

TEST(FormOf, OtherNamesAreThoseOfNoModel) {
  EXPECT_EQ(ModelForm::kNone, FormOf(u"a.txt"));
  EXPECT_EQ(ModelForm::kNone, FormOf(u"ifc"));
  EXPECT_EQ(ModelForm::kNone, FormOf(u""));
}

TEST(ExtensionOf, ItIsTheTextFromTheLastDotInLowerCase) {
  EXPECT_EQ(u".ifc", ExtensionOf(u"C:\\m\\a.ifc"));
  EXPECT_EQ(u".ifczip", ExtensionOf(u"/m/a.b.IFCZip"));
  EXPECT_EQ(u".", ExtensionOf(u"a."));
}

TEST(ExtensionOf, WithoutADotItIsEmpty) {
  EXPECT_EQ(u"", ExtensionOf(u"model"));
  EXPECT_EQ(u"", ExtensionOf(u""));
}

TEST(ExtensionOf, OfAContainerEntryItIsTheFourCharactersBeforeTheBar) {
  EXPECT_EQ(u".olf", ExtensionOf(u"a.OLF|sub/model.ifc"));
  EXPECT_EQ(u".olf", ExtensionOf(u"a.olf|x|y.ifc"));
  EXPECT_EQ(u"chiv", ExtensionOf(u"a.archiv|model.ifc"));
  EXPECT_EQ(u"ab", ExtensionOf(u"AB|model.ifc"));
}

}  // namespace FileStream
