#include "merge/federation/tree/world_places.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "merge/record_document.h"

namespace corvel::test {
namespace {

constexpr std::uint32_t kPlacements = 60;
constexpr std::uint32_t kAxes = 100;    // numbers of axis placements
constexpr std::uint32_t kPoints = 200;  // of what they consist of
constexpr std::uint32_t kDirections = 300;

// Placements #1 to #60 on each other, some in circles, some on a point that is none of space, some
// on none at all.
std::vector<PlannedRecord> RandomPlacements(std::mt19937& random) {
  const auto any = [&random](std::uint32_t first, std::uint32_t count) {
    return "#" + std::to_string(first + random() % count);
  };
  const auto number = [&random] {
    return std::to_string(static_cast<int>(random() % 2001) - 1000) + ".";
  };
  const auto numbers = [&] { return "(" + number() + "," + number() + "," + number() + ")"; };
  constexpr std::uint32_t kEach = 20;
  std::vector<PlannedRecord> records;
  for (std::uint32_t i = 0; i < kEach; ++i) {
    records.push_back({kPoints + i, "IFCCARTESIANPOINT", numbers()});
    records.push_back({kDirections + i, "IFCDIRECTION", numbers()});
    const bool isTurned = random() % 2 == 0;
    records.push_back({kAxes + i, "IFCAXIS2PLACEMENT3D",
                       any(kPoints, kEach) + "," + (isTurned ? any(kDirections, kEach) : "$") +
                           "," + (isTurned ? any(kDirections, kEach) : "$")});
  }
  for (std::uint32_t i = 1; i <= kPlacements; ++i) {
    if (random() % 15 == 0) {
      records.push_back({i, "IFCGRIDPLACEMENT", "$,$"});
      continue;
    }
    const bool isOutermost = random() % 4 == 0;
    const bool mayCircle = random() % 8 == 0;
    const std::string outer = isOutermost || i == 1 ? "$" : any(1, mayCircle ? kPlacements : i - 1);
    records.push_back({i, "IFCLOCALPLACEMENT", outer + "," + any(kAxes, kEach)});
  }
  return records;
}

// One step after the other, and nothing is remembered.
std::optional<Transform> PlainPlace(const IFC::IfcEntity& placement) {
  std::vector<Transform> steps;
  std::set<const IFC::IfcEntity*> seen;
  for (const IFC::IfcEntity* at = &placement; at != nullptr;
       at = ReferenceOf(*at, "PlacementRelTo")) {
    if (!seen.insert(at).second || at->getClassName() != WideView(u"IfcLocalPlacement")) {
      return std::nullopt;
    }
    const auto step = PlaceOf(ReferenceOf(*at, "RelativePlacement"));
    if (!step) return std::nullopt;
    steps.push_back(*step);
  }
  Transform place = steps.back();
  for (std::size_t i = steps.size() - 1; i-- > 0;) place = place.Around(steps[i]);
  return place;
}

void ExpectSame(const std::optional<Transform>& expected, const std::optional<Transform>& place) {
  ASSERT_EQ(expected.has_value(), place.has_value());
  if (!expected) return;
  EXPECT_TRUE(SamePlace(*expected, *place, {.origin = 1e-6, .partOfOrigin = 1e-9, .axis = 1e-9}));
}

TEST(WorldPlaces, RandomPlacementsStandWhereTheirStepsLeadAlsoAsLeaves) {
  std::mt19937 random(20);
  std::size_t placed = 0;
  for (int run = 0; run < 200; ++run) {
    RecordDocument document(RandomPlacements(random), SchemaNamespace::IFC4);
    WorldPlaces worlds;
    for (int i = 0; i < 100; ++i) {
      const std::uint32_t number = 1 + static_cast<std::uint32_t>(random()) % kPlacements;
      IFC::IfcEntity& placement = *(*document).mainContainer->GetEntityByOrginalNumber(number);
      const auto expected = PlainPlace(placement);
      SCOPED_TRACE("run " + std::to_string(run) + ", #" + std::to_string(number));
      ExpectSame(expected, random() % 2 == 0 ? worlds.OfLeaf(placement) : worlds.Of(placement));
      placed += expected ? 1 : 0;
      if (HasFailure()) return;
    }
  }
  EXPECT_GT(placed, 5000u);
  EXPECT_LT(placed, 19000u);
}

}  // namespace
}  // namespace corvel::test
