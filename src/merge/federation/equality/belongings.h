// What is a part of an object though no attribute of it says so.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "merge/federation/attribute_values.h"
#include "step/class_facts.h"
#include "step/factories.h"

namespace corvel {

// Openings, projections, ports, parts and the type of an object; of an opening, a projection, a
// port or a part also what it is in, unless that is a site, a building, a storey or the like; and
// what refers to an object to which the schema allows one such reference.
class Belongings {
 public:
  using Objects = std::unordered_set<const IFC::IfcEntity*>;

  // `wanted`: whose belongings will be asked for. Borrowed.
  Belongings(std::optional<SchemaNamespace> release, const Objects& wanted)
      : release_(release), wanted_(wanted) {}

  struct Link {
    std::uint32_t kind = 0;  // of the relation, and which end of it `other` is
    IFC::IfcEntity* other = nullptr;
  };

  // Whether objects of the class may tie any. Null: of one that no release knows.
  bool MayTie(const ClassFacts* facts) const;
  // Takes note of what the object ties to others.
  void Gather(IFC::IfcEntity& entity);
  // As the relations name the two, whether they gave way or not.
  std::span<const Link> Of(const IFC::IfcEntity& entity) const;

 private:
  // What is known of a class.
  struct Ties {
    int relation = -1;  // which of those that tie parts to a whole; -1: none
    std::vector<const AttributeFacts*> owning{};
  };

  Ties TiesOf(const ClassFacts& facts) const;
  void Tie(IFC::IfcEntity& object, std::uint32_t kind, IFC::IfcEntity& other) {
    if (wanted_.contains(&object)) links_[&object].push_back({kind, &other});
  }
  void GatherParts(const IFC::IfcEntity& entity, int relation);

  std::optional<SchemaNamespace> release_;
  const Objects& wanted_;
  ClassQuestion isSpatial_{"IfcSpatialStructureElement"};
  ClassQuestion isSpatialElement_{"IfcSpatialElement"};
  ClassQuestion isProject_{"IfcProject"};
  std::unordered_map<const ClassFacts*, Ties> ties_;
  std::unordered_map<const IFC::IfcEntity*, std::vector<Link>> links_;
};

}  // namespace corvel
