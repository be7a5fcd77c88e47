#include "core/memory_pool.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <stdexcept>

namespace corvel {

namespace {

constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15ull;

std::uint64_t Mixed(std::uint64_t hash, std::uint64_t word) {
  return std::rotl(hash ^ (word * kMultiplier), 29) * kMultiplier;
}

// A text starts at any address: the copy is a plain load where the machine has one.
std::uint64_t WordAt(const unsigned char* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// Eight bytes a step; the last eight overlap the step before them. The high bits are the good ones.
std::uint64_t HashBytes(const void* bytes, std::size_t count) {
  const auto* at = static_cast<const unsigned char*>(bytes);
  std::uint64_t hash = count * kMultiplier;
  std::uint64_t tail = 0;
  if (count < sizeof tail) {
    for (std::size_t i = 0; i < count; ++i) tail = tail << 8 | at[i];
  } else {
    const unsigned char* const last = at + count - sizeof tail;
    for (; at < last; at += sizeof tail) hash = Mixed(hash, WordAt(at));
    tail = WordAt(last);
  }
  return Mixed(hash, tail);
}

}  // namespace

template <class Unit>
std::uint32_t InternTable<Unit>::Hash(std::basic_string_view<Unit> text) {
  return static_cast<std::uint32_t>(HashBytes(text.data(), text.size() * sizeof(Unit)) >> 32);
}

template <class Unit>
const Unit* InternTable<Unit>::Find(std::basic_string_view<Unit> text, std::uint32_t hash,
                                    std::size_t& slot) const {
  const std::size_t mask = entries_.size() - 1;
  for (slot = hash & mask;; slot = (slot + 1) & mask) {
    const Entry& entry = entries_[slot];
    if (entry.text == nullptr) return nullptr;
    if (entry.hash == hash && entry.length == text.size() &&
        std::equal(text.begin(), text.end(), entry.text)) {
      return entry.text;
    }
  }
}

template <class Unit>
void InternTable<Unit>::Enter(std::size_t slot, std::uint32_t hash, const Unit* stored,
                              std::size_t length) {
  entries_[slot] = {stored, static_cast<std::uint32_t>(length), hash};
  ++used_;
}

template <class Unit>
void InternTable<Unit>::ReserveOne() {
  // Two thirds full at most, so that Find always comes to a free slot.
  if ((used_ + 1) * 3 <= entries_.size() * 2) return;
  std::vector<Entry> old =
      std::exchange(entries_, std::vector<Entry>(entries_.empty() ? 64 : entries_.size() * 2));
  const std::size_t mask = entries_.size() - 1;
  for (const Entry& entry : old) {
    if (entry.text == nullptr) continue;
    std::size_t slot = entry.hash & mask;
    while (entries_[slot].text != nullptr) slot = (slot + 1) & mask;
    entries_[slot] = entry;
  }
}

template class InternTable<char16_t>;
template class InternTable<char>;

MemoryPool::MemoryPool(std::uint64_t blockSize) : blockSize_(blockSize) { AddBlock(blockSize); }

MemoryPool::~MemoryPool() = default;

void MemoryPool::AddBlock(std::uint64_t size) {
  auto block = std::make_unique<MemoryBlock>();
  try {
    block->data = std::make_unique_for_overwrite<char[]>(size);
  } catch (const std::bad_alloc& error) {
    throw std::runtime_error(std::string("MemoryBlock error. Unable to allocate memmory: ") +
                             error.what());
  }
  block->free = size;
  blocks_.push_back(std::move(block));
  current_ = blocks_.back().get();
  next_ = current_->data.get();
}

// A block never gets quite full: at exactly the remaining size a new one is taken. The rest of a
// replaced block is given up, and a request beyond the block size gets a block that fits.
char* MemoryPool::Take(std::uint64_t size) {
  if (size >= current_->free) AddBlock(std::max(blockSize_, size + 1));
  char* const taken = next_;
  next_ += size;
  current_->free -= size;
  return taken;
}

char* MemoryPool::AllocNarrow(std::uint64_t length) { return Take(length + 1); }

char16_t* MemoryPool::AllocWide(std::uint64_t length) {
  // The byte before is given up only where one is left: otherwise Take begins a block, which is
  // aligned.
  const bool odd = reinterpret_cast<std::uintptr_t>(next_) % alignof(char16_t) != 0;
  if (odd && current_->free > 1) Take(1);
  return reinterpret_cast<char16_t*>(Take(2 * length + 2));
}

const char* MemoryPool::InternNarrow(std::string_view text) {
  const std::uint32_t hash = InternTable<char>::Hash(text);
  // Before the search, since growing moves the slots.
  narrowStrings_.ReserveOne();
  std::size_t slot = 0;
  if (const char* const known = narrowStrings_.Find(text, hash, slot)) return known;
  char* const stored = AllocNarrow(text.size());
  std::copy(text.begin(), text.end(), stored);
  stored[text.size()] = 0;
  narrowStrings_.Enter(slot, hash, stored, text.size());
  return stored;
}

const char16_t* MemoryPool::InternWide(WideView text) {
  const std::uint32_t hash = InternTable<char16_t>::Hash(text);
  wideStrings_.ReserveOne();
  std::size_t slot = 0;
  if (const char16_t* const known = wideStrings_.Find(text, hash, slot)) return known;
  char16_t* const stored = AllocWide(text.size());
  std::copy(text.begin(), text.end(), stored);
  stored[text.size()] = 0;
  wideStrings_.Enter(slot, hash, stored, text.size());
  return stored;
}

}  // namespace corvel
