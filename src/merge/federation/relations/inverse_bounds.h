// How many relations of a kind an object may have, and has to have, in each release.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "merge/federation/attribute_values.h"
#include "step/class_facts.h"
#include "step/factories.h"

namespace corvel {

// Objects of `owner` and its subtypes stand in the attribute of so many relations.
struct InverseBound {
  std::string_view owner;
  std::string_view relation;   // and its subtypes
  std::string_view attribute;  // a list of references, or one
  std::uint8_t least = 0;
  std::uint8_t most = 0;  // 0: any number
  std::uint16_t releases = 0;
  bool isInverse = true;  // false: a rule of the schema, or common sense, not an inverse attribute

  bool HoldsIn(SchemaNamespace release) const {
    return (releases >> static_cast<unsigned>(release) & 1u) != 0;
  }
};

std::span<const InverseBound> InverseBounds();

// The bounds of one release, found by the class of a relation.
class BoundsOfRelations {
 public:
  struct Bound {
    const InverseBound* facts = nullptr;
    const AttributeFacts* attribute = nullptr;  // of the class that was asked for
    std::size_t index = 0;                      // among all bounds
  };

  // Nothing: no release is known, and nothing is bounded.
  explicit BoundsOfRelations(std::optional<SchemaNamespace> release);

  // Empty for what is no relation. Good as long as this.
  std::span<const Bound> Of(const IFC::IfcEntity& relation) {
    return known_.Of(relation, [this](const ClassFacts* facts) { return BoundsOf(facts); });
  }
  // By the facts of a class, null for one of no release; each call looks anew.
  std::vector<Bound> BoundsOf(const ClassFacts* facts) const;
  // Whether the bound is for objects of the class of `owner`.
  bool Binds(const Bound& bound, const IFC::IfcEntity& owner) {
    return owners_[bound.index].IsTrueOf(owner);
  }

 private:
  std::optional<SchemaNamespace> release_;
  std::deque<ClassQuestion> owners_;  // one for each bound
  PerClass<std::vector<Bound>> known_;
};

}  // namespace corvel
