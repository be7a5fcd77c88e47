// What looks into a spoilt file sees the records that its reading gives, under the same numbers.
#include "step/reader/mended_stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "step/reader/record_walker.h"
#include "step/reader/schema_identifier.h"
#include "support/memory_streams.h"
#include "support/read_model.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using test::ModelFile;

constexpr std::size_t kWholeFile = 0x100000;

// The text of a file in windows of so many bytes.
std::unique_ptr<MendedStream> MendedStreamOf(const std::string& bytes, std::size_t window) {
  auto file = std::make_unique<test::MemoryInputStream>(bytes, window);
  return std::make_unique<MendedStream>(
      std::make_unique<Scanner>(std::move(file), test::RecordedReports::Reporter),
      test::RecordedReports::Reporter);
}

std::string MendedText(const std::string& bytes, std::size_t window = kWholeFile) {
  const auto stream = MendedStreamOf(bytes, window);
  std::string text;
  char piece[100];
  while (const std::size_t count = stream->Read(piece, sizeof piece)) text.append(piece, count);
  EXPECT_TRUE(stream->IsEof());
  return text;
}

std::string RecordsOf(const std::string& file) { return file.substr(file.find("\nDATA;\n")); }

// Empty when it is none.
std::string ClassAt(const std::string& text) {
  return text.starts_with("IFC") ? text.substr(0, text.find_first_of("(;")) : "";
}

// `#12=IFCWALL` of all records, in order.
std::vector<std::string> NamesThroughMendedStream(const std::string& bytes) {
  Scanner scanner(MendedStreamOf(bytes, kWholeFile), test::RecordedReports::Reporter);
  EXPECT_NE(nullptr, ReadHeaderToken(scanner)) << bytes;
  RecordWalker walker(scanner);
  std::vector<std::string> names;
  for (std::uint32_t number = 0; walker.FindRecord(number);) {
    names.push_back("#" + std::to_string(number) + "=" +
                    ClassAt(std::string(walker.TakeClassName())));
    walker.FinishRecord();
  }
  std::sort(names.begin(), names.end());
  return names;
}

class MendedFile : public test::ReadTest {
 protected:
  static test::ReadModel Read(const std::string& bytes) {
    IFC::MainContainer::ResetUniqueMarker();
    test::ReadOptions options;
    options.tolerant = true;
    return test::ReadModel::OfFile(bytes, options);
  }

  // The records that a reading of the file has, as NamesThroughMendedStream.
  static std::vector<std::string> NamesThroughParser(const std::string& bytes) {
    test::ReadModel model = Read(bytes);
    EXPECT_TRUE(model.IsRead()) << bytes;
    std::vector<std::string> names;
    for (const auto [number, entity] : model.Container().originalEntities) {
      const std::string line = model.Line(number);
      const std::string begin = "#" + std::to_string(number) + "=";
      EXPECT_TRUE(line.starts_with(begin)) << line;
      names.push_back(begin + ClassAt(line.substr(begin.size())));
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  static void ExpectAgreement(const std::string& records) {
    const std::string bytes = ModelFile(records);
    EXPECT_EQ(NamesThroughParser(bytes), NamesThroughMendedStream(bytes)) << records;
    const std::string mended = MendedText(bytes);
    EXPECT_EQ(Read(bytes).Lines(), Read(mended).Lines()) << mended;
    EXPECT_EQ(RecordsOf(mended), RecordsOf(MendedText(mended))) << "mended once more";
    for (std::size_t window = 1; window < 40; ++window) {
      EXPECT_EQ(mended, MendedText(bytes, window)) << window;
    }
  }
};

TEST_F(MendedFile, AGoodFileIsWhatItWas) {
  const std::string records = "#1=IFCPERSON($,$,$,$,$,$,$,$);\n#7=IFCLABEL('it''s; (#1)');\n";
  const std::string text = MendedText(ModelFile(records));
  EXPECT_NE(std::string::npos, text.find("DATA;\n" + records + "ENDSEC;\nEND-ISO-10303-21;\n"))
      << text;
  ExpectAgreement(records);
}

TEST_F(MendedFile, TheSecondOfANumberHasTheFreeOneThatTheParserGives) {
  ExpectAgreement(
      "#5=IFCLABEL('a');\n#5=IFCTEXT('b');\n#9=IFCLABEL('c');\n#5=IFCREAL(1.);\n"
      "#9=IFCTEXT('d');\n#10=IFCBOOLEAN(.T.);\n");
}

TEST_F(MendedFile, ARecordWithoutANumberHasTheFreeOneThatTheParserGives) {
  ExpectAgreement(
      "=IFCLABEL('a');\n#3=IFCLABEL('b');\nIFCTEXT('c');\n#0=IFCREAL(1.);\n#3=IFCTEXT('d');\n");
}

TEST_F(MendedFile, BelowTheLargestNumberFreeOnesBeginAtTheBottom) {
  const std::string largest = std::to_string(IFC::kLargestNumber);
  ExpectAgreement("#1=IFCLABEL('a');\n#" + largest + "=IFCLABEL('b');\n#" + largest +
                  "=IFCTEXT('c');\n#1=IFCTEXT('d');\n#3=IFCREAL(1.);\n");
}

TEST_F(MendedFile, NumbersThatAreTooLargeCountAsNone) {
  ExpectAgreement("#99999999999=IFCLABEL('a');\n#4294967297=IFCTEXT('b');\n#1=IFCREAL(1.);\n");
}

TEST_F(MendedFile, WhatIsLeftOpenEndsWhereTheParserEndsIt) {
  ExpectAgreement(
      "#1=IFCLABEL('a);\n#2=IFCTEXT('b')\n#3=IFCCARTESIANPOINT((1.,2.;\n#4=IFCREAL(1.)");
  ExpectAgreement("#1=IFCLABEL('a');/* open\n#2=IFCTEXT('b');\n#3=IFCLABEL(/*'c');\n");
  ExpectAgreement("stray ' #1=IFCLABEL('a');more'\n#2=\x01IFCTEXT\xFF('b');;;\n#3 IFCREAL(1.);\n");
}

TEST_F(MendedFile, NoSectionBeginsBehindARecord) {
  ExpectAgreement("#4=;ANCHOR=(1);\n#5=IFCLABEL('a');\n");
  ExpectAgreement("#4=IFCLABEL('a');\nANCHOR=(1);\n#5=IFCLABEL('a');\n");
}

TEST_F(MendedFile, ComplexInstancesAndNoClassesAreRecordsOfBoth) {
  ExpectAgreement("#1=(IFCA('x')IFCB());\n#2=;\n#3=IFCNEW;\n#4=IFCLABEL('a');\n");
}

// Longer than what is mended at a time.
TEST_F(MendedFile, NumbersAgreeOverManyBlocks) {
  std::string records;
  for (unsigned number = 1; number <= 12000; ++number) {
    records += "#" + std::to_string(number % 5000 + 1) + "=IFCLABEL('a text of some length " +
               std::to_string(number) + "')" + (number % 7 == 0 ? "\n" : ";\n");
  }
  const std::string bytes = ModelFile(records);
  const auto names = NamesThroughMendedStream(bytes);
  EXPECT_EQ(12000u, names.size());
  EXPECT_EQ(NamesThroughParser(bytes), names);
}

TEST_F(MendedFile, PiecesInAnyOrderAgree) {
  const std::vector<std::string> pieces = {"#1=IFCLABEL('a');",
                                           "#2=IFCTEXT('b')",
                                           "#3=IFCLABEL('c);",
                                           "\n",
                                           "\n",
                                           "\n",
                                           "#1=",
                                           "IFCREAL(1.);",
                                           "=IFCLABEL('d');",
                                           "/*",
                                           "*/",
                                           "'",
                                           "((",
                                           ")",
                                           ";",
                                           "#2=IFCLABEL(",
                                           "#0=IFCTEXT('e');",
                                           "stray",
                                           "#7=(IFCA()IFCB('f'));",
                                           ".A",
                                           "ENDSEC;",
                                           "\x00"s,
                                           ",",
                                           "$",
                                           "#900=IFCPERSON($,$,$,$,$,$,$,$);",
                                           "DATA;",
                                           "END-ISO-10303-21;\n"};
  for (unsigned seed = 0; seed < 300; ++seed) {
    std::mt19937 random(seed);
    std::string records = "#1=IFCLABEL('first');\n";
    for (int count = 0; count < 12; ++count) records += pieces[random() % pieces.size()];
    const std::string bytes = ModelFile(records);
    SCOPED_TRACE(records);
    EXPECT_EQ(NamesThroughParser(bytes), NamesThroughMendedStream(bytes)) << seed;
  }
}

}  // namespace
}  // namespace corvel
