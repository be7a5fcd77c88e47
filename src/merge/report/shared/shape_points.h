// The points that curves and bodies of faces have.
#pragma once

#include <span>
#include <unordered_set>
#include <vector>

#include "core/child_queue.h"
#include "core/entity.h"
#include "merge/federation/named_attribute.h"
#include "merge/report/shared/bounds.h"

namespace corvel {

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
  IFC::ChildQueue waiting_;
  std::unordered_set<const IFC::IfcEntity*> seen_;
};

// The first three of the numbers; what is missing, and all of null, is 0.
Triple TripleOf(const List<double>* numbers);

}  // namespace corvel
