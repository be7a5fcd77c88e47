// A header that tells of the run.
#include "merge/federation/new_header.h"

#include <gtest/gtest.h>

#include "support/test_platform.h"

namespace corvel {
namespace {

TEST(RenewedHeader, NamesOutputTimeAndInputsAndKeepsTheRest) {
  test::TestPlatform system;
  system.localTime = {2026, 3, 4, 5, 6, 7};
  HeaderToken header;
  header.fileDescription = {u"ViewDefinition [CoordinationView]"};
  header.name = u"old.ifc";
  header.timeStamp = u"1999-01-01T00:00:00";
  header.author = {u"Nobody"};
  header.preprocessorVersion = u"Another";
  header.originatingSystem = u"System";
  header.schemaIdentifier = u"IFC2X3";
  RenewHeader(header, u"/out/whole.ifc", {u"/in/a.ifc", u"C:\\in\\b.ifc"});
  EXPECT_EQ(u"whole.ifc", header.name);
  EXPECT_EQ(u"2026-03-04T05:06:07", header.timeStamp);
  EXPECT_TRUE(header.preprocessorVersion.starts_with(u"Corvel "));
  const std::vector<WideString> description = {u"ViewDefinition [CoordinationView]",
                                               u"Input 1: a.ifc", u"Input 2: b.ifc"};
  EXPECT_EQ(description, header.fileDescription);
  EXPECT_EQ(std::vector<WideString>{u"Nobody"}, header.author);
  EXPECT_EQ(u"System", header.originatingSystem);
  EXPECT_EQ(u"IFC2X3", header.schemaIdentifier);
}

}  // namespace
}  // namespace corvel
