// A whole document into a file.
#include "step/writer/step_writer.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "step/log/ifc_log.h"
#include "support/graph.h"
#include "support/read_model.h"
#include "support/test_factories.h"
#include "support/throwing_entities.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using Model = test::ReadModel;
using test::Create;
using test::ErrorWithoutText;
using test::ErrorWithText;
using test::LogicErrorWithText;
using test::ModelFile;
using test::RecordedProgress;
using test::RecordedReports;
using test::Report;
using test::TemporaryFolder;
using test::TestFactories;
using test::ThrowingOnWrite;
using test::Tick;

std::string People(unsigned count) {
  std::string records;
  for (unsigned number = 1; number <= count; ++number) records += test::Person(number);
  return records;
}

using StepWriterFile = test::ReadTest;

TEST_F(StepWriterFile, HasThisFormByteForByte) {
  Model model = Model::OfFile(
      "ISO-10303-21;HEADER;FILE_DESCRIPTION(('ViewDefinition [CoordinationView]'),'2;1');"
      "FILE_NAME('a.ifc','2023-01-01T10:00:00',('Me'),('Us'),'p','o','a');"
      "FILE_SCHEMA(('IFC2X3'));ENDSEC;DATA;"
      "#1=IFCPERSON($,$,'Caf\\X\\E9',$,$,$,$,$);#2=IFCCARTESIANPOINT((0,1.5,0.000025));"
      "ENDSEC;END-ISO-10303-21;");
  EXPECT_EQ(
      "ISO-10303-21;\n"
      "HEADER;\n"
      "FILE_DESCRIPTION (('ViewDefinition [CoordinationView]'),'2;1');\n"
      "FILE_NAME ('a.ifc','2023-01-01T10:00:00',('Me'),('Us'),'p','o','a');\n"
      "FILE_SCHEMA (('IFC2X3'));\n"
      "ENDSEC;\n"
      "\n"
      "DATA;\n"
      "#1=IFCPERSON($,$,'Caf\\X2\\00E9\\X0\\',$,$,$,$,$);\n"
      "#2=IFCCARTESIANPOINT((0.,1.5E+00,2.5E-05));\n"
      "ENDSEC;\n"
      "END-ISO-10303-21;\n",
      model.Saved());
  EXPECT_TRUE(reports_->empty());
}

TEST_F(StepWriterFile, OfAModelWithoutEntitiesIsCompleteThoughSmallerThanTheKeepBack) {
  EXPECT_EQ(
      "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION (('v'),'2;1');\n"
      "FILE_NAME ('n','t',('a'),('o'),'p','s','z');\nFILE_SCHEMA (('IFC4'));\nENDSEC;\n\nDATA;\n"
      "ENDSEC;\nEND-ISO-10303-21;\n",
      Model("").Saved());
}

TEST_F(StepWriterFile, OutputsOfAnyLengthAreComplete) {
  // The sizes stand around the keep-back of 4,096 bytes and the block of 1 MiB.
  for (const std::size_t wanted : {4095u, 4096u, 4097u, 1048576u, 1052671u, 1052672u, 1052673u}) {
    const std::string empty = ModelFile("#1=IFCPERSON('',$,$,$,$,$,$,$);");
    const std::string text(wanted - empty.size(), 'x');
    const std::string bytes = ModelFile("#1=IFCPERSON('" + text + "',$,$,$,$,$,$,$);");
    Model model = Model::OfFile(bytes);
    EXPECT_EQ(wanted, bytes.size());
    EXPECT_TRUE(bytes == model.Saved()) << wanted;
  }
}

TEST_F(StepWriterFile, TheHeaderIsEncodedLikeAnyText) {
  Model model = Model::OfFile(
      "ISO_-10303-21 ('x') ;HEADER;FILE_DESCRIPTION(('it''s','\\X2\\00E4\\X0\\','\xE4'),'\\\\');"
      "FILE_NAME('\\X2\\00410000\\X0\\B','',(),$,$,$,'\n');FILE_SCHEMA(('IFC4','IFC2X3'));ENDSEC;"
      "DATA;ENDSEC;END-ISO;");
  EXPECT_EQ(
      "ISO-10303-21 ('x') ;\nHEADER;\n"
      "FILE_DESCRIPTION (('it''s','\\X2\\00E4\\X0\\','\xE4'),'\\\\');\n"
      "FILE_NAME ('A','',(),(),'','','\\X2\\000A\\X0\\');\n"
      "FILE_SCHEMA (('IFC4'));\nENDSEC;\n\nDATA;\nENDSEC;\nEND-ISO-10303-21 ('x') ;\n",
      model.Saved())
      << "a text ends at its first NUL";
}

TEST_F(StepWriterFile, TheListsOfTheHeaderAreEmptyAfterwards) {
  Model model("#7=IFCPERSON('x',$,$,$,$,$,$,$);#3=IFCPERSON('y',$,$,$,$,$,$,$);");
  model.Saved();
  const HeaderToken& header = *model.Document().getHeader();
  EXPECT_TRUE(header.fileDescription.empty());
  EXPECT_TRUE(header.author.empty());
  EXPECT_TRUE(header.organization.empty());
  EXPECT_EQ(
      "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION ((),'2;1');\n"
      "FILE_NAME ('n','t',(),(),'p','s','z');\nFILE_SCHEMA (('IFC4'));\nENDSEC;\n\nDATA;\n"
      "#3=IFCPERSON('y',$,$,$,$,$,$,$);\n#7=IFCPERSON('x',$,$,$,$,$,$,$);\n"
      "ENDSEC;\nEND-ISO-10303-21;\n",
      model.Saved())
      << "and the numbers are the same again";
}

// --- Numbers -------------------------------------------------------------------------------------

TEST_F(StepWriterFile, EveryEntityHasTheNumberThatItIsFiledUnder) {
  Model model(
      "#1=IFCLOCALPLACEMENT($,#2);#2=IFCAXIS2PLACEMENT3D(#3,$,$);#3=IFCCARTESIANPOINT((0.));");
  model[1]->marker = IFC::kToSave;
  model[2]->marker = IFC::kNewRootPlacement;
  model[3]->marker = 77;
  const std::string saved = model.Saved();
  EXPECT_NE(std::string::npos,
            saved.find("DATA;\n#1=IFCLOCALPLACEMENT($,#2);\n#2=IFCAXIS2PLACEMENT3D(#3,$,$);\n"
                       "#3=IFCCARTESIANPOINT((0.));\nENDSEC;"))
      << saved;
}

TEST_F(StepWriterFile, LargeNumbersAreNoMarks) {
  const std::string bytes =
      ModelFile("#2147483648=IFCCARTESIANPOINT((0.));\n#4294967279=IFCPOLYLINE((#2147483648));");
  EXPECT_EQ(bytes, Model::OfFile(bytes).Saved());
}

TEST_F(StepWriterFile, DeletedEntitiesAreLeftOut) {
  Model model(
      "#1=IFCRELAGGREGATES('g',#9,$,$,#2,(#3,#4));\n#2=IFCBUILDING('b');\n"
      "#3=IFCBUILDINGSTOREY('c');\n#4=IFCBUILDINGSTOREY('d');\n"
      "#9=IFCOWNERHISTORY($,$,$,.ADDED.,$,$,$,0);");
  for (const unsigned number : {2u, 3u, 9u}) model[number]->marker = IFC::kDeleted;
  const std::string saved = model.Saved();
  EXPECT_NE(std::string::npos,
            saved.find("DATA;\n#1=IFCRELAGGREGATES('g',$,$,$,$,(#4));\n#4=IFCBUILDINGSTOREY("))
      << saved;
  for (const char* const gone : {"#2", "#3", "#9"}) {
    EXPECT_EQ(std::string::npos, saved.find(gone)) << gone;
  }
}

TEST_F(StepWriterFile, AListWhoseMembersAreAllDeletedIsWrittenEmpty) {
  Model model(
      "#1=IFCRELAGGREGATES('g',$,$,$,#1,(#3,#4));\n#3=IFCBUILDING('c');#4=IFCBUILDING('d');");
  model[3]->marker = IFC::kDeleted;
  model[4]->marker = IFC::kDeleted;
  EXPECT_NE(std::string::npos, model.Saved().find("#1=IFCRELAGGREGATES('g',$,$,$,*,());\n"));
}

TEST_F(StepWriterFile, AfterItIsSavedAllMarkersAreZero) {
  Model model("#1=IFCPROPERTYSINGLEVALUE('p',$,IFCLABEL('x'),$);#2=IFCPERSON();");
  model[2]->marker = IFC::kDeleted;
  model.Saved();
  EXPECT_EQ(0u, model[1]->marker);
  EXPECT_EQ(0u, model[2]->marker);
}

TEST_F(StepWriterFile, AModelThatIsReleasedNextKeepsItsMarkers) {
  Model model("#1=IFCPROPERTYSINGLEVALUE('p',$,IFCLABEL('x'),$);#2=IFCPERSON();");
  model.Document().isReleasedNext = true;
  model.Saved();
  EXPECT_EQ(1u, model[1]->marker);
  EXPECT_EQ(2u, model[2]->marker);
}

TEST_F(StepWriterFile, AfterItIsSavedTheUnitsAreFoundUnderTheNumbersThatTheyWereWrittenWith) {
  Model model(
      "#1=IFCUNITASSIGNMENT((#2,#3));#2=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);"
      "#3=IFCSIUNIT(*,.AREAUNIT.,$,.SQUARE_METRE.);");
  IFC::IfcEntity* const assignment = model[1];
  IFC::IfcEntity* const length = model[2];
  // As after a merge that has given the assignment and one of its units another number.
  for (const auto& [entity, number] : {std::pair(assignment, 51u), std::pair(length, 52u)}) {
    model.Container().EraseEntity(entity->marker);
    entity->SetMarker(number);
    model.Container().entities.Set(number, entity);
  }
  model.Saved();
  EXPECT_EQ(assignment, model[51]);
  EXPECT_EQ(length, model[52]);
  EXPECT_EQ(assignment, model[1]);
  EXPECT_EQ(0u, length->marker);
}

TEST_F(StepWriterFile, TheLogTellsTheStages) {
  TemporaryFolder folder;
  Model model("#1=IFCUNITASSIGNMENT((#2));#2=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);");
  Model without(People(3));
  IfcLog& log = IfcLog::Instance();
  log.Open(folder.Path("run.ifc"));
  log.SetFlushEveryLine(false);
  log.LogLine(u"");
  model.Saved();
  log.LogLine(u"");
  without.Saved();
  log.Close();
  const std::string text = folder.Read("run_IFC_LOG.txt");
  EXPECT_NE(std::string::npos,
            text.find("\r\nEND write output file############# CLEANING #############Childrens: 1"
                      "Processing ReplaceEntityInOrginalMapResetAllMarkers: 2"
                      "############# DONE #############\r\n"))
      << text;
  EXPECT_NE(std::string::npos,
            text.find("\r\nEND write output file############# CLEANING #############"
                      "ResetAllMarkers: 3############# DONE #############"));
}

// --- The path ------------------------------------------------------------------------------------

TEST_F(StepWriterFile, TheExtensionHasNoCase) {
  Model model(People(1));
  EXPECT_EQ(1, model.Document().SaveFile(model.Folder().Path("OUT.IFC")));
  EXPECT_TRUE(model.Folder().Has("OUT.IFC"));
}

TEST_F(StepWriterFile, AnyOtherExtensionIsReported) {
  Model model(People(1));
  for (const char* const name : {"out.txt", "out", "out.ifc.bak", "out.", "out.ifc "}) {
    const RecordedReports fresh;
    const WideString path = model.Folder().Path(name);
    EXPECT_EQ(0, model.Document().SaveFile(path));
    EXPECT_EQ((std::vector<Report>{{"could_not_open_file_extension", u" " + path, 0}}), *reports_)
        << name;
    EXPECT_FALSE(model.Folder().Has(name));
  }
}

TEST_F(StepWriterFile, APathThatCannotBeOpenedIsReported) {
  Model model(People(1));
  const WideString path = model.Folder().Path("missing/out.ifc");
  EXPECT_EQ(0, model.Document().SaveFile(path));
  EXPECT_EQ((std::vector<Report>{{"could_not_open_file", u". File path: " + path, 0},
                                 {"could_not_open_file_write", u"File path: " + path, 0}}),
            *reports_);
  EXPECT_EQ("#1=IFCPERSON($,$,$,$,$,$,$,$);", model.Line(1)) << "and the model is as it was";
}

TEST_F(StepWriterFile, ADocumentWithoutAModelIsReportedAndLeavesNoFile) {
  Model model(People(1));
  model.Document().mainContainer.reset();
  const WideString path = model.Folder().Path("out.ifc");
  EXPECT_EQ(0, model.Document().SaveFile(path));
  EXPECT_EQ((std::vector<Report>{{"could_not_open_file_write", u"File path: " + path, 0}}),
            *reports_);
  EXPECT_FALSE(model.Folder().Has("out.ifc"));
}

TEST_F(StepWriterFile, TheInputMayBeTheOutput) {
  Model model(People(3));
  EXPECT_EQ(1, model.Document().SaveFile(model.Folder().Path("model.ifc")));
  EXPECT_EQ(ModelFile(People(3)), model.Folder().Read("model.ifc"));
}

// --- Ticks and cancelling ------------------------------------------------------------------------

class StepWriterTicks : public test::ReadTest {
 protected:
  std::vector<Tick> TicksOf(unsigned entities) {
    Model model(People(entities));
    progress_.Forget();
    model.Saved();
    return *progress_;
  }
  static std::vector<Tick> UpTo(int percent) {
    std::vector<Tick> ticks;
    for (int value = 0; value <= percent; ++value) ticks.push_back({value, 0, u"", false, 100});
    return ticks;
  }
};

TEST_F(StepWriterTicks, ATickBehindEachHundredthAndOneMoreEntity) {
  EXPECT_EQ(UpTo(0), TicksOf(0));
  EXPECT_EQ(UpTo(5), TicksOf(5));
  EXPECT_EQ(UpTo(99), TicksOf(99));
  EXPECT_EQ(UpTo(50), TicksOf(100));
  EXPECT_EQ(UpTo(83), TicksOf(250));
  EXPECT_EQ(UpTo(99), TicksOf(10'000));
}

TEST_F(StepWriterTicks, DeletedEntitiesCount) {
  Model model(People(5));
  for (unsigned number = 1; number <= 4; ++number) model[number]->marker = IFC::kDeleted;
  progress_.Forget();
  model.Saved();
  EXPECT_EQ(UpTo(5), *progress_);
}

TEST_F(StepWriterTicks, CancellingAtAnyTickLeavesNoFile) {
  for (std::size_t tick = 1; tick <= 5; ++tick) {
    Model model(People(5));
    platform_.boxes.clear();
    progress_.Forget();
    progress_.CancelAt(tick);
    EXPECT_EQ(2, model.Document().SaveFile(model.Folder().Path("out.ifc")));
    EXPECT_FALSE(model.Folder().Has("out.ifc"));
    EXPECT_EQ(std::vector{test::CancelQuestionBox()}, platform_.boxes);
    EXPECT_TRUE(reports_->empty());
  }
}

TEST_F(StepWriterTicks, CancellingDeclinedChangesNothing) {
  const std::string expected = Model(People(5)).Saved();
  for (std::size_t tick = 0; tick <= 5; ++tick) {
    Model model(People(5));
    platform_.boxes.clear();
    AnswerNo(1);
    progress_.Forget();
    progress_.CancelAt(tick);
    EXPECT_EQ(expected, model.Saved());
    EXPECT_EQ(tick == 0 ? 0u : 1u, QuestionsAsked()) << "the first tick asks nothing";
    EXPECT_EQ(UpTo(5), *progress_);
  }
}

// --- Entities that fail --------------------------------------------------------------------------

// Writes one attribute, as any entity does.
class Good final : public test::GraphNode {
 public:
  const char16_t* getClassName() const override { return u"Good"; }
  void write(StepWriter& writer) const override { writer.WriteInteger(1); }
};

class StepWriterFailures : public test::ReadTest {
 protected:
  // What SaveFile gives for a model whose record #5 is of this class.
  int Save(const std::string& name) {
    IfcDocument document(false, RecordedReports::Reporter, nullptr);
    Parser& parser = document.GetParser();
    parser.factories = &factories_.Table();
    const std::string records = "#3=GOOD();#5=" + name + "();#7=GOOD();";
    EXPECT_TRUE(parser.ParseFile(folder_.Write("a.ifc", ModelFile(records)), 1));
    document.mainContainer = std::move(parser.mainContainer);
    return document.SaveFile(folder_.Path("out.ifc"));
  }
  // The save of such a model fails with this message and leaves nothing.
  void ExpectFailed(const WideString& message, const std::string& name) {
    const RecordedReports fresh;
    EXPECT_EQ(0, Save(name));
    EXPECT_EQ((std::vector<Report>{{"", message, 0}}), *reports_);
    EXPECT_FALSE(folder_.Has("out.ifc"));
  }

  const TestFactories factories_{{"GOOD", Create<Good>},
                                 {"TEXT", Create<ThrowingOnWrite<ErrorWithText>>},
                                 {"NOTEXT", Create<ThrowingOnWrite<ErrorWithoutText>>},
                                 {"LOGIC", Create<ThrowingOnWrite<LogicErrorWithText>>},
                                 {"ANYTHING", Create<ThrowingOnWrite<int>>}};
  TemporaryFolder folder_;
};

TEST_F(StepWriterFailures, ARuntimeErrorOfAnEntityEndsTheFileWithItsText) {
  ExpectFailed(u"Error occurred while writing entity: #5.text of it", "TEXT");
}

TEST_F(StepWriterFailures, ARuntimeErrorWithoutATextIsAnUnknownException) {
  ExpectFailed(u"Error occurred while writing entity: #5.Unknown exception", "NOTEXT");
}

// The message speaks of reading here too.
TEST_F(StepWriterFailures, WhateverElseAnEntityThrowsIsAnUnknownError) {
  ExpectFailed(u"Unknown error occurred while reading entity: #5", "LOGIC");
  ExpectFailed(u"Unknown error occurred while reading entity: #5", "ANYTHING");
}

TEST_F(StepWriterFailures, NothingOfItHappensToGoodEntities) {
  EXPECT_EQ(1, Save("GOOD"));
  EXPECT_TRUE(reports_->empty());
  EXPECT_NE(std::string::npos,
            folder_.Read("out.ifc").find("DATA;\n#3=GOOD(1);\n#5=GOOD(1);\n#7=GOOD(1);\nENDSEC;"));
}

}  // namespace
}  // namespace corvel
