#include "host/check/placement_check.h"

#include <algorithm>

#include "core/main_container.h"
#include "merge/federation/attribute_values.h"

namespace corvel::host {

namespace {

IFC::IfcEntity* OuterOf(const IFC::IfcEntity& placement) {
  return ReferenceOf(placement, "PlacementRelTo");
}

// `placement` stands in a circle.
void TellCircle(const IFC::IfcEntity& placement, Findings& findings) {
  std::vector<const IFC::IfcEntity*> circle{&placement};
  for (const IFC::IfcEntity* at = OuterOf(placement); at != &placement; at = OuterOf(*at)) {
    circle.push_back(at);
  }
  const auto least = std::min_element(
      circle.begin(), circle.end(),
      [](const auto* one, const auto* other) { return one->marker < other->marker; });
  std::rotate(circle.begin(), least, circle.end());
  constexpr std::size_t kMostTold = 5;
  FindingPlace place{.number = circle.front()->marker, .what = u"stands on"};
  place.parts.push_back({PlacePart::Kind::kWord, u"said.standsOn"});
  const auto add = [&place](const WideString& text) {
    place.what += u" " + text;
    place.parts.push_back({PlacePart::Kind::kText, text});
  };
  const auto addOn = [&place] {
    place.what += u" on";
    place.parts.push_back({PlacePart::Kind::kWord, u"said.on"});
  };
  for (std::size_t i = 1; i < circle.size() && i < kMostTold; ++i) {
    add(u"#" + ToWide(circle[i]->marker));
    addOn();
  }
  if (circle.size() > kMostTold) {
    add(u"...");
    addOn();
  }
  add(u"#" + ToWide(circle.front()->marker));
  findings.Add(RuleId::kPlacementCircle, {}, std::move(place));
}

}  // namespace

// Each placement is looked at once: a way that comes to one of an earlier way ends there.
void CheckPlacements(const std::vector<IFC::IfcEntity*>& placements, Findings& findings) {
  const std::uint32_t done = IFC::NextVisitGeneration();
  const std::uint32_t onTheWay = IFC::NextVisitGeneration();
  std::vector<IFC::IfcEntity*> way;
  for (IFC::IfcEntity* const placement : placements) {
    way.clear();
    IFC::IfcEntity* at = placement;
    while (at != nullptr && at->visitStamp != done && at->visitStamp != onTheWay) {
      at->visitStamp = onTheWay;
      way.push_back(at);
      at = OuterOf(*at);
    }
    if (at != nullptr && at->visitStamp == onTheWay) TellCircle(*at, findings);
    for (IFC::IfcEntity* const passed : way) passed->visitStamp = done;
  }
}

}  // namespace corvel::host
