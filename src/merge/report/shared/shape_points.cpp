#include "merge/report/shared/shape_points.h"

#include <algorithm>

#include "merge/federation/prefetch_object.h"

namespace corvel {

namespace {

// What is no null, and will be read soon.
void Append(const IFC::IfcEntity* object, std::vector<const IFC::IfcEntity*>& objects) {
  if (object == nullptr) return;
  PrefetchObject(object);
  objects.push_back(object);
}

}  // namespace

Triple TripleOf(const List<double>* numbers) {
  Triple triple{};
  if (numbers == nullptr) return triple;
  if (numbers->size() >= triple.size()) return {(*numbers)[0], (*numbers)[1], (*numbers)[2]};
  std::copy(numbers->begin(), numbers->end(), triple.begin());
  return triple;
}

Triple ShapePoints::Of(const IFC::IfcEntity* point) {
  return point == nullptr ? Triple{} : TripleOf(coordinates_.RealsIn(*point));
}

void ShapePoints::AddPointList(const IFC::IfcEntity& list, Bounds& bounds) {
  const auto* const points = coordList_.ValueIn<List<List<double>>>(list);
  if (points == nullptr) return;
  // NOLINTNEXTLINE(clang-analyzer-core.NullDereference): a list that begins nowhere has no members
  for (const List<double>& point : *points) bounds.Add(TripleOf(&point));
}

void ShapePoints::AddPoints(const Objects& points, Bounds& bounds) {
  for (const IFC::IfcEntity* const point : points) {
    const List<double>* const numbers = coordinates_.RealsIn(*point);
    if (numbers != nullptr) bounds.Add(TripleOf(numbers));
  }
}

// IfcPolyline has a list of points, IfcIndexedPolyCurve a reference to one.
void ShapePoints::AddCurve(const IFC::IfcEntity& curve, Bounds& bounds) {
  if (const EntityList* const points = points_.ReferencesIn(curve)) {
    next_.clear();
    for (const IFC::IfcEntity* const point : *points) Append(point, next_);
    AddPoints(next_, bounds);
  } else if (const IFC::IfcEntity* const list = points_.ReferenceIn(curve)) {
    AddPointList(*list, bounds);
  } else {
    AddPointsBelow(curve, bounds);
  }
}

void ShapePoints::AddFaces(const IFC::IfcEntity& body, Bounds& bounds) {
  if (const IFC::IfcEntity* const shell = outer_.ReferenceIn(body)) AddShell(*shell, bounds);
  for (NamedAttribute* const several : {&faceSets_, &shells_}) {
    const EntityList* const shells = several->ReferencesIn(body);
    if (shells == nullptr) continue;
    for (const IFC::IfcEntity* const shell : *shells) {
      if (shell != nullptr) AddShell(*shell, bounds);
    }
  }
}

void ShapePoints::AddShell(const IFC::IfcEntity& shell, Bounds& bounds) {
  const EntityList* const faces = faces_.ReferencesIn(shell);
  if (faces == nullptr) return;
  corners_.Clear();
  constexpr std::size_t kAtOnce = 32;
  const std::span all(faces->begin(), faces->size());
  for (std::size_t begin = 0; begin < all.size(); begin += kAtOnce) {
    AddFew(all.subspan(begin, std::min(kAtOnce, all.size() - begin)), bounds);
  }
}

// From faces to bounds to loops to points, level by level, so that the objects of the next one are
// on their way while those of this one are read: they lie anywhere in memory.
void ShapePoints::AddFew(std::span<IFC::IfcEntity* const> faces, Bounds& bounds) {
  level_.clear();
  for (const IFC::IfcEntity* const face : faces) Append(face, level_);
  next_.clear();
  for (const IFC::IfcEntity* const face : level_) {
    if (const EntityList* const edges = bounds_.ReferencesIn(*face)) {
      for (const IFC::IfcEntity* const edge : *edges) Append(edge, next_);
    }
  }
  level_.clear();
  for (const IFC::IfcEntity* const edge : next_) Append(bound_.ReferenceIn(*edge), level_);
  next_.clear();
  for (const IFC::IfcEntity* const loop : level_) {
    if (const EntityList* const points = polygon_.ReferencesIn(*loop)) {
      for (const IFC::IfcEntity* const point : *points) {
        if (corners_.IsNew(point)) Append(point, next_);
      }
    } else {
      AddPointsBelow(*loop, bounds);
    }
  }
  AddPoints(next_, bounds);
}

// A composite curve may be a part of itself.
void ShapePoints::AddPointsBelow(const IFC::IfcEntity& root, Bounds& bounds) {
  seen_.clear();
  seen_.insert(&root);
  root.CollectAllChildren(waiting_);
  while (!waiting_.IsEmpty()) {
    const IFC::IfcEntity* const entity = waiting_.TakeBack().entity;
    if (entity == nullptr) continue;
    if (const List<double>* const numbers = coordinates_.RealsIn(*entity)) {
      bounds.Add(TripleOf(numbers));
    } else if (seen_.insert(entity).second) {
      entity->CollectAllChildren(waiting_);
    }
  }
}

}  // namespace corvel
