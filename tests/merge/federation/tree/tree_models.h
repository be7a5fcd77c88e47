// Small models with a site, buildings and storeys, and what is left of them behind the step.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "merge/federation/federated_documents.h"
#include "schema/record_model.h"

namespace corvel::test {

// What a test says of a spatial object; the rest is the same in all.
struct Spatial {
  std::string name = "$";  // with quotes, or $
  std::string guid{};      // 22 characters; empty: one of its own
  std::string composition = ".ELEMENT.";
  std::string shape = "$";
  std::optional<double> x{};  // of its placement on that of what it is a part of
  std::optional<double> z{};  // likewise; without both it has no placement
  std::string elevation = "$";
};

// Numbers its records from `base` on; #1 is the project.
class TreeModel {
 public:
  explicit TreeModel(std::uint32_t base) : next_(base) {}

  std::uint32_t Site(const Spatial& site, std::uint32_t whole = 1) {
    return Add("IFCSITE", site, whole, ",$,$,$,$,$");
  }
  std::uint32_t Building(const Spatial& building, std::uint32_t whole) {
    return Add("IFCBUILDING", building, whole, ",$,$,$");
  }
  std::uint32_t Storey(const Spatial& storey, std::uint32_t whole) {
    return Add("IFCBUILDINGSTOREY", storey, whole, "," + storey.elevation);
  }
  std::uint32_t Facility(const std::string& className, const Spatial& facility,
                         std::uint32_t whole) {
    return Add(className, facility, whole, ",.NOTDEFINED.");
  }
  std::uint32_t Part(const std::string& className, const Spatial& part, const std::string& type,
                     std::uint32_t whole) {
    return Add(className, part, whole, ",.LONGITUDINAL.," + type);
  }
  // A wall on the placement of an object, `x` away from it.
  std::uint32_t Wall(std::uint32_t in, const std::string& guid, double x) {
    const std::uint32_t placement = Placement(placements_.at(in), x, 0.0);
    const std::uint32_t wall =
        Record("IFCWALL", "'" + guid + "',$,$,$,$," + Ref(placement) + ",$,$" + lastOfWall);
    Record("IFCRELCONTAINEDINSPATIALSTRUCTURE",
           "'" + NewGuid() + "',$,$,$,(" + Ref(wall) + ")," + Ref(in));
    return wall;
  }
  // A placement on another, or on none (0).
  std::uint32_t Placement(std::uint32_t on, double x, double z) {
    const std::uint32_t point =
        Record("IFCCARTESIANPOINT", "(" + std::to_string(x) + ",0.," + std::to_string(z) + ")");
    const std::uint32_t place = Record("IFCAXIS2PLACEMENT3D", Ref(point) + ",$,$");
    return Record("IFCLOCALPLACEMENT", (on == 0 ? "$" : Ref(on)) + "," + Ref(place));
  }
  std::uint32_t Record(const std::string& className, const std::string& attributes) {
    records_.push_back({next_, className, attributes});
    return next_++;
  }
  void Relate(std::uint32_t whole, std::uint32_t part) {
    Record("IFCRELAGGREGATES", "'" + NewGuid() + "',$,$,$," + Ref(whole) + ",(" + Ref(part) + ")");
  }

  const Records& All() const { return records_; }
  std::uint32_t PlacementOf(std::uint32_t object) const { return placements_.at(object); }
  static std::string Ref(std::uint32_t number) { return "#" + std::to_string(number); }

  std::string lastOfWall{};  // what walls have behind the attributes of IFC2X3

 private:
  std::uint32_t Add(const std::string& className, const Spatial& spatial, std::uint32_t whole,
                    const std::string& rest) {
    const std::uint32_t outer = placements_.contains(whole) ? placements_.at(whole) : 0;
    std::uint32_t placement = outer;
    if (spatial.x || spatial.z) {
      placement = Placement(outer, spatial.x.value_or(0.0), spatial.z.value_or(0.0));
    }
    const bool isPlaced = placement != outer;
    const std::string guid = spatial.guid.empty() ? NewGuid() : spatial.guid;
    const std::uint32_t object =
        Record(className, "'" + guid + "',$," + spatial.name + ",$,$," +
                              (isPlaced ? Ref(placement) : "$") + "," + spatial.shape + ",$," +
                              spatial.composition + rest);
    placements_[object] = placement;
    if (whole != 0) Relate(whole, object);
    return object;
  }

  std::string NewGuid() const {
    std::string guid = std::to_string(next_);
    return std::string(22 - guid.size(), '0') + guid;
  }

  std::uint32_t next_;
  Records records_;
  std::map<std::uint32_t, std::uint32_t> placements_;
};

// For instantiations: the releases of this build from one on.
inline std::vector<SchemaNamespace> BuiltSince(SchemaNamespace first) {
  std::vector<SchemaNamespace> releases;
  for (const Release& release : ReleasesBuilt(first, SchemaNamespace::IFC4X4)) {
    releases.push_back(release.schema);
  }
  return releases;
}
inline std::string NameOfRelease(const testing::TestParamInfo<SchemaNamespace>& info) {
  return std::string(NameOf(info.param));
}

// The names of the objects of a class, in the order of the output: "Level 1"; "$" without one.
inline std::vector<std::string> NamesOf(const std::string& text, const std::string& className) {
  const std::regex line("#\\d+=" + className + "\\('[^']*',[^,]*,(?:'([^']*)'|(\\$)),");
  std::vector<std::string> names;
  for (std::sregex_iterator at(text.begin(), text.end(), line), end; at != end; ++at) {
    names.push_back((*at)[2].matched ? "$" : (*at)[1].str());
  }
  return names;
}

inline bool HasLine(const std::string& text, const std::string& line) {
  return ("\n" + text).find("\n" + line + "\n") != std::string::npos;
}

// "IFCWALL('x',#3)" of the record #`number`; empty without one.
inline std::string RecordOf(const std::string& text, const std::string& number) {
  const std::string begin = "\n" + number + "=";
  const std::size_t at = ("\n" + text).find(begin);
  if (at == std::string::npos) return {};
  const std::size_t from = at + begin.size() - 1;
  return text.substr(from, text.find(";\n", from) - from);
}

// The record with what it refers to in its place, all the way down:
// "IFCLOCALPLACEMENT($,IFCAXIS2PLACEMENT3D(IFCCARTESIANPOINT((1.,0.,0.)),$,$))".
inline std::string Unfolded(const std::string& text, const std::string& number) {
  static const std::regex kReference("#\\d+");
  std::string record = RecordOf(text, number);
  for (std::smatch found; std::regex_search(record, found, kReference);) {
    record = found.prefix().str() + RecordOf(text, found.str()) + found.suffix().str();
  }
  return record;
}

}  // namespace corvel::test
