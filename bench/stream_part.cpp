// Bytes in and out, without anything that looks at them.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "models_in_memory.h"
#include "platform/file.h"
#include "step/streams/open_input.h"
#include "step/streams/open_output.h"
#include "support/temporary_folder.h"

namespace {

constexpr std::size_t kBufferSize = 1 << 20;
constexpr std::size_t kBytes = 16 << 20;
constexpr std::string_view kRecord = "#1234567=IFCCARTESIANPOINT((1234.5,-0.25,3.));\n";

std::string Text() {
  std::string text;
  while (text.size() < kBytes) text += kRecord;
  return text;
}

template <bool kByteByByte>
void ReadStream(benchmark::State& state) {
  const corvel::test::TemporaryFolder folder;
  const std::string text = Text();
  const corvel::WideString path = folder.Write("in.ifc", text);
  for (auto _ : state) {
    const auto stream = FileStream::OpenInput(path, kBufferSize, corvel::bench::Ignore);
    if constexpr (kByteByByte) {
      unsigned sum = 0;
      for (std::size_t i = 0; i < text.size(); ++i) {
        sum += static_cast<unsigned>(stream->GetChar());
        if (stream->LastWasSemicolon()) stream->ClearStatementText();
      }
      benchmark::DoNotOptimize(sum);
    } else {
      while (stream->Refill()) {
        stream->SetCursor(stream->WindowEnd());
        stream->ClearStatementText();
      }
    }
  }
  state.SetBytesProcessed(state.iterations() * static_cast<long>(text.size()));
}
BENCHMARK(ReadStream<false>)->Name("Streams/in/window")->Unit(benchmark::kMillisecond);
BENCHMARK(ReadStream<true>)->Name("Streams/in/byte by byte")->Unit(benchmark::kMillisecond);

// Each record ends as the writer ends a group: the last comma is taken back.
void WriteStream(benchmark::State& state) {
  const corvel::test::TemporaryFolder folder;
  const corvel::WideString path = folder.Path("out.ifc");
  constexpr std::size_t kRecords = kBytes / kRecord.size();
  for (auto _ : state) {
    platform::File file;
    file.Open(path, platform::OpenMode::kWrite);
    const auto stream = FileStream::OpenOutput(path, std::move(file), corvel::bench::Ignore);
    for (std::size_t i = 0; i < kRecords; ++i) {
      stream->Append(kRecord.substr(0, kRecord.size() - 3));
      stream->Append(",");
      stream->StepBack(1);
      stream->Append(kRecord.substr(kRecord.size() - 3));
    }
    if (!stream->Close()) state.SkipWithError("the output cannot be written");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<long>(kRecords * kRecord.size()));
}
BENCHMARK(WriteStream)->Name("Streams/out")->Unit(benchmark::kMillisecond);

}  // namespace
