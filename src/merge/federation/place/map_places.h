// Models of one map stand relative to each other as the map says, whatever each counts from.
#pragma once

#include <cstddef>
#include <unordered_set>
#include <vector>

#include "merge/document.h"
#include "merge/federation/place/align_contexts.h"
#include "merge/federation/place/map_reference.h"
#include "merge/federation/place/place_warning.h"
#include "merge/host_scene.h"

namespace corvel {

// What is left to be done behind the fold: models whose coordinates are those of the first have no
// map of their own any more.
struct OneMap {
  std::unordered_set<const IfcDocument*> documents;  // the first one included; empty: no model is
  std::vector<IFC::IfcEntity*> leftovers;            // conversions and property sets
};

// The models of a run, before any of them is changed. A later model is placed when its reference
// system is that of the first and the host does not move it: it gets the place from which its
// points come to where both maps say they are. What the host moves stands where the host shows it.
class MapPlaces {
 public:
  struct Model {
    IfcDocument* document = nullptr;
    HostObject project = 0;
  };

  // Reads all of them. `models` has at least one; all is borrowed. Looks at each object once.
  MapPlaces(const std::vector<Model>& models, HostScene& scene);

  const std::vector<PlaceWarning>& Warnings() const { return warnings_; }
  const OneMap& BehindFold() const { return oneMap_; }

  // In the place of ApplyProjectOffsets, and like it for models that are not placed; for the first
  // model before the others. The first keeps its place on the map when the host moves it. False
  // when there are no numbers left, which has been reported.
  bool Place(const Model& model, HostScene& scene);

 private:
  struct Placed {
    const IfcDocument* document = nullptr;
    MapReference reference;
  };

  bool HasMapOfFirst(const Model& model, const MapReading& reading);
  bool IsPlace(const Model& model, const MapReference& reference);
  void TakePlaced(const Model& model, MapReference reference);
  void WarnOfDistortion(const Model& model, const MapReference& reference);
  void WarnOfNorth(const Model& model, const MapReference& reference);
  bool MoveFirst(const Model& first, HostScene& scene);
  bool PlaceByMap(IfcDocument& document, const MapReference& reference) const;
  void Warn(const Model& model, const WideString& text);

  WideString nameOfFirst_;
  MapReading first_;
  std::vector<Placed> placed_;
  OneMap oneMap_;
  std::vector<PlaceWarning> warnings_;
  const IfcDocument* firstDocument_ = nullptr;
};

}  // namespace corvel
