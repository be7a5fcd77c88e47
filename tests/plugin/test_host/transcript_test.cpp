// Whole scenes, call by call, as golden transcripts.
#include <gtest/gtest.h>

#include <algorithm>

#include "models.h"
#include "session.h"

namespace corvel::test_host {
namespace {

// Three houses. Those behind the first have texts and numbers of their own; no GUID is shared.
void AddThreeHouses(Session& session) {
  session.AddProject("a.ifc", House("Abbey", 2));
  session.AddProject("b.ifc", House("Barn", 3));
  session.AddProject("c.ifc", House("Castle"));
}

// The transcript begins behind the loading, which has one of its own.
void LoadUnnoted(Session& session) {
  session.Load();
  session.LoadModels();
  session.transcript.Clear();
}

void LoadForAMerge(Session& session) {
  session.SetOutput("out.ifc");
  LoadUnnoted(session);
}

void NoteFolder(Session& session) {
  for (const std::string& name : session.work.Files()) session.transcript.Add("file " + name);
}

TEST(Transcript, LoadingBuildsTheRibbon) {
  Session session;
  session.Load();
  session.Unload();
  ExpectGolden("load", session.Golden());
}

TEST(Transcript, ModelsEnableTheButtons) {
  Session session;
  session.Load();
  session.transcript.Clear();
  session.LoadModels();
  session.viewer.AddProject(session.work / "a.ifc");
  session.LoadModels();
  session.viewer.AddProject(session.work / "b.ifc");
  session.LoadModels();
  session.viewer.ClearScene();
  session.LoadModels();
  ExpectGolden("models", session.Golden());
}

TEST(Transcript, ClickBeforeAModelSaysSo) {
  Session session;
  session.Load();
  session.transcript.Clear();
  session.Click(kMergeActiveButton);
  session.LoadModels();
  session.Click(kMergeSelectedButton);
  session.Click(kMainButton);
  ExpectGolden("click_before_a_model", session.Golden());
}

TEST(Transcript, MergeOfThreeFiles) {
  Session session;
  AddThreeHouses(session);
  LoadForAMerge(session);
  session.viewer.beforeHiding = [&] { session.NoteLog("a_IFC_LOG.txt"); };
  session.Click(kMergeActiveButton);
  session.NoteFile("out.ifc");
  NoteFolder(session);
  session.Unload();
  session.transcript.Add("config.txt:");
  session.transcript.AddContent(ReadBytes(session.UserFolder() / "config.txt"));
  session.transcript.Add("LastPath.txt:");
  const std::string units = ReadBytes(session.UserFolder() / "LastPath.txt");
  session.transcript.Add(Utf8({reinterpret_cast<const char16_t*>(units.data()), units.size() / 2}));
  ExpectGolden("merge", session.Golden());
}

TEST(Transcript, MissingGuidsAreMade) {
  Session session;
  session.AddProject("a.ifc", House("Abbey"));
  session.AddProject("b.ifc", ModelFile("#1=IFCPROJECT($,$,'Barn',$,$,$,$,$,$);\n"
                                        "#2=IFCBUILDING('',$,'Barn',$,$,$,$,$,.ELEMENT.,$,$,$);\n"
                                        "#3=IFCRELAGGREGATES($,$,$,$,#1,(#2));\n"));
  LoadForAMerge(session);
  session.Click(kMergeActiveButton);
  session.NoteFile("out.ifc");
  ExpectGolden("missing_guids", session.Golden());
}

TEST(Transcript, VisibleObjectsOnly) {
  Session session;
  AddThreeHouses(session);
  for (SceneObject& object : session.viewer.objects) {
    if (object.project == 2) object.state.visible = 0;
  }
  LoadForAMerge(session);
  session.Click(kMergeVisibleButton);
  session.NoteFile("out.ifc");
  ExpectGolden("merge_visible", session.Golden());
}

TEST(Transcript, CancelledSaveDialogEndsTheRun) {
  Session session;
  AddThreeHouses(session);
  LoadUnnoted(session);
  session.viewer.beforeHiding = [&] { session.NoteLog("a_IFC_LOG.txt"); };
  session.Click(kMergeActiveButton);
  NoteFolder(session);
  ExpectGolden("save_dialog_cancelled", session.Golden());
}

TEST(Transcript, EntryOfAContainerSuggestsItsOwnName) {
  Session session;
  session.viewer.AddProject(session.work / "model.olf|inner.ifc");
  session.AddProject("b.ifczip", "");
  LoadUnnoted(session);
  session.viewer.beforeHiding = [&] { NoteFolder(session); };
  session.Click(kMergeActiveButton);
  ExpectGolden("container_entry", session.Golden());
}

TEST(Transcript, ExtensionOfTheFirstFileIsTheOneOfTheOutput) {
  Session session;
  session.AddProject("a.b.ifczip", "");
  session.AddProject("b.ifc", "");
  LoadUnnoted(session);
  session.Click(kMergeActiveButton);
  ExpectGolden("extension_of_the_first_file", session.Golden());
}

TEST(Transcript, OneFileCannotBeMerged) {
  Session session;
  session.AddProject("a.ifc", House("Abbey"));
  LoadForAMerge(session);
  session.Click(kMergeActiveButton);
  NoteFolder(session);
  ExpectGolden("one_file", session.Golden());
}

TEST(Transcript, EmptySelection) {
  Session session;
  AddThreeHouses(session);
  for (SceneObject& object : session.viewer.objects) object.state.selected = 0;
  LoadForAMerge(session);
  session.Click(kMergeSelectedButton);
  for (SceneObject& object : session.viewer.objects) object.state.active = 0;
  session.Click(kMergeSelectedButton);
  NoteFolder(session);
  ExpectGolden("empty_selection", session.Golden());
}

TEST(Transcript, MainButtonHasNoCommand) {
  Session session;
  AddThreeHouses(session);
  LoadForAMerge(session);
  session.Click(kMainButton);
  NoteFolder(session);
  ExpectGolden("main_button", session.Golden());
}

TEST(Transcript, BrokenFileEndsTheRun) {
  Session session;
  session.AddProject("a.ifc", House("Abbey"));
  session.AddProject("b.ifc", ModelFile("#1=IFCNOSUCHTHING();\n"));
  LoadForAMerge(session);
  session.desktop.answers = {false};
  session.Click(kMergeActiveButton);
  session.NoteLog("a_IFC_LOG.txt");
  NoteFolder(session);
  ExpectGolden("broken_file", session.Golden());
}

TEST(Transcript, FileThatIsNotThere) {
  Session session;
  session.AddProject("a.ifc", House("Abbey"));
  session.viewer.AddProject(session.work / "b.ifc");
  LoadForAMerge(session);
  session.Click(kMergeActiveButton);
  session.NoteLog("a_IFC_LOG.txt");
  NoteFolder(session);
  ExpectGolden("file_not_there", session.Golden());
}

TEST(Transcript, FileThatIsNoModelIsTakenOut) {
  Session session;
  AddThreeHouses(session);
  session.viewer.paths[2] = (session.work / "b.dwg").u16string();
  LoadForAMerge(session);
  session.Click(kMergeActiveButton);
  NoteFolder(session);
  ExpectGolden("no_model", session.Golden());
}

// The value is asked about; on No the reading goes on with another one.
TEST(Transcript, UnknownEnumerationValueThatTheUserAccepts) {
  Session session;
  session.AddProject("a.ifc", House("Abbey"));
  session.AddProject("b.ifc", ModelFile("#4=IFCBUILDING('Barn000000000000000002',$,'Barn',$,$,$,$,"
                                        "$,.NOSUCH.,$,$,$);\n#5=IFCPERSON($,'P',$,$,$,$,$,$);\n"));
  LoadForAMerge(session);
  session.Click(kMergeActiveButton);
  session.NoteFile("out.ifc");
  NoteFolder(session);
  ExpectGolden("unknown_enumeration_value", session.Golden());
}

TEST(Transcript, ConfigThatCannotBeReadIsToldAndRemoved) {
  Session session;
  session.Configure("true\ntrue\ntrue\ntrue\nleft\n100\ntrue\n");
  session.Load();
  const bool isThere = std::filesystem::exists(session.UserFolder() / "config.txt");
  EXPECT_FALSE(isThere);
  ASSERT_EQ(1u, session.Boxes().size());
  EXPECT_EQ("Error!", session.Boxes()[0].title);
  EXPECT_EQ(R"(Unable to read config file: "<user>/config.txt"\nError message: )"
            "invalid stoi argument",
            session.transcript.Normalised(session.Boxes()[0].text));
  EXPECT_FALSE(session.Boxes()[0].answeredYes);
}

// A project of another schema is told of and left out; the others are merged.
void PlayReportedRun(Session& session) {
  session.AddProject("a.ifc", House("Abbey"));
  session.AddProject("b.ifc", House("Barn", 0, "IFC2X3"));
  session.AddProject("c.ifc", House("Castle"));
  LoadForAMerge(session);
  session.Click(kMergeActiveButton);
}

TEST(Transcript, LogOfAReportedRunIsOpenedForTheUser) {
  Session session;
  session.desktop.answers = {true};
  PlayReportedRun(session);
  session.NoteOpened();
  session.NoteLog("a_IFC_LOG.txt");
  NoteFolder(session);
  ExpectGolden("reported_and_log_opened", session.Golden());
}

TEST(Transcript, LogOfAReportedRunStaysWhenTheUserDoesNotWantToSeeIt) {
  Session session;
  session.desktop.answers = {false};
  PlayReportedRun(session);
  session.NoteFile("out.ifc");
  NoteFolder(session);
  // What was reported then is forgotten by the next run, whose log is gone in the end.
  session.viewer.ClearScene();
  session.AddProject("a.ifc", House("Abbey"));
  session.AddProject("b.ifc", House("Barn"));
  session.LoadModels();
  session.Click(kMergeActiveButton);
  NoteFolder(session);
  ExpectGolden("reported_and_log_kept", session.Golden());
}

TEST(Transcript, CancelOfTheReading) {
  Session session;
  AddThreeHouses(session);
  LoadForAMerge(session);
  session.viewer.cancelAt = 1;
  session.desktop.answers = {true};
  session.viewer.beforeHiding = [&] { session.NoteLog("a_IFC_LOG.txt"); };
  session.Click(kMergeActiveButton);
  NoteFolder(session);
  ExpectGolden("cancel", session.Golden());
}

TEST(Transcript, OutputIsOpenedInAnotherViewer) {
  Session session;
  AddThreeHouses(session);
  LoadForAMerge(session);
  session.Click(kOpenRecentButton);  // nothing was written yet
  session.Click(kMergeActiveButton);
  session.transcript.Clear();
  session.Click(kOpenRecentButton);
  session.NoteOpened();
  ExpectGolden("open_recent", session.Golden());
}

TEST(Transcript, ClickWithoutAnIdRunsTheDevelopersCommand) {
  Session session;
  session.Load();
  session.AddProject("a.ifc", House("Abbey", 1));
  session.LoadModels();
  session.transcript.Clear();
  session.Click(0);
  session.NoteFile("a.ifc_test.ifc");
  NoteFolder(session);
  ExpectGolden("developers_command", session.Golden());
}

}  // namespace
}  // namespace corvel::test_host
