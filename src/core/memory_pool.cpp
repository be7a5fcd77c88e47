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

}  // namespace

// Eight bytes a step; the last eight overlap the step before them. The high bits are the good ones.
std::uint32_t HashOfBytes(const void* bytes, std::size_t count) {
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
  return static_cast<std::uint32_t>(Mixed(hash, tail) >> 32);
}

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

template <class Unit, class Allocate>
const Unit* MemoryPool::Intern(InternTable<Unit>& table, std::basic_string_view<Unit> text,
                               Allocate allocate) {
  const std::uint32_t hash = HashOfBytes(text.data(), text.size() * sizeof(Unit));
  InternedText<Unit>& slot = table.Enter(hash, [&](const InternedText<Unit>& known) {
    return known.hash == hash && known.length == text.size() && known.text != nullptr &&
           std::equal(text.begin(), text.end(), known.text);
  });
  if (slot.IsFree()) {
    Unit* const stored = allocate(text.size());
    std::copy(text.begin(), text.end(), stored);
    stored[text.size()] = 0;
    slot = {stored, static_cast<std::uint32_t>(text.size()), hash};
  }
  return slot.text;
}

const char* MemoryPool::InternNarrow(std::string_view text) {
  return Intern(narrowStrings_, text, [this](std::uint64_t length) { return AllocNarrow(length); });
}

const char16_t* MemoryPool::InternWide(WideView text) {
  return Intern(wideStrings_, text, [this](std::uint64_t length) { return AllocWide(length); });
}

}  // namespace corvel
