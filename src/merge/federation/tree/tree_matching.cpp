#include "merge/federation/tree/tree_matching.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "merge/federation/tree/spatial_groups.h"
#include "schema/attributes.h"

namespace corvel {

namespace {

// Groups by a key, in the order in which the keys were met.
template <class Key>
class Buckets {
 public:
  void Add(const Key& key, SpatialGroup* group) {
    const auto [known, isNew] = numbers_.try_emplace(key, buckets_.size());
    if (isNew) buckets_.emplace_back();
    buckets_[known->second].push_back(group);
  }
  const std::vector<Groups>& All() const { return buckets_; }

 private:
  std::unordered_map<Key, std::size_t> numbers_;
  std::vector<Groups> buckets_;
};

struct Standing {
  double height = 0.0;
  SpatialGroup* group = nullptr;
};

Groups GroupsOf(const std::vector<Standing>& run) {
  Groups groups;
  for (const Standing& standing : run) groups.push_back(standing.group);
  return groups;
}

class Matching {
 public:
  Matching(SpatialStructure& structure, std::size_t inputs, TreeMatching by, double tolerance)
      : structure_(structure), groups_(structure, inputs), by_(by), tolerance_(tolerance) {}

  bool Run(Ticker& ticker) {
    FindOnlyStoreys();
    std::map<SpatialLevel, std::vector<SpatialObject*>> levels;
    for (SpatialObject& object : structure_.objects) {
      if (object.isPlaced) levels[object.level].push_back(&object);
    }
    for (const auto& [level, objects] : levels) {
      Match(objects);
      if (!ticker.Advance(objects.size())) return false;
    }
    for (SpatialObject& object : structure_.objects) {
      if (!object.isPlaced) continue;
      SpatialObject& survivor = groups_.Of(object)->Survivor();
      if (&survivor != &object) object.survivor = &survivor;
    }
    return true;
  }

 private:
  bool NamesCount() const { return by_ == TreeMatching::kName || by_ == TreeMatching::kOne; }

  // A generic name says that the author did not think of storeys, and so does the height of one.
  void FindOnlyStoreys() {
    std::unordered_map<std::size_t, std::size_t> counts;
    for (const SpatialObject& object : structure_.objects) counts[object.input] += object.isStorey;
    for (const SpatialObject& object : structure_.objects) {
      if (object.isStorey && object.isGeneric && counts[object.input] == 1) {
        withoutMeaning_[&object] = true;
      }
    }
  }

  void Match(const std::vector<SpatialObject*>& objects) {
    level_.clear();
    for (SpatialObject* const object : objects) level_.push_back(groups_.Make(*object));
    JoinAsTold(objects);
    if (by_ == TreeMatching::kKeep) return;
    MatchByGuid();
    if (NamesCount()) MatchByName();
    if (NamesCount() || by_ == TreeMatching::kElevation) MatchByHeight();
    if (NamesCount()) MatchOnlyOnes(objects);
  }

  void JoinAsTold(const std::vector<SpatialObject*>& objects) {
    for (const SpatialObject* const object : objects) {
      if (object->told == nullptr) continue;
      SpatialGroup* const group = groups_.Of(*object);
      SpatialGroup* const other = groups_.Of(*object->told);
      if (group != other) groups_.Join({other, group}, MatchReason::kTold);
    }
  }

  // Calls `action` with what may become one as far as places go.
  template <class Action>
  void InPlaces(const Groups& bucket, MatchReason reason, Action action) {
    const Groups open = groups_.Open(bucket);
    if (groups_.NoneCanMatch(open)) return;
    for (const Groups& groups : groups_.SplitByPlace(open, reason)) {
      if (!groups_.NoneCanMatch(groups)) action(groups);
    }
  }

  void MatchByGuid() {
    Buckets<std::string> byGuid;
    for (SpatialGroup* const group : level_) {
      for (const SpatialObject* const member : group->members) {
        if (member->guid.empty()) continue;
        byGuid.Add(member->guid + FindFacts(*member->entity)->name, group);
      }
    }
    for (const Groups& bucket : byGuid.All()) {
      InPlaces(bucket, MatchReason::kGuid,
               [this](const Groups& groups) { groups_.JoinOrNone(groups, MatchReason::kGuid); });
    }
  }

  void MatchByName() {
    Buckets<WideString> byName;
    for (SpatialGroup* const group : groups_.Open(level_)) {
      for (const SpatialObject* const member : group->members) {
        if (member->isGeneric) continue;
        byName.Add(Widen(member->kind) + u'\n' + member->name, group);
      }
    }
    for (const Groups& bucket : byName.All()) {
      InPlaces(bucket, MatchReason::kName, [this](const Groups& groups) { JoinNamesakes(groups); });
    }
  }

  // Who has no height could be any of those that have.
  void JoinNamesakes(const Groups& groups) {
    std::vector<Standing> standing;
    Groups anywhere;
    for (SpatialGroup* const group : groups) {
      if (const auto height = group->Height()) {
        standing.push_back({*height, group});
      } else {
        anywhere.push_back(group);
      }
    }
    const auto runs = RunsOf(std::move(standing));
    for (const auto& run : runs) {
      JoinRun(run, MatchReason::kName);
      if (runs.size() > 1) MarkContradicted(run);
    }
    Groups left;
    for (const auto& run : runs) {
      for (const Standing& each : run) left.push_back(SpatialGroups::Current(each.group));
    }
    std::sort(left.begin(), left.end());
    left.erase(std::unique(left.begin(), left.end()), left.end());
    const bool isTorn = left.size() > 1;
    left.insert(left.end(), anywhere.begin(), anywhere.end());
    if (!isTorn) {
      groups_.JoinOrNone(left, MatchReason::kName);
    } else if (!anywhere.empty() && !groups_.NoneCanMatch(left)) {
      groups_.SetApart(left, anywhere, MatchReason::kName);
    }
  }

  static void MarkContradicted(const std::vector<Standing>& run) {
    for (const Standing& standing : run) {
      for (SpatialObject* const member : SpatialGroups::Current(standing.group)->members) {
        member->isContradicted = true;
      }
    }
  }

  void MatchByHeight() {
    Buckets<std::string> byKind;
    for (SpatialGroup* const group : groups_.Open(level_)) {
      const SpatialObject& survivor = group->Survivor();
      if (survivor.isStorey && HeightWithMeaning(*group)) byKind.Add(survivor.kind, group);
    }
    for (const Groups& bucket : byKind.All()) {
      InPlaces(bucket, MatchReason::kHeight, [this](const Groups& groups) {
        std::vector<Standing> standing;
        for (SpatialGroup* const group : groups) {
          standing.push_back({*HeightWithMeaning(*group), group});
        }
        for (const auto& run : RunsOf(std::move(standing))) JoinRun(run, MatchReason::kHeight);
      });
    }
  }

  std::optional<double> HeightWithMeaning(const SpatialGroup& group) const {
    const bool isMeant = std::any_of(
        group.members.begin(), group.members.end(),
        [this](const SpatialObject* member) { return !withoutMeaning_.contains(member); });
    return isMeant ? group.Height() : std::nullopt;
  }

  // Where each side has one object of the level: of a model those with one below their whole.
  void MatchOnlyOnes(const std::vector<SpatialObject*>& objects) {
    std::map<std::pair<std::size_t, const SpatialObject*>, std::size_t> counts;
    for (const SpatialObject* const object : objects) ++counts[{object->input, object->parent}];
    Buckets<std::string> byKind;
    for (const SpatialObject* const object : objects) {
      if (counts[{object->input, object->parent}] != 1) continue;
      SpatialGroup* const group = groups_.Of(*object);
      // Without a height nothing but a real name tells storeys.
      if (!object->isStorey || group->Height()) byKind.Add(object->kind, group);
    }
    for (const Groups& bucket : byKind.All()) {
      InPlaces(bucket, MatchReason::kOnly, [this](const Groups& groups) { JoinOnlyOnes(groups); });
    }
  }

  void JoinOnlyOnes(const Groups& groups) {
    if (groups.front()->Survivor().isStorey) {
      std::vector<Standing> standing;
      for (SpatialGroup* const group : groups) standing.push_back({*group->Height(), group});
      for (const auto& run : RunsOf(std::move(standing))) JoinUnlessNamesDiffer(GroupsOf(run));
    } else {
      JoinUnlessNamesDiffer(groups);
    }
  }

  void JoinUnlessNamesDiffer(const Groups& groups) {
    Groups unnamed;
    for (SpatialGroup* const group : groups) {
      if (!HasRealName(*group)) unnamed.push_back(group);
    }
    const bool namesDiffer = groups.size() - unnamed.size() > 1;
    if (by_ == TreeMatching::kOne || !namesDiffer) {
      groups_.JoinOrNone(groups, MatchReason::kOnly);
    } else if (!unnamed.empty()) {
      groups_.SetApart(groups, unnamed, MatchReason::kOnly);
    }
  }

  static bool HasRealName(const SpatialGroup& group) {
    return std::any_of(group.members.begin(), group.members.end(),
                       [](const SpatialObject* member) { return !member->isGeneric; });
  }

  // In ascending height; from one run to the next it is more than the tolerance.
  std::vector<std::vector<Standing>> RunsOf(std::vector<Standing> standing) const {
    std::stable_sort(
        standing.begin(), standing.end(),
        [](const Standing& one, const Standing& other) { return one.height < other.height; });
    std::vector<std::vector<Standing>> runs;
    for (const Standing& next : standing) {
      if (runs.empty() || !IsWithin(runs.back().back().height, next.height)) runs.emplace_back();
      runs.back().push_back(next);
    }
    return runs;
  }

  bool IsWithin(double lower, double upper) const {
    constexpr double kRounding = 1e-9;
    return upper - lower <= tolerance_ + kRounding;
  }

  void JoinRun(const std::vector<Standing>& run, MatchReason reason) {
    if (IsWithin(run.front().height, run.back().height)) {
      groups_.JoinOrNone(GroupsOf(run), reason);
    } else {
      JoinChain(run, reason);
    }
  }

  // Each is near its neighbours, and the first is not near the last: who survives decides. In order
  // of the inputs, each goes to the one survivor that it is near.
  void JoinChain(std::vector<Standing> run, MatchReason reason) {
    const Groups all = GroupsOf(run);
    const auto input = [](const Standing& standing) { return standing.group->Survivor().input; };
    std::stable_sort(run.begin(), run.end(), [&](const Standing& one, const Standing& other) {
      return input(one) < input(other);
    });
    std::multimap<double, SpatialGroup*> survivors;
    Groups torn;
    for (auto begin = run.begin(); begin != run.end();) {
      const auto end = std::find_if(begin, run.end(), [&](const Standing& standing) {
        return input(standing) != input(*begin);
      });
      JoinInput({begin, end}, survivors, torn, reason);
      begin = end;
    }
    if (!torn.empty()) groups_.SetApart(all, torn, reason);
  }

  void JoinInput(const std::vector<Standing>& ofInput,
                 std::multimap<double, SpatialGroup*>& survivors, Groups& torn,
                 MatchReason reason) {
    std::vector<Groups> near;
    std::map<const SpatialGroup*, std::size_t> wanted;
    for (const Standing& standing : ofInput) {
      near.push_back(NearSurvivors(standing, survivors));
      for (const SpatialGroup* const survivor : near.back()) ++wanted[survivor];
    }
    for (std::size_t i = 0; i < ofInput.size(); ++i) {
      SpatialGroup* const group = ofInput[i].group;
      if (near[i].empty() || group->IsTold()) {
        survivors.emplace(ofInput[i].height, group);
      } else if (near[i].size() == 1 && wanted[near[i].front()] == 1) {
        groups_.Join({near[i].front(), group}, reason);
      } else {
        torn.push_back(group);
      }
    }
  }

  // Two are as many as it takes to be undecided.
  Groups NearSurvivors(const Standing& standing,
                       const std::multimap<double, SpatialGroup*>& survivors) {
    Groups near;
    auto at = survivors.lower_bound(standing.height - tolerance_);
    for (; at != survivors.end() && near.size() < 2; ++at) {
      if (!IsWithin(standing.height, at->first)) break;
      SpatialGroup* const survivor = SpatialGroups::Current(at->second);
      if (!groups_.HaveCommonInput(*survivor, *standing.group)) near.push_back(survivor);
    }
    return near;
  }

  SpatialStructure& structure_;
  SpatialGroups groups_;
  TreeMatching by_;
  double tolerance_;
  std::unordered_map<const SpatialObject*, bool> withoutMeaning_;
  Groups level_;
};

}  // namespace

bool MatchTrees(SpatialStructure& structure, TreeMatching matching, double toleranceMetres,
                Ticker& ticker) {
  std::size_t inputs = 0;
  for (const SpatialObject& object : structure.objects) {
    inputs = std::max(inputs, object.input + 1);
  }
  return Matching(structure, inputs, matching, toleranceMetres).Run(ticker);
}

}  // namespace corvel
