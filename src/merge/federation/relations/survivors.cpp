#include "merge/federation/relations/survivors.h"

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/federation/per_class.h"

namespace corvel {

Survivors::Survivors(const FederatedModel& model) {
  model.ForEachThatGaveWay([this](IFC::IfcEntity& gone, IFC::IfcEntity& survivor) {
    At(gone).hasGivenWay = true;
    if (EntityCast<IFC::VirtualIfcRoot>(&survivor) == nullptr) return;
    At(survivor).isSurvivor = true;
    isEmpty_ = false;
  });
  // Projects gave way in the fold, which is not remembered.
  const auto isProject = [](const ClassFacts* facts) { return IsOrIsBelow(facts, "IfcProject"); };
  Ticker silent{Stage()};
  for (std::size_t input = 0; input < model.InputCount(); ++input) {
    model.ForEachRootThatCameWith(input, silent, isProject, [this](const IFC::IfcEntity& project) {
      At(project).hasGivenWay = true;
    });
  }
}

Survivors::Slot& Survivors::At(const IFC::IfcEntity& object) {
  Slot& slot = known_.Enter(HashOf(&object),
                            [&object](const Slot& known) { return known.object == &object; });
  slot.object = &object;
  return slot;
}

}  // namespace corvel
