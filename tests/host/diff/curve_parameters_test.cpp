// Parameters on circles and ellipses are angles in the unit of their model.
#include <string>

#include "host/diff/diff_of_models.h"

namespace corvel::host::diff {

namespace {

using DiffOfParameters = test::ReadTest;

const std::string kRadians =
    "#1=IFCSIUNIT(*,.PLANEANGLEUNIT.,$,.RADIAN.);#2=IFCUNITASSIGNMENT((#1));";
const std::string kDegrees =
    "#5=IFCDIMENSIONALEXPONENTS(0,0,0,0,0,0,0);#1=IFCCONVERSIONBASEDUNIT(#5,.PLANEANGLEUNIT.,"
    "'DEGREE',#6);#6=IFCMEASUREWITHUNIT(IFCPLANEANGLEMEASURE(0.017453292519943295),#8);"
    "#8=IFCSIUNIT(*,.PLANEANGLEUNIT.,$,.RADIAN.);#2=IFCUNITASSIGNMENT((#1));";
const std::string kCircle = "IFCCIRCLE(#30,2.)";

// A wall with an arc, and a line that is trimmed at 3.
std::string Wall(const std::string& units, const std::string& curve, const std::string& from,
                 const std::string& to, const std::string& between = "") {
  return units +
         "#3=IFCPROJECT('project',$,'P',$,$,$,$,(#4),#2);"
         "#4=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-5,#30,$);"
         "#10=IFCWALL('w',$,'W',$,$,$,#11,$,$);#11=IFCPRODUCTDEFINITIONSHAPE($,$,(#12));"
         "#12=IFCSHAPEREPRESENTATION(#4,'Axis','Curve3D',(#20,#40));"
         "#20=IFCTRIMMEDCURVE(#21,(IFCPARAMETERVALUE(" +
         from + ")),(IFCPARAMETERVALUE(" + to + "),#32),.T.,.PARAMETER.);#21=" + curve + ";" +
         between +
         "#30=IFCAXIS2PLACEMENT3D(#31,$,$);#31=IFCCARTESIANPOINT((0.,0.,0.));"
         "#32=IFCCARTESIANPOINT((0.,2.,0.));"
         "#40=IFCTRIMMEDCURVE(#41,(IFCPARAMETERVALUE(0.)),(IFCPARAMETERVALUE(3.)),.T.,"
         ".PARAMETER.);#41=IFCLINE(#31,#42);#42=IFCVECTOR(#43,1.);"
         "#43=IFCDIRECTION((1.,0.,0.));";
}

// Without what the units themselves are.
std::string ChangesOfWall(const std::string& before, const std::string& after) {
  const std::string text = ChangesOf(before, after);
  const std::size_t wall = text.find("~ IfcWall");
  return wall == std::string::npos ? "" : text.substr(wall);
}

}  // namespace

TEST_F(DiffOfParameters, AnArcInDegreesIsTheSameInRadians) {
  const std::string degrees = Wall(kDegrees, kCircle, "30.", "90.");
  const std::string radians = Wall(kRadians, kCircle, "0.5235987755982988", "1.5707963267948966");
  EXPECT_EQ("", ChangesOfWall(degrees, radians));
  EXPECT_EQ("", ChangesOfWall(radians, degrees));
}

TEST_F(DiffOfParameters, OneNumberInTwoUnitsIsTwoAngles) {
  EXPECT_EQ(
      "~ IfcWall w 'W' #10\n"
      "    Representation.Representations[Axis].Items[1].Trim1[1]:\n"
      "      - 1 deg\n"
      "      + 57.2957795131 deg\n",
      ChangesOfWall(Wall(kDegrees, kCircle, "1.", "90."),
                    Wall(kRadians, kCircle, "1.", "1.5707963267948966")));
}

TEST_F(DiffOfParameters, InOneUnitTheyAreToldAsTheyAreWritten) {
  EXPECT_EQ(
      "~ IfcWall w 'W' #10\n"
      "    Representation.Representations[Axis].Items[1].Trim1[1]: 30 -> 31\n",
      ChangesOfWall(Wall(kDegrees, kCircle, "30.", "90."), Wall(kDegrees, kCircle, "31.", "90.")));
}

TEST_F(DiffOfParameters, AnArcOfAnOffsetOfAnEllipseIsMeasuredInAnglesToo) {
  const std::string offset = "IFCOFFSETCURVE3D(#22,1.,.F.,#43)";
  const std::string ellipse = "#22=IFCELLIPSE(#30,2.,1.);";
  EXPECT_EQ("", ChangesOfWall(Wall(kDegrees, offset, "0.", "180.", ellipse),
                              Wall(kRadians, offset, "0.", "3.141592653589793", ellipse)));
}

TEST_F(DiffOfParameters, ParametersOfOtherCurvesAreComparedAsTheyStand) {
  const std::string polyline = "IFCPOLYLINE((#31,#32))";
  EXPECT_EQ("", ChangesOfWall(Wall(kDegrees, polyline, "0.", "1."),
                              Wall(kRadians, polyline, "0.", "1.")));
  EXPECT_EQ(
      "~ IfcWall w 'W' #10\n"
      "    Representation.Representations[Axis].Items[1].Trim1[1]: 0 -> 0.5\n",
      ChangesOfWall(Wall(kDegrees, polyline, "0.", "1."), Wall(kRadians, polyline, "0.5", "1.")));
}

}  // namespace corvel::host::diff
