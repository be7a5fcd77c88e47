// The storage of one model: its strings, each distinct text once, and its objects and aggregates.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "core/arena.h"
#include "core/model_text.h"
#include "core/open_table.h"
#include "core/text.h"

namespace corvel {

// The empty texts of attributes that were never read. Equal in content to the pool's own.
inline constexpr const char16_t* kEmptyWide = u"";
inline constexpr const char* kEmptyNarrow = "";

// One allocation of the string store.
struct MemoryBlock {
  std::unique_ptr<char[]> data;
  std::uint64_t free = 0;  // bytes left
};

// Depends on the machine's byte order; to be kept for the run only.
std::uint32_t HashOfBytes(const void* bytes, std::size_t count);

// An interned text in the index that finds it again: 8 bytes, as models have one for each GUID.
struct TextSlot {
  std::uint32_t place = 0;  // half its distance from where places begin, + 1; 0 in a free slot
  std::uint32_t hash = 0;

  bool IsFree() const { return place == 0; }
  std::size_t Hash() const { return hash; }
};
using TextIndex = OpenTable<TextSlot, 64>;

// All pointers that it gives belong to it and are good until it goes.
class MemoryPool {
 public:
  // `blockSize`: bytes of each block of the string store. The first is taken at once; throws as
  // AllocNarrow.
  explicit MemoryPool(std::uint64_t blockSize);
  ~MemoryPool();
  MemoryPool(const MemoryPool&) = delete;
  MemoryPool& operator=(const MemoryPool&) = delete;

  // Room for `length` characters and a terminator; the caller copies text and terminator in.
  // Throws std::runtime_error ("MemoryBlock error. ...") when the system has no memory.
  char* AllocNarrow(std::uint64_t length);
  char16_t* AllocWide(std::uint64_t length);

  // The one stored copy of a text, NUL-ended: as bytes for a GUID, in 16 bits whatever is in it, or
  // as attributes hold it. Equal texts give each operation one pointer of its own. A text with a
  // NUL in it, which ends it, is stored each time, and so is behind some 5 GiB one that is not
  // known yet. Costs the length of the text. Throws as AllocNarrow; nothing is entered then.
  const char* InternNarrow(std::string_view text);
  const char16_t* InternWide(WideView text);
  ModelText InternText(WideView text);
  // Each byte is the unit of its value.
  ModelText InternText(std::string_view text);

  // The value of an absent string; never equal (as a pointer) to the interned empty text.
  ModelText EmptyWide() const { return emptyWide_; }
  const char* EmptyNarrow() const { return emptyNarrow_; }

  // Objects and arrays of the model; they go with the pool and no destructor is run. Arrays are not
  // initialised. Throws std::bad_alloc.
  template <class T, class... Arguments>
  T* New(Arguments&&... arguments) {
    return ::new (objects_.Allocate(sizeof(T), alignof(T)))
        T(std::forward<Arguments>(arguments)...);
  }
  template <class T>
  T* NewArray(std::size_t count) {
    static_assert(std::is_trivially_destructible_v<T>);
    return static_cast<T*>(objects_.Allocate(count * sizeof(T), alignof(T)));
  }

  std::size_t BlockCount() const { return blocks_.size(); }
  std::size_t ObjectBytes() const { return objects_.ReservedBytes(); }

 private:
  // Places count bytes, on from a multiple of this at each block.
  static constexpr unsigned kPageBits = 24;
  static constexpr std::uint64_t kMostPages = std::uint64_t{1} << (33 - kPageBits);

  template <class Unit, class Allocate>
  const Unit* Intern(TextIndex& index, std::basic_string_view<Unit> text, Allocate allocate);
  template <class Unit>
  const Unit* AtPlace(std::uint32_t place) const;
  std::uint32_t PlaceOf(const void* inCurrent) const;
  char* AllocPlain(std::uint64_t length);
  char* Take(std::uint64_t size);
  void AddBlock(std::uint64_t size);

  std::uint64_t blockSize_;
  std::vector<std::unique_ptr<MemoryBlock>> blocks_;
  MemoryBlock* current_ = nullptr;
  char* next_ = nullptr;
  std::vector<char*> pages_;       // where the bytes of each page begin
  std::uint64_t currentPage_ = 0;  // the first of the current block
  TextIndex wideStrings_;
  TextIndex plainStrings_;
  TextIndex narrowStrings_;
  std::string plainText_;  // a 16-bit text on its way to being a plain one
  char16_t emptyWide_[1] = {0};
  char emptyNarrow_[1] = {0};
  Arena objects_;
};

}  // namespace corvel
