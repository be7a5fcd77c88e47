#include "step/writer/lines_in_order.h"

#include <algorithm>
#include <limits>

#include "platform/prefetch.h"

namespace corvel {

namespace {

// The taker has read the text of the run before, so that its lines lie in the cache of his core:
// two are sent for with each object, well ahead of where they are written.
void FetchRoomBehind(std::string_view text) {
  constexpr std::size_t kAhead = 1024;
  constexpr std::size_t kCacheLine = 64;
  const char* const end = text.data() + text.size();
  platform::PrefetchToWrite(end + kAhead);
  platform::PrefetchToWrite(end + kAhead + kCacheLine);
}

// Calls visit(object) for all from `first` to `last`: number by number where they are dense, and
// over each gap at once.
template <class Visit>
void VisitObjects(const NumberTable& table, std::uint32_t first, std::uint32_t last, Visit visit) {
  for (std::uint32_t number = first;; ++number) {
    IFC::IfcEntity* object = table.Find(number);
    if (object == nullptr) {
      const NumberTable::Entry behindTheGap = table.AtOrAfter(number);
      if (!behindTheGap || behindTheGap.number > last) return;
      number = behindTheGap.number;
      object = behindTheGap.entity;
    }
    visit(number, *object);
    if (number == last) return;
  }
}

// The last of `count` numbers from `first` on, if there are so many.
std::uint32_t LastOf(std::uint32_t first, std::uint32_t count) {
  return first + std::min(count - 1, std::numeric_limits<std::uint32_t>::max() - first);
}

class MarkersOfRange final : public platform::Job {
 public:
  MarkersOfRange(const NumberTable& table, std::uint32_t first, std::uint32_t last)
      : table_(table), first_(first), last_(last) {}

 private:
  void Run() override {
    VisitObjects(table_, first_, last_, [](std::uint32_t number, IFC::IfcEntity& object) {
      if (object.marker != IFC::kDeleted) object.marker = number;
    });
  }

  const NumberTable& table_;
  std::uint32_t first_;
  std::uint32_t last_;
};

}  // namespace

LinesOfRange::LinesOfRange(const NumberTable& table, NumberForm numbers)
    : table_(table), text_(kLongestText), writer_(text_, numbers, StepWriter::Carried::kRefused) {}

void LinesOfRange::Run() {
  // Objects behind that much text are left to the taker, so that few lines are made in vain.
  constexpr std::size_t kEnoughText = 2 * kUsualText;
  text_.StepBack(text_.Text().size());
  ends_.clear();
  bool isComplete = true;
  VisitObjects(table_, first_, last_, [&](std::uint32_t /*number*/, const IFC::IfcEntity& object) {
    FetchRoomBehind(text_.Text());
    isComplete = text_.Text().size() < kEnoughText && WriteLine(object) && isComplete;
    ends_.push_back(static_cast<std::uint32_t>(text_.Text().size()));
  });
  isComplete_ = isComplete;
}

std::span<const IFC::IfcEntity* const> LinesOfRange::Objects() const {
  if (objects_.empty()) {
    VisitObjects(table_, first_, last_, [this](std::uint32_t /*number*/, IFC::IfcEntity& object) {
      objects_.push_back(&object);
    });
  }
  return objects_;
}

bool LinesOfRange::WriteLine(const IFC::IfcEntity& object) {
  if (object.carries) return false;
  const std::size_t begin = text_.Text().size();
  try {
    writer_.WriteEntityLine(object);
    return true;
  } catch (...) {
    // Whatever it is, it comes again when the taker writes the object, and is told then.
    text_.StepBack(text_.Text().size() - begin);
    return false;
  }
}

LinesInOrder::LinesInOrder(unsigned threads, const NumberTable& table, NumberForm numbers)
    : table_(table), next_(table.First()), pool_(threads) {
  FillMarkers();
  const std::size_t count = kRangesPerThread * std::max(1U, threads);
  ranges_.reserve(count);
  while (ranges_.size() < count && next_) {
    ranges_.push_back(std::make_unique<LinesOfRange>(table, numbers));
    Begin(*ranges_.back());
  }
}

void LinesInOrder::FillMarkers() {
  std::vector<std::unique_ptr<MarkersOfRange>> ranges;
  for (NumberTable::Entry at = table_.First(); at;) {
    const std::uint32_t last = LastOf(at.number, LinesOfRange::kMostNumbers);
    ranges.push_back(std::make_unique<MarkersOfRange>(table_, at.number, last));
    at = table_.Next(last);
  }
  for (const auto& range : ranges) pool_.Submit(*range);
  for (const auto& range : ranges) pool_.Finish(*range);
}

const LinesOfRange* LinesInOrder::Next() {
  // The one that was taken last is free again.
  if (taken_ != 0) Begin(*ranges_[(taken_ - 1) % ranges_.size()]);
  if (taken_ == begun_) return nullptr;
  LinesOfRange& range = *ranges_[taken_ % ranges_.size()];
  pool_.Finish(range);
  ++taken_;
  LearnFrom(range);
  return &range;
}

void LinesInOrder::Begin(LinesOfRange& range) {
  if (!next_) return;
  const auto wanted = static_cast<std::uint32_t>(std::clamp<std::size_t>(
      LinesOfRange::kUsualText / (bytesPerNumber_ + 1), 1, LinesOfRange::kMostNumbers));
  const std::uint32_t last = LastOf(next_.number, wanted);
  range.SetNumbers(next_.number, last);
  pool_.Submit(range);
  ++begun_;
  next_ = table_.Next(last);
}

// A line that was left to the taker may have been a long one.
void LinesInOrder::LearnFrom(const LinesOfRange& range) {
  const std::size_t bytes =
      range.Text().size() + (range.IsComplete() ? 0 : LinesOfRange::kUsualText);
  bytesPerNumber_ = (3 * bytesPerNumber_ + bytes / range.NumberCount()) / 4;
}

}  // namespace corvel
