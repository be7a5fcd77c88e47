#include "merge/federation/place/align_contexts.h"

#include <cmath>
#include <numbers>
#include <span>

#include "core/main_container.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/place/place_model.h"
#include "merge/federation/tree/length_in_metres.h"
#include "merge/federation/tree/world_places.h"

namespace corvel {

namespace {

// Between the points that models of one site are measured from, true north turns by about as much.
constexpr double kSameNorthDegrees = 0.01;
constexpr PlaceTolerance kSameWorld = {1e-7, 0.0, 1e-10};
constexpr North kYAxis = {0.0, 1.0};

double DegreesBetween(const North& one, const North& other) {
  const double sine = one[0] * other[1] - one[1] * other[0];
  const double cosine = one[0] * other[0] + one[1] * other[1];
  return std::abs(std::atan2(sine, cosine)) * 180.0 / std::numbers::pi;
}

std::optional<North> Turned(const North& north, const Transform& place) {
  const Triple turned = place.Turned({north[0], north[1], 0.0});
  const double length = std::hypot(turned[0], turned[1]);
  if (length == 0.0) return {};
  return North{turned[0] / length, turned[1] / length};
}

void TurnNorth(ContextChange& change, const std::optional<North>& first, const Transform& place) {
  const std::optional<North> own = TrueNorthIn(change.context);
  if (!own) {
    change.north = first;
    return;
  }
  const std::optional<North> turned = Turned(*own, place);
  if (!turned) return;
  const North wanted = first.value_or(kYAxis);
  change.degreesFromFirst = DegreesBetween(*turned, wanted);
  change.north = change.degreesFromFirst <= kSameNorthDegrees ? wanted : *turned;
  if (change.degreesFromFirst <= kSameNorthDegrees) change.degreesFromFirst = 0.0;
  if (*change.north == *own) change.north.reset();
}

bool SetNorth(IfcDocument& document, IFC::IfcEntity& context, const North& north) {
  IFC::IfcEntity* const direction = document.CreateESet("IfcDirection");
  if (direction == nullptr) return false;
  List<double> ratios;
  ratios.Assign(std::span(north), document.mainContainer->Pool());
  return SetAttribute(*direction, "DirectionRatios", ratios) &&
         SetAttribute(context, "TrueNorth", direction);
}

}  // namespace

std::optional<North> TrueNorthIn(const IFC::IfcEntity* context) {
  const IFC::IfcEntity* const north =
      context == nullptr ? nullptr : ReferenceOf(*context, "TrueNorth");
  const List<double>* const ratios =
      north == nullptr ? nullptr : RealsOf(*north, "DirectionRatios");
  if (ratios == nullptr || ratios->size() < 2) return {};
  const double length = std::hypot((*ratios)[0], (*ratios)[1]);
  if (!(length > 0.0) || !std::isfinite(length)) return {};
  return North{(*ratios)[0] / length, (*ratios)[1] / length};
}

std::vector<ContextChange> ContextChangesOf(const MapReference& first, const MapReference& later,
                                            const Transform& place) {
  const std::optional<North> north = TrueNorthIn(first.First().context);
  const Transform& worldOfFirst = first.First().frame.world;
  const Transform& worldOfLater = later.First().frame.world;
  const bool worldsDiffer = !SamePlace(worldOfFirst, worldOfLater, kSameWorld);
  const IFC::IfcEntity* const measured = later.First().context;
  std::vector<ContextChange> changes;
  for (IFC::IfcEntity* const context : later.contexts) {
    ContextChange change{context};
    const auto sameWorld = [&] {
      const IFC::IfcEntity* const own = ReferenceOf(*context, "WorldCoordinateSystem");
      const IFC::IfcEntity* const told = ReferenceOf(*measured, "WorldCoordinateSystem");
      if (own == told) return true;
      const auto one = PlaceOf(own);
      const auto other = PlaceOf(told);
      return one && other && SamePlace(*one, *other, kSameWorld);
    };
    const bool isInSpace = IntegerOf(*context, "CoordinateSpaceDimension") == 3;
    change.hasWorldOfFirst = worldsDiffer && isInSpace && measured != nullptr && sameWorld();
    TurnNorth(change, north, place);
    changes.push_back(change);
  }
  return changes;
}

bool ChangeContexts(IfcDocument& document, const std::vector<ContextChange>& changes,
                    const Transform& worldOfFirst, double metresPerUnit) {
  Transform world = worldOfFirst;
  world.origin = Times(world.origin, 1.0 / metresPerUnit);
  for (const ContextChange& change : changes) {
    if (change.hasWorldOfFirst) {
      IFC::IfcEntity* const axes = NewAxesAt(document, world);
      if (axes == nullptr) return false;
      SetAttribute(*change.context, "WorldCoordinateSystem", axes);
    }
    if (change.north && !SetNorth(document, *change.context, *change.north)) return false;
  }
  return true;
}

}  // namespace corvel
