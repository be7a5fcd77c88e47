#include "host/foreign_file.h"

#include <gtest/gtest.h>

#include <string>

#include "host/hearing.h"
#include "support/temporary_folder.h"
#include "support/zip_bytes.h"

namespace corvel::host {

namespace {

// What is told of a file with these bytes; "-" for a STEP file.
WideString Told(const std::string& bytes, std::string_view name = "m.ifc") {
  const test::TemporaryFolder folder;
  return NoStepFile(folder.Write(name, bytes)).value_or(u"-");
}

WideString Begins(WideView what) {
  return u"this is no STEP file, it begins with " + WideString(what);
}

}  // namespace

TEST(NoStepFile, TheFirstLineIsShown) {
  EXPECT_EQ(Begins(u"'hello'"), Told("hello\nyou"));
  EXPECT_EQ(Begins(u"'hello'"), Told("\r\n \thello\r\n"));
  EXPECT_EQ(Begins(u"'123456789012345678901234'"), Told("12345678901234567890123456"));
  EXPECT_EQ(Begins(u"'ISO-10303-22;'"), Told("ISO-10303-22;\n"));
}

TEST(NoStepFile, BytesThatAreNoTextAreShownInHexadecimal) {
  EXPECT_EQ(Begins(u"FF"), Told("\xFF"));
  EXPECT_EQ(Begins(u"00 01 9A 62"), Told(std::string("\0\1\x9A", 3) + "bcd"));
}

TEST(NoStepFile, FormatsWithASignatureAreNamed) {
  EXPECT_EQ(Begins(u"EF BB BF 49 (a byte order mark)"), Told("\xEF\xBB\xBFISO-10303-21;"));
  EXPECT_EQ(Begins(u"'<?xml' (XML)"), Told("<?xml"));
  EXPECT_EQ(Begins(u"'<html>' (XML or HTML)"), Told("<html>"));
  EXPECT_EQ(Begins(u"'%PDF-1.4' (PDF)"), Told("%PDF-1.4\n"));
}

TEST(NoStepFile, OfAnArchiveTheModelInItIsMeant) {
  EXPECT_EQ(u"the model in it is no STEP file, it begins with '{' (JSON)",
            Told(test::ZipOf({test::ZipEntry{"m.ifc", "{"}}), "m.ifczip"));
}

TEST(NoStepFile, WhatBeginsAsAStepFileIsOne) {
  EXPECT_EQ(u"-", Told("ISO-10303-21;"));
  EXPECT_EQ(u"-", Told(std::string(10000, '\n') + " _ISO-10303-21;"));
  EXPECT_EQ(u"-", Told("/* a comment */ ISO-10303-21;"));
}

TEST(NoStepFile, NothingIsSaidOfAFileThatCannotBeOpenedOrIsEmpty) {
  std::vector<WideString> heard;
  const Hearing hearing(heard);
  EXPECT_EQ(u"-", Told(""));
  EXPECT_EQ(u"-", Told("no archive", "m.ifczip"));
  EXPECT_EQ(std::nullopt, NoStepFile(u"no/such/file.ifc"));
  EXPECT_EQ(std::vector<WideString>{}, heard);
}

}  // namespace corvel::host
