#include "merge/federation/join_equal_objects.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/federation/equality/equal_pairs.h"
#include "merge/federation/shared_guids.h"
#include "merge/federation/tree/length_in_metres.h"
#include "schema/interfaces/product.h"

namespace corvel {

namespace {

constexpr std::string_view kPlacement = "ObjectPlacement";

class ObjectJoiner {
 public:
  ObjectJoiner(FederatedModel& model, JoinedObjects& counts)
      : model_(model), counts_(counts), contents_(model), belongings_(model.Release(), shared_) {}

  bool Run(Ticker& ticker) {
    FindShared();
    for (std::size_t input = 0; input < model_.InputCount(); ++input) {
      objects_.clear();
      JoinApplications(input);
      const bool goesOn =
          shared_.empty() ||
          model_.ForEachRootOf(
              input, ticker, [this](const ClassFacts* facts) { return IsOfInterest(facts); },
              [this](IFC::IfcEntity& root) { Gather(root); });
      if (!goesOn) return false;
      const IFC::IfcEntity* const units = model_.Document(input).getIfcUnitAssignment();
      if (input != 0) Join(MetresPerLengthUnit(units));
      for (IFC::IfcEntity* const object : objects_) {
        if (model_.Contains(*object)) earlier_[GuidOf(*object)].push_back(object);
      }
    }
    return true;
  }

 private:
  static std::string_view GuidOf(IFC::IfcEntity& object) {
    return EntityCast<IFC::VirtualIfcRoot>(&object)->getGlobalId();
  }

  // All that have their GUID with others, in any input.
  void FindShared() {
    std::vector<IFC::IfcEntity*> objects = model_.HoldersOfSharedGuids();
    std::erase_if(objects, [this](IFC::IfcEntity* object) {
      return !model_.Contains(*object) || object->carries || isRelation_.IsTrueOf(*object);
    });
    for (const IFC::IfcEntity* const holder : HoldersOfSharedGuids(objects)) {
      shared_.insert(holder);
      classesOfShared_.insert(FindFacts(*holder));
    }
  }

  bool IsOfInterest(const ClassFacts* facts) const {
    return classesOfShared_.contains(facts) || belongings_.MayTie(facts) ||
           IsOrIsBelow(facts, "IfcProduct");
  }

  void Gather(IFC::IfcEntity& root) {
    belongings_.Gather(root);
    contents_.Gather(root);
    if (const auto* const product = EntityCast<IFC::VirtualIfcProduct>(&root)) {
      if (const auto* const placement = product->getObjectPlacement()) ++placed_[placement];
    }
    if (shared_.contains(&root)) objects_.push_back(&root);
  }

  void Join(double metresPerUnit) {
    EqualPairs pairs(model_, contents_, belongings_);
    for (IFC::IfcEntity* const object : objects_) {
      const auto earlier = earlier_.find(GuidOf(*object));
      if (earlier == earlier_.end()) continue;
      for (IFC::IfcEntity* const other : earlier->second) {
        if (FindFacts(*object) == FindFacts(*other)) pairs.Add(*object, *other);
      }
    }
    const auto equal = pairs.Equal(metresPerUnit);
    for (const auto& [later, earlier] : equal) model_.GiveWay(*later, *earlier);
    for (const auto& [later, earlier] : equal) {
      JoinPlacements(*later, *earlier);
      JoinAxes(*later, *earlier);
    }
    counts_.joined += equal.size();
  }

  // They are the same place in the world. One that places others too stays.
  void JoinPlacements(const IFC::IfcEntity& later, const IFC::IfcEntity& earlier) {
    IFC::IfcEntity* const placement = ReferenceOf(later, kPlacement);
    IFC::IfcEntity* const survivor = model_.InModel(ReferenceOf(earlier, kPlacement));
    if (placement == nullptr || survivor == nullptr || placement == survivor) return;
    if (!model_.Contains(*placement) || --placed_[placement] != 0) return;
    model_.GiveWay(*placement, *survivor);
  }

  // Of a grid: an axis without one is none. They are the same, one by one.
  void JoinAxes(const IFC::IfcEntity& later, const IFC::IfcEntity& earlier) {
    for (const char* const axes : {"UAxes", "VAxes", "WAxes"}) {
      const EntityList* const own = ReferencesOf(later, axes);
      const EntityList* const others = ReferencesOf(earlier, axes);
      if (own == nullptr || others == nullptr) continue;
      for (std::size_t i = 0; i < std::min(own->size(), others->size()); ++i) {
        IFC::IfcEntity* const survivor = model_.InModel((*others)[i]);
        const bool differ = survivor != nullptr && survivor != (*own)[i];
        if (differ && model_.Contains(*(*own)[i])) model_.GiveWay(*(*own)[i], *survivor);
      }
    }
  }

  // No two of one input.
  void JoinApplications(std::size_t input) {
    std::vector<std::pair<Digest, IFC::IfcEntity*>> own;
    model_.ForEachResourceOf(input, [&](IFC::IfcEntity& entity) {
      if (!isApplication_.IsTrueOf(entity)) return;
      const Digest digest = contents_.OfValue(&entity);
      const auto earlier = earlierApplications_.find(digest);
      if (earlier == earlierApplications_.end()) {
        own.emplace_back(digest, &entity);
      } else {
        model_.GiveWay(entity, *earlier->second);
        ++counts_.applications;
      }
    });
    earlierApplications_.insert(own.begin(), own.end());
  }

  FederatedModel& model_;
  JoinedObjects& counts_;
  ObjectContents contents_;
  Belongings::Objects shared_;
  std::unordered_set<const ClassFacts*> classesOfShared_;
  Belongings belongings_;
  ClassQuestion isRelation_{"IfcRelationship"};
  ClassQuestion isApplication_{"IfcApplication"};
  // What stays of the inputs that had their turn.
  std::unordered_map<std::string_view, std::vector<IFC::IfcEntity*>> earlier_;
  std::unordered_map<Digest, IFC::IfcEntity*, HashOfDigest> earlierApplications_;
  std::vector<IFC::IfcEntity*> objects_;  // shared ones of the input whose turn it is
  std::unordered_map<const IFC::IfcEntity*, std::size_t> placed_;  // products of a placement
};

}  // namespace

bool JoinEqualObjects(FederatedModel& model, Ticker& ticker, JoinedObjects& counts) {
  return ObjectJoiner(model, counts).Run(ticker);
}

}  // namespace corvel
