// What a file is after it has been read and written: the form of values, and what order changes.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "support/read_model.h"

namespace corvel {
namespace {

using Model = test::ReadModel;
using test::ModelFile;
using test::ReadOptions;
using Lines = std::vector<std::string>;

class RoundTrip : public test::ReadTest {
 protected:
  // The line that record #1 becomes. References lead to records that are there.
  std::string Line(const std::string& record, const std::string& schema = "IFC4") {
    Model model("#1=" + record +
                    ";\n#2=IFCCARTESIANPOINT((0.));\n#3=IFCWALL('w');\n"
                    "#4=IFCGEOMETRICREPRESENTATIONCONTEXT($,$,3,$,$,$);",
                ReadOptions{.schema = schema});
    EXPECT_TRUE(model.IsRead()) << record;
    const std::string line = model.Line(1);
    EXPECT_EQ("#1=", line.substr(0, 3));
    return line.substr(3, line.size() - 4);
  }
  void ExpectUnchanged(const std::string& record, const std::string& schema = "IFC4") {
    EXPECT_EQ(record, Line(record, schema));
    EXPECT_EQ(Lines{}, Messages());
  }
};

// --- Attributes ----------------------------------------------------------------------------------

TEST_F(RoundTrip, AttributesOfEveryKindComeBack) {
  for (const char* const record :
       {"IFCPROPERTYSINGLEVALUE('n',$,IFCLABEL('x'),$)",
        "IFCPROPERTYSINGLEVALUE('n','d',IFCREAL(1.25E+00),$)",
        "IFCPROPERTYSINGLEVALUE('n',$,IFCBOOLEAN(.T.),$)",
        "IFCPROPERTYLISTVALUE('n',$,(IFCREAL(1.),IFCREAL(2.),IFCLABEL('')),$)",
        "IFCPOLYLINE((#2,#2))", "IFCLOCALPLACEMENT($,*)",
        "IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.)",
        "IFCTRIANGULATEDFACESET(*,((0.,1.),()),.T.,((1,2,3),(4,5,6)),$)",
        "IFCCARTESIANPOINTLIST2D(((0.,1.5E+00),(),(1.,2.)))",
        "IFCTRIMMEDCURVE(*,(#2,IFCPARAMETERVALUE(5.E-01)),(IFCPARAMETERVALUE(1.)),.T.,.PARAMETER.)",
        "IFCORIENTEDEDGE(*,*,*,.T.)"}) {
    ExpectUnchanged(record);
  }
}

TEST_F(RoundTrip, NumbersTakeTheFormOfTheWriter) {
  EXPECT_EQ("IFCCARTESIANPOINT((1.5E+00,3.,-2.5E-05))",
            Line("IFCCARTESIANPOINT((1.50000E+00,3,-0.000025))"));
  EXPECT_EQ("IFCCARTESIANPOINT((3.E+09,0.,1.E+30))",
            Line("IFCCARTESIANPOINT((3000000000,-0.,1.E30))"));
}

TEST_F(RoundTrip, TextsAreDecodedAndEncodedAnew) {
  EXPECT_EQ("IFCPERSON('\\X2\\00E4\\X0\\\\X2\\00F6\\X0\\',$,$,$,$,$,$,$)",
            Line("IFCPERSON('\\X2\\00E400F6\\X0\\',$,$,$,$,$,$,$)"));
  EXPECT_EQ("IFCPERSON('\\X2\\00E4\\X0\\',$,$,$,$,$,$,$)",
            Line("IFCPERSON('\\S\\d',$,$,$,$,$,$,$)"));
  ExpectUnchanged("IFCPERSON('it''s C:\\\\x \xC3\xA4',$,$,$,$,$,$,$)");
}

TEST_F(RoundTrip, AShortRecordIsWrittenInFull) {
  EXPECT_EQ("IFCWALL('g',$,'n',$,$,$,$,$,$)", Line("IFCWALL('g',$,'n',$,$,$,$,$)"));
  EXPECT_EQ("IFCWALL('g',$,$,$,$,$,$,$,$)", Line("IFCWALL('g')"));
  EXPECT_EQ("IFCWALL('',$,$,$,$,$,$,$,$)", Line("IFCWALL()"));
  EXPECT_EQ(Lines{}, Messages());
}

TEST_F(RoundTrip, AMandatoryReferenceThatIsAbsentIsAStar) {
  EXPECT_EQ("IFCLOCALPLACEMENT($,*)", Line("IFCLOCALPLACEMENT($,$)"));
  EXPECT_EQ("IFCLOCALPLACEMENT($,*)", Line("IFCLOCALPLACEMENT(*,*)"));
}

TEST_F(RoundTrip, AStarSurvivesInTheseKindsOfAttributesOnly) {
  EXPECT_EQ(
      "IFCGEOMETRICREPRESENTATIONSUBCONTEXT('Body','Model',0,$,*,$,#4,$,.MODEL_VIEW.,$)",
      Line("IFCGEOMETRICREPRESENTATIONSUBCONTEXT('Body','Model',*,*,*,*,#4,$,.MODEL_VIEW.,$)"));
}

TEST_F(RoundTrip, AMemberOfAClassThatTheListDoesNotTakeIsLost) {
  EXPECT_EQ("IFCRELAGGREGATES('g',$,$,$,#3,(#3))", Line("IFCRELAGGREGATES('g',$,$,$,#3,(#2,#3))"));
  EXPECT_EQ(Lines{}, Messages());
}

TEST_F(RoundTrip, AReferenceOfAClassThatASelectDoesNotTakeIsLost) {
  EXPECT_EQ("IFCPROPERTYSINGLEVALUE('n',$,$,$)", Line("IFCPROPERTYSINGLEVALUE('n',$,#3,$)"));
  EXPECT_EQ("IFCPROPERTYBOUNDEDVALUE('n',$,$,$,$,IFCREAL(1.))",
            Line("IFCPROPERTYBOUNDEDVALUE('n',$,#2,#3,#3,IFCREAL(1.))"));
  EXPECT_EQ("IFCMEASUREWITHUNIT(*,*)", Line("IFCMEASUREWITHUNIT(#3,#3)")) << "mandatory ones";
  EXPECT_EQ(Lines{}, Messages());
}

TEST_F(RoundTrip, AnExtraBracketAroundASingleValueIsNotWrittenBack) {
  EXPECT_EQ("IFCPROPERTYSINGLEVALUE('n',$,IFCREAL(1.),$)",
            Line("IFCPROPERTYSINGLEVALUE('n',$,(IFCREAL(1.)),$)"));
}

TEST_F(RoundTrip, CountsLoseWhatSixDigitsDoNotHold) {
  EXPECT_EQ("IFCPROPERTYSINGLEVALUE('n',$,IFCCOUNTMEASURE(1.23457e+06),$)",
            Line("IFCPROPERTYSINGLEVALUE('n',$,IFCCOUNTMEASURE(1234567.),$)"));
  EXPECT_EQ("IFCQUANTITYCOUNT('n',$,$,1e+06,$)", Line("IFCQUANTITYCOUNT('n',$,$,1000000.,$)"));
}

TEST_F(RoundTrip, AnUnknownNameInAValueIsReportedAndTheRecordGoesOn) {
  EXPECT_EQ("IFCPROPERTYBOUNDEDVALUE('n',$,$,IFCREAL(2.),$,$)",
            Line("IFCPROPERTYBOUNDEDVALUE('n',$,IFCVALUE('x',(1)),IFCREAL(2.),$,$)"));
  EXPECT_EQ((std::vector<test::Report>{{"unknown_entity_name_in_schema", u"IFCVALUE", 0}}),
            *reports_);
}

TEST_F(RoundTrip, AnUnknownEnumerationValueBecomesTheFallbackWhenErrorsAreIgnored) {
  Model model("#1=IFCWALL('g',$,$,$,$,$,$,$,.X.);#2=IFCWALL('h',$,$,$,$,$,$,$,.Y.);",
              ReadOptions{.ignoreEnumErrors = true});
  EXPECT_TRUE(model.IsRead());
  EXPECT_EQ("#1=IFCWALL('g',$,$,$,$,$,$,$,.NOTDEFINED.);", model.Line(1));
  EXPECT_EQ((std::vector<test::Report>{{"", u"Enume IfcWallTypeEnum does not contain: \"X\"", 2},
                                       {"", u"Enume IfcWallTypeEnum does not contain: \"Y\"", 2}}),
            *reports_);
  EXPECT_TRUE(platform_.boxes.empty());
}

TEST_F(RoundTrip, DoorValuesThatAreOnlyReadAreLost) {
  EXPECT_EQ("IFCDOORSTYLE('g',*,$,$,$,$,$,$,$,.NOTDEFINED.,.F.,.F.)",
            Line("IFCDOORSTYLE('g',$,$,$,$,$,$,$,.DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_LEFT.,"
                 ".NOTDEFINED.,.F.,.F.)",
                 "IFC2X3"));
}

TEST_F(RoundTrip, ABareIntegerForDimensionsIsAStar) {
  EXPECT_EQ("IFCCONVERSIONBASEDUNIT(*,.LENGTHUNIT.,'inch',*)",
            Line("IFCCONVERSIONBASEDUNIT(5,.LENGTHUNIT.,'inch',$)"));
}

// --- Fixpoints and order -------------------------------------------------------------------------

Lines RecordsOf(const std::string& file) {
  Lines records;
  std::istringstream stream(file.substr(file.find("DATA;\n") + 6));
  for (std::string line; std::getline(stream, line) && line != "ENDSEC;";) {
    if (!line.empty()) records.push_back(line);
  }
  return records;
}

// What stands before the attributes of each, sorted: "#1=IFCWALL".
Lines HeadsOf(const Lines& records) {
  Lines heads;
  for (const std::string& record : records) heads.push_back(record.substr(0, record.find('(')));
  std::sort(heads.begin(), heads.end());
  return heads;
}

std::string BytesOf(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::stringstream bytes;
  bytes << stream.rdbuf();
  return bytes.str();
}

// The same file with its records in another order.
std::string WithRecords(const std::string& file, const Lines& records) {
  std::string reordered = file.substr(0, file.find("DATA;\n") + 6);
  for (const std::string& record : records) reordered += record + "\n";
  return reordered + "ENDSEC;\nEND-ISO-10303-21;\n";
}

class RecordOrder : public RoundTrip {
 protected:
  std::string Resaved(const std::string& bytes) {
    IFC::MainContainer::ResetUniqueMarker();
    Model model = Model::OfFile(bytes);
    EXPECT_TRUE(model.IsRead());
    return model.Saved();
  }

  // The output is the same whatever the order of the input.
  void ExpectNoOrderMatters(const std::string& file) {
    const std::string expected = Resaved(file);
    EXPECT_TRUE(expected == Resaved(expected)) << "what was written reads as the same";
    Lines records = RecordsOf(file);
    std::reverse(records.begin(), records.end());
    EXPECT_TRUE(expected == Resaved(WithRecords(file, records))) << "reversed";
    std::mt19937 random(7);
    for (int i = 0; i < 3; ++i) {
      std::shuffle(records.begin(), records.end(), random);
      EXPECT_TRUE(expected == Resaved(WithRecords(file, records))) << "shuffled, " << i;
    }
    EXPECT_EQ(Lines{}, Messages());
  }
};

TEST_F(RecordOrder, OfASmallModelDoesNotMatter) {
  ExpectNoOrderMatters(ModelFile(
      "#1=IFCCARTESIANPOINT((0.,0.,0.));\n#2=IFCAXIS2PLACEMENT3D(#1,$,$);\n"
      "#3=IFCLOCALPLACEMENT($,#2);\n#4=IFCLOCALPLACEMENT(#3,#2);\n#5=IFCPOLYLINE((#1,#1));\n"
      "#6=IFCWALL('g',$,'n',$,$,#4,$,$,$);\n#7=IFCWALL('h',$,'n',$,$,#3,$,$,.SHEAR.);\n"
      "#8=IFCRELAGGREGATES('r',$,$,$,#6,(#7,#6));\n#9=IFCPROPERTYSET('p',$,$,$,(#10,#11));\n"
      "#10=IFCPROPERTYSINGLEVALUE('a',$,IFCLABEL('x'),$);\n"
      "#11=IFCPROPERTYLISTVALUE('b',$,(IFCREAL(1.),IFCLABEL('y')),#12);\n"
      "#12=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n"
      "#13=IFCRELDEFINESBYPROPERTIES('d',$,$,$,(#6,#7),#9);\n#14=IFCUNITASSIGNMENT((#12));\n"
      "#15=IFCPROJECT('q',$,$,$,$,$,$,$,#14);\n"
      "#16=IFCRELDEFINESBYPROPERTIES('e',$,$,$,(#6),IFCPROPERTYSETDEFINITIONSET((#9,#9)));"));
}

TEST_F(RecordOrder, OfOurSamplesDoesNotMatter) {
  int models = 0;
  for (const auto& entry : std::filesystem::directory_iterator(CORVEL_SAMPLES_DIR)) {
    const std::string name = entry.path().filename().string();
    // Both of these releases are part of every build.
    if (!name.ends_with("_IFC2X3.ifc") && !name.ends_with("_IFC4.ifc")) continue;
    SCOPED_TRACE(name);
    ExpectNoOrderMatters(BytesOf(entry.path()));
    ++models;
  }
  EXPECT_GE(models, 2);
}

TEST_F(RecordOrder, EveryRecordOfASampleIsWritten) {
  for (const char* const name : {"house_IFC4.ifc", "house_IFC2X3.ifc"}) {
    const std::string bytes = BytesOf(std::filesystem::path(CORVEL_SAMPLES_DIR) / name);
    const Lines before = HeadsOf(RecordsOf(bytes));
    ASSERT_GT(before.size(), 100u);
    EXPECT_EQ(before, HeadsOf(RecordsOf(Resaved(bytes)))) << name;
  }
}

}  // namespace
}  // namespace corvel
