#include "step/reader/parallel/parallel_reading.h"

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

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

class ParallelReading::Step final : public platform::Job {
 public:
  explicit Step(ParallelReading& reading) : reading_(reading) {}

  void Run() override {
    if (!isFiled) reading_.cutting_.Next(turn, batch);
    BatchReader& reader = reading_.ReaderOfThisThread();
    if (isFiled) {
      Bind(reader);
    } else {
      reader.Read(batch);
    }
  }
  void Bind(BatchReader& reader) {
    reader.Bind(batch);
    batch.places.clear();
  }

  RecordBatch batch;
  std::size_t turn = 0;  // to cut
  bool isFiled = false;
  bool isSubmitted = false;

 private:
  ParallelReading& reading_;
};

ParallelReading::ParallelReading(Parser& parser, Pass pass)
    : parser_(parser),
      pass_(pass),
      cutting_(*parser.scanner->Stream(), parser.aheadRules.batchSize),
      position_(parser.scanner->Stream()->Position()),
      line_(parser.scanner->Line()),
      sorts_(parser.factories->mask + std::size_t{1}),
      pool_(parser.aheadRules.threads) {
  parser_.scanner->Stream()->HoldReports();
  IFC::MainContainer& container = *parser_.mainContainer;
  for (unsigned i = 0; i < pool_.Threads(); ++i) {
    MemoryPool& pool = container.PoolOfThread(i);
    readers_.push_back(pass_ == Pass::kFirst ? std::make_unique<BatchReader>(parser_, pool)
                                             : std::make_unique<BatchReader>(
                                                   parser_, pool, container.originalEntities));
  }
  for (std::size_t i = 0; i < kStepsOfThread * pool_.Threads(); ++i) {
    steps_.push_back(std::make_unique<Step>(*this));
  }
}

ParallelReading::~ParallelReading() {
  pool_.Drop();
  for (const auto& step : steps_) step->Bind(*readers_.front());
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
  // It may still be bound.
  if (std::exchange(step.isSubmitted, false)) pool_.Finish(step);
  step.batch.Clear();
  step.turn = nextTurn_++;
  step.isFiled = false;
  step.isSubmitted = true;
  pool_.Submit(step);
  ++underWay_;
}

ParallelReading::Taken ParallelReading::TakeFirst() {
  Step& step = StepAt(0);
  step.isSubmitted = false;
  pool_.Finish(step);
  RecordBatch& batch = step.batch;
  if (batch.bytes.empty()) {
    pool_.Drop();
    return Taken::kNoMore;
  }
  step.isFiled = true;
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
  if (!batch.places.empty()) {
    step.isSubmitted = true;
    pool_.Submit(step);
  }
  return Taken::kYes;
}

// As the parser does it: a number that is not filed yet sends the record to the second pass.
ParallelReading::Taken ParallelReading::FileRecord(RecordBatch& batch, std::size_t index) {
  const RecordBatch::Record& record = batch.records[index];
  const bool allAreFiled = LookUp(batch, index);
  if (!parser_.mainContainer->AddUnseen(record.entity, record.number, SortOf(record))) {
    batch.targets.resize(NumbersBefore(batch, index));
    return Taken::kLeftToParser;
  }
  parser_.row_ = parser_.factories->slots + record.slot;
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

std::ptrdiff_t ParallelReading::SortOf(const RecordBatch::Record& record) {
  auto& sort = sorts_[record.slot];
  if (!sort) sort = IFC::MainContainer::SortOf(record.entity);
  return *sort;
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

BatchReader& ParallelReading::ReaderOfThisThread() {
  const std::thread::id thread = std::this_thread::get_id();
  const std::scoped_lock lock(mutex_);
  const auto at = std::find(threads_.begin(), threads_.end(), thread);
  const auto index = static_cast<std::size_t>(at - threads_.begin());
  if (at == threads_.end()) threads_.push_back(thread);
  return *readers_[index];
}

}  // namespace corvel
