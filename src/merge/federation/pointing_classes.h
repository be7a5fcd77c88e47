// Classes whose objects only point at others: nothing refers to them, and they mean something as
// long as what they describe is there.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "core/entity.h"
#include "merge/federation/per_class.h"
#include "step/class_facts.h"

namespace corvel {

class PointingClasses {
 public:
  // The attributes of the class of `entity` that name what it describes, one reference or a list of
  // them each. Empty for every class that is not of this kind. Good as long as this.
  std::span<const AttributeFacts* const> DescribedBy(const IFC::IfcEntity& entity);

 private:
  PerClass<std::vector<const AttributeFacts*>> known_;
};

}  // namespace corvel
