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
// is a plain array (8 bytes an entity, constant time); a leaf with few numbers in it stays a short
// sorted list, so that numbers with wide gaps up to 4,294,967,295 cost no memory for the gaps.
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
  NumberTable(const NumberTable&) = delete;
  NumberTable& operator=(const NumberTable&) = delete;

  // Null when the number is not in use.
  IFC::IfcEntity* Find(std::uint32_t number) const {
    const Leaf* const leaf = LeafOf(number);
    if (leaf == nullptr || !leaf->IsDense()) return FindAmongFew(number);
    return leaf->Slots()[LowOf(number)];
  }
  bool Contains(std::uint32_t number) const { return Find(number) != nullptr; }
  // Sets or replaces; `entity` is not null.
  void Set(std::uint32_t number, IFC::IfcEntity* entity) {
    Leaf* const leaf = LeafOf(number);
    if (leaf == nullptr || !leaf->IsDense()) return SetAmongFew(number, entity);
    IFC::IfcEntity*& slot = leaf->Slots()[LowOf(number)];
    if (slot == nullptr) ++size_;
    slot = entity;
  }
  // As Set, for a number that is not in use. False: it is, and nothing has changed.
  bool Add(std::uint32_t number, IFC::IfcEntity* entity) {
    Leaf* const leaf = LeafOf(number);
    if (leaf == nullptr || !leaf->IsDense()) {
      if (FindAmongFew(number) != nullptr) return false;
      SetAmongFew(number, entity);
      return true;
    }
    IFC::IfcEntity*& slot = leaf->Slots()[LowOf(number)];
    if (slot != nullptr) return false;
    slot = entity;
    ++size_;
    return true;
  }
  // False when the number was not in use. The entity itself stays: the table owns none.
  bool Remove(std::uint32_t number);
  void Clear();
  std::size_t Size() const { return size_; }
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

  // The numbers of one run of kLeafSize, by their low bits. One word: the address of the array, or
  // that of the list (null: nothing yet) with the lowest bit set.
  class Leaf {
   public:
    using Array = std::array<IFC::IfcEntity*, kLeafSize>;

    Leaf() = default;
    ~Leaf();
    Leaf(const Leaf&) = delete;
    Leaf& operator=(const Leaf&) = delete;

    // Once dense, a leaf stays so, and its array stays where it is.
    bool IsDense() const { return (word_ & kFewTag) == 0; }
    Array& Slots() const { return *reinterpret_cast<Array*>(word_); }

    // For a leaf that is not dense.
    IFC::IfcEntity* FindAmongFew(std::size_t low) const;
    bool RemoveAmongFew(std::size_t low);
    // True when the number is new. The leaf may be dense afterwards.
    bool SetAmongFew(std::size_t low, IFC::IfcEntity* entity);
    Entry AtOrAfter(std::size_t low) const;

   private:
    using Few = std::vector<Entry>;  // ascending
    static constexpr std::uintptr_t kFewTag = 1;
    static constexpr std::size_t kMostOfFew = 32;  // 512 bytes, an eighth of the array

    Few* List() const { return reinterpret_cast<Few*>(word_ - kFewTag); }
    void MakeDense();

    std::uintptr_t word_ = kFewTag;
  };
  using Branch = std::array<Leaf, kBranchSize>;

  static std::size_t LowOf(std::uint32_t number) { return number & (kLeafSize - 1); }
  Leaf* LeafOf(std::uint32_t number) const {
    const std::size_t branch = number >> (kLeafBits + kBranchBits);
    if (branch >= branches_.size() || branches_[branch] == nullptr) return nullptr;
    return &(*branches_[branch])[(number >> kLeafBits) & (kBranchSize - 1)];
  }
  // The same for a number whose leaf is not dense, or is not there yet.
  IFC::IfcEntity* FindAmongFew(std::uint32_t number) const;
  void SetAmongFew(std::uint32_t number, IFC::IfcEntity* entity);

  std::vector<std::unique_ptr<Branch>> branches_;  // by the number's upper bits, grown on demand
  std::size_t size_ = 0;
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
    while (rest_ != 0) {
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
  IFC::IfcEntity* const* slot_ = nullptr;
  std::size_t rest_ = 0;  // slots behind `slot_`; 0 in a leaf that is not dense
};

inline NumberTable::Iterator NumberTable::begin() const { return Iterator(*this); }

}  // namespace corvel
