#include "merge/federation/place/map_places.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

#include "merge/federation/place/move_conversion.h"
#include "merge/federation/place/place_model.h"
#include "merge/federation/tree/length_in_metres.h"
#include "merge/project_offsets.h"
#include "platform/file.h"
#include "step/log/ifc_log.h"

namespace corvel {

namespace {

// Metres, and the sine of an angle: what is nearer stays where it is.
constexpr PlaceTolerance kUnmoved = {1e-7, 0.0, 1e-10};
// A projection changes lengths by less than this.
constexpr double kUsualScale = 0.01;
constexpr int kDigits = 6;

WideString Shown(double number) {
  char text[32];
  const auto result =
      std::to_chars(text, text + sizeof text, number, std::chars_format::general, kDigits);
  return Widen(std::string(text, result.ptr));
}

void Log(const WideString& text) { IfcLog::Instance().LogLine(text); }

}  // namespace

MapPlaces::MapPlaces(const std::vector<Model>& models, HostScene& scene) {
  const Model& first = models.front();
  firstDocument_ = first.document;
  nameOfFirst_ = platform::FileNameOf(first.document->getFilePath());
  first_ = ReadMapReference(*first.document);
  if (!first_.problem.empty()) {
    Warn(first, u"its map conversion " + first_.problem + u"; no model is placed by it");
  }
  if (first_.reference) {
    oneMap_.documents.insert(firstDocument_);
    WarnOfDistortion(first, *first_.reference);
  }
  for (std::size_t i = 1; i < models.size(); ++i) {
    MapReading reading = ReadMapReference(*models[i].document);
    if (!HasMapOfFirst(models[i], reading)) continue;
    const std::vector<IFC::IfcEntity*>& records = reading.reference->records;
    oneMap_.documents.insert(models[i].document);
    oneMap_.leftovers.insert(oneMap_.leftovers.end(), records.begin(), records.end());
    if (OffsetOf(models[i].project, scene) != Triple{}) {
      Log(u"Stands where it is shown, not where the map says: " +
          models[i].document->getFilePath());
    } else {
      TakePlaced(models[i], std::move(*reading.reference));
    }
  }
}

// Says why not, but for models that nobody expects it of.
bool MapPlaces::HasMapOfFirst(const Model& model, const MapReading& reading) {
  if (!first_.HasConversion() && !reading.HasConversion()) return false;
  if (!first_.HasConversion()) {
    Warn(model, u"it has a map conversion, and " + nameOfFirst_ +
                    u" has none; it is not placed by the map");
  } else if (!reading.HasConversion()) {
    Warn(model, u"it has no map conversion, and " + nameOfFirst_ +
                    u" has one; it is not placed by the map");
  } else if (!reading.reference) {
    Warn(model, u"its map conversion " + reading.problem + u"; it is not placed by the map");
  } else if (first_.reference) {
    const ReferenceSystem& system = reading.reference->system;
    if (SameSystem(first_.reference->system, system)) return IsPlace(model, *reading.reference);
    Warn(model, u"its reference system is '" + system.Name() + u"', and that of " + nameOfFirst_ +
                    u" is '" + first_.reference->system.Name() +
                    (BareName(system.Name()) == BareName(first_.reference->system.Name())
                         ? u"' with another datum or zone; it is not placed by the map"
                         : u"'; it is not placed by the map"));
  }
  return false;
}

// Two places that are numbers may lie farther apart than any number.
bool MapPlaces::IsPlace(const Model& model, const MapReference& reference) {
  const Transform place = PlaceOn(first_.reference->First().frame, reference.First().frame).place;
  if (std::isfinite(place.origin[0] + place.origin[1] + place.origin[2])) return true;
  Warn(model, u"its map conversion holds what is no number; it is not placed by the map");
  return false;
}

void MapPlaces::TakePlaced(const Model& model, MapReference reference) {
  WarnOfDistortion(model, reference);
  WarnOfNorth(model, reference);
  placed_.push_back({model.document, std::move(reference)});
}

void MapPlaces::WarnOfDistortion(const Model& model, const MapReference& reference) {
  const MapFrame& frame = reference.First().frame;
  const auto isUnusual = [](double scale) { return std::abs(scale - 1.0) > kUsualScale; };
  const auto unusual = std::find_if(frame.scale.begin(), frame.scale.end(), isUnusual);
  if (unusual != frame.scale.end()) {
    Warn(model, u"by its map conversion a metre of it is " + Shown(*unusual) +
                    u" metres on the map; the scale may be wrong, or missing");
  }
  if (model.document == firstDocument_) return;
  const double distortion = PlaceOn(first_.reference->First().frame, frame).distortion;
  if (distortion == 0.0) return;
  Warn(model, u"its map conversion scales otherwise than that of " + nameOfFirst_ +
                  u", which no placement can do; a point that is a metre from its origin is " +
                  Shown(distortion) + u" metres from where the map says");
}

void MapPlaces::WarnOfNorth(const Model& model, const MapReference& reference) {
  const Transform place = PlaceOn(first_.reference->First().frame, reference.First().frame).place;
  double apart = 0.0;
  for (const ContextChange& change : ContextChangesOf(*first_.reference, reference, place)) {
    apart = std::max(apart, change.degreesFromFirst);
  }
  if (apart == 0.0) return;
  Warn(model, u"its true north is " + Shown(apart) + u" degrees from that of " + nameOfFirst_ +
                  u" where the map places it");
}

bool MapPlaces::Place(const Model& model, HostScene& scene) {
  if (model.document == firstDocument_) return MoveFirst(model, scene);
  const auto placed = std::find_if(placed_.begin(), placed_.end(), [&](const Placed& one) {
    return one.document == model.document;
  });
  if (placed == placed_.end()) return ApplyProjectOffsets(*model.document, model.project, scene);
  return PlaceByMap(*model.document, placed->reference);
}

bool MapPlaces::MoveFirst(const Model& first, HostScene& scene) {
  IfcDocument& document = *first.document;
  Triple shift{};
  if (!ApplyProjectOffsets(document, first.project, scene, &shift)) return false;
  const bool isMoved = shift != Triple{} && std::isfinite(shift[0] + shift[1] + shift[2]);
  if (!isMoved || !first_.reference) return true;
  Log(u"The map conversion goes with what is moved: " + document.getFilePath());
  const double metresPerUnit = MetresPerLengthUnit(document.getIfcUnitAssignment());
  return MoveConversions(document, *first_.reference, Times(shift, metresPerUnit));
}

bool MapPlaces::PlaceByMap(IfcDocument& document, const MapReference& reference) const {
  const MapReference& first = *first_.reference;
  const Transform metres = PlaceOn(first.First().frame, reference.First().frame).place;
  const double metresPerUnit = MetresPerLengthUnit(document.getIfcUnitAssignment());
  const std::vector<ContextChange> changes = ContextChangesOf(first, reference, metres);
  if (!SamePlace(metres, {}, kUnmoved)) {
    Transform place = metres;
    place.origin = Times(place.origin, 1.0 / metresPerUnit);
    if (!PlaceModel(document, place)) return false;
    Log(u"Placed by the map: " + document.getFilePath());
  }
  return ChangeContexts(document, changes, first.First().frame.world, metresPerUnit);
}

void MapPlaces::Warn(const Model& model, const WideString& text) {
  const WideString path = model.document->getFilePath();
  Log(path + u": " + text);
  warnings_.push_back({path, text});
}

}  // namespace corvel
