// The two interfaces of the schema layer that the container itself needs.
#pragma once

#include "core/entity.h"
#include "core/memory_pool.h"

namespace IFC {

// Everything with a GUID: IfcRoot and its subtypes. Texts are borrowed from the model's pool.
class VirtualIfcRoot : public virtual IfcEntity {
 public:
  // Each argument that is not null replaces its attribute. A release in which the owner history is
  // optional gets the reference but keeps its present flag, so that an object without an owner
  // history goes on writing `$`. An owner history of another class becomes null.
  virtual void setRootAttributes(const char* globalId, IfcEntity* ownerHistory,
                                 corvel::ModelText name) = 0;
  // NUL-ended, never null; empty when the attribute was absent.
  virtual const char* getGlobalId() const = 0;
  // Borrows the text, which is in the pool of the object's model. The GUID table of the container
  // learns nothing of it.
  virtual void setGlobalId(const char* globalId) = 0;
  // The text of `Name`, which means nothing when the name is absent.
  virtual corvel::ModelText getName() const = 0;

 protected:
  ~VirtualIfcRoot() = default;
};

// The subtypes of IfcRelAssigns.
class VIfcRelAssigns : public virtual IfcEntity {
 protected:
  ~VIfcRelAssigns() = default;
};

}  // namespace IFC
