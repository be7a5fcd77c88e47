// What is a part of an object though no attribute of it says so.
#pragma once

#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

#include "merge/federation/attribute_values.h"
#include "merge/federation/federated_model.h"

namespace corvel {

// Openings, projections, ports, parts and the type of an object; of an opening, a projection, a
// port or a part also what it is in, unless that is a site, a building, a storey or the like.
class Belongings {
 public:
  struct Link {
    std::uint32_t kind = 0;  // of the relation, and which end of it `other` is
    IFC::IfcEntity* other = nullptr;
  };

  // Takes note of a relation; of anything else nothing.
  void Gather(IFC::IfcEntity& entity);
  // As the relations name the two, whether they gave way or not.
  std::span<const Link> Of(const IFC::IfcEntity& entity) const;

 private:
  ClassQuestion isSpatial_{"IfcSpatialStructureElement"};
  ClassQuestion isSpatialElement_{"IfcSpatialElement"};
  ClassQuestion isProject_{"IfcProject"};
  std::unordered_map<const ClassFacts*, int> kinds_;  // of relations; -1: none that counts
  std::unordered_map<const IFC::IfcEntity*, std::vector<Link>> links_;
};

}  // namespace corvel
