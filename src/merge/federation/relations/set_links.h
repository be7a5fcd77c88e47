// What ties property sets to objects.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "merge/federation/attribute_values.h"
#include "merge/federation/federated_model.h"
#include "merge/federation/relations/relation_edits.h"

namespace corvel {

// One set on one object, by one relation.
struct HangingSet {
  IFC::IfcEntity* relation = nullptr;
  IFC::IfcEntity* as = nullptr;  // the member of the relation; it may have given way
  IFC::IfcEntity* set = nullptr;
};

class SetLinks {
 public:
  SetLinks(FederatedModel& model, RelationEdits& edits) : model_(model), edits_(edits) {}

  // Takes note of what the object ties to others. Whatever is tied twice is counted twice.
  // `action` gets each tie that there is, unless it is to what is not in the model.
  template <class Action>
  void Gather(IFC::IfcEntity& entity, Action action) {
    if (isType_.IsTrueOf(entity)) return CountSetsOfType(entity);
    if (!isRelation_.IsTrueOf(entity) || isOverriding_.IsTrueOf(entity)) return;
    const EntityList* const objects = ReferencesOf(entity, "RelatedObjects");
    if (objects == nullptr) return;
    for (IFC::IfcEntity* const set : SetsOf(entity)) {
      for (IFC::IfcEntity* const object : *objects) {
        if (model_.InModel(object) == nullptr) continue;
        ++users_[set];
        action(HangingSet{&entity, object, set});
      }
    }
  }

  // Ties that are there still.
  std::size_t UsersOf(const IFC::IfcEntity& set) const {
    const auto found = users_.find(&set);
    return found == users_.end() ? 0 : found->second;
  }
  // From here on the tie does not count. It is there until Apply.
  void Leave(const HangingSet& hanging);
  // A copy with a GUID of its own that nothing is tied to. Null (reported): there is no number
  // left.
  IFC::IfcEntity* Copy(IFC::IfcEntity& set);
  // Makes a relation. False (reported): there is no number left.
  bool Link(IFC::IfcEntity& set, const std::vector<IFC::IfcEntity*>& objects);
  // Cuts the ties that were left. False as for Link.
  bool Apply();

 private:
  struct Leaving {
    IFC::IfcEntity* relation = nullptr;
    std::vector<HangingSet> hangings;
  };

  void CountSetsOfType(const IFC::IfcEntity& type);
  std::vector<IFC::IfcEntity*> SetsOf(const IFC::IfcEntity& relation) const;
  bool RelinkOthers(const Leaving& leaving);
  void SetGuidLike(IFC::IfcEntity& made, IFC::IfcEntity& original);

  FederatedModel& model_;
  RelationEdits& edits_;
  ClassQuestion isType_{"IfcTypeObject"};
  ClassQuestion isRelation_{"IfcRelDefinesByProperties"};
  ClassQuestion isOverriding_{"IfcRelOverridesProperties"};
  std::unordered_map<const IFC::IfcEntity*, std::size_t> users_;
  std::vector<Leaving> leaving_;
  std::unordered_map<const IFC::IfcEntity*, std::size_t> leavingOf_;  // relation: its index
  std::uint64_t made_ = 0;
};

}  // namespace corvel
