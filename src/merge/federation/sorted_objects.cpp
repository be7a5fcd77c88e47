#include "merge/federation/sorted_objects.h"

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/federation/per_class.h"
#include "merge/federation/shared_guids.h"
#include "step/reader/block_hash.h"

namespace corvel {

namespace {

constexpr std::uint16_t kOther = 0;
constexpr std::uint16_t kResource = 1;
constexpr std::uint16_t kFirstRoot = 2;  // the first class of those with a GUID, and so on

bool IsResource(const ClassFacts* facts) {
  return IsOrIsBelow(facts, "IfcRepresentationContext") ||
         IsOrIsBelow(facts, "IfcCoordinateOperation") || IsOrIsBelow(facts, "IfcApplication");
}

}  // namespace

SortedObjects::SortedObjects(const NumberTable& objects) {
  PerClass<std::uint16_t> kinds;
  for (const auto& [number, entity] : objects) {
    const auto kindOf = [&, object = entity](const ClassFacts* facts) -> std::uint16_t {
      if (EntityCast<IFC::VirtualIfcRoot>(object) == nullptr) {
        return IsResource(facts) ? kResource : kOther;
      }
      classes_.push_back(facts);
      return static_cast<std::uint16_t>(kFirstRoot + classes_.size() - 1);
    };
    const std::uint16_t kind = kinds.Of(*entity, kindOf);
    if (kind == kOther) continue;
    if (kind == kResource) {
      resources_.push_back(entity);
      continue;
    }
    roots_.push_back(entity);
    classOf_.push_back(static_cast<std::uint16_t>(kind - kFirstRoot));
  }
}

const std::vector<std::uint64_t>& SortedObjects::GuidHashes() {
  if (guidHashes_.empty()) {
    guidHashes_ = HashesOfGuids(roots_);
    const std::uint64_t ofEmpty = HashOfBlock({});
    for (std::size_t i = 0; i < roots_.size(); ++i) {
      if (guidHashes_[i] == ofEmpty) changing_.push_back(i);
    }
    return guidHashes_;
  }
  for (const std::size_t i : changing_) guidHashes_[i] = HashesOfGuids({roots_[i]}).front();
  return guidHashes_;
}

}  // namespace corvel
