// Reads a pass with several threads, as far as nothing has to be reported.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/worker_pool.h"
#include "step/reader/parallel/batch_reader.h"
#include "step/reader/parallel/cutting_in_turn.h"
#include "step/reader/parallel/record_batch.h"

namespace corvel {

class Parser;

// All threads cut batches from the input, in turn, and read them. The parser's own thread takes
// what has been read in the order of the file, and does for each record what a pass of one thread
// does: filing, looking up what it refers to, ticks, the log, the work file. So whatever can be
// seen of a pass is the same for any number of threads.
//
// A thread has one BatchReader at a time, with a pool of its own that belongs to the container, and
// kStepsOfThread batches: some 3 MiB beside its share of the model.
class ParallelReading {
 public:
  enum class Pass : std::uint8_t { kFirst, kSecond };

  // Borrows `parser`, which stands behind a record of the pass, or at its start. Objects and texts
  // of the first pass come into pools of the parser's container.
  ParallelReading(Parser& parser, Pass pass);
  // All threads have ended then, and whatever has been filed is bound.
  ~ParallelReading();
  ParallelReading(const ParallelReading&) = delete;
  ParallelReading& operator=(const ParallelReading&) = delete;

  // Takes records as far as all is plain. True: the parser stands before the next one, and goes on
  // alone. False: the pass is over. Throws what the parser's own steps throw.
  bool Run();

 private:
  static constexpr std::size_t kUnderWayOfThread = 3;
  static constexpr std::size_t kStepsOfThread = 2 * kUnderWayOfThread;

  enum class Taken : std::uint8_t { kYes, kNoMore, kLeftToParser, kPassIsOver };
  // A batch on its way: it is cut and read, filed, and then its references are bound.
  class Step;
  struct Worker;

  Step& StepAt(std::size_t underWay);
  void SubmitNext();
  Taken TakeFirst();
  Taken TakeAgain(const RecordBatch& batch, std::size_t index);
  Taken FileRecord(RecordBatch& batch, std::size_t index);
  bool LookUp(RecordBatch& batch, std::size_t index);
  void LeaveToParser(std::size_t record);
  void PutBack(std::size_t taken, std::uint32_t line);
  Worker& WorkerOfThisThread();
  static void Bind(Worker& worker, BatchReader& reader);

  Parser& parser_;
  Pass pass_;
  CuttingInTurn cutting_;
  std::size_t nextTurn_ = 0;                      // that nobody has been given
  std::int64_t position_;                         // in the input, of the first batch under way
  std::uint32_t line_;                            // of its start
  std::vector<std::unique_ptr<Worker>> workers_;  // one for each thread
  std::mutex mutex_;
  std::vector<std::thread::id> threads_;      // of the first workers; by `mutex_`
  std::vector<std::unique_ptr<Step>> steps_;  // used in turn
  std::size_t first_ = 0;                     // of those under way
  std::size_t underWay_ = 0;
  platform::WorkerPool pool_;
};

}  // namespace corvel
