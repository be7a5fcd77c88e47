#include "step/reader/parallel/ahead_references.h"

namespace corvel {

void AheadReferences::Bind(RecordBatch& batch) {
  const auto bound = [&](IFC::IfcEntity* reference, const ClassTest& admitted) {
    if (!RecordBatch::IsPending(reference)) return reference;
    IFC::IfcEntity* const target = batch.targets[RecordBatch::IndexOf(reference)];
    return Admits(admitted, target) ? target : nullptr;
  };
  for (const RecordBatch::Place& place : batch.places) {
    if (place.index >= batch.targets.size()) return;
    if (place.value != nullptr) {
      *place.value = bound(*place.value, *place.admitted);
      if (place.present != nullptr) *place.present = *place.value != nullptr;
    } else {
      for (IFC::IfcEntity*& member : *place.list) member = bound(member, *place.admitted);
      place.list->RemoveIf([](const IFC::IfcEntity* member) { return member == nullptr; });
    }
  }
}

}  // namespace corvel
