#include "merge/report/shared/model_places.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "merge/federation/attribute_values.h"
#include "merge/federation/prefetch_object.h"
#include "merge/federation/tree/length_in_metres.h"
#include "merge/report/shared/drawn_products.h"
#include "merge/report/shared/product_looker.h"
#include "merge/report/shared/spatial_tree.h"
#include "platform/worker_pool.h"
#include "schema/attributes.h"

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

// A part of the products, for one thread.
class Slice final : public platform::Job {
 public:
  using Work = std::function<void(ProductLooker& looker, std::size_t begin, std::size_t end)>;

  explicit Slice(double metres) : looker_(metres) {}

  // For the next submission: the products from `begin` on.
  void Take(const Work& work, std::size_t begin, std::size_t end) {
    work_ = &work;
    begin_ = begin;
    end_ = end;
  }

 protected:
  void Run() override { (*work_)(looker_, begin_, end_); }

 private:
  ProductLooker looker_;
  const Work* work_ = nullptr;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
};

class PlaceCollector {
 public:
  PlaceCollector(const IfcDocument& merged, const PlacesWanted& wanted)
      : merged_(merged),
        wanted_(wanted),
        metres_(MetresPerLengthUnit(merged.getIfcUnitAssignment())),
        pool_(wanted.threads) {}

  ModelPlaces Collect(const std::vector<PlacedInput>& inputs) {
    for (const PlacedInput& input : inputs) Enlist(input);
    MakeSlices();
    transforms_.resize(products_.size());
    InSlices(
        products_.size(),
        [this](ProductLooker& looker, std::size_t begin, std::size_t end) {
          looker.Place(std::span(products_).subspan(begin, end - begin),
                       std::span(transforms_).subspan(begin, end - begin));
        },
        [] {});
    SortOut();
    ThinOut();
    const std::vector<bool> hasBox = WithBoxes();
    InSlices(
        listed_.size(),
        [&](ProductLooker& looker, std::size_t begin, std::size_t end) {
          Describe(looker, begin, end);
          AddBoxes(looker, hasBox, begin, end);
        },
        [&] { places_.tree = CollectSpatialTree(merged_, inputs); });
    std::stable_sort(places_.storeys.begin(), places_.storeys.end(),
                     [](const auto& a, const auto& b) { return a.height < b.height; });
    places_.north = North();
    return std::move(places_);
  }

 private:
  struct Origin {
    std::uint32_t input = 0;
    std::uint32_t classId = 0;  // of names_
  };

  // A class is told of from the first product on that has a place.
  struct ClassName {
    const char* name = "";
    Role role = Role::kDrawn;
    std::optional<std::uint32_t> index{};  // of places_.classes
  };

  // What is drawn, and what is a storey.
  void Enlist(const PlacedInput& input) {
    for (const PlacedProduct& product : input.products) {
      if (!product.isKept) continue;
      const std::uint32_t classId = ids_.Of(product, [this](const IFC::IfcEntity& entity) {
        const ClassFacts* const facts = FindFacts(entity);
        names_.push_back({facts == nullptr ? "" : facts->name, RoleOf(facts)});
        return static_cast<std::uint32_t>(names_.size() - 1);
      });
      if (names_[classId].role == Role::kNotDrawn) continue;
      products_.push_back(product.entity);
      origins_.push_back({input.input, classId});
    }
  }

  void MakeSlices() {
    // Some for each thread, since they take different times; fewer are not worth a thread.
    constexpr std::size_t kForEachThread = 3;
    constexpr std::size_t kLeastProducts = 200;
    const std::size_t most = products_.size() / kLeastProducts + 1;
    const std::size_t count =
        pool_.Threads() == 1 ? 1 : std::min(pool_.Threads() * kForEachThread, most);
    for (std::size_t i = 0; i < count; ++i) slices_.push_back(std::make_unique<Slice>(metres_));
  }

  // Gives all slices their parts of so many products; `meanwhile` is for this thread.
  template <class Meanwhile>
  void InSlices(std::size_t products, const Slice::Work& work, Meanwhile meanwhile) {
    const std::size_t count = slices_.size();
    try {
      for (std::size_t i = 0; i < count; ++i) {
        slices_[i]->Take(work, products * i / count, products * (i + 1) / count);
        pool_.Submit(*slices_[i]);
      }
      meanwhile();
      for (const auto& slice : slices_) pool_.Finish(*slice);
    } catch (...) {
      pool_.Drop();  // what they work on is about to go
      throw;
    }
  }

  void SortOut() {
    for (std::size_t i = 0; i < products_.size(); ++i) {
      ClassName& name = names_[origins_[i].classId];
      if (name.role == Role::kStorey) {
        AddStorey(i);
        continue;
      }
      if (!transforms_[i]) {
        ++places_.withoutPlace;
        continue;
      }
      if (!name.index) {
        name.index = static_cast<std::uint32_t>(places_.classes.size());
        places_.classes.push_back({name.name, 0, 0});
      }
      ++places_.classes[*name.index].products;
      listed_.push_back(i);
    }
  }

  // A storey that stands nowhere, or at 0, has the height that it says.
  void AddStorey(std::size_t at) {
    const IFC::IfcEntity& entity = *products_[at];
    double height = transforms_[at] ? transforms_[at]->origin[2] : 0.0;
    if (height == 0.0) height = RealOf(entity, "Elevation");
    if (std::isfinite(height)) {
      places_.storeys.push_back({origins_[at].input, TextOf(entity, "Name"), height * metres_});
    }
  }

  void ThinOut() {
    const Thinning thinning(listed_.size(), wanted_.most);
    std::vector<std::size_t> seen(places_.classes.size(), 0);
    std::erase_if(listed_, [&](std::size_t product) {
      const std::uint32_t index = *names_[origins_[product].classId].index;
      ClassOfPlaces& own = places_.classes[index];
      const bool isListed = thinning.Takes(seen[index]++, own.products);
      if (isListed) ++own.listed;
      return !isListed;
    });
    places_.products.resize(listed_.size());
    for (std::size_t i = 0; i < listed_.size(); ++i) {
      const Origin& origin = origins_[listed_[i]];
      places_.products[i].input = origin.input;
      places_.products[i].classIndex = *names_[origin.classId].index;
    }
  }

  // Which of those that are listed.
  std::vector<bool> WithBoxes() const {
    std::vector<bool> hasBox(listed_.size(), wanted_.boxes == Boxes::kOfAll);
    if (wanted_.boxes == Boxes::kOfDrawn) {
      for (const std::size_t drawn : DrawnProducts(places_)) hasBox[drawn] = true;
    }
    return hasBox;
  }

  void Describe(ProductLooker& looker, std::size_t begin, std::size_t end) {
    constexpr std::size_t kAhead = 8;
    for (std::size_t i = begin; i < end; ++i) {
      if (i + 2 * kAhead < end) PrefetchObject(products_[listed_[i + 2 * kAhead]]);
      if (i + kAhead < end) looker.Foresee(*products_[listed_[i + kAhead]]);
      looker.Describe(*products_[listed_[i]], *transforms_[listed_[i]], places_.products[i]);
    }
  }

  void AddBoxes(ProductLooker& looker, const std::vector<bool>& hasBox, std::size_t begin,
                std::size_t end) {
    constexpr std::size_t kAtOnce = 32;
    std::vector<std::size_t> few;
    std::vector<IFC::IfcEntity*> entities;
    for (std::size_t i = begin; i < end;) {
      few.clear();
      entities.clear();
      for (; i < end && few.size() < kAtOnce; ++i) {
        if (!hasBox[i]) continue;
        few.push_back(i);
        entities.push_back(products_[listed_[i]]);
      }
      looker.ForeseeShapes(entities);
      for (const std::size_t at : few) {
        const std::size_t product = listed_[at];
        places_.products[at].box = looker.BoxOf(*products_[product], *transforms_[product]);
      }
    }
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
  PerProductClass<std::uint32_t> ids_;
  std::vector<ClassName> names_;
  std::vector<IFC::IfcEntity*> products_;             // storeys, and what is drawn
  std::vector<Origin> origins_;                       // of these
  std::vector<std::optional<Transform>> transforms_;  // likewise
  std::vector<std::size_t> listed_;                   // positions of these, as in places_.products
  ModelPlaces places_;
  std::vector<std::unique_ptr<Slice>> slices_;
  platform::WorkerPool pool_;  // gone first
};

}  // namespace

ModelPlaces CollectPlaces(const IfcDocument& merged, const std::vector<PlacedInput>& inputs,
                          const PlacesWanted& wanted) {
  return PlaceCollector(merged, wanted).Collect(inputs);
}

}  // namespace corvel
