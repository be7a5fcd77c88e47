// Random models, of which random objects give way to each other: each model by itself keeps within
// the bounds of the schema, and so does what is left of both.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "federated_documents.h"
#include "merge/federation/mend_relations.h"

namespace corvel {
namespace {

using test::FederatedDocuments;
using test::Records;

constexpr std::uint32_t kWalls = 12;
constexpr std::uint32_t kFirstWall = 100;
constexpr std::uint32_t kStoreys = 3;
constexpr std::uint32_t kFirstStorey = 200;
constexpr std::uint32_t kTypes = 3;
constexpr std::uint32_t kFirstType = 300;
constexpr std::uint32_t kFirstRelation = 400;
constexpr std::uint32_t kFirstSet = 500;

class RandomMending : public testing::TestWithParam<SchemaNamespace> {
 protected:
  std::uint32_t Below(std::uint32_t count) {
    return std::uniform_int_distribution<std::uint32_t>(0, count - 1)(random_);
  }

  // Each wall is on one storey, of one type, and has one set of a property or two.
  Records Model(std::uint32_t base) {
    const std::string tag = GetParam() == SchemaNamespace::IFC4 ? ",$" : "";
    Records records;
    std::map<std::uint32_t, std::string> onStorey;
    std::map<std::uint32_t, std::string> ofType;
    std::map<std::uint32_t, std::string> withSet;
    for (std::uint32_t i = 0; i < kWalls; ++i) {
      const std::uint32_t wall = base + kFirstWall + i;
      records.push_back({wall, "IFCWALL", "'w',$,'W',$,$,$,$,$" + tag});
      Append(onStorey[base + kFirstStorey + Below(kStoreys)], wall);
      Append(ofType[base + kFirstType + Below(kTypes)], wall);
      Append(withSet[base + kFirstSet + 10 * Below(3)], wall);
    }
    for (std::uint32_t i = 0; i < kStoreys; ++i) {
      records.push_back(
          {base + kFirstStorey + i, "IFCBUILDINGSTOREY", "'s',$,'S',$,$,$,$,$,.ELEMENT.,0."});
    }
    for (std::uint32_t i = 0; i < kTypes; ++i) {
      records.push_back(
          {base + kFirstType + i, "IFCWALLTYPE", "'t',$,'T',$,$,$,$,$,$,.NOTDEFINED."});
    }
    std::uint32_t relation = base + kFirstRelation;
    const auto relate = [&](const char* className, const auto& members) {
      for (const auto& [one, many] : members) {
        records.push_back(
            {relation++, className, "'r',$,$,$,(" + many + "),#" + std::to_string(one)});
      }
    };
    relate("IFCRELCONTAINEDINSPATIALSTRUCTURE", onStorey);
    relate("IFCRELDEFINESBYTYPE", ofType);
    relate("IFCRELDEFINESBYPROPERTIES", withSet);
    for (const auto& [set, walls] : withSet) AddSet(set, records);
    return records;
  }

  void AddSet(std::uint32_t set, Records& records) {
    const std::string first = std::to_string(set + 1);
    const std::string second = std::to_string(set + 2);
    records.push_back({set, "IFCPROPERTYSET", "'p',$,'Pset_A',$,(#" + first + ",#" + second + ")"});
    const std::string own = std::string(1, static_cast<char>('B' + Below(3)));
    records.push_back({set + 1, "IFCPROPERTYSINGLEVALUE", "'A',$,IFCLABEL('x'),$"});
    records.push_back({set + 2, "IFCPROPERTYSINGLEVALUE", "'" + own + "',$,IFCLABEL('x'),$"});
  }

  static void Append(std::string& members, std::uint32_t member) {
    members += (members.empty() ? "#" : ",#") + std::to_string(member);
  }

  // Some of the second model, each to one of its kind in the first, no two to the same.
  std::vector<std::pair<std::uint32_t, std::uint32_t>> Pairs(std::uint32_t base) {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> pairs;
    for (const auto& [first, count] :
         {std::pair(kFirstWall, kWalls), {kFirstStorey, kStoreys}, {kFirstType, kTypes}}) {
      const std::uint32_t shift = Below(count);
      for (std::uint32_t i = 0; i < count; ++i) {
        if (Below(3) == 0) continue;
        pairs.emplace_back(base + first + i, first + (i + shift) % count);
      }
    }
    return pairs;
  }

  std::mt19937 random_;
};

INSTANTIATE_TEST_SUITE_P(Releases, RandomMending,
                         testing::Values(SchemaNamespace::IFC2X3, SchemaNamespace::IFC4),
                         [](const auto& release) {
                           return release.param == SchemaNamespace::IFC4 ? "IFC4" : "IFC2X3";
                         });

// By what is referred to, how often it stands in the places of the records of a class: the list
// behind the four attributes of a root, or what follows it.
std::map<std::string, int> Counted(const std::string& text, const std::string& className,
                                   bool inList) {
  std::map<std::string, int> counts;
  const std::regex record("=" + className + R"(\('[^']*',[^,]*,\$,\$,\(([#\d,]*)\),#(\d+)\))");
  for (std::sregex_iterator at(text.begin(), text.end(), record), end; at != end; ++at) {
    if (!inList) {
      ++counts["#" + (*at)[2].str()];
      continue;
    }
    const std::string members = (*at)[1];
    const std::regex member(R"(#\d+)");
    for (std::sregex_iterator one(members.begin(), members.end(), member); one != end; ++one) {
      ++counts[one->str()];
    }
  }
  return counts;
}

TEST_P(RandomMending, EveryWallHasOneStoreyOneTypeAndOneSetOfAName) {
  constexpr std::uint32_t kBase = 1000;
  for (unsigned seed = 0; seed < 30; ++seed) {
    SCOPED_TRACE(seed);
    random_.seed(seed);
    FederatedDocuments models(GetParam());
    models.Add(u"a.ifc", "", Model(0));
    models.Add(u"b.ifc", "", Model(kBase));
    const auto pairs = Pairs(kBase);
    const std::string text = models.RunStep([&](FederatedModel& model) {
      const NumberTable& entities = model.Container().entities;
      for (const auto& [gone, survivor] : pairs) {
        model.GiveWay(*entities.Find(gone), *entities.Find(survivor));
      }
      Ticker ticker({});
      MendedRelations mended;
      ASSERT_TRUE(MendRelations(model, ticker, mended));
    });
    std::map<std::string, int> walls;
    const std::regex wall("(#\\d+)=IFCWALL\\(");
    for (std::sregex_iterator at(text.begin(), text.end(), wall), end; at != end; ++at) {
      walls[(*at)[1]] = 1;
    }
    EXPECT_EQ(walls, Counted(text, "IFCRELCONTAINEDINSPATIALSTRUCTURE", true));
    EXPECT_EQ(walls, Counted(text, "IFCRELDEFINESBYTYPE", true));
    EXPECT_EQ(walls, Counted(text, "IFCRELDEFINESBYPROPERTIES", true));
    for (const auto& [type, relations] : Counted(text, "IFCRELDEFINESBYTYPE", false)) {
      EXPECT_EQ(1, relations) << type;
    }
    for (const auto& [set, relations] : Counted(text, "IFCRELDEFINESBYPROPERTIES", false)) {
      EXPECT_EQ(1, relations) << set;
    }
    if (HasFailure()) FAIL() << text;
  }
}

}  // namespace
}  // namespace corvel
