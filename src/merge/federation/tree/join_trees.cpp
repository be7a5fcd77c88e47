#include "merge/federation/tree/join_trees.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "core/entity_cast.h"
#include "core/guid.h"
#include "core/root_interfaces.h"
#include "core/shown_paths.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/same_value.h"
#include "merge/federation/tree/fold_placements.h"
#include "merge/federation/tree/storey_heights.h"
#include "merge/federation/tree/tree_list.h"
#include "merge/federation/tree/tree_map.h"
#include "merge/federation/tree/tree_matching.h"
#include "merge/federation/tree/world_places.h"
#include "platform/file.h"
#include "step/writer/unfinished_output.h"

namespace corvel {

namespace {

constexpr double kMetresPerMillimetre = 1e-3;
// In the length unit of the models: shapes are equal by their numbers.
constexpr double kSameNumber = 1e-6;
constexpr PlaceTolerance kSameTerrain = {.origin = 1e-6, .partOfOrigin = 1e-9, .axis = 1e-6};
// What stands on the one may stand on the other: this is how rounding differs, and no more.
constexpr PlaceTolerance kRounding = {.origin = 1e-7, .partOfOrigin = 1e-12, .axis = 1e-10};

std::optional<Transform> WorldPlaceOf(const IFC::IfcEntity& product, WorldPlaces& places) {
  IFC::IfcEntity* const placement = ReferenceOf(product, "ObjectPlacement");
  return placement == nullptr ? Transform{} : places.Of(*placement);
}

// Parts of a whole that they were not parts of before.
class Parts {
 public:
  explicit Parts(FederatedModel& model) : model_(model) {}

  void Add(IFC::IfcEntity& part, IFC::IfcEntity& whole) {
    parts_.emplace_back(&part, &whole);
    wholes_.emplace(&part, &whole);
    relations_.emplace(&whole, nullptr);
  }

  // Out of the relations that they are in, and into the one of their whole. False: the user
  // cancelled, or there is no number left.
  bool Hang(Ticker& ticker) {
    if (parts_.empty()) return true;
    const auto isAggregation = [](const ClassFacts* facts) {
      return IsOrIsBelow(facts, "IfcRelAggregates");
    };
    for (std::size_t input = 0; input < model_.InputCount(); ++input) {
      const bool goesOn = model_.ForEachRootOf(input, ticker, isAggregation,
                                               [this](IFC::IfcEntity& entity) { Loosen(entity); });
      if (!goesOn) return false;
    }
    for (const auto& [part, whole] : parts_) {
      const auto composition = AttributesOf(*part).Find("CompositionType");
      if (composition) composition->SetEnumeration("PARTIAL");
      if (!Hang(*part, *whole)) return false;
    }
    return true;
  }

 private:
  void Loosen(IFC::IfcEntity& aggregation) {
    const auto members = AttributesOf(aggregation).Find("RelatedObjects");
    const std::size_t gone = members->RemoveReferences(
        [this](const IFC::IfcEntity* member) { return wholes_.contains(member); });
    const EntityList* const left = members->As<EntityList>();
    if (gone != 0 && left != nullptr && left->empty()) {
      model_.Delete(aggregation);
      return;
    }
    const auto whole = relations_.find(model_.InModel(ReferenceOf(aggregation, "RelatingObject")));
    if (whole != relations_.end() && whole->second == nullptr) whole->second = &aggregation;
  }

  // A release may allow a whole one relation only.
  bool Hang(IFC::IfcEntity& part, IFC::IfcEntity& whole) {
    IFC::IfcEntity*& relation = relations_[&whole];
    if (relation == nullptr) relation = MakeRelation(part, whole);
    return relation != nullptr &&
           AppendReference(*relation, "RelatedObjects", part, model_.Container().Pool());
  }

  // Null (reported) when there is no number left.
  IFC::IfcEntity* MakeRelation(IFC::IfcEntity& part, IFC::IfcEntity& whole) {
    IFC::IfcEntity* const made = model_.MakeRoot("IfcRelAggregates");
    const auto* const root = EntityCast<IFC::VirtualIfcRoot>(&part);
    if (made == nullptr || root == nullptr) return nullptr;
    const std::string guid = DeriveGuid(std::string(root->getGlobalId()) + " is a part", 0);
    SetAttribute<const char*>(*made, "GlobalId", model_.Container().Pool().InternNarrow(guid));
    if (IFC::IfcEntity* const history = ReferenceOf(part, "OwnerHistory")) {
      SetAttribute(*made, "OwnerHistory", history);
    }
    SetAttribute(*made, "RelatingObject", &whole);
    return made;
  }

  FederatedModel& model_;
  std::vector<std::pair<IFC::IfcEntity*, IFC::IfcEntity*>> parts_;
  std::unordered_map<const IFC::IfcEntity*, IFC::IfcEntity*> wholes_;     // by part
  std::unordered_map<const IFC::IfcEntity*, IFC::IfcEntity*> relations_;  // by whole
};

// Who has a shape of its own, and may give it up.
class Shapes {
 public:
  Shapes(const FederatedModel& model, WorldPlaces& places) : model_(model), places_(places) {}

  IFC::IfcEntity* Of(const IFC::IfcEntity& entity) const {
    return model_.InModel(ReferenceOf(entity, "Representation"));
  }

  // It has another one than the survivor, or the same elsewhere.
  bool Differ(const IFC::IfcEntity& entity, const IFC::IfcEntity& survivor) {
    const IFC::IfcEntity* const shape = Of(entity);
    if (shape == nullptr) return false;
    const auto place = WorldPlaceOf(entity, places_);
    const auto otherPlace = WorldPlaceOf(survivor, places_);
    return !place || !otherPlace || !SamePlace(*place, *otherPlace, kSameTerrain) ||
           !SameByValue(shape, Of(survivor), kSameNumber);
  }

 private:
  const FederatedModel& model_;
  WorldPlaces& places_;
};

class Joining {
 public:
  Joining(FederatedModel& model, WorldPlaces& places, JoinedTrees& counts)
      : model_(model), places_(places), shapes_(model, places), counts_(counts), parts_(model) {}

  bool Run(const SpatialStructure& structure, Ticker& ticker) {
    for (const SpatialObject& object : structure.objects) {
      if (object.survivor != nullptr) Join(*object.entity, *object.survivor->entity);
      if (!ticker.Advance()) return false;
    }
    if (!parts_.Hang(ticker)) return false;
    return !PlacementsNeedProducts(model_) || FoldPlacements(model_, left_, ticker, counts_.folded);
  }

 private:
  void Join(IFC::IfcEntity& entity, IFC::IfcEntity& survivor) {
    if (shapes_.Differ(entity, survivor)) {
      parts_.Add(entity, survivor);
      ++counts_.parts;
      return;
    }
    // Aspects of the one shape are those of the other then.
    IFC::IfcEntity* const shape = shapes_.Of(entity);
    IFC::IfcEntity* const other = shapes_.Of(survivor);
    if (shape != nullptr && shape != other) model_.GiveWay(*shape, *other);
    LeavePlacement(entity, survivor);
    model_.GiveWay(entity, survivor);
    ++counts_.joined;
  }

  // What stands on it stands on that of the survivor as well, if that is at the same place.
  void LeavePlacement(const IFC::IfcEntity& entity, const IFC::IfcEntity& survivor) {
    IFC::IfcEntity* const placement = model_.InModel(ReferenceOf(entity, "ObjectPlacement"));
    IFC::IfcEntity* const other = model_.InModel(ReferenceOf(survivor, "ObjectPlacement"));
    if (placement == nullptr || placement == other) return;
    const auto place = WorldPlaceOf(entity, places_);
    const auto otherPlace = WorldPlaceOf(survivor, places_);
    if (other != nullptr && place && otherPlace && SamePlace(*place, *otherPlace, kRounding)) {
      model_.GiveWay(*placement, *other);
    } else {
      left_.push_back(placement);
    }
  }

  FederatedModel& model_;
  WorldPlaces& places_;
  Shapes shapes_;
  JoinedTrees& counts_;
  Parts parts_;
  std::vector<IFC::IfcEntity*> left_;  // placements of those that gave way
};

WideString Described(const FederatedModel& model, const SpatialObject& object) {
  const WideString path = model.Document(object.input).getFilePath();
  return Widen(FindFacts(*object.entity)->name) + u" '" + TextOf(*object.entity, "Name") + u"' (#" +
         ToWide(object.entity->marker) + u" of " + ShownFileName(path) + u")";
}

WideString Described(const FederatedModel& model, const Ambiguity& ambiguity) {
  WideString text;
  for (const SpatialObject* const object : ambiguity.objects) {
    text += (text.empty() ? u"" : u", ") + Described(model, *object);
  }
  return text;
}

// A person may have made many.
constexpr std::size_t kMostMistakes = 20;

void Report(const std::vector<WideString>& mistakes, ErrorReporter showError) {
  WideString text;
  for (std::size_t i = 0; i < std::min(mistakes.size(), kMostMistakes); ++i) {
    text += (text.empty() ? u"" : u"\n") + mistakes[i];
  }
  if (mistakes.size() > kMostMistakes) {
    text += u"\n... and " + Widen(std::to_string(mistakes.size() - kMostMistakes)) + u" more.";
  }
  showError("", text, kReportShow);
}

bool ApplyMap(const FederatedModel& model, const TreeTask& task, SpatialStructure& structure) {
  if (!task.choices.treeMap) return true;
  std::vector<WideString> mistakes;
  const TreeMap map = ReadTreeMap(*task.choices.treeMap, mistakes);
  if (mistakes.empty()) ApplyTreeMap(map, model, structure, mistakes);
  if (mistakes.empty()) return true;
  Report(mistakes, task.showError);
  return false;
}

bool FindOneTree(const FederatedModel& model, const TreeTask& task, TreeMatching matching,
                 WorldPlaces& places, Ticker& ticker, SpatialStructure& structure) {
  if (!CollectSpatialStructure(model, task.guids, ticker, structure)) return false;
  if (!ApplyMap(model, task, structure)) return false;
  MeasureStoreys(model, places, structure);
  const double tolerance = task.choices.toleranceMm * kMetresPerMillimetre;
  return MatchTrees(structure, matching, tolerance, ticker);
}

}  // namespace

bool TreeMapIsGood(const WideString& path, ErrorReporter showError) {
  std::vector<WideString> mistakes;
  ReadTreeMap(path, mistakes);
  if (!mistakes.empty()) Report(mistakes, showError);
  return mistakes.empty();
}

bool JoinTrees(FederatedModel& model, const TreeTask& task, Ticker& ticker, JoinedTrees& counts) {
  SpatialStructure structure;
  WorldPlaces places;
  if (!FindOneTree(model, task, task.choices.tree, places, ticker, structure)) return false;
  for (const Ambiguity& ambiguity : structure.ambiguities) {
    counts.ambiguous.push_back(Described(model, ambiguity));
  }
  return Joining(model, places, counts).Run(structure, ticker);
}

bool ProposeTree(FederatedModel& model, const TreeTask& task, Ticker& ticker) {
  SpatialStructure structure;
  WorldPlaces places;
  const bool saysNothing = !task.choices.JoinTrees();
  const TreeMatching matching = saysNothing ? TreeMatching::kOne : task.choices.tree;
  if (!FindOneTree(model, task, matching, places, ticker, structure)) return false;
  Shapes shapes(model, places);
  const std::string list = TreeList(model, structure, [&](const SpatialObject& object) {
    return shapes.Differ(*object.entity, *object.survivor->entity);
  });
  const WideString& path = *task.choices.proposeTree;
  if (WriteInOneStep(path, list)) return true;
  task.showError("", path + u": this file cannot be written.", kReportShow);
  return false;
}

}  // namespace corvel
