#include "core/parent_set.h"

#include <algorithm>
#include <functional>

#include "core/parent_store.h"

namespace corvel {

// Members follow the block in memory.
struct ParentSet::Block {
  std::uint32_t size;
  std::uint8_t sizeClass;  // room for 2 << sizeClass members
  bool inOrder;
  Block* nextFree;

  IFC::IfcEntity** Members() { return reinterpret_cast<IFC::IfcEntity**>(this + 1); }
  std::uint32_t Capacity() const { return std::uint32_t{2} << sizeClass; }
};

std::span<IFC::IfcEntity* const> ParentSet::Members() const {
  if (word_ == nullptr) return {};
  if (!HoldsBlock()) return {&word_, 1};
  Block* const block = AsBlock();
  IFC::IfcEntity** const first = block->Members();
  // Changes where the members stand, not which there are, so a const set may do it.
  if (!block->inOrder) {
    std::sort(first, first + block->size, std::less<>());
    block->size = static_cast<std::uint32_t>(std::unique(first, first + block->size) - first);
    block->inOrder = true;
  }
  return {first, block->size};
}

bool ParentSet::Contains(const IFC::IfcEntity* parent) const {
  const auto members = Members();
  return std::binary_search(members.begin(), members.end(), parent, std::less<>());
}

void ParentSet::Insert(IFC::IfcEntity* parent, ParentStore& store) {
  if (word_ == nullptr) {
    word_ = parent;
    return;
  }
  if (!HoldsBlock()) {
    if (word_ == parent) return;
    Block* const block = store.Take(0);
    block->Members()[0] = word_;
    block->size = 1;
    block->inOrder = true;
    SetBlock(block);
  }
  Block* block = AsBlock();
  IFC::IfcEntity* const last = block->Members()[block->size - 1];
  // An object that names a child several times comes several times in a row.
  if (last == parent) return;
  if (block->size == block->Capacity()) {
    Block* const larger = store.Take(block->sizeClass + 1u);
    std::copy_n(block->Members(), block->size, larger->Members());
    larger->size = block->size;
    larger->inOrder = block->inOrder;
    store.GiveBack(block);
    SetBlock(larger);
    block = larger;
  }
  if (std::less<>()(parent, last)) block->inOrder = false;
  block->Members()[block->size++] = parent;
}

void ParentSet::Clear(ParentStore& store) {
  if (HoldsBlock()) store.GiveBack(AsBlock());
  word_ = nullptr;
}

ParentSet::Block* ParentStore::Take(unsigned sizeClass) {
  if (ParentSet::Block* const reused = free_[sizeClass]) {
    free_[sizeClass] = reused->nextFree;
    return reused;
  }
  const std::size_t members = std::size_t{2} << sizeClass;
  const std::size_t bytes = sizeof(ParentSet::Block) + members * sizeof(IFC::IfcEntity*);
  auto* const block =
      static_cast<ParentSet::Block*>(arena_.Allocate(bytes, alignof(ParentSet::Block)));
  block->sizeClass = static_cast<std::uint8_t>(sizeClass);
  block->size = 0;
  block->inOrder = true;
  block->nextFree = nullptr;
  return block;
}

void ParentStore::GiveBack(ParentSet::Block* block) {
  block->nextFree = free_[block->sizeClass];
  free_[block->sizeClass] = block;
}

}  // namespace corvel
