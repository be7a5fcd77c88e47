// One of the two models that are compared: what in it has an identity, and what belongs to that.
//
// Objects with an identity are those with a GUID that are neither a relation nor a set of
// properties, and the contexts of representations. A relation is a fact about what it relates (its
// Related side, or its Relating side where only that has objects), a set of properties one about
// what it defines. Where these belong to nothing they have an identity of their own.
//
// Takes the visit stamps of the objects for numbers of its own, `visited` for those that have
// something to describe them, and the count of gone parents for the partner that a walk over both
// models has found: no other walk may use them meanwhile.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/diff/class_words.h"
#include "host/diff/measure_scales.h"
#include "merge/document.h"

namespace corvel::host::diff {

class ComparedModel {
 public:
  // `document` has been read, and lives as long as this; so does `words`.
  ComparedModel(const IfcDocument& document, ClassWords& words);

  // With an identity, by ascending number.
  const std::vector<IFC::IfcEntity*>& Objects() const { return objects_; }
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
  // Of a value: the number in the file of what it says the same as in the other model; 0 as long as
  // nobody knows of such.
  static std::uint32_t& PartnerOf(const IFC::IfcEntity& value) {
    return const_cast<IFC::IfcEntity&>(value).goneParents;
  }

  std::size_t RelationCount() const { return holding_.size(); }
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
  void SetApart();
  void Relate();
  void Describe(IFC::IfcEntity& entity, const ClassWord& word);
  const AttributeWord* FindHolding(const IFC::IfcEntity& relation) const;
  bool RefersToIdentity(const IFC::IfcEntity& relation, const AttributeWord& attribute) const;
  void MarkProperties(const IFC::IfcEntity& holder, const ClassWord& word);

  const IfcDocument& document_;
  ClassWords& words_;
  MeasureScales scales_;
  std::vector<IFC::IfcEntity*> objects_;
  std::vector<IFC::IfcEntity*> relations_;
  std::vector<IFC::IfcEntity*> properties_;
  std::vector<IFC::IfcEntity*> used_;  // what relations and types refer to, while these are sorted
  std::vector<std::uint32_t> firstRelation_;  // by index, and one more
  std::vector<IFC::IfcEntity*> relationsOf_;
  std::vector<Description> descriptions_;  // by what is described
  mutable std::uint32_t numbered_ = 0;
  std::vector<const AttributeWord*> holding_;  // by number of the relation
  std::size_t rootedCount_ = 0;
};

}  // namespace corvel::host::diff
