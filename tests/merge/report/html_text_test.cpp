#include "merge/report/shared/html_text.h"

#include <gtest/gtest.h>

#include "merge/report/shared/page_units.h"

namespace corvel {
namespace {

const PageTexts kEnglish("en");

std::string Escaped(WideView text) { return HtmlText(kEnglish).Text(text).Take(); }

TEST(HtmlText, NothingInATextIsHtml) {
  EXPECT_EQ("&lt;/script&gt;&lt;b a=&quot;x&quot; b=&#39;y&#39;&gt;&amp;amp;",
            Escaped(u"</script><b a=\"x\" b='y'>&amp;"));
}

TEST(HtmlText, WhatIsNoCharacterIsReplaced) {
  const char16_t units[] = {0, u'a', 0x85, 0xD800, u'b', 0xDC80, u'\n'};
  EXPECT_EQ("\uFFFDa\uFFFD\uFFFDb\uFFFD\n", Escaped(WideView(units, 7)));
  EXPECT_EQ("\u00e4\u4e16\U0001F600\u2028", Escaped(u"\u00e4\u4e16\U0001F600\u2028"));
}

TEST(HtmlText, ANameTurnsNothingAroundItself) {
  constexpr char16_t kRightToLeftFromHereOn = 0x202E;
  const WideString name = {kRightToLeftFromHereOn, u'x'};
  EXPECT_EQ("<bdi>" + ToUtf8(name) + "</bdi>", HtmlText(kEnglish).Name(name).Take());
}

TEST(HtmlText, CountsAreInGroupsOfThree) {
  EXPECT_EQ("0", HtmlText(kEnglish).Count(0).Take());
  EXPECT_EQ("999", HtmlText(kEnglish).Count(999).Take());
  EXPECT_EQ("<span data-n='1000000'>1,000,000</span>", HtmlText(kEnglish).Count(1000000).Take());
}

TEST(HtmlText, WhatHasBeenPutComesOnceMoreAsItStood) {
  HtmlText html(kEnglish);
  html.Raw("<b>").Whole(1234567);
  const std::size_t begin = html.Size();
  html.Text(u" & ");
  const std::size_t end = html.Size();
  html.Raw("</b>").Again(begin, end);
  EXPECT_EQ("<b>1234567 &amp; </b> &amp; ", html.Take());
}

TEST(HtmlText, NumbersAreRoundedAndZeroHasNoSign) {
  const auto shown = [](double value, int digits) {
    return HtmlText(kEnglish).Number(value, digits).Take();
  };
  EXPECT_EQ("2.35", shown(2.345678, 2));
  EXPECT_EQ("-0.01", shown(-0.009, 2));
  EXPECT_EQ("0.00", shown(-0.004, 2));
  EXPECT_EQ("0.00", shown(-0.0, 2));
  EXPECT_EQ("0", shown(-0.4, 0));
  EXPECT_EQ("0.0", shown(-0.04, 1));
  EXPECT_EQ("-0.1", shown(-0.06, 1));
  EXPECT_EQ("-1000000.5", shown(-1000000.5, 1));
  EXPECT_EQ("12.3", shown(12.34, 1));
  EXPECT_EQ("-120.0", shown(-120.0, 1));
  EXPECT_EQ("999999.9", shown(999999.94, 1));
}

TEST(HtmlText, AWordNamesItsKeySoThatItsLanguageCanChange) {
  EXPECT_EQ("<h2 data-t='inputs' class='x'>Inputs</h2>",
            HtmlText(kEnglish).Word("h2", "inputs", " class='x'").Take());
  EXPECT_EQ("<span data-t='inputs'>Eingaben</span>",
            HtmlText(PageTexts("de")).Word("inputs").Take());
}

TEST(HtmlText, DecimalsAreThoseOfTheLanguage) {
  const PageTexts german("de");
  EXPECT_EQ("<span data-n='-1234.50'>-1.234,50</span>",
            HtmlText(german).Decimal(-1234.5, 2).Take());
  EXPECT_EQ("<tspan data-n='0.5'>0,5</tspan>", HtmlText(german).Decimal(0.5, 1, "tspan").Take());
  EXPECT_EQ("-12", HtmlText(german).Decimal(-12, 0).Take());
  EXPECT_EQ("1e-07", HtmlText(german).Plain("1e-07").Take());
}

TEST(HtmlText, TheFewestDigitsAreThoseThatPeopleRead) {
  EXPECT_EQ("1000000", FewestDigits(1e6));
  EXPECT_EQ("-0.3048", FewestDigits(-0.3048));
  EXPECT_EQ("0", FewestDigits(0));
  EXPECT_EQ("1e+300", FewestDigits(1e300));
}

TEST(PageUnits, TheyHaveWordsWhateverFilesCallThem) {
  const PageTexts german("de");
  const auto shown = [&german](WideView name) {
    HtmlText html(german);
    AddUnit(name, html);
    return html.Take();
  };
  EXPECT_EQ("<span data-t='unit.MILLIMETRE'>Millimeter</span>", shown(u"MILLIMETRE"));
  EXPECT_EQ("<span data-t='unit.SQUARE_FOOT'>Quadratfuß</span>", shown(u"square foot"));
  EXPECT_EQ("<span data-t='unit.SQUARE_MILLIMETRE'>Quadratmillimeter</span>",
            shown(u"MILLISQUARE_METRE"));
  EXPECT_EQ("<span data-t='unit.FOOT'>Fuß</span> (<span data-n='0.3048'>0,3048</span>\u00A0m)",
            shown(u"Foot (0.3048 m)"));
  EXPECT_EQ(
      "<span data-t='unit.KILOGRAM'>Kilogramm</span> \u00B7 "
      "<span data-t='unit.METRE'>Meter</span><sup>-3</sup>",
      shown(u"KILOGRAM METRE^-3"));
  EXPECT_EQ("<bdi>&lt;b&gt; METRE^2</bdi>", shown(u"<b> METRE^2"));
  EXPECT_EQ("<bdi>x</bdi> (&lt;b&gt;\u00A0m)", shown(u"x (<b> m)"));
}

TEST(PageUnits, KindsHaveWordsAndOthersStayWhatTheyAre) {
  HtmlText html(kEnglish);
  AddKindOfUnit("PLANEANGLEUNIT", html);
  AddKindOfUnit("<KIND>", html);
  EXPECT_EQ("<span data-t='kind.PLANEANGLEUNIT'>plane angle</span>&lt;KIND&gt;", html.Take());
}

TEST(PageTexts, NumbersAreWrittenAsTheirLanguageDoes) {
  const auto shown = [](std::string_view language) {
    const PageTexts texts(language);
    return texts.Number("999") + " " + texts.Number("-1234.5") + " " + texts.Number("1234567.25");
  };
  EXPECT_EQ("999 -1,234.5 1,234,567.25", shown("en"));
  EXPECT_EQ("999 -1.234,5 1.234.567,25", shown("de"));
  EXPECT_EQ("999 -1\u202F234,5 1\u202F234\u202F567,25", shown("fr"));
  EXPECT_EQ("999 -1234,5 1.234.567,25", shown("es"));
  EXPECT_EQ("999 -1234,5 1\u00A0234\u00A0567,25", shown("pl"));
}

TEST(PageTexts, AnUnknownLanguageIsEnglish) {
  EXPECT_EQ("en", PageTexts("xx").Language());
  EXPECT_EQ("pl", PageTexts("pl").Language());
  EXPECT_EQ("nothing.of.that.name", kEnglish.Of("nothing.of.that.name"));
}

}  // namespace
}  // namespace corvel
