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

Triple TripleOf(const List<double>* numbers) {
  Triple triple{};
  if (numbers != nullptr) {
    std::copy_n(numbers->begin(), std::min(numbers->size(), triple.size()), triple.begin());
  }
  return triple;
}

bool Says(const ModelText* text, std::string_view word) {
  if (text == nullptr) return false;
  return text->IsPlain() ? text->Plain() == word : text->Units() == Widen(word);
}

Bounds Centred(double width, double depth) {
  Bounds bounds;
  bounds.Add({-width / 2, -depth / 2, 0.0});
  bounds.Add({width / 2, depth / 2, 0.0});
  return bounds;
}

}  // namespace

// Of an IfcCartesianPointList2D or 3D.
void ShapeBoxes::AddPointList(const IFC::IfcEntity& list, Bounds& bounds) {
  const auto* const points = coordList_.ValueIn<List<List<double>>>(list);
  if (points == nullptr) return;
  // NOLINTNEXTLINE(clang-analyzer-core.NullDereference): a list that begins nowhere has no members
  for (const List<double>& point : *points) bounds.Add(TripleOf(&point));
}

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

// Every point that the object leads to, whichever way. Right for what has all its points in one
// system of coordinates.
void ShapeBoxes::AddPointsBelow(const IFC::IfcEntity& root, Bounds& bounds) {
  root.CollectAllChildren(waiting_);
  while (!waiting_.IsEmpty()) {
    const IFC::IfcEntity* const entity = waiting_.TakeBack().entity;
    if (entity == nullptr) continue;
    if (const List<double>* const numbers = coordinates_.RealsIn(*entity)) {
      bounds.Add(TripleOf(numbers));
    } else {
      entity->CollectAllChildren(waiting_);
    }
  }
}

// In the plane of x and y.
Bounds ShapeBoxes::BoundsOfProfile(const IFC::IfcEntity& profile) {
  Bounds bounds;
  if (const IFC::IfcEntity* const curve = outerCurve_.ReferenceIn(profile)) {
    const IFC::IfcEntity* const points = points_.ReferenceIn(*curve);
    if (points != nullptr) {
      AddPointList(*points, bounds);
    } else {
      AddPointsBelow(*curve, bounds);
    }
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
  for (const Triple& corner : base.Corners()) {
    bounds.Add(place->Moved(corner));
    bounds.Add(place->Moved(Plus(corner, way)));
  }
  return bounds;
}

Bounds ShapeBoxes::BoundsOfBox(const IFC::IfcEntity& box) {
  Bounds bounds;
  const IFC::IfcEntity* const corner = corner_.ReferenceIn(box);
  if (corner == nullptr) return bounds;
  const Triple low = TripleOf(coordinates_.RealsIn(*corner));
  bounds.Add(low);
  bounds.Add(Plus(low, {widths_[0].RealIn(box), depths_[0].RealIn(box), RealOf(box, "ZDim")}));
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
  if (const IFC::IfcEntity* const origin = localOrigin_.ReferenceIn(target)) {
    place.origin = TripleOf(coordinates_.RealsIn(*origin));
  }
  const double scale = factor(scale_, 1.0);
  const Triple x = DirectionOf(axis1_.ReferenceIn(target), place.x);
  const Triple z = DirectionOf(axis3_.ReferenceIn(target), place.z);
  const Triple y = DirectionOf(axis2_.ReferenceIn(target), Cross(z, x));
  place.x = Times(x, scale);
  place.y = Times(y, factor(scale2_, scale));
  place.z = Times(z, factor(scale3_, scale));
  return place;
}

void Bounds::Add(const Triple& point) {
  if (!std::isfinite(point[0] + point[1] + point[2])) return;
  for (std::size_t i = 0; i < point.size(); ++i) {
    low[i] = isEmpty ? point[i] : std::min(low[i], point[i]);
    high[i] = isEmpty ? point[i] : std::max(high[i], point[i]);
  }
  isEmpty = false;
}

void Bounds::Add(const Bounds& other, const Transform& place) {
  if (other.isEmpty) return;
  for (const Triple& corner : other.Corners()) Add(place.Moved(corner));
}

std::array<Triple, 8> Bounds::Corners() const {
  std::array<Triple, 8> corners;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    corners[i] = {(i & 1) != 0 ? high[0] : low[0], (i & 2) != 0 ? high[1] : low[1],
                  (i & 4) != 0 ? high[2] : low[2]};
  }
  return corners;
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
        AddPointList(*points, bounds);
      }
      break;
    case Kind::kFaces: AddPointsBelow(item, bounds); break;
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
    if (item != nullptr) bounds.Add(OfItem(*item, depth), Transform{});
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
    others.Add(bounds, Transform{});
  }
  return others;
}

}  // namespace corvel
