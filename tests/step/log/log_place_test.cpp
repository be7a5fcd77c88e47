#include "step/log/log_place.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "step/log/ifc_log.h"
#include "support/temporary_folder.h"
#include "support/test_platform.h"

namespace corvel {
namespace {

using test::TemporaryFolder;
using test::TestPlatform;

const std::string kDateLine = "[07-03-2024    09:05:00]\r\n";

class PlacedLog : public testing::Test {
 protected:
  PlacedLog() {
    log_.SetPlace(LogPlace{folder_.Path("out_IFC_LOG.txt"),
                           [this](const WideString& path) { refused_.push_back(path); }});
  }
  void Open() { log_.Open(folder_.Path("a.ifc")); }
  WideString Free() const { return FreeLogPath(folder_.Path("x_IFC_LOG.txt")); }

  TestPlatform system_;
  TemporaryFolder folder_;
  std::vector<WideString> refused_;
  IfcLog log_;
};

TEST_F(PlacedLog, NothingIsMadeBeforeThereIsSomethingToTell) {
  Open();
  log_.LogLine(u"one");
  log_.Flush();
  EXPECT_TRUE(folder_.Names().empty());
  EXPECT_EQ(u"", log_.Path());
  log_.Discard();
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(PlacedLog, WhatWasHeldBackStandsInFrontOfWhatFollows) {
  Open();
  log_.LogLine(u"one", true);
  log_.KeepFile();
  log_.LogText(u"two");
  log_.KeepFile();
  EXPECT_EQ(folder_.Path("out_IFC_LOG.txt"), log_.Path());
  log_.Close();
  EXPECT_EQ(kDateLine + "one\r\n\ttwo", folder_.Read("out_IFC_LOG.txt"));
}

TEST_F(PlacedLog, WithFlushEveryLineWhatIsKeptIsOnTheDiskAtOnce) {
  Open();
  log_.SetFlushEveryLine(true);
  log_.LogText(u"report");
  log_.KeepFile();
  EXPECT_EQ(kDateLine + "report", folder_.Read("out_IFC_LOG.txt"));
}

TEST_F(PlacedLog, MutedTextIsNotHeldBackEither) {
  Open();
  log_.SetMuted(true);
  log_.LogText(u"lost");
  for (std::uint32_t i = 0; i < 101; ++i) log_.LogReadingEntity(i);
  log_.SetMuted(false);
  for (std::uint32_t i = 0; i < 101; ++i) log_.LogReadingEntity(7);
  log_.KeepFile();
  log_.Close();
  EXPECT_EQ(kDateLine + "Reading entity: #7", folder_.Read("out_IFC_LOG.txt"));
}

TEST_F(PlacedLog, ClosingForgetsWhatWasHeldBack) {
  Open();
  log_.LogText(u"first");
  log_.Close();
  log_.KeepFile();
  EXPECT_TRUE(folder_.Names().empty());
  Open();
  log_.LogText(u"second");
  log_.KeepFile();
  log_.Close();
  EXPECT_EQ(kDateLine + "second", folder_.Read("out_IFC_LOG.txt"));
}

TEST_F(PlacedLog, OnlyALogThatWasMadeIsDiscarded) {
  folder_.Write("out_IFC_LOG.txt", kDateLine + "of an earlier run");
  Open();
  log_.Discard();
  EXPECT_EQ(kDateLine + "of an earlier run", folder_.Read("out_IFC_LOG.txt"));
  Open();
  log_.KeepFile();
  log_.Discard();
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(PlacedLog, AFolderThatRefusesItIsToldOnce) {
  log_.SetPlace(LogPlace{folder_.Path("none/log.txt"),
                         [this](const WideString& path) { refused_.push_back(path); }});
  Open();
  log_.LogText(u"one");
  log_.KeepFile();
  log_.LogText(u"two");
  log_.KeepFile();
  log_.Close();
  EXPECT_EQ((std::vector<WideString>{folder_.Path("none/log.txt")}), refused_);
  EXPECT_EQ(u"", log_.Path());
  EXPECT_TRUE(system_.boxes.empty());
}

TEST_F(PlacedLog, WithoutAPlaceKeepingChangesNothing) {
  log_.SetPlace({});
  Open();
  log_.KeepFile();
  EXPECT_EQ(kDateLine, folder_.Read("a_IFC_LOG.txt"));
  log_.Discard();
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(PlacedLog, ALogIsReplacedAndAnotherFileIsNot) {
  EXPECT_EQ(folder_.Path("x_IFC_LOG.txt"), Free());
  folder_.Write("x_IFC_LOG.txt", kDateLine + "old");
  EXPECT_EQ(folder_.Path("x_IFC_LOG.txt"), Free());
  for (const char* const other :
       {"", "[07-03-2024    09:05:00", "[07-03-2024    09:05.00]\r\n",
        "[7-03-2024    09:05:00]\r\n", " [07-03-2024    09:05:00]\r\n", "ISO-10303-21;\n"}) {
    folder_.Write("x_IFC_LOG.txt", other);
    EXPECT_EQ(folder_.Path("x_IFC_LOG2.txt"), Free()) << other;
  }
}

TEST_F(PlacedLog, FoldersAreCountedPast) {
  std::filesystem::create_directory(folder_.Native("x_IFC_LOG.txt"));
  std::filesystem::create_directory(folder_.Native("x_IFC_LOG2.txt"));
  EXPECT_EQ(folder_.Path("x_IFC_LOG3.txt"), Free());
}

TEST_F(PlacedLog, TheNumberStandsBeforeTheExtension) {
  folder_.Write("x.y", "");
  folder_.Write("log", "");
  folder_.Write(".log", "");
  EXPECT_EQ(folder_.Path("x2.y"), FreeLogPath(folder_.Path("x.y")));
  EXPECT_EQ(folder_.Path("log2"), FreeLogPath(folder_.Path("log")));
  EXPECT_EQ(folder_.Path(".log2"), FreeLogPath(folder_.Path(".log")));
}

#ifndef _WIN32
TEST_F(PlacedLog, ALinkIsNeverFollowed) {
  folder_.Write("log", kDateLine);
  for (const char* const target : {"log", "missing"}) {
    std::filesystem::remove(folder_.Native("x_IFC_LOG.txt"));
    std::filesystem::create_symlink(target, folder_.Native("x_IFC_LOG.txt"));
    EXPECT_EQ(folder_.Path("x_IFC_LOG2.txt"), Free()) << target;
  }
  EXPECT_FALSE(folder_.Has("missing"));
}
#endif

}  // namespace
}  // namespace corvel
