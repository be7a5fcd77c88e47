#include "random_models.h"

#include <algorithm>
#include <numeric>

namespace corvel::test {

namespace {

struct Kind {
  const char16_t* className;
  bool isRoot;
  GraphNode& (*make)(Graph&);
};

template <class Class>
GraphNode& Make(Graph& graph) {
  return graph.Add<Class>();
}

// More of those that meet rules of their own.
constexpr Kind kKinds[] = {
    {u"IfcProject", true, Make<Of<u"IfcProject">>},
    {u"IfcSite", true, Make<Of<u"IfcSite">>},
    {u"IfcSite", false, Make<Of<u"IfcSite", GraphNode>>},
    {u"IfcBuilding", true, Make<Of<u"IfcBuilding">>},
    {u"IfcBuildingStorey", true, Make<Of<u"IfcBuildingStorey">>},
    {u"IfcBuildingStorey", true, Make<Of<u"IfcBuildingStorey">>},
    {u"IfcWall", true, Make<Of<u"IfcWall">>},
    {u"IfcWall", true, Make<Of<u"IfcWall">>},
    {u"IfcRelAggregates", true, Make<Of<u"IfcRelAggregates">>},
    {u"IfcRelAggregates", true, Make<Of<u"IfcRelAggregates">>},
    {u"IfcRelAggregates", true, Make<Of<u"IfcRelAggregates">>},
    {u"IfcRelContainedInSpatialStructure", true, Make<Of<u"IfcRelContainedInSpatialStructure">>},
    {u"IfcRelAssignsToGroup", true, Make<Of<u"IfcRelAssignsToGroup", GraphAssigns>>},
    {u"IfcPoint", false, Make<Of<u"IfcPoint", GraphNode>>},
};
constexpr int kKindCount = static_cast<int>(std::size(kKinds));

int Below(std::mt19937& random, int limit) {
  return static_cast<int>(random() % static_cast<unsigned>(limit));
}

}  // namespace

PlannedModel AnyModel(std::mt19937& random, const ModelShape& shape) {
  std::vector<std::uint32_t> numbers(
      std::max<std::size_t>(shape.highestNumber, static_cast<std::size_t>(shape.entities)));
  std::iota(numbers.begin(), numbers.end(), 1);
  std::shuffle(numbers.begin(), numbers.end(), random);
  // Some models number to the end of the range.
  const std::uint32_t shift =
      random() % 20 == 0 ? IFC::kLargestNumber - static_cast<std::uint32_t>(numbers.size()) : 0;

  PlannedModel plan(static_cast<std::size_t>(shape.entities));
  for (int i = 0; i < shape.entities; ++i) {
    PlannedEntity& entity = plan[static_cast<std::size_t>(i)];
    entity.kind = Below(random, kKindCount);
    entity.number = random() % 12 == 0 ? 0 : shift + numbers[static_cast<std::size_t>(i)];
    entity.deleted = entity.number != 0 && random() % 10 == 0;
    const int guid = Below(random, 24);
    if (guid > 0) entity.guid = "guid" + std::to_string(guid % 9);
    entity.name = Widen("name" + std::to_string(Below(random, 3)));
    const int children = i == 0 ? 0 : Below(random, shape.mostChildren + 1);
    for (int c = 0; c < children; ++c) {
      entity.children.push_back(random() % 15 == 0 ? -1 : Below(random, i));
    }
  }
  return plan;
}

BuiltModel::BuiltModel(const PlannedModel& plan, int firstId, const WideString& path,
                       unsigned allocation)
    : engine(path), objects(plan.size()), plan_(plan) {
  std::vector<std::size_t> order(plan.size());
  std::iota(order.begin(), order.end(), 0);
  std::shuffle(order.begin(), order.end(), std::mt19937(allocation));
  for (const std::size_t i : order) {
    objects[i] = &kKinds[plan[i].kind].make(graph_);
    if (auto* const root = dynamic_cast<GraphRoot*>(objects[i])) {
      root->guid = graph_.Keep(plan[i].guid);
      root->name = graph_.Keep(plan[i].name);
    }
  }
  literal.path = path;
  literal.container = std::make_shared<LiteralContainer>();
  for (std::size_t i = 0; i < plan.size(); ++i) {
    LiteralEntity& twin = twins.emplace_back();
    const Kind& kind = kKinds[plan[i].kind];
    twin.id = firstId + static_cast<int>(i);
    twin.className = kind.className;
    twin.isRoot = kind.isRoot;
    if (kind.isRoot) {
      twin.guid = plan[i].guid;
      twin.name = plan[i].name;
    }
    for (const int child : plan[i].children) {
      const auto at = static_cast<std::size_t>(child);
      objects[i]->RefersTo(child < 0 ? nullptr : objects[at]);
      twin.children.push_back(child < 0 ? nullptr : &twins[at]);
    }
  }
}

void BuiltModel::FileEngine() {
  for (std::size_t i = 0; i < plan_.size(); ++i) {
    if (plan_[i].number == 0) continue;
    engine.File(plan_[i].number, *objects[i]);
    if (plan_[i].deleted) objects[i]->marker = IFC::kDeleted;
  }
}

void BuiltModel::FileLiteral(LiteralMerge& merge) {
  for (std::size_t i = 0; i < plan_.size(); ++i) {
    if (plan_[i].number == 0) continue;
    twins[i].marker = plan_[i].number;
    literal.container->originalEntities[plan_[i].number] = &twins[i];
    merge.AddEntity(*literal.container, &twins[i]);
    if (plan_[i].deleted) twins[i].marker = IFC::kDeleted;
  }
}

}  // namespace corvel::test
