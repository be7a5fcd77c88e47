#include "host/diff/neighbours.h"

#include "schema/attributes.h"

namespace corvel::host::diff {

namespace {

enum class Direction : std::uint8_t { kUp = 1, kDown = 2 };

std::uint64_t KeyOf(const Digest& identity, std::uint64_t neighbours, Direction direction) {
  DigestMaker maker;
  maker.Add(identity);
  maker.Add(neighbours);
  maker.Add(std::uint64_t{static_cast<std::uint8_t>(direction)});
  return maker.Made().low;
}

}  // namespace

Neighbours::Neighbours(const ComparedModel& model, const std::vector<bool>& isAsked)
    : isAsked_(isAsked) {
  for (std::size_t i = 0; i < model.Objects().size(); ++i) {
    for (const IFC::IfcEntity* const relation : model.RelationsOf(i)) {
      const AttributeWord* const holding = model.HoldingAttribute(*relation);
      for (const AttributeWord& attribute : model.Words().Of(*relation)->attributes) {
        if (&attribute == holding || !(attribute.isRelated || attribute.isRelating)) continue;
        ConstAttribute(*relation, *attribute.facts)
            .ForEach<IFC::IfcEntity*>([&](const IFC::IfcEntity* on) { Add(i, on); });
      }
    }
  }
  Collect(model.Objects().size());
}

void Neighbours::Collect(std::size_t objects) {
  first_.assign(objects + 1, 0);
  for (const Dependence& one : dependences_) {
    ++first_[one.dependent + 1];
    ++first_[one.on + 1];
  }
  for (std::size_t i = 0; i < objects; ++i) first_[i + 1] += first_[i];
  neighbours_.resize(first_.back());
  std::vector<std::uint32_t> next(first_.begin(), first_.end() - 1);
  for (const Dependence& one : dependences_) {
    neighbours_[next[one.dependent]++] = one.on;
    neighbours_[next[one.on]++] = one.dependent;
  }
}

void Neighbours::Add(std::size_t dependent, const IFC::IfcEntity* on) {
  if (on == nullptr || !ComparedModel::HasIdentity(*on)) return;
  const std::size_t index = ComparedModel::IndexOf(*on);
  if (index == dependent || !(isAsked_[index] || isAsked_[dependent])) return;
  dependences_.push_back(
      {static_cast<std::uint32_t>(dependent), static_cast<std::uint32_t>(index)});
}

std::vector<std::uint64_t> Neighbours::Keys(const Identities& identities, int levels) const {
  std::vector<std::uint64_t> keys(identities.size());
  std::vector<std::uint64_t> sums;
  for (int level = 0; level < levels; ++level) {
    sums.assign(identities.size(), 0);
    const auto add = [&](std::uint32_t to, std::uint32_t neighbour, Direction direction) {
      if (!isAsked_[to] || !identities[neighbour]) return;
      sums[to] += KeyOf(*identities[neighbour], keys[neighbour], direction);
    };
    for (const Dependence& one : dependences_) {
      add(one.on, one.dependent, Direction::kDown);
      add(one.dependent, one.on, Direction::kUp);
    }
    keys = sums;
  }
  return keys;
}

}  // namespace corvel::host::diff
