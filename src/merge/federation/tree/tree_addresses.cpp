#include "merge/federation/tree/tree_addresses.h"

#include <algorithm>

namespace corvel {

namespace {

constexpr std::size_t kLengthOfGuid = 22;

// A list has blanks between its words.
bool IsWord(std::string_view guid) {
  return guid.size() == kLengthOfGuid && std::all_of(guid.begin(), guid.end(), [](char letter) {
           return letter > ' ' && letter != ';' && letter != '#' && letter < '\x7F';
         });
}

}  // namespace

TreeAddresses::TreeAddresses(const FederatedModel& model, SpatialStructure& structure)
    : model_(model), byGuid_(model.InputCount()) {
  for (SpatialObject& object : structure.objects) {
    byGuid_[object.input][object.guid].push_back(&object);
    byEntity_.emplace(object.entity, &object);
  }
  for (std::size_t input = 0; input < model.InputCount(); ++input) {
    for (const auto& [number, entity] : model.RecordsOf(input)) {
      const auto found = byEntity_.find(entity);
      if (found != byEntity_.end()) numbers_.emplace(found->second, number);
    }
  }
}

std::string TreeAddresses::Of(const SpatialObject& object) const {
  const std::string input = std::to_string(object.input + 1) + ":";
  const bool isOnlyOne = byGuid_[object.input].at(object.guid).size() == 1;
  if (isOnlyOne && IsWord(object.guid)) return input + object.guid;
  return input + "#" + std::to_string(numbers_.at(&object));
}

SpatialObject* TreeAddresses::Find(std::size_t input, const std::string& guid,
                                   bool& isAmbiguous) const {
  const auto found = byGuid_[input].find(guid);
  if (found == byGuid_[input].end()) return nullptr;
  isAmbiguous = found->second.size() > 1;
  return isAmbiguous ? nullptr : found->second.front();
}

SpatialObject* TreeAddresses::Find(std::size_t input, std::uint32_t number) const {
  const auto found = byEntity_.find(model_.RecordsOf(input).Find(number));
  return found == byEntity_.end() ? nullptr : found->second;
}

}  // namespace corvel
