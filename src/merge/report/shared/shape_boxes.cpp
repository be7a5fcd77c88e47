#include "merge/report/shared/shape_boxes.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "merge/federation/attribute_values.h"
#include "merge/federation/tree/world_places.h"

namespace corvel {

namespace {

// Files that go in circles go no further.
constexpr int kDeepest = 12;

bool Says(const ModelText* text, std::string_view word) {
  if (text == nullptr) return false;
  return text->IsPlain() ? text->Plain() == word : text->Units() == Widen(word);
}

Bounds Centred(double width, double depth) {
  const Triple corner = {width / 2, depth / 2, 0.0};
  return {Times(corner, -1.0), corner, false};
}

}  // namespace

Bounds ShapeBoxes::ParametersOf(const IFC::IfcEntity& profile) {
  const auto first = [&profile](auto& attributes) {
    for (NamedAttribute& attribute : attributes) {
      const double value = attribute.RealIn(profile);
      if (value > 0.0) return value;
    }
    return 0.0;
  };
  if (const double radius = radius_.RealIn(profile); radius > 0.0) {
    return Centred(2 * radius, 2 * radius);
  }
  const double width = first(widths_);
  const double depth = first(depths_);
  return width > 0.0 && depth > 0.0 ? Centred(width, depth) : Bounds{};
}

// In the plane of x and y.
Bounds ShapeBoxes::BoundsOfProfile(const IFC::IfcEntity& profile) {
  Bounds bounds;
  if (const IFC::IfcEntity* const curve = outerCurve_.ReferenceIn(profile)) {
    points_.AddCurve(*curve, bounds);
    return bounds;
  }
  const Bounds own = ParametersOf(profile);
  const auto place = places_.Of(position_.ReferenceIn(profile));
  if (!own.isEmpty && place) bounds.Add(own, *place);
  return bounds;
}

Bounds ShapeBoxes::BoundsOfExtrusion(const IFC::IfcEntity& solid) {
  Bounds bounds;
  const IFC::IfcEntity* const profile = sweptArea_.ReferenceIn(solid);
  const IFC::IfcEntity* const direction = extrudedDirection_.ReferenceIn(solid);
  const auto place = places_.Of(position_.ReferenceIn(solid));
  if (profile == nullptr || direction == nullptr || !place) return bounds;
  const Triple way = Times(DirectionOf(direction, {}), depth_.RealIn(solid));
  const Bounds base = BoundsOfProfile(*profile);
  if (base.isEmpty) return bounds;
  bounds.Add(base, *place);
  bounds.Add(Bounds{Plus(base.low, way), Plus(base.high, way), false}, *place);
  return bounds;
}

Bounds ShapeBoxes::BoundsOfBox(const IFC::IfcEntity& box) {
  Bounds bounds;
  const IFC::IfcEntity* const corner = corner_.ReferenceIn(box);
  if (corner == nullptr) return bounds;
  const Triple low = points_.Of(corner);
  bounds.Add(low);
  bounds.Add(Plus(low, Triple{widths_[0].RealIn(box), depths_[0].RealIn(box), zDim_.RealIn(box)}));
  return bounds;
}

Triple ShapeBoxes::DirectionOf(const IFC::IfcEntity* direction, const Triple& absent) {
  return direction == nullptr ? absent : Normalised(TripleOf(ratios_.RealsIn(*direction)));
}

// An IfcCartesianTransformationOperator3D. Its axes are as long as it stretches.
Transform ShapeBoxes::OperatorOf(const IFC::IfcEntity& target) {
  const auto factor = [&target](NamedAttribute& attribute, double absent) {
    const double told = attribute.RealIn(target);
    return told > 0.0 ? told : absent;
  };
  Transform place;
  place.origin = points_.Of(localOrigin_.ReferenceIn(target));
  const double scale = factor(scale_, 1.0);
  const Triple x = DirectionOf(axis1_.ReferenceIn(target), place.x);
  const Triple z = DirectionOf(axis3_.ReferenceIn(target), place.z);
  const Triple y = DirectionOf(axis2_.ReferenceIn(target), Cross(z, x));
  place.x = Times(x, scale);
  place.y = Times(y, factor(scale2_, scale));
  place.z = Times(z, factor(scale3_, scale));
  return place;
}

ShapeBoxes::Kind ShapeBoxes::KindOf(const IFC::IfcEntity& item) {
  struct Row {
    std::string_view name;
    Kind kind;
  };
  static constexpr Row kRows[] = {{"IfcExtrudedAreaSolid", Kind::kExtrusion},
                                  {"IfcTessellatedFaceSet", Kind::kMesh},
                                  {"IfcTriangulatedFaceSet", Kind::kMesh},
                                  {"IfcFacetedBrep", Kind::kFaces},
                                  {"IfcFaceBasedSurfaceModel", Kind::kFaces},
                                  {"IfcShellBasedSurfaceModel", Kind::kFaces},
                                  {"IfcBoundingBox", Kind::kBox},
                                  {"IfcBooleanResult", Kind::kCut},
                                  {"IfcCsgSolid", Kind::kTree},
                                  {"IfcMappedItem", Kind::kMapped}};
  return kinds_.Of(item, [](const ClassFacts* facts) {
    for (; facts != nullptr; facts = facts->supertype) {
      for (const Row& row : kRows) {
        if (row.name == facts->name) return row.kind;
      }
    }
    return Kind::kOther;
  });
}

Bounds ShapeBoxes::OfOperand(NamedAttribute& attribute, const IFC::IfcEntity& item, int depth) {
  const IFC::IfcEntity* const operand = attribute.ReferenceIn(item);
  return operand == nullptr ? Bounds{} : OfItem(*operand, depth + 1);
}

Bounds ShapeBoxes::OfItem(const IFC::IfcEntity& item, int depth) {
  Bounds bounds;
  if (depth > kDeepest) return bounds;
  switch (KindOf(item)) {
    case Kind::kOther: break;
    case Kind::kExtrusion: return BoundsOfExtrusion(item);
    case Kind::kMesh:
      if (const IFC::IfcEntity* const points = coordinates_.ReferenceIn(item)) {
        points_.AddPointList(*points, bounds);
      }
      break;
    case Kind::kFaces: points_.AddFaces(item, bounds); break;
    case Kind::kBox: return BoundsOfBox(item);
    case Kind::kCut: return OfOperand(firstOperand_, item, depth);
    case Kind::kTree: return OfOperand(treeRoot_, item, depth);
    case Kind::kMapped: return OfMapped(item, depth + 1);
  }
  return bounds;
}

const Bounds& ShapeBoxes::OfSource(const IFC::IfcEntity& source, int depth) {
  const auto [known, isNew] = sources_.try_emplace(&source);
  if (!isNew) return known->second;
  const IFC::IfcEntity* const mapped = mapped_.ReferenceIn(source);
  if (mapped == nullptr) return known->second;
  const Bounds found = OfRepresentation(*mapped, depth);
  // What was found may have entered others.
  return sources_[&source] = found;
}

Bounds ShapeBoxes::OfMapped(const IFC::IfcEntity& item, int depth) {
  Bounds bounds;
  const IFC::IfcEntity* const source = source_.ReferenceIn(item);
  const IFC::IfcEntity* const target = target_.ReferenceIn(item);
  if (source == nullptr || target == nullptr) return bounds;
  const auto origin = places_.Of(origin_.ReferenceIn(*source));
  if (!origin) return bounds;
  bounds.Add(OfSource(*source, depth), OperatorOf(*target).Around(origin->Inverse()));
  return bounds;
}

Bounds ShapeBoxes::OfRepresentation(const IFC::IfcEntity& representation, int depth) {
  Bounds bounds;
  const EntityList* const items = items_.ReferencesIn(representation);
  if (items == nullptr) return bounds;
  for (const IFC::IfcEntity* const item : *items) {
    if (item != nullptr) bounds.Add(OfItem(*item, depth));
  }
  return bounds;
}

// The body, and where there is none whatever else tells a size.
Bounds ShapeBoxes::Of(const IFC::IfcEntity& shape) {
  Bounds others;
  const EntityList* const representations = representations_.ReferencesIn(shape);
  if (representations == nullptr) return others;
  for (const IFC::IfcEntity* const representation : *representations) {
    if (representation == nullptr) continue;
    const auto* const identifier = identifier_.ValueIn<ModelText>(*representation);
    if (Says(identifier, "Axis") || Says(identifier, "Clearance")) continue;
    const Bounds bounds = OfRepresentation(*representation, 0);
    if (Says(identifier, "Body") && !bounds.isEmpty) return bounds;
    others.Add(bounds);
  }
  return others;
}

}  // namespace corvel
