// What the user is told about documents that take no part, to the letter.
#include <string>
#include <vector>

#include "merge/rejected_projects.h"
#include "merge/units.h"
#include "unit_run.h"

namespace corvel {
namespace {

using test::kCentimetre;
using test::kMetre;
using test::kMillimetre;
using test::kSquareMetre;
using test::Report;
using test::Units;

constexpr const char* kSquareCentimetre = "IFCSIUNIT(*,.AREAUNIT.,.CENTI.,.SQUARE_METRE.)";

class UnitReport : public test::UnitRun {
 protected:
  // The report of a check: one message behind the other, collected, and shown at the end.
  std::vector<WideString> Messages() {
    Check();
    std::vector<WideString> messages;
    for (const Report& report : *world_.reports) {
      EXPECT_EQ("", report.key);
      EXPECT_EQ(&report == &world_.reports->back() ? kReportShow : kReportCollect, report.mode);
      messages.push_back(report.message);
    }
    return messages;
  }
};

TEST_F(UnitReport, OtherUnitsAreTold) {
  Add("a.ifc", Units({kMetre}, 7));
  Add("b.ifc", Units({kMillimetre}, 12));
  EXPECT_EQ((std::vector<WideString>{
                u"<not_all_projects_merge> \"a.ifc\"",
                u"<due_to_invalid_units>:\n",
                u"  LENGTHUNIT(#7) - METRE\n",
                u"<projects_that_will_not_be_merged>\n",
                u"\n  b.ifc:\n    LENGTHUNIT(#12) - MILLIMETRE\n",
                u"",
            }),
            Messages());
}

TEST_F(UnitReport, WhatIsMergedAllTheSameIsTold) {
  Add("a.ifc", Units({kMetre}, 7));
  Add("b.ifc", Units({kMillimetre}, 12));
  Add("c.ifc", Units({kMetre}));
  Add("d.ifc", Units({kMetre}));
  EXPECT_EQ((std::vector<WideString>{
                u"<not_all_projects_merge> \"a.ifc\"",
                u"<due_to_invalid_units>:\n",
                u"  LENGTHUNIT(#7) - METRE\n",
                u"<projects_that_will_not_be_merged>\n",
                u"\n  b.ifc:\n    LENGTHUNIT(#12) - MILLIMETRE\n",
                u"<projects_that_will_be_merged>\n\nc.ifc\"\nd.ifc\"\n",
                u"",
            }),
            Messages());
}

// Types of the first model are told by name, each once; those of another model as they count.
TEST_F(UnitReport, EachDifferenceOfEachDocumentIsToldAndTheFirstOnce) {
  Add("a.ifc", Units({kMetre, kSquareMetre}));
  Add("b.ifc", Units({kSquareCentimetre, kMillimetre}, 30));
  Add("c.ifc", Units({kCentimetre, kSquareMetre}, 40));
  EXPECT_EQ((std::vector<WideString>{
                u"<not_all_projects_merge> \"a.ifc\"",
                u"<due_to_invalid_units>:\n",
                u"  AREAUNIT(#2) - SQUARE_METRE\n",
                u"  LENGTHUNIT(#1) - METRE\n",
                u"<projects_that_will_not_be_merged>\n",
                u"\n  b.ifc:\n    LENGTHUNIT(#31) - MILLIMETRE\n"
                u"    AREAUNIT(#30) - CENTISQUARE_METRE\n"
                u"\n  c.ifc:\n    LENGTHUNIT(#40) - CENTIMETRE\n",
                u"",
            }),
            Messages());
}

TEST_F(UnitReport, OfTwoUnitsOfATypeTheOneThatWasComparedIsTold) {
  Add("a.ifc", Units({kMillimetre, kMetre}));
  Add("b.ifc", Units({kMillimetre, kCentimetre}, 12));
  EXPECT_EQ((std::vector<WideString>{
                u"<not_all_projects_merge> \"a.ifc\"",
                u"<due_to_invalid_units>:\n",
                u"  LENGTHUNIT(#2) - METRE\n",
                u"<projects_that_will_not_be_merged>\n",
                u"\n  b.ifc:\n    LENGTHUNIT(#13) - CENTIMETRE\n",
                u"",
            }),
            Messages());
}

TEST_F(UnitReport, AnotherUnitIsToldAsAnotherPrefixIs) {
  Add("a.ifc", Units({"IFCSIUNIT(*,.MASSUNIT.,.KILO.,.GRAM.)"}));
  Add("b.ifc", Units({"IFCSIUNIT(*,.MASSUNIT.,$,.SECOND.)"}));
  EXPECT_EQ((std::vector<WideString>{
                u"<not_all_projects_merge> \"a.ifc\"",
                u"<due_to_invalid_units>:\n",
                u"  MASSUNIT(#1) - KILOGRAM\n",
                u"<projects_that_will_not_be_merged>\n",
                u"\n  b.ifc:\n    MASSUNIT(#1) - SECOND\n",
                u"",
            }),
            Messages());
}

TEST_F(UnitReport, OtherSchemasAreTold) {
  Add("a.ifc", Units({kMetre}), "IFC4");
  Add("b.ifc", Units({kMetre}), "IFC2X3");
  Add("c.ifc", Units({kMetre}), "IFC2X3");
  EXPECT_EQ((std::vector<WideString>{
                u"<not_all_projects_merge> \"a.ifc\"(IFC4)",
                u"<due_to_invalid_schema>.",
                u"<projects_that_will_not_be_merged>",
                u"b.ifc(IFC2X3)\nc.ifc(IFC2X3)\n",
                u"",
            }),
            Messages());
}

TEST_F(UnitReport, WithAnotherSchemaInTheMiddleTheThirdIsMerged) {
  Add("a.ifc", Units({kMetre}), "IFC2X3");
  Add("b.ifc", Units({kMetre}), "IFC4");
  Add("c.ifc", Units({kMetre}), "IFC2X3");
  EXPECT_EQ((std::vector<WideString>{
                u"<not_all_projects_merge> \"a.ifc\"(IFC2X3)",
                u"<due_to_invalid_schema>.",
                u"<projects_that_will_not_be_merged>",
                u"b.ifc(IFC4)\n",
                u"<projects_that_will_be_merged>\n\nc.ifc\"\n",
                u"",
            }),
            Messages());
}

// A document may be named twice, for both reasons.
TEST_F(UnitReport, SchemasComeFirstAndUnitsAfterAnEmptyLine) {
  Add("a.ifc", Units({kMetre}), "IFC4");
  Add("b.ifc", Units({kMillimetre}), "IFC2X3");
  Add("c.ifc", Units({kCentimetre}), "IFC4");
  Add("d.ifc", Units({kMetre}), "IFC4");
  EXPECT_EQ((std::vector<WideString>{
                u"<not_all_projects_merge> \"a.ifc\"(IFC4)",
                u"<due_to_invalid_schema>.",
                u"<projects_that_will_not_be_merged>",
                u"b.ifc(IFC2X3)\n",
                u"\n",
                u"<not_all_projects_merge> \"a.ifc\"",
                u"<due_to_invalid_units>:\n",
                u"  LENGTHUNIT(#1) - METRE\n",
                u"<projects_that_will_not_be_merged>\n",
                u"\n  b.ifc:\n    LENGTHUNIT(#1) - MILLIMETRE\n"
                u"\n  c.ifc:\n    LENGTHUNIT(#1) - CENTIMETRE\n",
                u"<projects_that_will_be_merged>\n\nd.ifc\"\n",
                u"",
            }),
            Messages());
}

TEST_F(UnitReport, PrefixesAreNotToldWhenUnitsAreIgnored) {
  shell_.options.ignoreUnits = true;
  Add("a.ifc", Units({kMetre}), "IFC4");
  Add("b.ifc", Units({kMillimetre}), "IFC2X3");
  Add("c.ifc", Units({kMillimetre}), "IFC4");
  EXPECT_EQ((std::vector<WideString>{
                u"<not_all_projects_merge> \"a.ifc\"(IFC4)",
                u"<due_to_invalid_schema>.",
                u"<projects_that_will_not_be_merged>",
                u"b.ifc(IFC2X3)\n",
                u"<projects_that_will_be_merged>\n\nc.ifc\"\n",
                u"",
            }),
            Messages());
}

constexpr const char* kGramUnit = "IFCSIUNIT(*,.MASSUNIT.,$,.GRAM.)";
constexpr const char* kSecondAsMass = "IFCSIUNIT(*,.MASSUNIT.,$,.SECOND.)";

TEST_F(UnitReport, AnotherUnitIsToldWhenUnitsAreIgnored) {
  shell_.options.ignoreUnits = true;
  Add("a.ifc", Units({kGramUnit}));
  Add("b.ifc", Units({kSecondAsMass}));
  Add("c.ifc", Units({kGramUnit}));
  EXPECT_EQ((std::vector<WideString>{
                u"<not_all_projects_merge> \"a.ifc\"",
                u"<due_to_invalid_units>:\n",
                u"  MASSUNIT(#1) - GRAM\n",
                u"<projects_that_will_not_be_merged>\n",
                u"\n  b.ifc:\n    MASSUNIT(#1) - SECOND\n",
                u"<projects_that_will_be_merged>\n\nc.ifc\"\n",
                u"",
            }),
            Messages());
}

TEST_F(UnitReport, APrefixThatIsIgnoredIsNoReasonToBeToldBesideAnotherUnit) {
  shell_.options.ignoreUnits = true;
  Add("a.ifc", Units({kMetre, kGramUnit}));
  Add("b.ifc", Units({kMillimetre, kSecondAsMass}));
  Add("c.ifc", Units({kCentimetre, kGramUnit}));
  EXPECT_EQ((std::vector<WideString>{
                u"<not_all_projects_merge> \"a.ifc\"",
                u"<due_to_invalid_units>:\n",
                u"  MASSUNIT(#2) - GRAM\n",
                u"<projects_that_will_not_be_merged>\n",
                u"\n  b.ifc:\n    MASSUNIT(#2) - SECOND\n",
                u"<projects_that_will_be_merged>\n\nc.ifc\"\n",
                u"",
            }),
            Messages());
}

// What was let pass is not told, whatever the option says by then.
TEST_F(UnitReport, OnlyUnitsThatWereNotLetPassAreTold) {
  shell_.options.ignoreUnits = true;
  Add("a.ifc", Units({kMetre}), "IFC4");
  Add("b.ifc", Units({kMillimetre}), "IFC4");
  Add("c.ifc", Units({kCentimetre}), "IFC2X3");
  Check();
  world_.reports.Forget();
  models_[2].unitsValid = false;
  shell_.options.ignoreUnits = false;
  ReportRejectedProjects(models_, shell_);
  ASSERT_EQ(12u, world_.reports->size());
  EXPECT_EQ(u"\n  c.ifc:\n    LENGTHUNIT(#1) - CENTIMETRE\n", (*world_.reports)[9].message);
}

TEST_F(UnitReport, NothingIsToldWhenAllTakePart) {
  Add("a.ifc", Units({kMetre}));
  Add("b.ifc", Units({kMetre}));
  EXPECT_EQ((std::vector<WideString>{}), Messages());
}

TEST_F(UnitReport, AFileIsNamedWithoutItsFolders) {
  Add("first/a.ifc", Units({kMetre}));
  Add("second/deep/b c.ifc", Units({kMillimetre}));
  EXPECT_EQ((std::vector<WideString>{
                u"<not_all_projects_merge> \"a.ifc\"",
                u"<due_to_invalid_units>:\n",
                u"  LENGTHUNIT(#1) - METRE\n",
                u"<projects_that_will_not_be_merged>\n",
                u"\n  b c.ifc:\n    LENGTHUNIT(#1) - MILLIMETRE\n",
                u"",
            }),
            Messages());
}

// A document that could not be opened has no schema; it is known by the path that was tried.
TEST_F(UnitReport, AFileThatIsNotThereIsToldWithoutASchema) {
  Add("a.ifc", Units({kMetre}));
  auto missing = std::make_unique<IfcDocument>(false, test::RecordedReports::Reporter,
                                               test::RecordedProgress::Callback);
  missing->OpenFile(folder_.Path("missing.ifc"), 1);
  world_.reports.Forget();
  Take(std::move(missing));
  EXPECT_EQ((std::vector<WideString>{
                u"<not_all_projects_merge> \"a.ifc\"(IFC4)",
                u"<due_to_invalid_schema>.",
                u"<projects_that_will_not_be_merged>",
                u"missing.ifc()\n",
                u"",
            }),
            Messages());
}

}  // namespace
}  // namespace corvel
