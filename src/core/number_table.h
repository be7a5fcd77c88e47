// From #numbers to entities, in order.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace IFC {
class IfcEntity;
}

namespace corvel {

// An ordered map from 32-bit numbers to entities. Models number densely, so a leaf of 512 numbers
// is a plain array (8 bytes an entity, constant time); a leaf with few numbers in it stays a short
// sorted list, so that numbers with wide gaps up to 4,294,967,295 cost no memory for the gaps.
// Entries may be added and removed while the table is walked with First and Next.
class NumberTable {
 public:
  struct Entry {
    std::uint32_t number = 0;
    IFC::IfcEntity* entity = nullptr;  // null: the end of a walk
    explicit operator bool() const { return entity != nullptr; }
  };

  NumberTable();
  ~NumberTable();
  NumberTable(const NumberTable&) = delete;
  NumberTable& operator=(const NumberTable&) = delete;

  // Null when the number is not in use.
  IFC::IfcEntity* Find(std::uint32_t number) const;
  bool Contains(std::uint32_t number) const { return Find(number) != nullptr; }
  // Sets or replaces; `entity` is not null.
  void Set(std::uint32_t number, IFC::IfcEntity* entity);
  // False when the number was not in use.
  bool Remove(std::uint32_t number);
  void Clear();
  std::size_t Size() const { return size_; }

  // The entry with the smallest number, and the one with the smallest number above `number`.
  Entry First() const { return AtOrAfter(0); }
  Entry Next(std::uint32_t number) const {
    return number == 0xFFFFFFFFu ? Entry{} : AtOrAfter(number + 1);
  }
  Entry AtOrAfter(std::uint32_t number) const;

 private:
  static constexpr unsigned kLeafBits = 9;
  static constexpr unsigned kBranchBits = 9;
  static constexpr std::size_t kLeafSize = std::size_t{1} << kLeafBits;
  static constexpr std::size_t kBranchSize = std::size_t{1} << kBranchBits;

  class Leaf;
  using Branch = std::array<std::unique_ptr<Leaf>, kBranchSize>;

  const Leaf* LeafOf(std::uint32_t number) const;

  std::vector<std::unique_ptr<Branch>> branches_;  // by the number's upper bits, grown on demand
  std::size_t size_ = 0;
};

}  // namespace corvel
