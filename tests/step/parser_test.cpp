#include "step/reader/parser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "schema/interfaces/interfaces.h"
#include "support/graph.h"
#include "support/read_model.h"
#include "support/test_factories.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using test::ModelFile;
using Model = test::ReadModel;

class ParserPasses : public test::ReadTest {
 protected:
  // A model must be read without a word.
  void ExpectRead(Model& model) {
    EXPECT_TRUE(model.IsRead());
    EXPECT_EQ(ParserState::kParsed, model.GetParser().state);
    EXPECT_EQ(std::vector<std::string>{}, Messages());
    EXPECT_TRUE(platform_.boxes.empty());
  }
  // Is read without a word, and has these lines then.
  void ExpectLines(const std::string& lines, const std::string& records) {
    Model model(records);
    ExpectRead(model);
    EXPECT_EQ(lines, model.Lines());
  }
};

TEST_F(ParserPasses, RecordsInDependencyOrderNeedOnePass) {
  Model model(
      "#1=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#2=IFCAXIS2PLACEMENT3D(#1,$,$);\n"
      "#3=IFCLOCALPLACEMENT($,#2);");
  ExpectRead(model);
  EXPECT_EQ("", model.Folder().Read("model_TEMP.ifc"));
  EXPECT_EQ("#3=IFCLOCALPLACEMENT($,#2);", model.Line(3));
}

TEST_F(ParserPasses, ForwardReferencesAreResolvedInTheSecondPass) {
  Model model(
      "#3=IFCLOCALPLACEMENT($,#2);\n"
      "#2=IFCAXIS2PLACEMENT3D(#1,$,$);\n"
      "#1=IFCCARTESIANPOINT((0.,0.,0.));");
  ExpectRead(model);
  EXPECT_EQ("\n#3=IFCLOCALPLACEMENT($,#2);\n#2=IFCAXIS2PLACEMENT3D(#1,$,$);",
            model.Folder().Read("model_TEMP.ifc"));
  EXPECT_EQ(
      "#1=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#2=IFCAXIS2PLACEMENT3D(#1,$,$);\n"
      "#3=IFCLOCALPLACEMENT($,#2);\n",
      model.Lines());
}

TEST_F(ParserPasses, AForwardReferenceInAnOptionalAttributeIsPresentInTheEnd) {
  const std::string records =
      "#1=IFCLOCALPLACEMENT(#2,#3);\n#2=IFCLOCALPLACEMENT($,#3);\n"
      "#3=IFCAXIS2PLACEMENT3D(#4,$,$);\n#4=IFCCARTESIANPOINT((0.,0.));\n";
  ExpectLines(records, records);
}

TEST_F(ParserPasses, ARecordThatRefersToItselfIsCompletedInTheSecondPass) {
  Model model("#1=IFCLOCALPLACEMENT(#1,$);");
  ExpectRead(model);
  EXPECT_EQ("\n#1=IFCLOCALPLACEMENT(#1,$);", model.Folder().Read("model_TEMP.ifc"));
  EXPECT_EQ("#1=IFCLOCALPLACEMENT(#1,*);", model.Line(1));
}

TEST_F(ParserPasses, AListWithAForwardReferenceIsReplacedByTheFullOne) {
  Model model(
      "#1=IFCCARTESIANPOINT((1.,0.));\n#2=IFCPOLYLINE((#1,#3,#1,#4));\n"
      "#3=IFCCARTESIANPOINT((3.,0.));\n#4=IFCCARTESIANPOINT((4.,0.));");
  ExpectRead(model);
  EXPECT_EQ("\n#2=IFCPOLYLINE((#1,#3,#1,#4));", model.Folder().Read("model_TEMP.ifc"));
  EXPECT_EQ("#2=IFCPOLYLINE((#1,#3,#1,#4));", model.Line(2));
}

TEST_F(ParserPasses, ListsOfListsAreReplacedToo) {
  const std::string records =
      "#1=IFCBSPLINESURFACEWITHKNOTS(1,1,((#2,#3),(#4,#5)),.PLANE_SURF.,.F.,.F.,.F.,(2,2),(2,2),"
      "(0.,1.),(0.,1.),.UNSPECIFIED.);\n"
      "#2=IFCCARTESIANPOINT((2.));\n#3=IFCCARTESIANPOINT((3.));\n"
      "#4=IFCCARTESIANPOINT((4.));\n#5=IFCCARTESIANPOINT((5.));\n";
  ExpectLines(records, records);
}

TEST_F(ParserPasses, ADanglingReferenceIsLostWithoutAWord) {
  ExpectLines(
      "#1=IFCLOCALPLACEMENT($,*);\n#2=IFCPOLYLINE((#3));\n#3=IFCCARTESIANPOINT((0.));\n",
      "#1=IFCLOCALPLACEMENT(#8,#9);\n#2=IFCPOLYLINE((#9,#3));\n#3=IFCCARTESIANPOINT((0.));\n");
}

TEST_F(ParserPasses, AReferenceToAnotherClassIsLostWithoutAWord) {
  ExpectLines(
      "#1=IFCCARTESIANPOINT((0.));\n#2=IFCLOCALPLACEMENT($,*);\n#3=IFCPOLYLINE((#1));\n",
      "#1=IFCCARTESIANPOINT((0.));\n#2=IFCLOCALPLACEMENT(#1,#1);\n#3=IFCPOLYLINE((#2,#1));\n");
}

TEST_F(ParserPasses, AForwardReferenceInATypedValueCounts) {
  const std::string records =
      "#1=IFCRELDEFINESBYPROPERTIES('g',$,$,$,(),IFCPROPERTYSETDEFINITIONSET((#2)));\n"
      "#2=IFCPROPERTYSET('h',$,$,$,());\n";
  ExpectLines(records, records);
}

TEST_F(ParserPasses, PlainValuesAreTheSameAfterTheSecondPass) {
  const std::string records =
      "#1=IFCWALL('g',#9,'name','a description',$,#8,$,'tag',.SHEAR.);\n"
      "#8=IFCLOCALPLACEMENT($,*);\n#9=IFCOWNERHISTORY(*,*,$,.ADDED.,$,$,$,0);\n";
  ExpectLines(records, records);
}

TEST_F(ParserPasses, MoreForwardRecordsThanAnyBufferHoldsAreResolved) {
  constexpr unsigned kCount = 100'000;
  const std::string padding(80, 'd');
  std::string records;
  std::string expected;
  for (unsigned number = 1; number <= kCount; ++number) {
    const std::string record =
        "#" + std::to_string(number) + "=IFCLOCALPLACEMENT(#" + std::to_string(number + 1);
    records += "\n" + record + ",$)/*" + padding + "*/;";
    expected += record + ",*);\n";
  }
  ASSERT_GT(records.size(), std::size_t{0xA00000} + 1000);
  Model model(records.substr(1) + "\n#100001=IFCLOCALPLACEMENT($,$);");
  ExpectRead(model);
  EXPECT_TRUE(records == model.Folder().Read("model_TEMP.ifc"));
  EXPECT_TRUE(expected + "#100001=IFCLOCALPLACEMENT($,*);\n" == model.Lines());
}

// Notes, at each reading, on which line the scanner is, and is read again.
class NotingTheLine final : public test::GraphNode {
 public:
  static std::vector<std::uint32_t>& Lines() {
    static std::vector<std::uint32_t> lines;
    return lines;
  }
  const char16_t* getClassName() const override { return u"NotingTheLine"; }
  void read(Parser& parser) override {
    Lines().push_back(parser.scanner->Line());
    parser.forwardReference = true;
  }
};

TEST_F(ParserPasses, TheSecondPassCountsTheLinesOfTheTemporaryFile) {
  const test::TestFactories factories{{"LINE", test::Create<NotingTheLine>}};
  NotingTheLine::Lines().clear();
  test::TemporaryFolder folder;
  Parser parser(false, test::RecordedReports::Reporter, nullptr);
  parser.factories = &factories.Table();
  const std::string head = ModelFile("");
  const auto linesOfHead = std::count(head.begin(), head.begin() + head.find("DATA;"), '\n');
  const auto first = static_cast<std::uint32_t>(linesOfHead) + 2;
  EXPECT_TRUE(parser.ParseFile(folder.Write("a.ifc", ModelFile("#1=LINE();\n\n#2=LINE();")), 1));
  EXPECT_EQ((std::vector<std::uint32_t>{first, first + 2, 2, 4}), NotingTheLine::Lines())
      << "each record is saved with the line ends before it";
}

// --- The form of the file ------------------------------------------------------------------------

constexpr const char* kThree =
    "#1=IFCPERSON('a',$,$,$,$,$,$,$);\n#2=IFCPERSON('b',$,$,$,$,$,$,$);\n"
    "#3=IFCPERSON('c',$,$,$,$,$,$,$);\n";

using ParserForms = ParserPasses;

std::string SurplusIn(const std::string& line, const std::string& number,
                      const std::string& places = "1") {
  return "What stands behind the arguments of a record was left out. Places: " + places +
         ", the first in line " + line + " at #" + number + ".\n";
}

TEST_F(ParserForms, SeveralRecordsMayStandOnALine) {
  ExpectLines(kThree,
              "#1=IFCPERSON('a',$,$,$,$,$,$,$);#2=IFCPERSON('b',$,$,$,$,$,$,$);"
              "#3=IFCPERSON('c',$,$,$,$,$,$,$);");
}

TEST_F(ParserForms, ARecordMayRunOverManyLines) {
  ExpectLines(kThree,
              "\n\n#1\n=\nIFCPERSON\n(\n'a'\n,\n$\n,$,$,$,\n$,$,$\n)\n;\n"
              "  #2 = IFCPERSON ( 'b' , $ , $ , $ , $ , $ , $ , $ ) ;\t"
              "#3=/* a\n comment */IFC_PERSON('c',$,$,/*;*/$,$,$,$,$);");
}

TEST_F(ParserForms, LineEndsMayBeThoseOfAnySystem) {
  for (const char* const lineEnd : {"\r", "\r\n"}) {
    ExpectLines(kThree, test::WithLineEnds(kThree, lineEnd));
  }
}

TEST_F(ParserForms, NumbersMayComeInAnyOrder) {
  ExpectLines(kThree,
              "#3=IFCPERSON('c',$,$,$,$,$,$,$);#1=IFCPERSON('a',$,$,$,$,$,$,$);"
              "#2=IFCPERSON('b',$,$,$,$,$,$,$);");
}

TEST_F(ParserForms, WhatStandsBetweenRecordsIsPassedOver) {
  Model model(
      "garbage 1.5, .X. 'string' ) ( $;#1=IFCPERSON('a',$,$,$,$,$,$,$);&;\n"
      "ENDSEC;\nDATA;\n#2=IFCPERSON('b',$,$,$,$,$,$,$);\n;;\n"
      "#3=IFCPERSON('c',$,$,$,$,$,$,$);");
  EXPECT_EQ(kThree, model.Lines());
  EXPECT_EQ((std::vector<std::string>{
                "Text between records was left out. Places: 2, the first in line 9.\n"}),
            Messages());
}

TEST_F(ParserForms, AFileMayEndWithItsLastRecord) {
  std::string bytes = ModelFile(kThree);
  bytes.resize(bytes.rfind("$);") + 3);
  Model model = Model::OfFile(bytes);
  EXPECT_EQ(kThree, model.Lines());
  EXPECT_EQ((std::vector<std::string>{"The closing line END-ISO-10303-21; is missing: the file "
                                      "seems to be cut short. The reading ended in line 11.\n"}),
            Messages());
}

TEST_F(ParserForms, AFileWithoutRecordsIsAnEmptyModel) { ExpectLines("", ""); }

TEST_F(ParserForms, TheLargestNumberIsANumberLikeAnyOther) {
  ExpectLines(
      "#7=IFCCARTESIANPOINT((2.));\n#4294967278=IFCCARTESIANPOINT((1.));\n"
      "#4294967279=IFCPOLYLINE((#7,#4294967278));\n",
      "#4294967279=IFCPOLYLINE((#7,#4294967278));#4294967278=IFCCARTESIANPOINT((1.));"
      "#7=IFCCARTESIANPOINT((2.));");
}

TEST_F(ParserForms, AStringOfAMebibyteComesBack) {
  std::string text;
  for (int i = 0; i < 1 << 17; ++i) text += "12345\xE4''";
  Model model("#1=IFCPERSON('" + text + "',$,$,$,$,$,$,$);");
  ExpectRead(model);
  EXPECT_TRUE("#1=IFCPERSON('" + text + "',$,$,$,$,$,$,$);" == model.Line(1));
}

TEST_F(ParserForms, MissingArgumentsAreAbsentAndSurplusOnesAreDropped) {
  Model model(
      "#1=IFCPERSON('a');\n#2=IFCPERSON('b',$,$,$,$,$,$,$,'i',#3,(4,(5)),IFCLABEL('x'));\n"
      "#3=IFCPERSON();");
  EXPECT_EQ(
      "#1=IFCPERSON('a',$,$,$,$,$,$,$);\n#2=IFCPERSON('b',$,$,$,$,$,$,$);\n"
      "#3=IFCPERSON($,$,$,$,$,$,$,$);\n",
      model.Lines());
  EXPECT_EQ((std::vector<std::string>{SurplusIn("10", "2")}), Messages());
}

TEST_F(ParserForms, SurplusArgumentsDoNotMakeTheirRecordAForwardOne) {
  Model model("#1=IFCPERSON('a',$,$,$,$,$,$,$,#9);\n#9=IFCPERSON();");
  EXPECT_EQ((std::vector<std::string>{SurplusIn("9", "1")}), Messages());
  EXPECT_EQ("", model.Folder().Read("model_TEMP.ifc"));
}

TEST_F(ParserForms, SurplusArgumentsAreDroppedInTheSecondPassTooAndToldOnce) {
  Model model(
      "#1=IFCLOCALPLACEMENT($,#3,#2,'x');\n#2=IFCLOCALPLACEMENT($,#3,(#1));\n"
      "#3=IFCAXIS2PLACEMENT3D($,$,$);");
  EXPECT_EQ(
      "#1=IFCLOCALPLACEMENT($,#3);\n#2=IFCLOCALPLACEMENT($,#3);\n"
      "#3=IFCAXIS2PLACEMENT3D(*,$,$);\n",
      model.Lines());
  EXPECT_EQ((std::vector<std::string>{SurplusIn("9", "1", "2")}), Messages());
}

TEST_F(ParserForms, ARecordWithoutBracketsDoesNotSwallowTheNextOne) {
  AnswerNo(100);
  Model model("#1=IFCCARTESIANPOINT;\n#2=IFCPERSON('b',$,$,$,$,$,$,$);");
  EXPECT_TRUE(model.IsRead());
  EXPECT_EQ("#1=IFCCARTESIANPOINT(());\n#2=IFCPERSON('b',$,$,$,$,$,$,$);\n", model.Lines());
  EXPECT_EQ((std::vector<std::string>{"Expected: OpenBracketToken. Got: SemicolonToken.\n"}),
            Messages());
}

TEST_F(ParserForms, NumberZeroIsRefusedAsOneThatIsTooLarge) {
  for (const char* const number : {"#0", "#000", "/* c */#0", "#4294967280"}) {
    const test::RecordedReports fresh;
    Model model("#5=IFCPERSON('a',$,$,$,$,$,$,$);"s + number + "=IFCPERSON('z',$,$,$,$,$,$,$);");
    EXPECT_FALSE(model.IsRead());
    EXPECT_EQ(ParserState::kNotFinished, model.GetParser().state);
    EXPECT_EQ((std::vector<test::Report>{{"", u"stoul argument out of range", kReportShow}}),
              *reports_)
        << number;
    EXPECT_TRUE(platform_.boxes.empty());
  }
}

TEST_F(ParserForms, AReferenceToNumberZeroIsLostWithoutAWord) {
  ExpectLines("#1=IFCLOCALPLACEMENT($,*);\n", "#1=IFCLOCALPLACEMENT(#0,#0);");
}

// --- What the parser keeps -----------------------------------------------------------------------

TEST_F(ParserPasses, KeepsTheHeadOfTheFileAndItsPaths) {
  Model model(kThree);
  const Parser& parser = model.GetParser();
  EXPECT_EQ(u"ISO-10303-21", parser.isoLine);
  ASSERT_NE(nullptr, parser.headerToken);
  EXPECT_EQ(u"n", parser.headerToken->name);
  EXPECT_EQ(model.Folder().Path("model.ifc"), parser.filePath);
  EXPECT_EQ(model.Folder().Path("model_TEMP.ifc"), parser.tempPath);
  EXPECT_EQ(nullptr, parser.scanner);
  EXPECT_EQ(nullptr, parser.mainContainer) << "the document has it";
  EXPECT_TRUE(parser.guidIndex.empty());
}

TEST_F(ParserPasses, KeepsTheFirstObjectOfEachSpecialClass) {
  Model model(
      "#1=IFCOWNERHISTORY($,$,$,.ADDED.,$,$,$,1);#2=IFCOWNERHISTORY($,$,$,.ADDED.,$,$,$,2);\n"
      "#3=IFCPROJECT('p',$,$,$,$,$,$,$,$);#4=IFCPROJECT('q',$,$,$,$,$,$,$,$);\n"
      "#15=IFCUNITASSIGNMENT(());#6=IFCUNITASSIGNMENT(());\n"
      "#7=IFCSITE('s',$,$,$,$,$,$,$,$,$,$,$,$,$);#8=IFCSITE('t',$,$,$,$,$,$,$,$,$,$,$,$,$);");
  EXPECT_TRUE(model.IsRead());
  EXPECT_EQ(model[1], model.GetParser().ifcOwnerHistory);
  EXPECT_EQ(model[3], model.GetParser().ifcProject);
  EXPECT_EQ(model[15], model.GetParser().ifcUnitAssignment);
  EXPECT_EQ(model[7], model.GetParser().ifcSite);
  EXPECT_EQ(15u, model.GetParser().unitAssignmentMarker);
  EXPECT_EQ(model[3], model.Document().getIfcProject());
  EXPECT_EQ(model[15], model.Document().getIfcUnitAssignment());
}

TEST_F(ParserPasses, KeepsNothingOfAModelWithoutSpecialClasses) {
  Model model(kThree);
  EXPECT_EQ(nullptr, model.GetParser().ifcOwnerHistory);
  EXPECT_EQ(nullptr, model.GetParser().ifcProject);
  EXPECT_EQ(nullptr, model.GetParser().ifcUnitAssignment);
  EXPECT_EQ(nullptr, model.GetParser().ifcSite);
  EXPECT_EQ(0u, model.GetParser().unitAssignmentMarker);
}

TEST_F(ParserPasses, EqualTextsOfAModelAreOnePointer) {
  Model model("#1=IFCWALL('g',$,'wall',$,$,$,$,$,$);#2=IFCWALL('h',$,'wall',$,$,$,$,$,$);");
  ExpectRead(model);
  EXPECT_EQ(model.As<IFC::VirtualIfcRoot>(1)->getName().Address(),
            model.As<IFC::VirtualIfcRoot>(2)->getName().Address());
}

TEST_F(ParserPasses, ASecondDocumentIsReadUnderTheSameNumbers) {
  Model first(kThree);
  Model second(kThree);
  ExpectRead(first);
  ExpectRead(second);
  EXPECT_EQ(kThree, first.Lines());
  EXPECT_EQ(kThree, second.Lines());
}

}  // namespace
}  // namespace corvel
