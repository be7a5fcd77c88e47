// Objects of two models that say the same in the same order, as most do.
#pragma once

#include <cstdint>
#include <vector>

#include "host/diff/compared_model.h"
#include "host/diff/pairing.h"
#include "host/diff/tolerance.h"
#include "schema/attributes.h"

namespace corvel::host::diff {

// Goes through both sides at once and gives up at the first doubt. What it takes for the same is
// the same; what it doesn't may be, in another order. Each object of the earlier model is gone
// through once while it meets the same partner: a fraction of what digests of both sides cost.
class Lockstep {
 public:
  // All of it lives as long as this.
  Lockstep(const ComparedModel& before, const ComparedModel& after, const Pairing& pairing,
           const Tolerance& tolerance);

  // Objects with an identity, with all that they have and belong to.
  bool Same(std::size_t before, std::size_t after);

 private:
  // Which attributes count.
  struct Parts {
    const AttributeWord* holding = nullptr;
    bool isDescription = false;
  };

  bool SameValues(const IFC::IfcEntity* before, const IFC::IfcEntity* after);
  bool SameIdentity(const IFC::IfcEntity& before, const IFC::IfcEntity& after) const;
  bool SameRelations(std::size_t before, std::size_t after);
  bool SameRelation(const IFC::IfcEntity& before, const IFC::IfcEntity& after);
  // What else a relation holds is compared, and in any order.
  bool HoldsObjectsAlone(const IFC::IfcEntity& relation) const;
  bool SameContent(const IFC::IfcEntity& before, const IFC::IfcEntity& after, const Parts& parts);
  bool SameAttribute(const ConstAttribute& before, const ConstAttribute& after);
  bool SameDescriptions(const IFC::IfcEntity& before, const IFC::IfcEntity& after);

  template <class T>
  bool SameHeld(const List<T>& before, const List<T>& after) {
    if (before.size() != after.size()) return false;
    for (std::size_t i = 0; i < before.size(); ++i) {
      if (!SameHeld(before[i], after[i])) return false;
    }
    return true;
  }
  bool SameHeld(const IFC::IfcEntity* before, const IFC::IfcEntity* after) {
    return SameValues(before, after);
  }
  bool SameHeld(double before, double after) const {
    return tolerance_.Same(before * scaleBefore_, after * scaleAfter_, dimension_);
  }
  static bool SameHeld(std::int32_t before, std::int32_t after) { return before == after; }
  static bool SameHeld(ModelText before, ModelText after) { return before == after; }
  static bool SameHeld(const char* before, const char* after) {
    return std::string_view(before) == after;
  }

  const ComparedModel& before_;
  const ComparedModel& after_;
  const Pairing& pairing_;
  const Tolerance& tolerance_;
  std::vector<const IFC::IfcEntity*> partners_;  // by number of the earlier one
  unsigned depth_ = 0;
  // Of the attribute at hand.
  Dimension dimension_ = Dimension::kNone;
  double scaleBefore_ = 1.0;
  double scaleAfter_ = 1.0;
};

}  // namespace corvel::host::diff
