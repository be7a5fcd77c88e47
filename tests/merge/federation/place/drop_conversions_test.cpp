// What goes when the map of the first model counts.
#include "merge/federation/place/drop_conversions.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../federated_documents.h"

namespace corvel {
namespace {

using test::FederatedDocuments;
using test::NumbersIn;
using test::Records;
using test::operator+;

const Records kContext = {{10, "IFCCARTESIANPOINT", "(0.,0.,0.)"},
                          {11, "IFCAXIS2PLACEMENT3D", "#10,$,$"},
                          {12, "IFCGEOMETRICREPRESENTATIONCONTEXT", "$,'Model',3,$,#11,$"}};

class DroppedConversions {
 public:
  explicit DroppedConversions(SchemaNamespace release) : models_(release) {
    models_.Add(u"a.ifc", "", {});
  }
  // The numbers that are left, those of the project not counted, of a later model from `records`
  // whose `leftovers` go.
  std::set<int> Left(const Records& records, const std::vector<std::uint32_t>& leftovers) {
    models_.Add(u"b.ifc", "", records);
    std::vector<IFC::IfcEntity*> going;
    for (const std::uint32_t number : leftovers) going.push_back(&models_.At(1, number));
    std::set<int> left = NumbersIn(models_.RunStep([&](FederatedModel& model) {
      const WideString text = u"maps";
      Ticker ticker({.callback = nullptr, .text = &text}, {.block = 1000});
      ASSERT_TRUE(DropConversions(model, going, ticker, dropped));
    }));
    left.erase(1);
    return left;
  }

  std::size_t dropped = 0;

 private:
  FederatedDocuments models_;
};

using LeftNumbers = std::set<int>;

TEST(DroppedConversions, TakeTheirReferenceSystemAlong) {
  DroppedConversions models(SchemaNamespace::IFC4);
  EXPECT_EQ((LeftNumbers{10, 11, 12}),
            models.Left(kContext + Records{{30, "IFCPROJECTEDCRS", "'EPSG:1',$,$,$,$,$,$"},
                                           {31, "IFCMAPCONVERSION", "#12,#30,1.,2.,3.,$,$,$"}},
                        {31}));
  EXPECT_EQ(2u, models.dropped);
}

TEST(DroppedConversions, LeaveAReferenceSystemThatAnotherConversionNeeds) {
  const Records records = kContext + Records{{30, "IFCPROJECTEDCRS", "'EPSG:1',$,$,$,$,$,$"},
                                             {31, "IFCMAPCONVERSION", "#12,#30,1.,2.,3.,$,$,$"}};
  DroppedConversions into(SchemaNamespace::IFC4);
  EXPECT_EQ((LeftNumbers{10, 11, 12, 30, 32}),
            into.Left(records + Records{{32, "IFCMAPCONVERSION", "#12,#30,1.,2.,3.,$,$,$"}}, {31}));
  DroppedConversions outOf(SchemaNamespace::IFC4);
  EXPECT_EQ((LeftNumbers{10, 11, 12, 30, 33, 34}),
            outOf.Left(records + Records{{33, "IFCPROJECTEDCRS", "'EPSG:2',$,$,$,$,$,$"},
                                         {34, "IFCMAPCONVERSION", "#30,#33,1.,2.,3.,$,$,$"}},
                       {31}));
}

const Records kSets = {{20, "IFCPROPERTYSINGLEVALUE", "'Eastings',$,IFCREAL(1.),$"},
                       {21, "IFCPROPERTYSINGLEVALUE", "'Shared',$,IFCREAL(1.),$"},
                       {22, "IFCPROPERTYSET", "'g22',$,'ePSet_MapConversion',$,(#20,#21)"},
                       {23, "IFCPROPERTYSET", "'g23',$,'Other',$,(#21)"},
                       {24, "IFCSITE", "'g24',$,$,$,$,$,$,$,.ELEMENT.,$,$,$,$,$"},
                       {25, "IFCRELDEFINESBYPROPERTIES", "'g25',$,$,$,(#24),#22"},
                       {26, "IFCRELDEFINESBYPROPERTIES", "'g26',$,$,$,(#24),#23"}};

TEST(DroppedConversions, TakeTheirRelationsAndTheirOwnPropertiesAlong) {
  DroppedConversions models(SchemaNamespace::IFC2X3);
  EXPECT_EQ((LeftNumbers{21, 23, 24, 26}), models.Left(kSets, {22}));
  EXPECT_EQ(3u, models.dropped);
}

TEST(DroppedConversions, LeaveEverythingWhereNothingGoes) {
  DroppedConversions models(SchemaNamespace::IFC2X3);
  EXPECT_EQ((LeftNumbers{20, 21, 22, 23, 24, 25, 26}), models.Left(kSets, {}));
  EXPECT_EQ(0u, models.dropped);
}

}  // namespace
}  // namespace corvel
