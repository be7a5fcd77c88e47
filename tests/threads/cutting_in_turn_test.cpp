// Threads that cut one input together.
#include "step/reader/parallel/cutting_in_turn.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "step/streams/input_view_stream.h"
#include "support/memory_streams.h"

namespace corvel {
namespace {

std::string ManyRecords() {
  std::string text;
  for (int i = 1; i < 5000; ++i) text += "#" + std::to_string(i) + "=A('it''s;');\n";
  return text;
}

TEST(CuttingInTurnTest, BatchesStandInTheOrderOfTurnsWhoeverCutsThem) {
  const std::string text = ManyRecords();
  FileStream::InputViewStream stream(text);
  CuttingInTurn cutting(stream, 200);
  std::vector<RecordBatch> batches(1000);
  std::atomic<std::size_t> nextTurn = 0;
  std::vector<std::thread> threads;
  threads.reserve(4);
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (std::size_t turn = 0; (turn = nextTurn++) < batches.size();) {
        cutting.Next(turn, batches[turn]);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::string all;
  std::size_t filled = 0;
  for (const RecordBatch& batch : batches) {
    all.append(batch.bytes.data(), batch.bytes.size());
    if (!batch.bytes.empty()) ++filled;
  }
  EXPECT_EQ(text, all);
  EXPECT_GT(filled, 100U);
  EXPECT_TRUE(batches.back().bytes.empty());
}

TEST(CuttingInTurnTest, ABatchKnowsOfTroubleThatItsOwnBytesMeet) {
  test::BreakingInputStream<std::runtime_error> stream("#1=A();#2=A();#3=A(",
                                                       std::runtime_error("lost"));
  CuttingInTurn cutting(stream, 3);
  std::vector<RecordBatch> batches(4);
  for (std::size_t turn = 0; turn < batches.size(); ++turn) cutting.Next(turn, batches[turn]);
  constexpr std::int64_t kNowhere = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ(kNowhere, batches[0].troubleAt);
  EXPECT_EQ(kNowhere, batches[1].troubleAt);
  EXPECT_EQ(0, batches[2].troubleAt);  // where such a stream always stands
  EXPECT_EQ(5U, batches[2].bytes.size());
  EXPECT_TRUE(batches[3].bytes.empty());
}

}  // namespace
}  // namespace corvel
