// The points that curves and bodies of faces have.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_set>
#include <vector>

#include "core/child_queue.h"
#include "core/entity.h"
#include "merge/federation/named_attribute.h"
#include "merge/report/shared/bounds.h"

namespace corvel {

// The points of a body that were met last: each is a corner of several faces, and most of these are
// neighbours in the file.
class LatelySeen {
 public:
  void Clear() { objects_.fill(nullptr); }
  // False for one that was seen. True for many a one that was seen long ago.
  bool IsNew(const IFC::IfcEntity* object) {
    // The fractional part of the golden ratio spreads addresses that are equally far from each
    // other.
    constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;
    const auto spread =
        static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(object)) * kSpread;
    const IFC::IfcEntity*& last = objects_[spread >> kUnusedBits];
    if (last == object) return false;
    last = object;
    return true;
  }

 private:
  static constexpr int kBits = 8;
  static constexpr int kUnusedBits = 64 - kBits;
  std::array<const IFC::IfcEntity*, std::size_t{1} << kBits> objects_{};
};

// Takes the points as they stand: right for what has all of them in one system of coordinates.
// Polygons, of which there are most, are gone through by their attributes; whatever else has points
// is followed whichever way it leads, each object once.
class ShapePoints {
 public:
  // Of an IfcCartesianPoint. Two coordinates lie in the plane of x and y; null is the origin.
  Triple Of(const IFC::IfcEntity* point);
  void AddCurve(const IFC::IfcEntity& curve, Bounds& bounds);
  // Of an IfcFacetedBrep and its like, and of surface models.
  void AddFaces(const IFC::IfcEntity& body, Bounds& bounds);
  // Of an IfcCartesianPointList2D or 3D.
  void AddPointList(const IFC::IfcEntity& list, Bounds& bounds);

 private:
  using Objects = std::vector<const IFC::IfcEntity*>;

  void AddShell(const IFC::IfcEntity& shell, Bounds& bounds);
  void AddFew(std::span<IFC::IfcEntity* const> faces, Bounds& bounds);
  void AddPoints(const Objects& points, Bounds& bounds);
  void AddPointsBelow(const IFC::IfcEntity& root, Bounds& bounds);

  NamedAttribute coordinates_{"Coordinates"};
  NamedAttribute coordList_{"CoordList"};
  NamedAttribute points_{"Points"};
  NamedAttribute outer_{"Outer"};
  NamedAttribute faceSets_{"FbsmFaces"};
  NamedAttribute shells_{"SbsmBoundary"};
  NamedAttribute faces_{"CfsFaces"};
  NamedAttribute bounds_{"Bounds"};
  NamedAttribute bound_{"Bound"};
  NamedAttribute polygon_{"Polygon"};
  Objects level_;
  Objects next_;
  LatelySeen corners_;
  IFC::ChildQueue waiting_;
  std::unordered_set<const IFC::IfcEntity*> seen_;
};

// The first three of the numbers; what is missing, and all of null, is 0.
Triple TripleOf(const List<double>* numbers);

}  // namespace corvel
