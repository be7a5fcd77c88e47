// How large the shapes of products are, as far as it shows without any geometry being worked out.
#pragma once

#include <array>
#include <optional>
#include <unordered_map>

#include "core/entity.h"
#include "merge/federation/per_class.h"
#include "merge/federation/tree/transform.h"
#include "step/class_facts.h"

namespace corvel {

// From the lowest to the highest coordinates of some points.
struct Bounds {
  Triple low{};
  Triple high{};
  bool isEmpty = true;

  void Add(const Triple& point);
  // The corners of the other one, as they stand in `place`.
  void Add(const Bounds& other, const Transform& place);
  std::array<Triple, 8> Corners() const;
};

// Knows extrusions of profiles, meshes and faceted bodies, boxes, what is cut from such, and what
// is mapped from elsewhere, which is looked at once however often it is used. A curved profile
// counts by its points.
class ShapeBoxes {
 public:
  // In the coordinates of the product and the length unit of the model. Empty for a shape that is
  // none of these. `shape`: the Representation of a product.
  Bounds Of(const IFC::IfcEntity& shape);

 private:
  enum class Kind { kOther, kExtrusion, kMesh, kFaces, kBox, kCut, kTree, kMapped };

  Kind KindOf(const IFC::IfcEntity& item);
  Bounds OfRepresentation(const IFC::IfcEntity& representation, int depth);
  Bounds OfItem(const IFC::IfcEntity& item, int depth);
  void AddPointsBelow(const IFC::IfcEntity& root, Bounds& bounds);
  Bounds BoundsOfProfile(const IFC::IfcEntity& profile);
  Bounds BoundsOfExtrusion(const IFC::IfcEntity& solid);
  Bounds OfMapped(const IFC::IfcEntity& item, int depth);
  const Bounds& OfSource(const IFC::IfcEntity& source, int depth);

  std::unordered_map<const ClassFacts*, Kind> kinds_;
  PerClass<const AttributeFacts*> coordinates_;
  IFC::ChildQueue waiting_;
  std::unordered_map<const IFC::IfcEntity*, Bounds> sources_;
};

}  // namespace corvel
