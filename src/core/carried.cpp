#include "core/carried.h"

#include <algorithm>
#include <unordered_map>

namespace corvel {

namespace {

using PartsByHolder = std::unordered_map<const IFC::IfcEntity*, CarriedParts>;

// One for all models of the process: an object does not know its model, and a walk meets objects of
// several.
PartsByHolder& AllParts() {
  static PartsByHolder parts;
  return parts;
}

}  // namespace

const CarriedArgument* CarriedParts::Find(std::size_t index) const {
  const auto found = std::find_if(arguments.begin(), arguments.end(),
                                  [=](const CarriedArgument& one) { return one.index == index; });
  return found == arguments.end() ? nullptr : &*found;
}

CarriedTable::~CarriedTable() {
  for (const IFC::IfcEntity* const holder : holders_) AllParts().erase(holder);
}

void CarriedTable::Set(IFC::IfcEntity& holder, const CarriedParts& parts) {
  if (AllParts().insert_or_assign(&holder, parts).second) holders_.push_back(&holder);
  holder.carries = true;
}

void CarriedTable::Drop(const IFC::IfcEntity& holder, std::size_t index) {
  const auto found = AllParts().find(&holder);
  if (found == AllParts().end()) return;
  CarriedParts& parts = found->second;
  const auto kept = std::remove_if(parts.arguments.begin(), parts.arguments.end(),
                                   [=](const CarriedArgument& one) { return one.index == index; });
  parts.arguments = {parts.arguments.begin(), kept};
}

const CarriedParts* CarriedTable::Find(const IFC::IfcEntity& holder) {
  if (!holder.carries) return nullptr;
  const auto found = AllParts().find(&holder);
  return found == AllParts().end() ? nullptr : &found->second;
}

bool IsOfNoClassOfModel(const IFC::IfcEntity& entity) {
  if (!entity.carries || entity.inlineValue) return false;
  if (dynamic_cast<const IFC::CarriedEntity*>(&entity) != nullptr) return true;
  const CarriedParts* const parts = CarriedTable::Find(entity);
  return parts != nullptr && parts->byOtherRelease;
}

bool CarriesLiveObject(const IFC::IfcEntity& holder) {
  const CarriedParts* const parts = CarriedTable::Find(holder);
  return parts != nullptr &&
         std::any_of(parts->children.begin(), parts->children.end(),
                     [](const IFC::IfcEntity* child) { return child->marker != IFC::kDeleted; });
}

}  // namespace corvel

namespace IFC {

// A carried reference can be lost: `$` is written in its place then.
void IfcEntity::CollectCarried(ChildQueue& queue) const {
  const corvel::CarriedParts* const parts = corvel::CarriedTable::Find(*this);
  if (parts == nullptr) return;
  for (IfcEntity* const child : parts->children) queue.Append(child, true);
}

}  // namespace IFC
