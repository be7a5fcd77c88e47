// Where the products of a model stand.
#pragma once

#include <cstdint>

#include "core/entity.h"
#include "merge/federation/tree/world_places.h"

namespace corvel::host {

// The box around the origins of all placements of products: shapes reach beyond it.
struct Extent {
  std::uint64_t placed = 0;   // products in it
  std::uint64_t nowhere = 0;  // products whose placement tells no place: on a grid, in a circle
  Triple least{};             // in metres; of no meaning while nothing is placed
  Triple most{};
  bool operator==(const Extent&) const = default;
};

// Gathers an extent, product by product.
class ExtentMeasure {
 public:
  // `metresPerUnit`: see MetresPerLengthUnit.
  explicit ExtentMeasure(double metresPerUnit) : metresPerUnit_(metresPerUnit) {}

  // `placement` is the product's; null, and nothing happens, when it has none.
  void Add(IFC::IfcEntity* placement);
  const Extent& Result() const { return extent_; }

 private:
  double metresPerUnit_;
  WorldPlaces places_;
  Extent extent_;
};

}  // namespace corvel::host
