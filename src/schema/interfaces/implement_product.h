// Bodies of VirtualIfcRoot, VirtualIfcProduct, IfcProjectVirtual and IfcSiteVirtual.
#pragma once

#include "core/root_interfaces.h"
#include "schema/interfaces/geometry.h"
#include "schema/interfaces/implement_support.h"
#include "schema/interfaces/product.h"

namespace IFC::implement {

// `Root` is IfcRoot itself, also where a subtype calls: a subtype may declare a `Name` of its own.
template <class Root>
void SetName(Root& root, corvel::ModelText name) {
  if (name.IsNull()) return;
  root.Name = name;
  if constexpr (requires { root.NamePresent; }) root.NamePresent = true;
}

template <class OwnerHistory, class Root>
void SetRootAttributes(Root& root, const char* globalId, IfcEntity* ownerHistory,
                       corvel::ModelText name) {
  if (globalId != nullptr) root.GlobalId = globalId;
  // An OwnerHistoryPresent is left alone: the interface promises that.
  if (ownerHistory != nullptr) root.OwnerHistory = Admitted<OwnerHistory>(ownerHistory);
  SetName(root, name);
}

template <class LocalPlacement, class Product>
VirtualLocalPlacement* ProductRootPlacement(Product& product, corvel::MemoryPool& pool) {
  if (!product.ObjectPlacementPresent) {
    auto* const made = pool.New<LocalPlacement>();
    made->marker = kMadePlacement;
    SetOptional(product.ObjectPlacement, product.ObjectPlacementPresent, made);
    return made;
  }
  auto* const own = corvel::EntityCast<VirtualLocalPlacement>(product.ObjectPlacement);
  if (own == nullptr) return nullptr;
  VirtualLocalPlacement* const root = own->getRootPlacement();
  return root != nullptr ? root : own;
}

template <class Site>
void ClearRepresentation(Site& site) {
  SetOptional(site.Representation, site.RepresentationPresent, nullptr);
}

}  // namespace IFC::implement
