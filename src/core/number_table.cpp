#include "core/number_table.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <type_traits>
#include <utility>

namespace corvel {

namespace {

constexpr std::size_t kMostOfLeaf = 128;  // 2 KiB at most, half of the array
constexpr std::size_t kMostOfBranch = 512;
// So many close together are the beginning of a dense run.
constexpr std::size_t kFewestOfRun = 8;
constexpr std::uint32_t kWidestOfRun = 4;  // numbers an entry

}  // namespace

struct NumberTable::Few {
  std::uint32_t owners;
  std::uint16_t size;
  std::uint16_t capacity;
  Entry entries[1];  // `capacity` of them

  Entry* begin() { return entries; }
  Entry* end() { return entries + size; }
  Entry* From(std::uint32_t low) {
    return std::lower_bound(begin(), end(), low, [](const Entry& entry, std::uint32_t key) {
      return entry.number < key;
    });
  }
  IFC::IfcEntity* Find(std::uint32_t low) {
    const Entry* const found = From(low);
    return found != end() && found->number == low ? found->entity : nullptr;
  }
  bool IsRun() const {
    return size >= kFewestOfRun &&
           entries[size - 1].number - entries[0].number < kWidestOfRun * size;
  }

  // `list` (null: an empty one) with room for `capacity` entries; the old one is gone.
  static Few* WithRoom(Few* list, std::size_t capacity) {
    auto* const larger =
        static_cast<Few*>(std::realloc(list, sizeof(Few) + (capacity - 1) * sizeof(Entry)));
    if (larger == nullptr) throw std::bad_alloc();
    if (list == nullptr) larger->owners = 1, larger->size = 0;
    larger->capacity = static_cast<std::uint16_t>(capacity);
    return larger;
  }
  static Few* CopyOf(const Few& list) {
    Few* const copy = WithRoom(nullptr, list.capacity);
    copy->size = list.size;
    std::copy(list.entries, list.entries + list.size, copy->entries);
    return copy;
  }
};

// --- Nodes and their owners ----------------------------------------------------------------------

namespace {

// Another owner for whatever `word` leads to.
template <class Array, class Word>
void AddOwner(Word word) {
  if (word.IsArray()) {
    ++word.template Array<Array>().owners;
  } else if (word.List() != nullptr) {
    ++word.List()->owners;
  }
}

}  // namespace

template <class Array>
void NumberTable::Release(Word word) {
  if (word.IsArray()) {
    auto& array = word.Array<Array>();
    if (--array.owners != 0) return;
    if constexpr (std::is_same_v<Array, Branch>) {
      for (const Word leaf : array.leaves) Release<Leaf>(leaf);
    }
    delete &array;
  } else if (word.List() != nullptr && --word.List()->owners == 0) {
    std::free(word.List());
  }
}

void NumberTable::ReleaseRoot(Root* root) {
  if (--root->owners != 0) return;
  for (const Word branch : root->branches) Release<Branch>(branch);
  delete root;
}

// What `word` leads to, copied first when it has other owners.
template <class Array>
NumberTable::Word& NumberTable::OwnWord(Word& word) {
  if (word.IsArray()) {
    auto& shared = word.Array<Array>();
    if (shared.owners == 1) return word;
    auto* const own = new Array(shared);
    own->owners = 1;
    if constexpr (std::is_same_v<Array, Branch>) {
      for (const Word leaf : own->leaves) AddOwner<Leaf>(leaf);
    }
    --shared.owners;
    word = Word(own);
    ++root_->moves;
  } else if (word.List() != nullptr && word.List()->owners != 1) {
    Few* const own = Few::CopyOf(*word.List());
    --word.List()->owners;
    word = Word::OfList(own);  // NOLINT(clang-analyzer-unix.Malloc): the word owns it
  }
  return word;
}

void NumberTable::OwnRoot() {
  auto* const own = new Root(*root_);
  own->owners = 1;
  for (const Word branch : own->branches) AddOwner<Branch>(branch);
  --root_->owners;
  root_ = own;
}

NumberTable::NumberTable() : root_(new Root) {}

NumberTable::NumberTable(const NumberTable& other)
    : root_(other.root_), smallestFree_(other.smallestFree_) {
  ++root_->owners;
}

NumberTable::~NumberTable() { ReleaseRoot(root_); }

void NumberTable::Clear() {
  auto* const empty = new Root;
  empty->moves = root_->moves + 1;
  ReleaseRoot(root_);
  root_ = empty;
  smallestFree_ = 1;
}

// --- Entries -------------------------------------------------------------------------------------

IFC::IfcEntity* NumberTable::FindAmongFew(std::uint32_t number) const {
  const std::size_t index = number >> kUpperBits;
  if (index >= root_->branches.size()) return nullptr;
  const Word branch = root_->branches[index];
  if (!branch.IsArray()) {
    Few* const few = branch.List();
    return few == nullptr ? nullptr : few->Find(number & ((1u << kUpperBits) - 1));
  }
  Few* const few = branch.Array<Branch>().leaves[LeafIndexOf(number)].List();
  return few == nullptr ? nullptr : few->Find(static_cast<std::uint32_t>(LowOf(number)));
}

void NumberTable::SetSlowly(std::uint32_t number, IFC::IfcEntity* entity) {
  const std::size_t index = number >> kUpperBits;
  // At most 16,384 words, for the largest numbers.
  if (index >= root_->branches.size()) root_->branches.resize(index + 1);
  Word& branch = OwnWord<Branch>(root_->branches[index]);
  if (InsertInBranch(branch, number & ((1u << kUpperBits) - 1), entity)) ++root_->size;
}

// True when `low` is new. `insert` puts an entry into the array that a list becomes.
template <class Array, class Insert>
bool NumberTable::InsertAmongFew(Word& word, std::uint32_t low, IFC::IfcEntity* entity,
                                 std::size_t most, Insert insert) {
  Few* few = word.List();
  std::size_t at = 0;
  if (few != nullptr) {
    Entry* const found = few->From(low);
    if (found != few->end() && found->number == low) {
      found->entity = entity;
      return false;
    }
    at = static_cast<std::size_t>(found - few->begin());
  }
  const std::size_t size = few == nullptr ? 0 : few->size;
  if (few == nullptr || size == few->capacity) {
    few = Few::WithRoom(few, size == 0 ? 1 : size * 2);
    word = Word::OfList(few);
  }
  std::copy_backward(few->begin() + at, few->end(), few->end() + 1);
  few->entries[at] = {low, entity};
  ++few->size;
  // NOLINTNEXTLINE(clang-analyzer-unix.Malloc): the word owns it
  if (few->size < most && !few->IsRun()) return true;
  auto array = std::make_unique<Array>();
  const Word dense(array.get());
  for (const Entry& entry : *few) insert(dense, entry);
  word = Word(array.release());
  std::free(few);
  return true;
}

bool NumberTable::InsertInLeaf(Word& leaf, std::uint32_t low, IFC::IfcEntity* entity) {
  if (leaf.IsArray()) {
    IFC::IfcEntity*& slot = leaf.Array<Leaf>().slots[low];
    return std::exchange(slot, entity) == nullptr;
  }
  return InsertAmongFew<Leaf>(leaf, low, entity, kMostOfLeaf, [](Word dense, const Entry& entry) {
    dense.Array<Leaf>().slots[entry.number] = entry.entity;
  });
}

bool NumberTable::InsertInBranch(Word& branch, std::uint32_t low, IFC::IfcEntity* entity) {
  const auto insert = [this](Word dense, std::uint32_t number, IFC::IfcEntity* value) {
    Word& leaf = OwnWord<Leaf>(dense.Array<Branch>().leaves[number >> kLeafBits]);
    return InsertInLeaf(leaf, static_cast<std::uint32_t>(LowOf(number)), value);
  };
  if (branch.IsArray()) return insert(branch, low, entity);
  return InsertAmongFew<Branch>(
      branch, low, entity, kMostOfBranch,
      [&](Word dense, const Entry& entry) { insert(dense, entry.number, entry.entity); });
}

bool NumberTable::Remove(std::uint32_t number) {
  if (!Contains(number)) return false;
  if (root_->owners != 1) OwnRoot();
  Word* word = &OwnWord<Branch>(root_->branches[number >> kUpperBits]);
  std::uint32_t low = number & ((1u << kUpperBits) - 1);
  if (word->IsArray()) {
    word = &OwnWord<Leaf>(word->Array<Branch>().leaves[LeafIndexOf(number)]);
    low = static_cast<std::uint32_t>(LowOf(number));
  }
  if (word->IsArray()) {
    word->Array<Leaf>().slots[low] = nullptr;
  } else {
    Few& few = *word->List();
    Entry* const at = few.From(low);
    std::copy(at + 1, few.end(), at);
    --few.size;
  }
  --root_->size;
  // Numbers are given from 1 on; #0 is one that a file may have and that nobody gets.
  if (number != 0) smallestFree_ = std::min(smallestFree_, number);
  return true;
}

// --- Walks ---------------------------------------------------------------------------------------

namespace {

// The first entry of a list that is not below `low`.
template <class List, class Entry>
Entry InListFrom(List* list, std::uint32_t low, Entry none) {
  if (list == nullptr) return none;
  const auto found = list->From(low);
  return found == list->end() ? none : *found;
}

}  // namespace

NumberTable::Entry NumberTable::InLeafFrom(Word leaf, std::uint32_t low) {
  if (!leaf.IsArray()) return InListFrom(leaf.List(), low, Entry{});
  const auto& slots = leaf.Array<Leaf>().slots;
  for (; low < kLeafSize; ++low) {
    if (slots[low] != nullptr) return {low, slots[low]};
  }
  return {};
}

NumberTable::Entry NumberTable::InBranchFrom(Word branch, std::uint32_t low) {
  if (!branch.IsArray()) return InListFrom(branch.List(), low, Entry{});
  const auto& leaves = branch.Array<Branch>().leaves;
  auto inLeaf = static_cast<std::uint32_t>(LowOf(low));
  for (std::uint32_t index = low >> kLeafBits; index < kBranchSize; ++index, inLeaf = 0) {
    if (Entry found = InLeafFrom(leaves[index], inLeaf)) {
      found.number += index << kLeafBits;
      return found;
    }
  }
  return {};
}

NumberTable::Entry NumberTable::AtOrAfter(std::uint32_t number) const {
  std::uint32_t low = number & ((1u << kUpperBits) - 1);
  for (std::size_t index = number >> kUpperBits; index < root_->branches.size(); ++index, low = 0) {
    if (Entry found = InBranchFrom(root_->branches[index], low)) {
      found.number += static_cast<std::uint32_t>(index << kUpperBits);
      return found;
    }
  }
  return {};
}

void NumberTable::Iterator::Settle(Entry entry) {
  at_ = entry;
  rest_ = 0;
  if (!entry) return;
  const Leaf* const leaf = table_->LeafOf(entry.number);
  if (leaf == nullptr) return;
  moves_ = table_->root_->moves;
  slot_ = &leaf->slots[LowOf(entry.number)];
  rest_ = kLeafSize - 1 - LowOf(entry.number);
}

}  // namespace corvel
