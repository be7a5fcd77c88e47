// A GUID of its own for every object.
#include "merge/federation/renew_guids.h"

#include <gtest/gtest.h>

#include <string>

#include "federated_documents.h"

namespace corvel {
namespace {

using test::FederatedDocuments;
using test::PlannedRecord;

constexpr FederationChoices kRenew{.guids = GuidHandling::kRenew};
constexpr char kSharedGuid[] = "2O2Fr$t4X7Zf8NOew3FLOH";

PlannedRecord WallRecord(std::uint32_t number, const std::string& guid) {
  return {number, "IFCWALL", "'" + guid + "',$,'w',$,$,$,$,$"};
}

// The GUID in the line of an object.
std::string GuidOfWall(const std::string& text, std::uint32_t number) {
  const std::size_t line = text.find("#" + std::to_string(number) + "=IFCWALL('");
  return line == std::string::npos ? "" : text.substr(text.find('\'', line) + 1, 22);
}

std::string Renewed(const FederationChoices& choices) {
  FederatedDocuments models(SchemaNamespace::IFC2X3);
  models.Add(u"a.ifc", "", {WallRecord(10, kSharedGuid)});
  models.Add(u"b.ifc", "", {WallRecord(20, kSharedGuid), WallRecord(21, "1O2Fr$t4X7Zf8NOew3FLOH")});
  models.Add(u"c.ifc", "", {WallRecord(30, kSharedGuid)});
  return models.Run(choices);
}

TEST(RenewedGuids, TheFirstKeepsHisAndEachOtherGetsOneOfItsOwn) {
  const std::string text = Renewed(kRenew);
  EXPECT_EQ(kSharedGuid, GuidOfWall(text, 10)) << text;
  EXPECT_NE(kSharedGuid, GuidOfWall(text, 20));
  EXPECT_NE(kSharedGuid, GuidOfWall(text, 30));
  EXPECT_NE(GuidOfWall(text, 20), GuidOfWall(text, 30));
}

TEST(RenewedGuids, UniqueOnesStay) {
  EXPECT_EQ("1O2Fr$t4X7Zf8NOew3FLOH", GuidOfWall(Renewed(kRenew), 21));
}

TEST(RenewedGuids, AreTheSameInEachRun) { EXPECT_EQ(Renewed(kRenew), Renewed(kRenew)); }

TEST(RenewedGuids, AllKeepTheirsByDefault) {
  const std::string text = Renewed({});
  EXPECT_EQ(kSharedGuid, GuidOfWall(text, 20));
  EXPECT_EQ(kSharedGuid, GuidOfWall(text, 30));
}

TEST(RenewedGuids, DoublesWithinOneInputAreTheSameInEachRunToo) {
  const auto run = [] {
    FederatedDocuments models(SchemaNamespace::IFC2X3);
    models.Add(
        u"a.ifc", "",
        {WallRecord(10, kSharedGuid), WallRecord(11, kSharedGuid), WallRecord(12, kSharedGuid)});
    models.Add(u"b.ifc", "", {WallRecord(20, kSharedGuid), WallRecord(21, kSharedGuid)});
    return models.Run(kRenew);
  };
  const std::string text = run();
  std::set<std::string> guids;
  for (const std::uint32_t number : {10u, 11u, 12u, 20u, 21u})
    guids.insert(GuidOfWall(text, number));
  EXPECT_EQ(5u, guids.size()) << text;
  EXPECT_EQ(kSharedGuid, GuidOfWall(text, 10));
  EXPECT_EQ(text, run());
}

}  // namespace
}  // namespace corvel
