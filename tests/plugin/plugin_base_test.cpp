#include "plugin/plugin_base.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "plugin/attachment.h"
#include "plugin/entry_points.h"
#include "plugin/plugin.h"
#include "recorded_host.h"
#include "support/test_platform.h"

namespace corvel::plugin {

#ifdef _WIN32
constexpr char16_t kLibrary[] = u"C:\\viewer\\plugins\\corvel.dll";
constexpr char16_t kLibrary64[] = u"C:\\viewer\\plugins_x64\\corvel_x64.dll";
constexpr char16_t kLibraryTwice[] = u"C:\\a_x64\\plugins_x64\\corvel.dll";
#else
constexpr char16_t kLibrary[] = u"/viewer/plugins/corvel.dll";
constexpr char16_t kLibrary64[] = u"/viewer/plugins_x64/corvel_x64.dll";
constexpr char16_t kLibraryTwice[] = u"/a_x64/plugins_x64/corvel.dll";
#endif

namespace {

// Paths with one separator, whatever the system, and without the drive.
WideString Even(WideString path) {
  for (char16_t& unit : path) {
    if (unit == u'\\') unit = u'/';
  }
  return path.substr(path.find(u'/'));
}

}  // namespace

TEST(PluginFolders, DataLieBesideTheLibrary) {
  EXPECT_EQ(u"/viewer/plugins/corvel_data/", Even(FoldersOf(kLibrary, u"", u"").data));
}

TEST(PluginFolders, TheArchitectureIsCutFromTheFolderAndNotFromTheName) {
  EXPECT_EQ(u"/viewer/plugins/corvel_x64_data/", Even(FoldersOf(kLibrary64, u"", u"").data));
}

TEST(PluginFolders, TheLastArchitectureInTheFolderIsCut) {
  EXPECT_EQ(u"/a_x64/plugins/corvel_data/", Even(FoldersOf(kLibraryTwice, u"", u"").data));
}

TEST(PluginFolders, UserAndCommonFoldersHaveTheStemOfTheLibrary) {
  const PluginFolders folders = FoldersOf(kLibrary64, u"/users/me", u"/common");
  EXPECT_EQ(u"/users/me/Orlenta/plugins/corvel_x64/", Even(folders.user));
  EXPECT_EQ(u"/common/Orlenta/plugins/corvel_x64/", Even(folders.common));
}

TEST(Stem, IsTheNameWithoutWhatFollowsTheLastDot) {
  EXPECT_EQ(u"corvel", StemOf(u"/a.b/corvel.dll"));
  EXPECT_EQ(u"corvel.beta", StemOf(u"/a.b/corvel.beta.dll"));
  EXPECT_EQ(u"corvel", StemOf(u"corvel"));
}

class EntryPoints : public testing::Test {
 protected:
  test::RecordedHost host;
};

TEST_F(EntryPoints, TheApiVersionIsFivePointFiftyTwo) {
  host.Attach();
  std::int32_t version[2] = {};
  get_api_verion(0, version);
  EXPECT_EQ(5, version[0]);
  EXPECT_EQ(52, version[1]);
}

TEST_F(EntryPoints, TheInformationHasSixTexts) {
  host.Attach();
  PluginInformation information{};
  get_plugin_info(&information);
  EXPECT_EQ(u"Corvel", WideString(information.name));
  EXPECT_EQ(u"Corvel", WideString(information.description));
  EXPECT_EQ(Plugin::Instance()->folders.data, WideString(information.dataFolder));
  for (const char16_t* const text :
       {information.producer, information.webAddress, information.eMail}) {
    EXPECT_NE(nullptr, text);
  }
}

TEST_F(EntryPoints, TheDataFolderIsNamedAfterTheLibrary) {
  host.Attach();
  const Plugin& plugin = *Plugin::Instance();
  EXPECT_EQ(u"corvel_plugin_tests_data", plugin.DataFolderName());
  const WideString data = Even(plugin.folders.data);
  EXPECT_EQ(plugin.DataFolderName() + u"/", data.substr(data.rfind(u'/', data.size() - 2) + 1));
}

TEST_F(EntryPoints, DragsModelsAndUndosAreTakenAndDoNothing) {
  host.Load();
  host.calls.clear();
  EXPECT_EQ(0, on_drag_enter(u"a.ifc", 1, 2));
  EXPECT_EQ(0, on_drag_over(1, 2, 3));
  EXPECT_EQ(0, on_drop(u"a.ifc", 1, 2, 3));
  EXPECT_FALSE(on_model_load_v2(1));
  on_model_save_v2();
  on_gui_colors_change();
  on_undo_redo_action();
  EXPECT_TRUE(host.calls.empty());
}

TEST_F(EntryPoints, WithoutAPluginNothingHappens) {
  std::int32_t version[2] = {-1, -1};
  get_api_verion(0, version);
  EXPECT_EQ(-1, version[0]);
  PluginInformation information{};
  get_plugin_info(&information);
  EXPECT_EQ(nullptr, information.name);
  on_plugin_load(1, 0, nullptr);
  on_plugin_unload();
  EXPECT_TRUE(host.calls.empty());
}

TEST_F(EntryPoints, EventsAreRegisteredInTheOrderOfTheInterfaceAndThoseOfModelsLast) {
  host.Load();
  std::vector<std::string> registered;
  for (const std::string& call : host.calls) {
    const std::string name = call.substr(0, call.find('('));
    if (name.rfind("on_", 0) == 0 || name == "can_clear_model") registered.push_back(name);
  }
  EXPECT_EQ((std::vector<std::string>{
                "on_measure_change", "can_clear_model", "on_model_clear", "on_main_form_close",
                "on_selection_change", "on_hover", "on_draw", "on_draw_object_click",
                "on_context_menu", "on_gallery_item_context_menu", "on_tab_change",
                "on_tab_sheet_placement", "on_tab_sheet_change", "on_plugin_message",
                "on_property_change", "on_object_list_changed", "on_model_load", "on_save_olf"}),
            registered);
  EXPECT_EQ("on_measure_change(...)", host.calls.front());
  EXPECT_EQ("on_save_olf(...)", host.calls.back());
}

TEST_F(EntryPoints, EventsThatNobodyNeedsAreAnsweredAndDoNothing) {
  host.Load();
  host.calls.clear();
  EXPECT_TRUE(host.canClearModel());
  EXPECT_TRUE(host.pluginMessage(1, 2));
  for (const auto& [name, callback] : host.callbacks) {
    if (name != "on_model_load") callback();
  }
  EXPECT_EQ((std::vector<std::string>{"get_draw_object_id()", "clicked_button()"}), host.calls);
}

TEST_F(EntryPoints, WhatAnEventThrowsIsToldAndGoesNoFurther) {
  test::TestPlatform platform;
  host.Load();
  host.askedForChildren = [] { throw std::runtime_error("no room for them"); };
  EXPECT_NO_THROW(host.TellModelsAreLoaded());
  host.askedForChildren = [] { throw 42; };
  EXPECT_NO_THROW(host.TellModelsAreLoaded());
  const auto box = [](const char16_t* text) {
    return test::TestPlatform::Box{u"Error!", text, ::platform::Buttons::kOk,
                                   ::platform::Icon::kWarning};
  };
  EXPECT_EQ(
      (std::vector<test::TestPlatform::Box>{box(u"no room for them"), box(u"Unknown error.")}),
      platform.boxes);
}

TEST_F(EntryPoints, EventsAfterTheEndOfThePluginDoNothing) {
  host.Load();
  const HostCallback click = Plugin::Instance()->buttonClick;
  Detach();
  host.calls.clear();
  host.clicked = 1;
  click();
  host.TellModelsAreLoaded();
  EXPECT_TRUE(host.canClearModel());
  EXPECT_EQ((std::vector<std::string>{"clicked_button()"}), host.calls);
}

}  // namespace corvel::plugin
