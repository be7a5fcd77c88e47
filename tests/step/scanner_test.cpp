#include "step/reader/scanner.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/memory_streams.h"
#include "support/recorded_reports.h"
#include "support/step_text.h"
#include "support/temporary_folder.h"
#include "support/token_list.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using test::RecordedReports;
using test::Report;
using test::ScannerOn;
using test::TemporaryFolder;
using test::TokenList;
using test::TokensOf;
using test::Visible;

TEST(Token, KindsHaveTheirNumbersAndNames) {
  struct Kind {
    unsigned number;
    const char16_t* name;
  };
  constexpr Kind kKinds[] = {
      {0, u"EndsecToken"},       {1, u"OpenBracketToken"},   {2, u"CloseBracketToken"},
      {3, u"EqualToken"},        {4, u"SemicolonToken"},     {5, u"UnknownSignToken"},
      {7, u"DataToken"},         {8, u"EndOfFileToken"},     {10, u"EmptyParameterToken"},
      {12, u"NewLineToken"},     {14, u"IdentifierToken"},   {15, u"EntityNameToken"},
      {16, u"WStringToken"},     {17, u"RealDataTypeToken"}, {18, u"IntegerDataTypeToken"},
      {19, u"EnumerationToken"}, {20, u"IsoToken"},          {21, u"EndIsoToken"},
      {24, u"HeaderToken"},
  };
  for (const Kind& kind : kKinds) {
    Token token;
    token.type = static_cast<TokenType>(kind.number);
    EXPECT_EQ(WideString(kind.name), token.getName());
    EXPECT_EQ(kind.number, static_cast<unsigned>(token.getType()));
  }
}

TEST(Scanner, ARecordComesAsItsTokensWithoutTheCommas) {
  EXPECT_EQ((TokenList{"#12", "=", "word IFCWALL", "(", "'abc'", "$", "$", "#3", "real 1.5",
                       "integer -7", "enumeration NOTDEFINED", ")", ";"}),
            TokensOf("#12=IFCWALL('abc',$,*,#3,1.5,-7,.NOTDEFINED.);"));
}

TEST(Scanner, BlanksLineEndsAndUnderscoresVanishBetweenTokens) {
  EXPECT_EQ((TokenList{"#1", "=", "(", ")", ";"}), TokensOf(" \t\v\f#1_ \r\n=_\r(\n\n)__;\r\n"));
}

TEST(Scanner, AnEmptyInputEndsAtOnceAndForEver) {
  const auto scanner = ScannerOn("");
  for (int i = 0; i < 20; ++i) EXPECT_TRUE(scanner->NextToken()->Is(TokenType::EndOfFileToken));
  EXPECT_FALSE(scanner->IsStopped());
}

// --- Words ---------------------------------------------------------------------------------------

TEST(Scanner, WordsLoseTheirUnderscoresAndKeepTheirCase) {
  EXPECT_EQ((TokenList{"word FILEDESCRIPTION", "word IFCWALL", "word IfcWall2x3", "word a"}),
            TokensOf("FILE_DESCRIPTION IFC_WALL _IfcWall2x3_ a_"));
}

TEST(Scanner, KeywordsAreCaseSensitive) {
  EXPECT_EQ((TokenList{"EndsecToken", ";", "DataToken", ";"}), TokensOf("ENDSEC;DATA;"));
  EXPECT_EQ((TokenList{"word endsec", "word Data", "word header", "word iso", "word end",
                       "word ENDSEC1", "word DATAX"}),
            TokensOf("endsec Data header iso end ENDSEC1 DATAX"));
  EXPECT_EQ((TokenList{"EndsecToken", "DataToken"}), TokensOf("END_SEC _DA_TA_"));
}

TEST(Scanner, OnlyLowerCaseInfIsInfinity) {
  EXPECT_EQ(
      (TokenList{"real inf", "word Inf", "word INF", "word NAN", "word nan", "word infinity"}),
      TokensOf("inf Inf INF NAN nan infinity"));
  EXPECT_EQ((TokenList{"integer 0", "real inf"}), TokensOf("-inf"));
}

TEST(Scanner, IsoTakesEverythingUpToTheSemicolon) {
  EXPECT_EQ((TokenList{"iso ISO-10303-21", ";", "end iso END-ISO-10303-21", ";"}),
            TokensOf("ISO-10303-21;\nEND-ISO-10303-21;"));
  EXPECT_EQ((TokenList{"iso ISO _('\n#1", ";"}), TokensOf("ISO _('\n#1;"));
  EXPECT_EQ((TokenList{"word ISO10303", "integer -21"}), TokensOf("ISO10303-21"));
}

TEST(Scanner, IsoLinesEndWithTheInput) {
  EXPECT_EQ((TokenList{"iso ISO-10303-21"}), TokensOf("ISO-10303-21"));
  EXPECT_EQ((TokenList{"iso ISO"}), TokensOf("ISO"));
  EXPECT_EQ((TokenList{"end iso END-ISO\n"}), TokensOf("END-ISO\n"));
}

// --- Numbers -------------------------------------------------------------------------------------

TEST(Scanner, IntegersHaveNoPointAndNoExponent) {
  EXPECT_EQ((TokenList{"integer 0", "integer 7", "integer -12", "integer 0", "integer 8"}),
            TokensOf("0,7,-12,-0,008"));
  EXPECT_EQ((TokenList{"integer 1", "word E3"}), TokensOf("1E3"));
}

TEST(Scanner, ALoneMinusIsZero) { EXPECT_EQ((TokenList{"integer 0", ")"}), TokensOf("-)")); }

TEST(Scanner, APlusIsNoPartOfANumber) {
  EXPECT_EQ((TokenList{"UnknownSignToken", "real 1"}), TokensOf("+1.0"));
}

TEST(Scanner, IntegersSaturateAndKeepTheirFullValueAsAReal) {
  EXPECT_EQ((TokenList{"integer 2147483647", "integer 2147483647", "integer -2147483648",
                       "integer -2147483648"}),
            TokensOf("2147483647,2147483648,-2147483648,-99999999999999999999"));
  const auto scanner = ScannerOn("3000000000,-3000000000,123456789,1234567890123456789012");
  EXPECT_EQ(3e9, scanner->NextToken()->real);
  EXPECT_EQ(-3e9, scanner->NextToken()->real);
  EXPECT_EQ(123456789.0, scanner->NextToken()->real);
  EXPECT_EQ(1234567890123456789012.0, scanner->NextToken()->real);
}

TEST(Scanner, RealsHaveAPoint) {
  EXPECT_EQ(
      (TokenList{"real 1", "real -0.5", "real -0.5", "real 150000", "real 0.00025000000000000001"}),
      TokensOf("1.,-0.5,-.5,1.5E+05,2.5e-4"));
}

TEST(Scanner, ARealTakesEverythingUpToACommaOrBracket) {
  EXPECT_EQ((TokenList{"real 1.5", ")", ";"}), TokensOf("1.5 \n/* ( */ ;#7);"));
  EXPECT_EQ((TokenList{"real 1", "$"}), TokensOf("1.x'_,$"));
  EXPECT_EQ((TokenList{"real 1.5"}), TokensOf("1.5;\n#2=IFCWALL;")) << "up to the end of the input";
}

TEST(Scanner, APointAloneBeginsAnEnumeration) {
  EXPECT_EQ((TokenList{"enumeration 5,", "word T"}), TokensOf(".5,.T"));
}

// --- Identifiers ---------------------------------------------------------------------------------

TEST(Scanner, IdentifiersGoUpToTheLargestNumber) {
  EXPECT_EQ((TokenList{"#1", "#0", "#4294967279", "#7"}), TokensOf("#1#0 #4294967279,#007"));
}

TEST(Scanner, AnIdentifierBeyondTheLargestNumberStopsTheScanner) {
  for (const char* const number : {"4294967280", "4294967295", "4294967296", "18446744073709551617",
                                   "99999999999999999999999"}) {
    RecordedReports reports;
    const auto scanner = ScannerOn("(#"s + number + ",#1)", RecordedReports::Reporter);
    EXPECT_EQ((TokenList{"("}), TokensOf(*scanner, 10));
    EXPECT_EQ((std::vector<Report>{{"", u"stoul argument out of range", 0}}), *reports) << number;
    EXPECT_TRUE(scanner->IsStopped());
  }
}

TEST(Scanner, AnIdentifierWithoutDigitsStopsTheScanner) {
  for (const char* const text : {"(#,#1)", "(# 1)", "(#-1)", "(#"}) {
    RecordedReports reports;
    const auto scanner = ScannerOn(text, RecordedReports::Reporter);
    EXPECT_EQ((TokenList{"("}), TokensOf(*scanner, 10));
    EXPECT_EQ((std::vector<Report>{{"", u"invalid stoul argument", 0}}), *reports) << text;
    EXPECT_TRUE(scanner->IsStopped());
  }
}

// --- Enumerations --------------------------------------------------------------------------------

TEST(Scanner, EnumerationsTakeAnythingBetweenTheirPoints) {
  EXPECT_EQ((TokenList{"enumeration T", "enumeration A_b 1\n'", "enumeration ", ")"}),
            TokensOf(".T.,.A_b 1\n'.,..)"));
}

TEST(Scanner, AnEnumerationEndsWithTheInput) {
  EXPECT_EQ((TokenList{"(", "enumeration NOTDEF"}), TokensOf("(.NOTDEF"));
  EXPECT_EQ((TokenList{"enumeration "}), TokensOf("."));
}

// --- Strings (more in string_decoder_test.cpp) ---------------------------------------------------

TEST(Scanner, AStringEndsAtItsQuoteOrWithTheInput) {
  EXPECT_EQ((TokenList{"'it's'", "''", "'#1=(;'", "$"}), TokensOf("'it''s','','#1=(;'$"));
  EXPECT_EQ((TokenList{"'abc,$);'"}), TokensOf("'abc,$);"));
  EXPECT_EQ((TokenList{"''"}), TokensOf("'"));
}

TEST(Scanner, AStringOfAMebibyteComesWhole) {
  const std::string text(1 << 20, 'x');
  EXPECT_EQ((TokenList{"'" + text + "'", ";"}), TokensOf("'" + text + "';"));
  EXPECT_EQ((TokenList{"'" + text + "'", ";"}), TokensOf("'" + text + "';", nullptr, 4093));
}

// --- Comments and strange bytes ------------------------------------------------------------------

TEST(Scanner, CommentsAreSkipped) {
  EXPECT_EQ((TokenList{"(", ")"}), TokensOf("(/* a * b */)"));
  EXPECT_EQ((TokenList{"(", ")"}), TokensOf("(/**//***//* ' \n#9 ** */)"));
  EXPECT_EQ((TokenList{"(", "UnknownSignToken"}), TokensOf("(/*/ )*//;"))
      << "the star that opens a comment does not close it; the last slash takes the semicolon";
}

TEST(Scanner, ACommentWithoutAnEndEndsWithTheInput) {
  EXPECT_EQ((TokenList{"("}), TokensOf("(/* #1=)"));
  EXPECT_EQ((TokenList{"("}), TokensOf("(/*"));
  EXPECT_EQ((TokenList{"("}), TokensOf("(/* *"));
}

TEST(Scanner, ASlashAloneTakesTheNextByteWithIt) {
  EXPECT_EQ((TokenList{"UnknownSignToken", ")"}), TokensOf("/()"));
  EXPECT_EQ((TokenList{"("}), TokensOf("(/"));
  EXPECT_EQ((TokenList{"("}), TokensOf("(/\xFF#1"));
}

TEST(Scanner, StrangeBytesAreUnknownSigns) {
  EXPECT_EQ((TokenList{"UnknownSignToken", "UnknownSignToken", "UnknownSignToken", "word A",
                       "UnknownSignToken"}),
            TokensOf("\"&\xC4"
                     "A\0"s));
}

TEST(Scanner, AByteOf255EndsTheInput) {
  EXPECT_EQ((TokenList{"("}), TokensOf("(\xFF)"));
  EXPECT_EQ((TokenList{"("}), TokensOf("( \xFF)"));
  EXPECT_EQ((TokenList{"(", "'<DCFF>'", ")"}), TokensOf("('\xFF')")) << "but not inside a string";
}

TEST(Scanner, CommasAndCommentsByTheMillionAreSkippedWithoutRecursion) {
  EXPECT_EQ((TokenList{"("}), TokensOf("(" + std::string(3'000'000, ',')));
  std::string comments;
  for (int i = 0; i < 1'000'000; ++i) comments += "/**/,";
  EXPECT_EQ((TokenList{"#1"}), TokensOf(comments + "#1"));
}

// --- Look-ahead, counters, statement text --------------------------------------------------------

TEST(Scanner, PeekingLeavesTheToken) {
  const auto scanner = ScannerOn("#1,#2");
  EXPECT_EQ("#1", Visible(*scanner->PeekToken()));
  EXPECT_EQ("#1", Visible(*scanner->PeekToken()));
  EXPECT_EQ("#1", Visible(*scanner->NextToken()));
  EXPECT_EQ("#2", Visible(*scanner->NextToken()));
  EXPECT_EQ("end", Visible(*scanner->PeekToken()));
}

TEST(Scanner, ClearTokensForgetsTheLookAhead) {
  const auto scanner = ScannerOn("#1,#2");
  scanner->PeekToken();
  scanner->ClearTokens();
  EXPECT_EQ("#2", Visible(*scanner->NextToken()));
}

TEST(Scanner, StoppingHidesTheLookAheadToo) {
  const auto scanner = ScannerOn("#1,#2");
  scanner->PeekToken();
  scanner->Stop();
  EXPECT_EQ("end", Visible(*scanner->PeekToken()));
  EXPECT_EQ("end", Visible(*scanner->NextToken()));
}

TEST(Scanner, TokensStayGoodWhileOthersAreMade) {
  const auto scanner = ScannerOn("#1='a'(.B.)1.5;");
  std::vector<Token*> tokens;
  for (std::size_t i = 0; i < Scanner::kTokensKept; ++i) tokens.push_back(scanner->NextToken());
  TokenList shown;
  for (const Token* const token : tokens) shown.push_back(Visible(*token));
  EXPECT_EQ((TokenList{"#1", "=", "'a'", "(", "enumeration B", ")", "real 1.5", "end"}), shown);
}

TEST(Scanner, ArgumentCountsCommasAndNumberSignsOfTheRecord) {
  const auto scanner = ScannerOn("#1=(#2,,$);#3");
  std::vector<std::uint32_t> counts;
  for (int i = 0; i < 8; ++i) {
    scanner->NextToken();
    counts.push_back(scanner->Argument());
  }
  EXPECT_EQ((std::vector<std::uint32_t>{1, 1, 1, 2, 4, 4, 0, 1}), counts);
}

TEST(Scanner, LineCountsLineFeedsBetweenTokensOnly) {
  const auto scanner = ScannerOn("\n(\r\n'\n\n'/*\n*/\r)\n");
  std::vector<std::uint32_t> lines{scanner->Line()};
  for (int i = 0; i < 4; ++i) {
    scanner->NextToken();
    lines.push_back(scanner->Line());
  }
  EXPECT_EQ((std::vector<std::uint32_t>{1, 2, 3, 3, 4}), lines);
}

std::vector<std::string> StatementsOf(const std::string& text, std::size_t windowSize) {
  const auto scanner = ScannerOn(text, nullptr, windowSize);
  std::vector<std::string> statements;
  for (;;) {
    const Token* const token = scanner->NextToken();
    if (token->Is(TokenType::EndOfFileToken)) return statements;
    if (token->Is(TokenType::SemicolonToken)) {
      statements.push_back(scanner->Stream()->StatementText());
    }
  }
}

TEST(Scanner, StatementTextGivesEachRecordAlone) {
  const std::string text =
      "DATA;\r\n#1=A(';',1.5,/*;*/.B.);#2 = B ( ) ;\n\n /* c */ #3=C(\n'x''y'\n);";
  const std::vector<std::string> expected{"DATA;", "\r\n#1=A(';',1.5,/*;*/.B.);", "#2 = B ( ) ;",
                                          "\n\n /* c */ #3=C(\n'x''y'\n);"};
  for (std::size_t windowSize = 1; windowSize <= text.size() + 1; ++windowSize) {
    ASSERT_EQ(expected, StatementsOf(text, windowSize)) << windowSize;
  }
}

TEST(Scanner, StatementTextHoldsNoMoreThanWasTaken) {
  const auto scanner = ScannerOn("#1;  #2;");
  scanner->NextToken();
  EXPECT_EQ("#1", scanner->Stream()->StatementText());
  scanner->NextToken();
  EXPECT_EQ("#1;", scanner->Stream()->StatementText()) << "kept until the next token is made";
  scanner->NextToken();
  EXPECT_EQ("  #2", scanner->Stream()->StatementText());
}

TEST(Scanner, BlanksBeforeARecordAreKeptUpToALimit) {
  for (const char* const blank : {" ", ",", "/* c */"}) {
    std::string text;
    while (text.size() < 3 * Scanner::kLongestLeadIn) text += blank;
    constexpr std::size_t kWindow = 1 << 20;
    const auto scanner = ScannerOn(text + "#1=", nullptr, kWindow);
    EXPECT_TRUE(scanner->NextToken()->Is(TokenType::IdentifierToken));
    EXPECT_LE(scanner->Stream()->StatementSize(), Scanner::kLongestLeadIn + 2 * kWindow) << blank;
  }
}

TEST(Scanner, WhatIsKeptBehindALongCommentBeginsOutsideOfIt) {
  const std::string comment = "/*" + std::string(2 * Scanner::kLongestLeadIn, 'c') + "*/";
  const auto scanner = ScannerOn(comment + " #1=", nullptr, 1 << 20);
  scanner->NextToken();
  EXPECT_EQ(" #1", scanner->Stream()->StatementText());
}

TEST(Scanner, InARecordEverythingIsKept) {
  const std::string text =
      "#1" + std::string(Scanner::kLongestLeadIn, ' ') + "/*" + std::string(1 << 20, 'c') + "*/=";
  const auto scanner = ScannerOn(text, nullptr, 1 << 18);
  scanner->NextToken();
  scanner->EnterRecord();
  scanner->NextToken();
  EXPECT_TRUE(text == scanner->Stream()->StatementText());
}

// --- Opening -------------------------------------------------------------------------------------

TEST(Scanner, AnUnknownExtensionIsReportedAndStopsTheScanner) {
  for (const char16_t* const path : {u"model.txt", u"model", u"model.ifcx", u"folder.ifc/model"}) {
    RecordedReports reports;
    Scanner scanner(path, 4096, RecordedReports::Reporter);
    EXPECT_EQ((std::vector<Report>{{"could_not_open_file_extension", u" "s + path, 0}}), *reports);
    EXPECT_TRUE(scanner.IsStopped());
    EXPECT_FALSE(scanner.IsOpen());
    EXPECT_EQ(nullptr, scanner.Stream());
    EXPECT_TRUE(scanner.PeekToken()->Is(TokenType::EndOfFileToken));
    EXPECT_TRUE(scanner.NextToken()->Is(TokenType::EndOfFileToken));
  }
}

TEST(Scanner, ExtensionsHaveNoCase) {
  TemporaryFolder folder;
  Scanner scanner(folder.Write("model.IFC", "#1"), 4096, nullptr);
  EXPECT_TRUE(scanner.IsOpen());
  EXPECT_EQ("#1", Visible(*scanner.NextToken()));
}

TEST(Scanner, AMissingFileIsNotOpenAndEndsAtOnce) {
  TemporaryFolder folder;
  RecordedReports reports;
  Scanner scanner(folder.Path("none.ifc"), 4096, RecordedReports::Reporter);
  EXPECT_FALSE(scanner.IsOpen());
  EXPECT_FALSE(scanner.IsStopped());
  EXPECT_TRUE(scanner.NextToken()->Is(TokenType::EndOfFileToken));
  EXPECT_TRUE(reports->empty());
}

// --- Failures of the stream ----------------------------------------------------------------------

template <class Exception>
void ExpectStop(Exception exception, const char16_t* message) {
  RecordedReports reports;
  Scanner scanner(
      std::make_unique<test::BreakingInputStream<Exception>>("(#1", std::move(exception)),
      RecordedReports::Reporter);
  EXPECT_EQ("(", Visible(*scanner.NextToken()));
  EXPECT_EQ("end", Visible(*scanner.PeekToken()));
  EXPECT_EQ("end", Visible(*scanner.NextToken()));
  EXPECT_TRUE(scanner.IsStopped());
  EXPECT_EQ((std::vector<Report>{{"", message, 0}}), *reports);
}

TEST(Scanner, RunningOutOfMemoryStopsIt) {
  ExpectStop(std::bad_alloc(), u"Not enough memory space. Try to run 64-bit Orlenta");
}

TEST(Scanner, AnyOtherExceptionStopsItWithItsText) {
  ExpectStop(std::runtime_error("the stream broke"), u"the stream broke");
}

// --- Borders of windows --------------------------------------------------------------------------

// Every kind of token, each with what could go wrong when it stands across a border.
const std::string kTricky =
    "ISO-10303-21;\r\nHEADER;FILE_DESCRIPTION(('a','b'),'2;1');\n"
    "FILE_NAME('n','t',('x''y'),$,'p','o','a');FILE_SCHEMA(('IFC4'));ENDSEC;\n"
    "DATA;\n#4294967279=IFC_WALL_(#1,\n#12 , -3.25E+10,1.,-.5,12,-7,-,2147483648,inf,\r\n"
    "$,*,.NOT_DEFINED.,..,+1.0,/* a * b **/'it''s','''''''',''/***/,"
    "'\\X2\\00E420AC\\X0\\z\\X4\\0000263A\\X0\\','\\PA\\\\S\\d\\S\\D','\\X\\E4\\\\\\N\\Sx\\Px',"
    "'\xC3\xA4\xFF',IFCLABEL('x'),(IFCREAL(1.5)),((),(1,2)),\"@\xC3/x);\n"
    "#2=A();#3=B();ENDSEC;END-ISO-10303-21;"s;

TEST(Scanner, TokensAreTheSameHoweverTheInputIsCutIntoWindows) {
  const TokenList expected = TokensOf(kTricky);
  ASSERT_GT(expected.size(), 70u);
  EXPECT_EQ("end iso END-ISO-10303-21", expected[expected.size() - 2]);
  for (std::size_t windowSize = 1; windowSize <= kTricky.size() + 1; ++windowSize) {
    ASSERT_EQ(expected, TokensOf(kTricky, nullptr, windowSize)) << windowSize;
  }
}

TEST(Scanner, RandomTextsGiveTheSameTokensHoweverTheyAreCut) {
  const std::vector<std::string> pieces{
      "#",     "12",     "'",      "''",  "\\", "\\X2\\", "00E4", "\\X0\\", "\\S\\", "\\PA\\",
      "\\X\\", "(",      ")",      ",",   ";",  "$",      "*",    ".",      "1.",    "E+5",
      "-",     "/*",     "*/",     "/",   "\n", " ",      "_",    "A",      "IFC_B", "ISO",
      "END",   "HEADER", "ENDSEC", "inf", "=",  "\xE4",   "\xFF", "&",      "\0"s};
  std::mt19937 random(20240307);
  for (int i = 0; i < 3000; ++i) {
    std::string text;
    for (std::size_t left = random() % 30; left != 0; --left) {
      text += pieces[random() % pieces.size()];
    }
    const RecordedReports reports;
    const TokenList expected = TokensOf(text, RecordedReports::Reporter);
    ASSERT_TRUE(expected.empty() || expected.back() != "this never ends") << text;
    const std::vector<Report> told = *reports;
    for (const std::size_t windowSize : {1u, 2u, 3u, 5u, 8u}) {
      const RecordedReports again;
      ASSERT_EQ(expected, TokensOf(text, RecordedReports::Reporter, windowSize)) << text;
      ASSERT_EQ(told, *again) << text;
    }
  }
}

TEST(Scanner, AFileInSmallBuffersGivesTheSameTokens) {
  TemporaryFolder folder;
  const WideString path = folder.Write("tricky.ifc", kTricky);
  const TokenList expected = TokensOf(kTricky);
  for (std::size_t bufferSize = 1; bufferSize <= 40; ++bufferSize) {
    Scanner scanner(path, bufferSize, nullptr);
    ASSERT_EQ(expected, TokensOf(scanner, kTricky.size())) << bufferSize;
  }
}

TEST(Scanner, EveryBeginningOfAnInputEnds) {
  for (std::size_t length = 0; length <= kTricky.size(); ++length) {
    RecordedReports reports;
    const TokenList tokens = TokensOf(kTricky.substr(0, length), RecordedReports::Reporter, 7);
    ASSERT_TRUE(tokens.empty() || tokens.back() != "this never ends") << length;
    ASSERT_LE(reports->size(), 1u) << length;
  }
}

TEST(Scanner, LineEndsOfAnySystemGiveTheSameTokens) {
  for (const char* const lineEnd : {"\n", "\r", "\r\n"}) {
    EXPECT_EQ((TokenList{"#1", "=", "word A", "(", "integer 1", "'x'", ")", ";", "#2", "=",
                         "word B", "(", ")", ";"}),
              TokensOf(test::WithLineEnds("#1=A(1,\n'x');\n\n#2=B(\n);", lineEnd)));
  }
}

}  // namespace
}  // namespace corvel
