// Records that their files leave open end where they must have been meant to end.
#include "step/reader/record_mender.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "step/reader/scanner.h"
#include "support/memory_streams.h"

namespace corvel {
namespace {

using namespace std::string_literals;

struct Mended {
  std::string text;
  std::string className;
  std::string rest;  // what stands behind the record
  std::vector<std::string> told;
  bool operator==(const Mended&) const = default;
};

std::string RestOf(Scanner& scanner) {
  StreamBytes bytes(scanner);
  std::string rest;
  while (bytes.Peek() != StreamBytes::kEnd) rest.push_back(static_cast<char>(bytes.Take()));
  return rest;
}

// `input`: from behind the number of the record #7.
Mended MendOnce(const std::string& input, std::size_t window) {
  Tolerance tolerance;
  RecordMender mender(tolerance);
  Scanner scanner(std::make_unique<test::MemoryInputStream>(input, window), nullptr);
  MendedRecord record = mender.Take(scanner, 7);
  Mended mended{record.text, record.className, {}, {}};
  mended.rest = RestOf(scanner);
  for (const WideString& text : tolerance.TakeTexts(u"")) {
    const std::string told = ToUtf8(text);
    mended.told.push_back(told.substr(0, told.find(". Records: ")));
  }
  return mended;
}

// The same whatever the windows are.
Mended Mend(const std::string& input) {
  Mended mended = MendOnce(input, input.size() + 1);
  for (std::size_t window = 1; window <= input.size(); ++window) {
    EXPECT_EQ(mended, MendOnce(input, window)) << window;
  }
  return mended;
}

const std::string kOpenString = "A string without its end, closed at the end of its line: ";
const std::string kOpenBracket = "A record without its closing bracket, closed: ";
const std::string kNoSemicolon = "A record without its \";\", ended: ";
const std::string kStray = "Bytes that mean nothing in a record, left out: ";
const std::string kOpenComment = "A comment without its end, left out up to its line's end: ";
const std::string kNext = "\n#8=IFCNEXT('x');";

void ExpectMended(const std::string& text, const std::vector<std::string>& told,
                  const std::string& input, const std::string& rest) {
  const Mended mended = Mend(input + rest);
  EXPECT_EQ(text, mended.text) << input;
  EXPECT_EQ(rest, mended.rest) << input;
  EXPECT_EQ(told, mended.told) << input;
  // What is mended has nothing to be mended.
  const Mended again = Mend("=" + text + ";" + rest);
  EXPECT_EQ(text, again.text) << input;
  EXPECT_EQ(rest, again.rest) << input;
  EXPECT_EQ(std::vector<std::string>{}, again.told) << input;
}

TEST(MendedRecords, AGoodRecordStaysAsItStands) {
  for (const std::string& text :
       {"IFCA('a;b''c',$,(#1,#2),.T.,1.E-5,/* x */ IFCLABEL('\\X2\\00E4\\X0\\'))"s,
        "IFC_A( *\r\n , '\\S\\'' , '\\\\' )"s, "(IFCA('x')IFCB(#3))"s, "IFCA"s, ""s,
        "IFCA(\"0F\",.NOT DEFINED.,-.5,'\xE4\xFF')"s, "IFCA('a\n#5=IFCB(b;',1)"s}) {
    ExpectMended(text, {}, "=" + text + ";", kNext);
  }
}

TEST(MendedRecords, TheClassIsTheFirstWordWithoutUnderscores) {
  EXPECT_EQ("IFCAB2", Mend(" = Ifc_AB2 ('x');").className);
  EXPECT_EQ("", Mend("=(IFCA());").className);
}

TEST(MendedRecords, AnOpenStringEndsWithItsLineWhenARecordBeginsBehindIt) {
  ExpectMended("IFCA($,'abc')", {kOpenString + "IFCA"}, "=IFCA($,'abc);", kNext);
  ExpectMended("IFCA($,('a','b c ') )", {kOpenString + "IFCA"}, "=IFCA($,('a','b c ) );", kNext);
  ExpectMended("IFCA('a')", {kOpenString + "IFCA"}, "=IFCA('a);", "\r\n #8=IFCB();");
  ExpectMended("IFCA('it''s, $)')",
               {kOpenString + "IFCA", kOpenBracket + "IFCA", kNoSemicolon + "IFCA"},
               "=IFCA('it''s, $)\r\n ", "#8=IFCB('y');");
  ExpectMended("IFCA('a\nb')", {kOpenString + "IFCA"}, "=IFCA('a\nb);", kNext);
  ExpectMended("IFCA('abc')", {kOpenString + "IFCA"}, "=IFCA('abc);",
               "\nENDSEC;\nEND-ISO-10303-21;");
}

TEST(MendedRecords, ADirectiveDoesNotTakeTheQuoteThatClosesAnOpenString) {
  ExpectMended("IFCA('\\X2\\00E4\\X0\\')", {kOpenString + "IFCA"}, "=IFCA('\\X2\\00E4);", kNext);
  ExpectMended("IFCA('a')", {kOpenString + "IFCA"}, "=IFCA('a\\S\\);", kNext);
  ExpectMended("IFCA('a\\\\S\\')", {kOpenString + "IFCA"}, "=IFCA('a\\\\S\\);", kNext);
}

TEST(MendedRecords, AnOpenBracketEndsAtTheSemicolon) {
  ExpectMended("IFCA((1,2))", {kOpenBracket + "IFCA"}, "=IFCA((1,2;", kNext);
  ExpectMended("IFCA((1,2))", {kOpenBracket + "IFCA"}, "=IFCA((1,2);", "\nENDSEC;");
  ExpectMended("IFCA(1)", {kOpenBracket + "IFCA"}, "=IFCA(1;", "");
}

TEST(MendedRecords, ASemicolonInAListStandsForAComma) {
  ExpectMended("IFCA((1,2))", {kStray + "IFCA"}, "=IFCA((1;2));", kNext);
}

TEST(MendedRecords, WithoutASemicolonTheRecordEndsBeforeTheNext) {
  ExpectMended("IFCA(#1)", {kNoSemicolon + "IFCA"}, "=IFCA(#1)", kNext.substr(1));
  ExpectMended("IFCA((#1))", {kOpenBracket + "IFCA", kNoSemicolon + "IFCA"}, "=IFCA((#1",
               "#8 = IFCB();");
  ExpectMended("IFCA(#1)", {kNoSemicolon + "IFCA"}, "=IFCA(#1)", "ENDSEC;");
  ExpectMended("IFCA(#1)", {kNoSemicolon + "IFCA"}, "=IFCA(#1)", "END-ISO-10303-21;");
  EXPECT_EQ("IFCA('x')", Mend("=IFCA('x'").text);
}

TEST(MendedRecords, WhatMeansNothingIsLeftOut) {
  ExpectMended("IFCA(1)", {kStray + "IFCA"}, "=IFCA(1)  x 'y' $;", kNext);
  ExpectMended("IFCA(1,2)", {kStray + "IFCA"}, "=IFCA(1),2);", kNext);
  ExpectMended("IFCA(12)", {kStray + "IFCA"},
               "=IFCA(1\x01\xFF\0\xC3\xA4"
               "2);"s,
               kNext);
  ExpectMended("IFCA(1)", {}, "=IFCA(1)));", kNext);
  ExpectMended("IFCA(1)", {kStray + "IFCA"}, " IFCA(1);", kNext);
}

TEST(MendedRecords, SeveralClassesGetTheBracketsAroundThem) {
  ExpectMended("(IFCA()IFCB(1))", {}, "=IFCA()IFCB(1);", kNext);
}

TEST(MendedRecords, AClassBehindWhatIsNoneIsLeftOut) {
  ExpectMended("I''()", {kStray + "I"}, "=I''()L();", kNext);
}

TEST(MendedRecords, BetweenTwoValuesStandsAComma) {
  ExpectMended("IFCA(#1,#2,'x',$,(1),.T.,#3)", {}, "=IFCA(#1#2'x'$(1),.T.#3);", kNext);
}

TEST(MendedRecords, AnEnumerationValueIsClosed) {
  ExpectMended("IFCA(.X.,1)", {"An enumeration value without its end, closed: IFCA"},
               "=IFCA(.X,1);", kNext);
}

TEST(MendedRecords, WhatIsLeftOutMakesNoRecordAndNoOtherReference) {
  ExpectMended("IFCA((4),#1 2, )", {kStray + "IFCA"},
               "=IFCA((#\x01"
               "4=),#1\x01"
               "2,# );",
               kNext);
}

TEST(MendedRecords, BehindTheLastBracketNothingIsKept) {
  ExpectMended("IFCA(1)", {kStray + "IFCA"}, "=IFCA(1).;", kNext);
  ExpectMended("IFCA(1)", {kStray + "IFCA"}, "=IFCA(1)(2);", kNext);
}

TEST(MendedRecords, AnOpenCommentIsNoCommentAtAll) {
  ExpectMended("IFCA(1,2)", {kOpenComment + "IFCA"}, "=IFCA(1,/*2);", kNext);
  ExpectMended("IFCA(1,2)", {kOpenComment + "IFCA"}, "=IFCA(1,/*2);", kNext + "\n/* so */");
  ExpectMended("IFCA(1,/*\n#8=IFCB();\n*/2)", {}, "=IFCA(1,/*\n#8=IFCB();\n*/2);", kNext);
}

TEST(MendedRecords, OpenCommentsCostNoMoreThanTheirLength) {
  std::string input;
  for (int i = 0; i < 20000; ++i) input += "=IFCA(1,/*2);\n#8";
  Tolerance tolerance;
  RecordMender mender(tolerance);
  Scanner scanner(std::make_unique<test::MemoryInputStream>(input, 4096), nullptr);
  StreamBytes bytes(scanner);
  for (int i = 0; i < 20000; ++i) {
    ASSERT_EQ("IFCA(1,2)", mender.Take(scanner, 7).text);
    for (int skipped = 0; skipped < 3; ++skipped) bytes.Take();
    bytes.Forget();
  }
}

}  // namespace
}  // namespace corvel
