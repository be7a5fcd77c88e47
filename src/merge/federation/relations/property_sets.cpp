#include "merge/federation/relations/property_sets.h"

#include <algorithm>
#include <array>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

#include "merge/federation/attribute_values.h"
#include "merge/federation/map_properties.h"
#include "merge/federation/relations/set_links.h"
#include "merge/federation/same_value.h"
#include "schema/attributes.h"

namespace corvel {

namespace {

// Null for a set whose members have no names of their own.
const char* MembersOfSet(const IFC::IfcEntity& set) {
  for (const char* const attribute : {"HasProperties", "Quantities"}) {
    if (ReferencesOf(set, attribute) != nullptr) return attribute;
  }
  return nullptr;
}

class SetJoiner {
 public:
  SetJoiner(FederatedModel& model, const Survivors& survivors, RelationEdits& edits,
            MendedRelations& mended)
      : model_(model), survivors_(survivors), links_(model, edits), mended_(mended) {}

  bool Run(Ticker& ticker) {
    for (std::size_t input = 0; input < model_.InputCount(); ++input) {
      const bool goesOn = model_.ForEachRootOf(input, ticker, SetLinks::AreRelations,
                                               [this](IFC::IfcEntity& entity) { Gather(entity); });
      if (!goesOn) return false;
    }
    for (IFC::IfcEntity* const object : objects_) Plan(*object);
    if (!groups_.empty() && !CountUsers(ticker)) return false;
    for (const Group& group : groups_) {
      if (!Join(group)) return false;
    }
    return links_.Apply();
  }

 private:
  struct OnObject {
    IFC::IfcEntity* object = nullptr;
    std::vector<HangingSet> hangings;  // the first set, and those that are joined with it
  };
  // The same sets in the same order, on any number of objects: joined once for all of them.
  struct Group {
    std::vector<IFC::IfcEntity*> sets;
    std::vector<OnObject> objects;
  };

  void Gather(IFC::IfcEntity& relation) {
    const EntityList* const objects = SetLinks::ObjectsOf(relation);
    if (objects == nullptr) return;
    const bool concernsOne = std::any_of(
        objects->begin(), objects->end(),
        [this](const IFC::IfcEntity* object) { return survivors_.MayStandFor(object); });
    if (!concernsOne) return;
    links_.ForEachTie(relation, [this](const HangingSet& hanging) { Note(hanging); });
  }

  // Of all sets, also for objects that stand for themselves alone.
  bool CountUsers(Ticker& ticker) {
    for (std::size_t input = 0; input < model_.InputCount(); ++input) {
      const bool goesOn =
          model_.ForEachRootOf(input, ticker, SetLinks::MayTie,
                               [this](IFC::IfcEntity& entity) { links_.CountUsers(entity); });
      if (!goesOn) return false;
    }
    return true;
  }

  void Note(const HangingSet& hanging) {
    IFC::IfcEntity* const object = model_.InModel(hanging.as);
    if (!survivors_.Contain(object)) return;
    std::vector<HangingSet>& hangings = hangings_[object];
    if (hangings.empty()) objects_.push_back(object);
    hangings.push_back(hanging);
  }

  void Plan(IFC::IfcEntity& object) {
    std::map<WideString, OnObject> byName;
    for (const HangingSet& hanging : hangings_[&object]) {
      const WideString name = TextOf(*hanging.set, "Name");
      if (name.empty() || IsNameOfMapProperties(name)) continue;
      OnObject& known = byName[name];
      known.object = &object;
      if (known.hangings.empty()) {
        known.hangings.push_back(hanging);
      } else {
        AddLater(hanging, known);
      }
    }
    for (auto& [name, known] : byName) {
      if (known.hangings.size() > 1) AddToGroup(std::move(known));
    }
  }

  void AddLater(const HangingSet& hanging, OnObject& known) {
    // What one input says twice is its own affair.
    if (known.hangings.front().as == hanging.as) return;
    const bool isThere =
        std::any_of(known.hangings.begin(), known.hangings.end(),
                    [&hanging](const HangingSet& earlier) { return earlier.set == hanging.set; });
    if (isThere) {
      links_.Leave(hanging);
    } else {
      known.hangings.push_back(hanging);
    }
  }

  void AddToGroup(OnObject onObject) {
    std::vector<IFC::IfcEntity*> sets;
    for (const HangingSet& hanging : onObject.hangings) sets.push_back(hanging.set);
    const auto [found, isNew] = groupOf_.try_emplace(sets, groups_.size());
    if (isNew) groups_.push_back({std::move(sets), {}});
    groups_[found->second].objects.push_back(std::move(onObject));
  }

  // False: there is no number left.
  bool Join(const Group& group) {
    IFC::IfcEntity* target = group.sets.front();
    const std::vector<IFC::IfcEntity*> lacking = LackingInFirst(group);
    if (!lacking.empty() && links_.UsersOf(*target) > group.objects.size()) {
      target = CopyOfFirst(group);
      if (target == nullptr) return false;
    }
    for (IFC::IfcEntity* const member : lacking) {
      AppendReference(*target, MembersOfSet(*target), *member, model_.Container().Pool());
    }
    for (const OnObject& onObject : group.objects) {
      for (const HangingSet& hanging : onObject.hangings) {
        if (hanging.set != target) links_.Leave(hanging);
      }
    }
    for (IFC::IfcEntity* const set : group.sets) {
      const bool isLeft = set != target && links_.UsersOf(*set) == 0 && model_.Contains(*set);
      if (isLeft) model_.GiveWay(*set, *target);
    }
    mended_.propertySets += (group.sets.size() - 1) * group.objects.size();
    return true;
  }

  IFC::IfcEntity* CopyOfFirst(const Group& group) {
    IFC::IfcEntity* const copy = links_.Copy(*group.sets.front());
    std::vector<IFC::IfcEntity*> objects;
    for (const OnObject& onObject : group.objects) objects.push_back(onObject.object);
    return copy != nullptr && links_.Link(*copy, objects) ? copy : nullptr;
  }

  // The members of later sets of whose name the first has none. Those that differ from the first's
  // are listed.
  std::vector<IFC::IfcEntity*> LackingInFirst(const Group& group) {
    const IFC::IfcEntity& first = *group.sets.front();
    const char* const attribute = MembersOfSet(first);
    std::map<WideString, IFC::IfcEntity*> byName;
    std::vector<IFC::IfcEntity*> lacking;
    for (const IFC::IfcEntity* const set : group.sets) {
      if (attribute == nullptr || FindFacts(*set) != FindFacts(first)) {
        CompareWhole(group, *set);
        continue;
      }
      const EntityList* const members = ReferencesOf(*set, attribute);
      for (std::size_t i = 0; members != nullptr && i < members->size(); ++i) {
        IFC::IfcEntity* const member = (*members)[i];
        const auto [known, isNew] = byName.try_emplace(TextOf(*member, "Name"), member);
        if (set == &first) continue;
        if (isNew) {
          lacking.push_back(member);
        } else if (!SameByValue(known->second, member, 0.0)) {
          List(group, TextOf(first, "Name") + u"." + known->first);
        }
      }
    }
    return lacking;
  }

  // Two that have no members of one kind are the same or not.
  void CompareWhole(const Group& group, const IFC::IfcEntity& later) {
    constexpr std::array<std::string_view, 2> kOfRoot = {"GlobalId", "OwnerHistory"};
    const IFC::IfcEntity& first = *group.sets.front();
    if (!SameByValue(&first, &later, 0.0, kOfRoot)) List(group, TextOf(first, "Name"));
  }

  void List(const Group& group, const WideString& what) {
    for (const OnObject& onObject : group.objects) {
      mended_.differences.push_back(what + u" of " + DisplayName(*onObject.object));
    }
  }

  FederatedModel& model_;
  const Survivors& survivors_;
  SetLinks links_;
  MendedRelations& mended_;
  std::vector<IFC::IfcEntity*> objects_;  // in the order of the inputs
  std::unordered_map<const IFC::IfcEntity*, std::vector<HangingSet>> hangings_;
  std::vector<Group> groups_;
  std::map<std::vector<IFC::IfcEntity*>, std::size_t> groupOf_;  // by address, to find only
};

}  // namespace

bool JoinPropertySets(FederatedModel& model, const Survivors& survivors, RelationEdits& edits,
                      MendedRelations& mended, Ticker& ticker) {
  return SetJoiner(model, survivors, edits, mended).Run(ticker);
}

}  // namespace corvel
