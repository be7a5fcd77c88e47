#include "merge/federation/tree/spatial_groups.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <unordered_set>

namespace corvel {

LevelSets::LevelSets(const SpatialStructure& structure, std::size_t inputs) {
  for (const SpatialObject& object : structure.objects) {
    if (object.isPlaced) levels_.push_back(object.level);
  }
  std::sort(levels_.begin(), levels_.end());
  levels_.erase(std::unique(levels_.begin(), levels_.end()), levels_.end());
  std::vector<Set> sets(inputs, Set(levels_.size(), false));
  for (const SpatialObject& object : structure.objects) {
    if (object.isPlaced) sets[object.input][IndexOf(object.level)] = true;
  }
  for (Set& set : sets) ofInputs_.push_back(Number(std::move(set)));
}

std::size_t LevelSets::IndexOf(const SpatialLevel& level) const {
  return static_cast<std::size_t>(std::lower_bound(levels_.begin(), levels_.end(), level) -
                                  levels_.begin());
}

std::size_t LevelSets::Number(Set set) {
  const auto [known, isNew] = numbers_.try_emplace(set, sets_.size());
  if (isNew) sets_.push_back(std::move(set));
  return known->second;
}

bool LevelSets::Has(std::size_t set, const SpatialLevel& level) const {
  return sets_[set][IndexOf(level)];
}

std::size_t LevelSets::Union(std::size_t one, std::size_t other) {
  if (one == other) return one;
  const auto [known, isNew] = unions_.try_emplace(std::minmax(one, other), 0);
  if (!isNew) return known->second;
  Set both = sets_[one];
  for (std::size_t i = 0; i < both.size(); ++i) both[i] = both[i] || sets_[other][i];
  known->second = Number(std::move(both));
  return known->second;
}

std::size_t LevelSets::DownTo(std::size_t set, const SpatialLevel& level) {
  const auto [known, isNew] = downTo_.try_emplace({set, level}, 0);
  if (!isNew) return known->second;
  Set upper = sets_[set];
  std::fill(upper.begin() + static_cast<std::ptrdiff_t>(IndexOf(level)) + 1, upper.end(), false);
  known->second = Number(std::move(upper));
  return known->second;
}

SpatialObject& SpatialGroup::Survivor() const {
  return **std::min_element(members.begin(), members.end(),
                            [](const SpatialObject* one, const SpatialObject* other) {
                              return one->input < other->input;
                            });
}

std::optional<double> SpatialGroup::Height() const {
  const SpatialObject* first = nullptr;
  for (const SpatialObject* const member : members) {
    if (member->heightMetres && (first == nullptr || member->input < first->input)) first = member;
  }
  return first == nullptr ? std::nullopt : first->heightMetres;
}

SpatialGroups::SpatialGroups(SpatialStructure& structure, std::size_t inputs)
    : structure_(structure), levels_(structure, inputs), counts_(inputs, 0) {}

SpatialGroup* SpatialGroups::Make(SpatialObject& object) {
  SpatialGroup& group = groups_.emplace_back();
  group.level = object.level;
  group.above = object.parent == nullptr ? nullptr : Of(*object.parent);
  group.levels = levels_.OfInput(object.input);
  if (group.above != nullptr) {
    const std::size_t above = levels_.DownTo(group.above->levels, group.above->level);
    group.levels = levels_.Union(group.levels, above);
  }
  group.members.push_back(&object);
  ofObjects_.emplace(&object, &group);
  return &group;
}

SpatialGroup* SpatialGroups::Current(SpatialGroup* group) {
  while (group->joined != nullptr) group = group->joined;
  return group;
}

Groups SpatialGroups::Open(const Groups& groups) {
  Groups open;
  std::unordered_set<const SpatialGroup*> met;
  for (SpatialGroup* const group : groups) {
    SpatialGroup* const current = Current(group);
    if (!current->isSettled && met.insert(current).second) open.push_back(current);
  }
  return open;
}

std::size_t SpatialGroups::MostOfOneInput(const Groups& groups) {
  std::size_t most = 0;
  for (const SpatialGroup* const group : groups) {
    for (const SpatialObject* const member : group->members) {
      most = std::max(most, ++counts_[member->input]);
    }
  }
  for (const SpatialGroup* const group : groups) {
    for (const SpatialObject* const member : group->members) counts_[member->input] = 0;
  }
  return most;
}

bool SpatialGroups::NoneCanMatch(const Groups& groups) {
  return groups.size() < 2 || MostOfOneInput(groups) == groups.size();
}

bool SpatialGroups::HaveCommonInput(const SpatialGroup& one, const SpatialGroup& other) {
  for (const SpatialObject* const member : one.members) counts_[member->input] = 1;
  const bool common =
      std::any_of(other.members.begin(), other.members.end(),
                  [this](const SpatialObject* member) { return counts_[member->input] != 0; });
  for (const SpatialObject* const member : one.members) counts_[member->input] = 0;
  return common;
}

// A told one that is not the first of all cannot take part: it would give way.
Groups SpatialGroups::WithoutLaterTold(const Groups& groups) {
  std::size_t first = groups.front()->Survivor().input;
  for (const SpatialGroup* const group : groups) first = std::min(first, group->Survivor().input);
  Groups left;
  std::copy_if(groups.begin(), groups.end(), std::back_inserter(left),
               [first](const SpatialGroup* group) {
                 return !group->IsTold() || group->Survivor().input == first;
               });
  return left;
}

void SpatialGroups::JoinOrNone(const Groups& groups, MatchReason reason) {
  if (groups.size() < 2) return;
  const std::size_t most = MostOfOneInput(groups);
  const auto told = std::count_if(groups.begin(), groups.end(),
                                  [](const SpatialGroup* group) { return group->IsTold(); });
  if (most == groups.size() || static_cast<std::size_t>(told) == groups.size()) return;
  if (most > 1 || told > 1) {
    SetApart(groups, groups, reason);
    return;
  }
  const Groups willing = WithoutLaterTold(groups);
  if (willing.size() > 1) Join(willing, reason);
}

void SpatialGroups::Join(const Groups& groups, MatchReason reason) {
  SpatialGroup* const first = *std::min_element(
      groups.begin(), groups.end(), [](const SpatialGroup* one, const SpatialGroup* other) {
        return one->Survivor().input < other->Survivor().input;
      });
  for (SpatialGroup* const group : groups) {
    if (group == first) continue;
    const SpatialObject* const survivor = &group->Survivor();
    for (SpatialObject* const member : group->members) {
      if (member == survivor) member->reason = reason;
      first->members.push_back(member);
    }
    const bool isDeeper = group->above != nullptr &&
                          (first->above == nullptr || first->above->level < group->above->level);
    if (isDeeper) first->above = group->above;
    first->levels = levels_.Union(first->levels, group->levels);
    group->members.clear();
    group->joined = first;
  }
}

void SpatialGroups::SetApart(const Groups& groups, const Groups& settled, MatchReason reason) {
  Ambiguity& ambiguity = structure_.ambiguities.emplace_back();
  ambiguity.reason = reason;
  for (const SpatialGroup* const group : groups) {
    ambiguity.objects.push_back(&group->Survivor());
  }
  for (SpatialGroup* const group : settled) {
    if (group->IsTold()) continue;
    group->isSettled = true;
    for (SpatialObject* const member : group->members) member->ambiguity = &ambiguity;
  }
}

std::vector<SpatialGroups::Place> SpatialGroups::PlacesOf(const Groups& groups) const {
  std::vector<Place> places;
  std::map<std::pair<const SpatialGroup*, std::size_t>, std::size_t> known;
  for (SpatialGroup* const group : groups) {
    SpatialGroup* const above = group->above == nullptr ? nullptr : Current(group->above);
    const auto [place, isNew] = known.try_emplace({above, group->levels}, places.size());
    if (isNew) places.push_back({above, group->levels});
    places[place->second].groups.push_back(group);
  }
  return places;
}

// The whole of the deepest level among `levels`.
const SpatialGroup* SpatialGroups::Projected(const SpatialGroup* above, std::size_t levels) const {
  while (above != nullptr && !levels_.Has(levels, above->level)) {
    above = above->above == nullptr ? nullptr : Current(above->above);
  }
  return above;
}

bool SpatialGroups::AreOne(const Place& one, const Place& other) const {
  if (one.above == other.above) return true;
  // Models of the same levels pass nothing over.
  if (one.levels == other.levels) return false;
  return Projected(one.above, other.levels) == Projected(other.above, one.levels);
}

// By sets of levels two and two: within a set no two places are one.
std::vector<std::vector<std::size_t>> SpatialGroups::NeighboursOf(
    const std::vector<Place>& places) const {
  std::map<std::size_t, std::vector<std::size_t>> bySet;
  for (std::size_t i = 0; i < places.size(); ++i) bySet[places[i].levels].push_back(i);
  std::vector<std::vector<std::size_t>> neighbours(places.size());
  for (auto one = bySet.begin(); one != bySet.end(); ++one) {
    for (auto other = std::next(one); other != bySet.end(); ++other) {
      std::unordered_map<const SpatialGroup*, std::vector<std::size_t>> byWhole;
      for (const std::size_t i : one->second) {
        byWhole[Projected(places[i].above, other->first)].push_back(i);
      }
      for (const std::size_t i : other->second) {
        const auto found = byWhole.find(Projected(places[i].above, one->first));
        if (found == byWhole.end()) continue;
        for (const std::size_t neighbour : found->second) {
          neighbours[i].push_back(neighbour);
          neighbours[neighbour].push_back(i);
        }
      }
    }
  }
  return neighbours;
}

// Whether a place has neighbours that are not each other's: it could be any of them. What is true
// of the deepest of them and another goes for all.
bool SpatialGroups::IsTorn(const std::vector<Place>& places,
                           const std::vector<std::size_t>& neighbours) const {
  if (neighbours.size() < 2) return false;
  const auto isHigher = [&](std::size_t one, std::size_t other) {
    const SpatialGroup* const above = places[one].above;
    const SpatialGroup* const otherAbove = places[other].above;
    if (above == nullptr || otherAbove == nullptr) return above == nullptr && otherAbove != nullptr;
    return above->level < otherAbove->level;
  };
  const std::size_t deepest = *std::max_element(neighbours.begin(), neighbours.end(), isHigher);
  return std::any_of(neighbours.begin(), neighbours.end(),
                     [&](std::size_t other) { return !AreOne(places[deepest], places[other]); });
}

std::vector<Groups> SpatialGroups::SplitByPlace(const Groups& groups, MatchReason reason) {
  const std::vector<Place> places = PlacesOf(groups);
  const auto neighbours = NeighboursOf(places);
  std::vector<bool> torn(places.size());
  for (std::size_t place = 0; place < places.size(); ++place) {
    torn[place] = IsTorn(places, neighbours[place]);
    if (!torn[place]) continue;
    Groups concerned = places[place].groups;
    for (const std::size_t other : neighbours[place]) {
      concerned.insert(concerned.end(), places[other].groups.begin(), places[other].groups.end());
    }
    if (!NoneCanMatch(concerned)) SetApart(concerned, places[place].groups, reason);
  }
  std::vector<Groups> split;
  std::vector<bool> taken = torn;
  for (std::size_t place = 0; place < places.size(); ++place) {
    if (taken[place]) continue;
    Groups& here = split.emplace_back(places[place].groups);
    for (const std::size_t other : neighbours[place]) {
      if (taken[other]) continue;
      taken[other] = true;
      here.insert(here.end(), places[other].groups.begin(), places[other].groups.end());
    }
  }
  return split;
}

}  // namespace corvel
