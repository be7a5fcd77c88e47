#include "merge/report/shared/model_places.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <numeric>
#include <span>
#include <string>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/named_attribute.h"
#include "merge/federation/prefetch_object.h"
#include "merge/federation/tree/length_in_metres.h"
#include "merge/federation/tree/world_places.h"
#include "merge/report/shared/drawn_products.h"
#include "merge/report/shared/shape_boxes.h"
#include "merge/report/shared/spatial_tree.h"
#include "platform/prefetch.h"
#include "schema/interfaces/product.h"

namespace corvel {

namespace {

// What a class is to a drawing.
enum class Role { kDrawn, kStorey, kNotDrawn };

Role RoleOf(const ClassFacts* facts) {
  if (facts != nullptr && std::string_view(facts->name) == "IfcBuildingStorey") {
    return Role::kStorey;
  }
  for (; facts != nullptr; facts = facts->supertype) {
    for (const std::string_view name :
         {"IfcSpatialStructureElement", "IfcSpatialElement", "IfcFeatureElement", "IfcPort",
          "IfcVirtualElement", "IfcOpeningElement", "IfcAnnotation"}) {
      if (name == facts->name) return Role::kNotDrawn;
    }
  }
  return Role::kDrawn;
}

// Of so many products the objects are asked for before they are needed: they lie anywhere in
// memory.
constexpr std::size_t kAtOnce = 32;

class PlaceCollector {
 public:
  PlaceCollector(const IfcDocument& merged, const PlacesWanted& wanted)
      : merged_(merged),
        wanted_(wanted),
        metres_(MetresPerLengthUnit(merged.getIfcUnitAssignment())) {}

  void Look(const PlacedInput& input) {
    const std::vector<PlacedProduct>& products = input.products;
    for (std::size_t begin = 0; begin < products.size(); begin += kAtOnce) {
      const std::span few(products.data() + begin, std::min(kAtOnce, products.size() - begin));
      Foresee(few);
      for (const PlacedProduct& product : few) {
        if (!product.isKept) continue;
        const Role role = RoleOfProduct(product);
        if (role == Role::kStorey) AddStorey(*product.entity, input.input);
        if (role == Role::kDrawn) AddCandidate(product, input.input);
      }
    }
  }

  ModelPlaces Finish() {
    AddProducts();
    std::stable_sort(places_.storeys.begin(), places_.storeys.end(),
                     [](const auto& a, const auto& b) { return a.height < b.height; });
    places_.north = North();
    return std::move(places_);
  }

 private:
  struct Candidate {
    IFC::IfcEntity* entity = nullptr;
    Transform place;
    std::uint32_t input = 0;
    std::uint32_t classIndex = 0;
  };

  Role RoleOfProduct(const PlacedProduct& product) {
    return roles_.Of(product,
                     [](const IFC::IfcEntity& entity) { return RoleOf(FindFacts(entity)); });
  }

  void Foresee(std::span<const PlacedProduct> products) {
    foreseen_.clear();
    const auto isSeen = [this](const PlacedProduct& product) {
      return product.isKept && RoleOfProduct(product) != Role::kNotDrawn;
    };
    for (const PlacedProduct& product : products) {
      if (isSeen(product)) PrefetchObject(product.entity);
    }
    for (const PlacedProduct& product : products) {
      if (!isSeen(product)) continue;
      IFC::IfcEntity* const placement =
          EntityCast<IFC::VirtualIfcProduct>(product.entity)->getObjectPlacement();
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

  // Down to what shapes consist of.
  void ForeseeShapes(std::span<const std::size_t> products) {
    foreseen_.clear();
    for (const std::size_t product : products) {
      const IFC::IfcEntity* const shape = shape_.ReferenceIn(*candidates_[product].entity);
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

  // Nothing where it cannot be told.
  std::optional<Transform> PlaceOfProduct(IFC::IfcEntity& entity) {
    IFC::IfcEntity* const placement =
        EntityCast<IFC::VirtualIfcProduct>(&entity)->getObjectPlacement();
    if (placement == nullptr) return std::nullopt;
    return worlds_.OfLeaf(*placement);
  }

  std::uint32_t ClassIndexOf(const PlacedProduct& product) {
    return classes_.Of(product, [this](const IFC::IfcEntity& entity) {
      const ClassFacts* const facts = FindFacts(entity);
      places_.classes.push_back({facts == nullptr ? "" : facts->name, 0, 0});
      return static_cast<std::uint32_t>(places_.classes.size() - 1);
    });
  }

  void AddCandidate(const PlacedProduct& product, std::uint32_t input) {
    const auto place = PlaceOfProduct(*product.entity);
    if (!place) {
      ++places_.withoutPlace;
      return;
    }
    const std::uint32_t classIndex = ClassIndexOf(product);
    ++places_.classes[classIndex].products;
    candidates_.push_back({product.entity, *place, input, classIndex});
  }

  // A storey that stands nowhere, or at 0, has the height that it says.
  void AddStorey(IFC::IfcEntity& entity, std::uint32_t input) {
    const auto place = PlaceOfProduct(entity);
    double height = place ? place->origin[2] : 0.0;
    if (height == 0.0) height = RealOf(entity, "Elevation");
    if (std::isfinite(height)) {
      places_.storeys.push_back({input, TextOf(entity, "Name"), height * metres_});
    }
  }

  void AddProducts() {
    const Thinning thinning(candidates_.size(), wanted_.most);
    std::vector<std::size_t> seen(places_.classes.size(), 0);
    std::erase_if(candidates_, [&](const Candidate& candidate) {
      ClassOfPlaces& own = places_.classes[candidate.classIndex];
      const bool isListed = thinning.Takes(seen[candidate.classIndex]++, own.products);
      if (isListed) ++own.listed;
      return !isListed;
    });
    places_.products.reserve(candidates_.size());
    constexpr std::size_t kAhead = 8;
    for (std::size_t i = 0; i < candidates_.size(); ++i) {
      if (i + 2 * kAhead < candidates_.size()) PrefetchObject(candidates_[i + 2 * kAhead].entity);
      if (i + kAhead < candidates_.size()) PrefetchTexts(*candidates_[i + kAhead].entity);
      places_.products.push_back(PlaceFor(candidates_[i]));
    }
    AddBoxes(wanted_.boxes == Boxes::kOfAll ? AllProducts() : DrawnProducts(places_));
  }

  std::vector<std::size_t> AllProducts() const {
    std::vector<std::size_t> all(candidates_.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
  }

  void AddBoxes(std::span<const std::size_t> products) {
    while (!products.empty()) {
      const auto few = products.first(std::min(kAtOnce, products.size()));
      ForeseeShapes(few);
      for (const std::size_t i : few) places_.products[i].box = BoxOf(candidates_[i]);
      products = products.subspan(few.size());
    }
  }

  void PrefetchTexts(IFC::IfcEntity& entity) {
    const auto* const root = EntityCast<IFC::VirtualIfcRoot>(&entity);
    if (root != nullptr) platform::PrefetchToRead(root->getGlobalId());
    const auto* const name = name_.ValueIn<ModelText>(entity);
    if (name != nullptr && name->IsPlain()) platform::PrefetchToRead(name->Plain().data());
  }

  ProductPlace PlaceFor(const Candidate& candidate) {
    const auto* const root = EntityCast<IFC::VirtualIfcRoot>(candidate.entity);
    const auto* const name = name_.ValueIn<ModelText>(*candidate.entity);
    return {candidate.input, candidate.classIndex,
            root == nullptr ? std::string() : std::string(root->getGlobalId()),
            name == nullptr ? WideString() : name->ToWide(),
            Times(candidate.place.origin, metres_)};
  }

  std::optional<ProductBox> BoxOf(const Candidate& candidate) {
    const IFC::IfcEntity* const shape = shape_.ReferenceIn(*candidate.entity);
    if (shape == nullptr) return std::nullopt;
    const Bounds own = boxes_.Of(*shape);
    if (own.isEmpty) return std::nullopt;
    // A product that leans is drawn by the box around it.
    constexpr double kUpright = 1.0 - 1e-6;
    const Transform& place = candidate.place;
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

  // Of the first context that tells.
  std::optional<std::array<double, 2>> North() const {
    const IFC::IfcEntity* const project = merged_.mainContainer->FirstProject();
    const EntityList* const contexts =
        project == nullptr ? nullptr : ReferencesOf(*project, "RepresentationContexts");
    if (contexts == nullptr) return std::nullopt;
    for (const IFC::IfcEntity* const context : *contexts) {
      const IFC::IfcEntity* const north =
          context == nullptr ? nullptr : ReferenceOf(*context, "TrueNorth");
      const List<double>* const ratios =
          north == nullptr ? nullptr : RealsOf(*north, "DirectionRatios");
      if (ratios == nullptr || ratios->size() < 2) continue;
      const double length = std::hypot((*ratios)[0], (*ratios)[1]);
      if (std::isfinite(length) && length > 0.0) {
        return std::array{(*ratios)[0] / length, (*ratios)[1] / length};
      }
    }
    return std::nullopt;
  }

  const IfcDocument& merged_;
  PlacesWanted wanted_;
  double metres_;
  WorldPlaces worlds_;
  ShapeBoxes boxes_;
  PerProductClass<Role> roles_;
  PerProductClass<std::uint32_t> classes_;  // by index of ModelPlaces::classes
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
  std::vector<Candidate> candidates_;
  ModelPlaces places_;
};

}  // namespace

ModelPlaces CollectPlaces(const IfcDocument& merged, const std::vector<PlacedInput>& inputs,
                          const PlacesWanted& wanted) {
  PlaceCollector collector(merged, wanted);
  for (const PlacedInput& input : inputs) collector.Look(input);
  ModelPlaces places = collector.Finish();
  places.tree = CollectSpatialTree(merged, inputs);
  return places;
}

}  // namespace corvel
