// A table of classes for tests whose classes no schema has.
#pragma once

#include <initializer_list>
#include <string_view>
#include <vector>

#include "core/memory_pool.h"
#include "step/factories.h"

namespace corvel::test {

class TestFactories {
 public:
  TestFactories(std::initializer_list<FactoryRow> rows) {
    std::uint32_t size = 2;
    while (size < 2 * rows.size()) size *= 2;
    slots_.resize(size);
    for (const FactoryRow& row : rows) {
      std::size_t slot = HashOfName(row.name) & (size - 1);
      while (!slots_[slot].name.empty()) slot = (slot + 1) & (size - 1);
      slots_[slot] = row;
    }
    table_ = {slots_.data(), size - 1, static_cast<std::uint32_t>(rows.size())};
  }
  TestFactories(const TestFactories&) = delete;
  TestFactories& operator=(const TestFactories&) = delete;

  const FactoryTable& Table() const { return table_; }

 private:
  std::vector<FactoryRow> slots_;
  FactoryTable table_;
};

template <class Class>
IFC::IfcEntity* Create(MemoryPool& pool) {
  return pool.New<Class>();
}

}  // namespace corvel::test
