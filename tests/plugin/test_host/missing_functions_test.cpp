// Older viewers: each function that the plug-in calls is missing in turn.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "models.h"
#include "session.h"

namespace corvel::test_host {
namespace {

// What a scene comes to.
struct Outcome {
  std::vector<std::string> calls;
  std::vector<std::string> boxes;  // of the viewer
  bool written = false;
  std::string output;

  friend bool operator==(const Outcome&, const Outcome&) = default;
};

// A click that is too early, a click that merges, and what else there is to call.
Outcome Play() {
  Session session;
  session.Configure("false\ntrue\nfalse\nfalse\n100\n100\ntrue\n");
  session.SetOutput("out.ifc");
  session.Load();
  session.Click(kMergeActiveButton);
  session.AddProject("a.ifc", House("Abbey", 1));
  session.AddProject("b.ifc", House("Barn", 1));
  session.LoadModels();
  session.Click(kMergeActiveButton);
  session.Fire("on_draw_object_click");
  session.Unload();
  EXPECT_TRUE(std::filesystem::exists(session.UserFolder() / "config.txt"));
  Outcome outcome;
  outcome.calls = session.transcript.Lines();
  for (const std::string& call : outcome.calls) {
    if (call.starts_with("message_box(")) outcome.boxes.push_back(call);
  }
  outcome.written = std::filesystem::exists(session.work / "out.ifc");
  if (outcome.written) outcome.output = ReadBytes(session.work / "out.ifc");
  return outcome;
}

constexpr char kNoFile[] =
    R"(message_box("[no_file_selected_caption]", "[no_file_selected_message]", 64) = 1)";
constexpr char kTooFew[] = R"(message_box("[error_caption]", "[combining_failed]", 16) = 1)";
constexpr char kNoModel[] =
    R"(message_box("[error_caption]", "[could_not_open_file_extension]  \n[merge_combine_log] ", 16) = 1)";

constexpr char kNoOutput[] =
    R"(message_box("[error_caption]", "[could_not_open_file_extension]  \n[merge_combine_log] <work>/a_IFC_LOG.txt", 16) = 1)";
constexpr char kNoProject[] =
    R"(message_box("[error_caption]", "No project loaded\n[merge_combine_log] ", 16) = 1)";

// Everything but its own lines is as if it were there.
struct Unneeded {
  const char* name;
};
constexpr Unneeded kUnneeded[] = {
    // Nobody asks for them in this scene, or nobody looks at what they give.
    {"set_visible"},
    {"invalidate"},
    {"get_projects_offsets"},
    {"get_project_and_coordinate_center"},
    {"get_selected_id"},
    {"get_draw_object_id"},
    // What they show is not seen; a run without updates cannot be cancelled and goes on.
    {"set_save_dialog_params"},
    {"set_save_dialog_default_extension"},
    {"show_progress_bar"},
    {"update_progress_bar"},
    {"message_box"},
    {"load_texts"},
    {"add_button"},
    {"set_button_text"},
    {"set_button_image"},
    {"set_button_small_image"},
    {"enable_button"},
    {"set_button_down"},
    {"register_on_button_click"},
    // Events that mean nothing to the plug-in.
    {"on_measure_change"},
    {"can_clear_model"},
    {"on_model_clear"},
    {"on_main_form_close"},
    {"on_selection_change"},
    {"on_hover"},
    {"on_draw"},
    {"on_context_menu"},
    {"on_gallery_item_context_menu"},
    {"on_tab_change"},
    {"on_tab_sheet_placement"},
    {"on_tab_sheet_change"},
    {"on_plugin_message"},
    {"on_property_change"},
    {"on_object_list_changed"},
    {"on_save_olf"},
};

// Something else is different as well.
struct Needed {
  const char* name;
  bool written;  // the merge still gives its output
  std::vector<std::string> boxes;
};
const std::vector<Needed>& NeededFunctions() {
  static const std::vector<Needed> functions = {
      // The scene has no objects that count.
      {"get_all_objects", false, {kNoFile}},
      {"get_object_state", false, {kNoFile}},
      // The projects of the objects, or their files, are not known.
      {"get_object_info2", false, {kNoFile, kNoModel}},
      {"get_project_path", false, {kNoFile, kNoModel, kTooFew}},
      {"get_all_objects_id", false, {kNoFile, kNoModel, kTooFew}},
      {"get_childs", false, {kNoFile, kNoModel, kTooFew}},
      {"on_model_load", false, {kNoFile, kNoModel, kTooFew}},
      // No models as far as the plug-in is told.
      {"get_loaded_ifc_files_count", false, {kNoFile, kNoFile}},
      // Nobody says where the output goes.
      {"save_dialog", false, {kNoFile}},
      {"get_save_dialog_name", false, {kNoFile, kNoOutput}},
      // No texts, or those of the language that every viewer has.
      {"get_text", true, {R"(message_box("", "", 64) = 1)"}},
      {"get_language", true, {kNoFile}},
      // Buttons stand in no group, or not in the drop-down.
      {"create_group", true, {kNoFile}},
      {"create_sub_button", true, {kNoFile}},
      // There is nothing to click.
      {"create_small_button", false, {}},
      // Every click is one on no button.
      {"clicked_button", false, {kNoProject}},
      // The click on a drawn object is not told.
      {"on_draw_object_click", true, {kNoFile}},
  };
  return functions;
}

const Outcome& WithWholeViewer() {
  static const Outcome outcome = Play();
  return outcome;
}

TEST(MissingFunction, WholeViewerMerges) {
  EXPECT_TRUE(WithWholeViewer().written);
  EXPECT_EQ(std::vector<std::string>{kNoFile}, WithWholeViewer().boxes);
}

TEST(MissingFunction, EveryFunctionIsLookedAt) {
  std::multiset<std::string> expected;
#define CORVEL_HOST_FUNCTION(Result, name, parameters) expected.insert(#name);
#include "plugin/host_functions.inc"
#undef CORVEL_HOST_FUNCTION
  std::multiset<std::string> got;
  for (const Unneeded& function : kUnneeded) got.insert(function.name);
  for (const Needed& function : NeededFunctions()) got.insert(function.name);
  got.insert("get_object_info");
  EXPECT_EQ(expected, got);
}

TEST(MissingFunction, UnneededOneLosesItsOwnCallsOnly) {
  for (const Unneeded& function : kUnneeded) {
    SCOPED_TRACE(function.name);
    Outcome expected = WithWholeViewer();
    const auto isItsCall = [&](const std::string& line) {
      return line.starts_with(std::string(function.name) + "(");
    };
    std::erase_if(expected.calls, isItsCall);
    std::erase_if(expected.boxes, isItsCall);
    const HiddenExports older({function.name});
    EXPECT_EQ(expected.calls, Play().calls);
  }
}

TEST(MissingFunction, NeededOneLosesWhatDependsOnIt) {
  for (const Needed& function : NeededFunctions()) {
    SCOPED_TRACE(function.name);
    const HiddenExports older({function.name});
    const Outcome outcome = Play();
    EXPECT_EQ(function.written, outcome.written);
    EXPECT_EQ(function.boxes, outcome.boxes);
    EXPECT_EQ(function.written ? WithWholeViewer().output : "", outcome.output);
  }
}

// Objects without numbers are none of the files.
TEST(MissingFunction, WithoutTheNumbersOfObjectsNothingIsKept) {
  const HiddenExports older({"get_object_info"});
  const Outcome outcome = Play();
  EXPECT_TRUE(outcome.written);
  EXPECT_NE(std::string::npos, outcome.output.find("DATA;\nENDSEC;\n"));
}

TEST(MissingFunction, NamesThatAreOnlyLookedUpChangeNothing) {
  std::vector<std::string> names;
#define CORVEL_OTHER_HOST_FUNCTION(name) names.push_back(#name);
#include "other_host_functions.inc"
#undef CORVEL_OTHER_HOST_FUNCTION
  const HiddenExports older(names);
  EXPECT_EQ(WithWholeViewer(), Play());
}

TEST(MissingFunction, ViewerThatHasNoneIsNoReasonToFail) {
  std::vector<std::string> names;
#define CORVEL_HOST_FUNCTION(Result, name, parameters) names.push_back(#name);
#include "plugin/host_functions.inc"
#undef CORVEL_HOST_FUNCTION
  const HiddenExports older(names);
  const Outcome outcome = Play();
  EXPECT_FALSE(outcome.written);
  for (const std::string& line : outcome.calls) {
    EXPECT_TRUE(line.starts_with("> ") || line == "[interface 5.52]") << line;
  }
}

}  // namespace
}  // namespace corvel::test_host
