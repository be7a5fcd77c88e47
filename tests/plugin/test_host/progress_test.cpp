#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

#include "session.h"

namespace corvel::test_host {
namespace {

std::filesystem::path Sample(const char* name) {
  return std::filesystem::path(CORVEL_SAMPLES_DIR) / name;
}

// Two real models, with as many ticks as there can be.
class ProgressOfAMerge : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* const name : {"office_architecture_IFC4.ifc", "office_structure_IFC4.ifc"}) {
      session.AddProject(name, ReadBytes(Sample(name)));
    }
    session.SetOutput("out.ifc");
    session.desktop.clock = ClockMode::kLeaping;
    session.Configure("true\ntrue\nfalse\nfalse\n100\n100\nfalse\n");
    session.Load();
    session.LoadModels();
    session.Click(kMergeActiveButton);
    ASSERT_TRUE(std::filesystem::exists(session.work / "out.ifc"));
    ASSERT_GT(session.viewer.progress.size(), 200u);
  }

  Session session;
};

TEST_F(ProgressOfAMerge, UpperBarNeverFalls) {
  int before = 0;
  for (const ProgressUpdate& update : session.viewer.progress) {
    EXPECT_LE(before, update.overall) << update.currentText;
    before = update.overall;
  }
  EXPECT_EQ(100, before);
}

TEST_F(ProgressOfAMerge, BarsStayBetween0And100) {
  for (const ProgressUpdate& update : session.viewer.progress) {
    EXPECT_GE(update.overall, 0);
    EXPECT_LE(update.overall, 100);
    EXPECT_GE(update.current, 0);
    EXPECT_LE(update.current, 100);
  }
}

// A stage is what has a text of its own; the lower bar goes from its start to its end in one.
// The reading of a file has two passes under one text. So has the merge of one, which ticks at the
// first object of each pass and at every fiftieth part of them.
TEST_F(ProgressOfAMerge, StagesHaveAHundredUpdatesAtMost) {
  std::map<std::string, int> updates;
  for (const ProgressUpdate& update : session.viewer.progress) ++updates[update.currentText];
  for (const auto& [text, count] : updates) {
    const bool isReading = text.starts_with("[reading_file]");
    EXPECT_LE(count, isReading ? 202 : 102) << text;
  }
}

TEST_F(ProgressOfAMerge, LowerBarDoesNotFallWithinAStage) {
  std::string stage;
  int before = 0;
  int passes = 0;
  for (const ProgressUpdate& update : session.viewer.progress) {
    if (update.currentText != stage) {
      stage = update.currentText;
      before = 0;
      passes = 1;
    }
    if (update.current < before) ++passes;
    EXPECT_LE(passes, stage.starts_with("[reading_file]") ? 2 : 1) << stage;
    before = update.current;
  }
}

}  // namespace
}  // namespace corvel::test_host
