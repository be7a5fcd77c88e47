// Bytes to tokens, beside a loop that only tells them apart.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "models_in_memory.h"
#include "step/reader/scanner.h"
#include "support/memory_streams.h"
#include "token_loop.h"

namespace {

constexpr std::uint32_t kElements = 1000;

void Tokens(benchmark::State& state) {
  const std::string text = corvel::bench::ExportRecords(kElements);
  for (auto _ : state) {
    corvel::Scanner scanner(std::make_unique<corvel::test::MemoryInputStream>(text),
                            corvel::bench::Ignore);
    while (!scanner.NextToken()->Is(corvel::TokenType::EndOfFileToken)) {
    }
  }
  state.SetBytesProcessed(state.iterations() * static_cast<long>(text.size()));
}
BENCHMARK(Tokens)->Name("Scanner/tokens")->Unit(benchmark::kMillisecond);

void TokensAlone(benchmark::State& state) {
  const std::string text = corvel::bench::ExportRecords(kElements);
  for (auto _ : state) benchmark::DoNotOptimize(corvel::bench::CountTokens(text));
  state.SetBytesProcessed(state.iterations() * static_cast<long>(text.size()));
}
BENCHMARK(TokensAlone)->Name("Scanner/byte loop alone")->Unit(benchmark::kMillisecond);

}  // namespace
