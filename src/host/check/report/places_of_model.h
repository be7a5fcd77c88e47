// Where the products of a checked model stand, for the drawings of its report.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "merge/document.h"
#include "merge/report/shared/report_places.h"

namespace corvel::host {

// Of a model that has been read and not been folded into another. `file`: its index among those of
// the run. `mostProducts`: of more every class is thinned out.
ModelPlaces PlacesOfModel(const IfcDocument& document, std::uint32_t file,
                          std::size_t mostProducts);

// All models in one, each in its own coordinates; null ones are left out. North is that of the
// first that tells it. Trees stay with their models.
ModelPlaces AllPlaces(const std::vector<const ModelPlaces*>& models);

}  // namespace corvel::host
