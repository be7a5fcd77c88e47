// Where products stand in the output: found by following their placements, before and after.
#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "merge/project_offsets.h"
#include "offset_scene.h"
#include "schema/interfaces/geometry.h"
#include "schema/interfaces/product.h"
#include "schema/record_model.h"
#include "unit_run.h"

namespace corvel {
namespace {

using test::kMovedProject;
using test::OffsetScene;

// --- Geometry ------------------------------------------------------------------------------------
using Vector = std::array<double, 3>;

Vector operator+(const Vector& a, const Vector& b) {
  return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
Vector operator*(const Vector& a, double factor) {
  return {a[0] * factor, a[1] * factor, a[2] * factor};
}
double Dot(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
double Length(const Vector& a) { return std::sqrt(Dot(a, a)); }
Vector Unit(const Vector& a) { return a * (1.0 / Length(a)); }
Vector Cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vector DirectionOf(IFC::IfcEntity* entity, const Vector& absent) {
  if (entity == nullptr) return absent;
  const IFC::DirectionRatios ratios =
      EntityCast<IFC::VirtualIfcDirection>(entity)->getDirectionRatios();
  return {ratios.x, ratios.y, ratios.z};
}

// From the coordinates of an IfcAxis2Placement3D to those around it.
Vector OutOf(IFC::IfcEntity* entity, const Vector& point) {
  const auto* const axes = EntityCast<IFC::VirtualIfcAxis2Placement3D>(entity);
  IFC::ChildQueue children;
  entity->collectChildren(children);
  const auto location =
      EntityCast<IFC::VirtualIfcCartesianPoint>(children[0].entity)->getCoordinates();
  const Vector z = Unit(DirectionOf(axes->getAxis(), {0.0, 0.0, 1.0}));
  const Vector nearX = DirectionOf(axes->getRefDirection(), {1.0, 0.0, 0.0});
  const Vector x = Unit(nearX + z * -Dot(nearX, z));
  return Vector{location[0], location[1], location[2]} + x * point[0] + Cross(z, x) * point[1] +
         z * point[2];
}

// A corner of each product, in its own coordinates.
constexpr Vector kCorner = {1.25, -2.5, 3.0};

// The corner as far out as local placements lead.
Vector CornerOf(IFC::VirtualIfcProduct& product) {
  Vector point = kCorner;
  IFC::IfcEntity* placement = product.getObjectPlacement();
  while (auto* const local = EntityCast<IFC::VirtualLocalPlacement>(placement)) {
    point = OutOf(local->getRelativePlacement(), point);
    placement = local->getPlacementRelTo();
  }
  return point;
}

// --- Models --------------------------------------------------------------------------------------
struct LengthUnitOfFile {
  const char* name;
  std::string records;  // #1 is the unit, up to #9 what it needs
  double millimetres;   // in one unit
  double inAMetre;
};

const std::array<LengthUnitOfFile, 4>& AllUnits() {
  static const std::string end = ";\n";
  static const std::array<LengthUnitOfFile, 4> all = {{
      {"metres", "#1=" + std::string(test::kMetre) + end, 1000.0, 1.0},
      {"millimetres", "#1=" + std::string(test::kMillimetre) + end, 1.0, 1000.0},
      {"centimetres", "#1=" + std::string(test::kCentimetre) + end, 10.0, 100.0},
      {"feet",
       "#1=IFCCONVERSIONBASEDUNIT(#2,.LENGTHUNIT.,'FOOT',#3);\n"
       "#2=IFCDIMENSIONALEXPONENTS(1,0,0,0,0,0,0);\n"
       "#3=IFCMEASUREWITHUNIT(IFCRATIOMEASURE(0.3048),#4);\n#4=" +
           std::string(test::kMetre) + end,
       304.80002F, 3.28084F},
  }};
  return all;
}

std::string TripleOf(std::mt19937& random, double largest) {
  std::uniform_real_distribution<double> any(-largest, largest);
  std::string text;
  for (int i = 0; i < 3; ++i) text += (i == 0 ? "" : ",") + std::to_string(any(random));
  return "((" + text + "));\n";
}

// Axes at a random place with random directions, `number` and three records behind it.
std::string AnyAxes(std::mt19937& random, unsigned number) {
  const auto text = [number](unsigned i) { return "#" + std::to_string(number + i); };
  return text(0) + "=IFCAXIS2PLACEMENT3D(" + text(1) + "," + text(2) + "," + text(3) + ");\n" +
         text(1) + "=IFCCARTESIANPOINT" + TripleOf(random, 5000.0) + text(2) + "=IFCDIRECTION" +
         TripleOf(random, 1.0) + text(3) + "=IFCDIRECTION" + TripleOf(random, 1.0);
}

// Three chains below placements of their own (#40, #44, #46), one of them long; a wall without a
// placement, one on a grid and one on a placement on the grid.
constexpr std::array<std::uint32_t, 5> kMoved = {60, 61, 62, 63, 64};
constexpr std::array<std::uint32_t, 2> kOnGrid = {65, 66};

std::string PlacedModel(std::mt19937& random, const LengthUnitOfFile& unit) {
  std::string records = unit.records +
                        "#10=IFCUNITASSIGNMENT((#1));\n"
                        "#11=IFCPROJECT('p',$,'P',$,$,$,$,$,#10);\n"
                        "#12=IFCGRIDPLACEMENT($,$);\n";
  for (unsigned number = 20; number < 40; number += 4) records += AnyAxes(random, number);
  return records + test::Placement(40, "$", 20) + test::Placement(41, "#40", 24) +
         test::Placement(42, "#41", 28) + test::Placement(43, "#42", 32) +
         test::Placement(44, "$", 36) + test::Placement(45, "#44", 20) +
         test::Placement(46, "$", 24) + test::Placement(47, "#12", 28) + test::Wall(60, "#43") +
         test::Wall(61, "#41") + test::Wall(62, "#45") + test::Wall(63, "#46") +
         test::Wall(64, "$") + test::Wall(65, "#47") + test::Wall(66, "#12");
}

class MovedPoints : public test::UnitRun {
 protected:
  using Corners = std::map<std::uint32_t, Vector>;

  static Corners CornersOf(IfcDocument& document) {
    Corners corners;
    const NumberTable& entities = document.mainContainer->entities;
    for (auto at = entities.First(); at; at = entities.Next(at.number)) {
      if (auto* const product = EntityCast<IFC::VirtualIfcProduct>(at.entity)) {
        corners[at.number] = CornerOf(*product);
      }
    }
    return corners;
  }
  // Moves the model, keeps the project and of the walls these, writes it and reads it again.
  IfcDocument& MovedAndReread(IfcDocument& document, OffsetScene scene,
                              const std::vector<std::uint32_t>& kept) {
    ApplyProjectOffsets(document, kMovedProject, scene);
    std::vector<MarkerPair> toDelete;
    std::vector<MarkerPair> toSave = {{11, 0}};
    for (std::uint32_t number = 60; number <= 66; ++number) {
      const bool isKept = std::find(kept.begin(), kept.end(), number) != kept.end();
      (isKept ? toSave : toDelete).push_back({number, 11});
    }
    EXPECT_TRUE(document.DeleteObjects(toDelete, toSave, false, false, 1));
    document.mainContainer->FillMarkers();
    EXPECT_EQ(1, document.SaveFile(folder_.Path("out.ifc")));
    const std::string written = folder_.Read("out.ifc");
    const std::size_t start = written.find("DATA;\n") + 6;
    return Add("again.ifc", written.substr(start, written.rfind("ENDSEC;") - start));
  }
  // 15 digits are written; turning and adding costs a few bits of the coordinates.
  static void ExpectMoved(const Vector& from, const Vector& to, const Vector& by,
                          const std::string& told) {
    const double room = 1e-14 * Length(by) + 1e-11 * (1.0 + Length(from));
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(from[i] + by[i], to[i], room) << told;
  }
};

struct Movement {
  Vector offset;  // millimetres
  Vector first;   // metres, as the second
  Vector second;
};

const std::vector<Movement>& Movements() {
  static const std::vector<Movement> all = {
      {{1000.0, 0.0, 0.0}, {}, {}},
      {{-1234.5, 678.25, -0.125}, {}, {}},
      {{1e-6, -2e-7, 3e-9}, {}, {}},
      {{1e15, -4e14, 7e13}, {}, {}},
      {{}, {2.0, -3.5, 0.25}, {}},
      {{}, {5500000.0, 420000.0, 112.0}, {-12.5, 3.0, 1e-6}},
      {{-7.5, 1e9, 3e-5}, {1e8, -1e-4, 17.0}, {-1.0, 2.0, 0.0}},
      {{0.0, 0.0, -3000.0}, {1.0, 0.0, 0.0}, {-1.0, 0.0, 0.0}},
  };
  return all;
}

TEST_F(MovedPoints, EveryCornerIsMovedByWhatTheHostTells) {
  std::mt19937 random(4);
  for (const LengthUnitOfFile& unit : AllUnits()) {
    for (const Movement& movement : Movements()) {
      IfcDocument& document = Add("model.ifc", PlacedModel(random, unit));
      const Corners before = CornersOf(document);
      OffsetScene scene(movement.offset[0], movement.offset[1], movement.offset[2]);
      scene.centers = {movement.first, movement.second};
      const Corners after =
          CornersOf(MovedAndReread(document, scene, {60, 61, 62, 63, 64, 65, 66}));
      ASSERT_EQ(before.size(), after.size());
      const Vector by = movement.offset * (1.0 / unit.millimetres) +
                        (movement.first + movement.second) * -unit.inAMetre;
      for (const std::uint32_t wall : kMoved) {
        ExpectMoved(before.at(wall), after.at(wall), by, unit.name);
      }
      for (const std::uint32_t wall : kOnGrid) {
        ExpectMoved(before.at(wall), after.at(wall), {}, unit.name);
      }
      EXPECT_TRUE(world_.reports->empty());
      models_.clear();
    }
  }
}

// What carries the shift is kept with whatever hangs on it.
TEST_F(MovedPoints, TheShiftIsKeptWithOneWall) {
  std::mt19937 random(5);
  for (const std::uint32_t wall : kMoved) {
    IfcDocument& document = Add("model.ifc", PlacedModel(random, AllUnits()[1]));
    const Vector before = CornersOf(document).at(wall);
    IfcDocument& reread = MovedAndReread(document, {10.0, 20.0, 30.0}, {wall});
    const Corners after = CornersOf(reread);
    ASSERT_EQ(1u, after.size());
    ExpectMoved(before, after.at(wall), {10.0, 20.0, 30.0}, std::to_string(wall));
  }
}

// The factors of the foot are rounded, and still good for a building.
TEST_F(MovedPoints, FeetAreMovedByTheOffsetToSevenDigits) {
  std::mt19937 random(6);
  const LengthUnitOfFile& feet = AllUnits()[3];
  IfcDocument& document = Add("model.ifc", PlacedModel(random, feet));
  const Vector before = CornersOf(document).at(63);
  OffsetScene scene(1e6, 0.0, 0.0);
  scene.centers.first = {0.0, -1e3, 0.0};
  const Vector after = CornersOf(MovedAndReread(document, scene, {63})).at(63);
  EXPECT_NEAR(1e6, (after[0] - before[0]) * 304.8, 0.1);
  EXPECT_NEAR(1e6, (after[1] - before[1]) * 304.8, 0.1);
  EXPECT_NEAR(0.0, after[2] - before[2], 1e-9);
}

TEST_F(MovedPoints, AModelThatIsNotMovedStandsWhereItStood) {
  std::mt19937 random(7);
  IfcDocument& document = Add("model.ifc", PlacedModel(random, AllUnits()[0]));
  const Corners before = CornersOf(document);
  const Corners after = CornersOf(MovedAndReread(document, {0.0, 0.0, 0.0}, {60, 61, 62, 63}));
  for (const std::uint32_t wall : {60u, 61u, 62u, 63u}) {
    ExpectMoved(before.at(wall), after.at(wall), {}, std::to_string(wall));
  }
}

}  // namespace
}  // namespace corvel
