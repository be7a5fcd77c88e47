#include "merge/federation/equality/value_digests.h"

#include <utility>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/federation/equality/attribute_digest.h"
#include "schema/attributes.h"

namespace corvel {

namespace {

Digest OfItself(const IFC::IfcEntity* entity) {
  DigestMaker maker;
  maker.Add(entity);
  return maker.Made();
}

}  // namespace

bool StandsForItself(IFC::IfcEntity& entity) {
  return entity.carries || FindFacts(entity) == nullptr ||
         EntityCast<IFC::VirtualIfcRoot>(&entity) != nullptr;
}

// Values in records are in no model.
IFC::IfcEntity* ValueDigests::There(IFC::IfcEntity* entity) const {
  return entity == nullptr || entity->inlineValue ? entity : model_.InModel(entity);
}

Digest ValueDigests::Of(IFC::IfcEntity* entity) {
  Push(There(entity));
  while (!waiting_.empty()) {
    IFC::IfcEntity& current = *waiting_.back();
    Slot& slot = At(&current);
    if (slot.IsFree()) {
      slot.entity = &current;
      // First all that it refers to and that is not known yet; then it is at the back again.
      const std::size_t before = waiting_.size();
      for (const Attribute attribute : AttributesOf(current)) {
        attribute.ForEach<IFC::IfcEntity*>([this](IFC::IfcEntity* child) { Push(There(child)); });
      }
      if (waiting_.size() != before) continue;
    }
    waiting_.pop_back();
    if (!slot.IsDone()) slot.digest = Make(current);  // which enters nothing
  }
  return KnownOf(There(entity));
}

// What has been begun is on the way from here, or done.
void ValueDigests::Push(IFC::IfcEntity* entity) {
  if (entity == nullptr || Find(entity) != nullptr || StandsForItself(*entity)) return;
  waiting_.push_back(entity);
}

Digest ValueDigests::Make(IFC::IfcEntity& entity) {
  const ConstAttributes all = AttributesOf(std::as_const(entity));
  DigestMaker maker;
  maker.Add(&all.Facts());
  AttributeDigest attributes(maker,
                             [this](IFC::IfcEntity* child) { return KnownOf(There(child)); });
  for (const ConstAttribute attribute : all) attributes.Add(attribute);
  return maker.Made();
}

// What has been begun and is not done leads to itself.
Digest ValueDigests::KnownOf(IFC::IfcEntity* entity) const {
  if (entity == nullptr) return {};
  const Slot* const found = Find(entity);
  return found != nullptr && found->IsDone() ? found->digest : OfItself(entity);
}

}  // namespace corvel
