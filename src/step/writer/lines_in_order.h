// Writing in order: several threads make the lines of a model's objects, one takes them in the
// order in which it would make them alone.
//
// The numbers are cut into ranges. So many of these are under way that no thread waits for the one
// who writes, and no more: the memory is kRangesPerThread times kLongestText for each thread and
// what is noted of so many lines, whatever the model.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "core/entity.h"
#include "core/number_table.h"
#include "platform/worker_pool.h"
#include "step/numbers/number_form.h"
#include "step/streams/outpout_text_stream.h"
#include "step/writer/step_writer.h"

namespace corvel {

// The lines of one range. Reports nothing and writes nowhere: what it cannot do as it should be
// done it leaves to the one who takes it. Keeps away from the cache lines of its neighbours, since
// each is another thread's.
class alignas(128) LinesOfRange final : public platform::Job {
 public:
  // As much text as a range is meant to have, and as much as it may have.
  static constexpr std::size_t kUsualText = std::size_t{64} << 10;
  static constexpr std::size_t kLongestText = std::size_t{384} << 10;
  static constexpr std::uint32_t kMostNumbers = 16'384;

  // Borrows the table of objects.
  LinesOfRange(const NumberTable& table, NumberForm numbers);

  // Number of the objects that are filed under its numbers.
  std::size_t ObjectCount() const { return ends_.size(); }
  // These objects by ascending number. Looked up at the first call, since few takers need them.
  std::span<const IFC::IfcEntity* const> Objects() const;
  // As StepWriter::WriteEntityLine makes it. Empty for a deleted object, and for one that is left
  // to the taker: it carries something, it throws, or its line is too long.
  std::string_view LineOf(std::size_t index) const {
    const std::size_t begin = index == 0 ? 0 : ends_[index - 1];
    return text_.Text().substr(begin, ends_[index] - begin);
  }
  // All lines; nothing was left to the taker.
  bool IsComplete() const { return isComplete_; }
  std::string_view Text() const { return text_.Text(); }

  // The numbers of the next run, the last of them among them. Not while one is under way.
  void SetNumbers(std::uint32_t first, std::uint32_t last) {
    first_ = first;
    last_ = last;
    objects_.clear();
  }
  std::size_t NumberCount() const { return std::size_t{last_} - first_ + 1; }

 private:
  void Run() override;
  bool WriteLine(const IFC::IfcEntity& object);

  const NumberTable& table_;
  std::uint32_t first_ = 0;
  std::uint32_t last_ = 0;
  bool isComplete_ = true;
  mutable std::vector<const IFC::IfcEntity*> objects_;  // of the taker
  std::vector<std::uint32_t> ends_;                     // of the lines, in the text
  FileStream::OutpoutTextStream text_;
  StepWriter writer_;
};

// From the first range to the last. The model must not change meanwhile; whoever stops early
// destroys this, which waits for the ranges under way and begins no other.
class LinesInOrder {
 public:
  static constexpr std::size_t kRangesPerThread = 4;

  // Gives each object that is not deleted the number that it is filed under as its marker, as
  // MainContainer::FillMarkers does: lines refer to objects of other ranges. `threads`: that of the
  // taker among them. `table` is borrowed; nothing is filed under 0. Throws std::bad_alloc.
  LinesInOrder(unsigned threads, const NumberTable& table, NumberForm numbers);

  // Null behind the last one; void after the next call.
  const LinesOfRange* Next();

 private:
  void FillMarkers();
  void Begin(LinesOfRange& range);
  void LearnFrom(const LinesOfRange& range);

  const NumberTable& table_;
  NumberTable::Entry next_;  // the first object of the next range
  // Of the ranges that were taken last. At first more than any model has: small ranges come early.
  std::size_t bytesPerNumber_ = 2048;
  std::vector<std::unique_ptr<LinesOfRange>> ranges_;  // in turn
  std::size_t begun_ = 0;
  std::size_t taken_ = 0;
  platform::WorkerPool pool_;
};

}  // namespace corvel
