#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "measures.h"
#include "models.h"
#include "session.h"

namespace corvel::test_host {
namespace {

bool Has(const Session& session, std::string_view line) {
  const auto& lines = session.transcript.Lines();
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

TEST(Loading, AllNamesOfTheInterfaceAreExported) {
  const char* const names[] = {
#define CORVEL_HOST_NAME(name) #name,
#include "plugin/host_names.inc"
#undef CORVEL_HOST_NAME
  };
  EXPECT_EQ(299u, std::size(names));
  for (const char* const name : names) EXPECT_TRUE(IsExported(name)) << name;
}

TEST(Loading, HiddenExportIsBackLater) {
  {
    const HiddenExports older({"get_text", "zoom_to"});
    EXPECT_FALSE(IsExported("get_text"));
    EXPECT_FALSE(IsExported("zoom_to"));
    EXPECT_TRUE(IsExported("get_text_global"));
  }
  EXPECT_TRUE(IsExported("get_text"));
  EXPECT_TRUE(IsExported("zoom_to"));
}

TEST(Loading, InterfaceVersionIs5_52) {
  Session session;
  session.Load();
  std::int32_t version[2] = {};
  session.TheLibrary().getApiVersion(0xFFFFFFFFFFFFFFFF, version);
  EXPECT_EQ(5, version[0]);
  EXPECT_EQ(52, version[1]);
}

TEST(Loading, InformationHasSixTexts) {
  Session session;
  session.Load();
  plugin::PluginInformation information{};
  session.TheLibrary().getPluginInfo(&information);
  for (const char16_t* const text :
       {information.name, information.producer, information.webAddress, information.eMail,
        information.description, information.dataFolder}) {
    ASSERT_NE(nullptr, text);
  }
  EXPECT_EQ("Corvel", Utf8(information.name));
  EXPECT_EQ("Corvel", Utf8(information.description));
  EXPECT_EQ("<data>/", session.transcript.Normalised(Utf8(information.dataFolder)));
}

TEST(Loading, LibraryBesideTheOrdinaryFolderFindsItsDataThere) {
  Session session("plugins_x64");
  ASSERT_EQ("plugins_x64", PathText(session.LibraryPath().parent_path().filename()));
  session.Load();
  EXPECT_TRUE(Has(session, "load_texts(\"<data>/lang.en\") = 1"));
  EXPECT_EQ(0, std::count_if(
                   session.transcript.Lines().begin(), session.transcript.Lines().end(),
                   [](const std::string& line) { return line.find("_x64") != std::string::npos; }));
}

TEST(Loading, LanguageWithoutAFileFallsBackToEnglish) {
  Session session;
  session.viewer.language = u"tlh";
  session.Load();
  EXPECT_TRUE(Has(session, "load_texts(\"<data>/lang.tlh\") = 0"));
  EXPECT_TRUE(Has(session, "load_texts(\"<data>/lang.en\") = 1"));
}

TEST(Loading, TextThatIsNullIsEmpty) {
  Session session;
  session.viewer.hasNoTexts = true;
  session.AddProject("a.ifc", House("Abbey"));
  session.AddProject("b.ifc", House("Barn"));
  session.SetOutput("out.ifc");
  session.Load();
  session.LoadModels();
  session.Click(kMergeActiveButton);
  EXPECT_TRUE(Has(session, R"(create_group(0, "") = 1)"));
  EXPECT_TRUE(Has(session, R"(show_progress_bar(1, 1, "Corvel"))"));
  EXPECT_TRUE(Has(session, R"(set_save_dialog_params("", "<work>/", "a"))"));
  EXPECT_TRUE(std::filesystem::exists(session.work / "out.ifc"));
}

TEST(Loading, LanguageWithAFileIsTakenAlone) {
  Session session;
  session.viewer.language = u"pl";
  session.Load();
  EXPECT_TRUE(Has(session, "load_texts(\"<data>/lang.pl\") = 1"));
  EXPECT_FALSE(Has(session, "load_texts(\"<data>/lang.en\") = 1"));
}

TEST(Loading, DragsAndTheOtherEntryPointsDoNothing) {
  Session session;
  session.Load();
  session.transcript.Clear();
  const Library& library = session.TheLibrary();
  EXPECT_EQ(0, library.onDragEnter(u"a.ifc", 1, 2));
  EXPECT_EQ(0, library.onDragOver(1, 2, 3));
  EXPECT_EQ(0, library.onDrop(u"a.ifc", 1, 2, 3));
  EXPECT_FALSE(library.onModelLoadV2(1));
  library.onGuiColorsChange();
  library.onModelSaveV2();
  library.onUndoRedoAction();
  EXPECT_EQ("", session.transcript.Text());
}

TEST(Loading, EventsThatMeanNothingAreTakenQuietly) {
  Session session;
  session.Load();
  session.transcript.Clear();
  for (const auto& [name, callback] : session.viewer.events) {
    if (name == "on_model_load") continue;
    ASSERT_NE(nullptr, callback) << name;
    if (name == "can_clear_model") {
      EXPECT_TRUE(reinterpret_cast<plugin::HostQuestion>(callback)());
    } else if (name == "on_plugin_message") {
      EXPECT_TRUE(reinterpret_cast<plugin::HostMessageCallback>(callback)(1, 2));
    } else if (name.starts_with("on_tab_sheet_")) {
      reinterpret_cast<plugin::HostTabCallback>(callback)(1);
    } else {
      callback();
    }
  }
  EXPECT_EQ(18u, session.viewer.events.size());
  EXPECT_EQ("get_draw_object_id() = 7\nclicked_button() = 0\n", session.transcript.Text());
}

TEST(Loading, ModelEventsAreRegisteredBehindTheRibbon) {
  Session session;
  session.Load();
  const auto& lines = session.transcript.Lines();
  const auto at = [&](std::string_view line) {
    return std::find(lines.begin(), lines.end(), line) - lines.begin();
  };
  const auto count = static_cast<std::ptrdiff_t>(lines.size());
  EXPECT_EQ(count - 2, at("on_model_load(callback)"));
  EXPECT_EQ(count - 1, at("on_save_olf(callback)"));
  EXPECT_LT(at("on_object_list_changed(callback)"), at("get_language() = \"en\""));
}

TEST(Loading, ClicksDuringARunAreIgnored) {
  Session session;
  session.AddProject("a.ifc", House("Abbey", 120));
  session.AddProject("b.ifc", House("Barn", 120));
  session.SetOutput("out.ifc");
  session.Load();
  session.LoadModels();
  session.RestartNumbers();
  session.transcript.Clear();
  session.Click(kMergeActiveButton);
  const std::vector<std::string> quiet = session.transcript.Lines();
  const std::string output = ReadBytes(session.work / "out.ifc");

  session.RestartNumbers();
  session.transcript.Clear();
  int clicks = 0;
  session.viewer.duringUpdate = [&] {
    for (const int button : {0, +kMergeActiveButton, +kOptionsButton, +kOpenRecentButton}) {
      if (!session.viewer.progressIsShown) continue;
      session.viewer.clicked = button;
      session.viewer.click();
      ++clicks;
    }
  };
  session.Click(kMergeActiveButton);
  EXPECT_GT(clicks, 400);
  std::vector<std::string> disturbed = session.transcript.Lines();
  const auto isOfAClick = [&](const std::string& line) {
    return line.starts_with("clicked_button()");
  };
  EXPECT_EQ(clicks + 1, std::count_if(disturbed.begin(), disturbed.end(), isOfAClick));
  std::erase_if(disturbed, isOfAClick);
  std::vector<std::string> expected = quiet;
  std::erase_if(expected, isOfAClick);
  EXPECT_EQ(expected, disturbed);
  EXPECT_EQ(output, ReadBytes(session.work / "out.ifc"));
}

// One life: load, models, a merge, unload.
void PlayOnce(Session& session) {
  session.Load();
  session.LoadModels();
  session.Click(kMergeActiveButton);
  session.Unload();
  session.transcript.Clear();
}

TEST(Loading, HundredLivesLeaveNothingBehind) {
  Session session;
  session.AddProject("a.ifc", House("Abbey", 20));
  session.AddProject("b.ifc", House("Barn", 20));
  session.SetOutput("out.ifc");
  constexpr int kWarmUp = 3;
  for (int i = 0; i < kWarmUp; ++i) PlayOnce(session);
  const std::string output = ReadBytes(session.work / "out.ifc");
  const std::vector<std::string> files = session.work.Files();
  const std::size_t handles = OpenHandles();
  const std::size_t bytes = AllocatedBytes();
  for (int i = 0; i < 100; ++i) {
    std::filesystem::remove(session.work / "out.ifc");
    PlayOnce(session);
    ASSERT_FALSE(IsLoaded(session.LibraryPath())) << "life " << i;
    ASSERT_EQ(handles, OpenHandles()) << "life " << i;
    ASSERT_EQ(output, ReadBytes(session.work / "out.ifc")) << "life " << i;
  }
  EXPECT_EQ(files, session.work.Files());
  EXPECT_LT(AllocatedBytes(), bytes + 100 * MemoryOfUnloadedLibrary());
}

TEST(Loading, RunsThatEndEarlyKeepNoMemory) {
  Session session;
  session.AddProject("a.ifc", House("Abbey", 20));
  session.AddProject("b.ifc", House("Barn", 20));
  session.AddProject("c.ifc", ModelFile("#1=IFCNOSUCHTHING();\n"));
  session.SetOutput("out.ifc");
  session.Load();
  session.LoadModels();
  const auto play = [&] {
    for (int i = 0; i < 10; ++i) session.Click(kMergeActiveButton);
    session.transcript.Clear();
  };
  play();
  const std::size_t handles = OpenHandles();
  const std::size_t bytes = AllocatedBytes();
  play();
  EXPECT_EQ(handles, OpenHandles());
  EXPECT_LT(AllocatedBytes(), bytes + 100 * 1024);
  EXPECT_FALSE(std::filesystem::exists(session.work / "out.ifc"));
}

}  // namespace
}  // namespace corvel::test_host
