// From values to text: the writer of attributes, kind by kind.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "core/memory_pool.h"
#include "models_in_memory.h"
#include "sample_enum.h"
#include "schema/registry.h"
#include "step/writer/step_writer.h"
#include "support/memory_streams.h"

namespace {

using corvel::List;
using corvel::ModelText;
using corvel::StepWriter;

constexpr std::uint32_t kValues = 4096;
constexpr std::uint64_t kPoolBlock = 1 << 20;

// What the values are made of.
struct Stock {
  Stock() {
    const auto& factories = corvel::FactoriesOf(corvel::SchemaNamespace::IFC4);
    for (std::uint32_t i = 1; i <= 64; ++i) {
      IFC::IfcEntity* const point = factories.Find("IFCCARTESIANPOINT")(pool);
      point->SetMarker(i * 1001);
      entities.push_back(point);
    }
    entityList.Assign({entities.data(), 4}, pool);
    const double coordinates[] = {1234.5, -0.25, 3.0};
    reals.Assign(coordinates, pool);
    const std::int32_t numbers[] = {1, 22, 333};
    integers.Assign(numbers, pool);
    const ModelText labels[] = {u"a", u"label"};
    texts.Assign(labels, pool);
    realLists.Append(reals, pool);
    realLists.Append(reals, pool);
  }

  corvel::MemoryPool pool{kPoolBlock};
  std::vector<IFC::IfcEntity*> entities;
  corvel::EntityList entityList;
  List<double> reals;
  List<std::int32_t> integers;
  List<ModelText> texts;
  List<List<double>> realLists;
  std::string guid = corvel::bench::Guid('0', 4711);
};

struct Kind {
  const char* name;
  void (*write)(StepWriter& writer, const Stock& stock, std::uint32_t index);
};

const Kind kKinds[] = {
    {"absent", [](StepWriter& writer, const Stock&, std::uint32_t) { writer.WriteAbsent(); }},
    {"real", [](StepWriter& writer, const Stock&,
                std::uint32_t i) { writer.WriteReal(static_cast<double>(i) + 0.5); }},
    {"real of all digits", [](StepWriter& writer, const Stock&,
                              std::uint32_t i) { writer.WriteReal(static_cast<double>(i) / 7.0); }},
    {"integer", [](StepWriter& writer, const Stock&,
                   std::uint32_t i) { writer.WriteInteger(static_cast<std::int32_t>(i)); }},
    {"boolean", [](StepWriter& writer, const Stock&,
                   std::uint32_t i) { writer.WriteBoolean(static_cast<std::int32_t>(i % 2)); }},
    {"enumeration",
     [](StepWriter& writer, const Stock&, std::uint32_t i) {
       writer.WriteEnum(corvel::bench::kSampleEnum, static_cast<std::int32_t>(i % 8));
     }},
    {"text",
     [](StepWriter& writer, const Stock&, std::uint32_t) { writer.WriteText(u"Reference 4711"); }},
    {"text with escapes", [](StepWriter& writer, const Stock&,
                             std::uint32_t) { writer.WriteText(u"D\u00e4mmung 4711"); }},
    {"GUID", [](StepWriter& writer, const Stock& stock,
                std::uint32_t) { writer.WriteGuid(stock.guid.c_str()); }},
    {"reference", [](StepWriter& writer, const Stock& stock,
                     std::uint32_t i) { writer.WriteEntityRef(stock.entities[i % 64]); }},
    {"list of 4 references", [](StepWriter& writer, const Stock& stock,
                                std::uint32_t) { writer.WriteEntityRefList(stock.entityList); }},
    {"list of 3 reals", [](StepWriter& writer, const Stock& stock,
                           std::uint32_t) { writer.WriteRealList(stock.reals); }},
    {"list of 3 integers", [](StepWriter& writer, const Stock& stock,
                              std::uint32_t) { writer.WriteIntegerList(stock.integers); }},
    {"list of 2 texts", [](StepWriter& writer, const Stock& stock,
                           std::uint32_t) { writer.WriteStringList(stock.texts); }},
    {"2 lists of 3 reals", [](StepWriter& writer, const Stock& stock,
                              std::uint32_t) { writer.WriteRealLists(stock.realLists); }},
};

void WriteAttributes(benchmark::State& state, const Kind& kind) {
  const Stock stock;
  corvel::test::MemoryOutpoutStream stream;
  StepWriter writer(stream);
  std::size_t bytes = 0;
  for (auto _ : state) {
    for (std::uint32_t i = 0; i < kValues; ++i) kind.write(writer, stock, i);
    state.PauseTiming();
    bytes = stream.Text().size();
    stream.Clear();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kValues);
  state.SetBytesProcessed(state.iterations() * static_cast<long>(bytes));
}

[[maybe_unused]] const bool registered = [] {
  for (const Kind& kind : kKinds) {
    benchmark::RegisterBenchmark((std::string("Writer/") + kind.name).c_str(), WriteAttributes,
                                 kind);
  }
  return true;
}();

}  // namespace
