#include "host/diff/common_changes.h"

#include <unordered_map>
#include <utility>

#include "host/diff/movement.h"

namespace corvel::host::diff {

namespace {

std::string KeyOf(const Change& change) {
  std::string key(1, static_cast<char>('a' + static_cast<int>(change.kind)));
  if (change.movement) return key + KeyOf(*change.movement);
  key += change.path;
  for (const auto* const value : {&change.before, &change.after}) {
    key += '\0';
    key += *value ? "=" + **value : std::string();
  }
  return key;
}

using Place = std::pair<std::size_t, std::size_t>;  // object, change

// One object may have the same change several times.
std::size_t CountObjects(const std::vector<Place>& places) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < places.size(); ++i) {
    count += i == 0 || places[i].first != places[i - 1].first ? 1 : 0;
  }
  return count;
}

}  // namespace

ChangesTold FindCommonChanges(const ModelDiff& diff) {
  std::unordered_map<std::string, std::vector<Place>> places;
  std::vector<const std::vector<Place>*> inOrder;
  ChangesTold told;
  for (std::size_t i = 0; i < diff.changed.size(); ++i) {
    const std::vector<Change>& changes = diff.changed[i].changes;
    told.isCommon.emplace_back(changes.size(), false);
    for (std::size_t k = 0; k < changes.size(); ++k) {
      const auto [entry, isNew] = places.try_emplace(KeyOf(changes[k]));
      if (isNew) inOrder.push_back(&entry->second);
      entry->second.emplace_back(i, k);
    }
  }
  for (const std::vector<Place>* const same : inOrder) {
    if (CountObjects(*same) < kMany) continue;
    const auto [object, change] = same->front();
    CommonChange& common =
        told.common.emplace_back(CommonChange{diff.changed[object].changes[change], {}, {}});
    for (const auto& [of, at] : *same) {
      told.isCommon[of][at] = true;
      if (!common.objects.empty() && common.objects.back() == of) continue;
      common.objects.push_back(of);
      ++common.classes[diff.changed[of].after.className];
    }
  }
  return told;
}

}  // namespace corvel::host::diff
