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
  const std::uint64_t firstPage = pages_.size();
  for (std::uint64_t begin = 0; begin < size && pages_.size() < kMostPages;
       begin += std::uint64_t{1} << kPageBits) {
    pages_.push_back(block->data.get() + begin);
  }
  blocks_.push_back(std::move(block));
  currentPage_ = firstPage;
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

// A new block begins at an even address.
char* MemoryPool::AllocPlain(std::uint64_t length) {
  if (length + 2 >= current_->free) AddBlock(std::max(blockSize_, length + 3));
  if (reinterpret_cast<std::uintptr_t>(next_) % 2 == 0) Take(1);
  return Take(length + 1);
}

// Half of it is enough: texts of one index are all at odd addresses, or all at even ones, and so
// are the bytes where pages begin.
std::uint32_t MemoryPool::PlaceOf(const void* inCurrent) const {
  const auto offset =
      static_cast<std::uint64_t>(static_cast<const char*>(inCurrent) - current_->data.get());
  const std::uint64_t page = currentPage_ + (offset >> kPageBits);
  if (page >= kMostPages) return 0;
  const std::uint64_t inPage = offset & ((std::uint64_t{1} << kPageBits) - 1);
  return static_cast<std::uint32_t>(((page << kPageBits) + inPage) / 2 + 1);
}

template <class Unit>
const Unit* MemoryPool::AtPlace(std::uint32_t place) const {
  const std::uint64_t even = (std::uint64_t{place} - 1) * 2;
  const char* const begin =
      pages_[even >> kPageBits] + (even & ((std::uint64_t{1} << kPageBits) - 1));
  return reinterpret_cast<const Unit*>(begin + (sizeof(Unit) == 1 ? 1 : 0));
}

template <class Unit, class Allocate>
const Unit* MemoryPool::Intern(TextIndex& index, std::basic_string_view<Unit> text,
                               Allocate allocate) {
  const auto store = [&] {
    Unit* const stored = allocate(text.size());
    std::copy(text.begin(), text.end(), stored);
    stored[text.size()] = 0;
    return stored;
  };
  const std::uint32_t hash = HashOfBytes(text.data(), text.size() * sizeof(Unit));
  const auto isText = [&](const TextSlot& known) {
    return known.hash == hash && !known.IsFree() &&
           std::basic_string_view<Unit>(AtPlace<Unit>(known.place)) == text;
  };
  if (pages_.size() == kMostPages) {
    const TextSlot* const known = index.Find(hash, isText);
    return known == nullptr ? store() : AtPlace<Unit>(known->place);
  }
  TextSlot& slot = index.Enter(hash, isText);
  if (!slot.IsFree()) return AtPlace<Unit>(slot.place);
  const Unit* const stored = store();
  slot = {PlaceOf(stored), hash};
  return stored;
}

const char* MemoryPool::InternNarrow(std::string_view text) {
  return Intern(narrowStrings_, text, [this](std::uint64_t length) { return AllocPlain(length); });
}

const char16_t* MemoryPool::InternWide(WideView text) {
  return Intern(wideStrings_, text, [this](std::uint64_t length) { return AllocWide(length); });
}

ModelText MemoryPool::InternText(std::string_view text) {
  return ModelText::OfPlain(
      Intern(plainStrings_, text, [this](std::uint64_t length) { return AllocPlain(length); }));
}

ModelText MemoryPool::InternText(WideView text) {
  const bool isPlain =
      std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 256; });
  if (!isPlain) return InternWide(text);
  constexpr std::size_t kLong = std::size_t{1} << 16;
  if (text.size() > kLong) return InternText(std::string_view(Narrow(text)));
  plainText_.assign(text.begin(), text.end());
  return InternText(std::string_view(plainText_));
}

}  // namespace corvel
