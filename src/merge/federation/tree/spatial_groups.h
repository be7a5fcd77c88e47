// Objects of several inputs that were found to be one, while the search goes on.
#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "merge/federation/tree/spatial_structure.h"

namespace corvel {

// Which levels a model has. Each set has a number of its own, equal ones the same.
class LevelSets {
 public:
  // `inputs`: how many there are.
  LevelSets(const SpatialStructure& structure, std::size_t inputs);

  const std::vector<SpatialLevel>& Levels() const { return levels_; }  // from the top down
  std::size_t OfInput(std::size_t input) const { return ofInputs_[input]; }
  bool Has(std::size_t set, const SpatialLevel& level) const;
  std::size_t Union(std::size_t one, std::size_t other);
  // What a set has down to a level.
  std::size_t DownTo(std::size_t set, const SpatialLevel& level);

 private:
  using Set = std::vector<bool>;
  std::size_t Number(Set set);
  std::size_t IndexOf(const SpatialLevel& level) const;

  std::vector<SpatialLevel> levels_;
  std::vector<Set> sets_;
  std::map<Set, std::size_t> numbers_;
  std::vector<std::size_t> ofInputs_;
  std::map<std::pair<std::size_t, std::size_t>, std::size_t> unions_;
  std::map<std::pair<std::size_t, SpatialLevel>, std::size_t> downTo_;
};

struct SpatialGroup {
  SpatialLevel level{};
  SpatialGroup* above = nullptr;  // what it is a part of; null: the project
  // Those that its models have together, and above it also what models have that it is one with
  // further up: what is passed over for the one is settled by the other.
  std::size_t levels = 0;
  std::vector<SpatialObject*> members{};
  SpatialGroup* joined = nullptr;  // what it went into; null while it lives
  bool isSettled = false;          // several would match: it is compared no more

  // The first in order of the inputs.
  SpatialObject& Survivor() const;
  // The user said what its survivor joins, or that it stays: it gives way to nobody else.
  bool IsTold() const { return Survivor().isTold; }
  // That of its earliest member that has one.
  std::optional<double> Height() const;
};

using Groups = std::vector<SpatialGroup*>;

class SpatialGroups {
 public:
  SpatialGroups(SpatialStructure& structure, std::size_t inputs);

  LevelSets& Levels() { return levels_; }
  // A group of its own for an object whose wholes have theirs.
  SpatialGroup* Make(SpatialObject& object);
  // That of an object which has had its turn.
  SpatialGroup* Of(const SpatialObject& object) const { return Current(ofObjects_.at(&object)); }

  static SpatialGroup* Current(SpatialGroup* group);
  // Those that live and are not settled, each once, in their order.
  Groups Open(const Groups& groups);

  // Becomes one group, which survives as its first input says. With two of one input none does, and
  // all are settled; when all are of one input anyway, nothing happens. To one that the user told
  // something of others may give way; to two of these nobody does.
  void JoinOrNone(const Groups& groups, MatchReason reason);
  bool HaveCommonInput(const SpatialGroup& one, const SpatialGroup& other);
  void Join(const Groups& groups, MatchReason reason);
  // `settled` are those of `groups` that would have matched several. What the user told is none.
  void SetApart(const Groups& groups, const Groups& settled, MatchReason reason);
  // Whether no two of them are without a common input, so that nothing could match.
  bool NoneCanMatch(const Groups& groups);

  // The groups whose wholes are one, side by side. Who could stand in several of these places is
  // settled.
  std::vector<Groups> SplitByPlace(const Groups& groups, MatchReason reason);

 private:
  struct Place {
    SpatialGroup* above = nullptr;
    std::size_t levels = 0;
    Groups groups{};
  };
  std::vector<Place> PlacesOf(const Groups& groups) const;
  bool AreOne(const Place& one, const Place& other) const;
  const SpatialGroup* Projected(const SpatialGroup* above, std::size_t levels) const;
  std::vector<std::vector<std::size_t>> NeighboursOf(const std::vector<Place>& places) const;
  bool IsTorn(const std::vector<Place>& places, const std::vector<std::size_t>& neighbours) const;
  static Groups WithoutLaterTold(const Groups& groups);
  std::size_t MostOfOneInput(const Groups& groups);

  SpatialStructure& structure_;
  LevelSets levels_;
  std::deque<SpatialGroup> groups_;
  std::unordered_map<const SpatialObject*, SpatialGroup*> ofObjects_;
  std::vector<std::size_t> counts_;  // by input
};

}  // namespace corvel
