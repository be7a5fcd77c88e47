// Chains and circles of placements, and what is placed in other ways, when a model is moved.
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "merge/project_offsets.h"
#include "offset_scene.h"
#include "record_document.h"
#include "schema/interfaces/geometry.h"
#include "schema/interfaces/product.h"
#include "schema/record_model.h"
#include "schema/registry.h"
#include "step/reader/parser.h"
#include "support/small_stack.h"
#include "unit_run.h"

namespace corvel {
namespace {

using test::kMovedProject;
using test::OffsetScene;
using test::PlannedRecord;
using test::WrittenOut;

// Axes in 3D are #2, in 2D #3.
const std::string kAxisRecords =
    "#1=IFCCARTESIANPOINT((0.,0.,0.));\n"
    "#2=IFCAXIS2PLACEMENT3D(#1,$,$);\n"
    "#3=IFCAXIS2PLACEMENT2D(#1,$);\n";

class PlacementChains : public test::UnitRun {
 protected:
  IfcDocument& Open(const std::string& records, std::string_view schema) {
    IfcDocument& document = Add("model.ifc", kAxisRecords + records, schema);
    world_.reports.Forget();
    return document;
  }
  // What each of these placements is relative to after the move: "none", "#12", or "root" for the
  // new placement.
  std::vector<std::string> RelativeTo(const std::string& records,
                                      const std::vector<std::uint32_t>& placements,
                                      std::string_view schema = "IFC2X3") {
    IfcDocument& document = Open(records, schema);
    OffsetScene scene(1.0, 0.0, 0.0);
    ApplyProjectOffsets(document, kMovedProject, scene);
    std::vector<std::string> found;
    for (const std::uint32_t number : placements) {
      const auto* const placement = EntityCast<IFC::VirtualLocalPlacement>(At(document, number));
      IFC::IfcEntity* const entity = placement->getPlacementRelTo();
      if (entity == nullptr) {
        found.emplace_back("none");
      } else if (entity->marker == IFC::kNewRootPlacement) {
        found.emplace_back("root");
      } else {
        found.push_back("#" + std::to_string(NumberOf(document, entity)));
      }
    }
    return found;
  }
  static std::uint32_t NumberOf(const IfcDocument& document, const IFC::IfcEntity* entity) {
    const NumberTable& entities = document.mainContainer->entities;
    for (auto at = entities.First(); at; at = entities.Next(at.number)) {
      if (at.entity == entity) return at.number;
    }
    return 0;
  }
};

using Targets = std::vector<std::string>;

// --- Circles -------------------------------------------------------------------------------------
TEST_F(PlacementChains, ACircleIsOpenedWhereTheFirstProductEntersIt) {
  EXPECT_EQ((Targets{"#5", "root", "#4", "#4"}),
            RelativeTo(test::Placement(4, "#5", 2) + test::Placement(5, "#6", 2) +
                           test::Placement(6, "#4", 2) + test::Placement(7, "#4", 2) +
                           test::Wall(8, "#5") + test::Wall(9, "#7"),
                       {4, 5, 6, 7}));
}

TEST_F(PlacementChains, AWayThatLeadsIntoACircleEndsAtTheFirstPlacementThatComesTwice) {
  EXPECT_EQ((Targets{"#5", "root", "#5"}),
            RelativeTo(test::Placement(4, "#5", 2) + test::Placement(5, "#6", 2) +
                           test::Placement(6, "#5", 2) + test::Wall(8, "#4"),
                       {4, 5, 6}));
}

TEST_F(PlacementChains, APlacementRelativeToItselfIsOutermost) {
  EXPECT_EQ((Targets{"root"}), RelativeTo(test::Placement(4, "#4", 2) + test::Wall(8, "#4"), {4}));
}

TEST_F(PlacementChains, ACircleThatIsEnteredAtAPlacementIn2DStaysClosed) {
  EXPECT_EQ((Targets{"#5", "#4", "#4"}),
            RelativeTo(test::Placement(4, "#5", 3) + test::Placement(5, "#4", 2) +
                           test::Placement(6, "#4", 2) + test::Wall(8, "#4") + test::Wall(9, "#6"),
                       {4, 5, 6}));
}

TEST_F(PlacementChains, AnotherProductMayOpenACircleThatTheFirstCouldNot) {
  EXPECT_EQ((Targets{"#5", "root", "#4"}),
            RelativeTo(test::Placement(4, "#5", 3) + test::Placement(5, "#6", 2) +
                           test::Placement(6, "#4", 2) + test::Wall(8, "#4") + test::Wall(9, "#5") +
                           test::Wall(10, "#6"),
                       {4, 5, 6}));
}

// --- Other kinds of placements -------------------------------------------------------------------
TEST_F(PlacementChains, WhatHangsOnAGridStays) {
  EXPECT_EQ((Targets{"#7", "#4", "root"}),
            RelativeTo("#7=IFCGRIDPLACEMENT($,$);\n" + test::Placement(4, "#7", 2) +
                           test::Placement(5, "#4", 2) + test::Placement(6, "$", 2) +
                           test::Wall(8, "#5") + test::Wall(9, "#7") + test::Wall(10, "#6"),
                       {4, 5, 6}));
}

class PlacementsInRelease : public PlacementChains,
                            public testing::WithParamInterface<test::Release> {};
RUN_FOR_EACH_RELEASE(PlacementsInRelease);

TEST_P(PlacementsInRelease, ChainsAreMovedAndGridsAreNot) {
  EXPECT_EQ((Targets{"#8", "#4", "root", "#6"}),
            RelativeTo("#8=IFCGRIDPLACEMENT($,$);\n" + test::Placement(4, "#8", 2) +
                           test::Placement(5, "#4", 2) + test::Placement(6, "$", 2) +
                           test::Placement(7, "#6", 2) + test::Wall(9, "#5") + test::Wall(10, "#7"),
                       {4, 5, 6, 7}, GetParam().name));
}

TEST_P(PlacementsInRelease, ProductsWithoutAPlacementGetOne) {
  IfcDocument& document = Open(test::Wall(4, "$") + test::Wall(5, "$"), GetParam().name);
  OffsetScene scene(1.0, 0.0, 0.0);
  ApplyProjectOffsets(document, kMovedProject, scene);
  const std::string written = WrittenOut(document);
  for (const char* const wanted :
       {"#4=IFCWALL('g4',", ",$,#21,$,$", "#5=IFCWALL('g5',", ",$,#23,$,$",
        "#15=IFCLOCALPLACEMENT($,#13);\n"
        "#17=IFCCARTESIANPOINT((0.,0.,0.));\n"
        "#19=IFCAXIS2PLACEMENT3D(#17,$,$);\n"
        "#21=IFCLOCALPLACEMENT(#15,#19);\n"
        "#23=IFCLOCALPLACEMENT(#15,#19);\n"}) {
    EXPECT_NE(std::string::npos, written.find(wanted)) << wanted << "\n" << written;
  }
}

class LinearPlacements : public PlacementsInRelease {};
RUN_FOR_RELEASES(LinearPlacements, IFC4X1, IFC4X4);

// From IFC4X2 on a linear placement has a PlacementRelTo of its own, which is not followed either.
TEST_P(LinearPlacements, WhatHangsOnALineStays) {
  EXPECT_EQ((Targets{"#7", "#4", "none"}),
            RelativeTo("#7=IFCLINEARPLACEMENT(#6);\n" + test::Placement(4, "#7", 2) +
                           test::Placement(5, "#4", 2) + test::Placement(6, "$", 2) +
                           test::Wall(8, "#5") + test::Wall(9, "#7"),
                       {4, 5, 6}, GetParam().name));
}

// --- Against a plain version ---------------------------------------------------------------------
// The move as one would tell it: each product asks for its outermost placement anew.
void MovePlainly(IfcDocument& document) {
  IFC::MainContainer& container = *document.mainContainer;
  MemoryPool& pool = container.Pool();
  const auto make = [&document](const char* name) { return document.CreateESet(name); };
  container.ResetAllMarkers();
  IFC::IfcEntity* const point = make("IFCCARTESIANPOINT");
  EntityCast<IFC::VirtualIfcCartesianPoint>(point)->setCoordinates({1.0, 0.0, 0.0}, pool);
  IFC::IfcEntity* const up = make("IFCDIRECTION");
  EntityCast<IFC::VirtualIfcDirection>(up)->setDirectionRatios(0.0, 0.0, 1.0, pool);
  IFC::IfcEntity* const right = make("IFCDIRECTION");
  EntityCast<IFC::VirtualIfcDirection>(right)->setDirectionRatios(1.0, 0.0, 0.0, pool);
  IFC::IfcEntity* const axes = make("IFCAXIS2PLACEMENT3D");
  EntityCast<IFC::VirtualIfcAxis2Placement3D>(axes)->setAttributes(point, up, right);
  auto* const root = EntityCast<IFC::VirtualLocalPlacement>(make("IFCLOCALPLACEMENT"));
  root->setRelativePlacement(axes);
  root->marker = IFC::kNewRootPlacement;
  IFC::IfcEntity* origin = nullptr;
  for (auto at = container.entities.First(); at; at = container.entities.Next(at.number)) {
    auto* const product = EntityCast<IFC::VirtualIfcProduct>(at.entity);
    if (product == nullptr) continue;
    IFC::VirtualLocalPlacement* const top = product->getRootPlacement(pool);
    if (top == nullptr) continue;
    if (top->marker == IFC::kMadePlacement) {
      if (origin == nullptr) {
        IFC::IfcEntity* const zero = make("IFCCARTESIANPOINT");
        EntityCast<IFC::VirtualIfcCartesianPoint>(zero)->setCoordinates({0.0, 0.0, 0.0}, pool);
        origin = make("IFCAXIS2PLACEMENT3D");
        EntityCast<IFC::VirtualIfcAxis2Placement3D>(origin)->setAttributes(zero, nullptr, nullptr);
      }
      top->marker = IFC::kUnfiled;
      container.AddEntity(top);
      top->setRelativePlacement(origin);
    }
    IFC::IfcEntity* const above = top->getPlacementRelTo();
    if (above != nullptr && EntityCast<IFC::VirtualLocalPlacement>(above) == nullptr) continue;
    if (EntityCast<IFC::VirtualIfcAxis2Placement3D>(top->getRelativePlacement()) == nullptr) {
      continue;
    }
    if (top->marker == IFC::kNewRootPlacement) continue;
    top->setPlacementRelTo(root);
  }
}

// Placements and walls in any order; most hang on something, in circles too.
std::vector<PlannedRecord> AnyPlacedModel(std::mt19937& random) {
  const auto below = [&random](unsigned end) { return static_cast<unsigned>(random() % end); };
  std::vector<PlannedRecord> records = {{1, "IFCCARTESIANPOINT", "(0.,0.,0.)"},
                                        {2, "IFCAXIS2PLACEMENT3D", "#1,$,$"},
                                        {3, "IFCAXIS2PLACEMENT2D", "#1,$"},
                                        {4, "IFCGRIDPLACEMENT", "$,$"}};
  const unsigned first = 10;
  const unsigned count = 3 + below(14);
  const unsigned in2D = below(4);  // of four placements
  for (unsigned number = first; number < first + count; ++number) {
    const unsigned kind = below(10);
    const std::string target = kind == 0   ? "$"
                               : kind == 1 ? "#4"
                                           : "#" + std::to_string(first + below(count));
    if (below(3) == 0) {
      records.push_back({number, "IFCWALL", "'g',$,$,$,$," + target + ",$,$,$"});
    } else {
      const char* const axes = below(4) < in2D ? ",#3" : ",#2";
      records.push_back({number, "IFCLOCALPLACEMENT", target + axes});
    }
  }
  return records;
}

template <class Move>
std::string AfterMove(const std::vector<PlannedRecord>& records, Move move) {
  IFC::MainContainer::ResetUniqueMarker();
  test::RecordDocument document(records, SchemaNamespace::IFC4);
  move(*document);
  return WrittenOut(*document);
}

TEST_F(PlacementChains, TheFastWalkMovesWhatThePlainOneMoves) {
  std::mt19937 random(20);
  for (int round = 0; round < 10000; ++round) {
    const std::vector<PlannedRecord> records = AnyPlacedModel(random);
    const std::string wanted = AfterMove(records, MovePlainly);
    const std::string moved = AfterMove(records, [](IfcDocument& document) {
      OffsetScene scene(1.0, 0.0, 0.0);
      ApplyProjectOffsets(document, kMovedProject, scene);
    });
    ASSERT_EQ(wanted, moved) << "round " << round;
    world_.reports.Forget();
  }
}

// --- Depth ---------------------------------------------------------------------------------------
// A chain made in memory, a wall on each of its placements.
class DeepChain {
 public:
  // With `closed`, the outermost placement is relative to the innermost.
  DeepChain(std::size_t depth, const char* axesClass, bool closed) : document_(u"deep.ifc") {
    document_->GetParser().SelectSchema(FactoriesOf(SchemaNamespace::IFC4));
    IFC::IfcEntity* const axes = document_->CreateESet(axesClass);
    while (placements_.size() < depth) AddWall(axes);
    if (closed) placements_.front()->setPlacementRelTo(placements_.back());
  }

  IfcDocument& Document() { return *document_; }
  const std::vector<IFC::VirtualLocalPlacement*>& Placements() const { return placements_; }
  std::size_t CountHungOn(std::uint32_t marker) const {
    std::size_t count = 0;
    for (const auto* const placement : placements_) {
      const IFC::IfcEntity* const above = placement->getPlacementRelTo();
      if (above != nullptr && above->marker == marker) ++count;
    }
    return count;
  }

 private:
  void AddWall(IFC::IfcEntity* axes) {
    auto* const wall = EntityCast<IFC::VirtualIfcProduct>(document_->CreateESet("IFCWALL"));
    auto* const placement = wall->getRootPlacement(document_->mainContainer->Pool());
    placement->marker = IFC::kUnfiled;
    document_->mainContainer->AddEntity(placement);
    placement->setRelativePlacement(axes);
    if (!placements_.empty()) placement->setPlacementRelTo(placements_.back());
    placements_.push_back(placement);
  }

  test::GraphDocument document_;
  std::vector<IFC::VirtualLocalPlacement*> placements_;  // from the outermost
};

void ApplyOnSmallStack(DeepChain& chain) {
  OffsetScene scene(1.0, 0.0, 0.0);
  test::RunOnSmallStack([&] { ApplyProjectOffsets(chain.Document(), kMovedProject, scene); });
}

// A walk from each wall to the top would be 500,000,000,000 steps.
TEST_F(PlacementChains, AChainOfAMillionPlacementsWithAWallOnEachIsOneWalk) {
  DeepChain chain(1'000'000, "IFCAXIS2PLACEMENT3D", false);
  ApplyOnSmallStack(chain);
  EXPECT_EQ(1u, chain.CountHungOn(IFC::kNewRootPlacement));
  EXPECT_EQ(IFC::kNewRootPlacement, chain.Placements().front()->getPlacementRelTo()->marker);
}

TEST_F(PlacementChains, ACircleOfAMillionPlacementsIsOpenedOnce) {
  DeepChain chain(1'000'000, "IFCAXIS2PLACEMENT3D", true);
  ApplyOnSmallStack(chain);
  EXPECT_EQ(1u, chain.CountHungOn(IFC::kNewRootPlacement));
}

TEST_F(PlacementChains, ACircleThatCannotBeOpenedIsWalkedOnce) {
  DeepChain chain(1'000'000, "IFCAXIS2PLACEMENT2D", true);
  ApplyOnSmallStack(chain);
  EXPECT_EQ(0u, chain.CountHungOn(IFC::kNewRootPlacement));
}

}  // namespace
}  // namespace corvel
