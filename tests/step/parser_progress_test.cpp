// The ticks of a read, and what becomes of a read that is cancelled at one of them.
#include <gtest/gtest.h>

#include "core/cancellation.h"
#include "support/read_model.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using test::ModelFile;
using Model = test::ReadModel;
using test::Tick;

constexpr std::int64_t kMillisecond = 1'000'000;

Tick FirstPass(int percent) { return {percent, 0, u"", false, 100}; }
Tick SecondPass(int percent, int share) { return {percent, share, u"", share >= 1, 100}; }

// `count` records of `size` bytes each, in a line of their own. All but the last refer to the next
// one when `forward`.
std::string Records(unsigned count, std::size_t size, bool forward = false) {
  std::string records;
  for (unsigned number = 1; number <= count; ++number) {
    std::string record = "#" + std::to_string(number) + "=IFCLOCALPLACEMENT(" +
                         (forward ? "#" + std::to_string(number + 1) : "$") + ",$);\n";
    record.insert(record.size() - 3, std::string(size - record.size(), ' '));
    records += record;
  }
  return records;
}

class ReadProgress : public test::ReadTest {
 protected:
  std::vector<int> Percents(int stageWeight) const {
    std::vector<int> percents;
    for (const Tick& tick : *progress_) {
      if (tick.stageWeight == stageWeight) percents.push_back(tick.value);
    }
    return percents;
  }
};

// The percents of `file` behind each of its records.
std::vector<int> PercentsOfRecords(const std::string& file) {
  std::vector<int> percents;
  const std::size_t data = file.find("DATA;") + 5;
  for (std::size_t at = file.find(';', data); file[at + 2] == '#' || file[at - 1] == ')';
       at = file.find(';', at + 1)) {
    percents.push_back(static_cast<int>((at + 1) * 100 / file.size()));
  }
  return percents;
}

TEST_F(ReadProgress, ASlowReadTicksBehindEveryRecord) {
  platform_.nanosecondsPerCall = 60 * kMillisecond;
  const std::string records = Records(9, 100);
  Model model(records);
  EXPECT_TRUE(model.IsRead());
  const std::vector<int> percents = PercentsOfRecords(ModelFile(records));
  ASSERT_EQ(9u, percents.size());
  std::vector<Tick> expected;
  for (const int percent : percents) expected.push_back(FirstPass(percent));
  // The second pass has no bytes to go by, and counts on.
  expected.push_back(SecondPass(percents.back() + 1, 5));
  EXPECT_EQ(expected, *progress_);
}

TEST_F(ReadProgress, TheSecondPassStartsAnewAndHasAWeight) {
  platform_.nanosecondsPerCall = 60 * kMillisecond;
  Model model(Records(4, 100, true) + "#5=IFCLOCALPLACEMENT($,$);");
  EXPECT_TRUE(model.IsRead());
  ASSERT_EQ(4 * 100u, model.Folder().Read("model_TEMP.ifc").size());
  EXPECT_EQ((std::vector<Tick>{SecondPass(25, 5), SecondPass(50, 5), SecondPass(75, 5),
                               SecondPass(100, 5)}),
            std::vector<Tick>(progress_->end() - 4, progress_->end()));
  EXPECT_EQ(5u, Percents(0).size());
}

TEST_F(ReadProgress, TheWeightOfTheSecondPassIsAFifthOfTheFilesCutToAWholeNumber) {
  platform_.nanosecondsPerCall = 60 * kMillisecond;
  for (const auto& [fileCount, share] :
       {std::pair(1, 5), {2, 2}, {3, 1}, {4, 1}, {5, 1}, {6, 0}, {100, 0}}) {
    progress_.Forget();
    Model model(Records(2, 100, true), {.fileCount = fileCount});
    EXPECT_EQ(SecondPass(100, share), progress_->back()) << fileCount;
  }
}

TEST_F(ReadProgress, AtMostOneTickInFiftyMilliseconds) {
  platform_.nanosecondsPerCall = 10 * kMillisecond;
  const std::string records = Records(30, 100);
  Model model(records);
  const std::vector<int> all = PercentsOfRecords(ModelFile(records));
  std::vector<int> everyFifth;
  for (std::size_t i = 0; i < all.size(); i += 5) everyFifth.push_back(all[i]);
  EXPECT_EQ(everyFifth, Percents(0));
}

TEST_F(ReadProgress, FiftyMillisecondsAreEnough) {
  platform_.nanosecondsPerCall = 50 * kMillisecond;
  Model model(Records(10, 100));
  EXPECT_EQ(10u, Percents(0).size());
}

TEST_F(ReadProgress, OneTickIn64KiBWhenTheClockStands) {
  // 16 records are 65,536 bytes: a tick behind the first and then behind every sixteenth, as far
  // as the percent has risen.
  const std::string records = Records(400, 4096);
  Model model(records);
  EXPECT_TRUE(model.IsRead());
  const std::vector<int> all = PercentsOfRecords(ModelFile(records));
  std::vector<int> expected;
  for (std::size_t i = 16; i < all.size(); i += 16) expected.push_back(all[i]);
  EXPECT_EQ(0, all[0]) << "not above 0, so it is not sent";
  EXPECT_EQ(expected, Percents(0));
}

TEST_F(ReadProgress, NoPercentIsSentTwice) {
  platform_.nanosecondsPerCall = 60 * kMillisecond;
  Model model(Records(1000, 50));
  EXPECT_TRUE(model.IsRead());
  const std::vector<int> percents = Percents(0);
  ASSERT_GT(percents.size(), 90u);
  for (std::size_t i = 1; i < percents.size(); ++i) EXPECT_LT(percents[i - 1], percents[i]);
  EXPECT_LE(percents.back(), 100);
}

TEST_F(ReadProgress, NeverGoesBeyondAHundred) {
  platform_.nanosecondsPerCall = 60 * kMillisecond;
  std::string bytes = ModelFile(Records(3, 100));
  bytes.resize(bytes.rfind(");") + 2);
  Model model = Model::OfFile(bytes);
  EXPECT_TRUE(model.IsRead());
  EXPECT_EQ(FirstPass(100), progress_->back())
      << "101, for the empty second pass, is held to 100 and then no news";
}

TEST_F(ReadProgress, ARecordThatIsNotFiledTicksToo) {
  platform_.nanosecondsPerCall = 60 * kMillisecond;
  AnswerNo(2);
  const std::string records = Records(1, 100) + Records(1, 100);
  Model model(records);
  EXPECT_TRUE(model.IsRead());
  EXPECT_EQ(PercentsOfRecords(ModelFile(records)), Percents(0));
}

TEST_F(ReadProgress, NobodyNeedsToListen) {
  platform_.nanosecondsPerCall = 60 * kMillisecond;
  test::TemporaryFolder folder;
  IfcDocument document(false, test::RecordedReports::Reporter, nullptr);
  EXPECT_NE(0, document.OpenFile(folder.Write("a.ifc", ModelFile(Records(5, 100, true))), 1));
  EXPECT_TRUE(document.IsParsed());
}

// --- Cancelling ----------------------------------------------------------------------------------

class ReadCancelled : public ReadProgress {
 protected:
  ReadCancelled() { platform_.nanosecondsPerCall = 60 * kMillisecond; }

  // A fresh run that is cancelled at one tick.
  void CancelAt(std::size_t tick) {
    progress_.Forget();
    progress_.CancelAt(tick);
    platform_.boxes.clear();
    platform_.answers.clear();
    Cancellation::OfProcess().mode = CancelMode::kAsk;
    IFC::MainContainer::ResetUniqueMarker();
  }

  const std::string records_ = Records(6, 100, true) + "#7=IFCLOCALPLACEMENT($,$);\n";
};

TEST_F(ReadCancelled, AtAnyTickEndsTheRead) {
  const std::size_t ticks = [&] {
    Model whole(records_);
    return progress_->size();
  }();
  ASSERT_EQ(13u, ticks) << "seven records, and six of them again";
  for (std::size_t tick = 0; tick < ticks; ++tick) {
    CancelAt(tick);
    Model model(records_);
    EXPECT_FALSE(model.IsRead()) << tick;
    EXPECT_EQ(ParserState::kCancelled, model.GetParser().state) << tick;
    EXPECT_TRUE(model.Document().IsCancelled());
    EXPECT_FALSE(model.Document().IsParsed());
    EXPECT_EQ(CancelMode::kEndUnasked, Cancellation::OfProcess().mode);
    EXPECT_EQ(std::vector<std::string>{}, Messages());
    EXPECT_EQ(tick < 7, !model.Folder().Has("model_TEMP.ifc")) << tick;
  }
}

TEST_F(ReadCancelled, TheQuestionComesOnce) {
  CancelAt(3);
  Model model(records_);
  EXPECT_EQ(std::vector{test::CancelQuestionBox()}, platform_.boxes);
}

TEST_F(ReadCancelled, WhoSaysNoLosesNothing) {
  std::string lines;
  std::string temporary;
  std::vector<Tick> ticks;
  {
    Model whole(records_);
    lines = whole.Lines();
    temporary = whole.Folder().Read("model_TEMP.ifc");
    ticks = *progress_;
  }
  for (std::size_t tick = 0; tick < ticks.size(); ++tick) {
    CancelAt(tick);
    AnswerNo(1);
    Model model(records_);
    EXPECT_TRUE(model.IsRead()) << tick;
    EXPECT_EQ(1u, QuestionsAsked()) << tick;
    EXPECT_EQ(lines, model.Lines()) << tick;
    EXPECT_EQ(temporary, model.Folder().Read("model_TEMP.ifc")) << tick;
    EXPECT_EQ(ticks, *progress_) << tick;
    EXPECT_EQ(CancelMode::kAsk, Cancellation::OfProcess().mode);
  }
}

TEST_F(ReadCancelled, TheUserIsAskedAtTheLastTickToo) {
  CancelAt(12);
  Model model(records_);
  EXPECT_FALSE(model.IsRead());
  EXPECT_EQ(1u, QuestionsAsked());
  EXPECT_EQ(ParserState::kCancelled, model.GetParser().state);
}

TEST_F(ReadCancelled, NobodyIsAskedOnceTheRunIsToStop) {
  CancelAt(2);
  Cancellation::OfProcess().mode = CancelMode::kEndUnasked;
  AnswerNo(1);
  Model model(records_);
  EXPECT_FALSE(model.IsRead());
  EXPECT_EQ(0u, QuestionsAsked());
}

}  // namespace
}  // namespace corvel
