// How many relations objects stand in.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

#include "core/main_container.h"
#include "host/check/findings.h"
#include "merge/federation/relations/inverse_bounds.h"

namespace corvel::host {

// Takes the objects of a model one after the other.
class RelationCheck {
 public:
  // What the check has to know of a class.
  struct ClassPlan {
    std::span<const BoundsOfRelations::Bound> bounds{};  // of a relation
    std::vector<std::uint8_t> needs{};                   // indexes of bounds that want a relation
    bool IsEmpty() const { return bounds.empty() && needs.empty(); }
  };

  // Nothing is bounded without a release.
  explicit RelationCheck(std::optional<SchemaNamespace> release);

  // `entity` is any object of the class.
  ClassPlan PlanOf(const IFC::IfcEntity& entity);
  void Look(const IFC::IfcEntity& entity, const ClassPlan& plan);
  // Behind the last object.
  void Finish(const IFC::MainContainer& container, Findings& findings);

 private:
  // The number of an object, and in the last byte the index of a bound.
  using Entry = std::uint64_t;
  static constexpr unsigned kIndexBits = 8;
  static Entry EntryOf(const IFC::IfcEntity& entity, std::size_t index) {
    return Entry{entity.marker} << kIndexBits | index;
  }
  static void Tell(RuleId rule, Entry entry, std::uint64_t count,
                   const IFC::MainContainer& container, Findings& findings);
  void Enter(const IFC::IfcEntity* object, const BoundsOfRelations::Bound& bound);

  std::optional<SchemaNamespace> release_;
  BoundsOfRelations bounds_;
  std::deque<ClassQuestion> owners_;  // they cannot move
  std::vector<Entry> places_;         // one for each relation of an object that is bounded
  std::vector<Entry> needs_;
};

}  // namespace corvel::host
