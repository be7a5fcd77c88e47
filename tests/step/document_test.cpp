#include "merge/document.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

#include "core/cancellation.h"
#include "core/entity_cast.h"
#include "step/reader/parser.h"
#include "support/model.h"
#include "support/numbers_up_to.h"
#include "support/quiet_reading.h"
#include "support/recorded_progress.h"
#include "support/recorded_reports.h"
#include "support/temporary_folder.h"
#include "support/test_platform.h"

namespace corvel {
namespace {

using test::ModelFile;
using test::QuietReading;
using test::RecordedProgress;
using test::RecordedReports;
using test::Report;
using test::TemporaryFolder;
using test::TestPlatform;

using Reports = std::vector<Report>;

class Document : public testing::Test {
 protected:
  Document() { IFC::MainContainer::ResetUniqueMarker(); }
  ~Document() override { IFC::MainContainer::ResetUniqueMarker(); }
  int Open(std::string_view file) { return document_.OpenFile(folder_.Write("a.ifc", file), 1); }

  QuietReading quiet_;
  TestPlatform system_;
  RecordedReports reports_;
  RecordedProgress progress_;
  TemporaryFolder folder_;
  IfcDocument document_{false, RecordedReports::Reporter, RecordedProgress::Callback};
};

TEST_F(Document, BeforeItIsOpenedItHasNothing) {
  EXPECT_EQ(u"", document_.getFilePath());
  EXPECT_EQ(nullptr, document_.getHeader());
  EXPECT_EQ(nullptr, document_.getIfcUnitAssignment());
  EXPECT_EQ(nullptr, document_.getIfcProject());
  EXPECT_EQ(u"", document_.getISO());
  EXPECT_FALSE(document_.IsParsed());
  EXPECT_FALSE(document_.IsCancelled());
  EXPECT_EQ(nullptr, document_.mainContainer);
  EXPECT_EQ(MergeStatus::kNotMerged, document_.mergeStatus);
  EXPECT_TRUE(document_.GetParser().guidIndex.empty());
  EXPECT_EQ(Reports{}, *reports_);
}

TEST_F(Document, WithoutAHeaderTheSchemaIsEmptyAndThatIsReported) {
  EXPECT_EQ(u"", document_.getSchemaIdentifier());
  EXPECT_EQ((Reports{{"", u"HeaderToken is NULL.", 0}}), *reports_);
}

TEST_F(Document, AnOpenedFileAnswersEverything) {
  EXPECT_EQ(1, Open(ModelFile("#1=IFCUNITASSIGNMENT(());\n"
                              "#2=IFCPROJECT('p',$,$,$,$,$,$,$,#1);\n")));
  EXPECT_EQ(folder_.Path("a.ifc"), document_.getFilePath());
  ASSERT_NE(nullptr, document_.getHeader());
  EXPECT_EQ(u"n", document_.getHeader()->name);
  EXPECT_EQ(u"IFC4", document_.getSchemaIdentifier());
  EXPECT_EQ(u"ISO-10303-21", document_.getISO());
  EXPECT_TRUE(document_.IsParsed());
  EXPECT_FALSE(document_.IsCancelled());
  ASSERT_NE(nullptr, document_.mainContainer);
  EXPECT_EQ(document_.mainContainer->GetEntityByOrginalNumber(1), document_.getIfcUnitAssignment());
  EXPECT_EQ(document_.mainContainer->GetEntityByOrginalNumber(2), document_.getIfcProject());
  EXPECT_EQ(Reports{}, *reports_);
}

TEST_F(Document, OfSeveralProjectsAndUnitsTheFirstIsNamed) {
  Open(
      ModelFile("#5=IFCPROJECT('p',$,$,$,$,$,$,$,$);\n"
                "#4=IFCPROJECT('q',$,$,$,$,$,$,$,$);\n"
                "#3=IFCUNITASSIGNMENT(());\n"
                "#2=IFCUNITASSIGNMENT(());\n"));
  EXPECT_EQ(5u, document_.getIfcProject()->marker);
  EXPECT_EQ(3u, document_.getIfcUnitAssignment()->marker);
}

TEST_F(Document, AFileThatIsNotThereIsReportedOnce) {
  const WideString path = folder_.Path("missing.ifc");
  EXPECT_EQ(0, document_.OpenFile(path, 1));
  EXPECT_EQ((Reports{{"could_not_open_file", u". File path: " + path, 0}}), *reports_);
  EXPECT_FALSE(document_.IsParsed());
  EXPECT_EQ(nullptr, document_.mainContainer);
}

TEST_F(Document, AFileWithoutAHeaderInItsPlaceIsRefusedBeforeParsing) {
  for (const char* const text :
       {"DATA;\n#1=IFCWALL($);\nENDSEC;\n", "ISO-10303-21;\nDATA;\n#1=IFCWALL($);\n",
        "HEADER;\nFILE_SCHEMA(('IFC4'));\nENDSEC;\n", "no model at all", ""}) {
    reports_.Forget();
    EXPECT_EQ(0, Open(text));
    EXPECT_EQ((Reports{{"", u"Unable to read header token. No schema identifier can be read.", 0},
                       {"unknown_schema_identifier", u": ", 0}}),
              *reports_)
        << text;
    EXPECT_EQ(nullptr, document_.mainContainer);
    EXPECT_EQ(folder_.Path("a.ifc"), document_.getFilePath());
    EXPECT_FALSE(document_.IsParsed());
    EXPECT_EQ((std::vector<std::string>{"a.ifc"}), folder_.Names());
  }
}

TEST_F(Document, AnUnknownSchemaIsRefusedBeforeParsing) {
  EXPECT_EQ(0, Open(ModelFile("#1=IFCWALL('w',$,$,$,$,$,$,$,$);\n", "IFC5")));
  EXPECT_EQ((Reports{{"unknown_schema_identifier", u": IFC5", 0}}), *reports_);
  EXPECT_EQ(nullptr, document_.mainContainer);
  EXPECT_EQ((std::vector<std::string>{"a.ifc"}), folder_.Names());
}

TEST_F(Document, TheSchemaOfAFileIsReadWithoutItsModel) {
  const WideString path = folder_.Write("a.ifc", ModelFile("#1=NOT A RECORD", "IFC2X3"));
  EXPECT_EQ(u"IFC2X3", document_.readSchemaIdentifier(path));
  EXPECT_EQ(Reports{}, *reports_);
  EXPECT_EQ(nullptr, document_.mainContainer);
  EXPECT_EQ(u"", document_.getFilePath());
}

TEST_F(Document, ARecordThatCannotBeReadFailsTheFile) {
  EXPECT_EQ(0, Open(ModelFile("#1=IFCNOTHING($);\n")));
  EXPECT_FALSE(document_.IsParsed());
  EXPECT_TRUE(document_.IsCancelled());
  EXPECT_EQ((Reports{{"", u"Entity named: IFCNOTHING not found.", 0},
                     {"", u"Unable to read entity, marker #1. Parsing will be terminate.\n", 0}}),
            *reports_);
  EXPECT_EQ((std::vector<std::string>{"a.ifc"}), folder_.Names());
}

TEST_F(Document, ACancelledReadingIsNeitherParsedNorSilent) {
  progress_.CancelAt(0);
  EXPECT_EQ(0, Open(ModelFile("#1=IFCWALL('w',$,$,$,$,$,$,$,$);\n"
                              "#2=IFCWALL('x',$,$,$,$,$,$,$,$);\n")));
  EXPECT_FALSE(document_.IsParsed());
  EXPECT_TRUE(document_.IsCancelled());
  EXPECT_EQ((std::vector<TestPlatform::Box>{
                {Cancellation::OfProcess().texts.caption, Cancellation::OfProcess().texts.prompt,
                 platform::Buttons::kYesNo, platform::Icon::kQuestion}}),
            system_.boxes);
}

TEST_F(Document, ACancelThatWasNotMeantReadsOn) {
  progress_.CancelAt(0);
  system_.answers = {platform::Answer::kNo};
  EXPECT_EQ(1, Open(ModelFile("#1=IFCWALL('w',$,$,$,$,$,$,$,$);\n"
                              "#2=IFCWALL('x',$,$,$,$,$,$,$,$);\n")));
  EXPECT_TRUE(document_.IsParsed());
  EXPECT_EQ(2u, document_.mainContainer->entities.Size());
}

TEST_F(Document, TheGettersAnswerOnWhenTheContainerHasGone) {
  Open(
      ModelFile("#1=IFCUNITASSIGNMENT(());\n"
                "#2=IFCPROJECT('p',$,$,$,$,$,$,$,#1);\n"));
  const std::unique_ptr<IFC::MainContainer> taken = std::move(document_.mainContainer);
  EXPECT_EQ(folder_.Path("a.ifc"), document_.getFilePath());
  EXPECT_EQ(u"IFC4", document_.getSchemaIdentifier());
  EXPECT_EQ(u"ISO-10303-21", document_.getISO());
  EXPECT_NE(nullptr, document_.getHeader());
  EXPECT_EQ(taken->GetEntityByOrginalNumber(1), document_.getIfcUnitAssignment());
  EXPECT_EQ(taken->GetEntityByOrginalNumber(2), document_.getIfcProject());
  EXPECT_TRUE(document_.IsParsed());
  EXPECT_FALSE(document_.IsCancelled());
  EXPECT_EQ(Reports{}, *reports_);
}

TEST_F(Document, AnEntityIsMadeOfAClassNameInAnyCase) {
  test::Model model("#7=IFCWALL('w',$,$,$,$,$,$,$,$);\n");
  const IFC::IfcEntity* const read = model[7];
  for (const char* const name : {"ifcwall", "IFCWALL", "IfcWall"}) {
    IFC::IfcEntity* const made = model->CreateESet(name);
    ASSERT_NE(nullptr, made);
    EXPECT_EQ(u"IfcWall", WideView(made->getClassName()));
    EXPECT_EQ(typeid(*read), typeid(*made));
    EXPECT_EQ(made, model->mainContainer->entities.Find(made->marker));
    EXPECT_FALSE(model->mainContainer->HasEntityWithOrginalNumber(made->marker));
  }
  EXPECT_EQ(4u, model->mainContainer->entities.Size());
  EXPECT_EQ(Reports{}, *reports_);
}

TEST_F(Document, AMadeEntityIsBlankAndHasTheNextNumber) {
  test::Model model("#7=IFCWALL('w',$,$,$,$,$,$,$,$);\n");
  IFC::IfcEntity* const first = model->CreateESet("IFCLOCALPLACEMENT");
  IFC::IfcEntity* const second = model->CreateESet("IFCRELAGGREGATES");
  // The highest number seen is in use each time, so one is passed over.
  EXPECT_EQ(9u, first->marker);
  EXPECT_EQ(11u, second->marker);
  EXPECT_EQ(
      "#7=IFCWALL('w',$,$,$,$,$,$,$,$);\n"
      "#9=IFCLOCALPLACEMENT($,*);\n"
      "#11=IFCRELAGGREGATES('',$,$,$,*,());\n",
      model.Lines());
  EXPECT_EQ((std::vector<IFC::IfcEntity*>{second}), model->mainContainer->relAggregates);
}

TEST_F(Document, AClassThatTheSchemaLacksIsNotMade) {
  test::Model model("#7=IFCWALL('w',$,$,$,$,$,$,$,$);\n");
  EXPECT_EQ(nullptr, model->CreateESet("ifcNothing"));
  EXPECT_EQ(
      (Reports{
          {"", u"Creating eSet error. No eSet called: IFCNOTHING exists in map of functions.", 0}}),
      *reports_);
  EXPECT_EQ(1u, model->mainContainer->entities.Size());
}

TEST_F(Document, OnlyClassesOfTheFilesOwnSchemaExist) {
  test::Model older("#7=IFCWALL('w',$,$,$,$,$,$,$);\n", "older.ifc", "IFC2X3");
  test::Model newer("#7=IFCWALL('w',$,$,$,$,$,$,$,$);\n", "newer.ifc", "IFC4");
  EXPECT_NE(nullptr, older->CreateESet("IFCELECTRICALBASEPROPERTIES"));
  EXPECT_EQ(nullptr, newer->CreateESet("IFCELECTRICALBASEPROPERTIES"));
  EXPECT_NE(nullptr, newer->CreateESet("IFCADVANCEDBREP"));
  EXPECT_EQ(nullptr, older->CreateESet("IFCADVANCEDBREP"));
  EXPECT_EQ((Reports{{"",
                      u"Creating eSet error. No eSet called: IFCELECTRICALBASEPROPERTIES exists in "
                      u"map of functions.",
                      0},
                     {"",
                      u"Creating eSet error. No eSet called: IFCADVANCEDBREP exists in map of "
                      u"functions.",
                      0}}),
            *reports_);
}

TEST_F(Document, BeforeAFileIsOpenedNoEntityIsMade) {
  EXPECT_EQ(nullptr, document_.CreateESet("IFCWALL"));
  EXPECT_EQ(
      (Reports{
          {"", u"Creating eSet error. No eSet called: IFCWALL exists in map of functions.", 0}}),
      *reports_);
}

TEST_F(Document, WithoutANumberLeftNoEntityIsMade) {
  const test::NumbersUpTo largest(8);
  test::Model model("#7=IFCWALL('w',$,$,$,$,$,$,$,$);\n");
  for (int i = 0; i < 7; ++i) EXPECT_NE(nullptr, model->CreateESet("IFCCARTESIANPOINT"));
  EXPECT_EQ(Reports{}, *reports_);
  EXPECT_EQ(nullptr, model->CreateESet("IFCCARTESIANPOINT"));
  EXPECT_EQ(nullptr, model->CreateESet("IFCCARTESIANPOINT"));
  EXPECT_EQ(
      (Reports{
          {"", u"All numbers up to #8 are in use: there is none left for another object.\n", 1}}),
      *reports_);
  EXPECT_EQ(8u, model->mainContainer->entities.Size());
}

TEST_F(Document, AValueInsideARecordHasNoNumberAndIsFiledNowhere) {
  test::Model model("#3=IFCPROPERTYSINGLEVALUE('Fire rating',$,IFCLABEL('F90'),$);\n");
  IFC::ChildQueue children;
  model[3]->collectChildren(children);
  ASSERT_EQ(1u, children.Size());
  const IFC::IfcEntity& value = *children[0].entity;
  EXPECT_EQ(u"IfcLabel", WideView(value.getClassName()));
  EXPECT_TRUE(value.inlineValue);
  EXPECT_FALSE(value.isComplexType());
  EXPECT_EQ(0u, value.marker);
  EXPECT_EQ(1u, model->mainContainer->entities.Size());
  EXPECT_EQ(1u, model->mainContainer->originalEntities.Size());
  EXPECT_FALSE(model[3]->inlineValue);
}

TEST_F(Document, RelationsOfASchemaReachTheirLists) {
  test::Model model("#1=IFCWALL('w',$,$,$,$,$,$,$);\n", "model.ifc", "IFC2X3");
  const IFC::MainContainer& container = *model->mainContainer;
  const struct {
    const char* name;
    const std::vector<IFC::IfcEntity*>& list;
  } classes[] = {
      {"IfcRelAggregates", container.relAggregates},
      {"IfcRelContainedInSpatialStructure", container.relContainedInSpatialStructure},
      {"IfcRelDefinesByProperties", container.relDefinesByProperties},
      {"IfcRelDefinesByType", container.relDefinesByType},
      {"IfcDraughtingCalloutRelationship", container.draughtingCalloutRelationship},
      {"IfcRelDecomposes", container.relDecomposes},
      {"IfcDocumentInformationRelationship", container.documentInformationRelationship},
      {"IfcRelAssignsToGroup", container.relAssigns},
      {"IfcRelVoidsElement", container.relVoidsElement},
      {"IfcRelFillsElement", container.relFillsElement},
      {"IfcRelSpaceBoundary", container.relSpaceBoundary},
      {"IfcRelConnectsPathElements", container.relConnectsPathElements},
      {"IfcRelAssociatesClassification", container.relAssociatesClassification},
      {"IfcRelAssociatesMaterial", container.relAssociatesMaterial},
  };
  for (const auto& wanted : classes) {
    IFC::IfcEntity* const made = model->CreateESet(wanted.name);
    EXPECT_EQ((std::vector{made}), wanted.list) << wanted.name;
  }
  // The bare class is none of its subtypes.
  model->CreateESet("IfcRelAssigns");
  EXPECT_EQ(1u, container.relAssigns.size());
}

TEST_F(Document, WhatIsSavedIsReadAgain) {
  test::Model model("#7=IFCWALL('w',$,'A name',$,$,$,$,$,$);\n");
  EXPECT_EQ(1, model->SaveFile(folder_.Path("out.ifc")));
  IfcDocument again(false, RecordedReports::Reporter, RecordedProgress::Callback);
  EXPECT_EQ(1, again.OpenFile(folder_.Path("out.ifc"), 1));
  EXPECT_EQ("#7=IFCWALL('w',$,'A name',$,$,$,$,$,$);\n", test::LinesOf(*again.mainContainer));
  EXPECT_EQ(Reports{}, *reports_);
}

TEST_F(Document, AnEndingThatNoWriterKnowsIsNotSaved) {
  test::Model model("#7=IFCWALL('w',$,$,$,$,$,$,$,$);\n");
  const WideString path = folder_.Path("out.txt");
  EXPECT_EQ(0, model->SaveFile(path));
  EXPECT_EQ((Reports{{"could_not_open_file_extension", u" " + path, 0}}), *reports_);
  EXPECT_EQ((std::vector<std::string>{}), folder_.Names());
}

}  // namespace
}  // namespace corvel
