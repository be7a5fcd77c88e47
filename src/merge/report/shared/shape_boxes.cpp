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

// Of an IfcCartesianPointList2D or 3D.
void AddPointList(const IFC::IfcEntity& list, Bounds& bounds) {
  if (FindFacts(list) == nullptr) return;
  const auto attribute = AttributesOf(list).Find("CoordList");
  const auto* const points = attribute ? attribute->As<List<List<double>>>() : nullptr;
  if (points == nullptr) return;
  // NOLINTNEXTLINE(clang-analyzer-core.NullDereference): a list that begins nowhere has no members
  for (const List<double>& point : *points) bounds.Add(TripleOf(&point));
}

Bounds Centred(double width, double depth) {
  Bounds bounds;
  bounds.Add({-width / 2, -depth / 2, 0.0});
  bounds.Add({width / 2, depth / 2, 0.0});
  return bounds;
}

// The size that parameters of a profile give it, those of the schema's own order of preference.
Bounds ParametersOf(const IFC::IfcEntity& profile) {
  constexpr std::string_view kWidths[] = {"XDim",  "OverallWidth",      "FlangeWidth",
                                          "Width", "BottomFlangeWidth", "HeadWidth"};
  constexpr std::string_view kDepths[] = {"YDim", "OverallDepth", "Depth", "OverallHeight"};
  const auto first = [&profile](const auto& names) {
    for (const std::string_view name : names) {
      const double value = RealOf(profile, name);
      if (value > 0.0) return value;
    }
    return 0.0;
  };
  if (const double radius = RealOf(profile, "Radius"); radius > 0.0) {
    return Centred(2 * radius, 2 * radius);
  }
  const double width = first(kWidths);
  const double depth = first(kDepths);
  return width > 0.0 && depth > 0.0 ? Centred(width, depth) : Bounds{};
}

}  // namespace

// Every point that the object leads to, whichever way. Right for what has all its points in one
// system of coordinates. There are more of these than of anything else in a model: the attribute is
// looked for once.
void ShapeBoxes::AddPointsBelow(const IFC::IfcEntity& root, Bounds& bounds) {
  root.CollectAllChildren(waiting_);
  while (!waiting_.IsEmpty()) {
    const IFC::IfcEntity* const entity = waiting_.TakeBack().entity;
    if (entity == nullptr) continue;
    const AttributeFacts* const coordinates =
        coordinates_.Of(*entity, [](const ClassFacts* facts) -> const AttributeFacts* {
          return facts == nullptr ? nullptr : facts->FindAttribute("Coordinates");
        });
    const auto* const numbers =
        coordinates == nullptr ? nullptr : ConstAttribute(*entity, *coordinates).As<List<double>>();
    if (numbers != nullptr) {
      bounds.Add(TripleOf(numbers));
    } else {
      entity->CollectAllChildren(waiting_);
    }
  }
}

// In the plane of x and y.
Bounds ShapeBoxes::BoundsOfProfile(const IFC::IfcEntity& profile) {
  Bounds bounds;
  if (const IFC::IfcEntity* const curve = ReferenceOf(profile, "OuterCurve")) {
    const IFC::IfcEntity* const points = ReferenceOf(*curve, "Points");
    if (points != nullptr) {
      AddPointList(*points, bounds);
    } else {
      AddPointsBelow(*curve, bounds);
    }
    return bounds;
  }
  const Bounds own = ParametersOf(profile);
  const auto place = PlaceOf(ReferenceOf(profile, "Position"));
  if (!own.isEmpty && place) bounds.Add(own, *place);
  return bounds;
}

Bounds ShapeBoxes::BoundsOfExtrusion(const IFC::IfcEntity& solid) {
  Bounds bounds;
  const IFC::IfcEntity* const profile = ReferenceOf(solid, "SweptArea");
  const IFC::IfcEntity* const direction = ReferenceOf(solid, "ExtrudedDirection");
  const auto place = PlaceOf(ReferenceOf(solid, "Position"));
  if (profile == nullptr || direction == nullptr || !place) return bounds;
  const Triple way =
      Times(Normalised(TripleOf(RealsOf(*direction, "DirectionRatios"))), RealOf(solid, "Depth"));
  const Bounds base = BoundsOfProfile(*profile);
  if (base.isEmpty) return bounds;
  for (const Triple& corner : base.Corners()) {
    bounds.Add(place->Moved(corner));
    bounds.Add(place->Moved(Plus(corner, way)));
  }
  return bounds;
}

namespace {

Bounds BoundsOfBox(const IFC::IfcEntity& box) {
  Bounds bounds;
  const IFC::IfcEntity* const corner = ReferenceOf(box, "Corner");
  if (corner == nullptr) return bounds;
  const Triple low = TripleOf(RealsOf(*corner, "Coordinates"));
  bounds.Add(low);
  bounds.Add(Plus(low, {RealOf(box, "XDim"), RealOf(box, "YDim"), RealOf(box, "ZDim")}));
  return bounds;
}

// An IfcCartesianTransformationOperator3D. Its axes are as long as it stretches.
Transform OperatorOf(const IFC::IfcEntity& target) {
  const auto direction = [&target](std::string_view name, const Triple& absent) {
    const IFC::IfcEntity* const entity = ReferenceOf(target, name);
    return entity == nullptr ? absent : Normalised(TripleOf(RealsOf(*entity, "DirectionRatios")));
  };
  const auto factor = [&target](std::string_view name, double absent) {
    const double told = RealOf(target, name);
    return told > 0.0 ? told : absent;
  };
  Transform place;
  if (const IFC::IfcEntity* const origin = ReferenceOf(target, "LocalOrigin")) {
    place.origin = TripleOf(RealsOf(*origin, "Coordinates"));
  }
  const double scale = factor("Scale", 1.0);
  const Triple x = direction("Axis1", place.x);
  const Triple z = direction("Axis3", place.z);
  const Triple y = direction("Axis2", Cross(z, x));
  place.x = Times(x, scale);
  place.y = Times(y, factor("Scale2", scale));
  place.z = Times(z, factor("Scale3", scale));
  return place;
}

// What undoes a place with axes of length 1: the rows of a turn are the columns of the turn back.
Transform Inverse(const Transform& place) {
  Transform inverse{{},
                    {place.x[0], place.y[0], place.z[0]},
                    {place.x[1], place.y[1], place.z[1]},
                    {place.x[2], place.y[2], place.z[2]}};
  inverse.origin = inverse.Turned(Times(place.origin, -1.0));
  return inverse;
}

}  // namespace

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
  const ClassFacts* const facts = FindFacts(item);
  if (facts == nullptr) return Kind::kOther;
  const auto [known, isNew] = kinds_.try_emplace(facts, Kind::kOther);
  if (!isNew) return known->second;
  for (const ClassFacts* at = facts; at != nullptr; at = at->supertype) {
    for (const Row& row : kRows) {
      if (row.name == at->name) return known->second = row.kind;
    }
  }
  return Kind::kOther;
}

Bounds ShapeBoxes::OfItem(const IFC::IfcEntity& item, int depth) {
  Bounds bounds;
  if (depth > kDeepest) return bounds;
  const auto of = [&](std::string_view attribute) {
    const IFC::IfcEntity* const inner = ReferenceOf(item, attribute);
    return inner == nullptr ? Bounds{} : OfItem(*inner, depth + 1);
  };
  switch (KindOf(item)) {
    case Kind::kOther: break;
    case Kind::kExtrusion: return BoundsOfExtrusion(item);
    case Kind::kMesh:
      if (const IFC::IfcEntity* const points = ReferenceOf(item, "Coordinates")) {
        AddPointList(*points, bounds);
      }
      break;
    case Kind::kFaces: AddPointsBelow(item, bounds); break;
    case Kind::kBox: return BoundsOfBox(item);
    case Kind::kCut: return of("FirstOperand");
    case Kind::kTree: return of("TreeRootExpression");
    case Kind::kMapped: return OfMapped(item, depth + 1);
  }
  return bounds;
}

const Bounds& ShapeBoxes::OfSource(const IFC::IfcEntity& source, int depth) {
  const auto [known, isNew] = sources_.try_emplace(&source);
  if (!isNew) return known->second;
  const IFC::IfcEntity* const mapped = ReferenceOf(source, "MappedRepresentation");
  if (mapped == nullptr) return known->second;
  const Bounds found = OfRepresentation(*mapped, depth);
  // What was found may have entered others.
  return sources_[&source] = found;
}

Bounds ShapeBoxes::OfMapped(const IFC::IfcEntity& item, int depth) {
  Bounds bounds;
  const IFC::IfcEntity* const source = ReferenceOf(item, "MappingSource");
  const IFC::IfcEntity* const target = ReferenceOf(item, "MappingTarget");
  if (source == nullptr || target == nullptr) return bounds;
  const auto origin = PlaceOf(ReferenceOf(*source, "MappingOrigin"));
  if (!origin) return bounds;
  bounds.Add(OfSource(*source, depth), OperatorOf(*target).Around(Inverse(*origin)));
  return bounds;
}

Bounds ShapeBoxes::OfRepresentation(const IFC::IfcEntity& representation, int depth) {
  Bounds bounds;
  const EntityList* const items = ReferencesOf(representation, "Items");
  if (items == nullptr) return bounds;
  for (const IFC::IfcEntity* const item : *items) {
    if (item != nullptr) bounds.Add(OfItem(*item, depth), Transform{});
  }
  return bounds;
}

// The body, and where there is none whatever else tells a size.
Bounds ShapeBoxes::Of(const IFC::IfcEntity& shape) {
  Bounds others;
  const EntityList* const representations = ReferencesOf(shape, "Representations");
  if (representations == nullptr) return others;
  for (const IFC::IfcEntity* const representation : *representations) {
    if (representation == nullptr) continue;
    const WideString identifier = TextOf(*representation, "RepresentationIdentifier");
    if (identifier == u"Axis" || identifier == u"Clearance") continue;
    const Bounds bounds = OfRepresentation(*representation, 0);
    if (identifier == u"Body" && !bounds.isEmpty) return bounds;
    others.Add(bounds, Transform{});
  }
  return others;
}

}  // namespace corvel
