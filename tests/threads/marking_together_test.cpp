// Several threads mark the models of a merge, and whoever watches sees one after the other.
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "merge/kept_ticks.h"
#include "merge/marking_ahead.h"
#include "merge/merge_job.h"
#include "merge/recorded_scene.h"
#include "merge/report/report_gatherer.h"
#include "merge/report/report_json.h"
#include "step/log/ifc_log.h"
#include "support/model.h"
#include "support/read_model.h"

namespace corvel {
namespace {

constexpr unsigned kMarkingThreads[] = {2, 3, 8};

std::string ReferenceTo(std::uint32_t number) { return "#" + std::to_string(number); }

// A GUID for each number and model.
std::string GuidInModel(unsigned model, std::uint32_t number) {
  std::string guid = std::to_string(number) + "m" + std::to_string(model);
  return "'" + std::string(22 - guid.size(), '0') + guid + "'";
}

constexpr std::uint32_t kFirstWall = 20;
constexpr std::uint32_t kOfWall = 10;
constexpr std::uint32_t kOpeningOfWall = 7;  // behind its wall

// Walls with openings, properties that several share, and what nobody refers to.
std::string BuildingOf(unsigned model, std::uint32_t walls, const char* unit) {
  std::ostringstream records;
  const auto guid = [model](std::uint32_t number) { return GuidInModel(model, number); };
  records << "#1=IFCPROJECT(" << guid(1) << ",$,'P',$,$,$,$,$,#2);\n"
          << "#2=IFCUNITASSIGNMENT((#3));\n#3=" << unit << ";\n"
          << "#4=IFCSITE(" << guid(4) << ",$,'S',$,$,#5,$,$,$,$,$,$,$,$);\n"
          << "#5=IFCLOCALPLACEMENT($,#6);\n#6=IFCAXIS2PLACEMENT3D(#7,$,$);\n"
          << "#7=IFCCARTESIANPOINT((0.,0.,0.));\n"
          << "#8=IFCRELAGGREGATES(" << guid(8) << ",$,$,$,#1,(#4));\n"
          << "#9=IFCCARTESIANPOINT((9.,9.,9.));\n";
  for (std::uint32_t wall = 0; wall < walls; ++wall) {
    const std::uint32_t first = kFirstWall + wall * kOfWall;
    const auto at = [first](std::uint32_t place) { return ReferenceTo(first + place); };
    const std::string before = ReferenceTo(wall == 0 ? first : first - kOfWall);
    records << at(0) << "=IFCWALL(" << guid(first) << ",$,'W',$,$," << at(1) << ",$,$,$);\n"
            << at(1) << "=IFCLOCALPLACEMENT(#5," << at(2) << ");\n"
            << at(2) << "=IFCAXIS2PLACEMENT3D(" << at(3) << ",$,$);\n"
            << at(3) << "=IFCCARTESIANPOINT((" << wall << ".,0.,0.));\n"
            << at(4) << "=IFCRELDEFINESBYPROPERTIES(" << guid(first + 4) << ",$,$,$,(" << at(0)
            << "," << before << ")," << at(5) << ");\n"
            << at(5) << "=IFCPROPERTYSET(" << guid(first + 5) << ",$,'S',$,(" << at(6) << "));\n"
            << at(6) << "=IFCPROPERTYSINGLEVALUE('p',$,IFCLABEL('v'),$);\n"
            << at(kOpeningOfWall) << "=IFCOPENINGELEMENT(" << guid(first + kOpeningOfWall)
            << ",$,$,$,$," << at(1) << ",$,$,$);\n"
            << at(8) << "=IFCRELVOIDSELEMENT(" << guid(first + 8) << ",$,$,$," << at(0) << ","
            << at(kOpeningOfWall) << ");\n";
  }
  return records.str();
}

// Writes down all that it is told and asked, and answers as a user would who wants the merge.
class ShellOfMerge final : public MergeShell {
 public:
  // Borrows the scene.
  ShellOfMerge(WideString output, const test::RecordedScene& scene, unsigned threads)
      : gatherer("merge", threads), output_(std::move(output)), scene_(scene) {
    options.threads = threads;
  }

  MergeOptions options;
  bool standsStill = true;
  ReportGatherer gatherer;
  std::vector<std::string> calls;
  std::optional<std::size_t>
      askedBefore;  // questions to the scene, before the first model has its turn

  WideString Text(const char* key) override { return Widen(key); }
  MergeOptions Options() override { return options; }
  ErrorReporter Reporter() override { return test::RecordedReports::Reporter; }
  ProgressCallback Ticks() override { return test::RecordedProgress::Callback; }
  bool SceneStandsStill() override { return standsStill; }
  RunObserver* Observer() override { return &gatherer; }
  WideString OutputPath() override { return output_; }
  bool AskForOutput(const OutputSuggestion& /*suggestion*/) override { return Note("ask"), true; }
  void ShowBox(const WideString&, const WideString& text, unsigned) override { Note(Narrow(text)); }
  void EnableOpenRecent() override { Note("recent"); }
  void RememberOutput(const WideString& /*path*/) override { Note("remember"); }
  void SaveOptions() override { Note("save options"); }
  void HideOptionsWindow() override { Note("hide"); }
  void StartRun() override { Note("start"); }
  void FinishRun() override { Note("finish"); }
  void OpenProgress(const WideString& title) override { Note(Narrow(title)); }
  void SetOverallText(const WideString& text) override { Note(Narrow(text)); }
  void SetCurrentText(const WideString& text) override {
    Note(Narrow(text));
    if (text == u"deleting_entities_from" && !askedBefore) askedBefore = scene_.calls.size();
  }
  void SetCurrentFile(const WideString& path) override { Note(Narrow(path)); }
  void StartStage(int weight) override { Note("stage " + std::to_string(weight)); }
  void StartLastStage() override { Note("last stage"); }
  void ResetProgress() override { Note("reset"); }

 private:
  void Note(const std::string& call) { calls.push_back(call); }

  WideString output_;
  const test::RecordedScene& scene_;
};

// What a run needs, and what is to happen in it.
struct HowToMerge {
  std::vector<std::string> models;  // their records
  std::function<void(test::SceneObject&)> adjust = [](test::SceneObject& /*object*/) {};
  std::vector<ProjectOffsetRecord> offsets;
  SavingMode mode = SavingMode::kMergeActive;
  bool deleteOpenings = false;
  bool ignoreUnits = false;
  bool standsStill = true;
  std::size_t cancelAt = 1000000;
};

// All that it has done to the world.
struct SeenOfMerge {
  bool written = false;
  bool asksAhead = false;
  std::string bytes;
  std::string log;
  std::string report;  // that somebody who observes could write
  std::vector<std::string> calls;
  std::vector<std::string> sceneCalls;
  std::vector<test::Report> reports;
  std::vector<test::Tick> ticks;
  std::vector<test::TestPlatform::Box> boxes;
};

class MarkingTogether : public test::ReadTest {
 protected:
  ~MarkingTogether() override { IfcLog::Instance().Discard(); }

  SeenOfMerge Merge(const HowToMerge& how, unsigned threads) {
    IFC::MainContainer::ResetUniqueMarker();
    Cancellation::OfProcess().mode = CancelMode::kAsk;
    platform_.boxes.clear();
    platform_.guids.clear();
    for (std::uint32_t i = 1; i < 100; ++i) platform_.guids.push_back({.data1 = i});
    reports_.Forget();
    test::RecordedProgress progress;
    progress.CancelAt(how.cancelAt);
    const test::TemporaryFolder folder;
    test::RecordedScene scene;
    scene.offsets = how.offsets;
    std::vector<HostObject> projects;
    for (const std::string& records : how.models) {
      projects.push_back(projects.size() + 1);
      const std::string name = "m" + std::to_string(projects.back()) + ".ifc";
      scene.paths[projects.back()] = folder.Write(name, test::ModelFile(records));
      AddObjects(how, projects.back(), records, scene);
    }
    ShellOfMerge shell(folder.Path("out.ifc"), scene, threads);
    shell.options.deleteOpenings = how.deleteOpenings;
    shell.options.ignoreUnits = how.ignoreUnits;
    shell.standsStill = how.standsStill;
    MergeJob job(scene, shell);
    SeenOfMerge seen;
    seen.written = job.Run({projects.begin(), projects.end()}, projects, how.mode).written;
    IfcLog::Instance().Close();
    if (folder.Has("out.ifc")) seen.bytes = folder.Read("out.ifc");
    // The indent goes on from log to log, and one trace in 101 is logged, counted in the same way.
    static const std::regex passing("\\s|Reading entity: #[0-9]+");
    seen.log = std::regex_replace(folder.Read("m1_IFC_LOG.txt"), passing, "");
    const std::string place = Narrow(folder.Path(""));
    const auto hidePlace = [&place](std::string& text) {
      for (std::size_t at = 0; (at = text.find(place, at)) != std::string::npos;) {
        text.erase(at, place.size());
      }
    };
    hidePlace(seen.log);
    static const std::regex times("\"(startedAt|seconds|memoryBytes)\":(\"[^\"]*\"|[-0-9.e]+)");
    seen.report = std::regex_replace(ReportAsJson(shell.gatherer.Report()), times, "");
    // Paths of Windows have their separators doubled in JSON.
    static const std::regex doubled(R"(\\\\)");
    seen.report = std::regex_replace(seen.report, doubled, R"(\)");
    hidePlace(seen.report);
    for (std::string& call : shell.calls) hidePlace(call);
    seen.calls = shell.calls;
    seen.sceneCalls = scene.calls;
    seen.asksAhead = shell.askedBefore > 0u;
    seen.reports = *reports_;
    seen.ticks = *progress;
    seen.boxes = platform_.boxes;
    return seen;
  }

  static void AddObjects(const HowToMerge& how, HostObject project, const std::string& records,
                         test::RecordedScene& scene) {
    const auto add = [&](std::uint32_t number, const char* className, std::uint32_t parent) {
      const auto handle = [project](std::uint32_t of) { return project * 1'000'000 + of; };
      test::SceneObject object{handle(number), project, number, className,
                               parent == 0 ? 0 : handle(parent)};
      how.adjust(object);
      scene.Add(object);
    };
    add(1, "IfcProject", 0);
    add(4, "IfcSite", 1);
    const std::string wall = "=IFCWALL(";
    for (std::uint32_t first = kFirstWall;
         records.find(ReferenceTo(first) + wall) != std::string::npos; first += kOfWall) {
      add(first, "IfcWall", 4);
      add(first + kOpeningOfWall, "IfcOpeningElement", first);
    }
  }

  // One thread and several do the same. Gives what one has done.
  SeenOfMerge ExpectTheSame(const HowToMerge& how) {
    SeenOfMerge alone = Merge(how, 1);
    EXPECT_FALSE(alone.asksAhead);
    for (const unsigned threads : kMarkingThreads) {
      const SeenOfMerge together = Merge(how, threads);
      EXPECT_EQ(how.standsStill, together.asksAhead) << threads;
      EXPECT_EQ(alone.written, together.written) << threads;
      EXPECT_EQ(alone.log, together.log) << threads;
      EXPECT_EQ(alone.report, together.report) << threads;
      EXPECT_EQ(alone.calls, together.calls) << threads;
      EXPECT_EQ(alone.ticks, together.ticks) << threads;
      EXPECT_TRUE(alone.bytes == together.bytes) << threads;
      EXPECT_TRUE(alone.reports == together.reports) << threads;
      EXPECT_TRUE(alone.boxes == together.boxes) << threads;
      EXPECT_EQ(alone.sceneCalls.size(), together.sceneCalls.size()) << threads;
      const bool asksInOrder = alone.sceneCalls == together.sceneCalls;
      EXPECT_TRUE(asksInOrder || how.standsStill) << threads;
    }
    return alone;
  }

  static HowToMerge Buildings(unsigned count, std::uint32_t walls = 60) {
    HowToMerge how;
    for (unsigned model = 0; model < count; ++model) {
      how.models.push_back(BuildingOf(model, walls, "IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.)"));
    }
    return how;
  }
};

TEST_F(MarkingTogether, AMergeOfWholeModelsIsTheSame) {
  const SeenOfMerge seen = ExpectTheSame(Buildings(4));
  EXPECT_TRUE(seen.written);
  EXPECT_LT(300u, seen.ticks.size());
  // What nobody refers to has gone from each.
  EXPECT_EQ(std::string::npos, seen.bytes.find("9.,9.,9."));
  EXPECT_TRUE(seen.reports.empty());
}

// The same objects in each run.
void LeaveSomeOut(test::SceneObject& object) {
  std::mt19937 random(static_cast<unsigned>(object.handle));
  object.active = random() % 3 != 0;
  object.visible = random() % 4 != 0 ? 1 : 0;
}

TEST_F(MarkingTogether, WhatIsLeftOutTakesTheSameAlong) {
  for (const SavingMode mode : {SavingMode::kMergeActive, SavingMode::kMergeVisible}) {
    HowToMerge how = Buildings(3);
    how.mode = mode;
    how.deleteOpenings = mode == SavingMode::kMergeActive;
    how.adjust = LeaveSomeOut;
    const SeenOfMerge seen = ExpectTheSame(how);
    EXPECT_TRUE(seen.written);
    const bool leavesOpenings = how.deleteOpenings;
    EXPECT_NE(std::string::npos, seen.report.find("\"inactive\":")) << seen.report;
    EXPECT_EQ(leavesOpenings, seen.report.find("\"opening\":") != std::string::npos);
    EXPECT_EQ(leavesOpenings, seen.report.find("\"hidden\":") == std::string::npos);
  }
}

TEST_F(MarkingTogether, AModelThatIsMovedIsMarkedAtItsTurn) {
  HowToMerge how = Buildings(4);
  how.offsets = {{3, 1000.0, 0.0, 0.0}};
  EXPECT_TRUE(ExpectTheSame(how).written);
}

TEST_F(MarkingTogether, AModelOfOtherUnitsIsMarkedAtItsTurn) {
  HowToMerge how = Buildings(3);
  how.models[1] = BuildingOf(1, 30, "IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.)");
  how.ignoreUnits = true;
  EXPECT_TRUE(ExpectTheSame(how).written);
  how.ignoreUnits = false;
  const SeenOfMerge seen = ExpectTheSame(how);
  EXPECT_TRUE(seen.written);
  EXPECT_FALSE(seen.reports.empty());
}

TEST_F(MarkingTogether, GuidsThatAreMissingOrTakenAreToldAtTheFold) {
  HowToMerge how = Buildings(3);
  const auto replace = [](std::string& text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    ASSERT_NE(std::string::npos, at);
    text.replace(at, from.size(), to);
  };
  for (std::string& records : how.models) {
    const auto model = static_cast<unsigned>(&records - how.models.data());
    replace(records, GuidInModel(model, kFirstWall + kOfWall), GuidInModel(model, kFirstWall));
    replace(records, GuidInModel(model, kFirstWall + 2 * kOfWall), "''");
  }
  const SeenOfMerge seen = ExpectTheSame(how);
  EXPECT_TRUE(seen.written);
  EXPECT_LE(6u, seen.reports.size());
}

TEST_F(MarkingTogether, ASceneThatMayChangeIsAskedAtTheTurnOfEachModel) {
  HowToMerge how = Buildings(3);
  how.standsStill = false;
  EXPECT_TRUE(ExpectTheSame(how).written);
}

TEST_F(MarkingTogether, StopsAtATickOfEachStepWhereOneThreadStops) {
  HowToMerge how = Buildings(2, 12);
  how.mode = SavingMode::kMergeActive;
  how.adjust = LeaveSomeOut;
  how.deleteOpenings = true;
  const std::vector<test::Tick> ticks = Merge(how, 1).ticks;
  std::vector<std::size_t> marking;
  for (std::size_t i = 0; i < ticks.size(); ++i) {
    const WideString& text = ticks[i].extraText;
    if (text == u"1/3" || text == u"2/3" || text == u"3/3") marking.push_back(i);
  }
  ASSERT_LT(200u, marking.size());
  std::set<std::size_t> tried;
  for (std::size_t i = 0; i < marking.size(); i += marking.size() / 8) tried.insert(marking[i]);
  // Nothing has been left out yet of a model that has just come to its turn.
  for (std::size_t i = 1; i < marking.size(); ++i) {
    const bool isNextModel = ticks[marking[i - 1]].extraText != ticks[marking[i]].extraText &&
                             ticks[marking[i]].extraText == u"1/3";
    if (isNextModel) tried.insert({marking[i], marking[i] + 1});
  }
  ASSERT_EQ(11u, tried.size());
  for (const std::size_t i : tried) {
    how.cancelAt = i;
    const SeenOfMerge expected = Merge(how, 1);
    const SeenOfMerge seen = Merge(how, 3);
    EXPECT_FALSE(seen.written);
    EXPECT_EQ(expected.ticks, seen.ticks) << i;
    EXPECT_EQ(expected.calls, seen.calls) << i;
    EXPECT_EQ(expected.log, seen.log) << i;
    EXPECT_EQ(expected.report, seen.report) << i;
    EXPECT_TRUE(expected.boxes == seen.boxes) << i;
    EXPECT_EQ(1u, seen.boxes.size()) << i;
  }
}

// --- The pieces ----------------------------------------------------------------------------------

TEST_F(MarkingTogether, WhoeverEndsEarlyWaitsForNoWholeMarking) {
  test::Model first(BuildingOf(0, 400, "IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.)"));
  test::Model second(BuildingOf(1, 400, "IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.)"));
  for (int i = 0; i < 10; ++i) {
    MarkingAhead ahead(2, i % 2 == 0);
    ahead.Begin(*first, {});
    ahead.Begin(*second, {});
    EXPECT_TRUE(ahead.Has(*first));
  }
  EXPECT_TRUE(progress_->empty() || progress_->front().extraText != u"1/3");
}

TEST(KeptTicksTest, ComeInTheirOrderAndStopAtACancel) {
  const test::TestPlatform platform;
  test::RecordedProgress progress;
  KeptTicks ticks;
  const std::atomic<bool> ends = false;
  const WideString text = u"1/3";
  {
    const KeptTicks::Keeping whileItLasts(ticks, ends);
    EXPECT_TRUE(KeptTicks::Callback(1, 5, &text, false, 100));
    EXPECT_TRUE(KeptTicks::Callback(2, 6, nullptr, true, 50));
    EXPECT_TRUE(KeptTicks::Callback(3, 7, &text, true, 50));
  }
  EXPECT_TRUE(progress->empty());
  EXPECT_TRUE(ticks.SendTo(test::RecordedProgress::Callback));
  const std::vector<test::Tick> all = {
      {1, 5, u"1/3", false, 100}, {2, 6, u"", true, 50}, {3, 7, u"1/3", true, 50}};
  EXPECT_EQ(all, *progress);
  progress.Forget();
  progress.CancelAt(1);
  EXPECT_FALSE(ticks.SendTo(test::RecordedProgress::Callback));
  EXPECT_EQ(2u, progress->size());
}

TEST(KeptTicksTest, TheNextTickEndsWorkThatIsNotWanted) {
  KeptTicks ticks;
  std::atomic<bool> ends = false;
  const KeptTicks::Keeping whileItLasts(ticks, ends);
  EXPECT_TRUE(KeptTicks::Callback(1, 5, nullptr, false, 100));
  ends = true;
  EXPECT_THROW(KeptTicks::Callback(2, 5, nullptr, false, 100), KeptTicks::Ended);
}

}  // namespace
}  // namespace corvel
