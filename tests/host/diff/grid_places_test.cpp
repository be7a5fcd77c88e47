// What stands on a grid is compared by where that stands.
#include <string>

#include "host/diff/diff_of_models.h"

namespace corvel::host::diff {

namespace {

using DiffOfGrids = test::ReadTest;

// Two columns on one crossing of the axes, the second by a placement relative to the first, and a
// wall that stands on no grid.
const std::string kOnGrid =
    "#1=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);#2=IFCUNITASSIGNMENT((#1));"
    "#3=IFCPROJECT('project',$,'P',$,$,$,$,(#4),#2);"
    "#4=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-5,#5,$);#5=IFCAXIS2PLACEMENT3D(#6,$,$);"
    "#6=IFCCARTESIANPOINT((0.,0.,0.));"
    "#10=IFCGRID('grid',$,'Grid',$,$,#11,$,(#20),(#21),$,$);#11=IFCLOCALPLACEMENT($,#12);"
    "#12=IFCAXIS2PLACEMENT3D(#13,$,$);#13=IFCCARTESIANPOINT((1000.,0.,0.));"
    "#20=IFCGRIDAXIS('A',#22,.T.);#21=IFCGRIDAXIS('1',#23,.T.);"
    "#22=IFCPOLYLINE((#24,#25));#23=IFCPOLYLINE((#24,#26));"
    "#24=IFCCARTESIANPOINT((0.,0.));#25=IFCCARTESIANPOINT((9000.,0.));"
    "#26=IFCCARTESIANPOINT((0.,9000.));"
    "#30=IFCVIRTUALGRIDINTERSECTION((#20,#21),(0.,0.));#31=IFCGRIDPLACEMENT(#30,$);"
    "#40=IFCCOLUMN('c1',$,'C1',$,$,#31,$,$,$);"
    "#41=IFCLOCALPLACEMENT(#31,#5);#42=IFCCOLUMN('c2',$,'C2',$,$,#41,$,$,$);"
    "#50=IFCLOCALPLACEMENT($,#5);#51=IFCWALL('w',$,'W',$,$,#50,$,$,$);";

std::string ChangesOnGrid(const std::string& from, const std::string& to) {
  return ChangesOf(kOnGrid, With(kOnGrid, from, to));
}

}  // namespace

TEST_F(DiffOfGrids, WhatStandsOnAGridMovesWithIt) {
  EXPECT_EQ(
      "* 3 objects (IfcColumn 2, IfcGrid 1)\n"
      "    moved by 5 m (3, 4, 0)\n",
      ChangesOnGrid("(1000.,0.,0.)", "(4000.,4000.,0.)"));
}

TEST_F(DiffOfGrids, WhatStandsOnAGridThatIsTurnedTurnsWithIt) {
  EXPECT_EQ(
      "* 3 objects (IfcColumn 2, IfcGrid 1)\n"
      "    turned together by 90 degrees about (0, 0, 1), origin to (1, -1, 0)\n",
      ChangesOnGrid("IFCAXIS2PLACEMENT3D(#13,$,$)",
                    "IFCAXIS2PLACEMENT3D(#13,#90,#91);#90=IFCDIRECTION((0.,0.,1.));"
                    "#91=IFCDIRECTION((0.,1.,0.))"));
}

TEST_F(DiffOfGrids, AnAxisThatChangesIsToldOfTheGridAndOfWhatStandsOnIt) {
  const std::string text =
      ChangesOnGrid("#23=IFCPOLYLINE((#24,#26))", "#23=IFCPOLYLINE((#25,#26))");
  for (const char* const changed : {"IfcGrid grid", "IfcColumn c1", "IfcColumn c2"}) {
    EXPECT_NE(std::string::npos, text.find(changed)) << text;
  }
  EXPECT_EQ(std::string::npos, text.find("IfcWall")) << text;
}

TEST_F(DiffOfGrids, AMoveWithinTheToleranceIsNone) {
  EXPECT_EQ("", ChangesOnGrid("(1000.,0.,0.)", "(1000.0004,0.,0.)"));
}

TEST_F(DiffOfGrids, WhatComesToStandOnAnotherGridHasMoved) {
  const std::string two = kOnGrid +
                          "#60=IFCGRID('other',$,'Other',$,$,#61,$,(#70),(#71),$,$);"
                          "#61=IFCLOCALPLACEMENT($,#62);#62=IFCAXIS2PLACEMENT3D(#63,$,$);"
                          "#63=IFCCARTESIANPOINT((1000.,2000.,0.));"
                          "#70=IFCGRIDAXIS('A',#22,.T.);#71=IFCGRIDAXIS('1',#23,.T.);";
  const std::string text =
      ChangesOf(two, With(two, "INTERSECTION((#20,#21)", "INTERSECTION((#70,#71)"));
  EXPECT_NE(std::string::npos, text.find("IfcColumn c1")) << text;
  EXPECT_NE(std::string::npos, text.find("moved by 2 m (0, 2, 0)")) << text;
  EXPECT_EQ(std::string::npos, text.find("IfcGrid")) << text;
}

}  // namespace corvel::host::diff
