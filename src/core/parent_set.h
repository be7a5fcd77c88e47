// The set of entities that refer to an entity.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace IFC {
class IfcEntity;
}

namespace corvel {

class ParentStore;

// Most entities have one or two parents, a few (an owner history) half a million. One word: empty,
// one parent in place, or a block of the store. A block takes parents as they come and is sorted
// once, when it is next looked at: so filling costs no more than a sort in any order of arrival.
//
// Ordered by pointer value: the order is stable within a run only, and nothing that the program
// shows may depend on it. Trivially copyable; a copy shares the block.
class ParentSet {
 public:
  bool IsEmpty() const { return word_ == nullptr; }
  // Sorts, as Members and Contains do, when something has come since the last look: n log n then.
  std::size_t Size() const { return Members().size(); }
  // In ascending order, each once. Void after the next Insert or Clear of this set.
  std::span<IFC::IfcEntity* const> Members() const;
  bool Contains(const IFC::IfcEntity* parent) const;
  // Borrows `parent`, which is not null; once in, once more is no change. A block comes from
  // `store`. Constant time on average.
  void Insert(IFC::IfcEntity* parent, ParentStore& store);
  // Gives the block back to `store`, which may be another one than it came from as long as the
  // store that it came from lives at least as long.
  void Clear(ParentStore& store);

 private:
  struct Block;
  friend class ParentStore;

  bool HoldsBlock() const { return (reinterpret_cast<std::uintptr_t>(word_) & 1) != 0; }
  Block* AsBlock() const {
    return reinterpret_cast<Block*>(reinterpret_cast<std::uintptr_t>(word_) - 1);
  }
  void SetBlock(Block* block) {
    word_ = reinterpret_cast<IFC::IfcEntity*>(reinterpret_cast<std::uintptr_t>(block) + 1);
  }

  IFC::IfcEntity* word_ = nullptr;  // null, the one parent, or a block's address + 1
};

}  // namespace corvel
