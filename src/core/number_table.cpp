#include "core/number_table.h"

#include <algorithm>
#include <utility>

namespace corvel {

// The numbers of one run of kLeafSize, by their low bits.
class NumberTable::Leaf {
 public:
  IFC::IfcEntity* Find(std::uint32_t low) const {
    if (dense_) return (*dense_)[low];
    const auto found = Lower(low);
    return found != few_.end() && found->number == low ? found->entity : nullptr;
  }

  // True when the number is new.
  bool Set(std::uint32_t low, IFC::IfcEntity* entity) {
    if (dense_) return std::exchange((*dense_)[low], entity) == nullptr;
    const auto at = few_.begin() + (Lower(low) - few_.cbegin());
    if (at != few_.end() && at->number == low) {
      at->entity = entity;
      return false;
    }
    if (few_.size() < kFew) {
      few_.insert(at, {low, entity});
    } else {
      MakeDense();
      (*dense_)[low] = entity;
    }
    return true;
  }

  bool Remove(std::uint32_t low) {
    if (dense_) return std::exchange((*dense_)[low], nullptr) != nullptr;
    const auto at = few_.begin() + (Lower(low) - few_.cbegin());
    if (at == few_.end() || at->number != low) return false;
    few_.erase(at);
    return true;
  }

  Entry AtOrAfter(std::uint32_t low) const {
    if (!dense_) {
      const auto found = Lower(low);
      return found == few_.end() ? Entry{} : *found;
    }
    for (; low < kLeafSize; ++low) {
      if ((*dense_)[low] != nullptr) return {low, (*dense_)[low]};
    }
    return {};
  }

 private:
  static constexpr std::size_t kFew = 32;
  using Dense = std::array<IFC::IfcEntity*, kLeafSize>;

  std::vector<Entry>::const_iterator Lower(std::uint32_t low) const {
    return std::lower_bound(
        few_.begin(), few_.end(), low,
        [](const Entry& entry, std::uint32_t key) { return entry.number < key; });
  }
  void MakeDense() {
    dense_ = std::make_unique<Dense>();
    for (const Entry& entry : few_) (*dense_)[entry.number] = entry.entity;
    few_ = {};
  }

  std::vector<Entry> few_;  // ascending; used until there are more than kFew
  std::unique_ptr<Dense> dense_;
};

NumberTable::NumberTable() = default;
NumberTable::~NumberTable() = default;

const NumberTable::Leaf* NumberTable::LeafOf(std::uint32_t number) const {
  const std::size_t branch = number >> (kLeafBits + kBranchBits);
  if (branch >= branches_.size() || branches_[branch] == nullptr) return nullptr;
  return (*branches_[branch])[(number >> kLeafBits) & (kBranchSize - 1)].get();
}

IFC::IfcEntity* NumberTable::Find(std::uint32_t number) const {
  const Leaf* const leaf = LeafOf(number);
  return leaf == nullptr ? nullptr : leaf->Find(number & (kLeafSize - 1));
}

void NumberTable::Set(std::uint32_t number, IFC::IfcEntity* entity) {
  const std::size_t branch = number >> (kLeafBits + kBranchBits);
  if (branch >= branches_.size()) branches_.resize(branch + 1);
  if (branches_[branch] == nullptr) branches_[branch] = std::make_unique<Branch>();
  std::unique_ptr<Leaf>& leaf = (*branches_[branch])[(number >> kLeafBits) & (kBranchSize - 1)];
  if (leaf == nullptr) leaf = std::make_unique<Leaf>();
  if (leaf->Set(number & (kLeafSize - 1), entity)) ++size_;
}

bool NumberTable::Remove(std::uint32_t number) {
  auto* const leaf = const_cast<Leaf*>(LeafOf(number));
  if (leaf == nullptr || !leaf->Remove(number & (kLeafSize - 1))) return false;
  --size_;
  return true;
}

void NumberTable::Clear() {
  branches_.clear();
  size_ = 0;
}

NumberTable::Entry NumberTable::AtOrAfter(std::uint32_t number) const {
  std::uint32_t low = number & (kLeafSize - 1);
  std::size_t leaf = (number >> kLeafBits) & (kBranchSize - 1);
  for (std::size_t branch = number >> (kLeafBits + kBranchBits); branch < branches_.size();
       ++branch, leaf = 0, low = 0) {
    if (branches_[branch] == nullptr) continue;
    for (; leaf < kBranchSize; ++leaf, low = 0) {
      const Leaf* const candidate = (*branches_[branch])[leaf].get();
      if (candidate == nullptr) continue;
      if (Entry found = candidate->AtOrAfter(low)) {
        found.number +=
            static_cast<std::uint32_t>((branch << (kLeafBits + kBranchBits)) + (leaf << kLeafBits));
        return found;
      }
    }
  }
  return {};
}

}  // namespace corvel
