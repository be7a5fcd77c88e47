#include "host/facts/facts_json.h"

#include <optional>
#include <string>

namespace corvel::host {

namespace {

// JSON has no text for what is no number.
Json NumberOrNull(const std::optional<double>& number) {
  return number ? Json(*number) : Json(nullptr);
}

Json ExporterOf(const Exporter& exporter) {
  return {{"application", ToUtf8(exporter.application)},
          {"originatingSystem", ToUtf8(exporter.originatingSystem)},
          {"preprocessorVersion", ToUtf8(exporter.preprocessorVersion)},
          {"timeStamp", ToUtf8(exporter.timeStamp)}};
}

Json UnitsOf(const std::vector<UnitFacts>& units) {
  Json array = Json::array();
  for (const UnitFacts& unit : units) {
    array.push_back({{"type", unit.type}, {"name", ToUtf8(unit.name)}});
  }
  return array;
}

Json PlaceOf(const Georeference& place) {
  Json conversion = nullptr;
  if (place.conversion) {
    const auto& values = place.conversion->values;
    conversion = {{"eastings", values[0]},         {"northings", values[1]},
                  {"orthogonalHeight", values[2]}, {"xAxisAbscissa", values[3]},
                  {"xAxisOrdinate", values[4]},    {"scale", values[5]}};
  }
  return {{"mapConversion", conversion},
          {"coordinateReferenceSystem", ToUtf8(place.system)},
          {"trueNorthDegrees", NumberOrNull(place.trueNorthDegrees)}};
}

Json SpatialOf(const std::vector<SpatialFacts>& objects, bool areStoreys) {
  Json array = Json::array();
  for (const SpatialFacts& facts : objects) {
    Json object = {{"record", facts.number},
                   {"class", facts.className},
                   {"guid", facts.guid},
                   {"name", ToUtf8(facts.name)}};
    if (areStoreys) {
      object["elevation"] = NumberOrNull(facts.elevationMetres);
      object["height"] = NumberOrNull(facts.heightMetres);
    }
    array.push_back(object);
  }
  return array;
}

Json ExtentOf(const Extent& extent) {
  Json object;
  object["placed"] = extent.placed;
  object["nowhere"] = extent.nowhere;
  object["least"] = extent.placed == 0 ? Json(nullptr) : Json(extent.least);
  object["most"] = extent.placed == 0 ? Json(nullptr) : Json(extent.most);
  return object;
}

Json DoubledOf(const std::vector<DoubledGuid>& doubled) {
  Json array = Json::array();
  for (const DoubledGuid& guid : doubled) {
    array.push_back({{"guid", guid.guid}, {"records", guid.numbers}});
  }
  return array;
}

}  // namespace

Json ModelFactsAsJson(const ModelFacts& facts) {
  Json object;
  object["release"] = facts.release;
  object["schemaIdentifier"] = ToUtf8(facts.schemaIdentifier);
  object["exporter"] = ExporterOf(facts.exporter);
  object["metresPerLengthUnit"] = facts.metresPerLengthUnit;
  object["units"] = UnitsOf(facts.units);
  object["place"] = PlaceOf(facts.georeference);
  object["records"] = facts.objects;
  object["projects"] = facts.projects;
  object["sites"] = SpatialOf(facts.spatial.sites, false);
  object["buildings"] = SpatialOf(facts.spatial.buildings, false);
  object["storeys"] = SpatialOf(facts.spatial.storeys, true);
  Json products = Json::object();
  for (const auto& [name, count] : facts.products) products[name] = count;
  object["products"] = products;
  object["extent"] = ExtentOf(facts.extent);
  object["doubledGuids"] = DoubledOf(facts.doubledGuids);
  return object;
}

}  // namespace corvel::host
