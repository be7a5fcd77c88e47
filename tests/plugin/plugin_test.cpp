#include "plugin/plugin.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/cancellation.h"
#include "core/main_container.h"
#include "merge/guid_choice.h"
#include "merge/merge_documents.h"
#include "platform/threads.h"
#include "plugin/entry_points.h"
#include "plugin/run_reports.h"
#include "recorded_host.h"
#include "support/model.h"
#include "support/test_platform.h"

namespace corvel::plugin {

namespace {

// Ids as the recorded viewer gives them, in order of creation.
constexpr std::int32_t kMain = 501;
constexpr std::int32_t kActive = 502;
constexpr std::int32_t kVisible = 503;
constexpr std::int32_t kSelected = 504;
constexpr std::int32_t kOptions = 505;
constexpr std::int32_t kOpenRecent = 506;

class PluginTest : public testing::Test {
 protected:
  ~PluginTest() override { Cancellation::OfProcess().mode = CancelMode::kAsk; }

  void Load() {
    host.Load();
    host.calls.clear();
  }
  // A calls' name without its arguments.
  static std::string NameOf(const std::string& call) { return call.substr(0, call.find('(')); }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const std::string& call : host.calls) names.push_back(NameOf(call));
    return names;
  }
  std::string DataFile(const char* name) const {
    return "\"" + ToUtf8(Plugin::Instance()->folders.data) + name + "\"";
  }

  test::TestPlatform platform;
  test::RecordedHost host;
};

}  // namespace

TEST_F(PluginTest, TheRibbonIsBuiltFromLeftToRight) {
  host.Load();
  const auto first = std::find_if(host.calls.begin(), host.calls.end(),
                                  [](const auto& call) { return NameOf(call) == "create_group"; });
  const auto last = std::find_if(first, host.calls.end(), [](const auto& call) {
    return NameOf(call) == "register_on_button_click";
  });
  EXPECT_EQ((std::vector<std::string>{
                "create_group(0, \"group.Corvel\")",
                "create_sub_button(500, 1)",
                "set_button_text(501, \"btn_merge\", \"btn_merge.hint\")",
                "set_button_image(501, " + DataFile("merge.png") + ")",
                "set_button_small_image(501, " + DataFile("merge_small.png") + ")",
                "enable_button(501, 0)",
                "create_small_button(-1, ...)",
                "add_button(501, 502)",
                "set_button_text(502, \"merge_active\", \"merge_active.hint\")",
                "set_button_small_image(502, " + DataFile("combine_active.png") + ")",
                "enable_button(502, 0)",
                "create_small_button(-1, ...)",
                "add_button(501, 503)",
                "set_button_text(503, \"merge_visible\", \"merge_visible.hint\")",
                "set_button_small_image(503, " + DataFile("combine_visible_small.png") + ")",
                "enable_button(503, 0)",
                "create_small_button(-1, ...)",
                "add_button(501, 504)",
                "set_button_text(504, \"merge_selected\", \"merge_selected.hint\")",
                "set_button_small_image(504, " + DataFile("combine_selected.png") + ")",
                "enable_button(504, 0)",
                "create_small_button(500, ...)",
                "set_button_text(505, \"options_window_name\", \"btn_options_description\")",
                "set_button_small_image(505, " + DataFile("options.png") + ")",
                "enable_button(505, 1)",
                "create_small_button(500, ...)",
                "set_button_text(506, \"open_recent_created_file_button_name\", "
                "\"open_recent_created_file_button_description\")",
                "set_button_image(506, " + DataFile("open.png") + ")",
                "set_button_small_image(506, " + DataFile("open_small.png") + ")",
                "enable_button(506, 1)",
            }),
            std::vector<std::string>(first, last));
}

TEST_F(PluginTest, ButtonsOfTheViewerAreListenedTo) {
  host.Load();
  EXPECT_EQ(
      (std::vector<std::string>{"register_on_button_click(\"btn_set_coordinate_center\", ...)",
                                "register_on_button_click(\"btn_set_coordinates\", ...)",
                                "register_on_button_click(\"btn_reset_coordinate_center\", ...)"}),
      host.CallsOf("register_on_button_click"));
}

TEST_F(PluginTest, TheTextsOfTheLanguageAreLoaded) {
  host.Attach();
  host.languageFiles = {Plugin::Instance()->folders.data + u"lang.pl"};
  host.Load();
  EXPECT_EQ((std::vector<std::string>{"load_texts(" + DataFile("lang.pl") + ")"}),
            host.CallsOf("load_texts"));
}

TEST_F(PluginTest, ALanguageWithoutAFileFallsBackToEnglish) {
  host.Load();
  EXPECT_EQ((std::vector<std::string>{"load_texts(" + DataFile("lang.pl") + ")",
                                      "load_texts(" + DataFile("lang.en") + ")"}),
            host.CallsOf("load_texts"));
}

TEST_F(PluginTest, TheCancelTextsAreTaken) {
  host.texts = {{"continue_question", u"Weiter?"},
                {"progress_bar_cancel_message", u"Abbrechen?"},
                {"btnCancelName", u"Abbruch"}};
  host.Load();
  EXPECT_EQ(u"Weiter?", Cancellation::OfProcess().texts.question);
  EXPECT_EQ(u"Abbrechen?", Cancellation::OfProcess().texts.prompt);
  EXPECT_EQ(u"Abbruch", Cancellation::OfProcess().texts.caption);
}

TEST_F(PluginTest, TheConfigIsReadAtTheLoadAndTheToggleShown) {
  host.user.Write("config.txt", "false\ntrue\ntrue\ntrue\n3\n4\ntrue\n");
  host.Load();
  const OptionsWindow& options = *Plugin::Instance()->Options();
  EXPECT_FALSE(options.options.generateGuid);
  EXPECT_TRUE(options.options.remember);
  EXPECT_TRUE(options.options.ignoreUnits);
  EXPECT_TRUE(options.options.ignoreEnumErrors);
  EXPECT_TRUE(options.options.deleteOpenings);
  EXPECT_EQ(3, options.position.x);
  EXPECT_EQ(4, options.position.y);
  EXPECT_EQ((std::vector<std::string>{"set_button_down(0, 1)"}), host.CallsOf("set_button_down"));
}

TEST_F(PluginTest, TheConfigIsWrittenAtTheUnload) {
  Load();
  Plugin::Instance()->Options()->options.ignoreUnits = true;
  on_plugin_unload();
  std::string written = host.user.Read("config.txt");
  std::erase(written, '\r');
  EXPECT_EQ("true\nfalse\ntrue\nfalse\n0\n0\nfalse\n", written);
}

TEST_F(PluginTest, TheConfigIsWrittenIntoAFolderThatIsNotThereYet) {
  Load();
  Plugin& plugin = *Plugin::Instance();
  plugin.folders.user = host.user.Path("viewer") + u"/plugins/corvel/";
  plugin.Options()->options.remember = true;
  on_plugin_unload();
  std::string written = host.user.Read("viewer/plugins/corvel/config.txt");
  std::erase(written, '\r');
  EXPECT_EQ("true\ntrue\nfalse\nfalse\n0\n0\nfalse\n", written);
}

TEST_F(PluginTest, AUserFolderThatCannotBeMadeIsPassedOver) {
  Load();
  host.user.Write("viewer", "a file in the place of the folder");
  Plugin::Instance()->folders.user = host.user.Path("viewer") + u"/plugins/corvel/";
  on_plugin_unload();
  EXPECT_TRUE(platform.boxes.empty());
  EXPECT_EQ("a file in the place of the folder", host.user.Read("viewer"));
}

// The ids of the second ribbon follow those of the first.
TEST_F(PluginTest, ASecondLoadBindsTheButtonsAnew) {
  Load();
  host.Load();
  const Ribbon& ribbon = Plugin::Instance()->Buttons();
  EXPECT_EQ(kOpenRecent + 1, ribbon.main);
  EXPECT_EQ(kOpenRecent + 6, ribbon.openRecent);
  EXPECT_EQ(1u, host.CallsOf("create_group").size());
  for (const auto id : {ribbon.mergeActive, ribbon.mergeVisible, ribbon.mergeSelected,
                        ribbon.options, ribbon.openRecent}) {
    EXPECT_EQ(host.clicks[kActive], host.clicks[id]) << id;
  }
  host.loadedFiles = 0;
  host.Click(ribbon.mergeActive);
  EXPECT_EQ(1u, host.CallsOf("message_box").size()) << "it is told of one click once";
  EXPECT_TRUE(platform.boxes.empty()) << "the class of the window is free again";
}

TEST_F(PluginTest, ASecondLoadMakesTheSameCallsAsTheFirst) {
  host.user.Write("config.txt", "true\nfalse\nfalse\nfalse\n0\n0\nfalse\n");
  host.Load();
  const std::vector<std::string> first = Names();
  host.calls.clear();
  host.Load();
  EXPECT_EQ(first, Names());
}

TEST_F(PluginTest, ASecondLoadKeepsWhatWasChosen) {
  Load();
  OptionsWindow& chosen = *Plugin::Instance()->Options();
  chosen.options = {false, true, true, true, true};
  chosen.position = {5, 6};
  host.Load();
  const OptionsWindow& options = *Plugin::Instance()->Options();
  EXPECT_FALSE(options.options.generateGuid);
  EXPECT_TRUE(options.options.remember);
  EXPECT_TRUE(options.options.ignoreUnits);
  EXPECT_TRUE(options.options.ignoreEnumErrors);
  EXPECT_TRUE(options.options.deleteOpenings);
  EXPECT_EQ(5, options.position.x);
  EXPECT_EQ(6, options.position.y);
}

TEST_F(PluginTest, ASecondLoadKeepsTheModelsAndTheirButtons) {
  Load();
  host.AddProject(1, u"a.ifc");
  host.AddProject(2, u"b.ifc");
  host.TellModelsAreLoaded();
  host.Load();
  const Ribbon& ribbon = Plugin::Instance()->Buttons();
  EXPECT_EQ((std::vector<HostObject>{1, 2}), Plugin::Instance()->Projects());
  for (const auto id :
       {ribbon.main, ribbon.mergeActive, ribbon.mergeVisible, ribbon.mergeSelected}) {
    EXPECT_TRUE(host.enabled[id]) << id;
  }
}

TEST_F(PluginTest, OneCoreIsLeftToTheViewerUnlessThereIsNoOther) {
  Load();
  const unsigned cores = platform::UsableCores();
  EXPECT_EQ(cores == 1 ? 1 : cores - 1, Plugin::Instance()->RunOptions().threads);
}

TEST_F(PluginTest, ChoicesForOneRunAreNotKept) {
  Load();
  MergeOptions once;
  once.ignoreEnumErrors = true;
  Plugin::Instance()->OverrideOptions(once);
  EXPECT_TRUE(Plugin::Instance()->RunOptions().ignoreEnumErrors);
  on_plugin_unload();
  std::string written = host.user.Read("config.txt");
  std::erase(written, '\r');
  EXPECT_EQ("true\nfalse\nfalse\nfalse\n0\n0\nfalse\n", written);
}

TEST_F(PluginTest, AModelLoadTakesTheProjectsInTheOrderOfTheViewerOnce) {
  Load();
  host.children = {9, 3, 9, 5};
  host.paths = {{9, u"c.ifc"}, {3, u"a.ifc"}};
  host.TellModelsAreLoaded();
  EXPECT_EQ((std::vector<HostObject>{9, 3, 5}), Plugin::Instance()->Projects());
  EXPECT_EQ(u"c.ifc", Plugin::Instance()->ProjectPath(9));
  EXPECT_EQ(u"a.ifc", Plugin::Instance()->ProjectPath(3));
  EXPECT_EQ(u"", Plugin::Instance()->ProjectPath(5));
  EXPECT_EQ(u"", Plugin::Instance()->ProjectPath(1234));
  EXPECT_EQ(77u, Plugin::Instance()->allObjectsRoot);
  EXPECT_EQ(78u, Plugin::Instance()->selectedObject);
}

TEST_F(PluginTest, TheNextModelLoadReplacesTheProjects) {
  Load();
  host.AddProject(1, u"a.ifc");
  host.TellModelsAreLoaded();
  host.children = {2};
  host.TellModelsAreLoaded();
  EXPECT_EQ((std::vector<HostObject>{2}), Plugin::Instance()->Projects());
  EXPECT_EQ(u"", Plugin::Instance()->ProjectPath(1));
}

TEST_F(PluginTest, AHostWithoutSelectionLeavesTheSelectedIdAtZero) {
  host.missing = {"get_selected_id"};
  Load();
  host.TellModelsAreLoaded();
  EXPECT_EQ(0u, Plugin::Instance()->selectedObject);
}

TEST_F(PluginTest, ObjectsEnableTheButtonsAndTheirEndDisablesThem) {
  Load();
  host.AddProject(1, u"a.ifc");
  host.TellModelsAreLoaded();
  for (const auto id : {kMain, kActive, kVisible, kSelected, kOptions, kOpenRecent}) {
    EXPECT_TRUE(host.enabled[id]) << id;
  }
  host.objects.clear();
  host.TellModelsAreLoaded();
  for (const auto id : {kMain, kActive, kVisible, kSelected, kOpenRecent}) {
    EXPECT_FALSE(host.enabled[id]) << id;
  }
  EXPECT_TRUE(host.enabled[kOptions]);
}

TEST_F(PluginTest, OneProjectStartsTheNumbersAnewAndTwoDoNot) {
  Load();
  IFC::MainContainer::uniqueMarker = 42;
  host.children = {1, 2};
  host.TellModelsAreLoaded();
  EXPECT_EQ(42u, IFC::MainContainer::uniqueMarker);
  host.children = {1};
  host.TellModelsAreLoaded();
  EXPECT_EQ(1u, IFC::MainContainer::uniqueMarker);
}

TEST_F(PluginTest, AClickWithoutModelsSaysSo) {
  Load();
  host.loadedFiles = 0;
  host.Click(kActive);
  EXPECT_EQ((std::vector<std::string>{"clicked_button()", "get_loaded_ifc_files_count()",
                                      "message_box(\"no_file_selected_caption\", "
                                      "\"no_file_selected_message\", 64)"}),
            host.calls);
}

TEST_F(PluginTest, AHostThatCannotCountItsFilesHasNone) {
  host.missing = {"get_loaded_ifc_files_count"};
  Load();
  host.Click(kVisible);
  EXPECT_EQ((std::vector<std::string>{"clicked_button", "message_box"}), Names());
}

TEST_F(PluginTest, AClickOnTheMainButtonOpensNoJob) {
  Load();
  host.AddProject(1, u"a.ifc");
  host.AddProject(2, u"b.ifc");
  host.TellModelsAreLoaded();
  host.calls.clear();
  host.Click(kMain);
  EXPECT_EQ(
      (std::vector<std::string>{"clicked_button", "get_loaded_ifc_files_count", "get_all_objects",
                                "get_all_objects", "get_object_info2", "get_object_state"}),
      Names());
}

TEST_F(PluginTest, WithoutAnActiveObjectNothingHappens) {
  Load();
  host.AddProject(1, u"a.ifc");
  host.TellModelsAreLoaded();
  host.objects[0].state.active = 0;
  host.calls.clear();
  host.Click(kSelected);
  EXPECT_EQ("get_object_state", Names().back());
}

TEST_F(PluginTest, AnEmptySelectionStartsNothingAndShowsNothing) {
  Load();
  host.AddProject(1, u"a.ifc");
  host.AddProject(2, u"b.ifc");
  host.TellModelsAreLoaded();
  for (auto& object : host.objects) object.state.selected = 0;
  host.calls.clear();
  host.Click(kSelected);
  EXPECT_TRUE(host.CallsOf("show_progress_bar").empty());
  EXPECT_TRUE(host.CallsOf("save_dialog").empty());
  EXPECT_TRUE(host.CallsOf("message_box").empty());
  EXPECT_EQ("get_object_state", Names().back());
}

TEST_F(PluginTest, AnEmptyViewIsTooFewProjects) {
  Load();
  host.AddProject(1, u"a.ifc");
  host.AddProject(2, u"b.ifc");
  host.TellModelsAreLoaded();
  for (auto& object : host.objects) object.state.visible = 0;
  host.calls.clear();
  host.Click(kVisible);
  EXPECT_EQ("message_box(\"error_caption\", \"combining_failed\", 16)", host.calls.back());
}

TEST_F(PluginTest, OpenRecentStartsTheViewerWithTheRememberedFile) {
  Load();
  const WideString path = host.user.Write("merged.ifc", "x");
  host.user.Write("LastPath.txt", std::string(reinterpret_cast<const char*>(path.data()),
                                              path.size() * sizeof(char16_t)));
  host.Click(kOpenRecent);
  EXPECT_EQ(
      (std::vector<test::TestPlatform::Opened>{{u"/opt/viewer/viewer", u"\"" + path + u"\""}}),
      platform.opened);
}

TEST_F(PluginTest, OpenRecentWithoutAFileIsReported) {
  Load();
  host.Click(kOpenRecent);
  EXPECT_EQ((std::vector<std::string>{"clicked_button", "message_box"}), Names());
  EXPECT_NE(std::string::npos, host.calls.back().find("fail_to_open_last_created_file_message"));
}

#ifndef _WIN32
TEST_F(PluginTest, OptionsAskTheViewerForNothing) {
  Load();
  host.Click(kOptions);
  EXPECT_EQ((std::vector<std::string>{"clicked_button"}), Names());
}
#endif

TEST_F(PluginTest, AClickWithoutAnIdIsTheTestCommand) {
  host.missing = {"clicked_button"};
  Load();
  host.Click(kActive);
  ASSERT_EQ((std::vector<std::string>{"message_box"}), Names());
  EXPECT_NE(std::string::npos, host.calls.back().find("\"No project loaded\n"));
}

TEST_F(PluginTest, TheGuidQuestionIsAnsweredByTheChoice) {
  Load();
  MergeOptions& options = Plugin::Instance()->Options()->options;
  options.remember = true;
  RememberedGuidChoice() = kAskAboutGuids;
  options.generateGuid = false;
  EXPECT_EQ(kSkipSameGuids, AskedGuidChoice());
  RememberedGuidChoice() = kAskAboutGuids;
  options.generateGuid = true;
  EXPECT_EQ(kGenerateGuids, AskedGuidChoice());
}

class TestCommandTest : public PluginTest {
 protected:
  void RunOn(const std::string& content) {
    path = folder.Write("a.ifc", content);
    Load();
    host.AddProject(1, path);
    host.TellModelsAreLoaded();
    host.calls.clear();
    platform.answers = {::platform::Answer::kNo};
    host.Click(0);
  }

  const test::TemporaryFolder folder;
  WideString path;
};

TEST_F(TestCommandTest, WritesTheFirstProjectBesideItselfAndRemembersIt) {
  RunOn(test::ModelFile("#1=IFCCARTESIANPOINT((1.,2.));\n"));
  EXPECT_TRUE(folder.Has("a.ifc_test.ifc"));
  const WideString output = path + u"_test.ifc";
  EXPECT_EQ(
      std::string(reinterpret_cast<const char*>(output.data()), output.size() * sizeof(char16_t)),
      host.user.Read("LastPath.txt"));
  EXPECT_EQ("show_progress_bar(1, 1, \"Test\")", host.CallsOf("show_progress_bar").front());
  const std::vector<std::string> updates = host.CallsOf("update_progress_bar");
  EXPECT_NE(std::string::npos, updates.front().find("\"Processing file: a.ifc\""));
  EXPECT_EQ("show_progress_bar(0, 1, \"Test\")", host.calls.back());
  EXPECT_TRUE(host.CallsOf("message_box").empty());
}

TEST_F(TestCommandTest, AFileThatCannotBeReadIsReported) {
  RunOn(test::ModelFile("#1=IFCNOSUCHTHING(1);\n"));
  EXPECT_FALSE(folder.Has("a.ifc_test.ifc"));
  const std::vector<std::string> boxes = host.CallsOf("message_box");
  ASSERT_FALSE(boxes.empty());
  EXPECT_NE(std::string::npos, boxes.back().find("Unable to parse file: " + ToUtf8(path)));
}

}  // namespace corvel::plugin
