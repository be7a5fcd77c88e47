#include "host/scene_reader.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "host/scene_classes.h"
#include "host/scene_parents.h"
#include "step/reader/record_walker.h"

namespace corvel::host {

namespace {

class SceneReader {
 public:
  SceneReader(Scanner& scanner, const FactoryTable& factories,
              std::span<const FactoryTable* const> others, SceneTexts texts, ModelScene& scene)
      : scanner_(scanner),
        walker_(scanner),
        classes_(factories, others),
        texts_(texts),
        scene_(scene) {}

  // False when the input ends inside of a string.
  bool Run() {
    for (std::uint32_t number = 0; walker_.FindRecord(number); walker_.FinishRecord()) {
      TakeRecord(number, classes_.Find(walker_.TakeClassName()));
    }
    if (!scanner_.MetClosingLine()) scene_.endWithoutClosingLine = scanner_.Stream()->Position();
    SortObjects();
    SettleParents(links_, scene_.objects);
    scene_.classes = classes_.TakeNames();
    return !walker_.EndsInString();
  }

 private:
  using Place = RecordWalker::Place;

  void TakeRecord(std::uint32_t number, const SceneClass& found) {
    if (found.kind == SceneClass::kOther) return;
    if (found.kind == SceneClass::kRelation) {
      TakeRelation(number, *found.relation);
      return;
    }
    const bool isProject = found.kind == SceneClass::kProject;
    scene_.objects.push_back({number, kNoObject, found.id, isProject});
    if (texts_ != SceneTexts::kNone) TakeLabel();
  }

  void TakeLabel() {
    ModelScene::Label& label = scene_.labels.emplace_back();
    label.start = scene_.texts.size();
    const auto takeText = [&](const Place& place) {
      std::uint32_t* length = nullptr;
      if (place.depth == 1 && place.argument == kGuidArgument) length = &label.guidLength;
      if (place.depth == 1 && place.argument == kNameArgument) length = &label.nameLength;
      if (length == nullptr || *length != 0) return walker_.TakeString();
      const std::size_t before = scene_.texts.size();
      const bool closed = walker_.TakeString(&scene_.texts);
      *length = static_cast<std::uint32_t>(scene_.texts.size() - before);
      return closed;
    };
    const bool guidsOnly = texts_ == SceneTexts::kGuids;
    walker_.WalkArguments(guidsOnly ? kGuidArgument : kNameArgument, takeText,
                          [](const Place&, std::uint32_t) {});
  }

  void TakeRelation(std::uint32_t number, const RelationShape& shape) {
    std::uint32_t parent = 0;
    const std::size_t before = links_.size();
    const unsigned childDepth = shape.manyChildren ? 2 : 1;
    walker_.WalkArguments(
        std::max(shape.parentArgument, shape.childArgument),
        [this](const Place&) { return walker_.TakeString(); },
        [&](const Place& place, std::uint32_t named) {
          if (place.argument == shape.parentArgument && place.depth == 1) parent = named;
          if (place.argument == shape.childArgument && place.depth == childDepth) {
            links_.push_back({number, named, 0});
          }
        });
    for (std::size_t i = before; i < links_.size(); ++i) links_[i].parent = parent;
  }

  bool IsSorted() const {
    const auto& objects = scene_.objects;
    return std::adjacent_find(objects.begin(), objects.end(), [](const auto& a, const auto& b) {
             return a.number >= b.number;
           }) == objects.end();
  }

  // By number, each number once. Most files have them so.
  void SortObjects() {
    if (IsSorted()) return;
    std::vector<SceneObject>& objects = scene_.objects;
    std::vector<std::uint32_t> order(objects.size());
    std::iota(order.begin(), order.end(), 0u);
    const auto numberOf = [&](std::uint32_t index) { return objects[index].number; };
    std::stable_sort(order.begin(), order.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return numberOf(a) < numberOf(b); });
    order.erase(
        std::unique(order.begin(), order.end(),
                    [&](std::uint32_t a, std::uint32_t b) { return numberOf(a) == numberOf(b); }),
        order.end());
    objects = InOrder(objects, order);
    if (!scene_.labels.empty()) scene_.labels = InOrder(scene_.labels, order);
  }

  template <class Item>
  static std::vector<Item> InOrder(const std::vector<Item>& items,
                                   const std::vector<std::uint32_t>& order) {
    std::vector<Item> ordered;
    ordered.reserve(order.size());
    for (const std::uint32_t index : order) ordered.push_back(items[index]);
    return ordered;
  }

  Scanner& scanner_;
  RecordWalker walker_;
  SceneClasses classes_;
  SceneTexts texts_;
  ModelScene& scene_;
  std::vector<ParentLink> links_;
};

}  // namespace

bool ReadSceneRecords(Scanner& scanner, const FactoryTable& factories, SceneTexts texts,
                      ModelScene& scene, std::span<const FactoryTable* const> others) {
  return SceneReader(scanner, factories, others, texts, scene).Run();
}

}  // namespace corvel::host
