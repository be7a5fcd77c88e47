#include "host/nearest_name.h"

#include <algorithm>
#include <numeric>

namespace corvel::host {

namespace {

std::string InSmallLetters(std::string_view text) {
  std::string small(text);
  for (char& c : small) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  }
  return small;
}

std::size_t Letters(std::string_view word) {
  const std::size_t first = word.find_first_not_of('-');
  return first == std::string_view::npos ? 0 : word.size() - first;
}

}  // namespace

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

std::optional<std::string> NearName(std::string_view word, const std::vector<std::string>& names) {
  const std::string wanted = InSmallLetters(word);
  const std::size_t letters = Letters(wanted);
  const std::string* nearest = nullptr;
  std::size_t least = letters / 3;
  for (const std::string& name : names) {
    const std::string candidate = InSmallLetters(name);
    const bool begins = letters >= 3 && candidate.starts_with(wanted);
    const std::size_t distance = begins ? 0 : EditDistance(wanted, candidate);
    if (distance > least || (nearest != nullptr && distance == least)) continue;
    nearest = &name;
    least = distance;
  }
  if (nearest == nullptr) return {};
  return *nearest;
}

}  // namespace corvel::host
