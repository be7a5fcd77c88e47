// What tolerant readings carry, marked, folded and moved.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "marker_pairs.h"
#include "merge/project_offsets.h"
#include "offset_scene.h"
#include "step/carried/tolerant_model.h"

namespace corvel {
namespace {

using test::ReadModel;
using test::ReadTolerantly;

// A project, and two relations that hold a site and a building in it.
constexpr std::string_view kTree =
    "#1=IFCPROJECT('p',$,'P',$,$,$,$,$,$);\n"
    "#2=IFCSITE('s',$,'S',$,$,$,$,$,$,$,$,$,$,$);\n"
    "#3=IFCRELAGGREGATES('r',$,$,$,#1,(#2));\n";

class CarriedObjects : public test::ReadTest {
 protected:
  // The numbers of the records that are left by the marking.
  static std::string Left(ReadModel& model, test::Pairs drop, test::Pairs keep = {}) {
    keep.insert(keep.end(), {{1, 0}, {2, 1}});
    model.Container().ResetAllMarkers();
    model.Container().FillParentsLists();
    EXPECT_TRUE(model.Document().DeleteObjects(drop, keep, false, false, 1));
    model.Container().FillMarkers();
    std::string left;
    for (const auto& [number, entity] : model.Container().entities) {
      if (entity->marker != IFC::kDeleted) left += " " + std::to_string(number);
    }
    return left;
  }
};

// --- Marking -------------------------------------------------------------------------------------

TEST_F(CarriedObjects, ARecordThatNobodyKnowsIsDroppedWithWhatItAloneUses) {
  ReadModel model = ReadTolerantly(std::string(kTree) +
                                   "#4=IFCRELCONTAINEDINSPATIALSTRUCTURE('c',$,$,$,(#5,#6),#2);\n"
                                   "#5=IFCNEW('n',(#7,#8));\n#6=IFCWALL('w',$,$,$,$,$,#8,$,$);\n"
                                   "#7=IFCPRODUCTDEFINITIONSHAPE($,$,(#9));\n"
                                   "#8=IFCPRODUCTDEFINITIONSHAPE($,$,(#9));\n"
                                   "#9=IFCSHAPEREPRESENTATION(*,$,$,(#10));\n#10=IFCODD($);\n");
  EXPECT_EQ(" 1 2 3 4 6 8 9 10", Left(model, {{5, 2}}, {{6, 2}}));
  EXPECT_EQ("#4=IFCRELCONTAINEDINSPATIALSTRUCTURE('c',$,$,$,(#6),#2);", model.Line(4));
}

TEST_F(CarriedObjects, WhatACarriedValueRefersToStaysWithItsHolder) {
  ReadModel model =
      ReadTolerantly(std::string(kTree) +
                     "#4=IFCRELCONTAINEDINSPATIALSTRUCTURE('c',$,$,$,(#5,#6),#2);\n"
                     "#5=IFCWALL('w',$,(#7,'x'),$,$,$,$,$,$);\n"
                     "#6=IFCWALL('v',$,(#7,#8),$,$,$,$,$,$);\n"
                     "#7=IFCCARTESIANPOINT((1.,2.));\n#8=IFCCARTESIANPOINT((1.,3.));\n");
  EXPECT_EQ(" 1 2 3 4 5 7", Left(model, {{6, 2}}, {{5, 2}}));
  EXPECT_EQ("#5=IFCWALL('w',$,(#7,'x'),$,$,$,$,$,$);", model.Line(5));
}

TEST_F(CarriedObjects, ADroppedObjectLeavesTheListsThatAreCarried) {
  ReadModel model =
      ReadTolerantly(std::string(kTree) +
                     "#4=IFCRELCONTAINEDINSPATIALSTRUCTURE('c',$,$,$,(#5,#6,'x'),#2);\n"
                     "#5=IFCWALL('w',$,$,$,$,$,$,$,$);\n"
                     "#6=IFCWALL('v',$,$,$,$,$,$,$,$);\n"
                     "#7=IFCNEWRELATION('n',#5,(#6,#5));\n");
  EXPECT_EQ(" 1 2 3 4 6 7", Left(model, {{5, 2}}, {{6, 2}}));
  EXPECT_EQ("#4=IFCRELCONTAINEDINSPATIALSTRUCTURE('c',$,$,$,(#6,'x'),#2);", model.Line(4));
  EXPECT_EQ("#7=IFCNEWRELATION('n',$,(#6));", model.Line(7));
}

TEST_F(CarriedObjects, ARelationWhoseLastCarriedMemberGoesFollowsIt) {
  ReadModel model = ReadTolerantly(std::string(kTree) +
                                   "#4=IFCRELCONTAINEDINSPATIALSTRUCTURE('c',$,$,$,(#5,'x'),#2);\n"
                                   "#5=IFCWALL('w',$,$,$,$,$,$,$,$);\n");
  EXPECT_EQ(" 1 2 3", Left(model, {{5, 2}}));
}

// --- Folding -------------------------------------------------------------------------------------

TEST_F(CarriedObjects, NumbersInCarriedTextsFollowTheFold) {
  ReadModel first = ReadTolerantly(
      "#1=IFCPROJECT('p',$,'P',$,$,$,$,$,$);\n"
      "#2=IFCNEW((#1,#3),#1);\n#3=IFCWALL('w',#77,(#1),$,$,$,$,$,.X.);\n");
  ReadModel second = ReadTolerantly(
      "#1=IFCPROJECT('q',$,'Q',$,$,$,$,$,$);\n"
      "#2=IFCNEW((#1,#3),#1);\n#3=IFCWALL('v',#77,(#2),$,$,$,$,$,.Y.);\n"
      "#77=IFCEXTRA(#3);\n");
  ASSERT_TRUE(first.Document().MergeDocument(second.Document(), 0, false));
  first.Container().FillMarkers();
  const std::string lines = first.Lines();
  EXPECT_NE(std::string::npos, lines.find("#2=IFCNEW((#1,#3),#1);\n")) << lines;
  const auto number = [&](std::string_view what) {
    const std::size_t at = lines.find(what);
    EXPECT_NE(std::string::npos, at) << what << lines;
    const std::size_t begin = at == 0 ? 0 : lines.rfind('#', at);
    return lines.substr(begin, at - begin);
  };
  const std::string wall = number("=IFCWALL('v'");
  const std::string extra = number("=IFCEXTRA(");
  EXPECT_NE(std::string::npos, lines.find("=IFCNEW((#1," + wall + "),#1);\n")) << lines;
  EXPECT_NE(std::string::npos, lines.find("=IFCEXTRA(" + wall + ");\n")) << lines;
  EXPECT_NE(std::string::npos, lines.find(wall + "=IFCWALL('v'," + extra + ",(#")) << lines;
}

TEST_F(CarriedObjects, AReferenceToNothingLeadsToNothingAfterTheFold) {
  ReadModel first = ReadTolerantly(
      "#1=IFCPROJECT('p',$,'P',$,$,$,$,$,$);\n"
      "#3=IFCWALL('w',#77,(#78),$,$,$,$,$,.X.);\n");
  ReadModel second = ReadTolerantly(
      "#1=IFCPROJECT('q',$,'Q',$,$,$,$,$,$);\n#77=IFCWALL('v',$,$,$,$,$,$,$,$);\n"
      "#78=IFCEXTRA();\n");
  ASSERT_TRUE(first.Document().MergeDocument(second.Document(), 0, false));
  const std::string saved = first.Saved();
  EXPECT_EQ(std::string::npos, saved.find("IFCWALL('w',#77,")) << saved;
  EXPECT_NE(std::string::npos, saved.find("#77=IFCWALL('v'")) << saved;
  const std::size_t at = saved.find("IFCWALL('w',#") + 13;
  const std::string number = saved.substr(at, saved.find(',', at) - at);
  EXPECT_EQ(std::string::npos, saved.find("\n#" + number + "=")) << saved;
}

// --- Offsets and GUIDs ---------------------------------------------------------------------------

TEST_F(CarriedObjects, AProductOfAnotherReleaseMovesWithItsPlacement) {
  ReadModel model = ReadTolerantly(
      "#1=IFCCARTESIANPOINT((0.,0.,0.));\n"
      "#2=IFCAXIS2PLACEMENT3D(#1,$,$);\n#3=IFCLOCALPLACEMENT($,#2);\n"
      "#4=IFCSHADINGDEVICE('g',$,'Blind',$,$,#3,$,$,.JALOUSIE.);\n"
      "#5=IFCSHADINGDEVICE('h',$,'Bare',$,$,$,$,$,.JALOUSIE.);\n"
      "#6=IFCPROJECT('p',*,'P',$,$,$,$,$,*);\n",
      "IFC2X3");
  test::OffsetScene scene(1000.0, 0.0, 0.0);
  ASSERT_TRUE(ApplyProjectOffsets(model.Document(), test::kMovedProject, scene));
  const std::string lines = test::WrittenOut(model.Document());
  EXPECT_NE(std::string::npos, lines.find("#3=IFCLOCALPLACEMENT(#")) << lines;
  EXPECT_NE(std::string::npos, lines.find("'Blind',$,$,#3,")) << lines;
  EXPECT_NE(std::string::npos, lines.find("'Bare',$,$,$,")) << "it has no place: " << lines;
  EXPECT_EQ(std::string::npos, lines.find("IFCLOCALPLACEMENT($,*)")) << lines;
}

TEST_F(CarriedObjects, TheTableOfGuidsHoldsRecordsOfAnotherRelease) {
  ReadModel model = ReadTolerantly(
      "#4=IFCSHADINGDEVICE('g',$,'Blind',$,$,$,$,$,.JALOUSIE.);\n"
      "#5=IFCSHADINGDEVICE('g',$,'Twin',$,$,$,$,$,.JALOUSIE.);\n",
      "IFC2X3");
  EXPECT_TRUE(model.Container().FillEntitiesGUIDmap(u"model.ifc"));
  EXPECT_EQ("#4=IFCSHADINGDEVICE('g',$,'Blind',$,$,$,$,$,.JALOUSIE.);", model.Line(4));
  EXPECT_EQ(std::string::npos, model.Line(5).find("'g'")) << "it gets a new one";
}

}  // namespace
}  // namespace corvel
