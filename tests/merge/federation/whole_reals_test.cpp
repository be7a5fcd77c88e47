// A told real that is written as a whole number is that number.
#include "merge/federation/whole_reals.h"

#include <gtest/gtest.h>

#include <string>

#include "federated_documents.h"
#include "step/numbers/number_text.h"

namespace corvel {
namespace {

using test::FederatedDocuments;

std::string PointAsWritten(const std::string& coordinates) {
  FederatedDocuments models(SchemaNamespace::IFC4);
  models.Add(u"a.ifc", "",
             {{2, "IFCCARTESIANPOINT", "(" + coordinates + ")"},
              {3, "IFCPROPERTYSINGLEVALUE",
               "'p',$,IFCREAL(" + coordinates.substr(0, coordinates.find(',')) + "),$"}});
  models.Add(u"b.ifc", "", {});
  const std::string lines = models.RunStep([](FederatedModel& model) {
    SharingPlans plans;
    Ticker ticker{Stage()};
    EXPECT_TRUE(MakeRealsAsWritten(model, plans, ticker));
  });
  const std::size_t begin = lines.find("#2=") + 3;
  return lines.substr(begin, lines.find("#4", begin) - begin);
}

TEST(WholeReals, ThoseThatAreWrittenAsWholeNumbersAreWhole) {
  EXPECT_EQ(
      "IFCCARTESIANPOINT((5800.,-5800.,1.));\n"
      "#3=IFCPROPERTYSINGLEVALUE('p',$,IFCREAL(5800.),$);\n",
      PointAsWritten("5800.0000000000009,-5799.9999999999991,1.0000000000000002"));
}

TEST(WholeReals, OthersStay) {
  EXPECT_EQ(
      "IFCCARTESIANPOINT((5.80000000000001E+03,1.E-16,3.E+09));\n"
      "#3=IFCPROPERTYSINGLEVALUE('p',$,IFCREAL(5.80000000000001E+03),$);\n",
      PointAsWritten("5800.000000000009,1.E-16,3000000000.0000005"));
}

}  // namespace
}  // namespace corvel
