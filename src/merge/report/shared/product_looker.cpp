#include "merge/report/shared/product_looker.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

#include "merge/federation/prefetch_object.h"
#include "platform/prefetch.h"

namespace corvel {

void ProductLooker::Place(Products products, std::span<std::optional<Transform>> places) {
  constexpr std::size_t kAtOnce = 32;
  for (std::size_t begin = 0; begin < products.size(); begin += kAtOnce) {
    const Products few = products.subspan(begin, std::min(kAtOnce, products.size() - begin));
    ForeseePlaces(few);
    for (std::size_t i = 0; i < few.size(); ++i) {
      IFC::IfcEntity* const placement = PlacementOf(*few[i]);
      if (placement != nullptr) places[begin + i] = worlds_.OfLeaf(*placement);
    }
  }
}

IFC::IfcEntity* ProductLooker::PlacementOf(IFC::IfcEntity& product) {
  const auto* const asProduct = asProduct_(product);
  return asProduct == nullptr ? nullptr : asProduct->getObjectPlacement();
}

// Of so many products the objects are asked for before they are needed: they lie anywhere in
// memory.
void ProductLooker::ForeseePlaces(Products products) {
  foreseen_.clear();
  for (const IFC::IfcEntity* const product : products) PrefetchObject(product);
  for (IFC::IfcEntity* const product : products) {
    IFC::IfcEntity* const placement = PlacementOf(*product);
    if (placement == nullptr) continue;
    PrefetchObject(placement);
    foreseen_.push_back(placement);
  }
  for (NamedAttribute* const next : {&relative_, &location_}) {
    for (const IFC::IfcEntity*& at : foreseen_) {
      at = at == nullptr ? nullptr : next->ReferenceIn(*at);
      if (at != nullptr) PrefetchObject(at);
    }
  }
  for (const IFC::IfcEntity* const point : foreseen_) {
    const List<double>* const numbers = point == nullptr ? nullptr : coordinates_.RealsIn(*point);
    if (numbers != nullptr) platform::PrefetchToRead(numbers->begin());
  }
}

void ProductLooker::Foresee(IFC::IfcEntity& product) {
  const auto* const root = asRoot_(product);
  if (root != nullptr) platform::PrefetchToRead(root->getGlobalId());
  const auto* const name = name_.ValueIn<ModelText>(product);
  if (name != nullptr && name->IsPlain()) platform::PrefetchToRead(name->Plain().data());
}

void ProductLooker::Describe(IFC::IfcEntity& product, const Transform& place,
                             ProductPlace& described) {
  if (const auto* const root = asRoot_(product)) described.guid = root->getGlobalId();
  if (const auto* const name = name_.ValueIn<ModelText>(product)) described.name = name->ToWide();
  described.origin = Times(place.origin, metres_);
}

// Down to what shapes consist of.
void ProductLooker::ForeseeShapes(Products products) {
  foreseen_.clear();
  for (const IFC::IfcEntity* const product : products) {
    const IFC::IfcEntity* const shape = shape_.ReferenceIn(*product);
    if (shape == nullptr) continue;
    PrefetchObject(shape);
    foreseen_.push_back(shape);
  }
  for (NamedAttribute* const next : {&representations_, &items_}) {
    lists_.clear();
    for (const IFC::IfcEntity* const at : foreseen_) {
      const EntityList* const list = next->ReferencesIn(*at);
      if (list == nullptr || list->size() == 0) continue;
      platform::PrefetchToRead(list->begin());
      lists_.push_back(list);
    }
    foreseen_.clear();
    for (const EntityList* const list : lists_) {
      const IFC::IfcEntity* const first = *list->begin();
      if (first == nullptr) continue;
      PrefetchObject(first);
      foreseen_.push_back(first);
    }
  }
  for (const IFC::IfcEntity* const solid : foreseen_) {
    const IFC::IfcEntity* const profile = sweptArea_.ReferenceIn(*solid);
    if (profile != nullptr) PrefetchObject(profile);
  }
}

std::optional<ProductBox> ProductLooker::BoxOf(const IFC::IfcEntity& product,
                                               const Transform& place) {
  const IFC::IfcEntity* const shape = shape_.ReferenceIn(product);
  if (shape == nullptr) return std::nullopt;
  const Bounds own = boxes_.Of(*shape);
  if (own.isEmpty) return std::nullopt;
  // A product that leans is drawn by the box around it.
  constexpr double kUpright = 1.0 - 1e-6;
  const bool isUpright = place.z[2] >= kUpright;
  Bounds bounds;
  if (isUpright) {
    bounds = own;
  } else {
    bounds.Add(own, place);
  }
  ProductBox box;
  box.size = Times(Plus(bounds.high, Times(bounds.low, -1.0)), metres_);
  const Triple centre = Times(Plus(bounds.low, bounds.high), 0.5);
  box.centre = Times(isUpright ? place.Moved(centre) : centre, metres_);
  if (isUpright) {
    constexpr double kHalfTurn = 180.0;
    box.degrees = std::atan2(place.x[1], place.x[0]) * kHalfTurn / std::numbers::pi;
  }
  return box;
}

}  // namespace corvel
