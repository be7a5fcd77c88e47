// Whether two objects with a GUID say the same.
#pragma once

#include <string_view>
#include <unordered_map>
#include <vector>

#include "merge/federation/equality/belongings.h"
#include "merge/federation/equality/digest.h"
#include "merge/federation/equality/grids_stood_on.h"
#include "merge/federation/equality/value_digests.h"
#include "merge/federation/federated_model.h"
#include "merge/federation/tree/world_places.h"

namespace corvel {

// As far as can be said without knowing which objects are equal. Each object is looked at once.
class ObjectContents {
 public:
  explicit ObjectContents(const FederatedModel& model) : values_(model) {}

  // Takes note of what others are compared by. All objects with a GUID of an input come here before
  // any of them is compared.
  void Gather(IFC::IfcEntity& object) { grids_.Gather(object); }

  // Class, and attributes without references to objects with a GUID, owner history and placement.
  // Objects of one input come with the length of its unit.
  Digest Of(IFC::IfcEntity& object);
  // The objects with a GUID that it refers to by its attributes, as `kind` the attribute, and the
  // grid that it stands on.
  std::vector<Belongings::Link> ReferredBy(IFC::IfcEntity& object);
  // Whether the two stand at the same place in the world. Lengths in metres for each unit.
  bool SamePlaces(IFC::IfcEntity& one, IFC::IfcEntity& other, double metresPerUnit);
  Digest OfValue(IFC::IfcEntity* value) { return values_.Of(value); }

 private:
  ValueDigests values_;
  WorldPlaces places_;
  GridsStoodOn grids_;
  ClassQuestion isLocalPlacement_{"IfcLocalPlacement"};
  std::unordered_map<const IFC::IfcEntity*, Digest> known_;
};

}  // namespace corvel
