#include "step/reader/schema_identifier.h"

#include <gtest/gtest.h>

#include "merge/document.h"
#include "schema/registry.h"
#include "step/reader/parser.h"
#include "support/read_model.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using test::ModelFile;
using test::ReadTest;
using test::RecordedReports;
using test::Report;
using test::TemporaryFolder;

// The name of the namespace, or "none".
std::string Chosen(const WideString& identifier) {
  const auto schema = ChooseSchemaNamespace(identifier, RecordedReports::Reporter);
  return schema ? std::string(NameOf(*schema)) : "none";
}

TEST(ChooseSchemaNamespace, ExactNamesChooseTheirOwnNamespace) {
  RecordedReports reports;
  EXPECT_EQ("IFC2X2_PLATFORM", Chosen(u"IFC2X2_PLATFORM"));
  EXPECT_EQ("IFC2X2_FINAL", Chosen(u"IFC2X2_FINAL"));
  EXPECT_EQ("IFC2X3", Chosen(u"IFC2X3"));
  EXPECT_EQ("IFC4", Chosen(u"IFC4"));
  EXPECT_EQ("IFC4X1", Chosen(u"IFC4X1"));
  EXPECT_EQ("IFC4X2", Chosen(u"IFC4X2"));
  EXPECT_EQ("IFC4X3_ADD2", Chosen(u"IFC4X3"));
  EXPECT_EQ("IFC4X3_ADD2", Chosen(u"IFC4X3_ADD2"));
  EXPECT_EQ("IFC4X4", Chosen(u"IFC4X4"));
  EXPECT_TRUE(reports->empty());
}

TEST(ChooseSchemaNamespace, EverythingElseThatBeginsIfc2xIsTheFirstRelease) {
  RecordedReports reports;
  for (const char16_t* const identifier : {u"IFC2X", u"IFC2X_FINAL", u"IFC2X3_TC1", u"IFC2X3 ",
                                           u"IFC2X4", u"IFC2X2", u"IFC2X2_FINAL_"}) {
    EXPECT_EQ("IFC2X_FINAL", Chosen(identifier)) << Narrow(identifier);
  }
  EXPECT_TRUE(reports->empty());
}

TEST(ChooseSchemaNamespace, OtherKindsOfIfc4x3AreReadAsTheSecondAddendumAndLogged) {
  for (const char16_t* const identifier :
       {u"IFC4X3_ADD1", u"IFC4X3_RC1", u"IFC4X3 ", u"IFC4X3_TC1", u"IFC4X31"}) {
    RecordedReports reports;
    EXPECT_EQ("IFC4X3_ADD2", Chosen(identifier));
    EXPECT_EQ((std::vector<Report>{{"",
                                    u"Schema identifier: "s + identifier +
                                        u" is not supported. IFC4X3_ADD2 is used instead.\n",
                                    2}}),
              *reports);
  }
}

TEST(ChooseSchemaNamespace, NothingElseIsAccepted) {
  RecordedReports reports;
  for (const char16_t* const identifier :
       {u"", u"ifc4", u"IFC4X5", u"IFC4X1_ADD1", u"IFC4X2_", u"IFC4_ADD2", u"IFC4 ", u" IFC4",
        u"IFC5", u"IFC2", u"Ifc2X3", u"IFC4X", u"IFC4X4_"}) {
    EXPECT_EQ("none", Chosen(identifier)) << Narrow(identifier);
  }
  EXPECT_TRUE(reports->empty());
}

// --- From a file ---------------------------------------------------------------------------------

class ReadSchemaIdentifier : public ReadTest {
 protected:
  WideString Read(std::string_view bytes) {
    return document_.readSchemaIdentifier(folder_.Write("model.ifc", bytes));
  }

  TemporaryFolder folder_;
  IfcDocument document_{false, RecordedReports::Reporter, nullptr};
};

TEST_F(ReadSchemaIdentifier, GivesTheFirstStringOfFileSchema) {
  EXPECT_EQ(u"IFC2X3", Read(ModelFile("", "IFC2X3")));
  EXPECT_EQ(u"IFC5", Read(ModelFile("", "IFC5','IFC4")));
  EXPECT_TRUE(reports_->empty());
  EXPECT_EQ((std::vector<std::string>{"model.ifc"}), folder_.Names());
}

TEST_F(ReadSchemaIdentifier, ReadsNothingOfTheModel) {
  EXPECT_EQ(u"IFC4", Read(ModelFile("#1=IFCNOTHING(;'")));
  EXPECT_TRUE(reports_->empty());
}

TEST_F(ReadSchemaIdentifier, NeedsIsoSemicolonAndHeaderInThisOrder) {
  const std::string file = ModelFile("");
  for (const std::string& bytes :
       {std::string(), "no STEP file"s, "\xEF\xBB\xBF" + file, "ISO-10303-21;"s,
        "ISO-10303-21;DATA;"s, file.substr(14), "DATA;" + file, "ISO-10303-21"s,
        "/* only a comment"s, "ISO-10303-21;;" + file.substr(14), "Iso" + file.substr(3)}) {
    RecordedReports reports;
    EXPECT_EQ(u"", Read(bytes));
    EXPECT_EQ((std::vector<Report>{
                  {"", u"Unable to read header token. No schema identifier can be read.", 0}}),
              *reports)
        << bytes;
  }
}

TEST_F(ReadSchemaIdentifier, AHeaderWithoutFileSchemaGivesTheEmptyIdentifier) {
  EXPECT_EQ(u"", Read("ISO-10303-21;HEADER;ENDSEC;"));
  EXPECT_TRUE(reports_->empty());
}

TEST_F(ReadSchemaIdentifier, AFileThatCannotBeOpenedIsReportedOnce) {
  const WideString missing = folder_.Path("missing.ifc");
  EXPECT_EQ(u"", document_.readSchemaIdentifier(missing));
  EXPECT_EQ((std::vector<Report>{{"could_not_open_file", u". File path: " + missing, 0}}),
            *reports_);
}

TEST_F(ReadSchemaIdentifier, AFolderCannotBeOpened) {
  const WideString folder = folder_.Path("folder.ifc");
  std::filesystem::create_directory(folder_.Native("folder.ifc"));
  EXPECT_EQ(u"", document_.readSchemaIdentifier(folder));
  EXPECT_EQ((std::vector<Report>{{"could_not_open_file", u". File path: " + folder, 0}}),
            *reports_);
}

TEST_F(ReadSchemaIdentifier, AnUnknownExtensionIsReportedOnce) {
  const WideString path = folder_.Write("model.stp", ModelFile(""));
  EXPECT_EQ(u"", document_.readSchemaIdentifier(path));
  EXPECT_EQ((std::vector<Report>{{"could_not_open_file_extension", u" " + path, 0}}), *reports_);
}

}  // namespace
}  // namespace corvel
