// What the engine asks of placements, points, directions and solids. Lengths are in the length unit
// of the file.
//
// A cast that fails is not reported: each operation says what is stored then. An operation that may
// grow a list takes the pool of the model that the object belongs to.
#pragma once

#include <vector>

#include "core/entity.h"
#include "core/memory_pool.h"

namespace IFC {

// IfcLocalPlacement.
class VirtualLocalPlacement : public virtual IfcEntity {
 public:
  // What is no IfcObjectPlacement (null included) makes the placement relative to nothing.
  virtual void setPlacementRelTo(IfcEntity* placement) = 0;
  // Any IfcObjectPlacement; null when the placement is relative to nothing.
  virtual IfcEntity* getPlacementRelTo() const = 0;
  // Null for what is no IfcAxis2Placement.
  virtual void setRelativePlacement(IfcEntity* placement) = 0;
  virtual IfcEntity* getRelativePlacement() const = 0;
  // The last local placement on the way from this one to what it is relative to. Null when it is
  // relative to nothing, or to a placement of another kind. Placements that go in a circle have no
  // last one; the first that the way comes to a second time stands for it, which may be this one.
  virtual VirtualLocalPlacement* getRootPlacement() = 0;

 protected:
  ~VirtualLocalPlacement() = default;
};

// IfcAxis2Placement3D.
class VirtualIfcAxis2Placement3D : public virtual IfcEntity {
 public:
  // Replaces all three. What is no IfcCartesianPoint, or no IfcDirection, becomes null; a null axis
  // or reference direction is absent.
  virtual void setAttributes(IfcEntity* location, IfcEntity* axis, IfcEntity* refDirection) = 0;
  // Null when absent.
  virtual IfcEntity* getAxis() const = 0;
  virtual IfcEntity* getRefDirection() const = 0;

 protected:
  ~VirtualIfcAxis2Placement3D() = default;
};

// IfcCartesianPoint.
class VirtualIfcCartesianPoint : public virtual IfcEntity {
 public:
  // Takes all items of the vector and leaves it empty.
  virtual void setCoordinates(std::vector<double>&& coordinates, corvel::MemoryPool& pool) = 0;
  virtual std::vector<double> getCoordinates() const = 0;

 protected:
  ~VirtualIfcCartesianPoint() = default;
};

struct DirectionRatios {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  bool valid = false;  // false: all three are exactly 0
};

// IfcDirection.
class VirtualIfcDirection : public virtual IfcEntity {
 public:
  // A ratio that the direction lacks is 0.
  virtual DirectionRatios getDirectionRatios() const = 0;
  // The direction has three ratios afterwards, also when it was two-dimensional.
  virtual void setDirectionRatios(double x, double y, double z, corvel::MemoryPool& pool) = 0;

 protected:
  ~VirtualIfcDirection() = default;
};

// IfcExtrudedAreaSolid and, from IFC4, its tapered subtype.
class VirtualGeometricRepresentation : public virtual IfcEntity {
 public:
  // Multiplies the depth of the extrusion; nothing else of the solid changes.
  virtual void scaleDepth(double factor) = 0;

 protected:
  ~VirtualGeometricRepresentation() = default;
};

// The subtypes of IfcConnectionGeometry. Only told by cast.
class VIfcConnectionGeometry : public virtual IfcEntity {
 protected:
  ~VIfcConnectionGeometry() = default;
};

// What a bare number in place of a reference would be stored through. No class of any release has
// it, which is why a record with such a number cannot be read.
class VirtuaIfcParameterValue : public virtual IfcEntity {
 public:
  virtual void setParameterValue(double value) = 0;

 protected:
  ~VirtuaIfcParameterValue() = default;
};

}  // namespace IFC
