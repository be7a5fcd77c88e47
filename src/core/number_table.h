// From #numbers to entities, in order.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <vector>

namespace IFC {
class IfcEntity;
}

namespace corvel {

// An ordered map from 32-bit numbers to entities. Models number densely, so a leaf of 512 numbers
// is a plain array (8 bytes an entity, constant time). Where numbers have gaps a sorted list holds
// them, for the leaf or for 512 leaves at once, until it is better off as an array: numbers
// anywhere up to 4,294,967,295 cost 16 to 32 bytes an entity.
//
// A copy shares all arrays and lists with its original, and each of the two gets one of its own
// where it changes.
class NumberTable {
 public:
  struct Entry {
    std::uint32_t number = 0;
    IFC::IfcEntity* entity = nullptr;  // null: the end of a walk
    explicit operator bool() const { return entity != nullptr; }
  };
  class Iterator;

  NumberTable();
  ~NumberTable();
  NumberTable(const NumberTable& other);
  NumberTable& operator=(const NumberTable&) = delete;

  // Null when the number is not in use.
  IFC::IfcEntity* Find(std::uint32_t number) const {
    const Branch* const branch = BranchOf(number);
    if (branch == nullptr) return FindAmongFew(number);
    const Word leaf = branch->leaves[LeafIndexOf(number)];
    if (!leaf.IsArray()) return FindAmongFew(number);
    return leaf.Array<Leaf>().slots[LowOf(number)];
  }
  bool Contains(std::uint32_t number) const { return Find(number) != nullptr; }
  // Sets or replaces; `entity` is not null.
  void Set(std::uint32_t number, IFC::IfcEntity* entity) {
    if (root_->owners != 1) OwnRoot();
    Leaf* const leaf = OwnLeafOf(number);
    if (leaf == nullptr) return SetSlowly(number, entity);
    IFC::IfcEntity*& slot = leaf->slots[LowOf(number)];
    if (slot == nullptr) ++root_->size;
    slot = entity;
  }
  // As Set, for a number that is not in use. False: it is, and nothing has changed.
  bool Add(std::uint32_t number, IFC::IfcEntity* entity) {
    if (root_->owners != 1) {
      if (Contains(number)) return false;
      OwnRoot();
    }
    return AddForAll(number, entity);
  }
  // As Add, here and in each copy or original of this table of which SharesAllWith is true.
  bool AddForAll(std::uint32_t number, IFC::IfcEntity* entity) {
    Leaf* const leaf = OwnLeafOf(number);
    if (leaf == nullptr) {
      if (Find(number) != nullptr) return false;
      SetSlowly(number, entity);
      return true;
    }
    IFC::IfcEntity*& slot = leaf->slots[LowOf(number)];
    if (slot != nullptr) return false;
    slot = entity;
    ++root_->size;
    return true;
  }
  // The two tables have been the same since one was made as a copy of the other.
  bool SharesAllWith(const NumberTable& other) const { return root_ == other.root_; }
  // False when the number was not in use. The entity itself stays: the table owns none.
  bool Remove(std::uint32_t number);
  void Clear();
  std::size_t Size() const { return root_->size; }
  // The smallest number from 1 on that is not in use. Each search goes on where the last one ended,
  // so that all of them together pass every number once.
  std::uint32_t SmallestFree() {
    while (Contains(smallestFree_)) ++smallestFree_;
    return smallestFree_;
  }

  // A walk over all entries by ascending number: `for (const auto [number, entity] : table)`.
  // Entries may be added and removed on the way, the one at hand among them: what is added ahead is
  // met, what is removed ahead is not. Clear ends the right to go on.
  Iterator begin() const;
  static std::default_sentinel_t end() { return {}; }

  // The same walk with each step looked up anew: the entry with the smallest number, and the one
  // with the smallest number above `number`.
  Entry First() const { return AtOrAfter(0); }
  Entry Next(std::uint32_t number) const {
    return number == 0xFFFFFFFFu ? Entry{} : AtOrAfter(number + 1);
  }
  // The entry with the smallest number from `number` on. Looks at each leaf of a gap once.
  Entry AtOrAfter(std::uint32_t number) const;

 private:
  static constexpr unsigned kLeafBits = 9;
  static constexpr unsigned kBranchBits = 9;
  static constexpr std::size_t kLeafSize = std::size_t{1} << kLeafBits;
  static constexpr std::size_t kBranchSize = std::size_t{1} << kBranchBits;

  // Entries of one leaf or branch by the low bits of their numbers, ascending; one allocation.
  struct Few;

  // The address of an array, or that of a list (null: nothing yet) with the lowest bit set.
  class Word {
   public:
    Word() = default;
    explicit Word(const void* array) : word_(reinterpret_cast<std::uintptr_t>(array)) {}
    static Word OfList(const Few* list) {
      Word word(list);
      word.word_ += kFewTag;
      return word;
    }

    bool IsArray() const { return (word_ & kFewTag) == 0; }
    template <class T>
    T& Array() const {
      return *reinterpret_cast<T*>(word_);
    }
    Few* List() const { return reinterpret_cast<Few*>(word_ - kFewTag); }

   private:
    static constexpr std::uintptr_t kFewTag = 1;
    std::uintptr_t word_ = kFewTag;
  };
  // `owners`: how many nodes above, or tables, lead here. Who is one of several makes a copy before
  // a change.
  struct Leaf {
    std::uint32_t owners = 1;
    std::array<IFC::IfcEntity*, kLeafSize> slots{};
  };
  struct Branch {
    std::uint32_t owners = 1;
    std::array<Word, kBranchSize> leaves{};
  };
  struct Root {
    std::uint32_t owners = 1;
    std::uint32_t moves = 0;       // how often an array has got another address
    std::size_t size = 0;          // entries
    std::vector<Word> branches{};  // by the number's upper bits, grown on demand
  };

  static constexpr unsigned kUpperBits = kLeafBits + kBranchBits;
  static std::size_t LowOf(std::uint32_t number) { return number & (kLeafSize - 1); }
  static std::size_t LeafIndexOf(std::uint32_t number) {
    return (number >> kLeafBits) & (kBranchSize - 1);
  }
  // Null where it is no array.
  Branch* BranchOf(std::uint32_t number) const {
    const std::size_t index = number >> kUpperBits;
    if (index >= root_->branches.size()) return nullptr;
    const Word branch = root_->branches[index];
    return branch.IsArray() ? &branch.Array<Branch>() : nullptr;
  }
  const Leaf* LeafOf(std::uint32_t number) const {
    const Branch* const branch = BranchOf(number);
    if (branch == nullptr) return nullptr;
    const Word leaf = branch->leaves[LeafIndexOf(number)];
    return leaf.IsArray() ? &leaf.Array<Leaf>() : nullptr;
  }

  // The same where nobody but the root leads to it, so that it may be changed.
  Leaf* OwnLeafOf(std::uint32_t number) const {
    Branch* const branch = BranchOf(number);
    if (branch == nullptr || branch->owners != 1) return nullptr;
    const Word leaf = branch->leaves[LeafIndexOf(number)];
    return leaf.IsArray() && leaf.Array<Leaf>().owners == 1 ? &leaf.Array<Leaf>() : nullptr;
  }

  IFC::IfcEntity* FindAmongFew(std::uint32_t number) const;
  void SetSlowly(std::uint32_t number, IFC::IfcEntity* entity);
  void OwnRoot();
  template <class Array>
  Word& OwnWord(Word& word);
  template <class Array, class Insert>
  bool InsertAmongFew(Word& word, std::uint32_t low, IFC::IfcEntity* entity, std::size_t most,
                      Insert insert);
  bool InsertInBranch(Word& branch, std::uint32_t low, IFC::IfcEntity* entity);
  bool InsertInLeaf(Word& leaf, std::uint32_t low, IFC::IfcEntity* entity);
  template <class Array>
  static void Release(Word word);
  static void ReleaseRoot(Root* root);
  static Entry InLeafFrom(Word leaf, std::uint32_t low);
  static Entry InBranchFrom(Word branch, std::uint32_t low);

  Root* root_;
  std::uint32_t smallestFree_ = 1;  // every number from 1 up to this one is in use
};

// Runs along the array of a dense leaf and looks up the next leaf behind its end only.
class NumberTable::Iterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using iterator_concept = std::input_iterator_tag;
  using value_type = Entry;
  using difference_type = std::ptrdiff_t;
  using pointer = const Entry*;
  using reference = const Entry&;

  explicit Iterator(const NumberTable& table) : table_(&table) { Settle(table.First()); }

  const Entry& operator*() const { return at_; }
  const Entry* operator->() const { return &at_; }
  bool operator==(std::default_sentinel_t) const { return at_.entity == nullptr; }
  Iterator& operator++() {
    while (rest_ != 0 && moves_ == table_->root_->moves) {
      --rest_;
      ++slot_;
      ++at_.number;
      if ((at_.entity = *slot_) != nullptr) return *this;
    }
    Settle(table_->Next(at_.number));
    return *this;
  }
  void operator++(int) { ++*this; }

 private:
  void Settle(Entry entry);

  const NumberTable* table_;
  Entry at_;
  std::uint32_t moves_ = 0;  // as they were when `slot_` was found
  IFC::IfcEntity* const* slot_ = nullptr;
  std::size_t rest_ = 0;  // slots behind `slot_`; 0 in a leaf that is not dense
};

inline NumberTable::Iterator NumberTable::begin() const { return Iterator(*this); }

}  // namespace corvel
