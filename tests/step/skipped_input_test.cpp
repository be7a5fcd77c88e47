// What a reading passes over is told: of each kind the first place, and how many there are.
#include "step/reader/skipped_input.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "core/cancellation.h"
#include "step/reader/record_lines.h"
#include "step/streams/line_numbers.h"
#include "support/folders_in_memory.h"
#include "support/read_model.h"
#include "support/zip_bytes.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using test::ModelFile;
using test::Person;
using Model = test::ReadModel;
using Texts = std::vector<std::string>;

const std::string kText = "Text between records was left out. ";
const std::string kNoNumber = "A record without a number was left out. ";
const std::string kSurplus = "What stands behind the arguments of a record was left out. ";
const std::string kNoSemicolon =
    "A record has no \";\" at its end: what follows was left out up to the next one. ";
const std::string kRunOnNumber =
    "A number has no end: what follows was left out up to the next \",\" or \")\". ";
const std::string kRunOnString = "A string holds what looks like records. ";
const std::string kComment = "A comment holds what looks like records. ";
const std::string kCut =
    "The closing line END-ISO-10303-21; is missing: the file seems to be cut short. The reading "
    "ended in ";

class Skipped : public test::ReadTest {
 protected:
  // The reports of a file, all of which have to be for the log only.
  Texts Of(const std::string& bytes, const std::string& fileName = "model.ifc") {
    const test::RecordedReports fresh;
    test::ReadOptions options;
    options.fileName = fileName;
    Model model = Model::OfFile(bytes, options);
    EXPECT_TRUE(model.IsRead());
    records_ = model.Container().entities.Size();
    for (const test::Report& report : *reports_) {
      EXPECT_EQ(kReportLog, report.mode);
      EXPECT_EQ("", report.key);
    }
    return Messages();
  }
  Texts OfRecords(const std::string& records) { return Of(ModelFile(records)); }

  std::size_t records_ = 0;  // that were read
};

// --- Between records -----------------------------------------------------------------------------

TEST_F(Skipped, AFileInOrderHasNothingToTell) {
  EXPECT_EQ(Texts{}, OfRecords("  \t\r\n_#1=IFCPERSON();/* c\n# 1 */ ;;;\n" + Person(2)));
}

TEST_F(Skipped, TextBetweenRecordsIsToldWithTheRecordBeforeIt) {
  EXPECT_EQ((Texts{kText + "Places: 3, the first in line 11 behind #2.\n"}),
            OfRecords(Person(1) + Person(2) + "x y\nz;(" + Person(3) + ")" + Person(4)));
  EXPECT_EQ(4u, records_);
}

TEST_F(Skipped, RecordsInTextBetweenRecordsAreCounted) {
  EXPECT_EQ((Texts{kText + "Places: 1, the first in line 10 behind #1. Records in them: 3.\n"}),
            OfRecords(Person(1) + "'#2=IFCPERSON();\n#3=IFCPERSON();#4=IFCPERSON();';\n"));
  EXPECT_EQ(1u, records_);
  EXPECT_EQ((Texts{kText + "Places: 1, the first in line 9. Records in them: 1.\n"}),
            OfRecords("END\n#1=IFCPERSON();\n" + Person(2)));
  EXPECT_EQ((Texts{kText + "Places: 1, the first in line 9. Records in them: 1.\n"}),
            OfRecords(".\n#1=IFCCARTESIANPOINT((0.,1.));\n" + Person(2)));
}

TEST_F(Skipped, CommasBetweenRecordsAreText) {
  EXPECT_EQ((Texts{kText + "Places: 2, the first in line 9.\n"}),
            OfRecords("," + Person(1) + "/* c */ ,, " + Person(2)));
}

TEST_F(Skipped, ARecordThatHasLostItsNumberIsToldAsSuch) {
  EXPECT_EQ((Texts{kNoNumber + "Places: 3, the first in line 10 behind #1.\n"}),
            OfRecords(Person(1) + "2=IFCPERSON();\n=IFCPERSON($);=IFCPERSON('#');\n"));
}

TEST_F(Skipped, ARecordBehindAHeadWithoutItsDataWordIsTold) {
  std::string bytes = ModelFile(Person(1) + Person(2));
  bytes.erase(bytes.find("DATA;"), 5);
  EXPECT_EQ((Texts{kNoNumber + "Places: 1, the first in line 9.\n"}), Of(bytes));
  EXPECT_EQ(1u, records_);
}

TEST_F(Skipped, RecordsInAHeaderWithoutItsEndAreTold) {
  std::string bytes = ModelFile(Person(1) + Person(2));
  bytes.erase(bytes.find("ENDSEC;"), 7);
  EXPECT_EQ((Texts{"The HEADER section does not end before the records. Places: 1, the first in "
                   "line 9. Records in them: 2.\n"}),
            Of(bytes));
  EXPECT_EQ(0u, records_);
}

// --- Sections ------------------------------------------------------------------------------------

TEST_F(Skipped, FurtherDataSectionsAreNoDamage) {
  EXPECT_EQ(Texts{}, OfRecords(Person(1) + "ENDSEC;\nDATA;\n" + Person(2) +
                               "ENDSEC;\nDATA('n',('IFC4'));\n" + Person(3)));
  EXPECT_EQ(3u, records_);
}

TEST_F(Skipped, SectionsThatAreNotReadAreNamedOnce) {
  std::string bytes = ModelFile(Person(1));
  bytes.insert(bytes.find("DATA;"),
               "ANCHOR;\n<a>=#1;\n<b>='ENDSEC';\nENDSEC;\n"
               "REFERENCE;\n#7=<http://x/y#z>;\nENDSEC;\nREFERENCE; ENDSEC ;\n");
  bytes += "SIGNATURE\nMIIB/*=='\nENDSEC;\n";
  EXPECT_EQ((Texts{"The section ANCHOR in line 8 is not read.\n",
                   "The section REFERENCE in line 12 is not read.\n",
                   "The section SIGNATURE in line 20 is not read.\n"}),
            Of(bytes));
  EXPECT_EQ(1u, records_);
}

TEST_F(Skipped, TheWordOfASectionAmongRecordsIsText) {
  EXPECT_EQ((Texts{kText + "Places: 1, the first in line 10 behind #1.\n"}),
            OfRecords(Person(1) + "ANCHOR;\n" + Person(2)));
  EXPECT_EQ(2u, records_);
}

// --- In records ----------------------------------------------------------------------------------

TEST_F(Skipped, SurplusArgumentsAreToldWithTheirRecord) {
  EXPECT_EQ((Texts{kSurplus + "Places: 2, the first in line 10 at #2.\n"}),
            OfRecords(Person(1) + "#2=IFCPERSON($,$,$,$,$,$,$,$,'x');\n#3=IFCPERSON()$);\n"));
  EXPECT_EQ(3u, records_);
}

TEST_F(Skipped, BracketsBehindTheArgumentsAreNotTold) {
  EXPECT_EQ(Texts{}, OfRecords("#1=IFCPERSON())) );"));
}

TEST_F(Skipped, AMissingSemicolonIsToldWithTheRecordsBehindIt) {
  EXPECT_EQ(
      (Texts{kNoSemicolon + "Places: 2, the first in line 9 at #1. Records in them: 3.\n"}),
      OfRecords("#1=IFCPERSON()\n#2=IFCPERSON();\n#3=IFCPERSON()#4=IFCPERSON()#5=IFCPERSON();"));
  EXPECT_EQ(2u, records_);
  EXPECT_EQ((Texts{kNoSemicolon + "Places: 1, the first in line 9 at #1.\n"}),
            OfRecords("#1=IFCPERSON()"))
      << "the word ENDSEC is no argument";
}

TEST_F(Skipped, ANumberThatRunsOverTheEndOfItsRecordIsTold) {
  EXPECT_EQ((Texts{kRunOnNumber + "Places: 1, the first in line 10 at #2. Records in them: 1.\n"}),
            OfRecords("#1=IFCDIRECTION((1.,0.,0.));\n#2=IFCVECTOR(#1,1.5;\n#3=IFCVECTOR(#1);\n"));
  EXPECT_EQ(2u, records_);
}

TEST_F(Skipped, OddFormsOfNumbersAreNotTold) {
  EXPECT_EQ(Texts{}, OfRecords("#1=IFCCARTESIANPOINT((1.E+2 ,1.D3,-1.5e-3,1.x));"));
}

TEST_F(Skipped, RecordsInAStringAreTold) {
  EXPECT_EQ((Texts{kRunOnString + "Places: 2, the first in line 9 at #1. Records in them: 3.\n"}),
            OfRecords("#1=IFCPERSON('a,$);\n#2=IFCPERSON($);\n#3=IFCPERSON(',$);\n"
                      "#4=IFCPERSON('\\X2\\00E4',$);#5=IFCPERSON('\\X0\\');"));
  EXPECT_EQ(2u, records_);
}

TEST_F(Skipped, AStringMayBeginLikeARecord) {
  EXPECT_EQ(Texts{}, OfRecords("#1=IFCPERSON('#12=IFCWALL()','No. #12','a#b=c');"));
}

// --- Comments ------------------------------------------------------------------------------------

TEST_F(Skipped, ACommentIsToldWhenALineOfItBeginsLikeARecord) {
  EXPECT_EQ((Texts{kComment + "Places: 2, the first in line 10 at #1. Records in them: 3.\n"}),
            OfRecords(Person(1) + "/* a\n  #2 = IFCPERSON();\n#3=IFCPERSON();*/\n" + Person(4) +
                      "#5=/*\n#6=*/IFCPERSON();"));
  EXPECT_EQ(3u, records_);
}

TEST_F(Skipped, OtherCommentsAreNoDamage) {
  EXPECT_EQ(Texts{}, OfRecords("/* see #2=IFCPERSON() */" + Person(1) +
                               "/*#2=IFCPERSON(); #3=IFCPERSON();*/" +
                               "/*\n#a=1\n#=1\n12=\n x #3=IFCPERSON();\n# 4=IFCPERSON();*/"));
}

TEST_F(Skipped, ACommentThatAnotherBeginsInIsToldWhereverARecordStandsInIt) {
  EXPECT_EQ((Texts{kComment + "Places: 1, the first in line 10 at #1. Records in them: 1.\n"}),
            OfRecords(Person(1) + "/*#2=IFCPERSON(); /* a remark */\n" + Person(3)));
}

TEST_F(Skipped, ACommentWithoutEndEndsTheInput) {
  EXPECT_EQ((Texts{"A comment has no end: all that follows was left out. Places: 1, the first in "
                   "line 10 at #1. Records in them: 1.\n",
                   kCut + "line 14.\n"}),
            OfRecords(Person(1) + "/* c\n" + Person(2)));
  EXPECT_EQ(1u, records_);
}

// --- The closing line ----------------------------------------------------------------------------

TEST_F(Skipped, AByteOf255OutsideOfStringsEndsTheInput) {
  EXPECT_EQ((Texts{kCut + "line 11.\n"}), OfRecords(Person(1) + "\n\xFF" + Person(2)));
  EXPECT_EQ(1u, records_);
  EXPECT_EQ(Texts{}, OfRecords("/*\xFF*/#1=IFCPERSON('\xFF');"));
}

TEST_F(Skipped, TheClosingLineIsMetOutsideOfStringsAndCommentsOnly) {
  const std::string bytes = ModelFile(Person(1));
  const std::string open = bytes.substr(0, bytes.find("END-ISO"));
  EXPECT_EQ(Texts{}, Of(open + "END-ISO-10303-21;"));
  EXPECT_EQ(Texts{}, Of(open + "END-ISO-10303-21 /* c */ ;" + std::string(1 << 20, ' ')));
  EXPECT_EQ((Texts{kCut + "line 11.\n"}), Of(open));
  EXPECT_EQ((Texts{kCut + "line 11.\n"}), Of(open + "END-ISO-10303-21"));
  EXPECT_EQ((Texts{kCut + "line 11.\n"}), Of(open + "/*END-ISO-10303-21;*/"));
  EXPECT_EQ((Texts{kText + "Places: 1, the first in line 11 behind #1.\n", kCut + "line 12.\n"}),
            Of(open + "'END-ISO-10303-21;'\n"));
}

TEST_F(Skipped, WhatPadsAFileBehindItsClosingLineIsNoText) {
  EXPECT_EQ(Texts{}, Of(ModelFile(Person(1)) + std::string(1000, '\0') + "\x1A"));
  EXPECT_EQ((Texts{kText + "Places: 1, the first in line 12 behind #1.\n"}),
            Of(ModelFile(Person(1)) + "end"));
}

TEST_F(Skipped, PlacesInArchivesAreTold) {
  const std::string bytes = ModelFile(Person(1) + "x;\n");
  EXPECT_EQ((Texts{kText + "Places: 1, the first in line 10 behind #1.\n", kCut + "line 11.\n"}),
            Of(test::ZipOf({{"m.ifc", bytes.substr(0, bytes.rfind("ENDSEC"))}}), "model.ifczip"));
}

TEST_F(Skipped, AReadingThatFailsTellsWhatItPassedOverBefore) {
  Model model("#1=IFCPERSON()\n#2=IFCPERSON();\n#3=IFCNOTHING();");
  EXPECT_FALSE(model.IsRead());
  EXPECT_EQ((Texts{"Entity named: IFCNOTHING not found.",
                   "Unable to read entity, marker #3. Parsing will be terminate.\n",
                   kNoSemicolon + "Places: 1, the first in line 9 at #1. Records in them: 1.\n"}),
            Messages());
}

TEST_F(Skipped, ACancelledReadingTellsNothing) {
  progress_.CancelAt(0);
  Model model("x;" + Person(1));
  EXPECT_FALSE(model.IsRead());
  EXPECT_EQ(Texts{}, Messages());
}

// --- No record is lost without a word
// --------------------------------------------------------------

class LostRecords : public Skipped {
 protected:
  static std::string Records(char separator) {
    std::string text =
        "#1=IFCPOLYLINE((#2,#3));\n#2=IFCCARTESIANPOINT((0.,1.5E+1));/* c */\n"
        "#3=IFCCARTESIANPOINT((1.,-2));\n#4=IFCWALL('it''s\\X2\\00E4\\X0\\',$,'n; #9',$,$,#5,$,$,"
        ".SHEAR.);\n#5=IFCLOCALPLACEMENT($,#7);\n/* d\n */#6=IFCPROPERTYSINGLEVALUE('p',$,"
        "IFCLABEL('x'),$);\n#7=IFCAXIS2PLACEMENT3D(#2,$,$);\n#8=IFCVECTOR(#9,1.5);\n"
        "#9=IFCDIRECTION((0.,1.));\n#10=IFCPERSON(' ',$,$,$,$,$,$,$);\n";
    for (char& c : text) c = c == '\n' ? separator : c;
    return text;
  }
  const test::FoldersInMemory foldersInMemory_;

  // Either all ten records are there, or something has been said.
  void Check(const std::string& bytes, const std::string& what) {
    const test::RecordedReports fresh;
    platform_.boxes.clear();
    Cancellation::OfProcess().mode = CancelMode::kAsk;
    IFC::MainContainer::ResetUniqueMarker();
    Model model = Model::OfFile(bytes);
    if (!model.IsRead()) {
      ASSERT_FALSE(reports_->empty()) << what;
      return;
    }
    // Their numbers may be spoilt.
    const std::size_t count = model.Container().entities.Size();
    ASSERT_TRUE(count >= 10 || !reports_->empty()) << 10 - count << " lost: " << what;
  }
};

TEST_F(LostRecords, AreToldWhateverIsInsertedAnywhere) {
  for (const char separator : {'\n', ' '}) {
    const std::string bytes = ModelFile(Records(separator));
    for (std::size_t at = bytes.find("FILE_SCHEMA"); at < bytes.size(); ++at) {
      for (const std::string_view stray : {"\xFF", "/*", "'", ";", ".", "/"}) {
        std::string spoilt = bytes;
        spoilt.insert(at, stray);
        ASSERT_NO_FATAL_FAILURE(Check(spoilt, std::string(stray) + " at " + std::to_string(at)));
      }
    }
  }
}

TEST_F(LostRecords, AreToldWhateverByteIsMissing) {
  for (const char separator : {'\n', ' '}) {
    const std::string bytes = ModelFile(Records(separator));
    for (std::size_t at = bytes.find("FILE_SCHEMA"); at < bytes.size(); ++at) {
      std::string spoilt = bytes;
      spoilt.erase(at, 1);
      ASSERT_NO_FATAL_FAILURE(Check(spoilt, "none at " + std::to_string(at)));
    }
  }
}

TEST_F(LostRecords, AreToldOfFilesThatAreSpoiltAtRandom) {
  std::mt19937 random(5);  // NOLINT: the same files every time
  const std::string signs = "'(),;#.\\*/$-=0_E \xFF\n\0"s;
  const std::string bytes = ModelFile(Records('\n'));
  const std::size_t start = bytes.find("DATA;");
  for (int round = 0; round < 1500; ++round) {
    std::string spoilt = bytes;
    for (std::size_t changes = 1 + random() % 3; changes > 0; --changes) {
      const std::size_t at = start + random() % (spoilt.size() - start);
      const std::size_t way = random() % 3;
      const char sign = signs[random() % signs.size()];
      if (way == 0) spoilt[at] = sign;
      if (way == 1) spoilt.insert(at, 1, sign);
      if (way == 2) spoilt.erase(at, 1);
    }
    ASSERT_NO_FATAL_FAILURE(Check(spoilt, spoilt.substr(start)));
  }
}

}  // namespace

// --- The parts -----------------------------------------------------------------------------------

TEST(RecordLines, BeginWithANumberAndAnEqualSign) {
  for (const char* const text : {"#1=", " \t#12 =", "x\n#1=", "x\r#1=", "x;\n _#1\t =X"}) {
    EXPECT_EQ(1u, RecordsIn(text)) << text;
  }
  for (const char* const text : {"", "#1", "#=", "# 1=", "#1x=", "x#1=", "1=", "##1=", "#1\n="}) {
    EXPECT_EQ(0u, RecordsIn(text)) << text;
  }
}

TEST(RecordLines, StandWhereTheTextLetsThemStand) {
  const auto countIn = [](RecordLines::Text text) {
    RecordLines lines(text);
    lines.Take("#1=A();#2=B();\n#3=C(#4=);");
    return lines.Count();
  };
  EXPECT_EQ(3u, countIn(RecordLines::Text::kBetweenRecords));
  EXPECT_EQ(2u, countIn(RecordLines::Text::kInsideRecord)) << "not at its start";
  EXPECT_EQ(1u, countIn(RecordLines::Text::kComment)) << "whole lines only";
}

TEST(LineNumbers, AreThoseThatAnEditorShows) {
  const test::TemporaryFolder folder;
  const WideString path = folder.Write("m.ifc", "a\n'b\n'\n\n/*\n*/");
  EXPECT_EQ((std::vector<std::uint64_t>{6, 1, 1, 2, 6, 4}),
            FileStream::LinesOf(path, {99, 0, 1, 2, 11, 7}));
  const std::string many(3 << 20, '\n');
  EXPECT_EQ((std::vector<std::uint64_t>{(3 << 20) + 1u, (1 << 20) + 1u}),
            FileStream::LinesOf(folder.Write("n.ifc", many), {3 << 20, 1 << 20}));
}

TEST(LineNumbers, AreReplacedByBytesOfAFileThatIsGone) {
  const test::TemporaryFolder folder;
  EXPECT_EQ((std::vector<std::uint64_t>{0, 0}),
            FileStream::LinesOf(folder.Path("none.ifc"), {1, 2}));
  EXPECT_EQ(u"byte 7", PlaceInFile(folder.Path("none.ifc"), 7));
  EXPECT_EQ(u"line 2", PlaceInFile(folder.Write("m.ifc", "\nx"), 1));
}

}  // namespace corvel
