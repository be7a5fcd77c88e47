// Outputs that the disk does not take. POSIX only: that is where it can be brought about.
#ifndef _WIN32

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/posix_faults.h"
#include "support/read_model.h"

namespace corvel {
namespace {

using Model = test::ReadModel;
using test::RecordedProgress;
using test::RecordedReports;
using test::Report;

class OutputDisk : public test::ReadTest {
 protected:
  // Where the writer hands over: a block goes out when it and the keep-back are full.
  static constexpr std::size_t kFirstFlush = 1'048'576 + 4'096;
  static constexpr std::size_t kSecondFlush = kFirstFlush + 1'048'576;

  // About 2.5 MB: two flushes while it is written, the rest at its end.
  static std::string LargeRecords() {
    std::string records;
    const std::string text(1000, 'x');
    for (unsigned number = 1; number <= 2400; ++number) {
      records += "#" + std::to_string(number) + "=IFCPERSON('" + text + "',$,$,$,$,$,$,$);\n";
    }
    return records;
  }

  // The message when the flush fails that comes with byte `offset` of the output.
  static Report FailureOfEntityAt(std::size_t offset) {
    const std::string written = test::ModelFile(LargeRecords()).substr(0, offset);
    const auto number = static_cast<std::uint32_t>(std::count(written.begin(), written.end(), '#'));
    return {
        "",
        u"Error occurred while writing entity: #" + ToWide(number) + u".Unable to write to file",
        0};
  }

  // Fails with this report alone, and leaves all as it was.
  void ExpectFailed(Model& model, const Report& report) {
    const auto names = model.Folder().Names();
    EXPECT_EQ(0, model.Document().SaveFile(model.Folder().Path("out.ifc")));
    EXPECT_EQ(std::vector<Report>{report}, *reports_);
    EXPECT_EQ(names, model.Folder().Names());
  }
};

TEST_F(OutputDisk, ThatIsFullFailsTheSaveOfASmallFile) {
  Model model("#1=IFCPERSON();");
  for (const unsigned limit : {0u, 1u, 100u}) {
    const RecordedReports fresh;
    const test::FileSizeLimit full(limit);
    ExpectFailed(model, {"", u"Could not write to file", 0});
  }
}

TEST_F(OutputDisk, ThatFillsWhileEntitiesAreWrittenNamesTheEntity) {
  Model model(LargeRecords());
  ASSERT_TRUE(model.IsRead());
  {
    const RecordedReports fresh;
    const test::FileSizeLimit full(500'000);
    ExpectFailed(model, FailureOfEntityAt(kFirstFlush));
  }
  const RecordedReports fresh;
  const test::FileSizeLimit full(1'500'000);
  ExpectFailed(model, FailureOfEntityAt(kSecondFlush));
}

TEST_F(OutputDisk, ThatFillsWhileTheHeaderIsWrittenFailsTheSave) {
  Model model("#1=IFCPERSON();");
  model.Document().getHeader()->name = WideString(2'000'000, u'n');
  const test::FileSizeLimit full(1000);
  ExpectFailed(model, {"", u"Unable to write to file", 0});
}

TEST_F(OutputDisk, ThatFillsBehindTheLastEntityFailsTheSave) {
  Model model(LargeRecords());
  const test::FileSizeLimit full(2'400'000);
  ExpectFailed(model, {"", u"Could not write to file", 0});
}

TEST_F(OutputDisk, ThatFillsAnywhereIsReportedOnceAndHoldsNothingOfTheFile) {
  Model model(LargeRecords());
  EXPECT_EQ(1, model.Document().SaveFile(model.Folder().Path("whole.ifc")));
  const auto size = static_cast<rlim_t>(model.Folder().Read("whole.ifc").size());
  for (rlim_t limit = 0; limit < size; limit += size / 23) {
    const RecordedReports fresh;
    {
      const test::FileSizeLimit full(limit);
      EXPECT_EQ(0, model.Document().SaveFile(model.Folder().Path("out.ifc"))) << limit;
    }
    EXPECT_EQ(1u, reports_->size()) << limit;
    EXPECT_FALSE(model.Folder().Has("out.ifc")) << limit;
  }
  // Nothing of this has harmed the model; the lists of the header alone are gone.
  EXPECT_EQ(1, model.Document().SaveFile(model.Folder().Path("out.ifc")));
}

TEST_F(OutputDisk, ThatFillsAtAnyByteKeepsTheFileThatWasThereBefore) {
  Model model("#1=IFCPERSON();");
  for (const char* const name : {"out.ifc", "out.ifczip"}) {
    const WideString path = model.Folder().Path(name);
    EXPECT_EQ(1, model.Document().SaveFile(path));
    EXPECT_EQ(1, model.Document().SaveFile(path));  // shorter: the lists of the header are gone
    const auto size = static_cast<rlim_t>(model.Folder().Read(name).size());
    model.Folder().Write(name, "an older file");
    const auto names = model.Folder().Names();
    for (rlim_t limit = 0; limit < size; ++limit) {
      const RecordedReports fresh;
      const test::FileSizeLimit full(limit);
      EXPECT_EQ(0, model.Document().SaveFile(path)) << limit;
      EXPECT_FALSE(reports_->empty()) << limit;
      EXPECT_EQ("an older file", model.Folder().Read(name)) << limit;
      ASSERT_EQ(names, model.Folder().Names()) << limit;
    }
    const test::FileSizeLimit enough(size);
    EXPECT_EQ(1, model.Document().SaveFile(path));
    EXPECT_EQ(size, model.Folder().Read(name).size());
  }
}

TEST_F(OutputDisk, ThatIsADeviceBehindALinkStaysWithItsLink) {
  Model model("#1=IFCPERSON();");
  test::LinkToFullDevice(model.Folder().Path("out.ifc"));
  ExpectFailed(model, {"", u"Could not write to file", 0});
  EXPECT_TRUE(std::filesystem::exists("/dev/full"));
}

TEST_F(OutputDisk, ThatTakesNothingNamesTheEntityOfTheFirstBlock) {
  Model model(LargeRecords());
  test::LinkToFullDevice(model.Folder().Path("out.ifc"));
  ExpectFailed(model, FailureOfEntityAt(kFirstFlush));
}

TEST_F(OutputDisk, WithAReadOnlyFolderGetsNoFile) {
  Model model("#1=IFCPERSON();");
  std::filesystem::permissions(model.Folder().Native(""), std::filesystem::perms(0555));
  const WideString path = model.Folder().Path("out.ifc");
  {
    const test::OrdinaryUser user;
    EXPECT_EQ(0, model.Document().SaveFile(path));
  }
  std::filesystem::permissions(model.Folder().Native(""), std::filesystem::perms(0755));
  EXPECT_EQ((std::vector<Report>{{"could_not_open_file", u". File path: " + path, 0},
                                 {"could_not_open_file_write", u"File path: " + path, 0}}),
            *reports_);
  EXPECT_FALSE(model.Folder().Has("out.ifc"));
}

WideString& StolenPath() {
  static WideString path;
  return path;
}

// The output has a name of its own as long as it is written.
WideString PathOfUnfinished() {
  for (const auto& entry : std::filesystem::directory_iterator(ToUtf8(StolenPath()))) {
    if (entry.path().extension() == ".part") return FromUtf8(entry.path().native());
  }
  return {};
}

bool Steal(int value, int, const WideString*, bool, int) {
  if (value == 1) {
    // The writer's descriptor is the younger one.
    EXPECT_TRUE(test::StealDescriptor(PathOfUnfinished(), test::Which::kLast));
  }
  return true;
}

TEST_F(OutputDisk, ThatLosesTheHandleFailsTheSave) {
  test::TemporaryFolder folder;
  IfcDocument document(false, RecordedReports::Reporter, Steal);
  StolenPath() = folder.Path();
  document.GetParser().progress = nullptr;  // so that the only tick of 1 is the writer's
  ASSERT_NE(0, document.OpenFile(folder.Write("a.ifc", test::ModelFile("#1=IFCPERSON();")), 1));
  EXPECT_EQ(0, document.SaveFile(folder.Path("out.ifc")));
  EXPECT_EQ((std::vector<Report>{{"", u"Could not write to file", 0}}), *reports_);
  EXPECT_EQ((std::vector<std::string>{"a.ifc", "a_TEMP.ifc"}), folder.Names());
}

TEST_F(OutputDisk, ThatIsFullKeepsNothingOfACancelledFile) {
  // Longer than the keep-back, so that closing has something to write.
  Model model("#1=IFCPERSON('" + std::string(5000, 'x') + "',$,$,$,$,$,$,$);");
  progress_.Forget();
  progress_.CancelAt(1);
  const test::FileSizeLimit full(1);
  EXPECT_EQ(2, model.Document().SaveFile(model.Folder().Path("out.ifc")));
  EXPECT_EQ((std::vector<Report>{{"", u"Could not write to file", 0}}), *reports_);
  EXPECT_FALSE(model.Folder().Has("out.ifc"));
}

}  // namespace
}  // namespace corvel

#endif
