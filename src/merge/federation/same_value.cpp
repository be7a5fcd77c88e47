#include "merge/federation/same_value.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "core/text.h"
#include "schema/attributes.h"

namespace corvel {

namespace {

class Comparison {
 public:
  Comparison(double tolerance, std::span<const std::string_view> ignored)
      : tolerance_(tolerance), ignored_(ignored) {}

  bool Same(const IFC::IfcEntity* one, const IFC::IfcEntity* other) {
    if (!Meet(one, other)) return false;
    for (; !waiting_.empty(); ignored_ = {}) {
      const auto [left, right] = waiting_.back();
      waiting_.pop_back();
      if (!SameAttributes(*left, *right)) return false;
    }
    return true;
  }

 private:
  using Pair = std::pair<const IFC::IfcEntity*, const IFC::IfcEntity*>;

  // What can be said at once; the rest waits for its turn.
  bool Meet(const IFC::IfcEntity* one, const IFC::IfcEntity* other) {
    if (one == other) return true;
    if (one == nullptr || other == nullptr) return false;
    // There is more to it than its attributes tell.
    if (one->carries || other->carries) return false;
    const ClassFacts* const facts = FindFacts(*one);
    if (facts == nullptr || facts != FindFacts(*other)) return false;
    if (met_.emplace(one, other).second) waiting_.emplace_back(one, other);
    return true;
  }

  bool SameAttributes(const IFC::IfcEntity& one, const IFC::IfcEntity& other) {
    const ConstAttributes there = AttributesOf(other);
    std::size_t index = 0;
    for (const ConstAttribute here : AttributesOf(one)) {
      const ConstAttribute opposite = there[index++];
      if (!IsIgnored(here.Name()) && !SameAttribute(here, opposite)) return false;
    }
    return true;
  }

  bool IsIgnored(std::string_view name) const {
    return std::find(ignored_.begin(), ignored_.end(), name) != ignored_.end();
  }

  bool SameAttribute(const ConstAttribute& here, const ConstAttribute& there) {
    bool same = here.State() == there.State();
    if (!same) return false;
    here.Visit([&](const auto& value) {
      const auto* const opposite = there.As<std::remove_cvref_t<decltype(value)>>();
      same = opposite != nullptr && SameHeld(value, *opposite);
    });
    return same;
  }

  template <class T>
  bool SameHeld(const List<T>& here, const List<T>& there) {
    if (here.size() != there.size()) return false;
    for (std::size_t i = 0; i < here.size(); ++i) {
      if (!SameHeld(here[i], there[i])) return false;
    }
    return true;
  }
  bool SameHeld(double here, double there) const { return std::abs(here - there) <= tolerance_; }
  static bool SameHeld(std::int32_t here, std::int32_t there) { return here == there; }
  static bool SameHeld(ModelText here, ModelText there) { return here == there; }
  static bool SameHeld(const char* here, const char* there) {
    return std::string_view(here) == there;
  }
  bool SameHeld(const IFC::IfcEntity* here, const IFC::IfcEntity* there) {
    return Meet(here, there);
  }

  double tolerance_;
  std::span<const std::string_view> ignored_;
  std::set<Pair> met_;
  std::vector<Pair> waiting_;
};

}  // namespace

bool SameByValue(const IFC::IfcEntity* one, const IFC::IfcEntity* other, double tolerance,
                 std::span<const std::string_view> ignored) {
  return Comparison(tolerance, ignored).Same(one, other);
}

}  // namespace corvel
