#include "merge/federation/units/value_spaces.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "merge/federation/attribute_values.h"
#include "merge/federation/units/object_copies.h"

namespace corvel {

namespace {

constexpr ValueSpace kUntouched = {Measure::kNone, Measure::kNone, true};

// The model itself counts as one more space.
constexpr std::uint32_t kInModel = 1U << 31;

template <class Action>
void ForEachObjectBelow(const IFC::IfcEntity& entity, Action action) {
  IFC::ChildQueue children;
  entity.CollectAllChildren(children);
  while (!children.IsEmpty()) {
    IFC::IfcEntity* const child = children.TakeBack().entity;
    if (child != nullptr && !child->inlineValue) action(*child);
  }
}

// A parameter curve of these alone can be stretched in one direction.
constexpr std::string_view kStretchable[] = {"IfcLine",           "IfcVector",
                                             "IfcDirection",      "IfcCartesianPoint",
                                             "IfcPolyline",       "IfcTrimmedCurve",
                                             "IfcCompositeCurve", "IfcCompositeCurveSegment",
                                             "IfcBSplineCurve",   "IfcCartesianPointList2D"};

bool IsStretchable(const IFC::IfcEntity& entity) {
  for (const ClassFacts* at = FindFacts(entity); at != nullptr; at = at->supertype) {
    if (std::find(std::begin(kStretchable), std::end(kStretchable), at->name) !=
        std::end(kStretchable)) {
      return true;
    }
  }
  return false;
}

bool CanBeStretched(const IFC::IfcEntity& curve) {
  std::set<const IFC::IfcEntity*> met = {&curve};
  std::vector<const IFC::IfcEntity*> waiting = {&curve};
  while (!waiting.empty()) {
    const IFC::IfcEntity* const entity = waiting.back();
    waiting.pop_back();
    if (!IsStretchable(*entity)) return false;
    ForEachObjectBelow(*entity, [&](IFC::IfcEntity& child) {
      if (met.insert(&child).second) waiting.push_back(&child);
    });
  }
  return true;
}

// Which objects are in which spaces, and the copies that follow from that.
class Separation {
 public:
  using Spaces = std::unordered_map<const IFC::IfcEntity*, ValueSpace>;

  Separation(IfcDocument& document, Spaces& spaces) : document_(document), spaces_(spaces) {}

  void AddRoot(IFC::IfcEntity& owner, const AttributeFacts& attribute, ValueSpace space) {
    const std::uint32_t bit = BitOf(space);
    Attribute(owner, attribute).ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* target) {
      if (target == nullptr || target->inlineValue) return;
      roots_.insert({&owner, target});
      Spread(*target, bit);
    });
  }

  // Who stands above what is in a space, and not as the owner of a root, has it in the model.
  bool FindInModel(Ticker& ticker) {
    std::vector<IFC::IfcEntity*> found;
    for (const auto& [number, entity] : document_.mainContainer->entities) {
      if (memberships_.count(entity) == 0) {
        ForEachObjectBelow(*entity, [&, owner = entity](IFC::IfcEntity& child) {
          if (memberships_.count(&child) != 0 && roots_.count({owner, &child}) == 0) {
            found.push_back(&child);
          }
        });
      }
      if (!ticker.Advance()) return false;
    }
    for (IFC::IfcEntity* const entity : found) Spread(*entity, kInModel);
    return true;
  }

  // In the order in which the objects were found. Gives the number of copies; nothing when the
  // document is out of numbers.
  std::optional<std::size_t> MakeCopies() {
    std::size_t count = 0;
    for (IFC::IfcEntity* const entity : order_) {
      const std::uint32_t bits = memberships_[entity];
      const std::uint32_t keeper = (bits & kInModel) != 0 ? kInModel : bits & (~bits + 1);
      for (std::size_t i = 0; i < list_.size(); ++i) {
        const std::uint32_t bit = 1U << i;
        if ((bits & bit) == 0) continue;
        IFC::IfcEntity* instance = entity;
        if (bit != keeper) {
          instance = CopyObject(*entity, document_);
          if (instance == nullptr) return std::nullopt;
          copies_[i][entity] = instance;
          ++count;
        }
        spaces_[instance] = list_[i];
        members_.emplace_back(instance, i);
      }
    }
    return count;
  }

  void Redirect(IFC::IfcEntity& entity, ValueSpace space) {
    const std::size_t index = IndexOf(space);
    for (const Attribute attribute : AttributesOf(entity)) Redirect(attribute, index);
  }
  void RedirectMembers() {
    for (const auto& [entity, index] : members_) Redirect(*entity, list_[index]);
  }
  void RedirectRoot(IFC::IfcEntity& owner, const AttributeFacts& attribute, ValueSpace space) {
    Redirect(Attribute(owner, attribute), IndexOf(space));
  }

 private:
  std::size_t IndexOf(ValueSpace space) {
    const auto found = std::find(list_.begin(), list_.end(), space);
    if (found != list_.end()) return static_cast<std::size_t>(found - list_.begin());
    list_.push_back(space);
    copies_.emplace_back();
    return list_.size() - 1;
  }
  // There are two measures for two coordinates, or none: never as many spaces as bits.
  std::uint32_t BitOf(ValueSpace space) { return 1U << IndexOf(space); }

  void Spread(IFC::IfcEntity& from, std::uint32_t bit) {
    std::vector<IFC::IfcEntity*> waiting = {&from};
    while (!waiting.empty()) {
      IFC::IfcEntity& entity = *waiting.back();
      waiting.pop_back();
      const auto [place, isNew] = memberships_.try_emplace(&entity, 0U);
      if (isNew) order_.push_back(&entity);
      if ((place->second & bit) != 0) continue;
      place->second |= bit;
      ForEachObjectBelow(entity, [&](IFC::IfcEntity& child) { waiting.push_back(&child); });
    }
  }

  void Redirect(const Attribute& attribute, std::size_t index) {
    const auto& copies = copies_[index];
    attribute.ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity*& reference) {
      const auto found = copies.find(reference);
      if (found != copies.end()) reference = found->second;
    });
  }

  IfcDocument& document_;
  Spaces& spaces_;
  std::vector<ValueSpace> list_;
  std::vector<std::unordered_map<const IFC::IfcEntity*, IFC::IfcEntity*>> copies_;  // by space
  std::unordered_map<const IFC::IfcEntity*, std::uint32_t> memberships_;
  std::vector<IFC::IfcEntity*> order_;
  std::vector<std::pair<IFC::IfcEntity*, std::size_t>> members_;
  std::set<std::pair<const IFC::IfcEntity*, const IFC::IfcEntity*>> roots_;
};

}  // namespace

void ValueSpaces::Note(IFC::IfcEntity& entity) {
  const ClassFacts* const facts = FindFacts(entity);
  if (facts == nullptr) return;
  if (std::string_view(facts->name) == "IfcTable") NoteTable(entity);
  for (const PlannedValue& planned : plans_.Of(*facts)) {
    switch (planned.role) {
      case ValueRole::kParameterSpace: NoteCurve(entity, planned); break;
      case ValueRole::kTextureSpace:
        roots_.push_back({&entity, planned.facts, {Measure::kNone, Measure::kNone}});
        break;
      case ValueRole::kInTimeSeries:
        if (planned.other != nullptr && Attribute(entity, *planned.other).HasValue()) {
          roots_.push_back({&entity, planned.facts, kUntouched});
        }
        break;
      case ValueRole::kInLibrary: NoteLibrary(entity); break;
      default: break;
    }
  }
}

bool ValueSpaces::IsToBeNoted(const ClassFacts& facts) {
  const std::vector<PlannedValue>& plan = plans_.Of(facts);
  const bool hasSpace = std::any_of(plan.begin(), plan.end(), [](const PlannedValue& planned) {
    return planned.role == ValueRole::kParameterSpace || planned.role == ValueRole::kTextureSpace ||
           planned.role == ValueRole::kInTimeSeries || planned.role == ValueRole::kInLibrary;
  });
  return hasSpace || std::string_view(facts.name) == "IfcTable";
}

void ValueSpaces::NoteCurve(IFC::IfcEntity& pcurve, const PlannedValue& planned) {
  const IFC::IfcEntity* const surface = ReferenceOf(pcurve, "BasisSurface");
  const IFC::IfcEntity* const curve = ReferenceOf(pcurve, "ReferenceCurve");
  if (curve == nullptr) return;
  const auto [first, second] = curves_.OfSurface(surface);
  ValueSpace space = {first, second};
  if (space == ValueSpace{}) return;
  if (space.IsStretched() && curves_.FactorOf(first) != curves_.FactorOf(second) &&
      !CanBeStretched(*curve)) {
    ++unstretchable_;
    space = {Measure::kNone, Measure::kNone};
  }
  roots_.push_back({&pcurve, planned.facts, space});
}

// A heading has names of columns, and no numbers.
void ValueSpaces::NoteTable(const IFC::IfcEntity& table) {
  const EntityList* const columns = ReferencesOf(table, "Columns");
  const EntityList* const rows = ReferencesOf(table, "Rows");
  if (columns == nullptr || rows == nullptr) return;
  std::vector<bool> haveUnits;
  for (const IFC::IfcEntity* const column : *columns) {
    haveUnits.push_back(column != nullptr && ReferenceOf(*column, "Unit") != nullptr);
  }
  const auto ofAll = std::make_shared<const std::vector<bool>>(std::move(haveUnits));
  for (const IFC::IfcEntity* const row : *rows) columns_.try_emplace(row, ofAll);
}

// Types, templates, and sets with their properties. Shapes of a type are drawn where they are used,
// and count in the units of the model.
void ValueSpaces::NoteLibrary(const IFC::IfcEntity& declaration) {
  const IFC::IfcEntity* const library = ReferenceOf(declaration, "RelatingContext");
  const IFC::IfcEntity* const units =
      library == nullptr ? nullptr : ReferenceOf(*library, "UnitsInContext");
  if (units == nullptr || units == document_.getIfcUnitAssignment()) return;
  const EntityList* const definitions = ReferencesOf(declaration, "RelatedDefinitions");
  if (definitions == nullptr) return;
  std::vector<const IFC::IfcEntity*> waiting(definitions->begin(), definitions->end());
  while (!waiting.empty()) {
    const IFC::IfcEntity* const entity = waiting.back();
    waiting.pop_back();
    if (entity == nullptr || FindFacts(*entity) == nullptr) continue;
    if (!spaces_.try_emplace(entity, kUntouched).second) continue;
    for (const std::string_view members :
         {"HasPropertySets", "HasPropertyTemplates", "HasProperties", "Quantities", "HasQuantities",
          "Properties"}) {
      const EntityList* const list = ReferencesOf(*entity, members);
      if (list != nullptr) waiting.insert(waiting.end(), list->begin(), list->end());
    }
  }
}

bool ValueSpaces::Separate(Ticker& ticker) {
  if (roots_.empty()) return true;
  Separation separation(document_, spaces_);
  for (const Root& root : roots_) separation.AddRoot(*root.owner, *root.attribute, root.space);
  if (!separation.FindInModel(ticker)) return false;
  const std::optional<std::size_t> copies = separation.MakeCopies();
  if (!copies) return false;
  copies_ = *copies;
  separation.RedirectMembers();
  for (const Root& root : roots_) separation.RedirectRoot(*root.owner, *root.attribute, root.space);
  if (copies_ != 0) document_.mainContainer->NoteChangedReferences();
  for (const auto& [entity, space] : spaces_) {
    if (!space.IsStretched()) continue;
    const IFC::IfcEntity* const direction = ReferenceOf(*entity, "Orientation");
    const List<double>* const ratios =
        direction == nullptr ? nullptr : RealsOf(*direction, "DirectionRatios");
    if (ratios == nullptr || ratios->size() < 2) continue;
    const double before = std::hypot((*ratios)[0], (*ratios)[1]);
    const double after = std::hypot((*ratios)[0] * curves_.FactorOf(space.first),
                                    (*ratios)[1] * curves_.FactorOf(space.second));
    if (before > 0.0) stretches_[entity] = after / before;
  }
  return true;
}

}  // namespace corvel
