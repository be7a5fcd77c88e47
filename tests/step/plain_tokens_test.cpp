// Tokens taken straight from the window are those that the scanner makes otherwise.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "step/reader/scanner.h"
#include "step/reader/string_decoder.h"
#include "support/recorded_reports.h"
#include "support/token_list.h"

namespace corvel {
namespace {

using test::RecordedReports;
using test::ScannerOn;
using test::TokenList;
using test::Visible;

std::string Quoted(std::string_view text) { return "'" + Visible(Widen(text)) + "'"; }

// The next token and what else the scanner tells, numbers with and without a point alike.
std::string Shown(const Token& token) {
  const bool number =
      token.Is(TokenType::RealDataTypeToken) || token.Is(TokenType::IntegerDataTypeToken);
  return number ? "number " + Visible(token.real) : Visible(token);
}

std::string Place(Scanner& scanner) {
  return " in line " + std::to_string(scanner.Line()) + ", argument " +
         std::to_string(scanner.Argument()) + ": " + scanner.Stream()->StatementText();
}

// Empty when the next token is not of kind `kind` or not plain.
std::string TakePlain(Scanner& scanner, unsigned kind) {
  std::uint32_t number = 0;
  std::int32_t integer = 0;
  double real = 0.0;
  std::string_view text;
  switch (kind) {
    case 0: return scanner.TakeIdentifier(number) ? "#" + std::to_string(number) : "";
    case 1: return scanner.TakeInteger(integer) ? "number " + Visible(double{0} + integer) : "";
    case 2: return scanner.TakeNumber(real) ? "number " + Visible(real) : "";
    case 3: return scanner.TakeString(text) ? Quoted(text) : "";
    case 4: return scanner.TakeEnumeration(text) ? "enumeration " + std::string(text) : "";
    case 5: return scanner.TakeClassName(text) ? "word " + std::string(text) : "";
    case 6: return scanner.TakeSemicolon() ? ";" : "";
    case 7: return scanner.TakeSign('(') ? "(" : "";
    case 8: return scanner.TakeSign(')') ? ")" : "";
    case 9: return scanner.TakeSign('=') ? "=" : "";
    case 10: return scanner.TakeSign('$') || scanner.TakeSign('*') ? "$" : "";
    default: return "";
  }
}

constexpr unsigned kKinds = 11;

struct Scan {
  TokenList tokens;
  std::size_t plain = 0;  // so many of them were taken without a token
};

// All tokens by NextToken alone.
TokenList ScanAsTokens(const std::string& text, std::size_t windowSize) {
  const auto scanner = ScannerOn(text, RecordedReports::Reporter, windowSize);
  TokenList tokens;
  for (const Token* token = scanner->NextToken(); !token->Is(TokenType::EndOfFileToken);
       token = scanner->NextToken()) {
    tokens.push_back(Shown(*token) + Place(*scanner));
  }
  return tokens;
}

// Tries kinds in any order; what is not taken so comes as a token, after a peek or without.
Scan ScanPlainFirst(const std::string& text, std::size_t windowSize, std::mt19937& random) {
  const auto scanner = ScannerOn(text, RecordedReports::Reporter, windowSize);
  Scan scan;
  for (;;) {
    if (random() % 2 == 0) scanner->StartStatement();
    std::string taken;
    const auto first = static_cast<unsigned>(random() % kKinds);
    for (unsigned i = 0; i < kKinds && taken.empty(); ++i) {
      taken = TakePlain(*scanner, (first + i) % kKinds);
    }
    if (!taken.empty()) {
      ++scan.plain;
    } else {
      if (random() % 4 == 0) scanner->PeekToken();
      const Token* const token = scanner->NextToken();
      if (token->Is(TokenType::EndOfFileToken)) return scan;
      taken = Shown(*token);
    }
    scan.tokens.push_back(taken + Place(*scanner));
  }
}

std::string RandomText(std::mt19937& random) {
  constexpr std::array kPieces = {
      "#1",         "#123456789",  "#1234567890", "#4294967295", "#",
      "1.",         "-1.5E-3",     "12",          "-7",          "-",
      "1234567890", "99999999999", "1.5x",        "0.1",         "'a'",
      "'it''s'",    "''",          "'\\X\\C4'",   "'\xC4'",      "'12345678'",
      "'a",         ".T.",         ".NO_.",       ".",           "IFCA",
      "IFC_WALL",   "IFC",         "IFX",         "inf",         "I",
      "DATA",       "(",           ")",           ";",           "=",
      "$",          "*",           "/* ,;\n*/",   "/",           "\n",
      " ",          ",",           "_",           "\xFF",        "#12",
      "IFCB4",      "2.5",         ";\n#5=",      "ENDSEC",      "'b c d e f g h i j'"};
  std::string text;
  for (std::size_t i = 0; i < 40; ++i) {
    text += kPieces[random() % kPieces.size()];
    if (random() % 2 == 0) text += ',';
  }
  return text;
}

TEST(PlainTokens, AgreeWithTokensOnRandomTextsInWindowsOfAnySize) {
  std::mt19937 random(20);
  std::size_t plain = 0;
  std::size_t all = 0;
  for (int round = 0; round < 20'000; ++round) {
    const std::string text = RandomText(random);
    const std::size_t windowSize = round % 2 == 0 ? text.size() + 1 : random() % 40 + 1;
    const TokenList expected = ScanAsTokens(text, windowSize);
    const Scan scan = ScanPlainFirst(text, windowSize, random);
    ASSERT_EQ(expected, scan.tokens) << text << " in windows of " << windowSize;
    plain += scan.plain;
    all += scan.tokens.size();
  }
  EXPECT_GT(plain, all / 3);
}

TEST(PlainTokens, OneThatReachesTheEndOfTheWindowIsNotTaken) {
  const auto scanner = ScannerOn("#12", nullptr, 3);
  std::uint32_t number = 0;
  EXPECT_FALSE(scanner->TakeIdentifier(number));  // there is no window before the first read
  EXPECT_EQ(12u, scanner->PeekToken()->number);
  const auto second = ScannerOn(";#12", nullptr, 4);
  EXPECT_FALSE(second->TakeSemicolon());
  EXPECT_EQ(";", Visible(*second->NextToken()));
  second->StartStatement();
  EXPECT_EQ('#', second->PeekSign());
  EXPECT_FALSE(second->TakeIdentifier(number));
  EXPECT_EQ(12u, second->NextToken()->number);
}

TEST(PlainTokens, NothingIsTakenPastATokenThatHasBeenPeeked) {
  const auto scanner = ScannerOn("1,2");
  scanner->PeekToken();
  double value = 0.0;
  EXPECT_EQ('\0', scanner->PeekSign());
  EXPECT_FALSE(scanner->TakeNumber(value));
  EXPECT_EQ(1, scanner->NextToken()->integer);
}

TEST(PlainTokens, AStoppedScannerGivesNone) {
  const auto scanner = ScannerOn("(1,2)");
  scanner->NextToken();
  scanner->Stop();
  double value = 0.0;
  EXPECT_FALSE(scanner->TakeNumber(value));
  EXPECT_FALSE(scanner->TakeSign('1'));
}

TEST(PlainTokens, PlainTextEndsAtTheFirstQuoteBackslashOrByteAbove127) {
  for (const char unusual : {'\'', '\\', '\x80', '\xFF'}) {
    for (std::size_t length = 0; length < 20; ++length) {
      for (const char plain : {'\0', '\x7F', '&', '(', '[', ']'}) {
        const std::string text = std::string(length, plain) + unusual + "'\\'\\";
        EXPECT_EQ(text.data() + length, EndOfPlainText(text.data(), text.data() + text.size()));
      }
    }
  }
}

}  // namespace
}  // namespace corvel
