#include "host/check/model_check.h"

#include <gtest/gtest.h>

#include <set>

#include "host/check/checked_text.h"
#include "schema/registry.h"

namespace corvel::host {

namespace {

// What breaks a rule, and what is like it and does not.
struct RuleCase {
  RuleId rule;
  std::string broken;  // a whole file, or records behind the good ones
  std::string good;
};

std::string FileOf(const std::string& records) {
  const bool isWhole = records.starts_with("ISO");
  return isWhole ? records : test::ModelFile(kGoodRecords + records);
}

std::string WithoutProject(const std::string& more) {
  return test::ModelFile(kGoodRecords.substr(kGoodRecords.find("#2=")) + more);
}

std::string WithProject(const std::string& project, const std::string& more = {}) {
  return test::ModelFile(project + kGoodRecords.substr(kGoodRecords.find("#2=")) + more);
}

std::string Replaced(std::string text, std::string_view from, std::string_view to) {
  const std::size_t at = text.find(from);
  return at == std::string::npos ? std::string("not there: ").append(from)
                                 : text.replace(at, from.size(), to);
}

std::string Wall(const std::string& number, const std::string& guid) {
  return "#" + number + "=IFCWALL('00000000000000000000" + guid + "',$,$,$,$,$,$,$,$);\n";
}

std::string Contained(const std::string& number, const std::string& guid) {
  return "#" + number + "=IFCRELCONTAINEDINSPATIALSTRUCTURE('00000000000000000000" + guid +
         "',$,$,$,(#20),#11);\n";
}

const std::string kMaterials =
    Wall("20", "20") +
    "#21=IFCMATERIAL('a',$,$);\n#22=IFCMATERIAL('b',$,$);\n"
    "#23=IFCRELASSOCIATESMATERIAL('0000000000000000000023',$,$,$,(#20),#21);\n";

const std::vector<RuleCase>& RuleCases() {
  static const std::string good = test::ModelFile(kGoodRecords);
  static const std::vector<RuleCase> cases = {
      {RuleId::kHeader, Replaced(good, "FILE_NAME ('n','t',('a'),('o'),'p','s','z');", ""), good},
      {RuleId::kCutShort, Replaced(good, "ENDSEC;\nEND-ISO-10303-21;\n", ""), good},
      {RuleId::kSkipped, "hello\n#20=IFCMATERIAL('a',$,$);", "#20=IFCMATERIAL('a',$,$);"},
      {RuleId::kSection, Replaced(good, "END-ISO", "SIGNATURE;\nhello;\nENDSEC;\nEND-ISO"), good},
      {RuleId::kString, "#20=IFCMATERIAL('a,$,$);\n#21=IFCMATERIAL('a',$,$);\n", ""},
      {RuleId::kEnumeration, "#20=IFCSIUNIT(*,.MASSUNIT,$,.GRAM.);",
       "#20=IFCSIUNIT(*,.MASSUNIT.,$,.GRAM.);"},
      {RuleId::kBracket, "#20=IFCDIRECTION((0.,1.);", "#20=IFCDIRECTION((0.,1.));"},
      {RuleId::kComment, "#20=IFCDIRECTION((0.,/* x\n1.));\n#21=IFCDIRECTION((0.,1.));",
       "#20=IFCDIRECTION((0.,/* x */\n1.));\n#21=IFCDIRECTION((0.,1.));"},
      {RuleId::kSemicolon, "#20=IFCMATERIAL('a',$,$)\n#21=IFCMATERIAL('b',$,$);",
       "#20=IFCMATERIAL('a',$,$);\n#21=IFCMATERIAL('b',$,$);"},
      {RuleId::kStrayBytes, "#20=IFCDIRECTION((0.,1.)) !;", "#20=IFCDIRECTION((0.,1.)) ;"},
      {RuleId::kEndInRecord,
       Replaced(good, "ENDSEC;\nEND-ISO-10303-21;\n", "#20=IFCMATERIAL('a',$,"), good},
      {RuleId::kHiddenRecords, "/*\n#20=IFCMATERIAL('a',$,$);\n*/", "/* #20=IFCMATERIAL: gone */"},
      {RuleId::kSchema, test::ModelFile(kGoodRecords, "IFC4_TOMORROW"), good},
      {RuleId::kUnknownClass, "#20=IFCSPACESHIP('a');", "#20=IFCMATERIAL('a',$,$);"},
      {RuleId::kComplexInstance, "#20=(IFCA(1)IFCB(2));", ""},
      {RuleId::kNoClass, "#20=;", ""},
      {RuleId::kArgumentCount, "#20=IFCMATERIAL('a',$,$,$);", "#20=IFCMATERIAL('a',$,$);"},
      {RuleId::kDoubledNumber, "#20=IFCMATERIAL('a',$,$);#20=IFCMATERIAL('b',$,$);",
       "#20=IFCMATERIAL('a',$,$);#21=IFCMATERIAL('b',$,$);"},
      {RuleId::kNoNumber, "=IFCMATERIAL('a',$,$);", "#20=IFCMATERIAL('a',$,$);"},
      {RuleId::kUnknownValue, "#20=IFCSIUNIT(*,.MASSUNIT.,$,.STONE.);",
       "#20=IFCSIUNIT(*,.MASSUNIT.,$,.GRAM.);"},
      {RuleId::kWrongValue, "#20=IFCDIRECTION('up');", "#20=IFCDIRECTION((0.,1.));"},
      {RuleId::kLargeInteger, "#20=IFCPROPERTYSINGLEVALUE('a',$,IFCINTEGER(-9876543210),$);",
       "#20=IFCPROPERTYSINGLEVALUE('a',$,IFCINTEGER(-987654321),$);"},
      {RuleId::kMissingValue, "#20=IFCLOCALPLACEMENT(#10,$);", "#20=IFCLOCALPLACEMENT($,#6);"},
      {RuleId::kWrongReference, "#20=IFCLOCALPLACEMENT(#10,#3);", "#20=IFCLOCALPLACEMENT(#10,#6);"},
      {RuleId::kDanglingReference, "#20=IFCLOCALPLACEMENT(#99,#6);",
       "#20=IFCLOCALPLACEMENT(#10,#6);"},
      {RuleId::kFewMembers, "#20=IFCCARTESIANPOINT(());", "#20=IFCCARTESIANPOINT((1.));"},
      {RuleId::kManyMembers, "#20=IFCCARTESIANPOINT((1.,2.,3.,4.));",
       "#20=IFCCARTESIANPOINT((1.,2.,3.));"},
      {RuleId::kDoubledMember,
       Wall("20", "20") + "#21=IFCRELAGGREGATES('0000000000000000000021',$,$,$,#11,(#20,#20));",
       Wall("20", "20") + "#21=IFCRELAGGREGATES('0000000000000000000021',$,$,$,#11,(#20));"},
      {RuleId::kFewRelations, "#20=IFCOPENINGELEMENT('0000000000000000000020',$,$,$,$,$,$,$,$);",
       "#20=IFCOPENINGELEMENT('0000000000000000000020',$,$,$,$,$,$,$,$);" + Wall("21", "21") +
           "#22=IFCRELVOIDSELEMENT('0000000000000000000022',$,$,$,#21,#20);"},
      {RuleId::kManyRelations, Wall("20", "20") + Contained("21", "21") + Contained("22", "22"),
       Wall("20", "20") + Contained("21", "21")},
      {RuleId::kSeveralAnswers,
       kMaterials + "#24=IFCRELASSOCIATESMATERIAL('0000000000000000000024',$,$,$,(#20),#22);",
       kMaterials},
      {RuleId::kChangedReal, "#20=IFCDIRECTION((0.1234567890123456,1.));",
       "#20=IFCDIRECTION((0.123456789012345,1.));"},
      {RuleId::kChangedNumber, "#20=IFCQUANTITYCOUNT('a',$,$,1234567,$);",
       "#20=IFCQUANTITYCOUNT('a',$,$,123456,$);"},
      {RuleId::kMalformedGuid, "#20=IFCWALL('wall',$,$,$,$,$,$,$,$);", Wall("20", "20")},
      {RuleId::kDoubledGuid, Wall("20", "20") + Wall("21", "20"),
       Wall("20", "20") + Wall("21", "21")},
      {RuleId::kNoProject, WithoutProject(""), good},
      {RuleId::kSeveralProjects, "#20=IFCPROJECT('0000000000000000000020',$,'Q',$,$,$,$,(#5),#2);",
       good},
      {RuleId::kNoUnits,
       WithProject("#1=IFCPROJECT('0000000000000000000001',$,'P',$,$,$,$,(#5),$);\n"), good},
      {RuleId::kUnlistedUnits, "#20=IFCUNITASSIGNMENT((#3));", good},
      {RuleId::kNoContext,
       WithProject("#1=IFCPROJECT('0000000000000000000001',$,'P',$,$,$,$,$,#2);\n",
                   "#20=IFCSHAPEREPRESENTATION(#5,$,$,(#6));"),
       "#20=IFCSHAPEREPRESENTATION(#5,$,$,(#6));"},
      {RuleId::kUnlistedContext, "#20=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Plan',2,$,#6,$);",
       "#20=IFCGEOMETRICREPRESENTATIONSUBCONTEXT('Body','Model',*,*,*,*,#5,$,.MODEL_VIEW.,$)"
       ";"},
      {RuleId::kPlacementCircle, "#20=IFCLOCALPLACEMENT(#21,#6);#21=IFCLOCALPLACEMENT(#20,#6);",
       "#20=IFCLOCALPLACEMENT(#21,#6);#21=IFCLOCALPLACEMENT(#10,#6);"},
  };
  return cases;
}

bool IsAboutSeveralFiles(RuleId rule) { return rule >= RuleId::kOtherRelease; }

// Its model is of a release that the builds of developers leave out.
bool IsOfAnOldRelease(RuleId rule) { return rule == RuleId::kAddedText; }

bool Breaks(const CheckedModel& model, RuleId rule) {
  return std::any_of(model.findings.begin(), model.findings.end(),
                     [rule](const Finding& finding) { return finding.rule == rule; });
}

}  // namespace

TEST(ModelCheck, NothingIsSaidAgainstAGoodModel) {
  const CheckedModel model = CheckRecords(kGoodRecords);
  EXPECT_EQ(std::vector<RuleId>{}, RulesIn(model.findings));
  ASSERT_TRUE(model.facts);
  EXPECT_EQ(1u, model.facts->spatial.sites.size());
}

TEST(ModelCheck, EachRuleIsBrokenByAModelAndKeptByAnother) {
  std::set<RuleId> tried;
  for (const RuleCase& one : RuleCases()) {
    SCOPED_TRACE(RuleOf(one.rule).name);
    tried.insert(one.rule);
    EXPECT_TRUE(Breaks(CheckFile(FileOf(one.broken)), one.rule)) << FileOf(one.broken);
    EXPECT_FALSE(Breaks(CheckFile(FileOf(one.good)), one.rule)) << FileOf(one.good);
  }
  for (const Rule& rule : Rules()) {
    EXPECT_TRUE(tried.contains(rule.id) || IsAboutSeveralFiles(rule.id) ||
                IsOfAnOldRelease(rule.id))
        << rule.name;
  }
}

TEST(ModelCheck, AModelThatKeepsTheRulesOfItsCaseKeepsAllOthers) {
  for (const RuleCase& one : RuleCases()) {
    SCOPED_TRACE(RuleOf(one.rule).name);
    EXPECT_EQ(std::vector<RuleId>{}, RulesIn(CheckFile(FileOf(one.good)).findings));
  }
}

TEST(ModelCheck, PlacesHaveRecordsAndLinesAndTheFirstThreeAreKept) {
  const CheckedModel model = CheckRecords(
      kGoodRecords +
      "#20=IFCCARTESIANPOINT(());\n#21=IFCCARTESIANPOINT((1.,1.,1.,1.));\n"
      "#22=IFCCARTESIANPOINT(());\n#23=IFCCARTESIANPOINT(());\n#24=IFCCARTESIANPOINT(());\n");
  const Finding few = FindingIn(model, RuleId::kFewMembers);
  EXPECT_EQ("IfcCartesianPoint.Coordinates", few.subject);
  EXPECT_EQ(4u, few.count);
  ASSERT_EQ(3u, few.places.size());
  EXPECT_EQ(20u, few.places[0].number);
  EXPECT_EQ(18u, few.places[0].line);
  EXPECT_EQ(u"0 members", few.places[0].what);
  EXPECT_EQ(23u, few.places[2].number);
  EXPECT_EQ(21u, few.places[2].line);
  EXPECT_EQ(19u, FindingIn(model, RuleId::kManyMembers).places.at(0).line);
}

TEST(ModelCheck, MandatoryValuesOfAllKindsAreMissed) {
  const CheckedModel model = CheckRecords(
      kGoodRecords +
      "#20=IFCPROPERTYSINGLEVALUE($,$,$,$);\n#21=IFCVECTOR($,0.);\n"
      "#22=IFCEXTRUDEDAREASOLID(#23,$,#24,$);\n#23=IFCCIRCLEPROFILEDEF(.AREA.,$,$,0.);\n"
      "#24=IFCDIRECTION((0.,0.,1.));\n#25=IFCDIMENSIONALEXPONENTS(0,0,$,0,0,0,0);\n"
      "#26=IFCGRIDAXIS('A',#27,$);\n#27=IFCLINE(#7,#21);\n#28=IFCOFFSETCURVE2D(#27,1.,$);\n");
  std::vector<std::string> subjects;
  for (const Finding& finding : model.findings) {
    EXPECT_EQ(RuleId::kMissingValue, finding.rule);
    subjects.push_back(finding.subject);
  }
  EXPECT_EQ((std::vector<std::string>{"IfcDimensionalExponents.TimeExponent",
                                      "IfcExtrudedAreaSolid.Depth", "IfcGridAxis.SameSense",
                                      "IfcOffsetCurve2D.SelfIntersect",
                                      "IfcPropertySingleValue.Name", "IfcVector.Orientation"}),
            subjects);
}

TEST(ModelCheck, NamesThatTheOldestReleasesDoWithoutAreAddedByASave) {
  try {
    FactoriesOf(SchemaNamespace::IFC2X_FINAL);
  } catch (const std::logic_error&) {
    GTEST_SKIP() << "the release is not built";
  }
  const CheckedModel model = CheckRecords(
      "#20=IFCMATERIAL($);\n#21=IFCRELAGGREGATES('0000000000000000000021',$,$,'',$,());\n",
      "IFC2X_FINAL");
  const Finding added = FindingIn(model, RuleId::kAddedText);
  EXPECT_EQ("", added.subject);
  EXPECT_EQ(1u, added.count);
  ASSERT_EQ(1u, added.places.size());
  EXPECT_EQ(u"IfcRelAggregates.Name", added.places[0].what);
  std::vector<std::string> missing;
  for (const Finding& finding : model.findings) {
    if (finding.rule == RuleId::kMissingValue) missing.push_back(finding.subject);
  }
  EXPECT_EQ((std::vector<std::string>{"IfcMaterial.Name", "IfcRelAggregates.OwnerHistory",
                                      "IfcRelAggregates.RelatingObject"}),
            missing);
}

TEST(ModelCheck, WholeNumbersOfMoreThan32BitsAreNoWrongValues) {
  const CheckedModel model =
      CheckRecords(kGoodRecords +
                   "#20=IFCPROPERTYLISTVALUE('a',$,(IFCINTEGER(1),IFCINTEGER(99999999999)),$);\n"
                   "#21=IFCPROPERTYSINGLEVALUE('b',$,IFCLABEL(99999999999),$);\n"
                   "#22=IFCPROPERTYSINGLEVALUE('#99999999999 99999999999',$,IFCINTEGER(3),$);\n"
                   "#23=IFCPROPERTYSINGLEVALUE('c',99999999999,IFCINTEGER(99999999999),$);\n");
  std::vector<std::tuple<RuleId, std::uint32_t, WideString>> places;
  for (const Finding& finding : model.findings) {
    for (const FindingPlace& place : finding.places) {
      places.emplace_back(finding.rule, place.number, place.what);
    }
  }
  EXPECT_EQ((std::vector<std::tuple<RuleId, std::uint32_t, WideString>>{
                {RuleId::kWrongValue, 21, u"NominalValue"},
                {RuleId::kWrongValue, 23, u"Description"},
                {RuleId::kLargeInteger, 20, u"ListValues"},
                {RuleId::kLargeInteger, 23, u"NominalValue"}}),
            places);
}

TEST(ModelCheck, WhatIsWrongWithTheHeaderIsTold) {
  const std::string good = test::ModelFile(kGoodRecords);
  const auto whatOf = [](const std::string& bytes) {
    const Finding finding = FindingIn(CheckFile(bytes), RuleId::kHeader);
    return finding.places.empty() ? WideString(u"not found") : finding.places[0].what;
  };
  EXPECT_EQ(u"a byte order mark in front of ISO-10303-21", whatOf("\xEF\xBB\xBF" + good));
  EXPECT_EQ(u"no HEADER", whatOf(Replaced(good, "HEADER;", "")));
  EXPECT_EQ(u"no FILE_NAME",
            whatOf(Replaced(good, "FILE_NAME ('n','t',('a'),('o'),'p','s','z');", "")));
  EXPECT_EQ(u"", whatOf(Replaced(good, "FILE_NAME ('n','t',", "FILE_NAME (#,")));
}

TEST(ModelCheck, RecordsInCommentsAndTextsAreTold) {
  const CheckedModel model = CheckRecords(
      kGoodRecords +
      "/* was:\n#20=IFCMATERIAL('a',$,$);\n*/#21=IFCMATERIAL('b',/*\n#22=IFCWALL();\n*/$,$);\n"
      "#23=IFCMATERIAL('c\n#24=IFCWALL();\n',$,$);\n");
  ASSERT_EQ((std::vector<RuleId>{RuleId::kHiddenRecords}), RulesIn(model.findings));
  ASSERT_EQ(2u, model.findings.size());
  const Finding& comments = model.findings[0];
  EXPECT_EQ("comment", comments.subject);
  ASSERT_EQ(2u, comments.places.size());
  EXPECT_EQ(0u, comments.places[0].number);
  EXPECT_EQ(18u, comments.places[0].line);
  EXPECT_EQ(21u, comments.places[1].number);
  EXPECT_EQ(20u, comments.places[1].line);
  const Finding& texts = model.findings[1];
  EXPECT_EQ("text", texts.subject);
  ASSERT_EQ(1u, texts.places.size());
  EXPECT_EQ(23u, texts.places[0].number);
  EXPECT_EQ(23u, texts.places[0].line);
}

TEST(ModelCheck, AMandatoryNumberIsMissedWhateverElseIsWrongWithItsRecord) {
  const CheckedModel model =
      CheckRecords(kGoodRecords +
                   "#20=IFCDIMENSIONALEXPONENTS(0,0,0,$,'a',0,0);\n#21=IFCCIRCLEPROFILEDEF(.AREA.,$"
                   ",$,/* $ */ *);\n"
                   "#22=IFCVECTOR(#23,$) !;\n#23=IFCDIRECTION((0.,1.));\n#24=IFCVECTOR(#99,$);\n");
  std::vector<std::string> missed;
  for (const Finding& finding : model.findings) {
    if (finding.rule != RuleId::kMissingValue) continue;
    for (const FindingPlace& place : finding.places) {
      missed.push_back(std::to_string(place.number) + " " + std::to_string(place.line) + " " +
                       finding.subject);
    }
  }
  EXPECT_EQ((std::vector<std::string>{"21 19 IfcCircleProfileDef.Radius",
                                      "20 18 IfcDimensionalExponents.ElectricCurrentExponent",
                                      "22 20 IfcVector.Magnitude", "24 22 IfcVector.Magnitude"}),
            missed);
}

TEST(ModelCheck, LinesAreFoundWhateverTheOrderOfTheRecords) {
  std::string records = kGoodRecords + "/* #30=IFCCARTESIANPOINT(());\n#30=no */\n";
  for (int i = 4000; i-- > 100;) records += "#" + std::to_string(i) + "=IFCMATERIAL('a;\n',$,$);\n";
  records += "#31=IFCMATERIAL('#30=',$,$); #30  = IFCCARTESIANPOINT(());\n";
  const Finding few = FindingIn(CheckRecords(records), RuleId::kFewMembers);
  ASSERT_EQ(1u, few.places.size());
  EXPECT_EQ(30u, few.places[0].number);
  EXPECT_EQ(20u + 2 * 3900, few.places[0].line);
}

TEST(ModelCheck, AnEmptyTextAndAZeroAreValues) {
  const CheckedModel model =
      CheckRecords(kGoodRecords +
                   "#20=IFCPROPERTYSINGLEVALUE('',$,$,$);\n#21=IFCVECTOR(#22,0.);"
                   "#22=IFCDIRECTION((0.,0.,1.));");
  EXPECT_EQ(std::vector<RuleId>{}, RulesIn(model.findings));
}

TEST(ModelCheck, DerivedAttributesWantNoValue) {
  const CheckedModel model = CheckRecords(
      kGoodRecords +
      "#20=IFCGEOMETRICREPRESENTATIONSUBCONTEXT('Body','Model',*,*,*,*,#5,$,.MODEL_VIEW.,$);"
      "#21=IFCORIENTEDEDGE(*,*,#22,.T.);#22=IFCEDGE(#23,#23);#23=IFCVERTEXPOINT(#7);");
  EXPECT_EQ(std::vector<RuleId>{}, RulesIn(model.findings));
}

TEST(ModelCheck, AValueBehindASelectIsLookedAt) {
  const CheckedModel model = CheckRecords(
      kGoodRecords + "#20=IFCPROPERTYSINGLEVALUE('a',$,IFCREAL(0.1234567890123456),$);");
  const Finding real = FindingIn(model, RuleId::kChangedReal);
  ASSERT_EQ(1u, real.places.size());
  EXPECT_EQ(u"IfcPropertySingleValue.NominalValue 0.1234567890123456", real.places[0].what);
}

TEST(ModelCheck, ACircleOfPlacementsIsToldOnceAtItsSmallestNumber) {
  const CheckedModel model =
      CheckRecords(kGoodRecords +
                   "#20=IFCLOCALPLACEMENT(#23,#6);\n#21=IFCLOCALPLACEMENT(#22,#6);\n"
                   "#22=IFCLOCALPLACEMENT(#23,#6);\n#23=IFCLOCALPLACEMENT(#21,#6);\n");
  const Finding circle = FindingIn(model, RuleId::kPlacementCircle);
  EXPECT_EQ(1u, circle.count);
  ASSERT_EQ(1u, circle.places.size());
  EXPECT_EQ(21u, circle.places[0].number);
  EXPECT_EQ(u"stands on #22 on #23 on #21", circle.places[0].what);
}

TEST(ModelCheck, DoubledGuidsNameAllRecordsInOnePlace) {
  const CheckedModel model =
      CheckRecords(kGoodRecords + Wall("20", "20") + Wall("21", "20") + Wall("22", "20"));
  const Finding doubled = FindingIn(model, RuleId::kDoubledGuid);
  EXPECT_EQ(1u, doubled.count);
  ASSERT_EQ(1u, doubled.places.size());
  EXPECT_EQ(u"'0000000000000000000020' #21 #22", doubled.places[0].what);
}

TEST(ModelCheck, AGuidIsLookedAtDigitByDigit) {
  const auto isGood = [](std::string_view guid) { return PackGuid(guid).has_value(); };
  EXPECT_TRUE(isGood("3zZ_$0000000000000000A"));
  EXPECT_FALSE(isGood("4zZ_$0000000000000000A"));
  EXPECT_FALSE(isGood("3zZ_$0000000000000000"));
  EXPECT_FALSE(isGood("3zZ_$0000000000000000AA"));
  EXPECT_FALSE(isGood("3zZ-$0000000000000000A"));
  EXPECT_FALSE(isGood(""));
}

TEST(ModelCheck, APackedGuidGivesItsTextBack) {
  for (const std::string_view guid : {"3zZ_$0000000000000000A", "0000000000000000000001",
                                      "2O2Fr$t4X7Zf8NOew3FNr2", "3$$$$$$$$$$$$$$$$$$$$$"}) {
    EXPECT_EQ(guid, PackGuid(guid)->Text());
  }
}

TEST(ModelCheck, WhatIsNoModelHasAProblem) {
  const CheckedModel model = CheckFile("hello");
  EXPECT_FALSE(model.facts);
  EXPECT_EQ((std::vector<WideString>{u"this is no STEP file, it begins with 'hello'"}),
            model.problems);
}

}  // namespace corvel::host
