// What is added to a model that the host shows elsewhere, record by record.
#include "merge/project_offsets.h"

#include <limits>
#include <string>
#include <vector>

#include "merge/units.h"
#include "offset_scene.h"
#include "schema/interfaces/geometry.h"
#include "schema/record_model.h"
#include "unit_run.h"

namespace corvel {
namespace {

using test::kCentimetre;
using test::kMetre;
using test::kMillimetre;
using test::kMovedProject;
using test::kSquareMetre;
using test::OffsetScene;
using test::Report;
using test::Units;
using test::WrittenOut;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Records #1 and #2: axes at the origin.
const std::string kAxes =
    "#1=IFCCARTESIANPOINT((0.,0.,0.));\n"
    "#2=IFCAXIS2PLACEMENT3D(#1,$,$);\n";

class ProjectOffsets : public test::UnitRun {
 protected:
  IfcDocument& Open(const std::string& records, std::string_view schema = "IFC2X3") {
    IfcDocument& document = Add("model.ifc", records, schema);
    return document;
  }
  // The records after the move.
  std::string Moved(const std::string& records, OffsetScene scene) {
    IfcDocument& document = Open(records);
    ApplyProjectOffsets(document, kMovedProject, scene);
    return WrittenOut(document);
  }
  // The coordinates of the new point of a model with these units.
  std::vector<double> Shift(const std::string& records, OffsetScene scene) {
    const std::uint32_t last = NumbersOf(Open(records)).back();
    IfcDocument& document = *models_.back().document;
    ApplyProjectOffsets(document, kMovedProject, scene);
    const auto added = document.mainContainer->entities.Next(last);
    return EntityCast<IFC::VirtualIfcCartesianPoint>(added.entity)->getCoordinates();
  }
  static std::vector<std::uint32_t> NumbersOf(const IfcDocument& document) {
    std::vector<std::uint32_t> numbers;
    const NumberTable& entities = document.mainContainer->entities;
    for (auto at = entities.First(); at; at = entities.Next(at.number)) {
      numbers.push_back(at.number);
    }
    return numbers;
  }
  static OffsetScene Centered(std::array<double, 3> first, std::array<double, 3> second) {
    OffsetScene scene;
    scene.centers = {first, second};
    return scene;
  }
};

// --- The new placement ---------------------------------------------------------------------------
TEST_F(ProjectOffsets, TheOutermostPlacementHangsBelowANewOneWithTheShift) {
  const std::string records = Units({kMetre}, 5) + kAxes;
  EXPECT_EQ(
      kAxes + test::Placement(3, "#16", 2) + test::Wall(4, "#3") + Units({kMetre}, 5) +
          "#8=IFCCARTESIANPOINT((1.,-2.,5.E-01));\n"
          "#10=IFCDIRECTION((0.,0.,1.));\n"
          "#12=IFCDIRECTION((1.,0.,0.));\n"
          "#14=IFCAXIS2PLACEMENT3D(#8,#10,#12);\n"
          "#16=IFCLOCALPLACEMENT($,#14);\n",
      Moved(records + test::Placement(3, "$", 2) + test::Wall(4, "#3"), {1000.0, -2000.0, 500.0}));
  EXPECT_TRUE(world_.reports->empty());
  EXPECT_TRUE(world_.system.boxes.empty());
}

TEST_F(ProjectOffsets, AModelThatIsNotMovedStaysAsItIs) {
  const std::string records = Units({kMetre}, 5) + kAxes + test::Placement(3, "$", 2) +
                              test::Wall(4, "#3") + test::Wall(9, "$");
  const std::string before = WrittenOut(Open(records));
  for (const OffsetScene& scene :
       {OffsetScene(), OffsetScene(0.0, 0.0, 0.0), OffsetScene(-0.0, 0.0, -0.0),
        Centered({1.0, -2.0, 0.0}, {-1.0, 2.0, 0.0})}) {
    EXPECT_EQ(before, Moved(records, scene));
  }
  EXPECT_TRUE(world_.reports->empty());
}

// The two are added as they are, metres to millimetres.
TEST_F(ProjectOffsets, OffsetAndCentreThatCancelOutMoveNothing) {
  OffsetScene scene(3.0, 0.0, 0.0);
  scene.centers.first[0] = 3.0;
  const std::string records =
      Units({kMetre}, 5) + kAxes + test::Placement(3, "$", 2) + test::Wall(4, "#3");
  EXPECT_EQ(WrittenOut(Open(records)), Moved(records, scene));
}

TEST_F(ProjectOffsets, OneComponentIsEnough) {
  const std::string units = Units({kMillimetre});
  EXPECT_EQ((std::vector<double>{0.0, 0.0, 7.0}), Shift(units, {0.0, 0.0, 7.0}));
  EXPECT_EQ((std::vector<double>{0.0, -7.0, 0.0}), Shift(units, {0.0, -7.0, 0.0}));
}

TEST_F(ProjectOffsets, WhatIsNoNumberIsAShift) {
  for (const OffsetScene& scene : {OffsetScene(kNaN, 0.0, 0.0), Centered({}, {0.0, 0.0, kNaN})}) {
    EXPECT_EQ(1u, NumbersOf(Open(kAxes)).front());
    IfcDocument& document = *models_.back().document;
    OffsetScene host = scene;
    ApplyProjectOffsets(document, kMovedProject, host);
    EXPECT_EQ(7u, NumbersOf(document).size());
  }
}

// --- What the host tells -------------------------------------------------------------------------
TEST_F(ProjectOffsets, OnlyTheFirstRecordOfTheProjectCounts) {
  OffsetScene scene;
  scene.offsets = {
      {7, 100.0, 100.0, 100.0}, {kMovedProject, 1.0, 2.0, 3.0}, {kMovedProject, 50.0, 50.0, 50.0}};
  EXPECT_EQ((std::vector<double>{1.0, 2.0, 3.0}), Shift(Units({kMillimetre}), scene));
}

TEST_F(ProjectOffsets, OffsetsOfOtherProjectsDontCount) {
  OffsetScene scene;
  scene.offsets = {{7, 100.0, 100.0, 100.0}};
  EXPECT_EQ(kAxes, Moved(kAxes, scene));
}

TEST_F(ProjectOffsets, TheSceneMovesBackByBothCentres) {
  EXPECT_EQ((std::vector<double>{-1010.0, -2020.0, -3030.0}),
            Shift(Units({kMetre}), Centered({1000.0, 2000.0, 3000.0}, {10.0, 20.0, 30.0})));
}

TEST_F(ProjectOffsets, NoCoordinateIsAZeroBelowZero) {
  const std::string moved = Moved(Units({kMetre}), {-0.0, 5000.0, -0.0});
  EXPECT_NE(std::string::npos, moved.find("=IFCCARTESIANPOINT((0.,5.,0.));\n")) << moved;
}

// --- Units ---------------------------------------------------------------------------------------
TEST_F(ProjectOffsets, OffsetsAreInMillimetresAndCentresInMetres) {
  OffsetScene scene(1000.0, 0.0, -0.5);
  scene.centers.first = {0.0, 2.0, 0.0};
  EXPECT_EQ((std::vector<double>{1.0, -2.0, -0.0005}), Shift(Units({kMetre}), scene));
  EXPECT_EQ((std::vector<double>{1000.0, -2000.0, -0.5}), Shift(Units({kMillimetre}), scene));
  EXPECT_EQ((std::vector<double>{100.0, -200.0, -0.05}), Shift(Units({kCentimetre}), scene));
}

TEST_F(ProjectOffsets, FeetHaveFactorsOfTheirOwn) {
  OffsetScene scene(1000.0, 0.0, 304.8);
  scene.centers.first = {0.0, 2.0, -5.0};
  const std::string feet =
      "#1=IFCCONVERSIONBASEDUNIT(#4,.LENGTHUNIT.,'FOOT',#2);\n"
      "#2=IFCMEASUREWITHUNIT(IFCRATIOMEASURE(0.3048),#3);\n#3=" +
      std::string(kMetre) +
      ";\n#4=IFCDIMENSIONALEXPONENTS(1,0,0,0,0,0,0);\n"
      "#5=IFCUNITASSIGNMENT((#1));\n";
  const double unitsPerMetre = 3.28084F;
  const double millimetresPerUnit = 304.80002F;
  EXPECT_EQ((std::vector<double>{1000.0 / millimetresPerUnit, -2.0 * unitsPerMetre,
                                 5.0 * unitsPerMetre + 304.8 / millimetresPerUnit}),
            Shift(feet, scene));
}

TEST_F(ProjectOffsets, WithoutALengthUnitTheNumbersAreTakenAsTheyAre) {
  OffsetScene scene(1000.0, 0.0, 0.0);
  scene.centers.first = {0.0, 2.0, 0.0};
  const Report missing{"", u"No lenght unit found while merging file", kReportShow};
  for (const std::string& records : {kAxes, Units({kSquareMetre})}) {
    EXPECT_EQ((std::vector<double>{1000.0, -2.0, 0.0}), Shift(records, scene));
    EXPECT_EQ((std::vector<Report>{missing, missing}), *world_.reports);
    world_.reports.Forget();
  }
}

// --- Which placements are moved ------------------------------------------------------------------
TEST_F(ProjectOffsets, OneChainIsMovedOnce) {
  const auto spatial = [](unsigned number, const char* name, const char* placement) {
    const std::string text = std::to_string(number);
    return "#" + text + "=" + name + "('g" + text + "',$,$,$,$," + placement + ",$,$,.ELEMENT.);\n";
  };
  const std::string units = Units({kMillimetre}, 11);
  IfcDocument& document =
      Open(units + kAxes + test::Placement(3, "$", 2) + test::Placement(4, "#3", 2) +
           test::Placement(5, "#4", 2) + test::Placement(6, "#5", 2) + test::Wall(7, "#6") +
           spatial(8, "IFCBUILDINGSTOREY", "#5") + spatial(9, "IFCBUILDING", "#4") +
           spatial(10, "IFCSITE", "#3"));
  const std::string before = WrittenOut(document);
  OffsetScene scene(5.0, 0.0, 0.0);
  ApplyProjectOffsets(document, kMovedProject, scene);
  const std::string after = WrittenOut(document);
  const std::string site = test::Placement(3, "$", 2);
  std::string wanted = before;
  wanted.replace(wanted.find(site), site.size(), test::Placement(3, "#22", 2));
  EXPECT_EQ(wanted, after.substr(0, wanted.size()));
  EXPECT_EQ(
      "#14=IFCCARTESIANPOINT((5.,0.,0.));\n"
      "#16=IFCDIRECTION((0.,0.,1.));\n"
      "#18=IFCDIRECTION((1.,0.,0.));\n"
      "#20=IFCAXIS2PLACEMENT3D(#14,#16,#18);\n"
      "#22=IFCLOCALPLACEMENT($,#20);\n",
      after.substr(wanted.size()));
}

TEST_F(ProjectOffsets, EveryOutermostPlacementHangsBelowTheOneNewPlacement) {
  const std::string moved =
      Moved(Units({kMetre}, 7) + kAxes + test::Placement(3, "$", 2) + test::Placement(4, "$", 2) +
                test::Wall(5, "#3") + test::Wall(6, "#4"),
            {1000.0, 0.0, 0.0});
  EXPECT_NE(std::string::npos,
            moved.find(test::Placement(3, "#18", 2) + test::Placement(4, "#18", 2)));
  EXPECT_NE(std::string::npos, moved.find("#18=IFCLOCALPLACEMENT($,#16);\n"));
}

TEST_F(ProjectOffsets, APlacementThatNoProductHangsOnStays) {
  const std::string moved =
      Moved(Units({kMetre}, 7) + kAxes + test::Placement(3, "$", 2) + test::Placement(4, "$", 2) +
                test::Wall(5, "#3") + test::Placement(6, "#4", 2),
            {1000.0, 0.0, 0.0});
  EXPECT_NE(std::string::npos, moved.find(test::Placement(4, "$", 2)));
  EXPECT_NE(std::string::npos, moved.find(test::Placement(6, "#4", 2)));
}

// The origin is shared; it comes before the first placement that was missing.
TEST_F(ProjectOffsets, ProductsWithoutAPlacementGetOneAtTheOrigin) {
  EXPECT_EQ(
      test::Wall(1, "#20") + Units({kMetre}, 2) + test::Wall(4, "#22") +
          "#6=IFCCARTESIANPOINT((1.,0.,0.));\n"
          "#8=IFCDIRECTION((0.,0.,1.));\n"
          "#10=IFCDIRECTION((1.,0.,0.));\n"
          "#12=IFCAXIS2PLACEMENT3D(#6,#8,#10);\n"
          "#14=IFCLOCALPLACEMENT($,#12);\n"
          "#16=IFCCARTESIANPOINT((0.,0.,0.));\n"
          "#18=IFCAXIS2PLACEMENT3D(#16,$,$);\n"
          "#20=IFCLOCALPLACEMENT(#14,#18);\n"
          "#22=IFCLOCALPLACEMENT(#14,#18);\n",
      Moved(Units({kMetre}, 2) + test::Wall(1, "$") + test::Wall(4, "$"), {1000.0, 0.0, 0.0}));
}

TEST_F(ProjectOffsets, APlacementThatIsNotThereIsNoPlacement) {
  const std::string moved = Moved(Units({kMetre}, 7) + kAxes + "#3=IFCLOCALPLACEMENT(#77,#2);\n" +
                                      test::Wall(5, "#3") + test::Wall(6, "#78"),
                                  {1000.0, 0.0, 0.0});
  EXPECT_NE(std::string::npos, moved.find(test::Placement(3, "#18", 2))) << moved;
  EXPECT_NE(std::string::npos, moved.find(test::Wall(6, "#24"))) << moved;
}

TEST_F(ProjectOffsets, APlacementIn2DStaysAndAllThatHangsOnIt) {
  const std::string records = Units({kMetre}, 7) + kAxes + "#3=IFCAXIS2PLACEMENT2D(#1,$);\n" +
                              test::Placement(4, "$", 3) + test::Placement(5, "#4", 2) +
                              test::Wall(6, "#5");
  const std::string before = WrittenOut(Open(records));
  EXPECT_EQ(before, Moved(records, {1000.0, 0.0, 0.0}).substr(0, before.size()));
}

TEST_F(ProjectOffsets, APlacementWithoutAxesStays) {
  const std::string moved =
      Moved(Units({kMetre}, 7) + "#3=IFCLOCALPLACEMENT($,$);\n" + test::Wall(5, "#3"),
            {1000.0, 0.0, 0.0});
  EXPECT_EQ(0u, moved.find("#3=IFCLOCALPLACEMENT($,*);\n")) << moved;
}

// --- Markers -------------------------------------------------------------------------------------
TEST_F(ProjectOffsets, MarkersAreAnewForTheNewEntitiesOnly) {
  IfcDocument& document =
      Open(Units({kMetre}, 5) + kAxes + test::Placement(3, "$", 2) + test::Wall(4, "$"));
  OffsetScene scene(1000.0, 0.0, 0.0);
  ApplyProjectOffsets(document, kMovedProject, scene);
  const NumberTable& entities = document.mainContainer->entities;
  std::vector<std::uint32_t> markers;
  for (auto at = entities.First(); at; at = entities.Next(at.number)) {
    markers.push_back(at.entity->marker);
  }
  EXPECT_EQ((std::vector<std::uint32_t>{0, 0, 0, 0, 0, 0, 8, 10, 12, 14,
                                        static_cast<std::uint32_t>(-5), 18, 20, 22}),
            markers);
}

TEST_F(ProjectOffsets, AUnitThatWasTakenOutIsBack) {
  Add("first.ifc", Units({kMetre}), "IFC2X3");
  IfcDocument& document = Open(Units({kMillimetre}));
  shell_.options.ignoreUnits = true;
  Check();
  ASSERT_TRUE(AdjustUnit(models_.back()));
  ASSERT_EQ(IFC::kDeleted, At(document, 1)->marker);
  OffsetScene scene(1000.0, 0.0, 0.0);
  ApplyProjectOffsets(document, kMovedProject, scene);
  EXPECT_EQ(IFC::kUnfiled, At(document, 1)->marker);
}

TEST_F(ProjectOffsets, AModelThatIsNotMovedKeepsItsMarkers) {
  IfcDocument& document = Open(Units({kMillimetre}));
  At(document, 1)->marker = IFC::kDeleted;
  OffsetScene scene;
  ApplyProjectOffsets(document, kMovedProject, scene);
  EXPECT_EQ(IFC::kDeleted, At(document, 1)->marker);
  EXPECT_EQ(2u, At(document, 2)->marker);
}

}  // namespace
}  // namespace corvel
