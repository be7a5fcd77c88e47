#include "merge/federation/unite_relations.h"

#include <cstring>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/equality/attribute_digest.h"
#include "merge/federation/equality/value_digests.h"
#include "merge/federation/relations/related_list.h"
#include "schema/attributes.h"

namespace corvel {

namespace {

class RelationUniter {
 public:
  RelationUniter(FederatedModel& model, std::size_t& united)
      : model_(model), values_(model), united_(united) {
    shared_.insert(model.Project());
    model.ForEachThatGaveWay([this](const IFC::IfcEntity& /*gone*/,
                                    const IFC::IfcEntity& survivor) { shared_.insert(&survivor); });
  }

  bool Run(Ticker& ticker) {
    const auto isRelation = [](const ClassFacts* facts) {
      return IsOrIsBelow(facts, "IfcRelationship");
    };
    for (std::size_t input = 0; input < model_.InputCount(); ++input) {
      own_.clear();
      const bool goesOn = model_.ForEachRootOf(input, ticker, isRelation,
                                               [this](IFC::IfcEntity& entity) { Take(entity); });
      if (!goesOn) return false;
      if (input + 1 == model_.InputCount()) return true;
      for (const auto& [digest, relation] : own_) earlier_[digest].push_back(relation);
    }
    return true;
  }

 private:
  // What a class of relations refers to.
  struct Ends {
    const AttributeFacts* related = nullptr;    // see ListOfRelated
    std::vector<const AttributeFacts*> others;  // all others
  };

  static Ends EndsOf(const ClassFacts* facts) {
    Ends ends;
    ends.related = ListOfRelated(facts);
    for (std::size_t i = 0; facts != nullptr && i < facts->AttributeCount(); ++i) {
      const AttributeFacts& attribute = facts->Attribute(i);
      if (&attribute != ends.related && Refers(attribute.kind)) ends.others.push_back(&attribute);
    }
    return ends;
  }

  void Take(IFC::IfcEntity& relation) {
    if (relation.carries) return;
    const Ends& ends = ends_.Of(relation, EndsOf);
    if (!MayBeShared(relation, ends)) return;
    const AttributeFacts* const related = ends.related;
    const Digest digest = DigestOf(relation, related);
    const auto earlier = earlier_.find(digest);
    if (earlier == earlier_.end()) {
      own_.emplace_back(digest, &relation);
    } else {
      Unite(relation, SurvivorAmong(earlier->second, relation), related);
    }
  }

  // Whatever else it refers to is in more than one input, if it has a GUID.
  bool MayBeShared(const IFC::IfcEntity& relation, const Ends& ends) {
    for (const AttributeFacts* const facts : ends.others) {
      bool isOfOne = false;
      ConstAttribute(relation, *facts).ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* child) {
        if (child == nullptr || child->inlineValue || !StandsForItself(*child)) return;
        isOfOne = isOfOne || !shared_.contains(model_.InModel(child));
      });
      if (isOfOne) return false;
    }
    return true;
  }

  Digest DigestOf(const IFC::IfcEntity& relation, const AttributeFacts* related) {
    DigestMaker maker;
    maker.Add(FindFacts(relation));
    AttributeDigest attributes(maker, [this](IFC::IfcEntity* child) { return values_.Of(child); });
    for (const ConstAttribute attribute : AttributesOf(relation)) {
      const bool counts = attribute.Name() != "GlobalId" && attribute.Name() != "OwnerHistory" &&
                          (related == nullptr || attribute.Name() != related->name);
      if (counts) attributes.Add(attribute);
    }
    return maker.Made();
  }

  // The one with the same GUID, if there is one.
  static IFC::IfcEntity& SurvivorAmong(const std::vector<IFC::IfcEntity*>& earlier,
                                       IFC::IfcEntity& relation) {
    const char* const guid = EntityCast<IFC::VirtualIfcRoot>(&relation)->getGlobalId();
    for (IFC::IfcEntity* const other : earlier) {
      if (std::strcmp(EntityCast<IFC::VirtualIfcRoot>(other)->getGlobalId(), guid) == 0) {
        return *other;
      }
    }
    return *earlier.front();
  }

  void Unite(IFC::IfcEntity& relation, IFC::IfcEntity& survivor, const AttributeFacts* related) {
    if (related != nullptr) Append(relation, survivor, related->name);
    model_.GiveWay(relation, survivor);
    ++united_;
  }

  void Append(const IFC::IfcEntity& relation, IFC::IfcEntity& survivor, std::string_view related) {
    const auto [found, isNew] = members_.try_emplace(&survivor);
    std::unordered_set<const IFC::IfcEntity*>& members = found->second;
    const EntityList* const there = isNew ? ReferencesOf(survivor, related) : nullptr;
    for (std::size_t i = 0; there != nullptr && i < there->size(); ++i) {
      members.insert(model_.InModel((*there)[i]));
    }
    const EntityList* const coming = ReferencesOf(relation, related);
    for (std::size_t i = 0; coming != nullptr && i < coming->size(); ++i) {
      IFC::IfcEntity* const member = model_.InModel((*coming)[i]);
      if (member == nullptr || !members.insert(member).second) continue;
      AppendReference(survivor, related, *member, model_.Container().Pool());
    }
  }

  FederatedModel& model_;
  ValueDigests values_;
  std::unordered_set<const IFC::IfcEntity*> shared_;  // the project, and what others gave way to
  PerClass<Ends> ends_;
  std::unordered_map<Digest, std::vector<IFC::IfcEntity*>, HashOfDigest> earlier_;
  std::vector<std::pair<Digest, IFC::IfcEntity*>> own_;  // of the input whose turn it is
  // By relation, as they stand in the model; filled when a relation gets its first ones.
  std::unordered_map<const IFC::IfcEntity*, std::unordered_set<const IFC::IfcEntity*>> members_;
  std::size_t& united_;
};

}  // namespace

bool UniteRelations(FederatedModel& model, Ticker& ticker, std::size_t& united) {
  return RelationUniter(model, united).Run(ticker);
}

}  // namespace corvel
