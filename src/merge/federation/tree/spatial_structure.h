// Sites, buildings and storeys of all inputs, each with what it is a part of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "core/text.h"
#include "core/ticker.h"
#include "merge/federation/federated_model.h"
#include "merge/federation/per_class.h"
#include "step/class_facts.h"

namespace corvel {

enum class SpatialRank : std::uint8_t {
  kSite,
  kFacility,  // a building, a bridge, a railway
  kPart       // a storey, a part of a bridge
};

// What an object says of its composition, in the order in which one stands below the other. Objects
// that say nothing are elements.
enum class Composition : std::uint8_t { kComplex, kElement, kPartial };

// How far down in its model an object stands: what stands below it has a larger one.
struct SpatialLevel {
  SpatialRank rank = SpatialRank::kSite;
  Composition composition = Composition::kElement;
  std::uint32_t nesting = 0;  // ancestors in a row of the same rank and composition

  friend bool operator<(const SpatialLevel& one, const SpatialLevel& other) {
    return std::tie(one.rank, one.composition, one.nesting) <
           std::tie(other.rank, other.composition, other.nesting);
  }
  friend bool operator==(const SpatialLevel&, const SpatialLevel&) = default;
};

enum class SpatialRole : std::uint8_t { kOther, kSite, kFacility, kPart, kStorey, kAggregation };

// What objects are to the tree, asked once for each class.
class SpatialRoles {
 public:
  SpatialRole Of(const IFC::IfcEntity& entity);

 private:
  PerClass<SpatialRole> known_;
};

// The GUIDs that objects had before the fold, which gives others to the second of a model with one
// GUID and to those without one. By object; the texts are in the pools of the models.
using GuidsAsRead = std::unordered_map<const IFC::IfcEntity*, std::string_view>;

// Enters the sites, buildings and storeys among the objects of a model that is not folded yet.
void NoteSpatialGuids(const SortedObjects& records, GuidsAsRead& guids);

// What two objects were found to be one by.
enum class MatchReason : std::uint8_t {
  kNone,
  kGuid,
  kName,
  kHeight,
  kOnly,  // each side has one object of the level
  kTold   // the user said so
};

struct SpatialObject;

// Objects of which several would have matched, so that none was taken.
struct Ambiguity {
  MatchReason reason = MatchReason::kNone;
  std::vector<const SpatialObject*> objects{};
};

struct SpatialObject {
  IFC::IfcEntity* entity = nullptr;
  std::size_t input = 0;
  // The object that it is a part of; null for one that is a part of the project.
  SpatialObject* parent = nullptr;
  std::vector<SpatialObject*> children{};  // placed or not
  std::string guid{};
  WideString name{};  // comparable
  // The class and, of those that have one, the predefined type: "IfcBridgePart DECK".
  std::string kind{};
  std::optional<double> heightMetres{};  // of storeys: see storey_heights.h
  SpatialLevel level{};
  bool isStorey = false;
  bool isGeneric = false;  // its name says nothing
  // Parts lead from the project to it, one level below the other. What has no place among them is
  // compared with nothing.
  bool isPlaced = false;

  // What the user said, see tree_map.h: it joins that one, or stays as it is.
  bool isTold = false;
  // What the matching found, see tree_matching.h.
  bool isContradicted = false;              // its name stands in another model at another height
  MatchReason reason = MatchReason::kNone;  // of `survivor`
  SpatialObject* told = nullptr;            // the one that it joins; null: it stays as it is
  SpatialObject* survivor = nullptr;        // the first of those that are one; null for itself
  const Ambiguity* ambiguity = nullptr;     // why it takes no part in more
};

// Addresses of objects last as long as this.
struct SpatialStructure {
  std::deque<SpatialObject> objects;  // by input, and then in the order of their numbers
  std::deque<Ambiguity> ambiguities;
};

// Collects what stands in the model. A part of two wholes belongs to the first. GUIDs that `asRead`
// lacks are those that the objects have. False: the user cancelled.
bool CollectSpatialStructure(const FederatedModel& model, const GuidsAsRead& asRead, Ticker& ticker,
                             SpatialStructure& structure);
// The same of one model that is not folded, from its objects that stand in the tree and those that
// say so (SpatialRoles), in the order of their numbers.
void CollectSpatialStructure(const std::vector<IFC::IfcEntity*>& objects,
                             SpatialStructure& structure);

}  // namespace corvel
