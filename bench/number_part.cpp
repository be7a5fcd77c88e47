// Numbers as text, both ways.
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "step/numbers/number_text.h"

namespace {

// Coordinates as exporters write them: few digits mostly, all digits sometimes.
std::vector<double> Coordinates() {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> metres(-500.0, 500.0);
  std::vector<double> values(4096);
  for (std::size_t i = 0; i < values.size(); ++i) {
    const double value = metres(random);
    values[i] = i % 4 == 0 ? value : static_cast<double>(static_cast<long>(value * 1000)) / 1000;
  }
  return values;
}

void FormatReals(benchmark::State& state) {
  const std::vector<double> values = Coordinates();
  char text[corvel::kNumberRoom];
  for (auto _ : state) {
    for (const double value : values) benchmark::DoNotOptimize(corvel::FormatReal(value, text));
  }
  state.SetItemsProcessed(state.iterations() * static_cast<long>(values.size()));
}
BENCHMARK(FormatReals)->Name("Numbers/format reals");

void ParseReals(benchmark::State& state) {
  std::vector<std::string> texts;
  for (const double value : Coordinates()) {
    char text[corvel::kNumberRoom];
    texts.emplace_back(text, corvel::FormatReal(value, text));
  }
  for (auto _ : state) {
    for (const std::string& text : texts) benchmark::DoNotOptimize(corvel::ParseReal(text));
  }
  state.SetItemsProcessed(state.iterations() * static_cast<long>(texts.size()));
}
BENCHMARK(ParseReals)->Name("Numbers/parse reals");

}  // namespace
