// What the developer's command tells when something is thrown below it.
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "core/cancellation.h"
#include "plugin/plugin.h"
#include "plugin/progress_window.h"
#include "recorded_host.h"
#include "support/model.h"
#include "support/test_platform.h"

namespace corvel::plugin {

namespace {

class ThrowingTestCommand : public testing::Test {
 protected:
  ~ThrowingTestCommand() override { Cancellation::OfProcess().mode = CancelMode::kAsk; }

  // The command on a model of no known schema: the first box about it throws, and the texts of the
  // others are what this gives.
  std::vector<WideString> BoxesAfter(std::function<void()> thrower) {
    Thrower() = std::move(thrower);
    Boxes().clear();
    path_ = folder_.Write("a.ifc", test::ModelFile("#1=IFCWALL('w');\n", "IFC9"));
    host_.Load();
    Host().message_box = [](HostHandle, const char16_t* /*caption*/, const char16_t* text,
                            std::uint32_t /*flags*/) -> std::int32_t {
      if (const auto throwIt = std::exchange(Thrower(), nullptr)) throwIt();
      const WideString box = text;
      Boxes().push_back(box.substr(0, box.find(u"\nmerge_combine_log")));
      return 0;
    };
    host_.AddProject(1, path_);
    host_.TellModelsAreLoaded();
    platform_.answers = {::platform::Answer::kNo};
    host_.Click(0);
    return Boxes();
  }

  test::TestPlatform platform_;
  test::RecordedHost host_;
  const test::TemporaryFolder folder_;
  WideString path_;

 private:
  static std::function<void()>& Thrower() {
    static std::function<void()> thrower;
    return thrower;
  }
  static std::vector<WideString>& Boxes() {
    static std::vector<WideString> boxes;
    return boxes;
  }
};

}  // namespace

TEST_F(ThrowingTestCommand, AnExceptionIsToldInOneBoxWithItsTextBehindTheFile) {
  const std::vector<WideString> boxes =
      BoxesAfter([] { throw std::runtime_error("the box is gone"); });
  EXPECT_EQ((std::vector<WideString>{u"Error occurred while processing file: " + path_ +
                                     u"the box is gone"}),
            boxes);
  EXPECT_FALSE(ProgressWindow::Instance().IsOpen());
  EXPECT_FALSE(folder_.Has("a.ifc_test.ifc"));
  EXPECT_TRUE(folder_.Has("a_IFC_LOG.txt"));
}

TEST_F(ThrowingTestCommand, AnythingElseIsToldAsUnknown) {
  const std::vector<WideString> boxes = BoxesAfter([] { throw 42; });
  EXPECT_EQ((std::vector<WideString>{u"Unknown error occurred while processing file: " + path_}),
            boxes);
  EXPECT_FALSE(ProgressWindow::Instance().IsOpen());
}

}  // namespace corvel::plugin
