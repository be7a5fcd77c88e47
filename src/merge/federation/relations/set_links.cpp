#include "merge/federation/relations/set_links.h"

#include <algorithm>
#include <string>

#include "core/entity_cast.h"
#include "core/guid.h"
#include "core/root_interfaces.h"
#include "schema/attributes.h"
#include "schema/interfaces/properties.h"

namespace corvel {

namespace {

constexpr const char* kRelation = "IfcRelDefinesByProperties";
constexpr std::string_view kDefinition = "RelatingPropertyDefinition";
constexpr std::string_view kObjects = "RelatedObjects";
// Positions of inputs, from which other GUIDs are made, are small numbers.
constexpr std::uint64_t kMadeHere = std::uint64_t{1} << 63;

}  // namespace

void SetLinks::CountUsers(IFC::IfcEntity& entity) {
  if (isType_.IsTrueOf(entity)) {
    CountSetsOfType(entity);
  } else {
    ForEachTie(entity, [this](const HangingSet& hanging) { ++users_[hanging.set]; });
  }
}

void SetLinks::CountSetsOfType(const IFC::IfcEntity& type) {
  const EntityList* const sets = ReferencesOf(type, "HasPropertySets");
  if (sets == nullptr) return;
  for (IFC::IfcEntity* const set : *sets) ++users_[model_.InModel(set)];
}

// From IFC4 on several sets may stand behind one relation, as a value in its record.
std::vector<IFC::IfcEntity*> SetLinks::SetsOf(const IFC::IfcEntity& relation) const {
  std::vector<IFC::IfcEntity*> sets;
  const auto take = [&](IFC::IfcEntity* entity) {
    if (IFC::IfcEntity* const set = model_.InModel(entity)) sets.push_back(set);
  };
  IFC::IfcEntity* const definition = ReferenceOf(relation, kDefinition);
  if (definition == nullptr || !definition->inlineValue) {
    take(definition);
    return sets;
  }
  for (const Attribute attribute : AttributesOf(*definition)) {
    attribute.ForEach<IFC::IfcEntity*>(take);
  }
  return sets;
}

void SetLinks::Leave(const HangingSet& hanging) {
  --users_[hanging.set];
  const auto [found, isNew] = leavingOf_.try_emplace(hanging.relation, leaving_.size());
  if (isNew) leaving_.push_back({hanging.relation, {}});
  leaving_[found->second].hangings.push_back(hanging);
}

IFC::IfcEntity* SetLinks::Copy(IFC::IfcEntity& set) {
  auto* const prototype = EntityCast<IFC::Prototype>(&set);
  if (prototype == nullptr) return nullptr;
  IFC::IfcEntity* const copy = prototype->clone(model_.Container().Pool());
  if (copy == nullptr || !model_.AddRoot(*copy)) return nullptr;
  SetGuidLike(*copy, set);
  return copy;
}

bool SetLinks::Link(IFC::IfcEntity& set, const std::vector<IFC::IfcEntity*>& objects) {
  IFC::IfcEntity* const relation = model_.MakeRoot(kRelation);
  if (relation == nullptr) return false;
  SetGuidLike(*relation, set);
  if (IFC::IfcEntity* const history = ReferenceOf(set, "OwnerHistory")) {
    SetAttribute(*relation, "OwnerHistory", history);
  }
  EntityList members;
  members.Assign(objects, model_.Container().Pool());
  users_[&set] += static_cast<std::ptrdiff_t>(objects.size());
  return SetAttribute(*relation, kObjects, members) && SetAttribute(*relation, kDefinition, &set);
}

// The same merge makes the same objects in the same order.
void SetLinks::SetGuidLike(IFC::IfcEntity& made, IFC::IfcEntity& original) {
  auto* const root = EntityCast<IFC::VirtualIfcRoot>(&original);
  const std::string guid =
      DeriveGuid(root == nullptr ? "" : root->getGlobalId(), kMadeHere + made_++);
  SetAttribute<const char*>(made, "GlobalId", model_.Container().Pool().InternNarrow(guid));
}

bool SetLinks::Apply() {
  for (const Leaving& leaving : leaving_) {
    if (!RelinkOthers(leaving)) return false;
    RelationEdits::Members members;
    for (const HangingSet& hanging : leaving.hangings) members.insert(hanging.as);
    edits_.Leave(*leaving.relation, kObjects, members);
  }
  return true;
}

// Whoever leaves a relation with several sets keeps those that it did not leave.
bool SetLinks::RelinkOthers(const Leaving& leaving) {
  const std::vector<IFC::IfcEntity*> sets = SetsOf(*leaving.relation);
  if (sets.size() < 2) return true;
  for (IFC::IfcEntity* const set : sets) {
    std::vector<IFC::IfcEntity*> objects;
    for (const HangingSet& hanging : leaving.hangings) {
      const bool leavesThis = std::any_of(
          leaving.hangings.begin(), leaving.hangings.end(), [&](const HangingSet& other) {
            return other.as == hanging.as && model_.InModel(other.set) == set;
          });
      IFC::IfcEntity* const object = model_.InModel(hanging.as);
      const bool isThere = std::find(objects.begin(), objects.end(), object) != objects.end();
      if (!leavesThis && !isThere) objects.push_back(object);
    }
    if (!objects.empty() && !Link(*set, objects)) return false;
  }
  return true;
}

}  // namespace corvel
