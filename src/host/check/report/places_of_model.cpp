#include "host/check/report/places_of_model.h"

#include <algorithm>
#include <string>
#include <unordered_map>

#include "core/entity_cast.h"
#include "merge/report/shared/model_places.h"
#include "schema/interfaces/product.h"

namespace corvel::host {

namespace {

class Joining {
 public:
  void Add(const ModelPlaces& places) {
    std::vector<std::uint32_t> classes;
    for (const ClassOfPlaces& one : places.classes) classes.push_back(Count(one));
    for (ProductPlace product : places.products) {
      product.classIndex = classes[product.classIndex];
      all_.products.push_back(std::move(product));
    }
    all_.storeys.insert(all_.storeys.end(), places.storeys.begin(), places.storeys.end());
    all_.withoutPlace += places.withoutPlace;
    if (!all_.north) all_.north = places.north;
  }

  ModelPlaces Take() {
    std::stable_sort(all_.storeys.begin(), all_.storeys.end(),
                     [](const auto& a, const auto& b) { return a.height < b.height; });
    return std::move(all_);
  }

 private:
  std::uint32_t Count(const ClassOfPlaces& one) {
    const auto next = static_cast<std::uint32_t>(all_.classes.size());
    const auto [known, isNew] = index_.try_emplace(one.name, next);
    if (isNew) all_.classes.push_back({one.name, 0, 0});
    ClassOfPlaces& sum = all_.classes[known->second];
    sum.products += one.products;
    sum.listed += one.listed;
    return known->second;
  }

  ModelPlaces all_;
  std::unordered_map<std::string, std::uint32_t> index_;
};

}  // namespace

ModelPlaces PlacesOfModel(const IfcDocument& document, std::uint32_t file,
                          std::size_t mostProducts) {
  PlacedInput input{file};
  for (const auto& [number, entity] : document.mainContainer->entities) {
    if (EntityCast<IFC::VirtualIfcProduct>(entity) == nullptr) continue;
    input.products.push_back({entity, entity->getClassName()});
  }
  return CollectPlaces(document, {input}, {.most = mostProducts, .boxes = Boxes::kOfAll});
}

ModelPlaces AllPlaces(const std::vector<const ModelPlaces*>& models) {
  Joining joining;
  for (const ModelPlaces* const places : models) {
    if (places != nullptr) joining.Add(*places);
  }
  return joining.Take();
}

}  // namespace corvel::host
