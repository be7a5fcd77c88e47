// Where products stand, what they are called and how large they are, for some thread.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "core/cast_of_thread.h"
#include "core/root_interfaces.h"
#include "merge/federation/named_attribute.h"
#include "merge/federation/tree/world_places.h"
#include "merge/report/shared/report_places.h"
#include "merge/report/shared/shape_boxes.h"
#include "schema/interfaces/product.h"

namespace corvel {

// Remembers what it has met and changes nothing: several of them look at one model at a time, each
// on a thread of its own, as long as nothing of the model is carried and nobody changes it.
class ProductLooker {
 public:
  using Products = std::span<IFC::IfcEntity* const>;

  // `metres`: what a length of the model is.
  explicit ProductLooker(double metres) : metres_(metres) {}

  // Of each product, as many as `places` has. Nothing where it cannot be told.
  void Place(Products products, std::span<std::optional<Transform>> places);
  // GUID, name and origin.
  void Describe(IFC::IfcEntity& product, const Transform& place, ProductPlace& described);
  // What a product is described from will be read soon.
  void Foresee(IFC::IfcEntity& product);
  // The shapes of these products will be read soon: some tens of them.
  void ForeseeShapes(Products products);
  // Nothing where the shape does not tell. `place`: of the product.
  std::optional<ProductBox> BoxOf(const IFC::IfcEntity& product, const Transform& place);

 private:
  IFC::IfcEntity* PlacementOf(IFC::IfcEntity& product);
  void ForeseePlaces(Products products);

  double metres_;
  WorldPlaces worlds_;
  ShapeBoxes boxes_;
  CastOfThread<IFC::VirtualIfcProduct> asProduct_;
  CastOfThread<IFC::VirtualIfcRoot> asRoot_;
  NamedAttribute name_{"Name"};
  NamedAttribute shape_{"Representation"};
  NamedAttribute relative_{"RelativePlacement"};
  NamedAttribute location_{"Location"};
  NamedAttribute coordinates_{"Coordinates"};
  NamedAttribute representations_{"Representations"};
  NamedAttribute items_{"Items"};
  NamedAttribute sweptArea_{"SweptArea"};
  std::vector<const EntityList*> lists_;
  std::vector<const IFC::IfcEntity*> foreseen_;
};

}  // namespace corvel
