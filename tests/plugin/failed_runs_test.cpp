// Runs that end before their time, or without one of their models, and what the user is told.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "core/cancellation.h"
#include "core/main_container.h"
#include "platform/file.h"
#include "plugin/plugin.h"
#include "recorded_host.h"
#include "support/model.h"
#include "support/numbers_up_to.h"
#include "support/test_platform.h"

namespace corvel::plugin {

namespace {

constexpr char kMetre[] = "$,.METRE.";
constexpr char kMillimetre[] = ".MILLI.,.METRE.";

// A project, its unit and a wall, numbered from `first` on.
std::string RecordsFrom(std::uint32_t first, const std::string& name, const char* unit = kMetre) {
  const auto number = [first](std::uint32_t place) { return "#" + std::to_string(first + place); };
  return number(0) + "=IFCPROJECT('" + name + "-project',$,'P',$,$,$,$,$," + number(1) + ");\n" +
         number(1) + "=IFCUNITASSIGNMENT((" + number(2) + "));\n" +  //
         number(2) + "=IFCSIUNIT(*,.LENGTHUNIT.," + unit + ");\n" +  //
         number(3) + "=IFCWALL('" + name + "-wall',$,$,$,$,$,$,$,$);\n" + number(4) +
         "=IFCRELAGGREGATES('" + name + "-aggregate',$,$,$," + number(0) + ",(" + number(3) +
         "));\n";
}

class FailedRun : public testing::Test {
 protected:
  FailedRun() {
    IFC::MainContainer::ResetUniqueMarker();
    host.output = folder.Path("out.ifc");
    folder.Write("out.ifc", "what was there");
    platform.answers = {::platform::Answer::kNo};  // to the question about the log
  }
  ~FailedRun() override {
    Cancellation::OfProcess().mode = CancelMode::kAsk;
    IFC::MainContainer::ResetUniqueMarker();
  }

  void Add(const std::string& records, const char* schema = "IFC4", std::uint32_t project = 1) {
    const auto handle = static_cast<HostObject>(host.children.size() + 1);
    const std::string name = std::string(1, static_cast<char>('a' + handle - 1)) + ".ifc";
    host.AddProject(handle, folder.Write(name, test::ModelFile(records, schema)));
    host.objects.back().number = project;
  }
  void Run() {
    host.Load();
    if (movesTheScene) {
      Host().get_project_and_coordinate_center = [](HostHandle, double* first, double* /*second*/) {
        first[0] = 1.0;
      };
    }
    host.TellModelsAreLoaded();
    host.calls.clear();
    host.Click(Plugin::Instance()->Buttons().mergeActive);
  }
  const RunResult& Result() const { return Plugin::Instance()->LastRun(); }
  // The boxes of the viewer without the line about the log.
  std::vector<std::string> Boxes() const {
    std::vector<std::string> boxes;
    for (const std::string& call : host.CallsOf("message_box")) {
      boxes.push_back(call.substr(0, call.find("\nmerge_combine_log")));
    }
    return boxes;
  }
  void ExpectThatNothingWasWritten() const {
    EXPECT_FALSE(Result().written);
    EXPECT_FALSE(Result().cancelled);
    EXPECT_EQ("what was there", folder.Read("out.ifc"));
    EXPECT_EQ("show_progress_bar(0, 1, \"btn_merge\")", host.calls.back());
  }
  // What stands in front of the first bracket of each line of the output that holds `word`.
  std::set<std::string> NumbersOf(const std::string& word) const {
    std::set<std::string> numbers;
    const std::string text = folder.Read("out.ifc");
    for (std::size_t at = text.find("=" + word + "("); at != std::string::npos;
         at = text.find("=" + word + "(", at + 1)) {
      const std::size_t start = text.rfind('#', at);
      EXPECT_TRUE(numbers.insert(text.substr(start, at - start)).second);
    }
    return numbers;
  }

  test::TestPlatform platform;
  test::RecordedHost host;
  const test::TemporaryFolder folder;
  bool movesTheScene = false;
};

std::string MergeFailed(const std::string& reason) {
  return "message_box(\"error_caption\", \"" + reason +
         "Error occurred while merging files. Merging will be terminated.";
}

}  // namespace

TEST_F(FailedRun, AModelThatWasNotReadEndsTheRunInMergingTerminate) {
  Add(RecordsFrom(1, "a"), "IFC9");
  Add(RecordsFrom(1, "b"), "IFC9");
  Run();
  EXPECT_EQ((std::vector<std::string>{
                "message_box(\"error_caption\", \"unknown_schema_identifier : IFC9",
                "message_box(\"error_caption\", \"unknown_schema_identifier : IFC9",
                "message_box(\"error_caption\", \"unable_to_continue" +
                    ToUtf8(folder.Path("a.ifc")) + "merging_terminate",
            }),
            Boxes());
  ExpectThatNothingWasWritten();
}

TEST_F(FailedRun, WithoutANumberForAMergedObjectNothingIsWritten) {
  const test::NumbersUpTo largest(7);
  Add(RecordsFrom(1, "a"));
  Add(RecordsFrom(1, "b"));
  Run();
  EXPECT_EQ((std::vector<std::string>{MergeFailed(
                "All numbers up to #7 are in use: there is none left for another object.\n")}),
            Boxes());
  ExpectThatNothingWasWritten();
  EXPECT_TRUE(folder.Has("a_IFC_LOG.txt"));
}

// What the first merge made would do as a model, but not as the one that was wanted.
TEST_F(FailedRun, WithoutANumberForTheThirdModelNothingIsWritten) {
  const test::NumbersUpTo largest(10);
  for (const char* const name : {"a", "b", "c"}) Add(RecordsFrom(1, name));
  Run();
  EXPECT_EQ((std::vector<std::string>{MergeFailed(
                "All numbers up to #10 are in use: there is none left for another object.\n")}),
            Boxes());
  ExpectThatNothingWasWritten();
}

TEST_F(FailedRun, WithoutANumberForANewPlacementNothingIsWritten) {
  movesTheScene = true;
  for (std::uint32_t last = 5; last < 5 + 9; ++last) {
    IFC::MainContainer::ResetUniqueMarker();
    const test::NumbersUpTo largest(last);
    host.children.clear();
    host.objects.clear();
    platform.answers = {::platform::Answer::kNo};
    Add(RecordsFrom(1, "a"));
    Add(RecordsFrom(1, "b"));
    Run();
    // Five carry the offset; two axes at the origin and a placement are for the wall.
    if (last == 5 + 8) break;
    EXPECT_EQ((std::vector<std::string>{
                  MergeFailed("All numbers up to #" + std::to_string(last) +
                              " are in use: there is none left for another object.\n")}),
              Boxes());
    ExpectThatNothingWasWritten();
    // It was the first model that did not come through.
    for (const std::string& call : host.CallsOf("update_progress_bar")) {
      EXPECT_EQ(std::string::npos, call.find("deleting_entities_from: b.ifc")) << last;
    }
  }
  bool cameToTheSecond = false;
  for (const std::string& call : host.CallsOf("update_progress_bar")) {
    cameToTheSecond |= call.find("deleting_entities_from: b.ifc") != std::string::npos;
  }
  EXPECT_TRUE(cameToTheSecond);
}

TEST_F(FailedRun, ModelsAtTheEndOfTheNumbersAreMergedWithoutALoss) {
  constexpr std::uint32_t kFirst = IFC::kLargestNumber - 4;
  movesTheScene = true;
  for (const char* const name : {"a", "b", "c"}) Add(RecordsFrom(kFirst, name), "IFC4", kFirst);
  Run();
  EXPECT_TRUE(Result().written);
  EXPECT_EQ((std::vector<std::string>{}), Boxes());
  EXPECT_EQ(1u, NumbersOf("IFCPROJECT").size());
  EXPECT_EQ(3u, NumbersOf("IFCWALL").size());
  EXPECT_EQ(3u, NumbersOf("IFCRELAGGREGATES").size());
  EXPECT_EQ(6u, NumbersOf("IFCLOCALPLACEMENT").size());
  EXPECT_TRUE(NumbersOf("IFCPROJECT").contains("#4294967275"));
  IfcDocument again(false, test::RecordedReports::Reporter, test::RecordedProgress::Callback);
  EXPECT_EQ(1, again.OpenFile(folder.Path("out.ifc"), 1));
  // One project, five records and three walls' placements beside it in each model.
  EXPECT_EQ(1u + 3 * (4 + 5 + 3), again.mainContainer->entities.Size());
}

TEST_F(FailedRun, AMiddleModelOfOtherUnitsIsLeftOutAndTheThirdIsMerged) {
  Add(RecordsFrom(1, "a", kMetre));
  Add(RecordsFrom(1, "b", kMillimetre));
  Add(RecordsFrom(1, "c", kMetre));
  Run();
  EXPECT_TRUE(Result().written);
  EXPECT_EQ((std::vector<std::string>{"message_box(\"error_caption\", \"not_all_projects_merge "
                                      "\"a.ifc\"due_to_invalid_units:\n"
                                      "  LENGTHUNIT(#3) - METRE\n"
                                      "projects_that_will_not_be_merged\n"
                                      "\n  b.ifc:\n    LENGTHUNIT(#3) - MILLIMETRE\n"
                                      "projects_that_will_be_merged\n\nc.ifc\"\n"}),
            Boxes());
  const std::string text = folder.Read("out.ifc");
  EXPECT_NE(std::string::npos, text.find("'a-wall'"));
  EXPECT_EQ(std::string::npos, text.find("'b-"));
  EXPECT_EQ(std::string::npos, text.find(".MILLI."));
  EXPECT_NE(std::string::npos, text.find("'c-wall'"));
  EXPECT_EQ(std::string::npos, text.find("'c-project'"));
  for (const std::string& call : host.CallsOf("update_progress_bar")) {
    EXPECT_EQ(std::string::npos, call.find("deleting_entities_from: b.ifc"));
    EXPECT_EQ(std::string::npos, call.find("btn_merge: b.ifc"));
  }
}

TEST_F(FailedRun, ModelsBeyondAHundredMebibytesAreNotWorthAWarning) {
  platform.executablePath = ::platform::JoinPath(folder.Path(), u"Orlenta.exe");
  host.output.clear();
  Add(RecordsFrom(1, "a"));
  Add(RecordsFrom(1, "b"));
  std::filesystem::resize_file(folder.Native("b.ifc"), 104857601);
  Run();
  EXPECT_FALSE(host.CallsOf("save_dialog").empty());
  EXPECT_EQ((std::vector<std::string>{}), Boxes());
}

}  // namespace corvel::plugin
