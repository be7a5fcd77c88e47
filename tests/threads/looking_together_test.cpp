// Several threads look where the products of a result stand, and the report is the same.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "core/entity_cast.h"
#include "merge/record_document.h"
#include "merge/report/report_json.h"
#include "merge/report/report_page.h"
#include "merge/report/shared/model_places.h"
#include "schema/interfaces/product.h"

namespace corvel::test {
namespace {

constexpr std::uint32_t kFirstProduct = 1000;
constexpr std::uint32_t kOfProduct = 10;
constexpr std::uint32_t kProducts = 3000;

std::string ReferenceTo(std::uint32_t number) { return "#" + std::to_string(number); }

// Of a profile that all share, of one that is mapped, or of faces; some products have none.
void AddShape(std::uint32_t first, std::mt19937& random, std::vector<PlannedRecord>& records) {
  const auto at = [first](std::uint32_t place) { return ReferenceTo(first + place); };
  records.push_back({first + 4, "IFCPRODUCTDEFINITIONSHAPE", "$,$,(" + at(5) + ")"});
  records.push_back({first + 5, "IFCSHAPEREPRESENTATION", "#2,'Body','x',(" + at(6) + ")"});
  switch (random() % 3) {
    case 0:
      records.push_back({first + 6, "IFCEXTRUDEDAREASOLID",
                         "#10,$,#11," + std::to_string(1 + random() % 9) + "."});
      return;
    case 1: records.push_back({first + 6, "IFCMAPPEDITEM", "#20,#24"}); return;
    default: records.push_back({first + 6, "IFCFACETEDBREP", "#30"}); return;
  }
}

// In three storeys; each tenth product stands nowhere, each seventh on the one before it.
std::vector<PlannedRecord> Building() {
  std::mt19937 random(5);
  std::vector<PlannedRecord> records = {
      {1, "IFCPROJECT", "'project',$,'P',$,$,$,$,(#2),$"},
      {2, "IFCGEOMETRICREPRESENTATIONCONTEXT", "$,'Model',3,$,#3,$"},
      {3, "IFCAXIS2PLACEMENT3D", "#4,$,$"},
      {4, "IFCCARTESIANPOINT", "(0.,0.,0.)"},
      {10, "IFCRECTANGLEPROFILEDEF", ".AREA.,$,$,4.,2."},
      {11, "IFCDIRECTION", "(0.,0.,1.)"},
      {20, "IFCREPRESENTATIONMAP", "#3,#21"},
      {21, "IFCSHAPEREPRESENTATION", "#2,'Body','x',(#22)"},
      {22, "IFCEXTRUDEDAREASOLID", "#10,$,#11,3."},
      {24, "IFCCARTESIANTRANSFORMATIONOPERATOR3D", "$,$,#4,2.,$"},
      {30, "IFCCLOSEDSHELL", "(#31)"},
      {31, "IFCFACE", "(#32)"},
      {32, "IFCFACEOUTERBOUND", "#33,.T."},
      {33, "IFCPOLYLOOP", "(#4,#34,#35)"},
      {34, "IFCCARTESIANPOINT", "(3.,0.,1.)"},
      {35, "IFCCARTESIANPOINT", "(0.,-2.,5.)"},
      {40, "IFCRELAGGREGATES", "'aggregates',$,$,$,#1,(#100,#110,#120)"}};
  std::string inStorey[3];
  for (std::uint32_t i = 0; i < kProducts; ++i) {
    const std::uint32_t first = kFirstProduct + i * kOfProduct;
    const auto at = [first](std::uint32_t place) { return ReferenceTo(first + place); };
    const auto storey = static_cast<std::uint32_t>(100 + random() % 3 * 10);
    const bool isPlaced = i % 10 != 9;
    const bool hasShape = random() % 4 != 0;
    const bool hasHost = i % 10 != 0 && i % 7 == 6;
    records.push_back({first, i % 3 == 0 ? "IFCCOLUMN" : "IFCWALL",
                       "'guid " + std::to_string(i) + "',$,'product " + std::to_string(i) +
                           "',$,$," + (isPlaced ? at(1) : "$") + "," + (hasShape ? at(4) : "$") +
                           ",$,$"});
    const std::string outer =
        hasHost ? ReferenceTo(first - kOfProduct + 1) : ReferenceTo(storey + 1);
    records.push_back({first + 1, "IFCLOCALPLACEMENT", outer + "," + at(2)});
    records.push_back({first + 2, "IFCAXIS2PLACEMENT3D", at(3) + ",$,$"});
    records.push_back(
        {first + 3, "IFCCARTESIANPOINT",
         "(" + std::to_string(random() % 100) + ".," + std::to_string(random() % 100) + ".,0.)"});
    if (hasShape) AddShape(first, random, records);
    std::string& members = inStorey[(storey - 100) / 10];
    members += (members.empty() ? "" : ",") + at(0);
  }
  for (std::uint32_t storey = 0; storey < 3; ++storey) {
    const std::uint32_t number = 100 + 10 * storey;
    const std::string name = std::to_string(storey);
    records.push_back(
        {number, "IFCBUILDINGSTOREY",
         "'storey " + name + "',$,'S',$,$," + ReferenceTo(number + 1) + ",$,$,.ELEMENT.,7."});
    records.push_back({number + 1, "IFCLOCALPLACEMENT", "$,#3"});
    records.push_back(
        {number + 2, "IFCRELCONTAINEDINSPATIALSTRUCTURE",
         "'contains " + name + "',$,$,$,(" + inStorey[storey] + ")," + ReferenceTo(number)});
  }
  return records;
}

RunReport ReportOf(const IfcDocument& document, Boxes boxes, unsigned threads) {
  PlacedInput input;
  for (const auto& [number, entity] : document.mainContainer->originalEntities) {
    if (EntityCast<IFC::VirtualIfcProduct>(entity) == nullptr) continue;
    input.products.push_back({entity, entity->getClassName(), number % 11 != 0});
  }
  RunReport report;
  report.inputs.emplace_back().takesPart = true;
  report.places =
      CollectPlaces(document, {input}, {.most = 2000, .boxes = boxes, .threads = threads});
  return report;
}

TEST(LookingTogether, FindsTheSamePlacesBoxesAndTree) {
  const RecordDocument made(Building(), SchemaNamespace::IFC4);
  for (const Boxes boxes : {Boxes::kOfAll, Boxes::kOfDrawn}) {
    const RunReport alone = ReportOf(*made, boxes, 1);
    ASSERT_GT(alone.places->products.size(), 1900u);
    ASSERT_EQ(2u, alone.places->storeys.size());  // one is gone, see ReportOf
    ASSERT_GT(alone.places->withoutPlace, 100u);
    for (const unsigned threads : {2u, 3u, 8u}) {
      EXPECT_EQ(ReportAsJson(alone), ReportAsJson(ReportOf(*made, boxes, threads))) << threads;
    }
  }
}

TEST(LookingTogether, MakesTheSamePage) {
  const RecordDocument made(Building(), SchemaNamespace::IFC4);
  const RunReport report = ReportOf(*made, Boxes::kOfAll, 1);
  EXPECT_EQ(ReportAsPage(report, "en"), ReportAsPage(report, "en", 3));
}

}  // namespace
}  // namespace corvel::test
