#include "plugin/config_file.h"

#include <gtest/gtest.h>

#include "platform/file.h"
#include "support/temporary_folder.h"
#include "support/test_platform.h"

namespace corvel::plugin {

namespace {

class ConfigTest : public testing::Test {
 protected:
  ConfigReading Read(const std::string& content) {
    folder.Write("config.txt", content);
    return ReadConfig(path, config, complete);
  }
  // The fields in the order of the file.
  std::string Fields() const {
    const auto flag = [](bool value) { return std::string(value ? "1" : "0"); };
    return flag(config.options.generateGuid) + flag(config.options.remember) +
           flag(config.options.ignoreUnits) + flag(config.options.ignoreEnumErrors) + " " +
           std::to_string(config.position.x) + " " + std::to_string(config.position.y) + " " +
           flag(config.options.deleteOpenings);
  }
  std::string Written() const {
    std::string text = folder.Read("config.txt");
    std::erase(text, '\r');
    return text;
  }
  WideString Message() const {
    if (platform.boxes.size() != 1)
      return u"boxes: " + ToWide(static_cast<std::uint32_t>(platform.boxes.size()));
    EXPECT_EQ(u"Error!", platform.boxes[0].title);
    EXPECT_EQ(::platform::Buttons::kOk, platform.boxes[0].buttons);
    EXPECT_EQ(::platform::Icon::kWarning, platform.boxes[0].icon);
    return platform.boxes[0].text;
  }

  test::TestPlatform platform;
  const test::TemporaryFolder folder;
  const WideString path = folder.Path("config.txt");
  PluginConfig config;
  bool complete = false;
};

}  // namespace

TEST_F(ConfigTest, DefaultsAreAsTheyAre) { EXPECT_EQ("1000 0 0 0", Fields()); }

TEST_F(ConfigTest, SevenLinesAreReadByTheirPlace) {
  EXPECT_EQ(ConfigReading::kRead, Read("false\ntrue\ntrue\ntrue\n12\n-34\ntrue\n"));
  EXPECT_EQ("0111 12 -34 1", Fields());
  EXPECT_TRUE(complete);
}

TEST_F(ConfigTest, OnlyTrueInSmallLettersIsTrue) {
  Read("True\ntrue \nTRUE\n true\n0\n0\n1\n");
  EXPECT_EQ("0000 0 0 0", Fields());
}

TEST_F(ConfigTest, AnEmptyFileLeavesTheDefaults) {
  EXPECT_EQ(ConfigReading::kRead, Read(""));
  EXPECT_EQ("1000 0 0 0", Fields());
  EXPECT_FALSE(complete);
}

TEST_F(ConfigTest, AShortFileLeavesTheRestAsItIs) {
  Read("false\ntrue\n");
  EXPECT_EQ("0100 0 0 0", Fields());
  EXPECT_FALSE(complete);
}

TEST_F(ConfigTest, AnEmptyLineThatCanBeReadIsFalse) {
  Read("\n\n");
  EXPECT_EQ("0000 0 0 0", Fields());
}

TEST_F(ConfigTest, ALastLineWithoutItsEndCounts) {
  Read("true\nfalse\nfalse\nfalse\n1\n2\ntrue");
  EXPECT_EQ("1000 1 2 1", Fields());
  EXPECT_TRUE(complete);
}

TEST_F(ConfigTest, LineEndsOfWindowsAreReadEverywhere) {
  Read("true\r\ntrue\r\nfalse\r\nfalse\r\n5\r\n6\r\ntrue\r\n");
  EXPECT_EQ("1100 5 6 1", Fields());
}

TEST_F(ConfigTest, NumbersMayHaveBlanksASignAndSomethingBehind) {
  Read("true\ntrue\ntrue\ntrue\n  +12px\n\t-7.9\ntrue\n");
  EXPECT_EQ("1111 12 -7 1", Fields());
}

TEST_F(ConfigTest, WithoutAFileNothingChanges) {
  EXPECT_EQ(ConfigReading::kMissing, ReadConfig(path, config, complete));
  EXPECT_EQ("1000 0 0 0", Fields());
  EXPECT_TRUE(platform.boxes.empty());
}

TEST_F(ConfigTest, ALetterInThePlaceOfANumberIsReportedTheFileDeletedAndEverythingOff) {
  EXPECT_EQ(ConfigReading::kRefused, Read("true\ntrue\ntrue\ntrue\nx\n1\ntrue\n"));
  EXPECT_EQ(u"Unable to read config file: \"" + path + u"\"\nError message: invalid stoi argument",
            Message());
  EXPECT_FALSE(::platform::FileExists(path));
  EXPECT_EQ("0000 100 100 0", Fields());
  EXPECT_FALSE(complete);
}

TEST_F(ConfigTest, ANumberOutOfRangeIsReportedByItsOwnText) {
  Read("true\ntrue\ntrue\ntrue\n1\n2147483648\ntrue\n");
  EXPECT_EQ(
      u"Unable to read config file: \"" + path + u"\"\nError message: stoi argument out of range",
      Message());
  EXPECT_EQ("0000 100 100 0", Fields());
}

TEST_F(ConfigTest, AnEmptyNumberIsNone) {
  Read("true\ntrue\ntrue\ntrue\n\n");
  EXPECT_EQ(ConfigReading::kRefused, Read("true\ntrue\ntrue\ntrue\n\n1\n"));
}

TEST_F(ConfigTest, ASignWithoutDigitsIsNoNumber) {
  for (const char* const number : {"+", "-", "+-1", "- 1"}) {
    EXPECT_EQ(ConfigReading::kRefused,
              Read(std::string("true\ntrue\ntrue\ntrue\n") + number + "\n1\n"))
        << number;
  }
}

TEST_F(ConfigTest, EveryFieldIsWrittenOnItsLine) {
  config.options = {false, true, false, true, true};
  config.position = {-5, 1200};
  WriteConfig(path, config);
  EXPECT_EQ("false\ntrue\nfalse\ntrue\n-5\n1200\ntrue\n", Written());
}

TEST_F(ConfigTest, WhatIsWrittenIsReadBack) {
  config.options = {false, true, true, false, true};
  config.position = {2147483647, -2147483647 - 1};
  WriteConfig(path, config);
  const std::string before = Fields();
  config = {};
  ReadConfig(path, config, complete);
  EXPECT_EQ(before, Fields());
}

TEST_F(ConfigTest, ALongerFileIsEmptiedFirst) {
  folder.Write("config.txt", std::string(5000, 'x'));
  WriteConfig(path, config);
  EXPECT_EQ("true\nfalse\nfalse\nfalse\n0\n0\nfalse\n", Written());
}

TEST_F(ConfigTest, AFileThatCannotBeOpenedIsPassedOver) {
  WriteConfig(folder.Path("nowhere") + u"/config.txt", config);
  EXPECT_TRUE(platform.boxes.empty());
}

#ifndef _WIN32
TEST_F(ConfigTest, AFullDiskIsTold) {
  WriteConfig(u"/dev/full", config);
  EXPECT_EQ(
      u"Unable to write config file: \"/dev/full\"\nError message: the file could not be written "
      u"whole",
      Message());
}
#endif

}  // namespace corvel::plugin
