#include "core/number_table.h"

#include <algorithm>

namespace corvel {

namespace {

template <class List>
auto Lower(List& few, std::size_t low) {
  return std::lower_bound(
      few.begin(), few.end(), low,
      [](const NumberTable::Entry& entry, std::size_t key) { return entry.number < key; });
}

}  // namespace

NumberTable::Leaf::~Leaf() {
  if (IsDense()) {
    delete &Slots();
  } else {
    delete List();
  }
}

IFC::IfcEntity* NumberTable::Leaf::FindAmongFew(std::size_t low) const {
  const Few* const few = List();
  if (few == nullptr) return nullptr;
  const auto found = Lower(*few, low);
  return found != few->end() && found->number == low ? found->entity : nullptr;
}

bool NumberTable::Leaf::RemoveAmongFew(std::size_t low) {
  Few* const few = List();
  if (few == nullptr) return false;
  const auto at = Lower(*few, low);
  if (at == few->end() || at->number != low) return false;
  few->erase(at);
  return true;
}

bool NumberTable::Leaf::SetAmongFew(std::size_t low, IFC::IfcEntity* entity) {
  if (List() == nullptr) word_ = reinterpret_cast<std::uintptr_t>(new Few) + kFewTag;
  Few& few = *List();
  const auto at = Lower(few, low);
  if (at != few.end() && at->number == low) {
    at->entity = entity;
    return false;
  }
  if (few.size() < kMostOfFew) {
    few.insert(at, {static_cast<std::uint32_t>(low), entity});
  } else {
    MakeDense();
    Slots()[low] = entity;
  }
  return true;
}

void NumberTable::Leaf::MakeDense() {
  auto slots = std::make_unique<Array>();
  for (const Entry& entry : *List()) (*slots)[entry.number] = entry.entity;
  delete List();
  word_ = reinterpret_cast<std::uintptr_t>(slots.release());
}

NumberTable::Entry NumberTable::Leaf::AtOrAfter(std::size_t low) const {
  if (!IsDense()) {
    const Few* const few = List();
    if (few == nullptr) return {};
    const auto found = Lower(*few, low);
    return found == few->end() ? Entry{} : *found;
  }
  for (; low < kLeafSize; ++low) {
    if (Slots()[low] != nullptr) return {static_cast<std::uint32_t>(low), Slots()[low]};
  }
  return {};
}

NumberTable::NumberTable() = default;
NumberTable::~NumberTable() = default;

IFC::IfcEntity* NumberTable::FindAmongFew(std::uint32_t number) const {
  const Leaf* const leaf = LeafOf(number);
  return leaf == nullptr ? nullptr : leaf->FindAmongFew(LowOf(number));
}

void NumberTable::SetAmongFew(std::uint32_t number, IFC::IfcEntity* entity) {
  const std::size_t branch = number >> (kLeafBits + kBranchBits);
  // At most 16,384 pointers, for the largest numbers.
  if (branch >= branches_.size()) branches_.resize(branch + 1);
  if (branches_[branch] == nullptr) branches_[branch] = std::make_unique<Branch>();
  if (LeafOf(number)->SetAmongFew(LowOf(number), entity)) ++size_;
}

bool NumberTable::Remove(std::uint32_t number) {
  Leaf* const leaf = LeafOf(number);
  if (leaf == nullptr) return false;
  if (leaf->IsDense()) {
    IFC::IfcEntity*& slot = leaf->Slots()[LowOf(number)];
    if (slot == nullptr) return false;
    slot = nullptr;
  } else if (!leaf->RemoveAmongFew(LowOf(number))) {
    return false;
  }
  --size_;
  // Numbers are given from 1 on; #0 is one that a file may have and that nobody gets.
  if (number != 0) smallestFree_ = std::min(smallestFree_, number);
  return true;
}

void NumberTable::Clear() {
  branches_.clear();
  size_ = 0;
  smallestFree_ = 1;
}

NumberTable::Entry NumberTable::AtOrAfter(std::uint32_t number) const {
  std::size_t low = LowOf(number);
  std::size_t leaf = (number >> kLeafBits) & (kBranchSize - 1);
  for (std::size_t branch = number >> (kLeafBits + kBranchBits); branch < branches_.size();
       ++branch, leaf = 0, low = 0) {
    if (branches_[branch] == nullptr) continue;
    for (; leaf < kBranchSize; ++leaf, low = 0) {
      if (Entry found = (*branches_[branch])[leaf].AtOrAfter(low)) {
        found.number +=
            static_cast<std::uint32_t>((branch << (kLeafBits + kBranchBits)) + (leaf << kLeafBits));
        return found;
      }
    }
  }
  return {};
}

void NumberTable::Iterator::Settle(Entry entry) {
  at_ = entry;
  if (!entry) return;
  const Leaf* const leaf = table_->LeafOf(entry.number);
  if (leaf == nullptr || !leaf->IsDense()) return;
  // `rest_` is 0 here, and stays 0 in a short list, whose entries are looked up one by one.
  slot_ = &leaf->Slots()[LowOf(entry.number)];
  rest_ = kLeafSize - 1 - LowOf(entry.number);
}

}  // namespace corvel
