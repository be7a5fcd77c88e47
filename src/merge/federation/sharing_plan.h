// What the schemas say about objects that could be written once: which classes have no identity of
// their own, and what ties an object of them to its place.
#pragma once

#include <cstddef>
#include <deque>
#include <span>
#include <vector>

#include "core/entity.h"
#include "core/entity_cast.h"
#include "merge/federation/pointing_classes.h"
#include "step/class_facts.h"

namespace corvel {

// Of one class. All attributes but the reals are references or lists of them.
struct SharingPlan {
  bool isShareable = false;  // equal objects may become one
  std::vector<const AttributeFacts*> reals;
  // All that the record refers to, through typed values as well.
  std::vector<const AttributeFacts*> references;
  // Whose members have one owner only: they go where it goes.
  std::vector<const AttributeFacts*> owning;
  // What an object of a class describes that only points at others: it is part of their identity.
  std::vector<const AttributeFacts*> described;
  // Sets, and lists that hold nothing twice.
  std::vector<const AttributeFacts*> distinct;

  bool IsOwning(const AttributeFacts& facts) const;
  bool IsDescribed(const AttributeFacts& facts) const;
};

class SharingPlans {
 public:
  // Good as long as this.
  const SharingPlan& Of(const IFC::IfcEntity& entity);

 private:
  SharingPlan Make(const IFC::IfcEntity& entity);

  PointingClasses pointing_;
  ClassMemory indices_;
  std::deque<SharingPlan> plans_;
};

}  // namespace corvel
