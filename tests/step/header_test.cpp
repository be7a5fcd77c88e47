#include <gtest/gtest.h>

#include "step/reader/scanner.h"
#include "support/token_list.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using test::ScannerOn;
using test::TokenList;
using test::TokensOf;

// The one token of the section and all that follow it, from every size of window.
TokenList Tokens(const std::string& text) {
  TokenList tokens = TokensOf(text);
  for (std::size_t windowSize = 1; windowSize <= text.size(); ++windowSize) {
    EXPECT_EQ(tokens, TokensOf(text, nullptr, windowSize)) << windowSize;
  }
  return tokens;
}

std::string HeaderOf(const std::string& content) {
  const TokenList tokens = Tokens("HEADER;" + content + "ENDSEC;#7");
  EXPECT_EQ(2u, tokens.size()) << "one token for the section, and one behind it";
  EXPECT_EQ("#7", tokens.back());
  return tokens.front();
}

TEST(Header, TheWholeSectionIsOneToken) {
  EXPECT_EQ((TokenList{"header ['v','w'] [2;1] [n] [t] ['a','b'] ['o'] [p] [s] [z] [IFC4]",
                       "DataToken", ";"}),
            Tokens("HEADER;\nFILE_DESCRIPTION(('v','w'),'2;1');\n"
                   "FILE_NAME('n','t',('a','b'),('o'),'p','s','z');\n"
                   "FILE_SCHEMA(('IFC4'));\nENDSEC;\nDATA;"));
}

TEST(Header, AbsentValuesAreEmpty) {
  EXPECT_EQ("header [''] [] [] [] [''] [''] [] [] [] [IFC4]",
            HeaderOf("FILE_DESCRIPTION((''),$);FILE_NAME($,$,(''),(''),$,$,$);"
                     "FILE_SCHEMA(('IFC4'));"));
  EXPECT_EQ("header [] [2;1] [n] [t] [] [] [p] [s] [z] [IFC4]",
            HeaderOf("FILE_DESCRIPTION((),'2;1');FILE_NAME('n','t',(),(),'p','s','z');"
                     "FILE_SCHEMA(('IFC4'));"));
}

TEST(Header, ADollarInThePlaceOfTheDescriptionIsAnEmptyList) {
  EXPECT_EQ("header [] [2;1] [n] [t] ['a'] ['o'] [p] [s] [z] [IFC4]",
            HeaderOf("FILE_DESCRIPTION($,'2;1');FILE_NAME('n','t',('a'),('o'),'p','s','z');"
                     "FILE_SCHEMA(('IFC4'));"));
}

TEST(Header, ADollarInThePlaceOfANameListIsAnEmptyList) {
  const std::string before = "FILE_DESCRIPTION(('v'),'2;1');FILE_NAME('n','t',";
  const std::string after = ",'p','s','z');FILE_SCHEMA(('IFC4'));";
  EXPECT_EQ("header ['v'] [2;1] [n] [t] [] [] [p] [s] [z] [IFC4]",
            HeaderOf(before + "$,$" + after));
  EXPECT_EQ("header ['v'] [2;1] [n] [t] [] ['o'] [p] [s] [z] [IFC4]",
            HeaderOf(before + "$,('o')" + after));
  EXPECT_EQ("header ['v'] [2;1] [n] [t] ['a'] [] [p] [s] [z] [IFC4]",
            HeaderOf(before + "('a'),$" + after));
}

TEST(Header, OnlyTheFirstSchemaCounts) {
  EXPECT_EQ("header ['v'] [2;1] [n] [t] ['a'] ['o'] [p] [s] [z] [IFC4]",
            HeaderOf("FILE_DESCRIPTION(('v'),'2;1');FILE_NAME('n','t',('a'),('o'),'p','s','z');"
                     "FILE_SCHEMA(('IFC4','IFC2X3'));"));
}

TEST(Header, ExtraRecordsArePassedOver) {
  EXPECT_EQ("header ['v'] [2;1] [n] [t] ['a'] ['o'] [p] [s] [z] [IFC4]",
            HeaderOf("FILE_DESCRIPTION(('v'),'2;1');FILE_NAME('n','t',('a'),('o'),'p','s','z');"
                     "FILE_SCHEMA(('IFC4'));FILE_POPULATION('x',(#1),$);"
                     "SECTION_LANGUAGE($,'en');/* ENDSEC; */'ENDSEC;';"));
}

TEST(Header, TokensOfAnotherKindAreEmptyTexts) {
  EXPECT_EQ("header ['',''] [] [] [] ['',''] [] [] [] [z] [IFC4]",
            HeaderOf("FILE_DESCRIPTION((.A.,1),2.);FILE_NAME(A,#1,(1,2),$,.T.,=,'z');"
                     "FILE_SCHEMA(('IFC4'));"));
}

TEST(Header, StringsAreDecoded) {
  EXPECT_EQ("header ['<00E4>''] [] [<DCE4>] [] [''] [''] [] [] [] [IFC4]",
            HeaderOf("FILE_DESCRIPTION(('\\X2\\00E4\\X0\\'''),'');"
                     "FILE_NAME('\xE4','',(''),(''),'','','');FILE_SCHEMA(('IFC4'));"));
}

TEST(Header, WhatIsMissingStaysEmpty) {
  EXPECT_EQ("header [] [] [] [] [] [] [] [] [] []", HeaderOf(""));
  EXPECT_EQ("header ['v'] [2;1] [] [] [] [] [] [] [] []",
            HeaderOf("FILE_DESCRIPTION(('v'),'2;1');"));
  EXPECT_EQ("header ['v'] [2;1] [n] [] [] [] [] [] [] []",
            HeaderOf("FILE_DESCRIPTION(('v'),'2;1');FILE_NAME('n'"));
  EXPECT_EQ("header ['v','w'] [] [] [] [] [] [] [] [] []", HeaderOf("FILE_DESCRIPTION(('v','w'"));
}

TEST(Header, TheWordInsideTheSectionIsAWord) {
  EXPECT_EQ("header ['v'] [2;1] [] [] [] [] [] [] [] []",
            HeaderOf("HEADER;FILE_DESCRIPTION(('v'),'2;1');HEADER;"));
}

TEST(Header, EndsecNeedsNoSemicolon) {
  EXPECT_EQ((TokenList{"header [] [] [] [] [] [] [] [] [] []", "DataToken", ";", "#1"}),
            Tokens("HEADER;ENDSEC DATA;#1"));
}

TEST(Header, EveryBeginningOfASectionEnds) {
  const std::string text =
      "HEADER;FILE_DESCRIPTION(('v'),'2;1');FILE_NAME('n','t',('a'),$,'p','s','z');"
      "FILE_SCHEMA(('IFC4'));ENDSEC;";
  for (std::size_t length = 6; length <= text.size(); ++length) {
    const TokenList tokens = TokensOf(text.substr(0, length));
    ASSERT_EQ(1u, tokens.size()) << length;
    ASSERT_TRUE(tokens[0].starts_with("header [")) << length;
  }
}

TEST(Header, TheTokenIsItsTakersToKeep) {
  const auto scanner =
      ScannerOn("HEADER;FILE_DESCRIPTION(('v'),'2;1');ENDSEC;#1=A('b','c','d','e','f','g','h');");
  const auto header = std::move(scanner->NextToken()->header);
  TokensOf(*scanner, 100);
  ASSERT_NE(nullptr, header);
  EXPECT_EQ(u"2;1", header->implementationLevel);
}

}  // namespace
}  // namespace corvel
