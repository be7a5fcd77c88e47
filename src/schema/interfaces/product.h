// What the engine asks of products, of the project and of the site.
//
// An operation that makes an object or may grow a list takes the pool of the model that the object
// belongs to. Objects made here are not filed in the container: whoever gets one back files it.
#pragma once

#include "core/entity.h"
#include "core/memory_pool.h"

namespace IFC {

class VirtualLocalPlacement;

// IfcProduct and its subtypes.
class VirtualIfcProduct : public virtual IfcEntity {
 public:
  // The product's own placement, of whatever kind. Null when absent.
  virtual IfcEntity* getObjectPlacement() const = 0;
  // The outermost local placement that the product hangs on: that of its own placement, or its own
  // placement where that hangs on no other. Null when the product is placed in another way (a grid
  // placement, say). A product without a placement gets a new blank one with the marker
  // kMadePlacement, by which the caller knows that it has to be filed.
  virtual VirtualLocalPlacement* getRootPlacement(corvel::MemoryPool& pool) = 0;

 protected:
  ~VirtualIfcProduct() = default;
};

// IfcProject, which is no product in any release.
class IfcProjectVirtual : public virtual IfcEntity {
 public:
  // As the name of VirtualIfcRoot::setRootAttributes: null leaves the name as it is.
  virtual void setProjectName(corvel::ModelText name) = 0;

 protected:
  ~IfcProjectVirtual() = default;
};

// IfcSite.
class IfcSiteVirtual : public virtual IfcEntity {
 public:
  // The site has no shape of its own any more; what the shape consisted of is left alone.
  virtual void clearRepresentation() = 0;

 protected:
  ~IfcSiteVirtual() = default;
};

}  // namespace IFC
