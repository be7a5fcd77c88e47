// One number after the other: what becomes of it in other units. The first model is in millimetres
// and degrees, the one that is converted in metres and radians: lengths are a thousand times what
// they were, and angles 180 / pi times.
#include <gtest/gtest.h>

#include <string>

#include "merge/federation/units/converted_models.h"

namespace corvel::test {

namespace {

// pi in degrees.
#define CORVEL_PI "3.141592653589793"

class ValueRoles : public ConvertedModels {};

TEST_F(ValueRoles, LengthsInListsAndListsOfListsChange) {
  EXPECT_EQ(Converted("#1=IFCCARTESIANPOINT((1.,2.5,-3.));\n"
                      "#2=IFCCARTESIANPOINTLIST2D(((0.,1.),(2.,3.)));\n"
                      "#3=IFCVECTOR(#4,2.);\n#4=IFCDIRECTION((0.,1.));\n"),
            "#1=IFCCARTESIANPOINT((1000.,2500.,-3000.));\n"
            "#2=IFCCARTESIANPOINTLIST2D(((0.,1000.),(2000.,3000.)));\n"
            "#3=IFCVECTOR(#4,2000.);\n#4=IFCDIRECTION((0.,1.));\n");
}

TEST_F(ValueRoles, TypedValuesInPropertiesChangeByTheirOwnType) {
  EXPECT_EQ(Converted("#1=IFCPROPERTYSINGLEVALUE('a',$,IFCPOSITIVELENGTHMEASURE(2.),$);\n"
                      "#2=IFCPROPERTYSINGLEVALUE('b',$,IFCREAL(2.),$);\n"
                      "#3=IFCPROPERTYLISTVALUE('c',$,(IFCLENGTHMEASURE(1.),IFCLABEL('1')),$);\n"
                      "#4=IFCPROPERTYSINGLEVALUE('d',$,IFCRATIOMEASURE(2.),$);\n"),
            "#1=IFCPROPERTYSINGLEVALUE('a',$,IFCPOSITIVELENGTHMEASURE(2000.),$);\n"
            "#2=IFCPROPERTYSINGLEVALUE('b',$,IFCREAL(2.),$);\n"
            "#3=IFCPROPERTYLISTVALUE('c',$,(IFCLENGTHMEASURE(1000.),IFCLABEL('1')),$);\n"
            "#4=IFCPROPERTYSINGLEVALUE('d',$,IFCRATIOMEASURE(2.),$);\n");
  EXPECT_EQ(result_.values.texts, 1u);
}

TEST_F(ValueRoles, AValueThatTwoPropertiesReferToIsConvertedOnce) {
  EXPECT_EQ(Converted("#1=IFCPROPERTYSINGLEVALUE('a',$,#3,$);\n"
                      "#2=IFCPROPERTYSINGLEVALUE('b',$,#3,$);\n#3=IFCLENGTHMEASURE(2.);\n"),
            "#1=IFCPROPERTYSINGLEVALUE('a',$,#3,$);\n"
            "#2=IFCPROPERTYSINGLEVALUE('b',$,#3,$);\n#3=IFCLENGTHMEASURE(2000.);\n");
}

TEST_F(ValueRoles, ValuesBesideAUnitStay) {
  const std::string records =
      "#1=IFCPROPERTYSINGLEVALUE('a',$,IFCLENGTHMEASURE(2.),#901);\n"
      "#2=IFCPROPERTYBOUNDEDVALUE('b',$,IFCLENGTHMEASURE(2.),IFCLENGTHMEASURE(1.),#901,"
      "IFCLENGTHMEASURE(1.5E+00));\n"
      "#3=IFCPROPERTYLISTVALUE('c',$,(IFCLENGTHMEASURE(1.)),#901);\n"
      "#4=IFCPROPERTYENUMERATION('d',(IFCLENGTHMEASURE(1.)),#901);\n"
      "#5=IFCPROPERTYENUMERATEDVALUE('e',$,(IFCLENGTHMEASURE(1.)),#4);\n"
      "#6=IFCQUANTITYLENGTH('f',$,#901,2.,$);\n"
      "#7=IFCMEASUREWITHUNIT(IFCLENGTHMEASURE(2.),#901);\n";
  EXPECT_EQ(Converted(records), records);
}

TEST_F(ValueRoles, TheSameWithoutAUnitChange) {
  EXPECT_EQ(Converted("#2=IFCPROPERTYBOUNDEDVALUE('b',$,IFCLENGTHMEASURE(2.),$,$,"
                      "IFCLENGTHMEASURE(1.5));\n"
                      "#4=IFCPROPERTYENUMERATION('d',(IFCLENGTHMEASURE(1.)),$);\n"
                      "#5=IFCPROPERTYENUMERATEDVALUE('e',$,(IFCLENGTHMEASURE(1.)),#4);\n"
                      "#6=IFCQUANTITYLENGTH('f',$,$,2.,$);\n"),
            "#2=IFCPROPERTYBOUNDEDVALUE('b',$,IFCLENGTHMEASURE(2000.),$,$,"
            "IFCLENGTHMEASURE(1500.));\n"
            "#4=IFCPROPERTYENUMERATION('d',(IFCLENGTHMEASURE(1000.)),$);\n"
            "#5=IFCPROPERTYENUMERATEDVALUE('e',$,(IFCLENGTHMEASURE(1000.)),#4);\n"
            "#6=IFCQUANTITYLENGTH('f',$,$,2000.,$);\n");
}

TEST_F(ValueRoles, ATableOfTwoUnitsChangesWhereItHasNone) {
  EXPECT_EQ(Converted("#1=IFCPROPERTYTABLEVALUE('t',$,(IFCLENGTHMEASURE(1.)),"
                      "(IFCLENGTHMEASURE(2.)),$,#901,$,$);\n"),
            "#1=IFCPROPERTYTABLEVALUE('t',$,(IFCLENGTHMEASURE(1.)),"
            "(IFCLENGTHMEASURE(2000.)),$,#901,$,$);\n");
}

TEST_F(ValueRoles, CellsStayInColumnsWithAUnit) {
  EXPECT_EQ(Converted("#1=IFCTABLE('t',(#2),(#3,#4));\n"
                      "#2=IFCTABLEROW((IFCLENGTHMEASURE(1.),IFCLENGTHMEASURE(2.)),.F.);\n"
                      "#3=IFCTABLECOLUMN($,$,$,#901,$);\n#4=IFCTABLECOLUMN($,$,$,$,$);\n"),
            "#1=IFCTABLE('t',(#2),(#3,#4));\n"
            "#2=IFCTABLEROW((IFCLENGTHMEASURE(1.),IFCLENGTHMEASURE(2000.)),.F.);\n"
            "#3=IFCTABLECOLUMN($,$,$,#901,$);\n#4=IFCTABLECOLUMN($,$,$,$,$);\n");
}

TEST_F(ValueRoles, ValuesOfASeriesWithAUnitStayAndItsTimesDoNot) {
  const std::string values = "#2=IFCTIMESERIESVALUE((IFCLENGTHMEASURE(1.)));\n";
  EXPECT_EQ(
      Converted("#1=IFCREGULARTIMESERIES('s',$,'2020','2021',.CONTINUOUS.,.MEASURED.,$,#901,"
                "60.,(#2));\n" +
                values),
      "#1=IFCREGULARTIMESERIES('s',$,'2020','2021',.CONTINUOUS.,.MEASURED.,$,#901,60.,(#2));\n" +
          values);
  EXPECT_EQ(Converted("#1=IFCREGULARTIMESERIES('s',$,'2020','2021',.CONTINUOUS.,.MEASURED.,$,$,"
                      "60.,(#2));\n" +
                      values),
            "#1=IFCREGULARTIMESERIES('s',$,'2020','2021',.CONTINUOUS.,.MEASURED.,$,$,60.,(#2));\n"
            "#2=IFCTIMESERIESVALUE((IFCLENGTHMEASURE(1000.)));\n");
}

TEST_F(ValueRoles, ValuesDeclaredInALibraryWithUnitsOfItsOwnStay) {
  EXPECT_EQ(Converted("#1=IFCPROJECTLIBRARY('l',$,$,$,$,$,$,$,#2);\n"
                      "#2=IFCUNITASSIGNMENT((#901));\n"
                      "#3=IFCRELDECLARES('r',$,$,$,#1,(#4,#6));\n"
                      "#4=IFCPROPERTYSET('s',$,$,$,(#5));\n"
                      "#5=IFCPROPERTYSINGLEVALUE('p',$,IFCLENGTHMEASURE(1.),$);\n"
                      "#6=IFCWALLTYPE('t',$,$,$,$,(#7),$,$,$,.NOTDEFINED.);\n"
                      "#7=IFCELEMENTQUANTITY('q',$,$,$,$,(#8));\n"
                      "#8=IFCQUANTITYLENGTH('f',$,$,2.,$);\n"
                      "#9=IFCQUANTITYLENGTH('f',$,$,2.,$);\n"),
            "#1=IFCPROJECTLIBRARY('l',$,$,$,$,$,$,$,#2);\n"
            "#2=IFCUNITASSIGNMENT((#901));\n"
            "#3=IFCRELDECLARES('r',$,$,$,#1,(#4,#6));\n"
            "#4=IFCPROPERTYSET('s',$,$,$,(#5));\n"
            "#5=IFCPROPERTYSINGLEVALUE('p',$,IFCLENGTHMEASURE(1.),$);\n"
            "#6=IFCWALLTYPE('t',$,$,$,$,(#7),$,$,$,.NOTDEFINED.);\n"
            "#7=IFCELEMENTQUANTITY('q',$,$,$,$,(#8));\n"
            "#8=IFCQUANTITYLENGTH('f',$,$,2.,$);\n"
            "#9=IFCQUANTITYLENGTH('f',$,$,2000.,$);\n");
}

TEST_F(ValueRoles, ThePrecisionOfAContextIsALength) {
  EXPECT_EQ(Converted("#1=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-05,*,$);\n"),
            "#1=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-02,*,$);\n");
}

TEST_F(ValueRoles, CoefficientsOfAPolynomialChangeByTheirPower) {
  if (!IsBuilt(SchemaNamespace::IFC4X3_ADD2)) GTEST_SKIP() << "the release is not built";
  EXPECT_EQ(Converted("#1=IFCPOLYNOMIALCURVE(*,(0.,1.),(1.,2.,3.,4.),$);\n", "IFC4X3_ADD2"),
            "#1=IFCPOLYNOMIALCURVE(*,(0.,1.),(1000.,2.,3.E-03,4.E-06),$);\n");
}

TEST_F(ValueRoles, LightFadesByTheSameWay) {
  // 1 / (1 + 2 r + 3 r r), of whatever unit r is.
  EXPECT_EQ(Converted("#1=IFCLIGHTSOURCEPOSITIONAL($,#2,$,$,#3,5.,1.,2.,3.);\n"
                      "#2=IFCCOLOURRGB($,1.,1.,1.);\n#3=IFCCARTESIANPOINT((0.,0.,0.));\n"),
            "#1=IFCLIGHTSOURCEPOSITIONAL($,#2,$,$,#3,5000.,1.,2.E-03,3.E-06);\n"
            "#2=IFCCOLOURRGB($,1.,1.,1.);\n#3=IFCCARTESIANPOINT((0.,0.,0.));\n");
}

TEST_F(ValueRoles, DegreesMinutesAndSecondsStay) {
  const std::string site = "#1=IFCSITE('s',$,$,$,$,$,$,$,$,(52,30,0),(13,24,0),$,$,$);\n";
  EXPECT_EQ(Converted(site), site);
}

TEST_F(ValueRoles, TrimsOfAConicAreAngles) {
  EXPECT_EQ(
      Converted("#1=IFCTRIMMEDCURVE(#2,(IFCPARAMETERVALUE(0.)),(#4,IFCPARAMETERVALUE(" CORVEL_PI
                ")),.T.,.PARAMETER.);\n"
                "#2=IFCCIRCLE(#3,1.);\n#3=IFCAXIS2PLACEMENT2D(#4,$);\n"
                "#4=IFCCARTESIANPOINT((1.,0.));\n"),
      "#1=IFCTRIMMEDCURVE(#2,(IFCPARAMETERVALUE(0.)),(#4,IFCPARAMETERVALUE(180.)),.T.,"
      ".PARAMETER.);\n"
      "#2=IFCCIRCLE(#3,1000.);\n#3=IFCAXIS2PLACEMENT2D(#4,$);\n"
      "#4=IFCCARTESIANPOINT((1000.,0.));\n");
}

TEST_F(ValueRoles, TrimsOfALineStay) {
  EXPECT_EQ(Converted("#1=IFCTRIMMEDCURVE(#2,(IFCPARAMETERVALUE(0.)),(IFCPARAMETERVALUE(2.)),.T.,"
                      ".PARAMETER.);\n"
                      "#2=IFCLINE(#3,#4);\n#3=IFCCARTESIANPOINT((1.,0.));\n#4=IFCVECTOR(#5,2.);\n"
                      "#5=IFCDIRECTION((1.,0.));\n"),
            "#1=IFCTRIMMEDCURVE(#2,(IFCPARAMETERVALUE(0.)),(IFCPARAMETERVALUE(2.)),.T.,"
            ".PARAMETER.);\n"
            "#2=IFCLINE(#3,#4);\n#3=IFCCARTESIANPOINT((1000.,0.));\n#4=IFCVECTOR(#5,2000.);\n"
            "#5=IFCDIRECTION((1.,0.));\n");
}

// A line of two, three parts of a polyline, half a circle, and a circle by points.
const char* const kComposite =
    "#10=IFCCOMPOSITECURVE((#11,#12,#13,#14),.F.);\n"
    "#11=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#21);\n"
    "#12=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#22);\n"
    "#13=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#23);\n"
    "#14=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#24);\n"
    "#21=IFCTRIMMEDCURVE(#31,(IFCPARAMETERVALUE(1.)),(IFCPARAMETERVALUE(3.)),.T.,.PARAMETER.);\n"
    "#22=IFCPOLYLINE((#41,#42,#41,#42));\n"
    "#23=IFCTRIMMEDCURVE(#32,(IFCPARAMETERVALUE(0.)),(IFCPARAMETERVALUE(" CORVEL_PI
    ")),.T.,.PARAMETER.);\n"
    "#24=IFCTRIMMEDCURVE(#32,(#43),(#42),.T.,.CARTESIAN.);\n"
    "#31=IFCLINE(#41,#33);\n#32=IFCCIRCLE(#34,1.);\n#33=IFCVECTOR(#35,1.);\n"
    "#34=IFCAXIS2PLACEMENT2D(#41,$);\n#35=IFCDIRECTION((1.,0.));\n"
    "#41=IFCCARTESIANPOINT((0.,0.));\n#42=IFCCARTESIANPOINT((1.,0.));\n"
    "#43=IFCCARTESIANPOINT((-1.,0.));\n";

TEST_F(ValueRoles, OnCompositeCurvesThePartsAddUp) {
  const auto at = [this](const std::string& start, const std::string& end) {
    const std::string lines =
        Converted("#1=IFCSWEPTDISKSOLID(#10,0.1,$," + start + "," + end + ");\n" + kComposite);
    return lines.substr(0, lines.find('\n'));
  };
  // In the line; behind the polyline.
  EXPECT_EQ(at("1.", "5."), "#1=IFCSWEPTDISKSOLID(#10,100.,$,1.,5.);");
  // Half of the half circle, which is a quarter; to the end of it.
  EXPECT_EQ(at("6.570796326794897", "8.141592653589793"),
            "#1=IFCSWEPTDISKSOLID(#10,100.,$,95.,185.);");
  // Both halves.
  EXPECT_EQ(at("0.", "11.283185307179586"), "#1=IFCSWEPTDISKSOLID(#10,100.,$,0.,365.);");
}

TEST_F(ValueRoles, ACompositeOfCompositesAddsUpTheSameAndOneOfItselfDoesNoHarm) {
  const std::string outer =
      "#2=IFCCOMPOSITECURVE((#3,#4),.F.);\n#3=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#10);\n"
      "#4=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#10);\n";
  // Behind the whole of the first one half of the half circle in the second.
  std::string lines =
      Converted("#1=IFCSWEPTDISKSOLID(#2,0.1,$,0.,17.853981633974483);\n" + outer + kComposite);
  EXPECT_EQ(lines.substr(0, lines.find('\n')), "#1=IFCSWEPTDISKSOLID(#2,100.,$,0.,4.6E+02);");
  lines = Converted(
      "#1=IFCSWEPTDISKSOLID(#2,0.1,$,0.,5.);\n#2=IFCCOMPOSITECURVE((#3,#3,#3),.F.);\n"
      "#3=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#2);\n");
  EXPECT_EQ(lines.substr(0, lines.find('\n')), "#1=IFCSWEPTDISKSOLID(#2,100.,$,0.,5.);");
}

TEST_F(ValueRoles, OnACompositeOfEndlessPartsAParameterStays) {
  const std::string lines = Converted(
      "#1=IFCSWEPTDISKSOLID(#2,0.1,$,0.,5.);\n#2=IFCCOMPOSITECURVE((#3,#3),.F.);\n"
      "#3=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#4);\n"
      "#4=IFCTRIMMEDCURVE(#5,(IFCPARAMETERVALUE(0.)),(IFCPARAMETERVALUE(1.E400)),.T.,"
      ".PARAMETER.);\n#5=IFCCIRCLE(#6,1.);\n#6=IFCAXIS2PLACEMENT2D(#7,$);\n"
      "#7=IFCCARTESIANPOINT((0.,0.));\n");
  EXPECT_EQ(lines.substr(0, lines.find('\n')), "#1=IFCSWEPTDISKSOLID(#2,100.,$,0.,5.);");
}

TEST_F(ValueRoles, ParametersOfPointsAndSegmentsGoByTheirCurve) {
  const std::string circle =
      "#8=IFCCIRCLE(#9,1.);\n#9=IFCAXIS2PLACEMENT2D(#7,$);\n#7=IFCCARTESIANPOINT((0.,0.));\n";
  EXPECT_EQ(
      Converted("#1=IFCPOINTONCURVE(#8," CORVEL_PI ");\n"
                "#2=IFCREPARAMETRISEDCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#3," CORVEL_PI ");\n"
                "#3=IFCTRIMMEDCURVE(#8,(#7),(#7),.T.,.CARTESIAN.);\n" +
                circle),
      "#1=IFCPOINTONCURVE(#8,180.);\n"
      "#2=IFCREPARAMETRISEDCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#3,180.);\n"
      "#3=IFCTRIMMEDCURVE(#8,(#7),(#7),.T.,.CARTESIAN.);\n"
      "#7=IFCCARTESIANPOINT((0.,0.));\n#8=IFCCIRCLE(#9,1000.);\n"
      "#9=IFCAXIS2PLACEMENT2D(#7,$);\n");
}

TEST_F(ValueRoles, SegmentsOfAnAlignmentGoByWhatTheyAreGivenAs) {
  if (!IsBuilt(SchemaNamespace::IFC4X3_ADD2)) GTEST_SKIP() << "the release is not built";
  EXPECT_EQ(
      Converted(
          "#1=IFCCURVESEGMENT(.CONTINUOUS.,#9,IFCPARAMETERVALUE(0.),IFCPARAMETERVALUE(" CORVEL_PI
          "),#8);\n"
          "#2=IFCCURVESEGMENT(.CONTINUOUS.,#9,IFCLENGTHMEASURE(1.),IFCLENGTHMEASURE("
          "2.),#8);\n"
          "#3=IFCPOINTBYDISTANCEEXPRESSION(IFCLENGTHMEASURE(5.),1.,$,$,#8);\n"
          "#7=IFCCARTESIANPOINT((0.,0.));\n#8=IFCCIRCLE(#9,1.);\n"
          "#9=IFCAXIS2PLACEMENT2D(#7,$);\n",
          "IFC4X3_ADD2"),
      "#1=IFCCURVESEGMENT(.CONTINUOUS.,#9,IFCPARAMETERVALUE(0.),IFCPARAMETERVALUE(180.),#8);\n"
      "#2=IFCCURVESEGMENT(.CONTINUOUS.,#9,IFCLENGTHMEASURE(1000.),IFCLENGTHMEASURE(2000.),"
      "#8);\n"
      "#3=IFCPOINTBYDISTANCEEXPRESSION(IFCLENGTHMEASURE(5000.),1000.,$,$,#8);\n"
      "#7=IFCCARTESIANPOINT((0.,0.));\n#8=IFCCIRCLE(#9,1000.);\n"
      "#9=IFCAXIS2PLACEMENT2D(#7,$);\n");
}

TEST_F(ValueRoles, TrimsOfSurfacesGoByTheSurface) {
  const std::string placement =
      "#7=IFCCARTESIANPOINT((0.,0.,0.));\n#9=IFCAXIS2PLACEMENT3D(#7,$,$);\n";
  const auto trimmed = [&](const std::string& surface) {
    const std::string lines =
        Converted("#1=IFCRECTANGULARTRIMMEDSURFACE(#8,0.,1.," CORVEL_PI ",2.,.T.,.T.);\n" +
                  surface + placement);
    return lines.substr(0, lines.find('\n'));
  };
  std::string line =
      "#1=IFCRECTANGULARTRIMMEDSURFACE(#8,0.,1000.,3.14159265358979E+03,2000.,.T.,.T.);";
  EXPECT_EQ(trimmed("#8=IFCPLANE(#9);\n"), line);
  line = "#1=IFCRECTANGULARTRIMMEDSURFACE(#8,0.,1000.,180.,2000.,.T.,.T.);";
  EXPECT_EQ(trimmed("#8=IFCCYLINDRICALSURFACE(#9,1.);\n"), line);
  line =
      "#1=IFCRECTANGULARTRIMMEDSURFACE(#8,0.,5.72957795130823E+01,180.,1.14591559026165E+02,.T.,.T."
      ");";
  EXPECT_EQ(trimmed("#8=IFCSPHERICALSURFACE(#9,1.);\n"), line);
  line = "#1=IFCRECTANGULARTRIMMEDSURFACE(#8,0.,1.,3.14159265358979E+00,2.,.T.,.T.);";
  EXPECT_EQ(trimmed("#8=IFCSURFACEOFLINEAREXTRUSION(#5,#9,#6,1.);\n"
                    "#5=IFCARBITRARYOPENPROFILEDEF(.CURVE.,$,#4);\n"
                    "#4=IFCPOLYLINE((#7,#7));\n#6=IFCDIRECTION((0.,0.,1.));\n"),
            line);
  line = "#1=IFCRECTANGULARTRIMMEDSURFACE(#8,0.,1.,180.,2.,.T.,.T.);";
  EXPECT_EQ(trimmed("#8=IFCSURFACEOFREVOLUTION(#5,#9,#6);\n"
                    "#5=IFCARBITRARYOPENPROFILEDEF(.CURVE.,$,#4);\n"
                    "#4=IFCPOLYLINE((#7,#7));\n#6=IFCAXIS1PLACEMENT(#7,$);\n"),
            line);
}

TEST_F(ValueRoles, WithoutAUnitOfTheMapCoordinatesChangeAndTheScaleDoesNot) {
  EXPECT_EQ(Converted("#1=IFCMAPCONVERSION(#2,#3,100.,200.,300.,1.,0.,$);\n"
                      "#2=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,$,*,$);\n"
                      "#3=IFCPROJECTEDCRS('EPSG:1',$,$,$,$,$,$);\n"),
            "#1=IFCMAPCONVERSION(#2,#3,100000.,200000.,300000.,1.,0.,$);\n"
            "#2=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,$,*,$);\n"
            "#3=IFCPROJECTEDCRS('EPSG:1',$,$,$,$,$,$);\n");
}

TEST_F(ValueRoles, InAUnitOfTheMapCoordinatesStayAndTheScaleChanges) {
  const std::string rest =
      "#2=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,$,*,$);\n"
      "#3=IFCPROJECTEDCRS('EPSG:1',$,$,$,$,$,#901);\n";
  EXPECT_EQ(Converted("#1=IFCMAPCONVERSION(#2,#3,100.,200.,300.,1.,0.,2.);\n" + rest),
            "#1=IFCMAPCONVERSION(#2,#3,100.,200.,300.,1.,0.,2.E-03);\n" + rest);
  EXPECT_EQ(Converted("#1=IFCMAPCONVERSION(#2,#3,100.,200.,300.,1.,0.,$);\n" + rest),
            "#1=IFCMAPCONVERSION(#2,#3,100.,200.,300.,1.,0.,1.E-03);\n" + rest);
}

TEST_F(ValueRoles, AScaleThatNoMapHasTellsOfAUnitOfTheMap) {
  const std::string rest =
      "#2=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,$,*,$);\n"
      "#3=IFCPROJECTEDCRS('EPSG:1',$,$,$,$,$,$);\n";
  EXPECT_EQ(Converted("#1=IFCMAPCONVERSION(#2,#3,100.,200.,300.,1.,0.,1000.);\n" + rest),
            "#1=IFCMAPCONVERSION(#2,#3,100.,200.,300.,1.,0.,1.);\n" + rest);
  EXPECT_EQ(Converted("#1=IFCMAPCONVERSION(#2,#3,100.,200.,300.,1.,0.,0.9996);\n" + rest),
            "#1=IFCMAPCONVERSION(#2,#3,100000.,200000.,300000.,1.,0.,9.996E-01);\n" + rest);
}

TEST_F(ValueRoles, ARigidOperationStaysInTheUnitsOfItsReferenceSystem) {
  if (!IsBuilt(SchemaNamespace::IFC4X3_ADD2)) GTEST_SKIP() << "the release is not built";
  const std::string rest = "#2=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,$,*,$);\n";
  const std::string degrees = "#3=IFCGEOGRAPHICCRS('EPSG:1',$,$,$,#902,$);\n";
  EXPECT_EQ(Converted("#1=IFCRIGIDOPERATION(#2,#3,IFCPLANEANGLEMEASURE(1.),"
                      "IFCPLANEANGLEMEASURE(1.),3.);\n" +
                          rest + degrees,
                      "IFC4X3_ADD2"),
            "#1=IFCRIGIDOPERATION(#2,#3,IFCPLANEANGLEMEASURE(1.),IFCPLANEANGLEMEASURE(1.),"
            "3000.);\n" +
                rest + degrees);
  const std::string metres = "#3=IFCPROJECTEDCRS('EPSG:1',$,$,$,$,$,$);\n";
  EXPECT_EQ(Converted("#1=IFCRIGIDOPERATION(#2,#3,IFCLENGTHMEASURE(1.),IFCLENGTHMEASURE(1.),$);\n" +
                          rest + metres,
                      "IFC4X3_ADD2"),
            "#1=IFCRIGIDOPERATION(#2,#3,IFCLENGTHMEASURE(1000.),IFCLENGTHMEASURE(1000.),$);\n" +
                rest + metres);
}

TEST_F(ValueRoles, TheMapOfAnOlderReleaseStandsInPropertySets) {
  const std::string system =
      "#11=IFCPROPERTYSET('c',*,'ePSet_ProjectedCRS',$,(#12));\n"
      "#12=IFCPROPERTYSINGLEVALUE('MapUnit',$,IFCIDENTIFIER('METRE'),$);\n";
  const std::string east = "#2=IFCPROPERTYSINGLEVALUE('Eastings',$,IFCLENGTHMEASURE(5.),$);\n";
  EXPECT_EQ(Converted("#1=IFCPROPERTYSET('s',*,'ePSet_MapConversion',$,(#2,#3));\n" + east +
                          "#3=IFCPROPERTYSINGLEVALUE('Scale',$,IFCREAL(1.),$);\n" + system,
                      "IFC2X3"),
            "#1=IFCPROPERTYSET('s',*,'ePSet_MapConversion',$,(#2,#3));\n" + east +
                "#3=IFCPROPERTYSINGLEVALUE('Scale',$,IFCREAL(1.E-03),$);\n" + system);
  // Written when it was absent.
  const std::string lines = Converted(
      "#1=IFCPROPERTYSET('s',*,'ePSet_MapConversion',$,(#2));\n" + east + system, "IFC2X3");
  EXPECT_NE(lines.find("=IFCPROPERTYSINGLEVALUE('Scale',$,IFCREAL(1.E-03),$);\n"),
            std::string::npos);
  EXPECT_NE(lines.find(east), std::string::npos);
  // Without a unit of the map all is in that of the model.
  EXPECT_EQ(Converted("#1=IFCPROPERTYSET('s',*,'ePSet_MapConversion',$,(#2));\n" + east, "IFC2X3"),
            "#1=IFCPROPERTYSET('s',*,'ePSet_MapConversion',$,(#2));\n"
            "#2=IFCPROPERTYSINGLEVALUE('Eastings',$,IFCLENGTHMEASURE(5000.),$);\n");
}

}  // namespace

}  // namespace corvel::test
