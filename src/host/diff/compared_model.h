// One of the two models that are compared: what in it has an identity, and what belongs to that.
//
// Objects with an identity are those with a GUID that are neither a relation nor a set of
// properties, and the contexts of representations. A relation is a fact about what it relates (its
// Related side, or its Relating side where only that has objects), a set of properties one about
// what it defines. Where these belong to nothing they have an identity of their own.
//
// Takes the visit stamps of the objects for numbers of its own, `visited` for those that have
// something to describe them, and the count of gone parents and the memo of walks for the partner
// that a walk over both models has found: no other walk may use them meanwhile.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/diff/class_words.h"
#include "host/diff/measure_scales.h"
#include "host/diff/shortcuts.h"
#include "merge/document.h"
#include "platform/prefetch.h"

namespace corvel::host::diff {

// Both ends of an object will be read soon. Null is none.
inline void FetchRecord(const IFC::IfcEntity* record) {
  constexpr std::ptrdiff_t kLine = 64;
  platform::PrefetchToRead(record);
  if (record != nullptr) platform::PrefetchToRead(reinterpret_cast<const char*>(record) - kLine);
}

class ComparedModel {
 public:
  // `document` has been read, and lives as long as this; so does `words`.
  ComparedModel(const IfcDocument& document, ClassWords& words,
                Shortcuts shortcuts = Shortcuts::kTaken);

  // With an identity, by ascending number.
  const std::vector<IFC::IfcEntity*>& Objects() const { return objects_; }
  const ClassWord& WordOf(std::size_t index) const { return *facets_[index].word; }
  // Empty for what has none.
  const char* GuidOf(std::size_t index) const { return facets_[index].guid; }
  static bool HasIdentity(const IFC::IfcEntity& entity) {
    return !entity.inlineValue && entity.visitStamp != 0 && entity.visitStamp < kFirstValue;
  }
  // Index among Objects(); only where HasIdentity.
  static std::size_t IndexOf(const IFC::IfcEntity& entity) { return entity.visitStamp - 1; }
  // A record without an identity. What stands within a record is none.
  static bool IsValue(const IFC::IfcEntity& entity) {
    return !entity.inlineValue && !HasIdentity(entity);
  }
  // Of a value, from 0 in the order in which they are first asked for. The relations of all objects
  // are the first ones.
  std::size_t NumberOf(const IFC::IfcEntity& value) const {
    auto& stamp = const_cast<IFC::IfcEntity&>(value).visitStamp;
    if (stamp == 0) stamp = kFirstValue + numbered_++;
    return stamp - kFirstValue;
  }
  // Of a value: what it has been held against in the other model.
  struct Partner {
    std::uint32_t number = 0;  // in the file; 0: nothing
    bool isDoubted = false;    // whether it says the same
  };
  static Partner PartnerOf(const IFC::IfcEntity& value) {
    return {value.goneParents, value.walkResult != 0};
  }
  static void SetPartner(const IFC::IfcEntity& value, Partner partner) {
    const_cast<IFC::IfcEntity&>(value).goneParents = partner.number;
    const_cast<IFC::IfcEntity&>(value).walkResult = partner.isDoubted ? 1 : 0;
  }
  // Without relations, in the order of numbers: those in front of the object at `index` as far as
  // the one before it, which is none for what is no object or context, and those behind all of
  // these.
  using Values = std::span<const IFC::IfcEntity* const>;
  Values ValuesInFrontOf(std::size_t index) const {
    if (index >= firstBehind_.size()) return {};
    const std::size_t first = index == 0 ? 0 : firstBehind_[index - 1];
    return Values(values_).subspan(first, firstBehind_[index] - first);
  }
  Values ValuesBehindAll() const {
    return Values(values_).subspan(firstBehind_.empty() ? 0 : firstBehind_.back());
  }

  std::size_t RelationCount() const { return holding_.size(); }
  // The attribute that HoldingAttribute gives leads to objects with an identity alone.
  bool HoldsObjectsAlone(const IFC::IfcEntity& relation) const {
    return holdsObjectsAlone_[NumberOf(relation)];
  }
  // Relations that say something about the object at `index`, by ascending number.
  std::span<IFC::IfcEntity* const> RelationsOf(std::size_t index) const;
  // Objects that only describe `entity` (see PointingClasses).
  struct Description {
    const IFC::IfcEntity* described = nullptr;
    IFC::IfcEntity* by = nullptr;
  };
  std::span<const Description> DescriptionsOf(const IFC::IfcEntity& entity) const;
  // The attribute of a relation that names those it is a fact about. Null without any.
  const AttributeWord* HoldingAttribute(const IFC::IfcEntity& relation) const {
    const bool isFact = IsValue(relation) && NumberOf(relation) < holding_.size();
    return isFact ? holding_[NumberOf(relation)] : nullptr;
  }

  const MeasureScales& Scales() const { return scales_; }
  const IfcDocument& Document() const { return document_; }
  ClassWords& Words() const { return words_; }
  // Objects without relations, sets of properties and contexts.
  std::size_t RootedCount() const { return rootedCount_; }

 private:
  static constexpr std::uint32_t kFirstValue = 0x80000000u;

  void Sort();
  void Sort(IFC::IfcEntity& entity);
  void AddObject(IFC::IfcEntity& object, const ClassWord& word);
  void Identify(std::size_t first);
  void Describe(IFC::IfcEntity& entity, const ClassWord& word);
  void SortDescriptions();
  void SetApart(Shortcuts shortcuts);
  void MarkProperties(IFC::IfcEntity& referred, std::vector<IFC::IfcEntity*>& used);
  bool Relate(IFC::IfcEntity& relation, std::vector<IFC::IfcEntity*>& used);
  void RelateAnew();
  void AddFacts(IFC::IfcEntity& relation, const AttributeWord& holding);
  void SortFacts();
  const AttributeWord* FindHolding(const IFC::IfcEntity& relation) const;
  bool RefersToIdentity(const IFC::IfcEntity& relation, const AttributeWord& attribute) const;

  // What is asked about all objects, so that these need not be looked at.
  struct Facet {
    const ClassWord* word = nullptr;
    const char* guid = kEmptyNarrow;
  };

  // That a relation, by its number, says something about an object, by its index.
  struct Fact {
    std::uint32_t about = 0;
    std::uint32_t relation = 0;
  };

  const IfcDocument& document_;
  ClassWords& words_;
  MeasureScales scales_;
  std::vector<IFC::IfcEntity*> objects_;
  std::vector<Facet> facets_;  // by index
  std::vector<IFC::IfcEntity*> relations_;
  std::vector<IFC::IfcEntity*> properties_;
  std::vector<const IFC::IfcEntity*> values_;
  std::vector<std::uint32_t> firstBehind_;  // by index of an object: among values_
  // While all is sorted.
  std::vector<const IFC::IfcEntity*> typesWithSets_;
  std::vector<Fact> facts_;
  std::vector<std::uint32_t> firstRelation_;  // by index, and one more
  std::vector<IFC::IfcEntity*> relationsOf_;
  std::vector<Description> descriptions_;  // by what is described
  mutable std::uint32_t numbered_ = 0;
  std::vector<const AttributeWord*> holding_;  // by number of the relation
  std::vector<bool> holdsObjectsAlone_;        // likewise
  std::size_t rootedCount_ = 0;
};

}  // namespace corvel::host::diff
