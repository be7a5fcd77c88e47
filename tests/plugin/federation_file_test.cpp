#include "plugin/federation_file.h"

#include <gtest/gtest.h>

#include "platform/file.h"
#include "plugin/plugin.h"
#include "recorded_host.h"
#include "support/model.h"
#include "support/temporary_folder.h"
#include "support/test_platform.h"

namespace corvel::plugin {

namespace {

class FederationFile : public testing::Test {
 protected:
  // What is said against the file, without its path.
  std::string Mistake(const std::string& content) {
    const WideString path = folder_.Write("federation.txt", content);
    const auto mistake = ReadFederationFile(path, options_);
    if (!mistake) return "";
    EXPECT_TRUE(mistake->starts_with(path));
    return ToUtf8(mistake->substr(path.size()));
  }

  const test::TemporaryFolder folder_;
  FederationOptions options_;
};

}  // namespace

TEST_F(FederationFile, WithoutTheFileEverythingIsOff) {
  options_.tolerant = true;
  EXPECT_EQ(std::nullopt, ReadFederationFile(folder_.Path("none.txt"), options_));
  EXPECT_FALSE(options_.tolerant);
}

TEST_F(FederationFile, OptionsStandOneALineWithCommentsAndBlanks) {
  for (const char* const content :
       {"tolerant", "\xEF\xBB\xBFtolerant\r\n", "# what is read\n\n \t tolerant # all of it\n",
        "tolerant\ntolerant\n"}) {
    EXPECT_EQ("", Mistake(content));
    EXPECT_TRUE(options_.tolerant) << content;
  }
  EXPECT_EQ("", Mistake("# tolerant\n"));
  EXPECT_FALSE(options_.tolerant);
}

TEST_F(FederationFile, AReportIsAPage) {
  EXPECT_EQ("", Mistake("report = html"));
  EXPECT_TRUE(options_.reports);
  EXPECT_EQ(", line 1: 'report' takes 'html'.", Mistake("report"));
  EXPECT_EQ(", line 1: 'report' takes 'html'.", Mistake("report = text"));
  EXPECT_EQ("", Mistake("tolerant"));
  EXPECT_FALSE(options_.reports);
}

TEST_F(FederationFile, TheFirstMistakeIsToldWithItsLine) {
  EXPECT_EQ(", line 2: there is no option 'tolerrant'.", Mistake("tolerant\ntolerrant\nx\n"));
  EXPECT_EQ(", line 1: 'tolerant' takes no value.", Mistake("tolerant = yes\n"));
  EXPECT_EQ(", line 1: 'tolerant' takes no value.", Mistake("tolerant=\n"));
  EXPECT_EQ(", line 1: there is no option ''.", Mistake("= 1\n"));
  EXPECT_EQ(", line 1: there is no option 'Tolerant'.", Mistake("Tolerant"));
}

TEST_F(FederationFile, HasTheStepsOfTheCommandLine) {
  EXPECT_EQ("", Mistake("contexts = join\nguids=renew\nheader = new\nprune\nstamp # all\n"
                        "numbers = exact\nshare-equal\nplace = map\n"));
  EXPECT_TRUE(options_.steps.placeByMap);
  EXPECT_TRUE(options_.steps.shareEqual);
  EXPECT_EQ(NumberForm::kExact, options_.steps.numbers);
  EXPECT_TRUE(options_.steps.joinContexts);
  EXPECT_EQ(GuidHandling::kRenew, options_.steps.guids);
  EXPECT_TRUE(options_.steps.newHeader);
  EXPECT_TRUE(options_.steps.prune);
  EXPECT_TRUE(options_.steps.stamp);
  EXPECT_EQ("", Mistake("contexts = keep\nguids = keep\nheader = told\n"));
  EXPECT_FALSE(options_.steps.ChangeModel());
  EXPECT_FALSE(options_.steps.newHeader);
}

TEST_F(FederationFile, OneBuildingIsALineThatLaterOnesMayChange) {
  EXPECT_EQ("", Mistake("one-building\nguids = renew\nno-stamp\n"));
  EXPECT_TRUE(options_.steps.joinContexts);
  EXPECT_EQ(TreeMatching::kOne, options_.steps.tree);
  EXPECT_EQ(GuidHandling::kRenew, options_.steps.guids);
  EXPECT_TRUE(options_.steps.prune);
  EXPECT_FALSE(options_.steps.stamp);
  EXPECT_TRUE(options_.steps.convertUnits);
  EXPECT_TRUE(options_.steps.placeByMap);
  EXPECT_TRUE(options_.steps.shareEqual);
  EXPECT_TRUE(options_.steps.newHeader);
  EXPECT_EQ(", line 1: 'one-building' takes no value.", Mistake("one-building = yes\n"));
}

TEST_F(FederationFile, OfTwoLinesForAStepTheLastCounts) {
  EXPECT_EQ("", Mistake("prune\nno-stamp\nstamp\nno-prune\n"));
  EXPECT_FALSE(options_.steps.prune);
  EXPECT_TRUE(options_.steps.stamp);
}

TEST_F(FederationFile, AStepTakesItsOwnWords) {
  EXPECT_EQ(", line 1: 'contexts' takes 'keep' or 'join'.", Mistake("contexts"));
  EXPECT_EQ(", line 1: 'guids' takes 'keep', 'renew' or 'join'.", Mistake("guids = Renew"));
  EXPECT_EQ(", line 1: 'header' takes 'told' or 'new'.", Mistake("header ="));
  EXPECT_EQ(", line 1: 'numbers' takes 'told' or 'exact'.", Mistake("numbers = 15"));
  EXPECT_EQ(", line 1: 'prune' takes no value.", Mistake("prune = yes"));
}

namespace {

class FederatedRun : public testing::Test {
 protected:
  FederatedRun() {
    host_.output = folder_.Path("out.ifc");
    const std::string records =
        "#1=IFCPROJECT('p',$,'P',$,$,$,$,(),$);\n#2=IFCNEWTHING('n',#1);\n"
        "#3=IFCRELAGGREGATES('r',$,$,$,#1,(#2));\n";
    host_.AddProject(1, folder_.Write("a.ifc", test::ModelFile(records, "IFC4")));
    host_.AddProject(2, folder_.Write("b.ifc", test::ModelFile(records, "ifc4")));
  }
  void Run() {
    host_.Load();
    host_.TellModelsAreLoaded();
    host_.calls.clear();
    host_.Click(Plugin::Instance()->Buttons().mergeActive);
  }

  test::TestPlatform platform_;
  test::RecordedHost host_;
  const test::TemporaryFolder folder_;
};

}  // namespace

TEST_F(FederatedRun, WithoutTheFileAModelThatDoesNotFitIsRefused) {
  Run();
  EXPECT_FALSE(folder_.Has("out.ifc"));
}

TEST_F(FederatedRun, ATolerantRunMergesWhatDoesNotFit) {
  host_.user.Write("federation.txt", "tolerant\n");
  Run();
  EXPECT_TRUE(Plugin::Instance()->LastRun().written);
  const std::string out = folder_.Read("out.ifc");
  EXPECT_NE(std::string::npos, out.find("=IFCNEWTHING('n',#")) << out;
  EXPECT_FALSE(host_.user.Has("config.txt") &&
               host_.user.Read("config.txt").find("tolerant") != std::string::npos);
}

TEST_F(FederatedRun, StepsOfTheFileAreTaken) {
  host_.user.Write("federation.txt", "tolerant\nguids = renew\n");
  Run();
  EXPECT_TRUE(Plugin::Instance()->LastRun().written);
  const std::string out = folder_.Read("out.ifc");
  const std::size_t first = out.find("=IFCRELAGGREGATES('r',");
  EXPECT_NE(std::string::npos, first) << out;
  EXPECT_EQ(std::string::npos, out.find("=IFCRELAGGREGATES('r',", first + 1));
}

// A path as a text of JSON has it.
std::string InJson(const std::string& path) {
  std::string text;
  for (const char byte : path) {
    if (byte == '\\') text += byte;
    text += byte;
  }
  return text;
}

TEST_F(FederatedRun, AReportLiesBesideTheLogInTheLanguageOfTheViewer) {
  host_.user.Write("federation.txt", "tolerant\nreport = html\nguids = renew\n");
  Run();
  EXPECT_TRUE(Plugin::Instance()->LastRun().written);
  const std::string page = folder_.Read("a_IFC_REPORT.html");
  EXPECT_NE(std::string::npos, page.find("<html lang=\"pl\">")) << page.substr(0, 100);
  EXPECT_NE(std::string::npos, page.find("\"file\":\"" + InJson(ToUtf8(host_.output)) + "\""));
  EXPECT_NE(std::string::npos, page.find("{\"step\":\"guids\",\"counts\":{\"renewed\":1}"));
}

TEST_F(FederatedRun, WhoeverWantsToSeeTheLogSeesTheReport) {
  host_.user.Write("federation.txt", "tolerant\nreport = html\n");
  Run();  // what does not fit is told, so that there is a log
  const std::vector<test::TestPlatform::Opened> both = {{folder_.Path("a_IFC_LOG.txt"), u""},
                                                        {folder_.Path("a_IFC_REPORT.html"), u""}};
  EXPECT_EQ(both, platform_.opened);
}

TEST_F(FederatedRun, WithoutTheOptionThereIsNoReportAndTheViewerIsAskedNothingMore) {
  host_.user.Write("federation.txt", "tolerant\n");
  Run();
  EXPECT_FALSE(folder_.Has("a_IFC_REPORT.html"));
  EXPECT_TRUE(host_.CallsOf("get_language").empty());
}

TEST_F(FederatedRun, AReportThatCannotBeWrittenIsReported) {
  host_.user.Write("federation.txt", "tolerant\nreport = html\n");
  ASSERT_TRUE(::platform::MakeFolder(folder_.Path("a_IFC_REPORT.html")));
  Run();
  EXPECT_TRUE(Plugin::Instance()->LastRun().written);
  const std::vector<std::string> boxes = host_.CallsOf("message_box");
  ASSERT_FALSE(boxes.empty());
  EXPECT_NE(std::string::npos, boxes.back().find("The report could not be written. File path: " +
                                                 ToUtf8(folder_.Path("a_IFC_REPORT.html"))));
}

TEST_F(FederatedRun, AProposalAsksForNoOutputAndWritesItsListAlone) {
  host_.user.Write("federation.txt", "tolerant\ntree = name\npropose-tree = " +
                                         ToUtf8(folder_.Path("tree.txt")) + "\n");
  Run();
  EXPECT_TRUE(Plugin::Instance()->LastRun().written);
  EXPECT_TRUE(host_.CallsOf("save_file_dialog").empty());
  EXPECT_FALSE(folder_.Has("out.ifc"));
  EXPECT_NE(std::string::npos, folder_.Read("tree.txt").find("input 1 a.ifc\ninput 2 b.ifc\n"));
}

TEST_F(FederatedRun, AMistakeInAListIsToldBeforeAnythingIsRead) {
  const WideString map = folder_.Write("tree.txt", "apart\n");
  host_.user.Write("federation.txt", "tolerant\ntree-map = " + ToUtf8(map) + "\n");
  Run();
  EXPECT_FALSE(Plugin::Instance()->LastRun().written);
  EXPECT_TRUE(host_.CallsOf("save_file_dialog").empty());
  EXPECT_FALSE(folder_.Has("a_TEMP.ifc"));
  const std::vector<std::string> boxes = host_.CallsOf("message_box");
  ASSERT_EQ(1u, boxes.size());
  EXPECT_NE(std::string::npos, boxes[0].find("tree.txt, line 1: an object is missing."))
      << boxes[0];
}

TEST_F(FederatedRun, AMistakeIsToldAndNothingIsRead) {
  const WideString path = host_.user.Write("federation.txt", "tolerrant\n");
  Run();
  EXPECT_EQ((std::vector<std::string>{"message_box(\"error_caption\", \"" + ToUtf8(path) +
                                      ", line 1: there is no option 'tolerrant'.\", 16)"}),
            host_.CallsOf("message_box"));
  EXPECT_FALSE(Plugin::Instance()->LastRun().written);
  EXPECT_TRUE(host_.CallsOf("save_file_dialog").empty());
  EXPECT_FALSE(folder_.Has("a_TEMP.ifc"));
}

}  // namespace corvel::plugin
