// The step of the marking that takes along what hangs on deleted products without being their
// child: their property data, and the shape of a site.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "core/cast_of_thread.h"
#include "merge/marking.h"
#include "schema/interfaces/interfaces.h"

namespace corvel {

namespace {

constexpr int kFirstTick = 50;
constexpr int kLastTick = 100;

class Dependents {
 public:
  Dependents(IFC::MainContainer& container, Deletion& deletion)
      : container_(container), deletion_(deletion) {}

  void DeleteOf(IFC::IfcEntity& product) {
    if (ClassIs(product, u"IfcSite")) {
      DeleteShapeOf(product);
    } else {
      DeletePropertiesOf(product);
    }
  }

 private:
  // With all else that the site alone has. An owner history is nobody's own.
  void DeleteShapeOf(IFC::IfcEntity& entity) {
    auto* const site = sites_(entity);
    if (site == nullptr) return;
    IFC::ChildQueue children;
    entity.CollectAllChildren(children);
    while (!children.IsEmpty()) {
      IFC::IfcEntity* const child = children.TakeBack().entity;
      if (child == nullptr || IsSaved(*child) || ClassIs(*child, u"IfcOwnerHistory")) continue;
      deletion_.DeleteWithOrphans(*child);
    }
    site->clearRepresentation();
    container_.NoteChangedReferences();
  }

  // The relations in the order of the file: what one of them leaves may hang on another.
  void DeletePropertiesOf(const IFC::IfcEntity& product) {
    relations_.clear();
    for (IFC::IfcEntity* const parent : product.parents.Members()) {
      if (ClassIs(*parent, u"IfcRelDefinesByProperties")) relations_.push_back(parent);
    }
    std::sort(
        relations_.begin(), relations_.end(),
        [](const IFC::IfcEntity* a, const IFC::IfcEntity* b) { return PlaceOf(*a) < PlaceOf(*b); });
    for (IFC::IfcEntity* const relation : relations_) LookAt(*relation);
  }

  // What a relation says, and how much of it is known to be gone.
  struct Relation {
    std::vector<IFC::IfcEntity*> objects;
    std::size_t gone = 0;  // so many of the first objects
    std::vector<IFC::IfcEntity*> sets;
  };

  // A relation with many objects is looked at for many of them, so it is asked once and remembered.
  void LookAt(IFC::IfcEntity& entity) {
    const auto known = large_.find(&entity);
    if (known != large_.end()) {
      DeleteIfNothingIsLeft(entity, known->second);
      return;
    }
    const auto* const relation = propertyRelations_(entity);
    if (relation == nullptr) return;
    asked_.objects.clear();
    asked_.gone = 0;
    asked_.sets.clear();
    relation->collectRelatedObjects(asked_.objects);
    NotePropertySets(entity);
    if (asked_.objects.size() <= kFew) {
      DeleteIfNothingIsLeft(entity, asked_);
    } else {
      DeleteIfNothingIsLeft(entity, large_.emplace(&entity, asked_).first->second);
    }
  }

  void NotePropertySets(const IFC::IfcEntity& relation) {
    IFC::ChildQueue children;
    relation.CollectAllChildren(children);
    while (!children.IsEmpty()) {
      IFC::IfcEntity* const child = children.TakeBack().entity;
      if (child != nullptr && IsPropertySet(*child)) asked_.sets.push_back(child);
    }
  }

  // Nothing comes back in this step, so that the search goes on where it stopped.
  void DeleteIfNothingIsLeft(IFC::IfcEntity& entity, Relation& relation) {
    for (; relation.gone < relation.objects.size(); ++relation.gone) {
      const IFC::IfcEntity* const object = relation.objects[relation.gone];
      if (object != nullptr && !IsDeleted(*object)) return;
    }
    deletion_.Delete(entity);
    for (IFC::IfcEntity* const set : relation.sets) {
      if (!IsDeleted(*set) && Deletion::IsOrphan(*set)) DeletePropertySet(*set);
    }
  }

  static bool IsPropertySet(const IFC::IfcEntity& entity) {
    return ClassIs(entity, u"IfcPropertySet") || ClassIs(entity, u"IfcElementQuantity");
  }

  // The properties of the set stay undecided when nothing but the set refers to them: they are then
  // linked to nothing, and go with the last step. What hangs on them goes with it.
  void DeletePropertySet(IFC::IfcEntity& propertySet) {
    deletion_.Delete(propertySet);
    IFC::ChildQueue queue;
    propertySet.CollectAllChildren(queue);
    while (!queue.IsEmpty()) {
      IFC::IfcEntity* const entity = queue.TakeBack().entity;
      if (entity == nullptr || !Deletion::IsOrphan(*entity) || entity->walkResult == kTaken) {
        continue;
      }
      entity->walkResult = kTaken;
      taken_.push_back(entity);
      entity->CollectAllChildren(queue);
      deletion_.DeleteChildrenOf(*entity);
    }
    for (IFC::IfcEntity* const entity : taken_) entity->walkResult = 0;
    taken_.clear();
  }

  static constexpr std::size_t kFew = 16;
  static constexpr std::uint8_t kTaken = 3;  // once for a set: objects may refer to one another

  IFC::MainContainer& container_;
  Deletion& deletion_;
  // Of its own: several models are marked at the same time.
  CastOfThread<IFC::IfcSiteVirtual> sites_;
  CastOfThread<IFC::VirtualPropertyRelation> propertyRelations_;
  std::vector<IFC::IfcEntity*> relations_;
  Relation asked_;
  std::unordered_map<const IFC::IfcEntity*, Relation> large_;
  std::vector<IFC::IfcEntity*> taken_;
};

}  // namespace

bool MarkDependentsToDelete(IFC::MainContainer& container, Deletion& deletion,
                            const std::vector<MarkerPair>& deletePairs, const Stage& stage) {
  Dependents dependents(container, deletion);
  Ticker ticker(stage.CountedTo(kLastTick, true), {.block = deletePairs.size() / kFirstTick,
                                                   .valueBefore = kFirstTick,
                                                   .most = kLastTick - kFirstTick + 1});
  for (const MarkerPair& pair : deletePairs) {
    IFC::IfcEntity* const product = container.GetEntityByOrginalNumber(pair.number);
    if (product != nullptr) dependents.DeleteOf(*product);
    if (!ticker.Advance()) return false;
  }
  return true;
}

}  // namespace corvel
