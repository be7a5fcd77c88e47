// Which objects of one input are those of earlier ones.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

#include "merge/federation/equality/belongings.h"
#include "merge/federation/equality/object_content.h"
#include "merge/federation/federated_model.h"

namespace corvel {

// Pairs of a later and an earlier object with the same GUID. A pair may depend on others: a wall is
// the same if its openings are, and they are if the wall is. All are taken for equal until
// something contradicts, which then goes on to whatever depends on it; so circles end.
class EqualPairs {
 public:
  EqualPairs(const FederatedModel& model, ObjectContents& contents, const Belongings& belongings)
      : model_(model), contents_(contents), belongings_(belongings) {}

  // Each two objects once; the earlier ones of a later object in their order.
  void Add(IFC::IfcEntity& later, IFC::IfcEntity& earlier);
  // For each later object the first earlier one that it is equal to, in the order of Add.
  std::vector<std::pair<IFC::IfcEntity*, IFC::IfcEntity*>> Equal(double metresPerUnit);

 private:
  using Index = std::uint32_t;
  struct Pair {
    IFC::IfcEntity* later = nullptr;
    IFC::IfcEntity* earlier = nullptr;
    bool differs = false;
    std::vector<Index> dependents{};
  };
  // How often each object is linked to the earlier of a pair, and as what.
  using Places = std::map<std::pair<std::uint32_t, const IFC::IfcEntity*>, std::size_t>;

  std::vector<Belongings::Link> LinksOf(IFC::IfcEntity& object);
  bool LinksMayMatch(Index pair);
  bool TakePlace(const Belongings::Link& link, Index pair, Places& places);
  void Contradict(std::vector<Index> differing);

  const FederatedModel& model_;
  ObjectContents& contents_;
  const Belongings& belongings_;
  std::vector<Pair> pairs_;
  std::unordered_map<const IFC::IfcEntity*, std::vector<Index>> ofLater_;
};

}  // namespace corvel
