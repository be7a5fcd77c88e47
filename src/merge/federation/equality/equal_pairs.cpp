#include "merge/federation/equality/equal_pairs.h"

namespace corvel {

void EqualPairs::Add(IFC::IfcEntity& later, IFC::IfcEntity& earlier) {
  ofLater_[&later].push_back(static_cast<Index>(pairs_.size()));
  pairs_.push_back({&later, &earlier});
}

std::vector<std::pair<IFC::IfcEntity*, IFC::IfcEntity*>> EqualPairs::Equal(double metresPerUnit) {
  std::vector<Index> differing;
  for (Index i = 0; i < pairs_.size(); ++i) {
    IFC::IfcEntity& later = *pairs_[i].later;
    IFC::IfcEntity& earlier = *pairs_[i].earlier;
    const bool mayBeEqual = contents_.Of(later) == contents_.Of(earlier) &&
                            contents_.SamePlaces(later, earlier, metresPerUnit) && LinksMayMatch(i);
    if (!mayBeEqual) differing.push_back(i);
  }
  Contradict(std::move(differing));
  std::vector<std::pair<IFC::IfcEntity*, IFC::IfcEntity*>> equal;
  for (const Pair& pair : pairs_) {
    const bool isFirst = equal.empty() || equal.back().first != pair.later;
    if (!pair.differs && isFirst) equal.emplace_back(pair.later, pair.earlier);
  }
  return equal;
}

std::vector<Belongings::Link> EqualPairs::LinksOf(IFC::IfcEntity& object) {
  std::vector<Belongings::Link> links = contents_.ReferredBy(object);
  const auto belongings = belongings_.Of(object);
  links.insert(links.end(), belongings.begin(), belongings.end());
  std::erase_if(links, [this](const Belongings::Link& link) {
    return model_.InModel(link.other) == nullptr;
  });
  return links;
}

// Whatever hangs on the one hangs on the other, as far as is known by now. The pair depends on all
// that had to be taken for equal.
bool EqualPairs::LinksMayMatch(Index pair) {
  const std::vector<Belongings::Link> links = LinksOf(*pairs_[pair].later);
  const std::vector<Belongings::Link> wanted = LinksOf(*pairs_[pair].earlier);
  if (links.size() != wanted.size()) return false;
  Places places;
  for (const Belongings::Link& link : wanted) ++places[{link.kind, model_.InModel(link.other)}];
  for (const Belongings::Link& link : links) {
    if (!TakePlace(link, pair, places)) return false;
  }
  return true;
}

bool EqualPairs::TakePlace(const Belongings::Link& link, Index pair, Places& places) {
  const auto take = [&](const IFC::IfcEntity* object) {
    const auto place = places.find({link.kind, object});
    if (place == places.end() || place->second == 0) return false;
    --place->second;
    return true;
  };
  IFC::IfcEntity* const object = model_.InModel(link.other);
  if (take(object)) return true;
  const auto candidates = ofLater_.find(object);
  if (candidates == ofLater_.end()) return false;
  for (const Index candidate : candidates->second) {
    if (!take(pairs_[candidate].earlier)) continue;
    pairs_[candidate].dependents.push_back(pair);
    return true;
  }
  return false;
}

void EqualPairs::Contradict(std::vector<Index> differing) {
  for (const Index pair : differing) pairs_[pair].differs = true;
  while (!differing.empty()) {
    const std::vector<Index> dependents = std::move(pairs_[differing.back()].dependents);
    differing.pop_back();
    for (const Index dependent : dependents) {
      if (pairs_[dependent].differs) continue;
      pairs_[dependent].differs = true;
      differing.push_back(dependent);
    }
  }
}

}  // namespace corvel
