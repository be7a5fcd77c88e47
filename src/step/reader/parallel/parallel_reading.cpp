#include "step/reader/parallel/parallel_reading.h"

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>

#include "step/reader/parser.h"

namespace corvel {

namespace {

std::uint32_t NumbersBefore(const RecordBatch& batch, std::size_t index) {
  return index == 0 ? 0 : batch.records[index - 1].numbersEnd;
}
std::uint32_t TextBefore(const RecordBatch& batch, std::size_t index) {
  return index == 0 ? 0 : batch.records[index - 1].end;
}

}  // namespace

// A thread comes back to what is its own, which is in its core's cache: so are the objects that it
// has read, and it binds them itself when they have been filed.
struct ParallelReading::Worker {
  std::unique_ptr<BatchReader> reader;
  std::mutex mutex;
  std::vector<RecordBatch*> filed;  // and not bound yet; by `mutex`
};

class ParallelReading::Step final : public platform::Job {
 public:
  explicit Step(ParallelReading& reading) : reading_(reading) {}

  void Run() override {
    Worker& self = reading_.WorkerOfThisThread();
    Bind(self, *self.reader);
    reading_.cutting_.Next(turn, batch);
    worker = &self;
    self.reader->Read(batch);
  }

  RecordBatch batch;
  std::size_t turn = 0;      // to cut
  Worker* worker = nullptr;  // who has read it

 private:
  ParallelReading& reading_;
};

ParallelReading::ParallelReading(Parser& parser, Pass pass)
    : parser_(parser),
      pass_(pass),
      cutting_(*parser.scanner->Stream(), parser.aheadRules.batchSize),
      position_(parser.scanner->Stream()->Position()),
      line_(parser.scanner->Line()),
      pool_(parser.aheadRules.threads) {
  parser_.scanner->Stream()->HoldReports();
  IFC::MainContainer& container = *parser_.mainContainer;
  for (unsigned i = 0; i < pool_.Threads(); ++i) {
    MemoryPool& pool = container.PoolOfThread(i);
    workers_.push_back(std::make_unique<Worker>());
    workers_.back()->reader =
        pass_ == Pass::kFirst
            ? std::make_unique<BatchReader>(parser_, pool)
            : std::make_unique<BatchReader>(parser_, pool, container.originalEntities);
  }
  for (std::size_t i = 0; i < kStepsOfThread * pool_.Threads(); ++i) {
    steps_.push_back(std::make_unique<Step>(*this));
  }
}

ParallelReading::~ParallelReading() {
  pool_.Drop();
  BatchReader& reader = *workers_.front()->reader;
  for (const auto& worker : workers_) Bind(*worker, reader);
  // Where the pass has ended in the middle of a batch.
  reader.Bind(StepAt(0).batch);
}

// Whatever is filed of what `worker` has read.
void ParallelReading::Bind(Worker& worker, BatchReader& reader) {
  const std::scoped_lock lock(worker.mutex);
  for (RecordBatch* const batch : worker.filed) reader.Bind(*batch);
  worker.filed.clear();
}

ParallelReading::Step& ParallelReading::StepAt(std::size_t underWay) {
  return *steps_[(first_ + underWay) % steps_.size()];
}

bool ParallelReading::Run() {
  for (;;) {
    while (underWay_ < kUnderWayOfThread * pool_.Threads()) SubmitNext();
    switch (TakeFirst()) {
      case Taken::kYes: break;
      case Taken::kNoMore: parser_.scanner->Stream()->TellHeld(); [[fallthrough]];
      case Taken::kLeftToParser: return true;
      case Taken::kPassIsOver: return false;
    }
  }
}

void ParallelReading::SubmitNext() {
  Step& step = StepAt(underWay_);
  // Its last batch may not be bound yet.
  if (step.worker != nullptr) Bind(*step.worker, *WorkerOfThisThread().reader);
  step.batch.Clear();
  step.turn = nextTurn_++;
  pool_.Submit(step);
  ++underWay_;
}

ParallelReading::Taken ParallelReading::TakeFirst() {
  Step& step = StepAt(0);
  pool_.Finish(step);
  RecordBatch& batch = step.batch;
  if (batch.bytes.empty()) {
    pool_.Drop();
    return Taken::kNoMore;
  }
  for (std::size_t i = 0; i < batch.records.size(); ++i) {
    if (position_ + batch.records[i].end > batch.troubleAt) {
      LeaveToParser(i);
      return Taken::kLeftToParser;
    }
    const Taken taken = pass_ == Pass::kFirst ? FileRecord(batch, i) : TakeAgain(batch, i);
    if (taken == Taken::kLeftToParser) {
      LeaveToParser(i);
      return taken;
    }
    if (taken == Taken::kPassIsOver) return taken;
  }
  if (!batch.isWhole) {
    LeaveToParser(batch.records.size());
    return Taken::kLeftToParser;
  }
  position_ += static_cast<std::int64_t>(batch.bytes.size());
  line_ += batch.stops.empty() ? 0 : batch.stops.back().line - 1;
  first_ = (first_ + 1) % steps_.size();
  --underWay_;
  const std::scoped_lock lock(step.worker->mutex);
  step.worker->filed.push_back(&batch);
  return Taken::kYes;
}

// As the parser does it: a number that is not filed yet sends the record to the second pass.
ParallelReading::Taken ParallelReading::FileRecord(RecordBatch& batch, std::size_t index) {
  const RecordBatch::Record& record = batch.records[index];
  const bool allAreFiled = LookUp(batch, index);
  parser_.row_ = parser_.factories->slots + record.slot;
  if (!parser_.mainContainer->AddUnseen(record.entity, record.number,
                                        parser_.SortOf(record.entity))) {
    batch.targets.resize(NumbersBefore(batch, index));
    return Taken::kLeftToParser;
  }
  parser_.skipped_.AtRecord(record.number);
  const std::uint32_t begin = TextBefore(batch, index);
  std::string_view text;
  if (!allAreFiled) text = {batch.bytes.data() + begin, record.end - begin};
  if (parser_.NoteRead(record.number, record.entity, text) &&
      parser_.TickFirstPass(position_ + record.end)) {
    return Taken::kYes;
  }
  PutBack(record.end, batch.stops[index].line);
  return Taken::kPassIsOver;
}

// Whether all are filed that the record refers to.
bool ParallelReading::LookUp(RecordBatch& batch, std::size_t index) {
  bool allAreFiled = true;
  for (std::size_t i = NumbersBefore(batch, index); i < batch.records[index].numbersEnd; ++i) {
    IFC::IfcEntity* const target =
        parser_.mainContainer->GetEntityByOrginalNumber(batch.numbers[i]);
    batch.targets.push_back(target);
    allAreFiled = allAreFiled && target != nullptr;
  }
  return allAreFiled;
}

ParallelReading::Taken ParallelReading::TakeAgain(const RecordBatch& batch, std::size_t index) {
  const RecordBatch::Record& record = batch.records[index];
  if (!parser_.PassHundredths(record.number)) {
    PutBack(batch.stops[index].numberEnd, batch.stops[index].line);
    return Taken::kPassIsOver;
  }
  parser_.saved_->CountReadRecord();
  if (parser_.ReportProgress(position_ + record.end)) return Taken::kYes;
  PutBack(record.end, batch.stops[index].line);
  parser_.CancelSecondPass();
  return Taken::kPassIsOver;
}

// From the record with the index `record` of the first batch on.
void ParallelReading::LeaveToParser(std::size_t record) {
  const RecordBatch& batch = StepAt(0).batch;
  PutBack(TextBefore(batch, record), record == 0 ? 1 : batch.stops[record - 1].line);
  FileStream::InputStream& stream = *parser_.scanner->Stream();
  if (cutting_.TroubleAt() == std::numeric_limits<std::int64_t>::max()) stream.TellHeld();
}

// All but so many bytes of the first batch, which end in its line `line`.
void ParallelReading::PutBack(std::size_t taken, std::uint32_t line) {
  pool_.Drop();
  std::string rest;
  for (std::size_t i = 0; i < underWay_; ++i) {
    const std::vector<char>& bytes = StepAt(i).batch.bytes;
    rest.append(bytes.data(), bytes.size());
  }
  rest.erase(0, taken);
  parser_.scanner->GoOnInLine(line_ + line - 1);
  FileStream::InputStream& stream = *parser_.scanner->Stream();
  // What the stream has held back is told where the bytes end that came before.
  const std::int64_t before = cutting_.TroubleAt() - (position_ + static_cast<std::int64_t>(taken));
  const auto ahead = static_cast<std::size_t>(
      std::clamp<std::int64_t>(before, 0, static_cast<std::int64_t>(rest.size())));
  stream.Replace(0, rest.substr(ahead));
  stream.Replace(0, rest.substr(0, ahead), true);
  underWay_ = 0;
}

ParallelReading::Worker& ParallelReading::WorkerOfThisThread() {
  const std::thread::id thread = std::this_thread::get_id();
  const std::scoped_lock lock(mutex_);
  const auto at = std::find(threads_.begin(), threads_.end(), thread);
  const auto index = static_cast<std::size_t>(at - threads_.begin());
  if (at == threads_.end()) threads_.push_back(thread);
  return *workers_[index];
}

}  // namespace corvel
