// Every way in which the reading of a file ends early, with the words of each.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "core/cancellation.h"
#include "schema/registry.h"
#include "support/graph.h"
#include "support/memory_streams.h"
#include "support/read_model.h"
#include "support/test_factories.h"
#include "support/throwing_entities.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using test::Create;
using test::ErrorWithoutText;
using test::ErrorWithText;
using test::ModelFile;
using Model = test::ReadModel;
using test::RecordedProgress;
using test::RecordedReports;
using test::Report;
using test::TemporaryFolder;
using test::TestFactories;
using test::TestPlatform;
using test::ThrowingOnRead;
using Texts = std::vector<std::string>;

std::string Terminated(unsigned number) {
  return "Unable to read entity, marker #" + std::to_string(number) +
         ". Parsing will be terminate.\n";
}

class ParserFailures : public test::ReadTest {
 protected:
  // The read fails at record `number`, after these messages and without a question.
  void ExpectFailed(const std::string& records, unsigned number, Texts messages) {
    const RecordedReports fresh;
    Model model(records);
    EXPECT_FALSE(model.IsRead());
    EXPECT_EQ(ParserState::kFailed, model.GetParser().state);
    messages.push_back(Terminated(number));
    EXPECT_EQ(messages, Messages());
    for (const Report& report : *reports_) {
      EXPECT_EQ("", report.key);
      EXPECT_EQ(0, report.mode);
    }
    EXPECT_EQ(0u, QuestionsAsked());
    EXPECT_EQ(CancelMode::kAsk, Cancellation::OfProcess().mode);
    EXPECT_TRUE(model.Document().IsCancelled());
    EXPECT_FALSE(model.Document().IsParsed());
  }
};

constexpr const char* kGood = "#1=IFCPERSON('a',$,$,$,$,$,$,$);\n";

TEST_F(ParserFailures, AClassThatTheSchemaLacksEndsTheRead) {
  ExpectFailed(kGood + "#2=IFCNOTHING('x');\n#3=IFCPERSON();"s, 2,
               {"Entity named: IFCNOTHING not found."});
}

TEST_F(ParserFailures, ClassNamesAreUpperCase) {
  ExpectFailed("#7=IfcPerson();", 7, {"Entity named: IfcPerson not found."});
}

TEST_F(ParserFailures, TheNameOfASelectIsNoClass) {
  ExpectFailed("#7=IFCVALUE('x');", 7, {"Entity named: IFCVALUE not found."});
}

TEST_F(ParserFailures, AComplexInstanceEndsTheRead) {
  ExpectFailed(kGood + "#2=(IFCPERSON()IFCROOT());"s, 2,
               {"Expected: entity name. Got: OpenBracketToken.\n"});
}

TEST_F(ParserFailures, ATokenThatIsNoNameEndsTheRead) {
  ExpectFailed("#1='IFCPERSON'();", 1, {"Expected: entity name. Got: WStringToken.\n"});
  ExpectFailed("#2=;", 2, {"Expected: entity name. Got: SemicolonToken.\n"});
  ExpectFailed("#3=$();", 3, {"Expected: entity name. Got: empty argument.\n"});
  ExpectFailed("#4=.IFCPERSON.();", 4, {"Expected: entity name. Got: enumeration value.\n"});
  ExpectFailed("#5=);", 5, {"Expected: entity name. Got: closing bracket.\n"});
  ExpectFailed("#6 IFCPERSON();", 6, {"Expected: entity name. Got: OpenBracketToken.\n"});
}

TEST_F(ParserFailures, ABareRealInThePlaceOfAReferenceEndsTheRead) {
  ExpectFailed("#1=IFCLOCALPLACEMENT($,0.5);", 1,
               {"Unknown error occurred while reading entity: #1"});
}

TEST_F(ParserFailures, ABadNumberInsideARecordEndsTheRead) {
  const std::string ended =
      "Expected: #, *, entity name, or number(real, integer). Got: EndOfFileToken.\n";
  ExpectFailed("#1=IFCLOCALPLACEMENT($,#4294967280);", 1, {"stoul argument out of range", ended});
  ExpectFailed("#2=IFCLOCALPLACEMENT($,#);", 2, {"invalid stoul argument", ended});
}

TEST_F(ParserFailures, ABadNumberBehindTheAttributesOfARecordEndsTheReadToo) {
  Model model("#1=IFCLOCALPLACEMENT($,$,#);#2=IFCPERSON();");
  EXPECT_FALSE(model.IsRead());
  EXPECT_EQ((Texts{"invalid stoul argument"}), Messages());
  EXPECT_TRUE(model.Document().IsCancelled());
}

TEST_F(ParserFailures, ValuesNestedDeeperThanAThousandEndTheRead) {
  const auto nested = [](int depth) {
    std::string value;
    for (int i = 0; i < depth; ++i) value += "IFCPROPERTYSETDEFINITIONSET((";
    for (int i = 0; i < depth; ++i) value += "))";
    return "#1=IFCRELDEFINESBYPROPERTIES('g',$,$,$,()," + value + ");";
  };
  EXPECT_TRUE(Model(nested(1000)).IsRead());
  EXPECT_EQ(Texts{}, Messages());
  for (const int depth : {1001, 100'000}) {
    ExpectFailed(nested(depth), 1,
                 {"Error occurred while reading entity: #1.\nValues are nested too deeply"});
  }
}

TEST_F(ParserFailures, BracketsMayBeNestedToAnyDepth) {
  const std::string brackets(200'000, '(');
  AnswerNo(10);
  Model model("#1=IFCPERSON('a',$,$,$,$,$,$,$," + brackets + ");#2=IFCPERSON('b',$,$,$,$,$,$,$);");
  EXPECT_TRUE(model.IsRead());
  EXPECT_EQ("#2=IFCPERSON('b',$,$,$,$,$,$,$);", model.Line(2));
}

// --- Exceptions out of `read` --------------------------------------------------------------------

class Harmless final : public test::GraphNode {
 public:
  const char16_t* getClassName() const override { return u"Harmless"; }
};

// Is read once without harm, and throws the second time.
class ThrowingLater final : public test::GraphNode {
 public:
  const char16_t* getClassName() const override { return u"ThrowingLater"; }
  void read(Parser& parser) override {
    if (reads_++ != 0) throw ErrorWithText();
    parser.forwardReference = true;
  }

 private:
  int reads_ = 0;
};

// From its reading on, memory is short: there is just what stands in the scanner's buffer.
class Starving final : public test::GraphNode {
 public:
  const char16_t* getClassName() const override { return u"Starving"; }
  void read(Parser& parser) override {
    parser.scanner =
        std::make_unique<Scanner>(std::make_unique<test::BreakingInputStream<std::bad_alloc>>(");"),
                                  RecordedReports::Reporter);
  }
};

class ParserExceptions : public ParserFailures {
 protected:
  bool Parse(const std::string& records) {
    parser_.factories = &factories_.Table();
    return parser_.ParseFile(folder_.Write("a.ifc", ModelFile(records)), 1);
  }
  // What is reported when the record is an object of `name`.
  Texts MessagesOf(const std::string& name) {
    EXPECT_FALSE(Parse("#3=HARMLESS();#5=" + name + "(1);"));
    EXPECT_EQ(ParserState::kFailed, parser_.state);
    EXPECT_EQ(Texts{"a.ifc"}, folder_.Names());
    return Messages();
  }

  TestFactories factories_{{"HARMLESS", Create<Harmless>},
                           {"WITHTEXT", Create<ThrowingOnRead<ErrorWithText>>},
                           {"WITHOUTTEXT", Create<ThrowingOnRead<ErrorWithoutText>>},
                           {"MEMORY", Create<ThrowingOnRead<std::bad_alloc>>},
                           {"ANYTHING", Create<ThrowingOnRead<int>>},
                           {"LATER", Create<ThrowingLater>},
                           {"STARVING", Create<Starving>}};
  TemporaryFolder folder_;
  Parser parser_{false, RecordedReports::Reporter, RecordedProgress::Callback};
};

TEST_F(ParserExceptions, AStandardExceptionIsReportedWithItsText) {
  EXPECT_EQ((Texts{"Error occurred while reading entity: #5.\ntext of it", Terminated(5)}),
            MessagesOf("WITHTEXT"));
}

TEST_F(ParserExceptions, AStandardExceptionWithoutATextIsUnknown) {
  EXPECT_EQ((Texts{"Error occurred while reading entity: #5.\nUnknown exception", Terminated(5)}),
            MessagesOf("WITHOUTTEXT"));
}

TEST_F(ParserExceptions, RunningOutOfMemoryHasItsOwnWords) {
  EXPECT_EQ((Texts{"Not enough memory space. Try to run 64-bit Orlenta", Terminated(5)}),
            MessagesOf("MEMORY"));
}

TEST_F(ParserExceptions, WhatIsNoStandardExceptionIsUnknown) {
  EXPECT_EQ((Texts{"Unknown error occurred while reading entity: #5", Terminated(5)}),
            MessagesOf("ANYTHING"));
}

TEST_F(ParserExceptions, InTheSecondPassTheyEndTheReadAsFailed) {
  EXPECT_FALSE(Parse("#5=LATER();#6=LATER();"));
  EXPECT_EQ((Texts{"Error occurred while reading entity: #5.\ntext of it"}), Messages());
  EXPECT_EQ(ParserState::kFailed, parser_.state) << "not merely cancelled";
  EXPECT_EQ(nullptr, parser_.scanner);
  EXPECT_EQ((Texts{"a.ifc", "a_TEMP.ifc"}), folder_.Names());
}

TEST_F(ParserExceptions, AScannerThatRunsOutOfMemoryEndsThePassUnfinished) {
  EXPECT_FALSE(Parse("#5=STARVING();#6=HARMLESS();"));
  EXPECT_EQ((std::vector<Report>{{"", u"Not enough memory space. Try to run 64-bit Orlenta", 0}}),
            *reports_);
  EXPECT_EQ(ParserState::kNotFinished, parser_.state);
  EXPECT_TRUE(parser_.IsStopped());
  EXPECT_EQ(0u, QuestionsAsked());
}

// --- Two records with one number -----------------------------------------------------------------

constexpr const char* kDuplicates =
    "#1=IFCLOCALPLACEMENT(#3,$);\n#2=IFCPERSON('first',$,$,$,$,$,$,$);\n"
    "#2=IFCLOCALPLACEMENT(#9,$,'surplus');\n#3=IFCLOCALPLACEMENT($,$);\n#9=IFCLOCALPLACEMENT($,$);";

TEST_F(ParserFailures, ADuplicatedNumberKeepsTheFirstRecordWhenTheUserGoesOn) {
  AnswerNo(2);  // the first box only tells
  Model model(kDuplicates);
  EXPECT_TRUE(model.IsRead());
  ASSERT_EQ(2u, platform_.boxes.size());
  EXPECT_EQ(test::LogfileErrorBox(
                u"AddEntityByOrginalNumber method error: Entity with marker: 2 already exists."),
            platform_.boxes[0]);
  EXPECT_EQ((std::vector<Report>{{"", u"Entity duplicated: #2", kReportShow},
                                 {"",
                                  u"What stands behind the arguments of a record was left out. "
                                  u"Places: 1, the first in line 11 at #2.\n",
                                  kReportLog}}),
            *reports_);
  EXPECT_EQ(1u, QuestionsAsked());
  EXPECT_EQ(
      "#1=IFCLOCALPLACEMENT(#3,*);\n#2=IFCPERSON('first',$,$,$,$,$,$,$);\n"
      "#3=IFCLOCALPLACEMENT($,*);\n#9=IFCLOCALPLACEMENT($,*);\n",
      model.Lines());
  EXPECT_EQ("\n#1=IFCLOCALPLACEMENT(#3,$);", model.Folder().Read("model_TEMP.ifc"))
      << "the record that was not filed is not saved for the second pass";
}

TEST_F(ParserFailures, ADuplicatedNumberEndsTheReadWhenTheUserAgrees) {
  Model model(kDuplicates);
  EXPECT_FALSE(model.IsRead());
  EXPECT_EQ((std::vector<Report>{{"", u"Entity duplicated: #2", 0}}), *reports_);
  EXPECT_EQ(1u, QuestionsAsked());
  EXPECT_FALSE(model.Document().IsParsed());
  EXPECT_TRUE(model.Document().IsCancelled());
  EXPECT_EQ(CancelMode::kEndUnasked, Cancellation::OfProcess().mode);
  EXPECT_EQ((std::vector<std::string>{"model.ifc"}), model.Folder().Names());
}

TEST_F(ParserFailures, ADuplicatedProjectIsNotTheProject) {
  AnswerNo(2);
  Model model(
      "#2=IFCPERSON('a',$,$,$,$,$,$,$);#2=IFCPROJECT('p',$,$,$,$,$,$,$,$);"
      "#3=IFCPROJECT('q',$,$,$,$,$,$,$,$);");
  EXPECT_TRUE(model.IsRead());
  EXPECT_EQ(model[3], model.GetParser().ifcProject);
}

// --- Wrong values --------------------------------------------------------------------------------

TEST_F(ParserFailures, AWrongValueEndsTheReadWhenTheUserAgrees) {
  Model model("#1=IFCPERSON(.A.,'b',$,$,$,$,$,$);#2=IFCPERSON();");
  EXPECT_FALSE(model.IsRead());
  EXPECT_EQ((Texts{"Expected: String. Got: enumeration value.\n", Terminated(1)}), Messages());
  EXPECT_EQ(1u, QuestionsAsked());
  EXPECT_EQ(ParserState::kFailed, model.GetParser().state);
  EXPECT_EQ(CancelMode::kAsk, Cancellation::OfProcess().mode);
}

TEST_F(ParserFailures, AWrongValueIsItsDefaultWhenTheUserGoesOn) {
  AnswerNo(1);
  Model model("#1=IFCPERSON(.A.,'b',$,$,$,$,$,$);#2=IFCPERSON();");
  EXPECT_TRUE(model.IsRead());
  EXPECT_EQ((Texts{"Expected: String. Got: enumeration value.\n"}), Messages());
  EXPECT_EQ("#1=IFCPERSON('','b',$,$,$,$,$,$);", model.Line(1));
}

TEST_F(ParserFailures, TheQuestionHasTheTextsOfTheRun) {
  Cancellation::OfProcess().texts.prompt = u"Really?";
  Cancellation::OfProcess().texts.caption = u"Stop";
  Model model("#1=IFCPERSON(.A.);");
  Cancellation::OfProcess().texts = {};
  ASSERT_EQ(1u, platform_.boxes.size());
  EXPECT_EQ((TestPlatform::Box{u"Stop", u"Really?", platform::Buttons::kYesNo,
                               platform::Icon::kQuestion}),
            platform_.boxes[0]);
}

TEST_F(ParserFailures, NobodyIsAskedOnceTheRunIsToStop) {
  Cancellation::OfProcess().mode = CancelMode::kEndUnasked;
  Model model("#1=IFCPERSON(.A.);");
  EXPECT_FALSE(model.IsRead());
  EXPECT_EQ(0u, QuestionsAsked());
}

TEST_F(ParserFailures, NobodyIsAskedAtTheEndOfTheInput) {
  const std::string bytes = ModelFile("#1=IFCCARTESIANPOINT(");
  Model model = Model::OfFile(bytes.substr(0, bytes.rfind('(') + 1));
  EXPECT_FALSE(model.IsRead());
  EXPECT_EQ(0u, QuestionsAsked());
  EXPECT_EQ((Texts{"Expected: OpenBracketToken. Got: EndOfFileToken.\n", Terminated(1)}),
            Messages());
}

// --- The names of tokens in messages -------------------------------------------------------------

TEST_F(ParserFailures, FourKindsOfTokensHaveANameForUsers) {
  Parser parser(false, RecordedReports::Reporter, nullptr);
  const std::map<WideString, WideString> namesForUsers{{u"EmptyParameterToken", u"empty argument"},
                                                       {u"EnumerationToken", u"enumeration value"},
                                                       {u"EntityNameToken", u"entity name"},
                                                       {u"CloseBracketToken", u"closing bracket"}};
  for (unsigned type = 0; type <= 24; ++type) {
    const WideString name = NameOf(static_cast<TokenType>(type));
    const auto forUsers = namesForUsers.find(name);
    const WideString& shown = forUsers == namesForUsers.end() ? name : forUsers->second;
    RecordedReports reports;
    EXPECT_EQ(0, parser.ExpectedArgumentError(name.c_str(), u"IfcReal", 2));
    parser.ExpectedArgumentError(u"#, *", name.c_str(), 0);
    EXPECT_EQ((std::vector<Report>{{"", u"Expected: " + shown + u". Got: IfcReal.\n", 2},
                                   {"", u"Expected: #, *. Got: " + shown + u".\n", 0}}),
              *reports);
  }
}

// --- Opening -------------------------------------------------------------------------------------

TEST_F(ParserFailures, AFileThatCannotBeOpenedFailsTheRead) {
  TemporaryFolder folder;
  Parser parser(false, RecordedReports::Reporter, nullptr);
  parser.SelectSchema(FactoriesOf(SchemaNamespace::IFC4));
  EXPECT_FALSE(parser.ParseFile(folder.Path("missing.ifc"), 1));
  EXPECT_EQ((std::vector<Report>{
                {"could_not_open_file", u". File path: " + folder.Path("missing.ifc"), 0}}),
            *reports_);
  EXPECT_EQ(ParserState::kFailed, parser.state);
  EXPECT_TRUE(folder.Names().empty());
}

TEST_F(ParserFailures, AnUnknownExtensionFailsTheRead) {
  TemporaryFolder folder;
  Parser parser(false, RecordedReports::Reporter, nullptr);
  EXPECT_FALSE(parser.ParseFile(folder.Write("model.txt", ""), 1));
  EXPECT_EQ(
      (std::vector<Report>{{"could_not_open_file_extension", u" " + folder.Path("model.txt"), 0}}),
      *reports_);
  EXPECT_EQ(ParserState::kFailed, parser.state);
}

}  // namespace
}  // namespace corvel
