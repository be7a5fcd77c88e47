// Coordinates that are no lengths of the model, and objects that are used for them and for lengths.
// The first model is in millimetres and degrees, the one that is converted in metres and radians.
#include <gtest/gtest.h>

#include <string>

#include "merge/federation/units/converted_models.h"

namespace corvel::test {

namespace {

constexpr const char* kHalfTurn = "3.141592653589793";

class ValueSpacesTest : public ConvertedModels {
 protected:
  // A line in the parameters of a surface, which is #8.
  std::string OnSurface(const std::string& surface) {
    return Converted(
        "#1=IFCPCURVE(#8,#2);\n#2=IFCPOLYLINE((#3,#4));\n"
        "#3=IFCCARTESIANPOINT((0.,1.));\n#4=IFCCARTESIANPOINT((" +
        std::string(kHalfTurn) + ",2.));\n" + surface +
        "#9=IFCAXIS2PLACEMENT3D(#10,$,$);\n#10=IFCCARTESIANPOINT((1.,1.,1.));\n");
  }
  static std::string Line(const std::string& lines, const std::string& begin) {
    const std::size_t at = lines.find(begin);
    if (at == std::string::npos) return {};
    return lines.substr(at, lines.find('\n', at) - at);
  }
  // "#12" of "#1=IFCPCURVE(#8,#12);"
  static std::string LastReference(const std::string& line) {
    const std::size_t at = line.rfind('#');
    return line.substr(at, line.find_first_not_of("0123456789", at + 1) - at);
  }
};

TEST_F(ValueSpacesTest, OnAPlaneTheyAreLengthsAsEverywhere) {
  const std::string lines = OnSurface("#8=IFCPLANE(#9);\n");
  EXPECT_EQ(Line(lines, "#3="),
            "#3=IFCCARTESIANPOINT((0.,1000.))"
            ";");
  EXPECT_EQ(Line(lines, "#4="), "#4=IFCCARTESIANPOINT((3.14159265358979E+03,2000.));");
}

TEST_F(ValueSpacesTest, OnACylinderTheyAreAnAngleAndALength) {
  const std::string lines = OnSurface("#8=IFCCYLINDRICALSURFACE(#9,1.);\n");
  EXPECT_EQ(Line(lines, "#3="), "#3=IFCCARTESIANPOINT((0.,1000.));");
  EXPECT_EQ(Line(lines, "#4="), "#4=IFCCARTESIANPOINT((180.,2000.));");
  EXPECT_EQ(Line(lines, "#10="), "#10=IFCCARTESIANPOINT((1000.,1000.,1000.));");
}

TEST_F(ValueSpacesTest, OnASphereTheyAreAngles) {
  const std::string lines = OnSurface("#8=IFCSPHERICALSURFACE(#9,1.);\n");
  EXPECT_EQ(Line(lines, "#3="), "#3=IFCCARTESIANPOINT((0.,5.72957795130823E+01));");
  EXPECT_EQ(Line(lines, "#4="), "#4=IFCCARTESIANPOINT((180.,1.14591559026165E+02));");
}

TEST_F(ValueSpacesTest, OnABSplineTheyStay) {
  const std::string lines = OnSurface(
      "#8=IFCBSPLINESURFACEWITHKNOTS(1,1,((#10,#10),(#10,#10)),.UNSPECIFIED.,.F.,.F.,.F.,"
      "(2,2),(2,2),(0.,1.),(0.,1.),.UNSPECIFIED.);\n");
  EXPECT_EQ(Line(lines, "#3="), "#3=IFCCARTESIANPOINT((0.,1.));");
  EXPECT_EQ(Line(lines, "#4="), "#4=IFCCARTESIANPOINT((3.14159265358979E+00,2.));");
  EXPECT_EQ(Line(lines, "#10="), "#10=IFCCARTESIANPOINT((1000.,1000.,1000.));");
  EXPECT_EQ(result_.copies, 0u);
}

TEST_F(ValueSpacesTest, ALineOnACylinderIsStretchedWithItsVector) {
  // A vector of 5 along 3 and 4: 3 radians round are 171.887 degrees, 4 metres up 4000 millimetres.
  const std::string lines = Converted(
      "#1=IFCPCURVE(#8,#2);\n#2=IFCLINE(#3,#4);\n#3=IFCCARTESIANPOINT((0.,1.));\n"
      "#4=IFCVECTOR(#5,5.);\n#5=IFCDIRECTION((0.6,0.8));\n#8=IFCCYLINDRICALSURFACE(#9,1.);\n"
      "#9=IFCAXIS2PLACEMENT3D(#10,$,$);\n#10=IFCCARTESIANPOINT((1.,1.,1.));\n");
  EXPECT_EQ(Line(lines, "#3="), "#3=IFCCARTESIANPOINT((0.,1000.));");
  EXPECT_EQ(Line(lines, "#5="), "#5=IFCDIRECTION((3.43774677078494E+01,800.));");
  EXPECT_EQ(Line(lines, "#4="), "#4=IFCVECTOR(#5,4.00369145378988E+03);");
  EXPECT_EQ(result_.unstretchable, 0u);
}

TEST_F(ValueSpacesTest, ACircleOnACylinderWouldNotStayOneAndStays) {
  const std::string lines = Converted(
      "#1=IFCPCURVE(#8,#2);\n#2=IFCCIRCLE(#3,2.);\n#3=IFCAXIS2PLACEMENT2D(#4,$);\n"
      "#4=IFCCARTESIANPOINT((0.,1.));\n#8=IFCCYLINDRICALSURFACE(#9,1.);\n"
      "#9=IFCAXIS2PLACEMENT3D(#10,$,$);\n#10=IFCCARTESIANPOINT((1.,1.,1.));\n");
  EXPECT_EQ(Line(lines, "#2="), "#2=IFCCIRCLE(#3,2.);");
  EXPECT_EQ(Line(lines, "#4="), "#4=IFCCARTESIANPOINT((0.,1.));");
  EXPECT_EQ(result_.unstretchable, 1u);
}

TEST_F(ValueSpacesTest, ATextureKeepsItsTransformation) {
  const std::string lines = Converted(
      "#1=IFCIMAGETEXTURE(.T.,.T.,$,#2,$,'a.png');\n"
      "#2=IFCCARTESIANTRANSFORMATIONOPERATOR2D($,$,#3,1.);\n#3=IFCCARTESIANPOINT((0.5,1.));\n"
      "#4=IFCCARTESIANPOINT((0.5,1.));\n");
  EXPECT_EQ(Line(lines, "#3="), "#3=IFCCARTESIANPOINT((5.E-01,1.));");
  EXPECT_EQ(Line(lines, "#4="), "#4=IFCCARTESIANPOINT((500.,1000.));");
}

TEST_F(ValueSpacesTest, WhatIsUsedInTwoWaysIsCopiedFirst) {
  // A point of a texture and of a wall, and the operator of the texture and of a map.
  const std::string lines = Converted(
      "#1=IFCIMAGETEXTURE(.T.,.T.,$,#2,$,'a.png');\n"
      "#2=IFCCARTESIANTRANSFORMATIONOPERATOR2D($,$,#3,1.);\n#3=IFCCARTESIANPOINT((0.5,1.));\n"
      "#4=IFCAXIS2PLACEMENT2D(#3,$);\n");
  EXPECT_EQ(result_.copies, 1u);
  EXPECT_EQ(Line(lines, "#3="), "#3=IFCCARTESIANPOINT((500.,1000.));");
  EXPECT_EQ(Line(lines, "#4="), "#4=IFCAXIS2PLACEMENT2D(#3,$);");
  const std::string copy = LastReference(Line(lines, "#2="));
  EXPECT_NE(copy, "#3");
  EXPECT_EQ(Line(lines, copy + "="), copy + "=IFCCARTESIANPOINT((5.E-01,1.));");
}

TEST_F(ValueSpacesTest, TheSameCurveOnTwoSurfacesIsThereTwice) {
  const std::string lines = Converted(
      "#1=IFCPCURVE(#8,#2);\n#11=IFCPCURVE(#12,#2);\n#13=IFCPCURVE(#8,#2);\n"
      "#2=IFCPOLYLINE((#3,#3));\n#3=IFCCARTESIANPOINT((0.,1.));\n"
      "#8=IFCCYLINDRICALSURFACE(#9,1.);\n#12=IFCSPHERICALSURFACE(#9,1.);\n"
      "#9=IFCAXIS2PLACEMENT3D(#10,$,$);\n#10=IFCCARTESIANPOINT((1.,1.,1.));\n");
  EXPECT_EQ(result_.copies, 2u);
  EXPECT_EQ(Line(lines, "#1="), "#1=IFCPCURVE(#8,#2);");
  EXPECT_EQ(Line(lines, "#13="), "#13=IFCPCURVE(#8,#2);");
  EXPECT_EQ(Line(lines, "#3="), "#3=IFCCARTESIANPOINT((0.,1000.));");
  const std::string curve = LastReference(Line(lines, "#11="));
  EXPECT_NE(curve, "#2");
  const std::string point = LastReference(Line(lines, curve + "="));
  EXPECT_NE(point, "#3");
  EXPECT_EQ(Line(lines, curve + "="), curve + "=IFCPOLYLINE((" + point + "," + point + "));");
  EXPECT_EQ(Line(lines, point + "="), point + "=IFCCARTESIANPOINT((0.,5.72957795130823E+01));");
}

TEST_F(ValueSpacesTest, ACurveOfTheModelOnASurfaceTooStaysThatOfTheModel) {
  const std::string lines = Converted(
      "#1=IFCPCURVE(#8,#2);\n#2=IFCPOLYLINE((#3,#3));\n#3=IFCCARTESIANPOINT((0.,1.));\n"
      "#5=IFCARBITRARYCLOSEDPROFILEDEF(.AREA.,$,#2);\n"
      "#8=IFCSPHERICALSURFACE(#9,1.);\n"
      "#9=IFCAXIS2PLACEMENT3D(#10,$,$);\n#10=IFCCARTESIANPOINT((1.,1.,1.));\n");
  EXPECT_EQ(Line(lines, "#5="), "#5=IFCARBITRARYCLOSEDPROFILEDEF(.AREA.,$,#2);");
  EXPECT_EQ(Line(lines, "#3="), "#3=IFCCARTESIANPOINT((0.,1000.));");
  const std::string copy = LastReference(Line(lines, "#1="));
  EXPECT_NE(copy, "#2");
  const std::string point = LastReference(Line(lines, copy + "="));
  EXPECT_EQ(Line(lines, point + "="), point + "=IFCCARTESIANPOINT((0.,5.72957795130823E+01));");
  EXPECT_EQ(result_.copies, 2u);
}

}  // namespace

}  // namespace corvel::test
