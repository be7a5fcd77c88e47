// Interning, look-up by number and casts that remember.
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "core/entity_cast.h"
#include "core/memory_pool.h"
#include "core/number_table.h"
#include "core/root_interfaces.h"
#include "models_in_memory.h"
#include "schema/registry.h"

namespace {

constexpr std::uint64_t kPoolBlock = 0xA00000;

constexpr std::uint32_t kTexts = 20000;

// `kEach`: of so many texts one is new.
template <std::uint32_t kEach>
void InternText(benchmark::State& state) {
  std::vector<corvel::WideString> texts;
  for (std::uint32_t i = 0; i < kTexts; ++i) {
    texts.push_back(i % kEach == 0 ? u"Tag " + corvel::ToWide(i)
                                   : u"Reference " + corvel::ToWide(i % 50));
  }
  for (auto _ : state) {
    corvel::MemoryPool pool(kPoolBlock);
    for (const auto& text : texts) benchmark::DoNotOptimize(pool.InternText(text));
  }
  state.SetItemsProcessed(state.iterations() * kTexts);
}
BENCHMARK(InternText<1>)->Name("Interning/all new");
BENCHMARK(InternText<5>)->Name("Interning/one in five new");
BENCHMARK(InternText<kTexts>)->Name("Interning/all met before");

void InternGuids(benchmark::State& state) {
  std::vector<std::string> guids;
  for (std::uint32_t i = 0; i < kTexts; ++i) guids.push_back(corvel::bench::Guid('0', i));
  for (auto _ : state) {
    corvel::MemoryPool pool(kPoolBlock);
    for (const auto& guid : guids) benchmark::DoNotOptimize(pool.InternNarrow(guid));
  }
  state.SetItemsProcessed(state.iterations() * kTexts);
}
BENCHMARK(InternGuids)->Name("Interning/GUIDs");

void FindNumber(benchmark::State& state) {
  corvel::MemoryPool pool(kPoolBlock);
  corvel::NumberTable table;
  const auto create = corvel::FactoriesOf(corvel::SchemaNamespace::IFC4).Find("IFCCARTESIANPOINT");
  constexpr std::uint32_t kCount = 100000;
  for (std::uint32_t number = 1; number <= kCount; ++number) table.Set(number, create(pool));
  std::mt19937 random(1);
  std::vector<std::uint32_t> asked(4096);
  for (auto& number : asked) number = static_cast<std::uint32_t>(random() % kCount + 1);
  for (auto _ : state) {
    for (const std::uint32_t number : asked) benchmark::DoNotOptimize(table.Find(number));
  }
  state.SetItemsProcessed(state.iterations() * static_cast<long>(asked.size()));
}
BENCHMARK(FindNumber)->Name("Numbers/find");

template <bool kRemembering>
void CastToRoot(benchmark::State& state) {
  corvel::MemoryPool pool(kPoolBlock);
  const auto& factories = corvel::FactoriesOf(corvel::SchemaNamespace::IFC4);
  std::vector<IFC::IfcEntity*> entities;
  for (const char* name : {"IFCWALL", "IFCCARTESIANPOINT", "IFCPROPERTYSET", "IFCDOOR"}) {
    for (int i = 0; i < 256; ++i) entities.push_back(factories.Find(name)(pool));
  }
  for (auto _ : state) {
    for (IFC::IfcEntity* const entity : entities) {
      if constexpr (kRemembering) {
        benchmark::DoNotOptimize(corvel::EntityCast<IFC::VirtualIfcRoot>(entity));
      } else {
        benchmark::DoNotOptimize(dynamic_cast<IFC::VirtualIfcRoot*>(entity));
      }
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<long>(entities.size()));
}
BENCHMARK(CastToRoot<true>)->Name("Casts/remembering");
BENCHMARK(CastToRoot<false>)->Name("Casts/dynamic_cast");

// What each reference costs that is read: members of a list are mostly of one class.
void AdmitReferences(benchmark::State& state) {
  corvel::MemoryPool pool(kPoolBlock);
  const auto& factories = corvel::FactoriesOf(corvel::SchemaNamespace::IFC4);
  std::vector<IFC::IfcEntity*> entities;
  entities.reserve(1024);
  for (int i = 0; i < 1024; ++i) {
    entities.push_back(factories.Find(i % 8 == 0 ? "IFCDOOR" : "IFCWALL")(pool));
  }
  corvel::ClassTest test(corvel::IsOfClass<IFC::VirtualIfcRoot>);
  for (auto _ : state) {
    for (const IFC::IfcEntity* const entity : entities) {
      benchmark::DoNotOptimize(test.Admits(entity));
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<long>(entities.size()));
}
BENCHMARK(AdmitReferences)->Name("Casts/admitted references");

}  // namespace
