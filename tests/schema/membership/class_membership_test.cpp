// Every class of every release is made and asked for every class and select of its release.
#include <cstddef>
#include <set>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "class_tables/built_releases.h"
#include "core/memory_pool.h"
#include "schema/membership/class_table.h"
#include "schema/registry.h"

namespace corvel::test {

#define CORVEL_DECLARE_TABLE(release) extern const ClassTable k##release##Classes;
CORVEL_FOR_RELEASES(CORVEL_DECLARE_TABLE)

namespace {

struct BuiltRelease {
  SchemaNamespace schema;
  const ClassTable& table;
};

#define CORVEL_RELEASE_ROW(release) {SchemaNamespace::release, k##release##Classes},
const BuiltRelease kReleases[] = {CORVEL_FOR_RELEASES(CORVEL_RELEASE_ROW)};

class EveryClass : public testing::TestWithParam<BuiltRelease> {
 protected:
  IFC::IfcEntity* Make(const ClassRow& row) {
    const EntityCreator create = FactoriesOf(GetParam().schema).Find(row.key);
    return create == nullptr ? nullptr : create(pool_);
  }

  MemoryPool pool_{1 << 16};
};

TEST_P(EveryClass, IsMadeByItsNameInUpperCaseAndTellsItsName) {
  for (const ClassRow& row : GetParam().table.classes) {
    const IFC::IfcEntity* const object = Make(row);
    ASSERT_NE(nullptr, object) << row.key;
    EXPECT_EQ(row.name, object->getClassName()) << row.key;
  }
}

TEST_P(EveryClass, HasOneRowOfTheRegistryAndNothingElseHasOne) {
  const FactoryTable& factories = FactoriesOf(GetParam().schema);
  std::set<std::string_view> keys;
  for (const ClassRow& row : GetParam().table.classes) keys.insert(row.key);
  std::set<std::string_view> rows;
  for (std::size_t i = 0; i <= factories.mask; ++i) {
    if (factories.slots[i].create != nullptr) rows.insert(factories.slots[i].name);
  }
  EXPECT_EQ(keys, rows);
  EXPECT_EQ(keys.size(), factories.count);
}

// Also that an empty base can be asked for: selects have no virtual functions.
TEST_P(EveryClass, IsOfTheClassesAndSelectsOfTheFactsAndOfNoOther) {
  const ClassTable& table = GetParam().table;
  for (const ClassRow& row : table.classes) {
    const IFC::IfcEntity* const object = Make(row);
    ASSERT_NE(nullptr, object) << row.key;
    auto wanted = row.isOf.begin();
    for (std::size_t i = 0; i < table.targets.size(); ++i) {
      const bool isWanted = wanted != row.isOf.end() && *wanted == i;
      if (isWanted) ++wanted;
      ASSERT_EQ(isWanted, table.targets[i].isOfClass(object))
          << row.key << " as " << table.targets[i].name;
    }
    ASSERT_EQ(row.isOf.end(), wanted);
  }
}

TEST_P(EveryClass, OfASelectOnlyIsNotInTheRegistry) {
  std::set<std::string> keys;
  for (const ClassRow& row : GetParam().table.classes) keys.emplace(row.key);
  for (const Target& target : GetParam().table.targets) {
    std::string key(target.name);
    for (char& byte : key) {
      if (byte >= 'a' && byte <= 'z') byte = static_cast<char>(byte - 'a' + 'A');
    }
    EXPECT_EQ(keys.contains(key), FactoriesOf(GetParam().schema).Find(key) != nullptr) << key;
  }
}

INSTANTIATE_TEST_SUITE_P(Releases, EveryClass, testing::ValuesIn(kReleases),
                         [](const testing::TestParamInfo<BuiltRelease>& tested) {
                           return std::string(NameOf(tested.param.schema));
                         });

}  // namespace

}  // namespace corvel::test
