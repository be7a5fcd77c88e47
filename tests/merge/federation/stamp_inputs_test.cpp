// Groups that say which product came with which input.
#include "merge/federation/stamp_inputs.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "federated_documents.h"

namespace corvel {
namespace {

using test::FederatedDocuments;
using test::PlannedRecord;

constexpr FederationChoices kStamp{.stamp = true};

PlannedRecord SiteRecord(std::uint32_t number, const std::string& guid) {
  return {number, "IFCSITE", "'" + guid + "',$,'s',$,$,$,$,$,.ELEMENT.,$,$,$,$,$"};
}

class StampedInputs : public testing::TestWithParam<SchemaNamespace> {
 protected:
  FederatedDocuments models_{GetParam()};
};

bool EndsLine(const std::string& text, const std::string& end) {
  return text.find(end + "\n") != std::string::npos;
}

TEST_P(StampedInputs, EachHasAGroupOfItsNameWithItsProducts) {
  models_.Add(u"a.ifc", "",
              {SiteRecord(10, "1"), SiteRecord(11, "2"), {12, "IFCDIRECTION", "(1.,0.)"}});
  models_.Add(u"b.ifc", "", {SiteRecord(20, "3")});
  const std::string text = models_.Run(kStamp);
  EXPECT_TRUE(EndsLine(text, ",'a.ifc',$,$);")) << text;
  EXPECT_TRUE(EndsLine(text, ",'b.ifc',$,$);"));
  EXPECT_NE(std::string::npos, text.find(",(#10,#11),$,#")) << text;
  EXPECT_NE(std::string::npos, text.find(",(#20),$,#"));
}

TEST_P(StampedInputs, OneWithoutProductsHasNoGroup) {
  models_.Add(u"a.ifc", "", {SiteRecord(10, "1")});
  models_.Add(u"b.ifc", "", {{20, "IFCDIRECTION", "(1.,0.)"}});
  const std::string text = models_.Run(kStamp);
  EXPECT_TRUE(EndsLine(text, ",'a.ifc',$,$);"));
  EXPECT_FALSE(EndsLine(text, ",'b.ifc',$,$);"));
}

TEST_P(StampedInputs, InputsOfOneNameHaveTwoGroupsWithTheirOwnGuids) {
  models_.Add(u"a.ifc", "", {SiteRecord(10, "1")});
  models_.Add(u"a.ifc", "", {SiteRecord(20, "2")});
  const std::string text = models_.Run(kStamp);
  const std::size_t first = text.find("=IFCGROUP('");
  const std::size_t second = text.find("=IFCGROUP('", first + 1);
  ASSERT_NE(std::string::npos, second) << text;
  EXPECT_NE(text.substr(first, 33), text.substr(second, 33));
}

TEST_P(StampedInputs, ProductsThatWereLeftOutAreInNoGroup) {
  models_.Add(u"a.ifc", "", {SiteRecord(10, "1"), SiteRecord(11, "2")});
  models_.Add(u"b.ifc", "", {SiteRecord(20, "3")});
  models_.At(0, 11).marker = IFC::kDeleted;
  EXPECT_NE(std::string::npos, models_.Run(kStamp).find(",(#10),$,#"));
}

INSTANTIATE_TEST_SUITE_P(Releases, StampedInputs,
                         testing::Values(SchemaNamespace::IFC2X3, SchemaNamespace::IFC4),
                         [](const auto& release) {
                           return release.param == SchemaNamespace::IFC4 ? "IFC4" : "IFC2X3";
                         });

TEST(StampedInputsWithHistories, HaveThatOfTheirOwnProject) {
  FederatedDocuments models(SchemaNamespace::IFC2X3);
  const auto history = [](std::uint32_t number) {
    return PlannedRecord{number, "IFCOWNERHISTORY", "$,$,$,.NOCHANGE.,$,$,$,0"};
  };
  models.Add(u"a.ifc", "", {SiteRecord(10, "1"), history(12)}, "#12");
  models.Add(u"b.ifc", "", {SiteRecord(20, "2"), history(22)}, "#22");
  const std::string text = models.Run(kStamp);
  EXPECT_TRUE(EndsLine(text, ",#12,'a.ifc',$,$);")) << text;
  EXPECT_TRUE(EndsLine(text, ",#22,'b.ifc',$,$);")) << text;
}

}  // namespace
}  // namespace corvel
