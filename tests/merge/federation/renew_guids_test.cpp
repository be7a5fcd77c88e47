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
constexpr char kShared[] = "2O2Fr$t4X7Zf8NOew3FLOH";

PlannedRecord Wall(std::uint32_t number, const std::string& guid) {
  return {number, "IFCWALL", "'" + guid + "',$,'w',$,$,$,$,$"};
}

// The GUID in the line of an object.
std::string GuidOf(const std::string& text, std::uint32_t number) {
  const std::size_t line = text.find("#" + std::to_string(number) + "=IFCWALL('");
  return line == std::string::npos ? "" : text.substr(text.find('\'', line) + 1, 22);
}

std::string Renewed(const FederationChoices& choices) {
  FederatedDocuments models(SchemaNamespace::IFC2X3);
  models.Add(u"a.ifc", "", {Wall(10, kShared)});
  models.Add(u"b.ifc", "", {Wall(20, kShared), Wall(21, "1O2Fr$t4X7Zf8NOew3FLOH")});
  models.Add(u"c.ifc", "", {Wall(30, kShared)});
  return models.Run(choices);
}

TEST(RenewedGuids, TheFirstKeepsHisAndEachOtherGetsOneOfItsOwn) {
  const std::string text = Renewed(kRenew);
  EXPECT_EQ(kShared, GuidOf(text, 10)) << text;
  EXPECT_NE(kShared, GuidOf(text, 20));
  EXPECT_NE(kShared, GuidOf(text, 30));
  EXPECT_NE(GuidOf(text, 20), GuidOf(text, 30));
}

TEST(RenewedGuids, UniqueOnesStay) {
  EXPECT_EQ("1O2Fr$t4X7Zf8NOew3FLOH", GuidOf(Renewed(kRenew), 21));
}

TEST(RenewedGuids, AreTheSameInEachRun) { EXPECT_EQ(Renewed(kRenew), Renewed(kRenew)); }

TEST(RenewedGuids, AllKeepTheirsByDefault) {
  const std::string text = Renewed({});
  EXPECT_EQ(kShared, GuidOf(text, 20));
  EXPECT_EQ(kShared, GuidOf(text, 30));
}

TEST(RenewedGuids, DoublesWithinOneInputAreTheSameInEachRunToo) {
  const auto run = [] {
    FederatedDocuments models(SchemaNamespace::IFC2X3);
    models.Add(u"a.ifc", "", {Wall(10, kShared), Wall(11, kShared), Wall(12, kShared)});
    models.Add(u"b.ifc", "", {Wall(20, kShared), Wall(21, kShared)});
    return models.Run(kRenew);
  };
  const std::string text = run();
  std::set<std::string> guids;
  for (const std::uint32_t number : {10u, 11u, 12u, 20u, 21u}) guids.insert(GuidOf(text, number));
  EXPECT_EQ(5u, guids.size()) << text;
  EXPECT_EQ(kShared, GuidOf(text, 10));
  EXPECT_EQ(text, run());
}

}  // namespace
}  // namespace corvel
