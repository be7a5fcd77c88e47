#include "merge/report/shared/spatial_tree.h"

#include <algorithm>
#include <memory_resource>
#include <unordered_map>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/federation/attribute_values.h"
#include "merge/marking.h"
#include "platform/prefetch.h"

namespace corvel {

namespace {

// So many objects are asked for before they are needed.
constexpr std::ptrdiff_t kAhead = 16;

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

  bool IsSpatial(const IFC::IfcEntity& entity) {
    return isElement_.IsTrueOf(entity) || isStructure_.IsTrueOf(entity);
  }

  // The object itself, or what stands for it.
  IFC::IfcEntity* InModel(IFC::IfcEntity* entity) const {
    if (entity == nullptr || IsDeleted(*entity)) return nullptr;
    return container_.entities.Find(entity->marker);
  }

  void CollectNodes() {
    std::size_t count = 0;
    for (const PlacedInput& input : inputs_) count += input.products.size();
    owners_.reserve(count);
    for (std::size_t i = 0; i < inputs_.size(); ++i) {
      const std::vector<PlacedProduct>& products = inputs_[i].products;
      for (std::size_t at = 0; at < products.size(); ++at) {
        if (at + std::size_t{kAhead} < products.size()) {
          platform::PrefetchToRead(products[at + kAhead].entity);
        }
        IFC::IfcEntity* const there = InModel(products[at].entity);
        if (there == nullptr) continue;
        owners_.emplace(there, i);
        if (!IsSpatial(*there)) continue;
        if (!index_.contains(there)) MakeNode(*there);
        std::vector<std::uint32_t>& inputs = nodes_[index_.at(there)].inputs;
        const std::uint32_t input = inputs_[i].input;
        if (std::find(inputs.begin(), inputs.end(), input) == inputs.end()) {
          inputs.push_back(input);
        }
      }
    }
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
    IFC::IfcEntity* const* ahead = elements->begin();
    for (IFC::IfcEntity* const element : *elements) {
      for (; ahead != elements->end() && ahead - &element < kAhead; ++ahead) {
        platform::PrefetchToRead(*ahead);
      }
      const auto owner = owners_.find(InModel(element));
      if (owner != owners_.end()) ++node->products[owner->second];
    }
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
  ClassQuestion isElement_{"IfcSpatialElement"};
  ClassQuestion isStructure_{"IfcSpatialStructureElement"};
  std::vector<SpatialNode> nodes_;
  std::vector<bool> hasParent_;
  std::vector<std::size_t> parents_;
  std::unordered_map<const IFC::IfcEntity*, std::size_t> index_;  // of nodes
  std::pmr::monotonic_buffer_resource memory_;
  std::pmr::unordered_map<const IFC::IfcEntity*, std::size_t> owners_{
      &memory_};  // position of the input
};

}  // namespace

std::vector<SpatialNode> CollectSpatialTree(const IfcDocument& merged,
                                            const std::vector<PlacedInput>& inputs) {
  return TreeCollector(merged, inputs).Collect();
}

}  // namespace corvel
