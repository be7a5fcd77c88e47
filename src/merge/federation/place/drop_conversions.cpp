#include "merge/federation/place/drop_conversions.h"

#include <unordered_set>

#include "merge/federation/attribute_values.h"

namespace corvel {

namespace {

using IFC::IfcEntity;

class Dropping {
 public:
  Dropping(FederatedModel& model, std::size_t& dropped) : model_(model), dropped_(dropped) {}

  bool Run(const std::vector<IfcEntity*>& leftovers, Ticker& ticker) {
    for (IfcEntity* const record : leftovers) {
      if (!model_.Contains(*record)) continue;
      Note(*record);
      Drop(*record);
    }
    if (dropped_ == 0) return true;
    if (!Look(ticker)) return false;
    for (IfcEntity* const relation : relations_) Drop(*relation);
    for (IfcEntity* const text : texts_) {
      if (!needed_.contains(SystemOf(*text))) Drop(*text);
    }
    for (IfcEntity* const candidate : candidates_) {
      if (!needed_.contains(candidate)) Drop(*candidate);
    }
    return true;
  }

 private:
  IfcEntity* SystemOf(const IfcEntity& text) const {
    return model_.InModel(ReferenceOf(text, "CoordinateReferenceSystem"));
  }

  // What may go with it.
  void Note(const IfcEntity& record) {
    if (IfcEntity* const system = model_.InModel(ReferenceOf(record, "TargetCRS"))) {
      candidates_.insert(system);
    }
    const EntityList* const properties = ReferencesOf(record, "HasProperties");
    if (properties == nullptr) return;
    sets_.insert(&record);
    for (IfcEntity* const property : *properties) {
      if (IfcEntity* const there = model_.InModel(property)) candidates_.insert(there);
    }
  }

  void Drop(IfcEntity& entity) {
    model_.Delete(entity);
    ++dropped_;
  }

  bool Look(Ticker& ticker) {
    for (const auto& [number, entity] : model_.Container().entities) {
      if (entity->marker != IFC::kDeleted) Look(*entity);
      if (!ticker.Advance()) return false;
    }
    return true;
  }

  void Look(IfcEntity& entity) {
    if (isOperation_.IsTrueOf(entity)) {
      Need(ReferenceOf(entity, "TargetCRS"));
      Need(ReferenceOf(entity, "SourceCRS"));
    } else if (isText_.IsTrueOf(entity)) {
      if (candidates_.contains(SystemOf(entity))) texts_.push_back(&entity);
    } else if (sets_.empty()) {
      return;
    } else if (isRelation_.IsTrueOf(entity)) {
      const IfcEntity* const set = ReferenceOf(entity, "RelatingPropertyDefinition");
      if (sets_.contains(set)) relations_.push_back(&entity);
    } else if (isProperty_.IsTrueOf(entity) || isSet_.IsTrueOf(entity)) {
      const EntityList* const members = ReferencesOf(entity, "HasProperties");
      if (members == nullptr) return;
      for (IfcEntity* const member : *members) Need(member);
    }
  }

  void Need(IfcEntity* entity) {
    IfcEntity* const there = model_.InModel(entity);
    if (candidates_.contains(there)) needed_.insert(there);
  }

  FederatedModel& model_;
  std::size_t& dropped_;
  ClassQuestion isOperation_{"IfcCoordinateOperation"};
  ClassQuestion isText_{"IfcWellKnownText"};
  ClassQuestion isRelation_{"IfcRelDefinesByProperties"};
  ClassQuestion isSet_{"IfcPropertySet"};
  ClassQuestion isProperty_{"IfcComplexProperty"};
  std::unordered_set<const IfcEntity*> sets_;    // that went
  std::unordered_set<IfcEntity*> candidates_;    // systems and properties
  std::unordered_set<const IfcEntity*> needed_;  // by others
  std::vector<IfcEntity*> relations_;
  std::vector<IfcEntity*> texts_;  // of candidates
};

}  // namespace

bool DropConversions(FederatedModel& model, const std::vector<IFC::IfcEntity*>& leftovers,
                     Ticker& ticker, std::size_t& dropped) {
  return Dropping(model, dropped).Run(leftovers, ticker);
}

}  // namespace corvel
