// Models that hold what their release does not take: read, and written as they stood.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "step/carried/tolerant_model.h"
#include "support/read_model.h"

namespace corvel {
namespace {

// `#9` is a wall; records refer to it and, in the other order, to what comes later.
constexpr const char* kWall = "#9=IFCWALL('w',$,$,$,$,$,$,$,$);\n";

class TolerantReading : public test::ReadTest {
 protected:
  // The records are written as they stand, and nothing is shown to anybody.
  void ExpectKept(std::string_view records, std::string schema = "IFC4") {
    ExpectWritten(records, records, std::move(schema));
  }
  void ExpectWritten(std::string_view written, std::string_view records,
                     std::string schema = "IFC4") {
    IFC::MainContainer::ResetUniqueMarker();
    test::ReadModel model = test::ReadTolerantly(records, schema);
    ASSERT_TRUE(model.IsRead()) << records;
    const std::string once = model.Lines();
    EXPECT_EQ(written, once);
    for (const test::Report& report : *reports_)
      EXPECT_NE(kReportShow, report.mode) << Narrow(report.message);
    IFC::MainContainer::ResetUniqueMarker();
    EXPECT_EQ(once, test::ReadTolerantly(once, std::move(schema)).Lines()) << "a second time";
  }
};

// --- Values that their attribute does not take ---------------------------------------------------

TEST_F(TolerantReading, AnUnknownEnumerationValueIsKept) {
  ExpectKept("#1=IFCWALL('g',$,'W',$,$,$,$,$,.CURTAIN.);\n");
  ExpectKept("#1=IFCSIUNIT(*,.WARPUNIT.,.MILLI.,.METRE.);\n");
  ExpectKept("#1=IFCSIUNIT(*,.LENGTHUNIT.,.LITTLE.,.FOOT.);\n");
}

TEST_F(TolerantReading, AnUnknownBooleanIsKept) {
  ExpectKept(
      "#2=IFCPOLYLINE(());\n"
      "#3=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.U.,#2);\n");
}

TEST_F(TolerantReading, AnAbsentValueOfAMandatoryEnumerationIsKept) {
  ExpectKept("#1=IFCSIUNIT(*,$,$,$);\n");
  ExpectKept("#1=IFCSIUNIT(*,*,$,.METRE.);\n");
}

TEST_F(TolerantReading, AValueOfAnotherKindIsKept) {
  ExpectKept("#1=IFCWALL('g',$,.NAME.,5,1.5000,$,$,$,'NOTDEFINED');\n");
  ExpectKept("#1=IFCSIUNIT(*,'LENGTHUNIT',3,METRE);\n");
  ExpectKept("#1=IFCCARTESIANPOINT('here');\n");
  ExpectKept("#1=IFCCARTESIANPOINT((1.,'2',3.));\n");
  ExpectKept("#1=IFCCARTESIANPOINT(1.);\n");
  ExpectKept("#1=IFCSPHERE(*,'five');\n");
  ExpectKept("#1=IFCSPHERE(*,.T.);\n");
}

TEST_F(TolerantReading, ATextThatItsAttributeCannotHoldWholeIsKept) {
  ExpectKept("#1=IFCWALL('g',$,'a\\X\\00b',$,$,$,$,$,$);\n");
  ExpectKept("#1=IFCWALL('\\X2\\0416\\X0\\',$,'W',$,$,$,$,$,$);\n");
}

TEST_F(TolerantReading, ATypedValueInThePlaceOfATextIsKept) {
  ExpectKept("#1=IFCWALL('g',$,IFCLABEL('x'),IFCTEXT('y'),$,$,$,$,$);\n");
}

TEST_F(TolerantReading, ANumberThatIntegersDoNotHoldIsKept) {
  ExpectKept("#1=IFCGEOMETRICREPRESENTATIONCONTEXT($,$,2.5,$,*,$);\n");
  ExpectKept("#1=IFCGEOMETRICREPRESENTATIONCONTEXT($,$,99999999999,$,*,$);\n");
  ExpectWritten("#1=IFCGEOMETRICREPRESENTATIONCONTEXT($,$,3,$,*,$);\n",
                "#1=IFCGEOMETRICREPRESENTATIONCONTEXT($,$,3.,$,*,$);\n");
  ExpectKept("#1=IFCSPHERE(*,NAN);\n");
  ExpectKept("#1=IFCCARTESIANTRANSFORMATIONOPERATOR3D($,$,*,IFCFOO(1.,#1),$);\n");
}

TEST_F(TolerantReading, WhatIsNoReferenceIsKeptInThePlaceOfOne) {
  ExpectKept("#1=IFCWALL('g','me',$,$,$,.HERE.,3.5,$,$);\n");
  ExpectKept("#1=IFCWALL('g',$,$,$,$,7,(1,2),$,$);\n");
  ExpectKept("#1=IFCPROPERTYSINGLEVALUE('a',$,2.5,$);\n");
  ExpectKept("#1=IFCPROPERTYSINGLEVALUE('a',$,IFCSTRANGEMEASURE(2.50),$);\n");
  ExpectKept("#1=IFCPROPERTYSINGLEVALUE('a',$,.T.,$);\n");
  ExpectKept("#1=IFCPROPERTYSINGLEVALUE('a',$,IFCLABEL('a','b'),$);\n");
}

TEST_F(TolerantReading, AMisfitInsideAListKeepsTheWholeList) {
  ExpectKept("#1=IFCRELAGGREGATES('g',$,$,$,#9,(#9,'x',IFCLABEL('y'),( #9 )));\n" +
             std::string(kWall));
  ExpectKept("#1=IFCCARTESIANPOINTLIST3D(((1.,2.,3.),(4.,$,'x'),5.));\n");
}

TEST_F(TolerantReading, SeveralMisfitsOfARecordAreKept) {
  ExpectKept("#1=IFCSIUNIT(.STAR.,.WARPUNIT.,#9,'METRE');\n" + std::string(kWall));
}

TEST_F(TolerantReading, AnEmptyArgumentIsKept) { ExpectKept("#1=IFCWALL('g',,'W',$,$,$,$,,$);\n"); }

// --- References ----------------------------------------------------------------------------------

TEST_F(TolerantReading, AReferenceToAClassThatIsNotAdmittedIsKept) {
  ExpectKept(
      "#1=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n"
      "#2=IFCWALL('g',#1,$,$,$,#1,#1,$,$);\n"
      "#3=IFCRELAGGREGATES('g',$,$,$,#1,(#1,#2));\n");
  ExpectKept(
      "#1=IFCRELAGGREGATES('g',$,$,$,#3,(#2,#3));\n"
      "#2=IFCWALL('g',#3,$,$,$,#3,#3,$,$);\n"
      "#3=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n");
}

TEST_F(TolerantReading, AReferenceToNoRecordIsKept) {
  ExpectKept(
      "#1=IFCWALL('g',#77,$,$,$,#78,$,$,$);\n"
      "#2=IFCRELAGGREGATES('g',$,$,$,#79,(#1,#80,#80));\n");
}

TEST_F(TolerantReading, ReferencesInMisfitsFollowTheirObjects) {
  test::ReadModel model = test::ReadTolerantly(
      "#1=IFCWALL('g',$,(#2,#3),$,$,$,$,$,.X.);\n"
      "#2=IFCSPHERE(*,1.);\n#3=IFCNEW(#2,(#1,#4),#4);\n");
  ASSERT_TRUE(model.IsRead());
  const auto renumber = [&](std::uint32_t from, std::uint32_t to) {
    IFC::IfcEntity* const entity = model[from];
    entity->marker = to;
  };
  renumber(2, 12);
  renumber(3, 13);
  EXPECT_EQ("#1=IFCWALL('g',$,(#12,#13),$,$,$,$,$,.X.);", model.Line(1));
  EXPECT_EQ("#13=IFCNEW(#12,(#1,#4),#4);", model.Line(3));
}

// --- Classes that the release lacks --------------------------------------------------------------

TEST_F(TolerantReading, ARecordOfAnUnknownClassIsKeptByteForByte) {
  ExpectKept(
      "#1=IFCNEWTHING('g',1.000,(#2,( #1 , $)), IFCLABEL('#2'),.X.,#2);\n"
      "#2=IFC_OTHER_THING();\n#3=IfcMixed(*,,$ /* no */);\n");
}

TEST_F(TolerantReading, ObjectsReferToRecordsOfUnknownClasses) {
  ExpectKept(
      "#1=IFCWALL('g',#2,$,$,$,#2,$,$,$);\n#2=IFCNEW(#1);\n"
      "#3=IFCRELAGGREGATES('g',$,$,$,#1,(#2,#1));\n");
}

TEST_F(TolerantReading, ARecordOfAnotherReleaseIsKeptByteForByte) {
  ExpectKept(
      "#1=IFCWALLSTANDARDCASE('g',*,'W',$,$,$,$,$);\n"
      "#2=IFCAXIS2PLACEMENTLINEAR(#3, $ ,$);\n#3=IFCCARTESIANPOINT((1.,2.));\n",
      "IFC2X3");
  // A class of IFC4 alone.
  ExpectKept(
      "#1=IFCSHADINGDEVICE('g', $,'W',$,$,$,$,$,.JALOUSIE.);\n"
      "#2=IFCBSPLINESURFACEWITHKNOTS(01,2,((#3)),.UNSPECIFIED.,.F.,.F.,.U.,(1),(2),"
      "(1.000,2.E1),(3.5),.UNSPECIFIED.);\n#3=IFCCARTESIANPOINT((1.,2.));\n",
      "IFC2X3");
}

// --- Another number of arguments -----------------------------------------------------------------

TEST_F(TolerantReading, ARecordWithFewerArgumentsKeepsTheirNumber) {
  ExpectKept(
      "#1=IFCWALL('g',$,'W',$,$,$,$,$);\n#2=IFCSIUNIT(*,.LENGTHUNIT.);\n"
      "#3=IFCPROJECT('p');\n");
}

TEST_F(TolerantReading, ARecordWithoutBracketsGetsThem) {
  test::ReadModel model = test::ReadTolerantly("#1=IFCPERSON;\n#2=IFCUNITASSIGNMENT;\n");
  ASSERT_TRUE(model.IsRead());
  EXPECT_EQ("#1=IFCPERSON();\n#2=IFCUNITASSIGNMENT();\n", model.Lines());
}

TEST_F(TolerantReading, ARecordWithMoreArgumentsKeepsThem) {
  ExpectKept("#1=IFCWALL('g',$,'W',$,$,$,$,$,$,'more',(#1, 2.50));\n");
}

TEST_F(TolerantReading, ArgumentsThatFitAnotherReleaseAreReadByIt) {
  ExpectKept("#1=IFCWALL('g',$,'W',$,$,$,$,.NOTDEFINED.);\n");
  // As IFC2X3 has it: a text in the place of which IFC4 has an enumeration is no misfit there.
  ExpectKept("#1=IFCDOOR('g',$,'D',$,$,$,$,$,1.250,2.);\n");
}

// --- Nothing to carry ----------------------------------------------------------------------------

TEST_F(TolerantReading, WhatFitsCarriesNothing) {
  test::ReadModel model = test::ReadTolerantly(
      "#1=IFCWALL('g',#2,'W',$,$,$,$,$,.SOLIDWALL.);\n#2=IFCOWNERHISTORY($,$,$,.ADDED.,$,$,$,5);\n"
      "#3=IFCRELAGGREGATES('g',#2,$,$,#1,(#1,$));\n");
  ASSERT_TRUE(model.IsRead());
  for (const std::uint32_t number : {1u, 2u, 3u}) EXPECT_FALSE(model[number]->carries) << number;
}

}  // namespace
}  // namespace corvel
