// Several threads read the scenes of several files, each as one thread would.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/scene_loading.h"
#include "host/scene_of_text.h"
#include "support/step_text.h"
#include "support/temporary_folder.h"

namespace corvel::host {
namespace {

class ScenesTogether : public testing::Test {
 protected:
  // Scenes of many sizes, with a file of each kind of trouble between them.
  ScenesTogether() {
    const std::vector<std::string> troubles = {
        test::ModelFile("#1=IFCPROJECT('p);"), "no model",
        test::ModelFile("#1=IFCWALL('w');", "IFC9"), "",
        test::ModelFile("#1=IFCPROJECT('p');\n#2=IFCBEAM('\\X\\C4');")};
    for (std::size_t i = 0; i < 20; ++i) {
      Add(i % 4 == 3 ? troubles[i / 4] : test::ModelFile(Walls(100 * i)));
    }
    orders_.push_back({folder_.Path("missing.ifc"), SceneTexts::kGuids});
  }

  static std::string Walls(std::size_t count) {
    std::string records = "#1=IFCPROJECT('p',$,'P');\n";
    for (std::size_t i = 2; i < count; ++i) {
      const std::string number = "#" + std::to_string(i);
      records.append(number).append("=IFCWALL('g").append(number).append("',$,'w');\n");
    }
    return records;
  }
  void Add(const std::string& bytes) {
    const std::string name = "m" + std::to_string(orders_.size()) + ".ifc";
    const SceneTexts texts[] = {SceneTexts::kNone, SceneTexts::kGuids, SceneTexts::kGuidsAndNames};
    orders_.push_back({folder_.Write(name, bytes), texts[orders_.size() % 3]});
  }
  static std::string Told(const ModelScene& scene) {
    std::string told = Described(scene) + (scene.isUnreadable ? " unreadable" : "");
    for (const auto* const texts : {&scene.remarks, &scene.problems}) {
      told += "\n";
      for (const WideString& text : *texts) told += Narrow(text) + ";";
    }
    for (std::size_t i = 0; i < scene.labels.size(); ++i) told += Narrow(scene.NameOf(i));
    return told + Narrow(scene.texts);
  }

  test::TemporaryFolder folder_;
  std::vector<SceneOrder> orders_;
};

TEST_F(ScenesTogether, AreThoseOfOneThread) {
  for (const unsigned threads : {1u, 2u, 3u, 8u}) {
    SceneLoading scenes(orders_, false, threads);
    std::size_t problems = 0;
    for (std::size_t i = 0; i < orders_.size(); ++i) {
      const ModelScene alone = ReadScene(orders_[i].path, orders_[i].texts);
      EXPECT_EQ(Told(alone), Told(scenes.Take(i))) << threads << " threads, file " << i;
      problems += alone.problems.size();
    }
    EXPECT_LE(5u, problems);
  }
}

TEST_F(ScenesTogether, TolerantOnesAreReadByOneThread) {
  SceneLoading scenes(orders_, true, 3);
  for (std::size_t i = 0; i < orders_.size(); ++i) {
    EXPECT_EQ(Told(ReadScene(orders_[i].path, orders_[i].texts, true)), Told(scenes.Take(i))) << i;
  }
}

TEST_F(ScenesTogether, WhoeverStopsEarlyLeavesTheRestUnread) {
  for (std::size_t taken = 0; taken < orders_.size(); taken += 3) {
    SceneLoading scenes(orders_, false, 3);
    for (std::size_t i = 0; i < taken; ++i) scenes.Take(i);
  }
}

}  // namespace
}  // namespace corvel::host
