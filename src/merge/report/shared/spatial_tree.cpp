#include "merge/report/shared/spatial_tree.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>

#include "core/entity_cast.h"
#include "core/open_table.h"
#include "core/root_interfaces.h"
#include "merge/federation/attribute_values.h"
#include "merge/marking.h"

namespace corvel {

namespace {

class TreeCollector {
 public:
  TreeCollector(const IfcDocument& merged, const std::vector<PlacedInput>& inputs)
      : container_(*merged.mainContainer), inputs_(inputs) {}

  std::vector<SpatialNode> Collect() {
    IFC::IfcEntity* const project = container_.FirstProject();
    if (project == nullptr) return {};
    MakeNode(*project);
    for (const PlacedInput& input : inputs_) nodes_.front().inputs.push_back(input.input);
    CollectNodes();
    for (const IFC::IfcEntity* const relation : container_.relAggregates) Aggregate(*relation);
    for (const IFC::IfcEntity* const relation : container_.relContainedInSpatialStructure) {
      Contain(*relation);
    }
    // What nothing leads to is shown all the same.
    for (std::size_t i = 1; i < nodes_.size(); ++i) {
      if (!hasParent_[i] || IsCutOff(i)) nodes_.front().children.push_back(i);
    }
    return std::move(nodes_);
  }

 private:
  void MakeNode(IFC::IfcEntity& entity) {
    index_.emplace(&entity, nodes_.size());
    SpatialNode& node = nodes_.emplace_back();
    node.className = ToUtf8(entity.getClassName());
    node.name = TextOf(entity, "Name");
    if (const auto* const root = EntityCast<IFC::VirtualIfcRoot>(&entity)) {
      node.guid = root->getGlobalId();
    }
    node.products.resize(inputs_.size());
    hasParent_.push_back(false);
    parents_.push_back(0);
  }

  bool IsSpatial(const PlacedProduct& product) {
    return isSpatial_.Of(product, [](const IFC::IfcEntity& entity) {
      const ClassFacts* const facts = FindFacts(entity);
      return IsOrIsBelow(facts, "IfcSpatialElement") ||
             IsOrIsBelow(facts, "IfcSpatialStructureElement");
    });
  }

  // The object itself, or what stands for it.
  IFC::IfcEntity* InModel(IFC::IfcEntity* entity) const {
    if (entity == nullptr || IsDeleted(*entity)) return nullptr;
    return container_.entities.Find(entity->marker);
  }

  void CollectNodes() {
    for (std::size_t i = 0; i < inputs_.size(); ++i) {
      const std::vector<PlacedProduct>& products = inputs_[i].products;
      for (const PlacedProduct& product : products) {
        IFC::IfcEntity* const there = product.isKept ? product.entity : InModel(product.entity);
        if (there == nullptr) continue;
        Own(*there, i);
        if (!IsSpatial(product)) continue;
        if (!index_.contains(there)) MakeNode(*there);
        std::vector<std::uint32_t>& inputs = nodes_[index_.at(there)].inputs;
        const std::uint32_t input = inputs_[i].input;
        if (std::find(inputs.begin(), inputs.end(), input) == inputs.end()) {
          inputs.push_back(input);
        }
      }
    }
  }

  // Whose product an object is, by position of the input.
  struct Owner {
    const IFC::IfcEntity* product = nullptr;
    std::size_t input = 0;

    bool IsFree() const { return product == nullptr; }
    std::size_t Hash() const { return HashOf(*product); }
  };

  // Objects lie some ten bytes apart at least.
  static std::size_t HashOf(const IFC::IfcEntity& product) {
    constexpr std::uint64_t kGolden = 0x9E3779B97F4A7C15u;
    return static_cast<std::size_t>((reinterpret_cast<std::uintptr_t>(&product) >> 3) * kGolden >>
                                    32);
  }

  // The first one counts.
  void Own(const IFC::IfcEntity& product, std::size_t input) {
    Owner& owner = owners_.Enter(HashOf(product),
                                 [&](const Owner& known) { return known.product == &product; });
    if (owner.IsFree()) owner = {&product, input};
  }

  const Owner* OwnerOf(const IFC::IfcEntity& product) const {
    return owners_.Find(HashOf(product),
                        [&](const Owner& known) { return known.product == &product; });
  }

  // Null for what is no node.
  SpatialNode* NodeOf(const IFC::IfcEntity& relation, const char* attribute) {
    IFC::IfcEntity* const whole = InModel(ReferenceOf(relation, attribute));
    const auto found = index_.find(whole);
    return found == index_.end() ? nullptr : &nodes_[found->second];
  }

  bool IsThere(const IFC::IfcEntity& relation) const {
    return !IsDeleted(relation) && container_.entities.Find(relation.marker) == &relation;
  }

  void Aggregate(const IFC::IfcEntity& relation) {
    if (!IsThere(relation)) return;
    SpatialNode* const node = NodeOf(relation, "RelatingObject");
    const EntityList* const parts = ReferencesOf(relation, "RelatedObjects");
    if (node == nullptr || parts == nullptr) return;
    const auto above = static_cast<std::size_t>(node - nodes_.data());
    for (IFC::IfcEntity* const part : *parts) {
      const auto below = index_.find(InModel(part));
      if (below == index_.end() || below->second == 0 || hasParent_[below->second]) continue;
      hasParent_[below->second] = true;
      parents_[below->second] = above;
      node->children.push_back(below->second);
    }
  }

  void Contain(const IFC::IfcEntity& relation) {
    if (!IsThere(relation)) return;
    SpatialNode* const node = NodeOf(relation, "RelatingStructure");
    const EntityList* const elements = ReferencesOf(relation, "RelatedElements");
    if (node == nullptr || elements == nullptr) return;
    for (IFC::IfcEntity* const element : *elements) {
      const Owner* const owner = OwnerOfElement(element);
      if (owner != nullptr) ++node->products[owner->input];
    }
  }

  // Most elements are products that are kept: nothing of them is looked at.
  const Owner* OwnerOfElement(IFC::IfcEntity* element) const {
    if (element == nullptr) return nullptr;
    if (const Owner* const owner = OwnerOf(*element)) return owner;
    const IFC::IfcEntity* const there = InModel(element);
    return there == nullptr || there == element ? nullptr : OwnerOf(*there);
  }

  // In a circle that nothing leads into; the first member is taken for its beginning.
  bool IsCutOff(std::size_t start) {
    std::size_t at = start;
    for (std::size_t steps = 0; steps <= nodes_.size(); ++steps) {
      if (at == 0 || !hasParent_[at]) return false;
      at = parents_[at];
      if (at != start) continue;
      std::erase(nodes_[parents_[start]].children, start);
      hasParent_[start] = false;
      return true;
    }
    return false;
  }

  const IFC::MainContainer& container_;
  const std::vector<PlacedInput>& inputs_;
  PerProductClass<bool> isSpatial_;
  std::vector<SpatialNode> nodes_;
  std::vector<bool> hasParent_;
  std::vector<std::size_t> parents_;
  std::unordered_map<const IFC::IfcEntity*, std::size_t> index_;  // of nodes
  OpenTable<Owner, 1024> owners_;
};

}  // namespace

std::vector<SpatialNode> CollectSpatialTree(const IfcDocument& merged,
                                            const std::vector<PlacedInput>& inputs) {
  return TreeCollector(merged, inputs).Collect();
}

}  // namespace corvel
