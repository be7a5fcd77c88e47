#include "plugin/host_functions.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "plugin/attachment.h"
#include "plugin/plugin.h"
#include "recorded_host.h"

namespace corvel::plugin {

TEST(HostNames, AreTheInterfaceOfThe299FunctionsWithoutDoubles) {
  EXPECT_EQ(299u, kHostNames.size());
  EXPECT_EQ(299u, std::set<std::string>(kHostNames.begin(), kHostNames.end()).size());
  EXPECT_STREQ("get_project_and_coordinate_center", kHostNames.front());
  EXPECT_STREQ("reset_timer", kHostNames.back());
}

TEST(HostNames, EveryFunctionThatIsCalledIsOneOfThem) {
  const std::set<std::string> names(kHostNames.begin(), kHostNames.end());
  int count = 0;
#define CORVEL_HOST_FUNCTION(Result, name, parameters) \
  EXPECT_EQ(1u, names.count(#name)) << #name;          \
  ++count;
#include "plugin/host_functions.inc"
#undef CORVEL_HOST_FUNCTION
  EXPECT_EQ(53, count);
}

TEST(Binding, LooksUpEveryNameOnceAndTheLateOnesLast) {
  test::RecordedHost host;
  host.Attach();
  ASSERT_EQ(299u, host.lookups.size());
  EXPECT_EQ("get_selected_id", host.lookups.front());
  EXPECT_EQ("get_project_and_coordinate_center", host.lookups[296]);
  EXPECT_EQ("get_properties3", host.lookups[297]);
  EXPECT_EQ("add_del_or_change_property", host.lookups[298]);
}

TEST(Binding, IsDoneOncePerProcess) {
  test::RecordedHost host;
  host.Attach();
  Detach();
  EXPECT_EQ(nullptr, Plugin::Instance());
  host.Attach();
  EXPECT_EQ(299u, host.lookups.size());
  EXPECT_NE(nullptr, Plugin::Instance());
}

TEST(CallHost, AMissingFunctionGivesNothing) {
  test::RecordedHost host;
  host.missing = {"get_loaded_ifc_files_count", "get_text", "invalidate"};
  host.Attach();
  EXPECT_EQ(0u, CallHost(Host().get_loaded_ifc_files_count));
  EXPECT_EQ(nullptr, CallHost(Host().get_text, "merged"));
  CallHost(Host().invalidate);
  EXPECT_TRUE(host.calls.empty());
}

TEST(CallHost, PassesTheHandleOfTheViewer) {
  static HostHandle seen;
  seen = 0;
  TheHostHandle() = 0xFFFF'FFFF'FFFF'FFF0;
  CallHost(+[](HostHandle handle) { seen = handle; });
  EXPECT_EQ(0xFFFF'FFFF'FFFF'FFF0, seen);
  TheHostHandle() = 0;
}

TEST(ListOf, AsksForTheNumberAndThenForTheItems) {
  test::RecordedHost host;
  host.children = {5, 3, 9};
  host.Attach();
  const auto list = ListOf<HostObject>([](HostObject* items, std::uint32_t capacity) {
    return CallHost(Host().get_childs, HostObject{77}, items, capacity);
  });
  EXPECT_EQ((std::vector<HostObject>{5, 3, 9}), list);
  EXPECT_EQ((std::vector<std::string>{"get_childs(77, null, 0)", "get_childs(77, ..., 3)"}),
            host.calls);
}

TEST(ListOf, AListThatHasShrunkMeanwhileIsShorter) {
  int calls = 0;
  const auto list = ListOf<HostObject>([&](HostObject* items, std::uint32_t) -> std::uint32_t {
    if (++calls == 1) return 3;
    items[0] = 1;
    return 1;
  });
  EXPECT_EQ((std::vector<HostObject>{1}), list);
}

}  // namespace corvel::plugin
