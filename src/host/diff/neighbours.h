// What tells several objects of one GUID apart: what they are related to.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "host/diff/compared_model.h"
#include "merge/federation/equality/digest.h"

namespace corvel::host::diff {

class Neighbours {
 public:
  using Identities = std::vector<std::optional<Digest>>;

  // Of those for which `isAsked` is true, by index among the objects of the model.
  Neighbours(const ComparedModel& model, const std::vector<bool>& isAsked);

  // By index; 0 for what is not asked for, and for what has no neighbours. Two have the same key
  // when they are related to objects of the same identities in the same directions, and so are
  // those of these that are asked for, as many levels deep. What has no identity doesn't count.
  std::vector<std::uint64_t> Keys(const Identities& identities, int levels) const;
  // Of the object at `index`, in no order.
  std::span<const std::uint32_t> Of(std::size_t index) const {
    return {neighbours_.data() + first_[index], first_[index + 1] - first_[index]};
  }

 private:
  // As a wall depends on the storey that it is contained in.
  struct Dependence {
    std::uint32_t dependent = 0;  // indices
    std::uint32_t on = 0;
  };

  void Add(std::size_t dependent, const IFC::IfcEntity* on);
  void Collect(std::size_t objects);

  const std::vector<bool>& isAsked_;
  std::vector<Dependence> dependences_;
  std::vector<std::uint32_t> first_;  // by index, and one more
  std::vector<std::uint32_t> neighbours_;
};

}  // namespace corvel::host::diff
