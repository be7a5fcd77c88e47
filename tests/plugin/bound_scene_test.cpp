// What the host tells of where projects stand.
#include "plugin/bound_scene.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "plugin/host_functions.h"

namespace corvel::plugin {

namespace {

constexpr HostHandle kHandle = 7;

struct StandingHost {
  std::vector<ProjectOffsetRecord> offsets;
  std::uint32_t announced = 0;
  std::vector<std::string> calls;
};

StandingHost& Standing() {
  static StandingHost host;
  return host;
}

std::uint32_t Offsets(HostHandle handle, ProjectOffsetRecord* list, std::uint32_t capacity) {
  StandingHost& host = Standing();
  host.calls.push_back(std::to_string(handle) + " " + (list == nullptr ? "null" : "list") + " " +
                       std::to_string(capacity));
  if (list == nullptr) return host.announced;
  for (std::uint32_t i = 0; i < capacity && i < host.offsets.size(); ++i) list[i] = host.offsets[i];
  return static_cast<std::uint32_t>(host.offsets.size());
}

void Centres(HostHandle handle, double* first, double* second) {
  Standing().calls.push_back(std::to_string(handle) + " centres");
  for (int i = 0; i < 3; ++i) {
    first[i] = 1.0 + i;
    second[i] = -10.0 * i;
  }
}

class BoundSceneTest : public testing::Test {
 protected:
  BoundSceneTest() {
    Standing() = {};
    TheHostHandle() = kHandle;
    Host().get_projects_offsets = &Offsets;
    Host().get_project_and_coordinate_center = &Centres;
  }
  ~BoundSceneTest() override {
    Host() = {};
    TheHostHandle() = 0;
  }

  BoundScene scene;
};

}  // namespace

TEST_F(BoundSceneTest, OffsetsAreAskedForByNumberAndThenAll) {
  Standing().offsets = {{3, 1.5, -2.0, 1e9}, {4, 0.0, 0.0, 0.25}};
  Standing().announced = 2;
  const std::vector<ProjectOffsetRecord> offsets = scene.ProjectOffsets();
  ASSERT_EQ(2u, offsets.size());
  EXPECT_EQ(3u, offsets[0].project);
  EXPECT_EQ(1.5, offsets[0].x);
  EXPECT_EQ(-2.0, offsets[0].y);
  EXPECT_EQ(1e9, offsets[0].z);
  EXPECT_EQ(4u, offsets[1].project);
  EXPECT_EQ(0.25, offsets[1].z);
  EXPECT_EQ((std::vector<std::string>{"7 null 0", "7 list 2"}), Standing().calls);
}

TEST_F(BoundSceneTest, WithoutOffsetsTheyAreNotFetched) {
  EXPECT_TRUE(scene.ProjectOffsets().empty());
  EXPECT_EQ((std::vector<std::string>{"7 null 0"}), Standing().calls);
}

TEST_F(BoundSceneTest, BothCentresAreTaken) {
  const CoordinateCenters centers = scene.Centers();
  EXPECT_EQ((std::array<double, 3>{1.0, 2.0, 3.0}), centers.first);
  EXPECT_EQ((std::array<double, 3>{0.0, -10.0, -20.0}), centers.second);
  EXPECT_EQ((std::vector<std::string>{"7 centres"}), Standing().calls);
}

TEST_F(BoundSceneTest, AHostWithoutTheseFunctionsMovesNothing) {
  Host() = {};
  EXPECT_TRUE(scene.ProjectOffsets().empty());
  const CoordinateCenters centers = scene.Centers();
  EXPECT_EQ((std::array<double, 3>{}), centers.first);
  EXPECT_EQ((std::array<double, 3>{}), centers.second);
}

}  // namespace corvel::plugin
