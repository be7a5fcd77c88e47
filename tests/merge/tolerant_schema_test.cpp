// In tolerant readings a schema name that nobody knows is served by the release with most of the
// file's classes, and kept as it was read.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "schema/record_model.h"
#include "schema/schema_choice.h"
#include "support/read_model.h"

namespace corvel {
namespace {

using Texts = std::vector<std::string>;

class SchemaNames : public test::ReadTest {
 protected:
  static test::ReadModel Read(const std::string& records, const std::string& schema) {
    test::ReadOptions options;
    options.schema = schema;
    options.tolerant = true;
    test::ReadModel model(records, options);
    EXPECT_TRUE(model.IsRead()) << schema;
    return model;
  }
  static Texts RemarksOf(test::ReadModel& model) {
    Texts texts;
    for (const WideString& text : model.Document().Remarks()) texts.push_back(ToUtf8(text));
    return texts;
  }
};

// Of IFC4 alone, and of IFC2X3 alone.
const std::string kOfNew =
    "#1=IFCBUILDINGELEMENTPROXY('g',$,$,$,$,$,$,$,$);\n#2=IFCDUCTFITTING('h',$,$,$,$,$,$,$,$);\n";
const std::string kOfOld = "#1=IFCCALENDARDATE(1,2,2020);\n";

// Where names and classes say nothing the newest release counts: of this build.
std::string NewestRelease() {
  return test::ReleasesBuilt(SchemaNamespace::IFC2X_FINAL, SchemaNamespace::IFC4X4).back().name;
}

TEST_F(SchemaNames, LetterCaseAndBlanksAroundAreNothing) {
  for (const std::string schema : {"ifc4", " IFC4 ", "Ifc4 "}) {
    test::ReadModel model = Read(kOfNew, schema);
    EXPECT_EQ(Texts{}, RemarksOf(model)) << schema;
    EXPECT_NE(std::string::npos, model.Saved().find("(('" + schema + "'))")) << schema;
  }
}

TEST_F(SchemaNames, ADraftGoesToTheReleaseWithMostOfItsClasses) {
  test::ReadModel asNew = Read(kOfNew, "IFC9_DRAFT");
  EXPECT_EQ((Texts{"Schema identifier: IFC9_DRAFT is not supported. " + NewestRelease() +
                   " is used instead, which has 2 of the first 2 classes of the file."}),
            RemarksOf(asNew));
  test::ReadModel asOld = Read(kOfOld, "IFC9_DRAFT");
  EXPECT_EQ((Texts{"Schema identifier: IFC9_DRAFT is not supported. IFC2X3 is used instead, which "
                   "has 1 of the first 1 classes of the file."}),
            RemarksOf(asOld));
  EXPECT_NE(std::string::npos, asOld.Saved().find("(('IFC9_DRAFT'))"));
}

TEST_F(SchemaNames, WithoutClassesThePrefixDecides) {
  EXPECT_EQ(SchemaNamespace::IFC2X3, ChooseSchemaTolerantly(u"IFC2X3_TC1", u"nowhere.ifc").release);
  EXPECT_EQ(SchemaNamespace::IFC4, ChooseSchemaTolerantly(u"IFC4_ADD3", u"nowhere.ifc").release);
}

TEST_F(SchemaNames, AFileWithoutANameGetsThatOfItsRelease) {
  test::ReadModel model = Read(kOfNew, "");
  EXPECT_NE(std::string::npos, model.Saved().find("(('" + NewestRelease() + "'))"));
}

TEST_F(SchemaNames, NamesOfOneReleaseGoTogether) {
  test::ReadModel one = Read(kOfNew, "IFC4");
  test::ReadModel other = Read(kOfNew, "ifc4");
  test::ReadModel old = Read(kOfOld, "ifc2x3");
  EXPECT_TRUE(other.Document().HasSchemaOf(one.Document()));
  EXPECT_FALSE(old.Document().HasSchemaOf(one.Document()));
}

}  // namespace
}  // namespace corvel
