// Files whose syntax is spoilt: read past record by record, and kept where it can be kept.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "support/read_model.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using test::ModelFile;
using Texts = std::vector<std::string>;

const std::string kPoint = "#1=IFCCARTESIANPOINT((0.,0.));\n";
const std::string kPlacement = "#2=IFCAXIS2PLACEMENT2D(#1,$);\n";

class SpoiltSyntax : public test::ReadTest {
 protected:
  // The lines of the model behind all bytes of a file; what was told of it is in `told_`. They are
  // read again to the same, and then without a word on syntax.
  std::string LinesOf(const std::string& bytes) {
    const std::string lines = ReadOnce(bytes);
    const Texts told = told_;
    EXPECT_EQ(lines, ReadOnce(ModelFile(lines))) << "a second time";
    told_ = told;
    return lines;
  }
  std::string Lines(std::string_view records) { return LinesOf(ModelFile(records)); }
  // Of one record behind the point and the placement.
  void ExpectLine(const std::string& line, const std::string& record, const Texts& told) {
    EXPECT_EQ(kPoint + kPlacement + line, Lines(kPoint + kPlacement + record)) << record;
    EXPECT_EQ(told, told_) << record;
  }

  Texts told_;

 private:
  std::string ReadOnce(const std::string& bytes) {
    IFC::MainContainer::ResetUniqueMarker();
    const test::RecordedReports fresh;
    test::ReadOptions options;
    options.tolerant = true;
    test::ReadModel model = test::ReadModel::OfFile(bytes, options);
    EXPECT_TRUE(model.IsRead()) << bytes;
    told_.clear();
    for (const test::Report& report : *reports_) {
      EXPECT_EQ(kReportLog, report.mode) << Narrow(report.message);
    }
    for (const WideString& remark : model.Document().Remarks()) told_.push_back(ToUtf8(remark));
    EXPECT_TRUE(platform_.boxes.empty());
    return model.IsRead() ? model.Lines() : "";
  }
};

TEST_F(SpoiltSyntax, AGoodModelIsReadWithoutAWord) {
  EXPECT_EQ(kPoint + kPlacement, Lines(kPoint + "/* a 'note' */\n" + kPlacement));
  EXPECT_EQ(Texts{}, told_);
}

TEST_F(SpoiltSyntax, CommentsBetweenTheWordsOfAGoodRecordChangeNothing) {
  const Texts words = {"#2", "=", "IFCAXIS2PLACEMENT2D", "(", "#1", ",", "$", ")", ";"};
  for (const std::string comment : {"/* c */", " /* it's; #9=( */ ", "\n/**//* = */\n"}) {
    std::string everywhere;
    for (std::size_t gap = 0; gap < words.size(); ++gap) {
      std::string record;
      for (std::size_t i = 0; i < words.size(); ++i) record += (i == gap ? comment : "") + words[i];
      everywhere += comment + words[gap];
      EXPECT_EQ(kPoint + kPlacement, Lines(kPoint + record)) << record;
      EXPECT_EQ(Texts{}, told_) << record;
    }
    EXPECT_EQ(kPoint + kPlacement, Lines(kPoint + everywhere));
    EXPECT_EQ(Texts{}, told_);
  }
}

TEST_F(SpoiltSyntax, AMissingSemicolonTakesNoOtherRecordAlong) {
  ExpectLine(
      "#3=IFCLABEL('x');\n#4=IFCLABEL('y');\n", "#3=IFCLABEL('x')\n#4=IFCLABEL('y');",
      {"A record without its \";\", ended: IFCLABEL. Records: 1, the first: #3 in line 11."});
}

TEST_F(SpoiltSyntax, AnOpenStringEndsWithItsLine) {
  ExpectLine("#3=IFCLABEL('x');\n#4=IFCLABEL('y');\n", "#3=IFCLABEL('x);\n#4=IFCLABEL('y');",
             {"A string without its end, closed at the end of its line: IFCLABEL. Records: 1, the "
              "first: #3 in line 11."});
}

TEST_F(SpoiltSyntax, AnOpenBracketIsClosed) {
  ExpectLine(
      "#3=IFCPOLYLINE((#1,#1));\n#4=IFCLABEL('y');\n", "#3=IFCPOLYLINE((#1,#1;\n#4=IFCLABEL('y');",
      {"A record without its closing bracket, closed: IFCPOLYLINE. Records: 1, the first: #3 "
       "in line 11."});
}

TEST_F(SpoiltSyntax, BytesBetweenRecordsAreReadPastWithTheirPlace) {
  ExpectLine("#3=IFCLABEL('x');\n", "it's no record\n#3=IFCLABEL('x');",
             {"Text between records was left out. Places: 1, the first in line 11 behind #2."});
  ExpectLine("#3=IFCLABEL('x');\n", "\xFF\xFE\n#3=IFCLABEL('x');",
             {"Text between records was left out. Places: 1, the first in line 11 behind #2."});
}

TEST_F(SpoiltSyntax, AnOpenCommentTakesNoRecordAlong) {
  ExpectLine("#3=IFCLABEL('x');\n#4=IFCLABEL('y');\n",
             "/* three\n#3=IFCLABEL('x');\n/* four */\n#4=IFCLABEL('y');",
             {"Text between records was left out. Places: 1, the first in line 11 behind #2."});
  ExpectLine("#3=IFCLABEL('x');\n", "#3=IFCLABEL(/*'x');",
             {"A comment without its end, left out up to its line's end: IFCLABEL. Records: 1, the "
              "first: #3 in line 11."});
}

TEST_F(SpoiltSyntax, AComplexInstanceIsCarried) {
  ExpectLine("#3=(IFCA(#2)IFCB('x',$));\n#4=IFCPOLYLINE((#1));\n",
             "#3=(IFCA(#2)IFCB('x',$));\n#4=IFCPOLYLINE((#1));",
             {"Complex instance, carried as it stands. Records: 1, the first: #3 in line 11."});
}

TEST_F(SpoiltSyntax, TheSecondOfANumberGetsAFreeOneAndReferencesGoToTheFirst) {
  ExpectLine(
      "#7=IFCPOLYLINE((#1));\n#8=IFCCARTESIANPOINT((1.,1.));\n#9=IFCAXIS2PLACEMENT2D(#1,$);\n",
      "#1=IFCCARTESIANPOINT((1.,1.));\n#7=IFCPOLYLINE((#1));\n"
      "#2=IFCAXIS2PLACEMENT2D(#1,$);",
      {"A number that an earlier record has: this one has got a new number, references go "
       "to the first: IFCAXIS2PLACEMENT2D. Records: 1, the first: #9 in line 13 (was #2).",
       "A number that an earlier record has: this one has got a new number, references go "
       "to the first: IFCCARTESIANPOINT. Records: 1, the first: #8 in line 11 (was #1)."});
}

TEST_F(SpoiltSyntax, ARecordWithoutANumberGetsOne) {
  ExpectLine("#5=IFCPOLYLINE((#1));\n#6=IFCLABEL('a');\n#7=IFCLABEL('b');\n#8=IFCLABEL('c');\n",
             "=IFCLABEL('a');\n#0=IFCLABEL('b');\n#99999999999=IFCLABEL('c');\n"
             "#5=IFCPOLYLINE((#1));",
             {"A record without a number, which has got one: IFCLABEL. Records: 3, the first: #6 "
              "in line 11, #7 in line 12, #8 in line 13."});
}

TEST_F(SpoiltSyntax, AFileThatEndsWithinARecordIsKeptUpToThere) {
  const std::string whole = ModelFile(kPoint + "#2=IFCLABEL('x');");
  const std::string cut = whole.substr(0, whole.find("'x'") + 3);
  EXPECT_EQ(kPoint + "#2=IFCLABEL('x');\n", LinesOf(cut));
  ASSERT_EQ(2u, told_.size());
  EXPECT_EQ(0u, told_[0].find("The closing line END-ISO-10303-21; is missing"));
  EXPECT_EQ(
      "The file ends inside of the record, which was closed: IFCLABEL. Records: 1, the first: "
      "#2 in line 10.",
      told_[1]);
}

TEST_F(SpoiltSyntax, AClassInSmallLettersIsTheClass) {
  ExpectLine("#3=IFCLABEL('x');\n", "#3=IfcLabel('x');", {});
}

TEST_F(SpoiltSyntax, ARecordThatFitsOnceItIsMendedIsRead) {
  EXPECT_EQ("#3=IFCLABEL('c');\n", LinesOf("ISO-10303-21;HEADER;FILE_SCHEMA(('IFC4'));ENDSEC;DATA;"
                                           "\n#3=IFCLABEL('c',\nENDSEC;\nEND-ISO-10303-21;\n"));
}

TEST_F(SpoiltSyntax, AnOpenCommentAtTheEndOpensNoOther) {
  EXPECT_EQ("#1=IFCLABEL('first');\n#2=IFCA(/*\n#9=IFCLABEL('x');\n*/$,#3,7);\n#3=IFCB();\n",
            Lines("#1=IFCLABEL('first');\n#2=IFCA(/*\n#9=IFCLABEL('x');\n*/$,#3,7);\n"
                  "#3=IFCB(/*);"));
}

TEST_F(SpoiltSyntax, ForwardReferencesOfMendedRecordsAreBound) {
  ExpectLine(
      "#3=IFCPOLYLINE((#4,#1));\n#4=IFCCARTESIANPOINT((2.,2.));\n",
      "#3=IFCPOLYLINE((#4,#1)\n#4=IFCCARTESIANPOINT((2.,2.));",
      {"A record without its closing bracket, closed: IFCPOLYLINE. Records: 1, the first: #3 "
       "in line 11.",
       "A record without its \";\", ended: IFCPOLYLINE. Records: 1, the first: #3 in line "
       "11."});
}

}  // namespace
}  // namespace corvel
