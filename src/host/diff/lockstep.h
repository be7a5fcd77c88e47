// Objects of two models that say the same in the same order, as most do.
#pragma once

#include <bitset>
#include <cstdint>
#include <cstring>
#include <vector>

#include "host/diff/compared_model.h"
#include "host/diff/pairing.h"
#include "host/diff/shortcuts.h"
#include "host/diff/tolerance.h"
#include "schema/attributes.h"

namespace corvel::host::diff {

// Goes through both sides at once and gives up at the first doubt. What it takes for the same is
// the same; what it doesn't may be, in an order that is quite another. Each object of the earlier
// model is gone through once while it meets the same partner: a fraction of what digests of both
// sides cost. Without shortcuts it doubts everything.
class Lockstep {
 public:
  // All of it lives as long as this.
  Lockstep(const ComparedModel& before, const ComparedModel& after, const Pairing& pairing,
           const Tolerance& tolerance, Shortcuts shortcuts = Shortcuts::kTaken);

  // Values by the place where they stand: those in front of the first object of each model, between
  // two objects, and behind the last. Most writers put what belongs together in one order, and
  // memory is gone through from one end to the other then. Nothing depends on it but the time.
  void WalkValues();
  // Objects with an identity, with all that they have and belong to.
  bool Same(std::size_t before, std::size_t after);
  // Values of any class that are told in the units of their models.
  bool SameValues(const IFC::IfcEntity* before, const IFC::IfcEntity* after);
  // What two relations say of those that they hold.
  bool SameRelation(const IFC::IfcEntity& before, const IFC::IfcEntity& after);
  // Members that say the same in their order, or in any where few are out of it.
  template <class Members, class AreSame>
  static bool SameInAnyOrder(const Members& before, const Members& after, AreSame areSame);

 private:
  // Which attributes count.
  struct Parts {
    const AttributeWord* holding = nullptr;
    bool isDescription = false;
  };

  void WalkValues(ComparedModel::Values before, ComparedModel::Values after);
  bool SameRecords(const IFC::IfcEntity& before, const IFC::IfcEntity& after);
  bool SameIdentity(const IFC::IfcEntity& before, const IFC::IfcEntity& after) const;
  void FetchRelations(std::size_t before, std::size_t after) const;
  bool SameRelations(std::size_t before, std::size_t after);
  bool SameContent(const IFC::IfcEntity& before, const IFC::IfcEntity& after, const Parts& parts);
  struct Held {
    Dimension dimension = Dimension::kNone;
    double scaleBefore = 1.0;
    double scaleAfter = 1.0;
    bool isUnordered = false;  // the references in its only list
  };
  bool SameAttribute(const ConstAttribute& before, const ConstAttribute& after,
                     const AttributeWord& attribute);
  bool SameDescriptions(const IFC::IfcEntity& before, const IFC::IfcEntity& after);

  template <class T>
  bool SameHeld(const List<T>& before, const List<T>& after, const Held& held) {
    if (before.size() != after.size()) return false;
    for (std::size_t i = 0; i < before.size(); ++i) {
      if (!SameHeld(before[i], after[i], held)) return false;
    }
    return true;
  }
  bool SameHeld(const EntityList& before, const EntityList& after, const Held& held);
  bool SameHeld(const IFC::IfcEntity* before, const IFC::IfcEntity* after, const Held&) {
    return SameValues(before, after);
  }
  bool SameHeld(double before, double after, const Held& held) const {
    if (before == after && held.scaleBefore == held.scaleAfter) return true;
    return tolerance_.Same(before * held.scaleBefore, after * held.scaleAfter, held.dimension);
  }
  static bool SameHeld(std::int32_t before, std::int32_t after, const Held&) {
    return before == after;
  }
  static bool SameHeld(ModelText before, ModelText after, const Held&) {
    if (!before.IsPlain() || !after.IsPlain()) return before == after;
    return std::strcmp(static_cast<const char*>(before.Address()),
                       static_cast<const char*>(after.Address())) == 0;
  }
  static bool SameHeld(const char* before, const char* after, const Held&) {
    return std::string_view(before) == after;
  }

  const ComparedModel& before_;
  const ComparedModel& after_;
  const Pairing& pairing_;
  const Tolerance& tolerance_;
  bool isOff_;
  std::vector<const IFC::IfcEntity*> partnersOfRelations_;  // by number
  unsigned depth_ = 0;
};

// Where members say the same as several others, it doesn't matter which of them they are held
// against.
template <class Members, class AreSame>
bool Lockstep::SameInAnyOrder(const Members& before, const Members& after, AreSame areSame) {
  constexpr std::size_t kFew = 64;
  const std::size_t size = before.size();
  if (size != after.size()) return false;
  std::size_t first = 0;
  while (first < size && areSame(before[first], after[first])) ++first;
  if (size - first > kFew) return false;
  std::bitset<kFew> taken;
  for (std::size_t i = first; i < size; ++i) {
    std::size_t at = first;
    while (at < size && (taken[at - first] || !areSame(before[i], after[at]))) ++at;
    if (at == size) return false;
    taken.set(at - first);
  }
  return true;
}

}  // namespace corvel::host::diff
