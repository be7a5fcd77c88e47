// Merges from the click to the file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <new>
#include <set>
#include <utility>

#include "core/cancellation.h"
#include "core/main_container.h"
#include "merge/merge_documents.h"
#include "platform/file.h"
#include "plugin/plugin.h"
#include "plugin/progress_window.h"
#include "plugin/run_reports.h"
#include "recorded_host.h"
#include "step/log/ifc_log.h"
#include "support/model.h"
#include "support/test_platform.h"

namespace corvel::plugin {

namespace {

// The point hangs on the project's context.
constexpr char kProject[] =
    "#1=IFCPROJECT('0YvCt7Q5n0JgN0tW6Vw4p%d',$,'P',$,$,$,$,(#3),$);\n"
    "#3=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,$,#4,$);\n"
    "#4=IFCAXIS2PLACEMENT3D(#2,$,$);\n";

std::string Records(int index) {
  char project[sizeof kProject];
  std::snprintf(project, sizeof project, kProject, index);
  return std::string(project) + "#2=IFCCARTESIANPOINT((" + std::to_string(index) + ".,0.));\n";
}

class MergeRunTest : public testing::Test {
 protected:
  MergeRunTest() {
    IFC::MainContainer::ResetUniqueMarker();
    host.texts = {{"merged", u"_merged"}, {"show_log_question", u"See the log?"}};
    host.output = folder.Path("out.ifc");
  }
  ~MergeRunTest() override { Cancellation::OfProcess().mode = CancelMode::kAsk; }

  WideString Write(const char* name, int index, const char* schema = "IFC4") {
    return folder.Write(name, test::ModelFile(Records(index), schema));
  }
  void AddThree() {
    host.AddProject(1, Write("a.ifc", 1));
    host.AddProject(2, Write("b.ifc", 2));
    host.AddProject(3, Write("c.ifc", 3));
  }
  // From the load to the click on one of the three entries.
  void Run(SavingMode mode = SavingMode::kMergeActive) {
    host.Load();
    host.TellModelsAreLoaded();
    ClickOn(mode);
  }
  void ClickOn(SavingMode mode) {
    host.calls.clear();
    const Ribbon& buttons = Plugin::Instance()->Buttons();
    const std::int32_t ids[] = {buttons.mergeActive, buttons.mergeVisible, buttons.mergeSelected};
    host.Click(ids[static_cast<std::size_t>(mode)]);
  }
  const RunResult& Result() const { return Plugin::Instance()->LastRun(); }
  // All but the header, which names the file.
  static std::string BodyOf(const std::string& file) { return file.substr(file.find("DATA;")); }
  bool Called(const char* name) const { return !host.CallsOf(name).empty(); }
  std::vector<std::string> Points() const {
    std::vector<std::string> points;
    const std::string text = folder.Read("out.ifc");
    for (std::size_t at = text.find("=IFCCARTESIANPOINT(("); at != std::string::npos;
         at = text.find("=IFCCARTESIANPOINT((", at + 1)) {
      const std::size_t start = at + sizeof "=IFCCARTESIANPOINT((" - 1;
      points.push_back(text.substr(start, text.find(',', start) - start));
    }
    std::sort(points.begin(), points.end());
    return points;
  }
  // The boxes of the viewer without the line about the log.
  std::vector<std::string> Boxes() const {
    std::vector<std::string> boxes;
    for (const std::string& call : host.CallsOf("message_box")) {
      boxes.push_back(call.substr(0, call.find("\nmerge_combine_log")));
    }
    return boxes;
  }

  test::TestPlatform platform;
  test::RecordedHost host;
  const test::TemporaryFolder folder;
};

}  // namespace

TEST_F(MergeRunTest, AllActiveProjectsAreMergedIntoOneFile) {
  AddThree();
  Run();
  EXPECT_TRUE(Result().written);
  EXPECT_FALSE(Result().cancelled);
  EXPECT_EQ((std::vector<std::string>{"1.", "2.", "3."}), Points());
  EXPECT_TRUE(Boxes().empty());
  EXPECT_TRUE(platform.boxes.empty());
}

TEST_F(MergeRunTest, AProgramThatKnowsTheObjectsOfAProjectSparesTheSceneFromTheSearch) {
  AddThree();
  Run();
  const std::string wanted = folder.Read("out.ifc");
  const std::size_t searches = host.CallsOf("get_object_info2").size();
  RunListener listener;
  listener.objectsOf = [this](HostObject project) {
    std::vector<HostObject> objects;
    for (const auto& object : host.objects) {
      if (object.project == project) objects.push_back(object.handle);
    }
    return objects;
  };
  Plugin::Instance()->SetListener(listener);
  IFC::MainContainer::ResetUniqueMarker();  // numbers go on from run to run
  ClickOn(SavingMode::kMergeActive);
  EXPECT_EQ(BodyOf(wanted), BodyOf(folder.Read("out.ifc")));
  EXPECT_EQ(searches - 6, host.CallsOf("get_object_info2").size()) << "two for each model";
}

TEST_F(MergeRunTest, ACleanRunLeavesNoLogAndForgetsItsModels) {
  AddThree();
  Run();
  EXPECT_FALSE(folder.Has("a_IFC_LOG.txt"));
  EXPECT_FALSE(IfcLog::Instance().HasStream());
  EXPECT_FALSE(ProgressWindow::Instance().IsOpen());
}

TEST_F(MergeRunTest, TheLogLiesBesideTheFirstOfAllProjectsChosenOrNot) {
  AddThree();
  host.objects[0].state.selected = 0;
  bool seen = false;
  host.tick = [&] { return seen = seen || folder.Has("a_IFC_LOG.txt"), true; };
  Run(SavingMode::kMergeSelected);
  EXPECT_TRUE(seen);
  EXPECT_EQ((std::vector<std::string>{"2.", "3."}), Points());
}

TEST_F(MergeRunTest, TheOutputIsRememberedForTheNextTime) {
  AddThree();
  Run();
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(host.output.data()),
                        host.output.size() * sizeof(char16_t)),
            host.user.Read("LastPath.txt"));
  EXPECT_TRUE(host.user.Has("config.txt"));
}

TEST_F(MergeRunTest, TheDialogIsOpenedFirstAndHiddenLast) {
  AddThree();
  Run();
  EXPECT_EQ((std::vector<std::string>{"show_progress_bar(1, 1, \"btn_merge\")",
                                      "show_progress_bar(0, 1, \"btn_merge\")"}),
            host.CallsOf("show_progress_bar"));
  EXPECT_EQ("show_progress_bar(0, 1, \"btn_merge\")", host.calls.back());
  EXPECT_EQ("update_progress_bar(100, \"Overall progress\", 100, \"Current progress\")",
            *(host.calls.end() - 2));
  EXPECT_EQ((std::vector<std::string>{"enable_button(506, 1)"}), host.CallsOf("enable_button"));
}

TEST_F(MergeRunTest, EveryStageShowsItsTextAndItsFile) {
  AddThree();
  Run();
  std::vector<std::string> texts;
  for (const std::string& call : host.CallsOf("update_progress_bar")) {
    const std::size_t start = call.rfind(", \"") + 3;
    std::string text = call.substr(start, call.size() - 2 - start);
    text = text.substr(0, text.find(" 1/3"));
    text = text.substr(0, text.find(" 2/3"));
    text = text.substr(0, text.find(" 3/3"));
    if (texts.empty() || texts.back() != text) texts.push_back(text);
  }
  EXPECT_EQ((std::vector<std::string>{
                "reading_file: a.ifc", "reading_file: b.ifc", "reading_file: c.ifc",
                "deleting_entities_from: a.ifc", "deleting_entities_from: b.ifc",
                "deleting_entities_from: c.ifc", "btn_merge: b.ifc", "btn_merge: c.ifc",
                "exporting_file_as: out.ifc", "Current progress"}),
            texts);
}

TEST_F(MergeRunTest, TheOverallBarNeverFalls) {
  AddThree();
  Run();
  int last = 0;
  for (const std::string& call : host.CallsOf("update_progress_bar")) {
    int overall = -1;
    ASSERT_EQ(1, std::sscanf(call.c_str(), "update_progress_bar(%d", &overall));
    EXPECT_GE(overall, last) << call;
    EXPECT_LE(overall, 100) << call;
    last = overall;
  }
}

TEST_F(MergeRunTest, OneProjectIsTooFewAndNothingStarts) {
  host.AddProject(1, Write("a.ifc", 1));
  Run();
  EXPECT_EQ((std::vector<std::string>{"message_box(\"error_caption\", \"combining_failed\", 16)"}),
            Boxes());
  EXPECT_FALSE(Called("save_dialog"));
  EXPECT_FALSE(Called("show_progress_bar"));
}

TEST_F(MergeRunTest, ASelectionInOneOfTwoProjectsIsTooFew) {
  AddThree();
  host.objects[1].state.selected = 0;
  host.objects[2].state.selected = 0;
  Run(SavingMode::kMergeSelected);
  EXPECT_EQ((std::vector<std::string>{"message_box(\"error_caption\", \"combining_failed\", 16)"}),
            Boxes());
}

TEST_F(MergeRunTest, AHiddenProjectTakesNoPartInMergeVisible) {
  AddThree();
  host.objects[1].state.visible = 0;
  Run(SavingMode::kMergeVisible);
  EXPECT_EQ((std::vector<std::string>{"1.", "3."}), Points());
}

TEST_F(MergeRunTest, AVisibleObjectThatIsNotActiveDoesNotCount) {
  AddThree();
  host.objects[1].state.active = 0;
  Run(SavingMode::kMergeVisible);
  EXPECT_EQ((std::vector<std::string>{"1.", "3."}), Points());
}

TEST_F(MergeRunTest, ACancelledSaveDialogEndsTheRunQuietly) {
  AddThree();
  host.output.clear();
  Run();
  EXPECT_FALSE(Result().written);
  EXPECT_TRUE(Boxes().empty());
  EXPECT_FALSE(folder.Has("a_IFC_LOG.txt"));
  EXPECT_EQ("show_progress_bar(0, 1, \"btn_merge\")", host.calls.back());
}

TEST_F(MergeRunTest, TheSuggestionIsTheFirstChosenFileAndItsExtensionTheDefault) {
  AddThree();
  host.objects[0].state.selected = 0;
  Run(SavingMode::kMergeSelected);
  const std::string folderText = ToUtf8(::platform::JoinPath(folder.Path(), u""));
  EXPECT_EQ((std::vector<std::string>{"set_save_dialog_params(\"filter_caption\", \"" + folderText +
                                      "\", \"b_merged\")"}),
            host.CallsOf("set_save_dialog_params"));
  EXPECT_EQ((std::vector<std::string>{"set_save_dialog_default_extension(\".ifc\")"}),
            host.CallsOf("set_save_dialog_default_extension"));
}

TEST_F(MergeRunTest, AnEntryOfAContainerSuggestsItsOwnNameInTheFolderOfTheContainer) {
  host.AddProject(1, u"D:\\a\\model.olf|inner.ifc");
  host.AddProject(2, u"D:\\b\\other.ifczip");
  host.output.clear();
  Run();
  EXPECT_EQ((std::vector<std::string>{
                "set_save_dialog_params(\"filter_caption\", \"D:\\a\\\", \"inner_merged\")"}),
            host.CallsOf("set_save_dialog_params"));
  EXPECT_EQ((std::vector<std::string>{"set_save_dialog_default_extension(\".ifc\")"}),
            host.CallsOf("set_save_dialog_default_extension"));
}

TEST_F(MergeRunTest, AnEntryInAFolderOfItsContainerSuggestsTheLastPartOfItsName) {
  for (const char16_t* const entry : {u"sub/inner.ifc", u"sub\\deeper\\inner.ifc"}) {
    host.children.clear();
    host.objects.clear();
    host.AddProject(1, WideString(u"D:\\a\\model.olf|") + entry);
    host.AddProject(2, u"D:\\b\\other.ifc");
    host.output.clear();
    Run();
    EXPECT_EQ((std::vector<std::string>{
                  "set_save_dialog_params(\"filter_caption\", \"D:\\a\\\", \"inner_merged\")"}),
              host.CallsOf("set_save_dialog_params"));
  }
}

TEST_F(MergeRunTest, ANameWithoutADotStaysWhole) {
  host.AddProject(1, u"D:\\a.b\\model.olf|inner");
  host.AddProject(2, u"D:\\b\\other.ifc");
  host.output.clear();
  Run();
  EXPECT_EQ((std::vector<std::string>{
                "set_save_dialog_params(\"filter_caption\", \"D:\\a.b\\\", \"inner_merged\")"}),
            host.CallsOf("set_save_dialog_params"));
}

TEST_F(MergeRunTest, AProjectWithAForeignExtensionGoesWithAMessage) {
  AddThree();
  host.paths[2] = u"b.step";
  Run();
  EXPECT_EQ((std::vector<std::string>{"message_box(\"error_caption\", "
                                      "\"could_not_open_file_extension  b.step"}),
            Boxes());
  EXPECT_EQ((std::vector<std::string>{"1.", "3."}), Points());
}

TEST_F(MergeRunTest, ASecondForeignExtensionIsNotLookedAt) {
  AddThree();
  host.paths[1] = folder.Path("a.step");
  host.paths[2] = folder.Path("b.txt");
  const Plugin* const plugin = (host.Load(), host.TellModelsAreLoaded(), Plugin::Instance());
  ASSERT_NE(nullptr, plugin);
  ClickOn(SavingMode::kMergeActive);
  ASSERT_FALSE(Boxes().empty());
  EXPECT_EQ("message_box(\"error_caption\", \"could_not_open_file_extension  " +
                ToUtf8(folder.Path("a.step")),
            Boxes().front());
}

TEST_F(MergeRunTest, ABrokenFileEndsTheRunAndNothingIsWritten) {
  AddThree();
  folder.Write("b.ifc", test::ModelFile("#1=IFCNOSUCHTHING();\n"));
  platform.answers = {::platform::Answer::kNo};
  Run();
  EXPECT_FALSE(Result().written);
  EXPECT_FALSE(folder.Has("out.ifc"));
  EXPECT_FALSE(Boxes().empty());
  ASSERT_EQ(1u, platform.boxes.size());
  EXPECT_EQ(u"See the log?", platform.boxes[0].text);
  EXPECT_NE(std::string::npos, folder.Read("a_IFC_LOG.txt").find("Reading file cancelled."));
}

TEST_F(MergeRunTest, AFileThatIsNotThereIsLeftOutAndNamed) {
  AddThree();
  host.paths[2] = folder.Path("none.ifc");
  platform.answers = {::platform::Answer::kNo};
  Run();
  ASSERT_EQ(2u, Boxes().size());
  EXPECT_EQ("message_box(\"error_caption\", \"could_not_open_file . File path: " +
                ToUtf8(folder.Path("none.ifc")),
            Boxes()[0]);
  EXPECT_EQ(
      "message_box(\"error_caption\", \"not_all_projects_merge \"a.ifc\"(IFC4)"
      "due_to_invalid_schema.projects_that_will_not_be_mergednone.ifc()\n"
      "projects_that_will_be_merged\n\nc.ifc\"\n",
      Boxes()[1]);
  EXPECT_EQ((std::vector<std::string>{"1.", "3."}), Points());
}

TEST_F(MergeRunTest, FilesOfAnotherSchemaAreLeftOutWithAReport) {
  host.AddProject(1, Write("a.ifc", 1));
  host.AddProject(2, Write("b.ifc", 2, "IFC2X3"));
  host.AddProject(3, Write("c.ifc", 3));
  platform.answers = {::platform::Answer::kNo};
  Run();
  EXPECT_EQ((std::vector<std::string>{
                "message_box(\"error_caption\", \"not_all_projects_merge \"a.ifc\"(IFC4)"
                "due_to_invalid_schema.projects_that_will_not_be_mergedb.ifc(IFC2X3)\n"
                "projects_that_will_be_merged\n\nc.ifc\"\n"}),
            Boxes());
  EXPECT_EQ((std::vector<std::string>{"1.", "3."}), Points());
}

TEST_F(MergeRunTest, TwoFilesOfDifferentSchemasWriteNothingThoughTheNameWasAsked) {
  host.AddProject(1, Write("a.ifc", 1));
  host.AddProject(2, Write("b.ifc", 2, "IFC2X3"));
  Run();
  EXPECT_TRUE(Called("save_dialog"));
  EXPECT_FALSE(folder.Has("out.ifc"));
  EXPECT_FALSE(Result().written);
}

TEST_F(MergeRunTest, TheDialogIsAskedForTheNameWhenAllFilesAreRead) {
  AddThree();
  Run();
  const auto at = [&](const char* start) {
    return std::find_if(host.calls.begin(), host.calls.end(),
                        [&](const std::string& call) { return call.starts_with(start); });
  };
  EXPECT_EQ(1u, host.CallsOf("get_save_dialog_name").size());
  const auto asked = at("get_save_dialog_name");
  EXPECT_LT(at("save_dialog("), asked);
  std::set<std::string> before;
  for (const std::string& call : host.CallsOf("update_progress_bar")) {
    const auto name = call.find("reading_file: ");
    if (name != std::string::npos) before.insert(call.substr(name + 14, 5));
  }
  EXPECT_EQ((std::set<std::string>{"a.ifc", "b.ifc", "c.ifc"}), before);
  EXPECT_TRUE(std::none_of(asked, host.calls.end(), [](const std::string& call) {
    return call.find("reading_file") != std::string::npos;
  }));
}

TEST_F(MergeRunTest, ACancelWhileReadingAsksForNoName) {
  AddThree();
  host.tick = [] { return false; };
  platform.answers = {::platform::Answer::kYes};
  Run();
  EXPECT_TRUE(Called("save_dialog"));
  EXPECT_FALSE(Called("get_save_dialog_name"));
}

// The project's context stands behind it, so that reading leaves a work file.
TEST_F(MergeRunTest, AnOutputTakesThePlaceOfTheWorkFileThatReadingLeft) {
  AddThree();
  host.output = folder.Path("a_TEMP.ifc");
  bool wasLeft = false;
  host.tick = [&] { return wasLeft = wasLeft || folder.Has("a_TEMP.ifc"), true; };
  Run();
  EXPECT_TRUE(wasLeft);
  EXPECT_TRUE(Result().written);
  const std::string written = folder.Read("a_TEMP.ifc");
  host.output = folder.Path("out.ifc");
  IFC::MainContainer::ResetUniqueMarker();
  ClickOn(SavingMode::kMergeActive);
  EXPECT_EQ(BodyOf(folder.Read("out.ifc")), BodyOf(written));
  EXPECT_EQ((std::vector<std::string>{"1.", "2.", "3."}), Points());
}

TEST_F(MergeRunTest, AModelUnderTheNameOfAWorkFileStaysUntilTheOutputReplacesIt) {
  AddThree();
  const std::string model = test::ModelFile(Records(7));
  host.output = folder.Write("b_TEMP.ifc", model);
  bool isReading = true;
  std::string whileReading;
  host.tick = [&] {
    if (isReading) whileReading = folder.Read("b_TEMP.ifc");
    isReading = !Called("get_save_dialog_name");
    return true;
  };
  Run();
  EXPECT_EQ(model, whileReading);
  EXPECT_TRUE(Result().written);
  EXPECT_NE(model, folder.Read("b_TEMP.ifc"));
  EXPECT_TRUE(folder.Has("b_TEMP2.ifc"));
}

TEST_F(MergeRunTest, StaleProjectsDontCount) {
  AddThree();
  host.objects.push_back({900, 9});
  host.paths[9] = u"gone.ifc";
  host.Load();
  host.TellModelsAreLoaded();
  host.children = {1};
  host.TellModelsAreLoaded();
  ClickOn(SavingMode::kMergeActive);
  EXPECT_EQ("message_box(\"error_caption\", \"combining_failed\", 16)", Boxes().back());
}

TEST_F(MergeRunTest, ClicksDuringARunAreIgnored) {
  AddThree();
  int deepest = 0;
  int depth = 0;
  host.tick = [&] {
    deepest = std::max(deepest, ++depth);
    if (depth == 1) Plugin::Instance()->OnButtonClick(Plugin::Instance()->Buttons().mergeActive);
    --depth;
    return true;
  };
  Run();
  EXPECT_EQ(1, deepest);
  EXPECT_TRUE(Result().written);
  EXPECT_EQ(1u, host.CallsOf("save_dialog").size());
}

// The numbers start over with a model that is alone, and must not do so while others are written.
TEST_F(MergeRunTest, ModelsThatChangeDuringARunCountAfterIt) {
  AddThree();
  IFC::MainContainer::ResetUniqueMarker();
  Run();
  const std::string whole = folder.Read("out.ifc");
  const std::vector<HostObject> before = Plugin::Instance()->Projects();
  IFC::MainContainer::ResetUniqueMarker();
  std::vector<HostObject> during;
  host.tick = [&] {
    host.children = {2};
    host.TellModelsAreLoaded();
    during = Plugin::Instance()->Projects();
    return true;
  };
  ClickOn(SavingMode::kMergeActive);
  EXPECT_TRUE(Result().written);
  EXPECT_EQ(whole, folder.Read("out.ifc"));
  EXPECT_EQ(before, during);
  EXPECT_EQ((std::vector<HostObject>{2}), Plugin::Instance()->Projects());
  EXPECT_EQ(1u, IFC::MainContainer::uniqueMarker);
  EXPECT_EQ(2u, host.CallsOf("get_childs").size());
}

TEST_F(MergeRunTest, NothingThatIsThrownReachesTheViewer) {
  AddThree();
  bool thrown = false;
  host.tick = [&]() -> bool {
    if (std::exchange(thrown, true)) return true;
    throw std::bad_alloc();
  };
  platform.answers = {::platform::Answer::kNo};
  host.Load();
  host.TellModelsAreLoaded();
  host.calls.clear();
  EXPECT_NO_THROW(ClickOn(SavingMode::kMergeActive));
  EXPECT_FALSE(Boxes().empty());
  EXPECT_FALSE(ProgressWindow::Instance().IsOpen());
  EXPECT_FALSE(folder.Has("out.ifc"));
  host.tick = nullptr;
  ClickOn(SavingMode::kMergeActive);
  EXPECT_TRUE(Result().written);
}

TEST_F(MergeRunTest, AnOutputThatCannotBeWrittenIsReported) {
  AddThree();
  host.output = ::platform::JoinPath(folder.Path("nowhere"), u"out.ifc");
  platform.answers = {::platform::Answer::kNo};
  Run();
  EXPECT_FALSE(Result().written);
  EXPECT_FALSE(Boxes().empty());
}

// --- Cancelling
// -----------------------------------------------------------------------------------

class CancelTest : public MergeRunTest {
 protected:
  // Cancels at the tick of this number, counted from 1. Gives the number of ticks.
  int RunAndCancelAt(int tick, ::platform::Answer answer) {
    int count = 0;
    platform.boxes.clear();
    platform.answers.clear();
    host.tick = [&] { return ++count != tick; };
    platform.answers = {answer};
    IFC::MainContainer::ResetUniqueMarker();
    ClickOn(SavingMode::kMergeActive);
    return count;
  }
  void RemoveOutput() { ::platform::RemoveFile(host.output); }
  bool WasAsked() const {
    return std::any_of(platform.boxes.begin(), platform.boxes.end(),
                       [](const auto& box) { return box.icon == ::platform::Icon::kQuestion; });
  }
};

TEST_F(CancelTest, AYesAtAnyTickWritesNothingAndTheNextRunWorks) {
  AddThree();
  Run();
  const int ticks = RunAndCancelAt(0, ::platform::Answer::kYes);
  const std::string whole = folder.Read("out.ifc");
  ASSERT_GT(ticks, 10);
  int asked = 0;
  for (int tick = 1; tick <= ticks; ++tick) {
    RemoveOutput();
    RunAndCancelAt(tick, ::platform::Answer::kYes);
    if (!WasAsked()) continue;  // the last tick closes the dialog
    ++asked;
    EXPECT_FALSE(folder.Has("out.ifc")) << "tick " << tick;
    EXPECT_TRUE(Result().cancelled) << "tick " << tick;
    EXPECT_FALSE(Result().written) << "tick " << tick;
    EXPECT_FALSE(IfcLog::Instance().HasStream()) << "tick " << tick;
    EXPECT_FALSE(folder.Has("a_IFC_LOG.txt")) << "tick " << tick;
    EXPECT_EQ(CancelMode::kAsk, Cancellation::OfProcess().mode) << "tick " << tick;
    EXPECT_TRUE(Boxes().empty()) << "tick " << tick << Boxes().front();
    RunAndCancelAt(0, ::platform::Answer::kYes);
    EXPECT_EQ(whole, folder.Read("out.ifc")) << "tick " << tick;
  }
  EXPECT_GT(asked, ticks / 2);
}

TEST_F(CancelTest, ANoAtAnyTickChangesNothing) {
  AddThree();
  Run();
  const int ticks = RunAndCancelAt(0, ::platform::Answer::kNo);
  const std::string whole = folder.Read("out.ifc");
  for (int tick = 1; tick <= ticks; ++tick) {
    RemoveOutput();
    RunAndCancelAt(tick, ::platform::Answer::kNo);
    EXPECT_TRUE(Result().written) << "tick " << tick;
    EXPECT_EQ(whole, folder.Read("out.ifc")) << "tick " << tick;
    EXPECT_TRUE(Boxes().empty()) << "tick " << tick;
  }
}

}  // namespace corvel::plugin
