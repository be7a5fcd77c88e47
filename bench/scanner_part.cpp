// Bytes to tokens, beside a loop that only looks at each byte.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "step/reader/scanner.h"
#include "support/memory_streams.h"

namespace {

int Ignore(const char*, const corvel::WideString&, int) { return 0; }

std::string Records() {
  std::string text;
  for (int i = 1; i < 20000; ++i) {
    const std::string number = std::to_string(i * 3);
    text += "#" + number + "=IFCCARTESIANPOINT((1234.5,-0.25,3.));\n#" + number +
            "1=IFCPROPERTYSINGLEVALUE('Reference',$,IFCIDENTIFIER('W-" + number + "'),$);\n";
  }
  return text;
}

void Tokens(benchmark::State& state) {
  const std::string text = Records();
  for (auto _ : state) {
    corvel::Scanner scanner(std::make_unique<corvel::test::MemoryInputStream>(text), Ignore);
    while (!scanner.NextToken()->Is(corvel::TokenType::EndOfFileToken)) {
    }
  }
  state.SetBytesProcessed(state.iterations() * static_cast<long>(text.size()));
}
BENCHMARK(Tokens);

void BytesAlone(benchmark::State& state) {
  const std::string text = Records();
  for (auto _ : state) {
    std::size_t tokens = 0;
    bool inWord = false;
    for (const char c : text) {
      const bool isWord = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || c == '.' || c == '-';
      tokens += static_cast<std::size_t>(!isWord || !inWord);
      inWord = isWord;
    }
    benchmark::DoNotOptimize(tokens);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<long>(text.size()));
}
BENCHMARK(BytesAlone);

}  // namespace
