// The representation contexts of a model that stands in the coordinates of another one.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "merge/federation/place/map_reference.h"

namespace corvel {

// Two numbers, of length 1, in the plane of x and y. Nothing for a context without one (null too).
using North = std::array<double, 2>;
std::optional<North> TrueNorthIn(const IFC::IfcEntity* context);

// What becomes of one context. A true north that nobody states is the y axis, but where the map
// says more, nobody is taken at a word that he has not said.
struct ContextChange {
  IFC::IfcEntity* context = nullptr;
  bool hasWorldOfFirst = false;  // it gets the world coordinate system of the first model's
  std::optional<North> north{};  // it gets this one
  // How far it is from the first model's all the same; 0 where they agree.
  double degreesFromFirst = 0.0;
};

// Of the contexts of `later` when it stands at `place`, in metres, in the coordinates of `first`.
std::vector<ContextChange> ContextChangesOf(const MapReference& first, const MapReference& later,
                                            const Transform& place);

// `metresPerUnit` is of `document`. False when it is out of numbers, which has been reported.
bool ChangeContexts(IfcDocument& document, const std::vector<ContextChange>& changes,
                    const Transform& worldOfFirst, double metresPerUnit);

}  // namespace corvel
