#include "merge/report/shared/shape_boxes.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "merge/record_document.h"

namespace corvel::test {
namespace {

using Shape = std::vector<PlannedRecord>;

// The box of the product definition shape #1, whose body has the item #10.
Bounds BoxOf(Shape records) {
  records.push_back({1, "IFCPRODUCTDEFINITIONSHAPE", "$,$,(#2)"});
  records.push_back({2, "IFCSHAPEREPRESENTATION", "#3,'Body','x',(#10)"});
  records.push_back({3, "IFCGEOMETRICREPRESENTATIONCONTEXT", "$,$,3,$,#4,$"});
  records.push_back({4, "IFCAXIS2PLACEMENT3D", "#5,$,$"});
  records.push_back({5, "IFCCARTESIANPOINT", "(0.,0.,0.)"});
  RecordDocument document(records, SchemaNamespace::IFC4);
  const IFC::IfcEntity* const shape = (*document).mainContainer->GetEntityByOrginalNumber(1);
  return ShapeBoxes().Of(*shape);
}

void ExpectBox(const Bounds& bounds, const Triple& low, const Triple& high) {
  ASSERT_FALSE(bounds.isEmpty);
  for (std::size_t i = 0; i < low.size(); ++i) {
    EXPECT_NEAR(low[i], bounds.low[i], 1e-9) << i;
    EXPECT_NEAR(high[i], bounds.high[i], 1e-9) << i;
  }
}

const Shape kExtrusion = {{10, "IFCEXTRUDEDAREASOLID", "#11,#13,#12,3."},
                          {11, "IFCRECTANGLEPROFILEDEF", ".AREA.,$,$,4.,2."},
                          {12, "IFCDIRECTION", "(0.,0.,1.)"},
                          {13, "IFCAXIS2PLACEMENT3D", "#14,$,#15"},
                          {14, "IFCCARTESIANPOINT", "(10.,0.,0.)"},
                          {15, "IFCDIRECTION", "(0.,1.,0.)"}};

Shape MadeOf(Shape one, const Shape& other) {
  one.insert(one.end(), other.begin(), other.end());
  return one;
}

Shape Moved(const Shape& shape, std::uint32_t from, std::uint32_t by) {
  Shape moved = shape;
  for (PlannedRecord& record : moved) {
    if (record.number == from) record.number = by;
  }
  return moved;
}

TEST(ShapeBoxes, AnExtrusionIsItsProfileTurnedAndMoved) {
  ExpectBox(BoxOf(kExtrusion), {9, -2, 0}, {11, 2, 3});
}

TEST(ShapeBoxes, AProfileWithoutParametersCountsByItsPoints) {
  ExpectBox(BoxOf({{10, "IFCEXTRUDEDAREASOLID", "#11,$,#12,2."},
                   {11, "IFCARBITRARYCLOSEDPROFILEDEF", ".AREA.,$,#13"},
                   {12, "IFCDIRECTION", "(0.,0.,-1.)"},
                   {13, "IFCPOLYLINE", "(#14,#15,#16,#14)"},
                   {14, "IFCCARTESIANPOINT", "(1.,1.)"},
                   {15, "IFCCARTESIANPOINT", "(5.,1.)"},
                   {16, "IFCCARTESIANPOINT", "(5.,-7.)"}}),
            {1, -7, -2}, {5, 1, 0});
}

TEST(ShapeBoxes, AMeshIsAsLargeAsItsPoints) {
  ExpectBox(BoxOf({{10, "IFCTRIANGULATEDFACESET", "#11,$,$,((1,2,3)),$"},
                   {11, "IFCCARTESIANPOINTLIST3D", "((0.,1.,2.),(-4.,5.,6.),(7.,8.,-9.))"}}),
            {-4, 1, -9}, {7, 8, 6});
}

TEST(ShapeBoxes, AFacetedBodyIsAsLargeAsItsPoints) {
  ExpectBox(BoxOf({{10, "IFCFACETEDBREP", "#11"},
                   {11, "IFCCLOSEDSHELL", "(#12)"},
                   {12, "IFCFACE", "(#13)"},
                   {13, "IFCFACEOUTERBOUND", "#14,.T."},
                   {14, "IFCPOLYLOOP", "(#15,#16,#17)"},
                   {15, "IFCCARTESIANPOINT", "(0.,0.,0.)"},
                   {16, "IFCCARTESIANPOINT", "(3.,0.,1.)"},
                   {17, "IFCCARTESIANPOINT", "(0.,-2.,5.)"}}),
            {0, -2, 0}, {3, 0, 5});
}

TEST(ShapeBoxes, ASurfaceModelIsAsLargeAsThePointsOfAllItsShells) {
  const Shape shells = {{11, "IFCOPENSHELL", "(#13)"},
                        {12, "IFCCLOSEDSHELL", "(#14)"},
                        {13, "IFCFACE", "(#15,#16)"},
                        {14, "IFCFACE", "(#17)"},
                        {15, "IFCFACEOUTERBOUND", "#18,.T."},
                        {16, "IFCFACEBOUND", "#19,.T."},
                        {17, "IFCFACEOUTERBOUND", "#20,.T."},
                        {18, "IFCPOLYLOOP", "(#21,#22,#22)"},
                        {19, "IFCVERTEXLOOP", "#24"},
                        {20, "IFCPOLYLOOP", "(#23,#21,#22)"},
                        {21, "IFCCARTESIANPOINT", "(0.,0.,0.)"},
                        {22, "IFCCARTESIANPOINT", "(3.,0.,1.)"},
                        {23, "IFCCARTESIANPOINT", "(0.,-2.,5.)"},
                        {24, "IFCVERTEXPOINT", "#25"},
                        {25, "IFCCARTESIANPOINT", "(9.,0.,0.)"}};
  ExpectBox(BoxOf(MadeOf(shells, {{10, "IFCSHELLBASEDSURFACEMODEL", "(#11,#12)"}})), {0, -2, 0},
            {9, 0, 5});
  ExpectBox(BoxOf(MadeOf(shells, {{10, "IFCFACEBASEDSURFACEMODEL", "(#11)"}})), {0, 0, 0},
            {9, 0, 1});
}

TEST(ShapeBoxes, CornersThatManyFacesShareCountWhicheverOrderTheyComeIn) {
  std::mt19937 random(3);
  for (const std::uint32_t count : {3u, 40u, 300u, 3000u}) {
    Shape records = {{10, "IFCFACETEDBREP", "#11"}};
    Bounds expected;
    for (std::uint32_t i = 0; i < count; ++i) {
      // The last ones alone are far out.
      const Triple point = {i % 7 + (i + 1 == count ? 90.0 : 0.0), i % 5 + 0.25,
                            i + 2 == count ? -50.0 : i % 3};
      expected.Add(point);
      records.push_back({100000 + i, "IFCCARTESIANPOINT",
                         "(" + std::to_string(point[0]) + "," + std::to_string(point[1]) + "," +
                             std::to_string(point[2]) + ")"});
    }
    std::string faces;
    const auto corner = [](std::uint32_t i) { return "#" + std::to_string(100000 + i); };
    for (std::uint32_t i = 0; i < count; ++i) {
      const std::uint32_t face = 1000 + 3 * i;
      const std::string name = "#" + std::to_string(face);
      faces += (i == 0 ? "" : ",") + name;
      records.push_back({face, "IFCFACE", "(#" + std::to_string(face + 1) + ")"});
      records.push_back({face + 1, "IFCFACEOUTERBOUND", "#" + std::to_string(face + 2) + ",.T."});
      records.push_back({face + 2, "IFCPOLYLOOP",
                         "(" + corner(i) + "," +
                             corner(static_cast<std::uint32_t>(random()) % count) + "," +
                             corner((i + 1) % count) + ")"});
    }
    records.push_back({11, "IFCCLOSEDSHELL", "(" + faces + ")"});
    ExpectBox(BoxOf(records), expected.low, expected.high);
  }
}

TEST(ShapeBoxes, ABodyOfManyFacesIsAsLargeAsAllOfThem) {
  Shape records = {{10, "IFCFACETEDBREP", "#11"}};
  std::string faces;
  for (std::uint32_t i = 0; i < 100; ++i) {
    const std::uint32_t first = 100 + 10 * i;
    const auto name = [first](std::uint32_t by) { return "#" + std::to_string(first + by); };
    const std::string point = "(" + std::to_string(i) + ".,-" + std::to_string(i) + ".,7.)";
    faces += (i == 0 ? "" : ",") + name(0);
    records.push_back({first, "IFCFACE", "(" + name(1) + ")"});
    records.push_back({first + 1, "IFCFACEOUTERBOUND", name(2) + ",.T."});
    records.push_back(
        {first + 2, "IFCPOLYLOOP", "(" + name(3) + "," + name(3) + "," + name(3) + ")"});
    records.push_back({first + 3, "IFCCARTESIANPOINT", point});
  }
  records.push_back({11, "IFCCLOSEDSHELL", "(" + faces + ")"});
  ExpectBox(BoxOf(records), {0, -99, 7}, {99, 0, 7});
}

TEST(ShapePoints, CornersThatWereSeenInOneBodyCountInTheNextOne) {
  RecordDocument document({{10, "IFCFACETEDBREP", "#11"},
                           {11, "IFCCLOSEDSHELL", "(#12)"},
                           {12, "IFCFACE", "(#13)"},
                           {13, "IFCFACEOUTERBOUND", "#14,.T."},
                           {14, "IFCPOLYLOOP", "(#15,#16,#15)"},
                           {15, "IFCCARTESIANPOINT", "(0.,0.,0.)"},
                           {16, "IFCCARTESIANPOINT", "(3.,-2.,1.)"}},
                          SchemaNamespace::IFC4);
  const IFC::IfcEntity* const body = (*document).mainContainer->GetEntityByOrginalNumber(10);
  ShapePoints points;
  for (int i = 0; i < 2; ++i) {
    Bounds bounds;
    points.AddFaces(*body, bounds);
    ExpectBox(bounds, {0, -2, 0}, {3, 0, 1});
  }
}

TEST(ShapeBoxes, ACurveThatIsAPartOfItselfHasAnEnd) {
  ExpectBox(BoxOf({{10, "IFCEXTRUDEDAREASOLID", "#11,$,#12,2."},
                   {11, "IFCARBITRARYCLOSEDPROFILEDEF", ".AREA.,$,#13"},
                   {12, "IFCDIRECTION", "(0.,0.,1.)"},
                   {13, "IFCCOMPOSITECURVE", "(#14,#15),.F."},
                   {14, "IFCCOMPOSITECURVESEGMENT", ".CONTINUOUS.,.T.,#13"},
                   {15, "IFCCOMPOSITECURVESEGMENT", ".CONTINUOUS.,.T.,#16"},
                   {16, "IFCPOLYLINE", "(#17,#18)"},
                   {17, "IFCCARTESIANPOINT", "(1.,1.)"},
                   {18, "IFCCARTESIANPOINT", "(5.,-7.)"}}),
            {1, -7, 0}, {5, 1, 2});
}

TEST(ShapeBoxes, WhatIsMappedIsTurnedStretchedAndMoved) {
  ExpectBox(BoxOf(MadeOf(Moved(kExtrusion, 10, 20),
                         {{10, "IFCMAPPEDITEM", "#30,#34"},
                          {30, "IFCREPRESENTATIONMAP", "#31,#33"},
                          {31, "IFCAXIS2PLACEMENT3D", "#32,$,$"},
                          {32, "IFCCARTESIANPOINT", "(10.,0.,0.)"},
                          {33, "IFCSHAPEREPRESENTATION", "#3,'Body','x',(#20)"},
                          {34, "IFCCARTESIANTRANSFORMATIONOPERATOR3D", "$,$,#35,2.,$"},
                          {35, "IFCCARTESIANPOINT", "(100.,0.,1.)"}})),
            {98, -4, 1}, {102, 4, 7});
}

TEST(ShapeBoxes, WhatIsCutIsAsLargeAsItWas) {
  ExpectBox(BoxOf(MadeOf(Moved(kExtrusion, 10, 20),
                         {{10, "IFCBOOLEANCLIPPINGRESULT", ".DIFFERENCE.,#20,#21"},
                          {21, "IFCHALFSPACESOLID", "#22,.F."},
                          {22, "IFCPLANE", "#4"}})),
            {9, -2, 0}, {11, 2, 3});
}

TEST(ShapeBoxes, AShapeThatMapsItselfHasNoEndAndNoBox) {
  EXPECT_TRUE(BoxOf({{10, "IFCMAPPEDITEM", "#30,#34"},
                     {30, "IFCREPRESENTATIONMAP", "#4,#33"},
                     {33, "IFCSHAPEREPRESENTATION", "#3,'Body','x',(#10)"},
                     {34, "IFCCARTESIANTRANSFORMATIONOPERATOR3D", "$,$,#5,$,$"}})
                  .isEmpty);
}

TEST(ShapeBoxes, ASurfaceOfAnotherKindHasNoBox) {
  EXPECT_TRUE(BoxOf({{10, "IFCREVOLVEDAREASOLID", "#11,$,#12,3."},
                     {11, "IFCRECTANGLEPROFILEDEF", ".AREA.,$,$,4.,2."},
                     {12, "IFCAXIS1PLACEMENT", "#5,$"}})
                  .isEmpty);
}

}  // namespace
}  // namespace corvel::test
