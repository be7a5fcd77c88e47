// What ties property sets to objects.
#pragma once

#include <cstddef>
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

  // Classes of relations that tie sets to objects.
  static bool AreRelations(const ClassFacts* facts) {
    return IsOrIsBelow(facts, "IfcRelDefinesByProperties") &&
           !IsOrIsBelow(facts, "IfcRelOverridesProperties");
  }
  // Those, and types, which hold sets of their own.
  static bool MayTie(const ClassFacts* facts) {
    return AreRelations(facts) || IsOrIsBelow(facts, "IfcTypeObject");
  }
  // Of such a relation. May be null.
  static const EntityList* ObjectsOf(const IFC::IfcEntity& relation) {
    return ReferencesOf(relation, "RelatedObjects");
  }

  // `action` gets each tie of such a relation, unless it is to what is not in the model.
  template <class Action>
  void ForEachTie(IFC::IfcEntity& relation, Action action) const {
    const EntityList* const objects = ObjectsOf(relation);
    if (objects == nullptr) return;
    for (IFC::IfcEntity* const set : SetsOf(relation)) {
      for (IFC::IfcEntity* const object : *objects) {
        if (model_.InModel(object) != nullptr) action(HangingSet{&relation, object, set});
      }
    }
  }
  // Of an object that may tie. Whatever is tied twice is counted twice.
  void CountUsers(IFC::IfcEntity& entity);

  // Ties that are there still, when those of all objects have been counted.
  std::size_t UsersOf(const IFC::IfcEntity& set) const {
    const auto found = users_.find(&set);
    return found == users_.end() ? 0 : static_cast<std::size_t>(found->second);
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
  // Below zero where some left before they were counted.
  std::unordered_map<const IFC::IfcEntity*, std::ptrdiff_t> users_;
  std::vector<Leaving> leaving_;
  std::unordered_map<const IFC::IfcEntity*, std::size_t> leavingOf_;  // relation: its index
  std::uint64_t made_ = 0;
};

}  // namespace corvel
