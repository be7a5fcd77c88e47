#include "merge/report/shared/drawn_products.h"

#include <algorithm>

namespace corvel {

bool Thinning::Takes(std::size_t turn, std::size_t ofClass) const {
  if (total_ <= most_ || turn == 0) return true;
  const std::size_t quota = std::max<std::size_t>(ofClass * most_ / total_, 1);
  return turn * quota / ofClass != (turn - 1) * quota / ofClass;
}

std::vector<std::size_t> DrawnProducts(const ModelPlaces& places) {
  const Thinning thinning(places.products.size(), kMostDrawn);
  std::vector<std::size_t> drawn;
  std::vector<std::size_t> seen(places.classes.size());
  for (std::size_t i = 0; i < places.products.size(); ++i) {
    const std::uint32_t index = places.products[i].classIndex;
    if (thinning.Takes(seen[index]++, places.classes[index].listed)) drawn.push_back(i);
  }
  return drawn;
}

}  // namespace corvel
