#include "step/reader/string_decoder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <initializer_list>

#include "step/writer/step_writer.h"
#include "support/memory_streams.h"
#include "support/token_list.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using test::MemoryInputStream;
using test::MemoryOutpoutStream;
using test::Visible;

// The units of a text that stands behind an opening quote, and what is left of the input.
struct Decoded {
  WideString text;
  std::string rest;
};

Decoded Decode(const std::string& text, std::size_t windowSize) {
  MemoryInputStream stream(text, windowSize);
  Decoded decoded;
  DecodeString(stream, decoded.text);
  MemoryInputStream again(text, windowSize);
  DecodedText narrow;
  DecodeString(again, narrow);
  EXPECT_EQ(decoded.text, narrow.Wide());
  EXPECT_EQ(narrow.IsPlain(), std::all_of(decoded.text.begin(), decoded.text.end(),
                                          [](char16_t unit) { return unit < 256; }));
  decoded.rest.resize(text.size());
  decoded.rest.resize(stream.Read(decoded.rest.data(), decoded.rest.size()));
  return decoded;
}

// "text|rest"
std::string Shown(const Decoded& decoded) { return Visible(decoded.text) + "|" + decoded.rest; }

struct Case {
  std::string input;
  std::string shown;
};

// Every input gives the same in windows of any size.
void ExpectDecoded(std::initializer_list<Case> cases) {
  for (const Case& given : cases) {
    for (std::size_t windowSize = 1; windowSize <= given.input.size() + 1; ++windowSize) {
      EXPECT_EQ(given.shown, Shown(Decode(given.input, windowSize)))
          << given.input << " in windows of " << windowSize;
    }
  }
}

// What the writer makes of it.
std::string Written(const std::string& text) {
  MemoryOutpoutStream stream;
  StepWriter(stream).WriteText(Decode(text, 3).text.c_str());
  return stream.Text();
}

TEST(StringDecoder, PlainTextEndsAtTheQuote) {
  ExpectDecoded({{"'", "|"}, {"')", "|)"}, {"a\"b(c);#1','x'", "a\"b(c);#1|,'x'"}});
}

TEST(StringDecoder, LineEndsInAStringAreText) {
  ExpectDecoded({{"a\r\nb\t'", "a<000D><000A>b<0009>|"}});
}

TEST(StringDecoder, ADoubledQuoteIsOne) {
  ExpectDecoded({{"it''s'", "it's|"}, {"''''''';", "'''|;"}});
}

TEST(StringDecoder, ADoubledBackslashIsOne) {
  ExpectDecoded({{"a\\\\b'", "a\\b|"}, {"\\\\'", "\\|"}, {"\\\\X2\\\\00E4'", "\\X2\\00E4|"}});
}

TEST(StringDecoder, ABackslashBeforeAnythingElseIsItself) {
  ExpectDecoded({{"\\n\\'", "\\n\\|"}, {"a\\\xE4'", "a\\<DCE4>|"}});
}

TEST(StringDecoder, DirectivesAreUpperCase) { ExpectDecoded({{"\\s\\p\\x'", "\\s\\p\\x|"}}); }

// --- \S\ and \P.\ --------------------------------------------------------------------------------

TEST(StringDecoder, ShiftedCharactersTakeTheDefaultPageFirst) {
  ExpectDecoded({{"\\S\\d'", "<00E4>|"},
                 {"\\S\\\x00'"s, "<20AC>|"}});  // 128 is the euro sign in Windows-1252
}

TEST(StringDecoder, ShiftAdds128ToAnyByte) {
  ExpectDecoded({{"\\S\\''", "<00A7>|"}, {"\\S\\\\'", "<00DC>|"}, {"\\S\\\xE4'", "d|"}});
}

TEST(StringDecoder, ShiftWithoutASecondBackslashIsText) {
  ExpectDecoded({{"\\Sd'", "\\Sd|"}, {"\\S'", "\\S|"}});
}

TEST(StringDecoder, PagesChooseThePartsOfIso8859) {
  ExpectDecoded({{"\\PA\\\\S\\d'", "<00E4>|"},
                 {"\\PB\\\\S\\d\\S\\1'", "<00E4><0105>|"},
                 {"\\PE\\\\S\\T'", "<0434>|"},    // Cyrillic
                 {"\\PG\\\\S\\d'", "<03B4>|"}});  // Greek
}

TEST(StringDecoder, APageHoldsForHexBytesToo) {
  ExpectDecoded({{"\\PE\\\\X\\D4x\\S\\T\\PA\\\\S\\d'", "<0434>x<0434><00E4>|"}});
}

TEST(StringDecoder, APageLastsForItsStringOnly) {
  MemoryInputStream stream("\\PE\\\\X\\D4'\\X\\D4'");
  WideString text;
  DecodeString(stream, text);
  DecodeString(stream, text);
  EXPECT_EQ("<0434><00D4>", Visible(text));
}

TEST(StringDecoder, AByteThatItsPageLacksStaysTheByte) {
  ExpectDecoded({{"\\X\\81'", "<0081>|"},         // Windows-1252 has nothing there
                 {"\\PC\\\\X\\A5'", "<00A5>|"},   // nor has ISO 8859-3 here
                 {"\\Pz\\\\S\\d'", "<00E4>|"}});  // there is no such page
}

TEST(StringDecoder, APageWithoutASecondBackslashIsText) {
  ExpectDecoded({{"C:\\Projects\\new'", "C:\\Projects\\new|"},
                 {"\\P'", "\\P|"},
                 {"\\PA'", "\\PA|"},
                 {"\\P\xE4z'", "\\P<DCE4>z|"},
                 {"\\P\\\\'", "\\P\\|"}});
}

// --- \X ------------------------------------------------------------------------------------------

TEST(StringDecoder, AHexByteIsItsCharacterOfThePage) {
  ExpectDecoded({{"\\X\\E4\\X\\41'", "<00E4>A|"}, {"\\X\\eF'", "<00EF>|"}});
}

TEST(StringDecoder, FourHexDigitsAreOneUnit) {
  ExpectDecoded({{"\\X2\\00E4\\X0\\'", "<00E4>|"},
                 {"a\\X2\\00e420aC\\X0\\b'", "a<00E4><20AC>b|"},
                 {"\\X2\\D83DDE00\\X0\\'", "<D83D><DE00>|"},
                 {"\\X2\\\\X0\\'", "|"}});
}

TEST(StringDecoder, EightHexDigitsGiveTheLowUnitAndThenAHighOneThatIsNotZero) {
  ExpectDecoded({{"\\X4\\0000263A\\X0\\'", "<263A>|"},
                 {"\\X4\\0001F600\\X0\\'", "<F600><0001>|"},
                 {"\\X4\\0001004100000042\\X0\\'", "A<0001>B|"}});
}

TEST(StringDecoder, DigitsThatMakeNoWholeUnitAreDropped) {
  ExpectDecoded({{"\\X2\\00E4123\\X0\\x'", "<00E4>x|"},
                 {"\\X2\\0\\X0\\x'", "x|"},
                 {"\\X4\\000000410000004\\X0\\'", "A|"}});
}

TEST(StringDecoder, HexUnitsEndAtTheFirstBackslashWhichTakesFourBytes) {
  ExpectDecoded({{"\\X2\\00E4\\X0abc'", "<00E4>bc|"}});
}

TEST(StringDecoder, XBeforeAnythingElseIsDropped) {
  ExpectDecoded({{"\\\\C:\\Xy'", "\\C:y|"}, {"\\X3\\\\00E4'", "3\\00E4|"}, {"\\X'", "|"}});
}

// --- Raw bytes -----------------------------------------------------------------------------------

TEST(StringDecoder, RawBytesAreKeptApartFromCharacters) {
  ExpectDecoded({{"\xC3\xA4\x80\xFF'", "<DCC3><DCA4><DC80><DCFF>|"}});
}

TEST(StringDecoder, RawBytesAndCharactersBothSurviveWriting) {
  EXPECT_EQ("'\xC3\xA4\\X2\\00E4\\X0\\',", Written("\xC3\xA4\\X\\E4'"));
  EXPECT_EQ("'\\X2\\FF84\\X0\\\x84',", Written("\\X2\\FF84\\X0\\\x84'"));
  EXPECT_EQ("'\xFF\x80',", Written("\xFF\x80'"));
}

TEST(StringDecoder, SurrogatePairsSurviveWriting) {
  EXPECT_EQ("'\\X2\\D83D\\X0\\\\X2\\DC84\\X0\\',", Written("\\X2\\D83DDC84\\X0\\'"))
      << "the second half of this one looks like a raw byte";
}

// What is written of a byte of a plain string.
std::string WrittenByte(int byte) {
  const char c = static_cast<char>(byte);
  if (c == '\'' || c == '\\') return std::string(2, c);
  if ((byte >= 32 && byte <= 126) || byte > 127) return std::string(1, c);
  char escaped[16];
  std::snprintf(escaped, sizeof escaped, "\\X2\\00%02X\\X0\\", static_cast<unsigned>(byte));
  return escaped;
}

TEST(StringDecoder, EveryByteThatIsNoDirectiveComesBack) {
  std::string all;
  std::string expected;
  for (int byte = 1; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    all.append(c == '\'' || c == '\\' ? 2 : 1, c);
    expected += WrittenByte(byte);
  }
  EXPECT_EQ("'" + expected + "',", Written(all + "'"));
}

// --- The end of the input ------------------------------------------------------------------------

TEST(StringDecoder, TheEndOfTheInputEndsTheString) {
  ExpectDecoded({{"", "|"},
                 {"abc", "abc|"},
                 {"\\", "\\|"},
                 {"\\S", "\\S|"},
                 {"\\S\\", "|"},
                 {"\\P", "\\P|"},
                 {"\\PA", "\\PA|"},
                 {"\\PA\\", "|"},
                 {"\\X", "|"},
                 {"\\X\\", "|"},
                 {"\\X\\E", "|"},
                 {"\\X2", "|"},
                 {"\\X2\\00E", "|"},
                 {"\\X2\\00E4", "<00E4>|"},
                 {"\\X2\\00E4\\X", "<00E4>|"}});
}

}  // namespace
}  // namespace corvel
