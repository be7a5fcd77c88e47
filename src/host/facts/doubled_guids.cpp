#include "host/facts/doubled_guids.h"

namespace corvel::host {

void DoubledGuidSearch::Add(IFC::VirtualIfcRoot& root) {
  const std::string_view guid = root.getGlobalId();
  if (guid.empty() || first_.Enter(guid, &root)) return;
  const auto [place, isNew] = places_.try_emplace(guid, doubled_.size());
  if (isNew) doubled_.push_back({std::string(guid), {first_.Find(guid)->marker}});
  doubled_[place->second].numbers.push_back(root.marker);
}

}  // namespace corvel::host
