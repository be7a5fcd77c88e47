// Two models become one: their parents lists, which a merge begins with, and the fold itself.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "merge/merge_documents.h"
#include "models_in_memory.h"

namespace {

using corvel::IfcDocument;
using corvel::bench::ExportRecords;
using corvel::bench::ModelFile;

void FillParents(benchmark::State& state) {
  const ModelFile file(ExportRecords(static_cast<std::uint32_t>(state.range(0))));
  for (auto _ : state) {
    state.PauseTiming();
    std::unique_ptr<IfcDocument> document = file.Read();
    state.ResumeTiming();
    document->mainContainer->FillParentsLists();
    state.PauseTiming();
    document = nullptr;
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<long>(file.Bytes()));
  state.SetComplexityN(state.range(0));
}

void Fold(benchmark::State& state) {
  const auto elements = static_cast<std::uint32_t>(state.range(0));
  const ModelFile first(ExportRecords(elements, '1'));
  const ModelFile second(ExportRecords(elements, '2'));
  for (auto _ : state) {
    state.PauseTiming();
    IFC::MainContainer::ResetUniqueMarker();
    std::unique_ptr<IfcDocument> destination = first.Read();
    std::unique_ptr<IfcDocument> source = second.Read();
    state.ResumeTiming();
    if (corvel::MergeDocuments({destination.get(), source.get()}, {}, {}) == nullptr) {
      state.SkipWithError("the models cannot be merged");
    }
    state.PauseTiming();
    destination = nullptr;
    source = nullptr;
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<long>(first.Bytes() + second.Bytes()));
  state.SetComplexityN(state.range(0));
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->RangeMultiplier(2)->Range(1 << 9, 1 << 12)->Complexity(benchmark::oN);
  benchmark->Unit(benchmark::kMillisecond);
}
BENCHMARK(FillParents)->Name("Parents")->Apply(Sizes);
BENCHMARK(Fold)->Name("Fold")->Apply(Sizes);

}  // namespace
