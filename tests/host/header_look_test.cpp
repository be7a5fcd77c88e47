#include "host/header_look.h"

#include <gtest/gtest.h>

#include <string>

#include "support/temporary_folder.h"

namespace corvel::host {

namespace {

HeaderLook LookAt(const std::string& bytes) {
  const test::TemporaryFolder folder;
  return LookAtHeader(folder.Write("m.ifc", bytes));
}

// "1 text, 2 text": what is said against models with these schemas.
WideString TroubleOf(const std::vector<WideString>& schemas) {
  std::vector<WideString> inputs;
  std::vector<HeaderLook> looks;
  for (const WideString& schema : schemas) {
    inputs.push_back(ToWide(static_cast<std::uint32_t>(inputs.size())) + u".ifc");
    looks.push_back({{}, schema});
  }
  WideString text;
  for (const SchemaTrouble& trouble : TroubleWithSchemas(inputs, looks)) {
    if (!text.empty()) text += u", ";
    text += inputs[trouble.input] + u": " + trouble.text;
  }
  return text;
}

}  // namespace

TEST(HeaderLook, TheSchemaIsTakenAsItIsNamed) {
  const HeaderLook look = LookAt(
      "ISO-10303-21;HEADER;FILE_DESCRIPTION(('a'),'2;1');FILE_NAME('n','t',('a'),('o'),'p',"
      "'s','z');FILE_SCHEMA(('Ifc 9'));ENDSEC;DATA;");
  EXPECT_EQ(std::nullopt, look.trouble);
  EXPECT_EQ(u"Ifc 9", look.schemaIdentifier);
}

TEST(HeaderLook, AFileThatIsNoStepFileSaysWhatItIs) {
  EXPECT_EQ(u"this is no STEP file, it begins with 'hello'", LookAt("hello").trouble);
}

TEST(HeaderLook, AHeaderThatCannotBeReadIsTrouble) {
  EXPECT_EQ(u"Unable to read header token. No schema identifier can be read.",
            LookAt("ISO-10303-21;\nHEAD").trouble);
  EXPECT_EQ(u"Unable to read header token. No schema identifier can be read.",
            LookAt("/* */ HEADER;").trouble);
}

TEST(HeaderLook, AFileThatCannotBeOpenedIsTrouble) {
  EXPECT_EQ(u"this file cannot be opened for reading", LookAtHeader(u"no/such/file.ifc").trouble);
}

TEST(TroubleWithSchemas, TheFirstNeedsAReleaseThatServesIt) {
  EXPECT_EQ(u"0.ifc: no release of IFC serves its schema 'IFC5'", TroubleOf({u"IFC5", u"IFC4"}));
}

TEST(TroubleWithSchemas, OthersAreToldWhenNoneHasTheSchemaOfTheFirst) {
  const WideString behind = u"', and that of the first, 0.ifc, is 'IFC4'";
  EXPECT_EQ(u"1.ifc: its schema is 'IFC2X3" + behind + u", 2.ifc: its schema is 'IFC5" + behind,
            TroubleOf({u"IFC4", u"IFC2X3", u"IFC5"}));
}

TEST(TroubleWithSchemas, OneThatDiffersBesideOneThatFitsIsNone) {
  EXPECT_EQ(u"", TroubleOf({u"IFC4", u"IFC2X3", u"IFC4"}));
  EXPECT_EQ(u"", TroubleOf({u"IFC4"}));
}

}  // namespace corvel::host
