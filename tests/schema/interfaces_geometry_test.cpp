// Placements, points, directions and solids as the engine sees them, in every release.
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "schema/interfaces/interfaces.h"
#include "schema/record_model.h"

namespace corvel::test {

using IFC::IfcEntity;
using IFC::VirtualLocalPlacement;

// --- VirtualLocalPlacement -----------------------------------------------------------------------
class LocalPlacementInterface : public EachRelease {
 protected:
  VirtualLocalPlacement* AddPlacement(std::uint32_t number, const std::string& relativeTo) {
    return &AddAs<VirtualLocalPlacement>(number, "IFCLOCALPLACEMENT(" + relativeTo + ",$)");
  }

  // Placements 1 to `count`, each relative to the next, the last one relative to nothing.
  std::vector<VirtualLocalPlacement*> AddChain(std::uint32_t count) {
    std::vector<VirtualLocalPlacement*> chain;
    for (std::uint32_t number = 1; number <= count; ++number) {
      chain.push_back(AddPlacement(number, "$"));
      if (number > 1) chain[number - 2]->setPlacementRelTo(chain[number - 1]);
    }
    return chain;
  }
};
RUN_FOR_EACH_RELEASE(LocalPlacementInterface);

TEST_P(LocalPlacementInterface, IsPlacedRelativeToAnyPlacement) {
  Add(1, "IFCLOCALPLACEMENT");
  IfcEntity* const grid = Add(2, "IFCGRIDPLACEMENT");
  VirtualLocalPlacement* const placement = AddPlacement(3, "#1");
  placement->setPlacementRelTo(grid);
  EXPECT_EQ("IFCLOCALPLACEMENT(#2,*)", Written(placement));
}

TEST_P(LocalPlacementInterface, PlacementThatWasAbsentIsPresentOnceSet) {
  IfcEntity* const other = Add(1, "IFCLOCALPLACEMENT");
  VirtualLocalPlacement* const placement = AddPlacement(2, "$");
  placement->setPlacementRelTo(other);
  EXPECT_EQ("IFCLOCALPLACEMENT(#1,*)", Written(placement));
}

TEST_P(LocalPlacementInterface, WhatIsNoPlacementTakesTheRelationAway) {
  IfcEntity* const other = Add(1, "IFCLOCALPLACEMENT");
  IfcEntity* const axes = Add(2, "IFCAXIS2PLACEMENT3D");
  VirtualLocalPlacement* const placement = AddPlacement(3, "#1");
  placement->setPlacementRelTo(axes);
  EXPECT_EQ("IFCLOCALPLACEMENT($,*)", Written(placement));
  EXPECT_EQ(nullptr, placement->getRootPlacement());
  placement->setPlacementRelTo(other);
  placement->setPlacementRelTo(nullptr);
  EXPECT_EQ("IFCLOCALPLACEMENT($,*)", Written(placement));
}

TEST_P(LocalPlacementInterface, TellsWhatItIsPlacedRelativeTo) {
  IfcEntity* const grid = Add(1, "IFCGRIDPLACEMENT");
  VirtualLocalPlacement* const placement = AddPlacement(2, "$");
  EXPECT_EQ(nullptr, placement->getPlacementRelTo());
  placement->setPlacementRelTo(grid);
  EXPECT_EQ(grid, placement->getPlacementRelTo());
  EXPECT_EQ(placement, AddPlacement(3, "#2")->getPlacementRelTo());
  EXPECT_EQ(nullptr, AddPlacement(4, "#77")->getPlacementRelTo());
}

TEST_P(LocalPlacementInterface, RelativePlacementIsIn2DOr3D) {
  VirtualLocalPlacement* const placement = AddPlacement(1, "$");
  EXPECT_EQ(nullptr, placement->getRelativePlacement());
  for (const char* const axesClass : {"IFCAXIS2PLACEMENT3D", "IFCAXIS2PLACEMENT2D"}) {
    IfcEntity* const axes = Model().Blank(axesClass);
    axes->SetMarker(7);
    placement->setRelativePlacement(axes);
    EXPECT_EQ(axes, placement->getRelativePlacement());
    EXPECT_EQ("IFCLOCALPLACEMENT($,#7)", Written(placement));
  }
}

TEST_P(LocalPlacementInterface, WhatIsNoAxisPlacementBecomesNull) {
  IfcEntity* const axes = Add(1, "IFCAXIS2PLACEMENT3D");
  IfcEntity* const oneAxis = Add(2, "IFCAXIS1PLACEMENT");
  VirtualLocalPlacement* const placement = AddPlacement(3, "$");
  placement->setRelativePlacement(axes);
  placement->setRelativePlacement(oneAxis);
  EXPECT_EQ(nullptr, placement->getRelativePlacement());
  placement->setRelativePlacement(axes);
  placement->setRelativePlacement(nullptr);
  EXPECT_EQ("IFCLOCALPLACEMENT($,*)", Written(placement));
}

TEST_P(LocalPlacementInterface, RootIsTheLastOfTheChainAndHasNoneItself) {
  const auto chain = AddChain(3);
  EXPECT_EQ(chain[2], chain[0]->getRootPlacement());
  EXPECT_EQ(chain[2], chain[1]->getRootPlacement());
  EXPECT_EQ(nullptr, chain[2]->getRootPlacement());
}

TEST_P(LocalPlacementInterface, RootOfAChainOnAGridIsItsLastLocalPlacement) {
  const auto chain = AddChain(3);
  chain[2]->setPlacementRelTo(Add(4, "IFCGRIDPLACEMENT"));
  EXPECT_EQ(chain[2], chain[0]->getRootPlacement());
  EXPECT_EQ(nullptr, chain[2]->getRootPlacement());
}

class LinearPlacementInterface : public LocalPlacementInterface {};
RUN_FOR_RELEASES(LinearPlacementInterface, IFC4X1, IFC4X4);

// From IFC4X2 on it has a PlacementRelTo of its own, which is not followed.
TEST_P(LinearPlacementInterface, LinearPlacementEndsTheChainAsAGridDoes) {
  const auto chain = AddChain(2);
  AddPlacement(3, "$");
  chain[1]->setPlacementRelTo(Add(4, "IFCLINEARPLACEMENT(#3)"));
  EXPECT_EQ(chain[1], chain[0]->getRootPlacement());
  EXPECT_EQ(nullptr, chain[1]->getRootPlacement());
}

TEST_P(LocalPlacementInterface, LongChainHasARoot) {
  const auto chain = AddChain(10000);
  EXPECT_EQ(chain.back(), chain.front()->getRootPlacement());
}

// Every way into every circle of up to six placements: the root is where the way closes.
TEST_P(LocalPlacementInterface, CircleEndsAtTheFirstPlacementThatComesTwice) {
  for (std::size_t length = 1; length <= 6; ++length) {
    for (std::size_t closing = 0; closing < length; ++closing) {
      std::vector<VirtualLocalPlacement*> way;
      for (std::size_t i = 0; i < length; ++i) {
        way.push_back(EntityCast<VirtualLocalPlacement>(Model().Blank("IFCLOCALPLACEMENT")));
        if (i > 0) way[i - 1]->setPlacementRelTo(way[i]);
      }
      way.back()->setPlacementRelTo(way[closing]);
      for (std::size_t start = 0; start < length; ++start) {
        VirtualLocalPlacement* const wanted = way[start < closing ? closing : start];
        EXPECT_EQ(wanted, way[start]->getRootPlacement())
            << length << " placements, closed at " << closing << ", from " << start;
      }
    }
  }
}

// --- VirtualIfcAxis2Placement3D ------------------------------------------------------------------
class AxisPlacementInterface : public EachRelease {};
RUN_FOR_EACH_RELEASE(AxisPlacementInterface);

TEST_P(AxisPlacementInterface, AttributesAreReplaced) {
  IfcEntity* const point = Add(1, "IFCCARTESIANPOINT((0.,0.,0.))");
  IfcEntity* const up = Add(2, "IFCDIRECTION((0.,0.,1.))");
  IfcEntity* const right = Add(3, "IFCDIRECTION((1.,0.,0.))");
  auto& axes = AddAs<IFC::VirtualIfcAxis2Placement3D>(4, "IFCAXIS2PLACEMENT3D($,$,$)");
  axes.setAttributes(point, up, right);
  EXPECT_EQ("IFCAXIS2PLACEMENT3D(#1,#2,#3)", Written(&axes));
  EXPECT_EQ(up, axes.getAxis());
  EXPECT_EQ(right, axes.getRefDirection());
}

TEST_P(AxisPlacementInterface, AbsentDirectionsAreNull) {
  Add(1, "IFCCARTESIANPOINT((0.,0.,0.))");
  auto& axes = AddAs<IFC::VirtualIfcAxis2Placement3D>(2, "IFCAXIS2PLACEMENT3D(#1,$,$)");
  EXPECT_EQ(nullptr, axes.getAxis());
  EXPECT_EQ(nullptr, axes.getRefDirection());
}

TEST_P(AxisPlacementInterface, WhatIsOfAnotherClassIsCleared) {
  IfcEntity* const point = Add(1, "IFCCARTESIANPOINT((0.,0.,0.))");
  IfcEntity* const up = Add(2, "IFCDIRECTION((0.,0.,1.))");
  auto& axes = AddAs<IFC::VirtualIfcAxis2Placement3D>(3, "IFCAXIS2PLACEMENT3D(#1,#2,#2)");
  axes.setAttributes(up, point, point);
  EXPECT_EQ("IFCAXIS2PLACEMENT3D(*,$,$)", Written(&axes));
  EXPECT_EQ(nullptr, axes.getAxis());
  EXPECT_EQ(nullptr, axes.getRefDirection());
}

TEST_P(AxisPlacementInterface, NullsClearEverything) {
  Add(1, "IFCCARTESIANPOINT((0.,0.,0.))");
  Add(2, "IFCDIRECTION((0.,0.,1.))");
  auto& axes = AddAs<IFC::VirtualIfcAxis2Placement3D>(3, "IFCAXIS2PLACEMENT3D(#1,#2,#2)");
  axes.setAttributes(nullptr, nullptr, nullptr);
  EXPECT_EQ("IFCAXIS2PLACEMENT3D(*,$,$)", Written(&axes));
}

// IFC4X3_ADD2 and IFC4X4 read any point as a location; the operation takes cartesian ones only.
class OtherPointInterface : public EachRelease {};
RUN_FOR_RELEASES(OtherPointInterface, IFC2X2_PLATFORM, IFC4X4);

TEST_P(OtherPointInterface, LocationOfAnotherClassOfPointsBecomesNull) {
  IfcEntity* const onCurve = Add(1, "IFCPOINTONCURVE");
  auto& axes = AddAs<IFC::VirtualIfcAxis2Placement3D>(2, "IFCAXIS2PLACEMENT3D(#1,$,$)");
  const bool anyPoint = Schema() >= SchemaNamespace::IFC4X3_ADD2;
  EXPECT_EQ(anyPoint ? "IFCAXIS2PLACEMENT3D(#1,$,$)" : "IFCAXIS2PLACEMENT3D(*,$,$)",
            Written(&axes));
  axes.setAttributes(onCurve, nullptr, nullptr);
  EXPECT_EQ("IFCAXIS2PLACEMENT3D(*,$,$)", Written(&axes));
}

// --- VirtualIfcCartesianPoint --------------------------------------------------------------------
class PointInterface : public EachRelease {};
RUN_FOR_EACH_RELEASE(PointInterface);

TEST_P(PointInterface, CoordinatesAreReadInAnyNumber) {
  EXPECT_EQ(
      (std::vector{1.0, 2.5, -3.0}),
      AddAs<IFC::VirtualIfcCartesianPoint>(1, "IFCCARTESIANPOINT((1.,2.5,-3.))").getCoordinates());
  EXPECT_EQ((std::vector{1.0, 2.0}),
            AddAs<IFC::VirtualIfcCartesianPoint>(2, "IFCCARTESIANPOINT((1.,2.))").getCoordinates());
  EXPECT_TRUE(
      AddAs<IFC::VirtualIfcCartesianPoint>(3, "IFCCARTESIANPOINT(())").getCoordinates().empty());
}

TEST_P(PointInterface, CoordinatesAreReplacedByFewerOrMore) {
  auto& point = AddAs<IFC::VirtualIfcCartesianPoint>(1, "IFCCARTESIANPOINT((1.,2.))");
  point.setCoordinates({4.0, 5.0, 6.0}, Pool());
  EXPECT_EQ("IFCCARTESIANPOINT((4.,5.,6.))", Written(&point));
  point.setCoordinates({7.0}, Pool());
  EXPECT_EQ("IFCCARTESIANPOINT((7.))", Written(&point));
  point.setCoordinates({}, Pool());
  EXPECT_EQ("IFCCARTESIANPOINT(())", Written(&point));
}

TEST_P(PointInterface, VectorOfCoordinatesIsLeftEmpty) {
  auto& point = AddAs<IFC::VirtualIfcCartesianPoint>(1, "IFCCARTESIANPOINT((1.,2.))");
  std::vector<double> coordinates{4.0, 5.0, 6.0};
  point.setCoordinates(std::move(coordinates), Pool());
  EXPECT_TRUE(coordinates.empty());
}

TEST_P(PointInterface, CoordinatesGivenOutAreACopy) {
  auto& point = AddAs<IFC::VirtualIfcCartesianPoint>(1, "IFCCARTESIANPOINT((1.,2.))");
  std::vector<double> coordinates = point.getCoordinates();
  coordinates[0] = 9.0;
  EXPECT_EQ("IFCCARTESIANPOINT((1.,2.))", Written(&point));
}

// --- VirtualIfcDirection -------------------------------------------------------------------------
class DirectionInterface : public EachRelease {
 protected:
  void ExpectRatios(std::uint32_t number, const std::string& record, double x, double y, double z,
                    bool valid) {
    const IFC::DirectionRatios ratios =
        AddAs<IFC::VirtualIfcDirection>(number, record).getDirectionRatios();
    EXPECT_EQ(x, ratios.x) << record;
    EXPECT_EQ(y, ratios.y) << record;
    EXPECT_EQ(z, ratios.z) << record;
    EXPECT_EQ(valid, ratios.valid) << record;
  }
};
RUN_FOR_EACH_RELEASE(DirectionInterface);

TEST_P(DirectionInterface, RatiosAreReadWithZeroForWhatIsMissing) {
  ExpectRatios(1, "IFCDIRECTION((1.,2.,3.))", 1.0, 2.0, 3.0, true);
  ExpectRatios(2, "IFCDIRECTION((1.,0.))", 1.0, 0.0, 0.0, true);
  ExpectRatios(3, "IFCDIRECTION((1.))", 1.0, 0.0, 0.0, true);
  ExpectRatios(4, "IFCDIRECTION((1.,2.,3.,4.))", 1.0, 2.0, 3.0, true);
}

TEST_P(DirectionInterface, RatiosThatAreAllZeroAreNotValid) {
  ExpectRatios(1, "IFCDIRECTION((0.,0.))", 0.0, 0.0, 0.0, false);
  ExpectRatios(2, "IFCDIRECTION((0.,0.,0.))", 0.0, 0.0, 0.0, false);
  ExpectRatios(3, "IFCDIRECTION((0.,-0.,0.))", 0.0, 0.0, 0.0, false);
  ExpectRatios(4, "IFCDIRECTION(())", 0.0, 0.0, 0.0, false);
  ExpectRatios(5, "IFCDIRECTION((0.,0.,1.E-300))", 0.0, 0.0, 1e-300, true);
  ExpectRatios(6, "IFCDIRECTION((0.,-1.))", 0.0, -1.0, 0.0, true);
}

TEST_P(DirectionInterface, DirectionHasThreeRatiosOnceTheyAreSet) {
  std::uint32_t number = 0;
  for (const char* const record : {"IFCDIRECTION(())", "IFCDIRECTION((1.,0.))",
                                   "IFCDIRECTION((1.,2.,3.))", "IFCDIRECTION((1.,2.,3.,4.))"}) {
    auto& direction = AddAs<IFC::VirtualIfcDirection>(++number, record);
    direction.setDirectionRatios(0.0, 7.0, -1.0, Pool());
    EXPECT_EQ("IFCDIRECTION((0.,7.,-1.))", Written(&direction)) << record;
  }
}

// --- VirtualGeometricRepresentation --------------------------------------------------------------
class SolidInterface : public EachRelease {};
RUN_FOR_EACH_RELEASE(SolidInterface);

TEST_P(SolidInterface, OnlyTheDepthIsScaled) {
  Add(1, "IFCCIRCLEPROFILEDEF");
  Add(2, "IFCAXIS2PLACEMENT3D");
  Add(3, "IFCDIRECTION((0.,0.,1.))");
  auto& solid = AddAs<IFC::VirtualGeometricRepresentation>(4, "IFCEXTRUDEDAREASOLID(#1,#2,#3,4.)");
  solid.scaleDepth(2.5);
  EXPECT_EQ("IFCEXTRUDEDAREASOLID(#1,#2,#3,10.)", Written(&solid));
  EXPECT_EQ("IFCDIRECTION((0.,0.,1.))", Written(Model().Find(3)));
}

class TaperedSolidInterface : public EachRelease {};
RUN_FOR_RELEASES(TaperedSolidInterface, IFC4, IFC4X4);

TEST_P(TaperedSolidInterface, TaperedSolidIsScaledToo) {
  auto& solid =
      AddAs<IFC::VirtualGeometricRepresentation>(1, "IFCEXTRUDEDAREASOLIDTAPERED($,$,$,4.,$)");
  solid.scaleDepth(-0.5);
  EXPECT_EQ("IFCEXTRUDEDAREASOLIDTAPERED(*,$,*,-2.,*)", Written(&solid));
}

}  // namespace corvel::test
