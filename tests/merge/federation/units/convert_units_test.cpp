// What a run makes of models in other units, from the comparison to the report.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "merge/federation/units/converted_models.h"
#include "step/log/ifc_log.h"

namespace corvel::test {

namespace {

constexpr const char* kQuantityOfTwo = "#1=IFCQUANTITYLENGTH('l',$,$,2.,$);\n";

class ConvertedRun : public ConvertedModels {
 protected:
  // Converts all models but the first, and compares them with it as a run does. Gives how many of
  // them take part.
  int Run() {
    EXPECT_TRUE(ConvertUnitsOfRun(models_, RecordedProgress::Callback));
    return Check();
  }
  std::string LineOfNumber(std::size_t model, std::uint32_t number) {
    return LineOf(*At(*models_[model].document, number));
  }
  std::vector<WideString> Messages() {
    std::vector<WideString> messages;
    for (const Report& report : *world_.reports) messages.push_back(report.message);
    return messages;
  }
};

std::string AssignmentOf(const std::vector<std::string>& units) { return Units(units, 20); }

TEST_F(ConvertedRun, ModelsInOtherUnitsTakePartWithoutAnotherOption) {
  Add("a.ifc", AssignmentOf({kMetre}));
  Add("b.ifc", kQuantityOfTwo + AssignmentOf({kMillimetre}));
  Add("c.ifc", kQuantityOfTwo + UnitRecords::Feet() + "#20=IFCUNITASSIGNMENT((#901));\n");
  Add("d.ifc", kQuantityOfTwo);
  EXPECT_EQ(Run(), 4);
  EXPECT_TRUE(Messages().empty());
  EXPECT_EQ(LineOfNumber(1, 1), "#1=IFCQUANTITYLENGTH('l',$,$,2.E-03,$);\n");
  EXPECT_EQ(LineOfNumber(2, 1), "#1=IFCQUANTITYLENGTH('l',$,$,6.096E-01,$);\n");
  EXPECT_EQ(LineOfNumber(3, 1), kQuantityOfTwo);
}

TEST_F(ConvertedRun, TheUnitsOfTheFirstAreAssignedAndTheOldStayForThoseWhoReferToThem) {
  Add("a.ifc", UnitRecords::Feet() +
                   "#20=IFCUNITASSIGNMENT((#901,#21));\n"
                   "#21=IFCMONETARYUNIT('EUR');\n");
  IfcDocument& later = Add("b.ifc", "#1=IFCPROPERTYSINGLEVALUE('p',$,IFCLENGTHMEASURE(2.),#20);\n" +
                                        AssignmentOf({kMillimetre, "IFCMONETARYUNIT('USD')"}));
  EXPECT_EQ(Run(), 2);
  const std::string lines = LinesOf(*later.mainContainer);
  EXPECT_NE(lines.find("#1=IFCPROPERTYSINGLEVALUE('p',$,IFCLENGTHMEASURE(2.),#20);\n"
                       "#20=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);\n"),
            std::string::npos)
      << lines;
  const std::size_t foot = lines.find("=IFCCONVERSIONBASEDUNIT(");
  ASSERT_NE(foot, std::string::npos) << lines;
  const std::size_t number = lines.rfind('#', foot);
  EXPECT_NE(
      lines.find("#22=IFCUNITASSIGNMENT((" + lines.substr(number, foot - number) + ",#21));\n"),
      std::string::npos)
      << lines;
  EXPECT_NE(lines.find("=IFCMEASUREWITHUNIT(IFCLENGTHMEASURE(3.048E-01),#"), std::string::npos);
  EXPECT_NE(lines.find("=IFCDIMENSIONALEXPONENTS(1,0,0,0,0,0,0);\n"), std::string::npos);
  EXPECT_EQ(lines.find("EUR"), std::string::npos);
}

TEST_F(ConvertedRun, AModelWithoutUnitsIsInThoseOfTheSi) {
  Add("a.ifc", AssignmentOf({kMillimetre}));
  IfcDocument& later =
      Add("b.ifc", kQuantityOfTwo + std::string("#2=IFCPROJECT('0000000000000000000P02',"
                                                "$,$,$,$,$,$,$,$);\n"));
  EXPECT_EQ(Run(), 2);
  EXPECT_EQ(LineOfNumber(1, 1), "#1=IFCQUANTITYLENGTH('l',$,$,2000.,$);\n");
  EXPECT_NE(later.getIfcUnitAssignment(), nullptr);
  EXPECT_NE(LinesOf(*later.mainContainer).find(kMillimetre), std::string::npos);
}

TEST_F(ConvertedRun, EqualUnitsHaveNothingRewritten) {
  Add("a.ifc", AssignmentOf({kMetre}));
  IfcDocument& later =
      Add("b.ifc", kQuantityOfTwo +
                       std::string("#19=IFCCONVERSIONBASEDUNIT($,.LENGTHUNIT.,'METER',#20);\n"
                                   "#20=IFCMEASUREWITHUNIT(IFCLENGTHMEASURE(1.0000000005),#21);\n"
                                   "#21=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n"
                                   "#22=IFCUNITASSIGNMENT((#19));\n"));
  const std::string before = LinesOf(*later.mainContainer);
  EXPECT_EQ(Run(), 2);
  EXPECT_EQ(LinesOf(*later.mainContainer), before);
}

constexpr const char* kPush = "IFCCONTEXTDEPENDENTUNIT($,.FORCEUNIT.,'PUSH')";
constexpr const char* kForce = "#1=IFCPROPERTYSINGLEVALUE('f',$,IFCFORCEMEASURE(2.),$);\n";

TEST_F(ConvertedRun, AValueInAUnitThatCannotBeConvertedLeavesItsModelOut) {
  Add("a.ifc", AssignmentOf({kMetre, "IFCSIUNIT(*,.FORCEUNIT.,.KILO.,.NEWTON.)"}));
  Add("b.ifc", kForce + AssignmentOf({kMillimetre, kPush}));
  EXPECT_EQ(Run(), 1);
  EXPECT_EQ(Messages(), (std::vector<WideString>{
                            u"<not_all_projects_merge> \"a.ifc\"",
                            u"<due_to_invalid_units>:\n",
                            u"  FORCEUNIT(#21) - KILONEWTON\n",
                            u"<projects_that_will_not_be_merged>\n",
                            u"\n  b.ifc:\n    FORCEUNIT(#21) - PUSH\n",
                            u"",
                        }));
}

TEST_F(ConvertedRun, AUnitThatCannotBeConvertedDoesNoHarmWithoutAValueInIt) {
  Add("a.ifc", AssignmentOf({kMetre}));
  Add("b.ifc", kQuantityOfTwo + AssignmentOf({kMillimetre, kPush}));
  EXPECT_EQ(Run(), 2);
  EXPECT_EQ(LineOfNumber(1, 1), "#1=IFCQUANTITYLENGTH('l',$,$,2.E-03,$);\n");
}

TEST_F(ConvertedRun, TwoSuchUnitsOfOneNameAreEqual) {
  Add("a.ifc", AssignmentOf({kMetre, kPush}));
  Add("b.ifc", kForce + AssignmentOf({kMillimetre, kPush}));
  EXPECT_EQ(Run(), 2);
  EXPECT_EQ(LineOfNumber(1, 1), kForce);
}

TEST_F(ConvertedRun, ADerivedMeasureWithoutAUnitStaysAndIsCounted) {
  const std::string density = "#1=IFCPROPERTYSINGLEVALUE('d',$,IFCMASSDENSITYMEASURE(2.),$);\n";
  const std::string kilograms =
      "#901=IFCDERIVEDUNIT((#902,#903),.MASSDENSITYUNIT.,$);\n"
      "#902=IFCDERIVEDUNITELEMENT(#904,1);\n#903=IFCDERIVEDUNITELEMENT(#905,-3);\n"
      "#904=IFCSIUNIT(*,.MASSUNIT.,$,.GRAM.);\n"
      "#905=IFCSIUNIT(*,.LENGTHUNIT.,.CENTI.,.METRE.);\n#906=IFCUNITASSIGNMENT((#901));\n";
  EXPECT_EQ(Converted(kilograms,
                      "#901=IFCUNITASSIGNMENT((#902));\n#902=" + std::string(kMillimetre) + ";\n",
                      density),
            density);
  EXPECT_EQ(CountOf(result_.values.unknown, "MASSDENSITYUNIT"), 1u);
  // Grams in a cubic centimetre are a thousand kilograms in a cubic metre.
  EXPECT_EQ(Converted("", kilograms, density),
            "#1=IFCPROPERTYSINGLEVALUE('d',$,IFCMASSDENSITYMEASURE(2000.),$);\n");
}

TEST_F(ConvertedRun, OneThatOnlyTheFirstAssignsIsCountedWhereNothingElseDiffers) {
  const std::string density = "#1=IFCPROPERTYSINGLEVALUE('d',$,IFCMASSDENSITYMEASURE(2.),$);\n";
  EXPECT_EQ(Converted("#901=IFCDERIVEDUNIT((#902),.MASSDENSITYUNIT.,$);\n"
                      "#902=IFCDERIVEDUNITELEMENT(#903,1);\n"
                      "#903=IFCSIUNIT(*,.MASSUNIT.,$,.GRAM.);\n#904=IFCUNITASSIGNMENT((#901));\n",
                      "", density),
            density);
  EXPECT_FALSE(result_.differs);
  EXPECT_EQ(CountOf(result_.values.unknown, "MASSDENSITYUNIT"), 1u);
}

TEST_F(ConvertedRun, TemperaturesHaveAnOffsetAndTheirDifferencesDoNot) {
  const std::string kelvin =
      "#901=IFCSIUNIT(*,.THERMODYNAMICTEMPERATUREUNIT.,$,.KELVIN.);\n"
      "#902=IFCUNITASSIGNMENT((#901));\n";
  const std::string fahrenheit =
      "#901=IFCCONVERSIONBASEDUNITWITHOFFSET($,.THERMODYNAMICTEMPERATUREUNIT.,'FAHRENHEIT',#903,"
      "-459.67);\n#903=IFCMEASUREWITHUNIT(IFCRATIOMEASURE(1.8),#904);\n"
      "#904=IFCSIUNIT(*,.THERMODYNAMICTEMPERATUREUNIT.,$,.KELVIN.);\n"
      "#902=IFCUNITASSIGNMENT((#901));\n";
  EXPECT_EQ(Converted(kelvin, fahrenheit,
                      "#1=IFCSTRUCTURALLOADTEMPERATURE($,90.,$,$);\n"
                      "#2=IFCPROPERTYSINGLEVALUE('t',$,"
                      "IFCTHERMODYNAMICTEMPERATUREMEASURE(-459.67),$);\n"),
            "#1=IFCSTRUCTURALLOADTEMPERATURE($,50.,$,$);\n"
            "#2=IFCPROPERTYSINGLEVALUE('t',$,IFCTHERMODYNAMICTEMPERATUREMEASURE(0.),$);\n");
}

TEST_F(ConvertedRun, WhatWasCarriedAsItStoodStaysAndIsCounted) {
  Add("a.ifc", AssignmentOf({kMillimetre}));
  const QuietReading quiet;
  auto document =
      std::make_unique<IfcDocument>(false, RecordedReports::Reporter, RecordedProgress::Callback);
  document->ReadTolerantly();
  const WideString path = folder_.Write(
      "b.ifc", ModelFile("#1=IFCQUANTITYLENGTH('l',$,$,'2 m',$);\n"
                         "#2=IFCNEWQUANTITY(2.);\n#3=IFCQUANTITYLENGTH('l',$,$,2.,$);\n"
                         "#4=IFCUNITASSIGNMENT((#5));\n#5=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n"));
  ASSERT_NE(document->OpenFile(path, 1), 0);
  IfcDocument& later = *Take(std::move(document)).document;
  ConvertedModel result;
  Ticker ticker({.callback = RecordedProgress::Callback});
  ASSERT_TRUE(ConvertUnits(*models_[0].document, later, ticker, result));
  EXPECT_EQ(result.carried, 2u);
  EXPECT_EQ(LineOfNumber(1, 1), "#1=IFCQUANTITYLENGTH('l',$,$,'2 m',$);\n");
  EXPECT_EQ(LineOfNumber(1, 2), "#2=IFCNEWQUANTITY(2.);\n");
  EXPECT_EQ(LineOfNumber(1, 3), "#3=IFCQUANTITYLENGTH('l',$,$,2000.,$);\n");
}

TEST_F(ConvertedRun, AnotherSchemaIsNotConvertedAndToldAsEver) {
  Add("a.ifc", AssignmentOf({kMetre}));
  Add("b.ifc", "#1=IFCQUANTITYLENGTH('l',$,$,2.);\n" + AssignmentOf({kMillimetre}), "IFC2X3");
  EXPECT_EQ(Run(), 1);
  EXPECT_EQ(LineOfNumber(1, 1), "#1=IFCQUANTITYLENGTH('l',$,$,2.);\n");
}

TEST_F(ConvertedRun, TheLogTellsWhatWasMultipliedAndWhatStays) {
  Add("a.ifc", AssignmentOf({kMillimetre}));
  Add("b.ifc", kQuantityOfTwo +
                   std::string("#2=IFCPROPERTYSINGLEVALUE('t',$,IFCLABEL('2.5 m'),$);\n"
                               "#3=IFCPROPERTYSINGLEVALUE('d',$,IFCMASSDENSITYMEASURE(2.),$);\n"
                               "#4=IFCPROPERTYSINGLEVALUE('n',$,IFCLABEL('2nd floor 4'),$);\n") +
                   AssignmentOf({kMetre}));
  Add("c.ifc", kQuantityOfTwo + AssignmentOf({kMillimetre}));
  IfcLog& log = IfcLog::Instance();
  log.SetFlushEveryLine(false);
  log.Open(folder_.Path("log.ifc"));
  EXPECT_TRUE(ConvertUnitsOfRun(models_, RecordedProgress::Callback));
  log.Close();
  const std::string text = folder_.Read("log_IFC_LOG.txt");
  EXPECT_EQ(text.substr(text.find("Units converted")),
            "Units converted to those of the first: " + ToUtf8(folder_.Path("b.ifc")) +
                "\r\n\tLENGTHUNIT: 1 values times 1000.\r\n"
                "\tTexts that hold numbers stay: 1\r\n"
                "Units are those of the first: " +
                ToUtf8(folder_.Path("c.ifc")) + "\r\n");
}

TEST_F(ConvertedRun, ACancelEndsIt) {
  Add("a.ifc", AssignmentOf({kMetre}));
  Add("b.ifc", kQuantityOfTwo + AssignmentOf({kMillimetre}));
  world_.progress.Forget();
  world_.progress.CancelAt(0);
  EXPECT_FALSE(ConvertUnitsOfRun(models_, RecordedProgress::Callback));
}

}  // namespace

}  // namespace corvel::test
