#include "host/nearest_name.h"

#include <algorithm>
#include <numeric>

namespace corvel::host {

std::size_t EditDistance(std::string_view from, std::string_view to) {
  // Rows of the table for the first i - 2, i - 1 and i letters of `from`.
  std::vector<std::size_t> before(to.size() + 1);
  std::vector<std::size_t> last(to.size() + 1);
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(last.begin(), last.end(), std::size_t{0});
  for (std::size_t i = 1; i <= from.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const bool same = from[i - 1] == to[j - 1];
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
      const bool swapped = i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
      if (swapped) row[j] = std::min(row[j], before[j - 2] + 1);
    }
    before.swap(last);
    last.swap(row);
  }
  return last[to.size()];
}

const std::string& NearestName(std::string_view word, const std::vector<std::string>& names) {
  return *std::min_element(names.begin(), names.end(),
                           [word](const std::string& a, const std::string& b) {
                             return EditDistance(word, a) < EditDistance(word, b);
                           });
}

}  // namespace corvel::host
