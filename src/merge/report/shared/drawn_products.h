// Which products are told of where there are too many.
#pragma once

#include <cstddef>
#include <vector>

#include "merge/report/shared/report_places.h"

namespace corvel {

// A browser draws so many at once without a stop.
inline constexpr std::size_t kMostDrawn = 8000;

// Takes of each class the same share, evenly among its members, and its first one in any case.
class Thinning {
 public:
  // Of `total` so many are to be left; all of them where there are no more.
  Thinning(std::size_t total, std::size_t most) : total_(total), most_(most) {}

  // The member at `turn` of a class that has so many.
  bool Takes(std::size_t turn, std::size_t ofClass) const;

 private:
  std::size_t total_;
  std::size_t most_;
};

// The positions of the products that a page draws.
std::vector<std::size_t> DrawnProducts(const ModelPlaces& places);

}  // namespace corvel
