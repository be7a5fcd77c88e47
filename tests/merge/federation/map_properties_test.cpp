// Property sets that say something about maps are known by their names.
#include "merge/federation/map_properties.h"

#include <gtest/gtest.h>

#include "core/memory_pool.h"

namespace corvel {
namespace {

class NamesOfPropertySets : public testing::Test {
 protected:
  bool AreOfMaps(WideView name) {
    return IsNameOfMapProperties(pool_.InternText(WideString(name)));
  }

  MemoryPool pool_{1 << 12};
};

TEST_F(NamesOfPropertySets, OfMapsAreTheTwoInAnyCase) {
  EXPECT_TRUE(AreOfMaps(u"ePSet_MapConversion"));
  EXPECT_TRUE(AreOfMaps(u"EPSET_PROJECTEDCRS"));
}

TEST_F(NamesOfPropertySets, OfMapsCountHoweverTheyAreHeld) {
  EXPECT_TRUE(IsNameOfMapProperties(ModelText(u"ePset_MapConversion")));
}

TEST_F(NamesOfPropertySets, OthersAreNotOfMaps) {
  EXPECT_FALSE(AreOfMaps(u"Pset_WallCommon"));
  EXPECT_FALSE(AreOfMaps(u"ePSet_MapConversions"));
  EXPECT_FALSE(AreOfMaps(u"\u00C9Pset_MapConversion"));
  EXPECT_FALSE(AreOfMaps(u""));
  EXPECT_FALSE(IsNameOfMapProperties(ModelText()));
}

}  // namespace
}  // namespace corvel
