// How a list of a tree names its objects: "2:2O2Fr$t4X7Zf8NOew3FLOH", the second input's with that
// GUID, or "2:#45", the one of that number.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

#include "merge/federation/federated_model.h"
#include "merge/federation/tree/spatial_structure.h"

namespace corvel {

class TreeAddresses {
 public:
  // Both are borrowed. Linear in the models.
  TreeAddresses(const FederatedModel& model, SpatialStructure& structure);

  // By GUID where it is one and no other object of the model has it, which is good when the file
  // was written anew as well; by number otherwise.
  std::string Of(const SpatialObject& object) const;
  // Null where there is no such object. With `guid` several may be meant: null, and `isAmbiguous`.
  SpatialObject* Find(std::size_t input, const std::string& guid, bool& isAmbiguous) const;
  SpatialObject* Find(std::size_t input, std::uint32_t number) const;

 private:
  using ByGuid = std::unordered_map<std::string, std::vector<SpatialObject*>>;

  const FederatedModel& model_;
  std::vector<ByGuid> byGuid_;  // by input
  std::unordered_map<const IFC::IfcEntity*, SpatialObject*> byEntity_;
  std::unordered_map<const SpatialObject*, std::uint32_t> numbers_;
};

}  // namespace corvel
