// The aggregate of an attribute: a growing array whose storage belongs to the model's pool.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

#include "core/memory_pool.h"

namespace IFC {
class IfcEntity;
}

namespace corvel {

// 16 bytes, freely copied; a copy shares the storage, so whoever copies an object and then changes
// one of the two takes a Clone. Storage that a list outgrows stays in the pool until the end.
template <class T>
class List {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  T* begin() { return data_; }
  T* end() { return data_ + size_; }
  const T* begin() const { return data_; }
  const T* end() const { return data_ + size_; }
  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  // Not checked. Pointers and references to items are void after Assign and Append.
  T& operator[](std::size_t index) { return data_[index]; }
  const T& operator[](std::size_t index) const { return data_[index]; }

  // Keeps the storage, which copies of this list share.
  void Clear() { size_ = 0; }

  // Replaces the content; `room` is how many items the storage should hold at least.
  void Assign(std::span<const T> items, MemoryPool& pool, std::size_t room = 0) {
    Reserve(items.size() > room ? items.size() : room, pool);
    size_ = static_cast<std::uint32_t>(items.size());
    for (std::size_t i = 0; i < items.size(); ++i) data_[i] = items[i];
  }

  // `pool` is that of the model, here and below: the storage has to live as long as the object.
  // Constant time on average.
  void Append(T item, MemoryPool& pool) {
    if (size_ == capacity_) Reserve(capacity_ == 0 ? 4 : std::size_t{capacity_} * 2, pool);
    data_[size_++] = item;
  }

  // The items behind move up; `index` is below size().
  void Erase(std::size_t index) {
    for (std::size_t i = index + 1; i < size_; ++i) data_[i - 1] = data_[i];
    --size_;
  }

  // Takes out the items for which `predicate` is true; the others keep their order. Gives how many
  // went.
  template <class Predicate>
  std::size_t RemoveIf(Predicate predicate) {
    const std::size_t before = size_;
    size_ = 0;
    for (std::size_t i = 0; i < before; ++i) {
      if (!predicate(data_[i])) data_[size_++] = data_[i];
    }
    return before - size_;
  }

  // The same items in storage of their own.
  List Clone(MemoryPool& pool) const {
    List copy;
    copy.Assign({data_, size_}, pool);
    return copy;
  }

 private:
  void Reserve(std::size_t count, MemoryPool& pool) {
    if (count <= capacity_) return;
    T* const larger = pool.NewArray<T>(count);
    for (std::size_t i = 0; i < size_; ++i) larger[i] = data_[i];
    data_ = larger;
    capacity_ = static_cast<std::uint32_t>(count);
  }

  T* data_ = nullptr;
  std::uint32_t size_ = 0;
  std::uint32_t capacity_ = 0;
};

using EntityList = List<IFC::IfcEntity*>;

}  // namespace corvel
