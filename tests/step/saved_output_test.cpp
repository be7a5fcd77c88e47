// Saves that fail at the very end: in the place of an older file there is the new one, or the older
// one still. POSIX only: that is where it can be brought about.
#ifndef _WIN32

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/failing_calls.h"
#include "support/posix_faults.h"
#include "support/read_model.h"

namespace corvel {
namespace {

namespace fs = std::filesystem;
using test::Call;
using test::FailingCall;
using test::Report;
using Names = std::vector<std::string>;

class SavedOutput : public test::ReadTest, public testing::WithParamInterface<const char*> {
 protected:
  SavedOutput() { folder_.Write(GetParam(), "older"); }

  int Save() { return model_.Document().SaveFile(Path()); }
  int SaveWithout(Call call) {
    const FailingCall failing(call);
    return Save();
  }
  WideString Path() const { return folder_.Path(GetParam()); }
  std::string Read() const { return folder_.Read(GetParam()); }
  bool IsPacked() const { return std::string(GetParam()).ends_with("zip"); }

  const test::TemporaryFolder folder_;
  test::ReadModel model_{"#1=IFCPERSON('" + std::string(5000, 'x') + "',$,$,$,$,$,$,$);"};
};

INSTANTIATE_TEST_SUITE_P(Both, SavedOutput, testing::Values("out.ifc", "out.ifczip"),
                         [](const auto& each) { return each.param[7] == 0 ? "Plain" : "Packed"; });

TEST_P(SavedOutput, ThatTheDiskDoesNotTakeLeavesTheOlderFile) {
  EXPECT_EQ(0, SaveWithout(Call::kSync));
  const WideString told = IsPacked() ? u"Could not write to zip file" : u"Could not write to file";
  EXPECT_EQ((std::vector<Report>{{"", told, 0}}), *reports_);
  EXPECT_EQ(Names{GetParam()}, folder_.Names());
  EXPECT_EQ("older", Read());
  EXPECT_EQ(u"", model_.Document().outputKeptAt);
}

TEST_P(SavedOutput, ThatCannotBePutAtItsPlaceIsToldAndTheOlderFileStays) {
  EXPECT_EQ(0, SaveWithout(Call::kRename));
  EXPECT_EQ("older", Read());
  const WideString kept = model_.Document().outputKeptAt;
  EXPECT_EQ(
      (std::vector<Report>{{"",
                            u"The output is complete, but it could not be put at its place: " +
                                Path() + u". It lies here: " + kept,
                            0}}),
      *reports_);
  ASSERT_EQ(2u, folder_.Names().size());
  EXPECT_TRUE(fs::exists(ToUtf8(kept)));
  EXPECT_EQ(1, Save());
  EXPECT_EQ(u"", model_.Document().outputKeptAt);
}

TEST_P(SavedOutput, WhoseModeCannotBeSetIsForItsOwnerAlone) {
  EXPECT_EQ(1, SaveWithout(Call::kMode));
  EXPECT_NE("older", Read());
  struct stat status {};
  ASSERT_EQ(0, ::stat(folder_.Native(GetParam()).c_str(), &status));
  EXPECT_EQ(0600u, status.st_mode & 07777);
}

TEST_P(SavedOutput, ThatIsCancelledLeavesTheOlderFile) {
  progress_.Forget();
  progress_.CancelAt(1);
  EXPECT_EQ(2, Save());
  EXPECT_EQ(Names{GetParam()}, folder_.Names());
  EXPECT_EQ("older", Read());
}

TEST_P(SavedOutput, BehindALinkIsWrittenWhereTheLinkLeads) {
  fs::remove(folder_.Native(GetParam()));
  fs::create_symlink("real", folder_.Native(GetParam()));
  EXPECT_EQ(1, Save());
  EXPECT_TRUE(fs::is_symlink(folder_.Native(GetParam())));
  const std::string written = folder_.Read("real");
  if (IsPacked()) {
    EXPECT_NE(std::string::npos, written.find("out.ifc")) << "the entry is named after the path";
    EXPECT_EQ(std::string::npos, written.find("corvel-"));
  } else {
    EXPECT_TRUE(written.starts_with("ISO-10303-21;\nHEADER;\n"));
    EXPECT_TRUE(written.ends_with("xx',$,$,$,$,$,$,$);\nENDSEC;\nEND-ISO-10303-21;\n"));
  }
}

TEST_P(SavedOutput, ThatMayNotBeWrittenIsRefusedByItsOwnName) {
  fs::permissions(folder_.Native(""), fs::perms(0777));
  fs::permissions(folder_.Native(GetParam()), fs::perms(0444));
  {
    const test::OrdinaryUser user;
    EXPECT_EQ(0, Save());
  }
  const Report notOpened = IsPacked() ? Report{"", u"Could not open or create zip archive", 0}
                                      : Report{"could_not_open_file", u". File path: " + Path(), 0};
  EXPECT_EQ(
      (std::vector<Report>{notOpened, {"could_not_open_file_write", u"File path: " + Path(), 0}}),
      *reports_);
  EXPECT_EQ(Names{GetParam()}, folder_.Names());
  EXPECT_EQ("older", Read());
}

}  // namespace
}  // namespace corvel

#endif
