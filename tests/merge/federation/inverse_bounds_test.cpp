// What the tables know of the schemas, held against what was drawn from the texts of the schemas.
#include "merge/federation/relations/inverse_bounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "merge/federation/relations/unique_members.h"

namespace corvel {
namespace {

// As the lists call them, by age.
constexpr std::array<std::string_view, 9> kNamesOfReleases = {"2x",  "2x2p", "2x2", "2x3", "4",
                                                              "4x1", "4x2",  "4x3", "4x4"};

std::ifstream OpenList(const char* name) {
  return std::ifstream(std::string(CORVEL_SHARED_DIR) + "/federation/" + name);
}

// "2x2 IfcElement <- IfcRelFillsElement.RelatedBuildingElement 0:1", a text for each release.
std::set<std::string> BoundsInLists(std::istream& list) {
  std::set<std::string> bounds;
  for (std::string line; std::getline(list, line);) {
    std::istringstream words(line);
    std::string owner;
    std::string arrow;
    std::string place;
    words >> owner >> arrow >> place;
    if (!place.starts_with("IfcRel")) continue;
    owner.resize(owner.find('.'));
    std::string bound;
    for (std::string in, releases; words >> bound >> in >> releases;) {
      std::istringstream names(releases);
      for (std::string name; std::getline(names, name, ',');) {
        if (bound != "0:?") bounds.insert(name + " " + owner + " <- " + place + " " + bound);
      }
      words >> bound;  // the semicolon
    }
  }
  return bounds;
}

std::set<std::string> BoundsInTable() {
  std::set<std::string> bounds;
  for (const InverseBound& bound : InverseBounds()) {
    if (!bound.isInverse) continue;
    const std::string most = bound.most == 0 ? "?" : std::to_string(bound.most);
    const std::string rest = " " + std::string(bound.owner) + " <- " + std::string(bound.relation) +
                             "." + std::string(bound.attribute) + " " +
                             std::to_string(bound.least) + ":" + most;
    for (std::size_t i = 0; i < kNamesOfReleases.size(); ++i) {
      if (!bound.HoldsIn(static_cast<SchemaNamespace>(i))) continue;
      EXPECT_TRUE(bounds.insert(std::string(kNamesOfReleases[i]) + rest).second) << rest;
    }
  }
  return bounds;
}

TEST(InverseBoundsOfRelations, AreThoseOfTheSchemas) {
  std::ifstream list = OpenList("inverses.txt");
  if (!list) GTEST_SKIP() << "without ../shared/federation";
  const std::set<std::string> wanted = BoundsInLists(list);
  EXPECT_LT(150u, wanted.size());
  EXPECT_EQ(wanted, BoundsInTable());
}

TEST(UniqueListsOfClasses, AreThoseOfTheSchemas) {
  std::ifstream list = OpenList("collections_and_parameters.txt");
  if (!list) GTEST_SKIP() << "without ../shared/federation";
  std::set<std::string> wanted;
  for (std::string line; std::getline(list, line);) {
    if (!line.starts_with("  ") || line.find(" OF UNIQUE ") == std::string::npos) continue;
    std::istringstream words(line);
    std::string place;
    words >> place;
    wanted.insert(place);
  }
  EXPECT_LT(10u, wanted.size());
  std::set<std::string> known;
  for (const UniqueList& entry : UniqueLists()) {
    known.insert(std::string(entry.className) + "." + std::string(entry.attribute));
  }
  EXPECT_EQ(wanted, known);
}

}  // namespace
}  // namespace corvel
