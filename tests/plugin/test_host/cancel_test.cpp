// The user presses cancel at updates of the progress dialog, one run for each (of a small job at
// all of them), and then means it or not.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "measures.h"
#include "models.h"
#include "session.h"

namespace corvel::test_host {
namespace {

// Enough to tell a model that was kept: each has pools of megabytes.
constexpr std::size_t kSlackPerRun = 64 * 1024;

struct Job {
  const char* name;
  unsigned pointCount;  // of each of the three models
  ClockMode clock;
  int stride;  // within a stage of the job one of so many updates is a moment to cancel at
};

class CancelledJob : public testing::TestWithParam<Job> {
 protected:
  void SetUp() override {
    const Job& job = GetParam();
    session.AddProject("a.ifc", House("Abbey", job.pointCount));
    session.AddProject("b.ifc", House("Barn", job.pointCount));
    session.AddProject("c.ifc", House("Castle", job.pointCount));
    session.SetOutput("out.ifc");
    session.desktop.clock = job.clock;
    session.Load();
    session.LoadModels();
    for (int i = 0; i < 3; ++i) Run(0);
    reference = session.viewer.progress;
    updateCount = static_cast<int>(reference.size());
    ASSERT_GT(updateCount, 15);
    ASSERT_TRUE(HasOutput());
    whole = ReadBytes(session.work / "out.ifc");
    files = session.work.Files();
  }

  // Cancels at the given update; 0: not at all. Gives true when the user was asked.
  bool Run(int cancelAt, bool yes = false) {
    for (const char* const name : {"out.ifc", "a_TEMP.ifc", "b_TEMP.ifc", "c_TEMP.ifc"}) {
      std::filesystem::remove(session.work / name);
    }
    session.RestartNumbers();
    session.viewer.cancelAt = cancelAt;
    session.desktop.otherwise = yes;
    session.Click(kMergeActiveButton);
    session.transcript.Clear();
    const std::size_t boxCount = session.Boxes().size();
    for (const SystemBox& box : session.Boxes()) {
      EXPECT_EQ("[btnCancelName]", box.title);
      EXPECT_EQ("[progress_bar_cancel_message]", box.text);
      EXPECT_EQ(yes, box.answeredYes);
    }
    EXPECT_LE(boxCount, 1u);
    session.ForgetBoxes();
    return boxCount > 0;
  }

  // The updates to cancel at, counted from 1: those around the borders of stages, and some between.
  std::vector<int> Moments() const {
    std::vector<int> moments;
    for (int update = 1; update <= updateCount; ++update) {
      const auto at = static_cast<std::size_t>(update) - 1;
      const std::string& stage = reference[at].currentText;
      const bool isBorder = update == 1 || update == updateCount ||
                            reference[at - 1].currentText != stage ||
                            reference[at + 1].currentText != stage;
      if (isBorder || update % GetParam().stride == 0) moments.push_back(update);
    }
    return moments;
  }

  bool HasOutput() const { return std::filesystem::exists(session.work / "out.ifc"); }

  void ExpectWholeOutput() const {
    ASSERT_TRUE(HasOutput());
    EXPECT_EQ(whole, ReadBytes(session.work / "out.ifc"));
    EXPECT_EQ(files, session.work.Files());
  }

  // The models, and the working files of those whose second pass had begun. That pass has one
  // record to read, and one update.
  std::vector<std::string> FilesAfterCancel(int update) const {
    const auto at = static_cast<std::size_t>(update);
    const std::string& stage = reference[at - 1].currentText;
    const bool inSecondPass = reference[at].currentText != stage;
    std::vector<std::string> names = {"a.ifc", "b.ifc", "c.ifc"};
    for (const std::string name : {"a", "b", "c"}) {
      const bool isBeingRead = stage == "[reading_file]: " + name + ".ifc";
      if (!isBeingRead || inSecondPass) names.push_back(name + "_TEMP.ifc");
      if (isBeingRead) break;
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  Session session;
  std::vector<ProgressUpdate> reference;  // of a run that nobody cancels
  int updateCount = 0;
  std::string whole;
  std::vector<std::string> files;
};

// What the other tests rely on.
TEST_P(CancelledJob, MemoryOfTheModelsIsSeenByTheMeasure) {
  const std::size_t before = AllocatedBytes();
  std::size_t during = 0;
  session.viewer.duringUpdate = [&] {
    const bool isAtEnd = static_cast<int>(session.viewer.progress.size()) == updateCount - 1;
    if (isAtEnd) during = AllocatedBytes();
  };
  Run(0);
  EXPECT_GT(during, before + 10 * kSlackPerRun);
}

TEST_P(CancelledJob, YesLeavesNothing) {
  std::vector<int> unasked;
  const std::size_t handles = OpenHandles();
  for (const int update : Moments()) {
    SCOPED_TRACE("cancelled at update " + std::to_string(update));
    const std::size_t bytes = AllocatedBytes();
    if (Run(update, true)) {
      EXPECT_FALSE(HasOutput());
      EXPECT_EQ(FilesAfterCancel(update), session.work.Files());
    } else {
      unasked.push_back(update);
    }
    EXPECT_FALSE(session.viewer.progressIsShown);
    EXPECT_EQ(handles, OpenHandles());
    EXPECT_LT(AllocatedBytes(), bytes + kSlackPerRun);
    Run(0);
    ExpectWholeOutput();
    if (HasFailure()) return;
  }
  // At two updates nobody listens: the one that opens the writing, and the full bars of the end.
  const auto writing = std::find_if(reference.begin(), reference.end(), [](const auto& update) {
    return update.currentText == "[exporting_file_as]: out.ifc";
  });
  const int writingStart = static_cast<int>(writing - reference.begin()) + 1;
  EXPECT_EQ((std::vector<int>{writingStart, updateCount}), unasked);
}

TEST_P(CancelledJob, NoAtEveryUpdateChangesNothing) {
  session.viewer.keepsCancelling = true;
  Run(0);
  const std::size_t seen = session.Boxes().size();
  session.viewer.cancelAt = 1;
  session.RestartNumbers();
  session.Click(kMergeActiveButton);
  EXPECT_EQ(seen + static_cast<std::size_t>(updateCount) - 2, session.Boxes().size());
  ExpectWholeOutput();
}

TEST_P(CancelledJob, NoChangesNothing) {
  const std::size_t handles = OpenHandles();
  for (const int update : Moments()) {
    SCOPED_TRACE("cancelled at update " + std::to_string(update));
    Run(update, false);
    ExpectWholeOutput();
    EXPECT_EQ(updateCount, static_cast<int>(session.viewer.progress.size()));
    EXPECT_EQ(handles, OpenHandles());
    if (HasFailure()) return;
  }
}

INSTANTIATE_TEST_SUITE_P(All, CancelledJob,
                         testing::Values(Job{"RecordByRecord", 6, ClockMode::kLeaping, 1},
                                         Job{"StageByStage", 120, ClockMode::kStopped, 11}),
                         [](const testing::TestParamInfo<Job>& job) { return job.param.name; });

}  // namespace
}  // namespace corvel::test_host
