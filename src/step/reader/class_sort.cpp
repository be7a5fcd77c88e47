#include "step/reader/class_sort.h"

#include "core/main_container.h"
#include "step/class_facts.h"

namespace corvel {

namespace {

bool IsProduct(const ClassFacts* facts) {
  for (; facts != nullptr; facts = facts->supertype) {
    if (std::string_view(facts->name) == "IfcProduct") return true;
  }
  return false;
}

}  // namespace

std::ptrdiff_t SortOfClass(const FactoryTable& factories, std::string_view name,
                           IFC::IfcEntity* entity) {
  const bool isProduct = factories.classes != nullptr && IsProduct(factories.classes->Find(name));
  return isProduct ? IFC::MainContainer::SortOfProducts() : IFC::MainContainer::SortOf(entity);
}

}  // namespace corvel
