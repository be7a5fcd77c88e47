#include "step/reader/record_walker.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "support/memory_streams.h"

namespace corvel {

namespace {

// "7:IFCWALL 9:": numbers and names of the records, in windows of `window` bytes.
std::string RecordsOf(const std::string& text, std::size_t window) {
  Scanner scanner(std::make_unique<test::MemoryInputStream>(text, window), nullptr);
  RecordWalker walker(scanner);
  std::string records;
  for (std::uint32_t number = 0; walker.FindRecord(number); walker.FinishRecord()) {
    if (!records.empty()) records += ' ';
    records += std::to_string(number) + ":" + std::string(walker.TakeClassName());
  }
  if (walker.EndsInString()) records += " (in string)";
  if (scanner.MetClosingLine()) records += " (closed)";
  return records;
}

std::string Records(const std::string& text) {
  const std::string whole = RecordsOf(text, text.size() + 1);
  for (std::size_t window = 1; window <= text.size(); ++window) {
    EXPECT_EQ(whole, RecordsOf(text, window)) << "window " << window;
  }
  return whole;
}

// "0'a' 1#7 2(#8)": the strings and references up to the argument `last`, each behind the index of
// its argument and in brackets where it stands in a list; behind them what has not been walked
// over.
std::string Arguments(const std::string& text, unsigned last) {
  Scanner scanner(std::make_unique<test::MemoryInputStream>(text), nullptr);
  RecordWalker walker(scanner);
  std::string met;
  const auto add = [&met](const RecordWalker::Place& place, const std::string& value) {
    met += std::to_string(place.argument) + std::string(place.depth - 1, '(') + value +
           std::string(place.depth - 1, ')') + ' ';
  };
  walker.WalkArguments(
      last,
      [&](const RecordWalker::Place& place) {
        WideString decoded;
        const bool closed = walker.TakeString(&decoded);
        add(place, "'" + ToUtf8(decoded) + "'");
        return closed;
      },
      [&](const RecordWalker::Place& place, std::uint32_t number) {
        add(place, "#" + std::to_string(number));
      });
  FileStream::InputStream& stream = *scanner.Stream();
  return met + "| " + std::string(stream.Cursor(), stream.WindowEnd());
}

}  // namespace

TEST(RecordWalker, NumbersAndNamesAreFound) {
  EXPECT_EQ("7:IFCWALL 9:IfcDoor 3:A1",
            Records("#7=IFCWALL('a',(#1,#2));\n#9 = IfcDoor ( );#3=A1"));
  EXPECT_EQ("1:IFCWALL", Records("/* #2=IFCDOOR(); */ #1/**/=\n_IFC_WALL();"));
}

TEST(RecordWalker, HeadsOfRecordsAreReadAlikeWhateverStandsBetweenThem) {
  EXPECT_EQ("1:IFCA 1234567:IFCB 12345678:IFCC 3:IFCD 4:IFCE 5:IFCF",
            Records("#1=IFCA();\r\n#1234567=IFCB();\n#12345678=IFCC();#3= IFCD();\n\n"
                    "#4=IFCE('a;\n#9=IFCX();');;\n#5=/**/IFCF();\n#0=IFCX();ENDSEC;"));
}

TEST(RecordWalker, ARecordWithoutANameHasAnEmptyOne) {
  EXPECT_EQ("1: 2: 3: 4: 5:", Records("#1=;#2='x';#3=(IFCA()IFCB(';'));#4=#5;#5=DATA;"));
}

TEST(RecordWalker, RecordsWithoutASensibleNumberArePassedOver) {
  EXPECT_EQ("4294967279:IFCB",
            Records("#0=IFCA();#=IFCA();#4294967280=IFCA();#99999999999999999999999=IFCA();"
                    "#1 IFCA();##2=IFCA();#4294967279=IFCB();"));
}

TEST(RecordWalker, ClosingLinesCountBetweenRecordsOnly) {
  EXPECT_EQ("1:IFCA (closed)", Records("#1=IFCA();ENDSEC;END-ISO-10303-21;"));
  EXPECT_EQ("1:IFCA", Records("#1=IFCA('END-ISO-10303-21;');/*END-ISO-10303-21;*/ENDSEC;"));
  EXPECT_EQ("", Records("END-ISO-10303-21"));
  EXPECT_EQ("2:IFCB (closed)", Records("END-ISO-10303-21;#2=IFCB();"));
}

TEST(RecordWalker, AnEndInsideOfAStringIsTold) {
  EXPECT_EQ("1:IFCA (in string)", Records("#1=IFCA('a);#2=IFCB();"));
  EXPECT_EQ(" (in string)", Records("'#1=IFCA();"));
  EXPECT_EQ("1:IFCA", Records("#1=IFCA('a'"));
}

// As a reader of tokens has them.
TEST(RecordWalker, RecordsInTextBetweenRecordsAreNone) {
  EXPECT_EQ("3:IFCC", Records("'#1=IFCA();' .#2=IFCB(); . #3=IFCC();"));
}

TEST(RecordWalker, ALookAheadIsGivenUp) {
  Scanner scanner(std::make_unique<test::MemoryInputStream>("; #1=IFCA();"), nullptr);
  scanner.PeekToken();
  RecordWalker walker(scanner);
  std::uint32_t number = 0;
  ASSERT_TRUE(walker.FindRecord(number));
  EXPECT_EQ("IFCA", walker.TakeClassName());
}

TEST(RecordWalker, StringsAndReferencesAreMetInTheirPlaces) {
  EXPECT_EQ("0'a' 1#7 2(#8) 2(#9) 3((#5)) 4'it's' | ;",
            Arguments("('a',#7,(#8,$,#9),((#5)),'it''s');", 9));
  EXPECT_EQ("0#0 | ;", Arguments("(#,/* #3 */1.5E2,IFCREAL(2.));", 9));
}

TEST(RecordWalker, TheWalkEndsBehindTheLastArgumentThatIsWanted) {
  EXPECT_EQ("0'a' | (#2,#3));", Arguments("('a',(#2,#3));", 0));
  EXPECT_EQ("0'a' 1(#2) 1(#3) | $);", Arguments("('a',(#2,#3),$);", 1));
}

TEST(RecordWalker, BrokenArgumentsEndTheWalk) {
  EXPECT_EQ("| ;", Arguments(";", 9));
  EXPECT_EQ("0#1 | ;", Arguments("(#1;", 9));
  EXPECT_EQ("0'a;' | ", Arguments("('a;", 9));
}

}  // namespace corvel
