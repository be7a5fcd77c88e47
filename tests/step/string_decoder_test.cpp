#include "step/reader/string_decoder.h"

#include <gtest/gtest.h>

#include "step/writer/step_writer.h"
#include "support/memory_streams.h"
#include "support/token_list.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using test::MemoryInputStream;
using test::MemoryOutpoutStream;
using test::Visible;

// The units of `text`, which stands behind an opening quote, and what is left of the input.
struct Decoded {
  WideString text;
  std::string rest;
};

Decoded Decode(const std::string& text, std::size_t windowSize) {
  MemoryInputStream stream(text, windowSize);
  Decoded decoded;
  DecodeString(stream, decoded.text);
  decoded.rest.resize(text.size());
  decoded.rest.resize(stream.Read(decoded.rest.data(), decoded.rest.size()));
  return decoded;
}

// "text|rest", the same for every size of window.
std::string Shown(const std::string& text) {
  const Decoded whole = Decode(text, text.size() + 1);
  for (std::size_t windowSize = 1; windowSize <= text.size(); ++windowSize) {
    const Decoded pieces = Decode(text, windowSize);
    EXPECT_EQ(Visible(whole.text), Visible(pieces.text)) << windowSize;
    EXPECT_EQ(whole.rest, pieces.rest) << windowSize;
  }
  return Visible(whole.text) + "|" + whole.rest;
}

// What the writer makes of it.
std::string Written(const std::string& text) {
  MemoryOutpoutStream stream;
  StepWriter(stream).WriteText(Decode(text, 3).text.c_str());
  return stream.Text();
}

TEST(StringDecoder, PlainTextEndsAtTheQuote) {
  EXPECT_EQ("|", Shown("'"));
  EXPECT_EQ("|)", Shown("')"));
  EXPECT_EQ("a\"b(c);#1|,'x'", Shown("a\"b(c);#1','x'"));
}

TEST(StringDecoder, LineEndsInAStringAreText) {
  EXPECT_EQ("a<000D><000A>b<0009>|", Shown("a\r\nb\t'"));
}

TEST(StringDecoder, ADoubledQuoteIsOne) {
  EXPECT_EQ("it's|", Shown("it''s'"));
  EXPECT_EQ("'''|;", Shown("''''''';"));
}

TEST(StringDecoder, ADoubledBackslashIsOne) {
  EXPECT_EQ("a\\b|", Shown("a\\\\b'"));
  EXPECT_EQ("\\|", Shown("\\\\'"));
  EXPECT_EQ("\\X2\\00E4|", Shown("\\\\X2\\\\00E4'"));
}

TEST(StringDecoder, ABackslashBeforeAnythingElseIsItself) {
  EXPECT_EQ("\\n\\|", Shown("\\n\\'"));
  EXPECT_EQ("a\\<DCE4>|", Shown("a\\\xE4'"));
  EXPECT_EQ("\\s\\p\\x|", Shown("\\s\\p\\x'")) << "the directives are upper case";
}

// --- \S\ and \P.\ --------------------------------------------------------------------------------

TEST(StringDecoder, ShiftedCharactersTakeTheDefaultPageFirst) {
  EXPECT_EQ("<00E4>|", Shown("\\S\\d'"));
  EXPECT_EQ("<20AC>|", Shown("\\S\\\x00'"s)) << "128 is the euro sign in Windows-1252";
}

TEST(StringDecoder, ShiftedCharactersTakeAnyByte) {
  EXPECT_EQ("<00A7>|", Shown("\\S\\''"));
  EXPECT_EQ("<00DC>|", Shown("\\S\\\\'"));
  EXPECT_EQ("d|", Shown("\\S\\\xE4'")) << "128 is added to a byte";
}

TEST(StringDecoder, ShiftWithoutASecondBackslashIsText) {
  EXPECT_EQ("\\Sd|", Shown("\\Sd'"));
  EXPECT_EQ("\\S|", Shown("\\S'"));
}

TEST(StringDecoder, PagesChooseThePartsOfIso8859) {
  EXPECT_EQ("<00E4>|", Shown("\\PA\\\\S\\d'"));
  EXPECT_EQ("<00E4><0105>|", Shown("\\PB\\\\S\\d\\S\\1'"));
  EXPECT_EQ("<0434>|", Shown("\\PE\\\\S\\T'")) << "Cyrillic";
  EXPECT_EQ("<03B4>|", Shown("\\PG\\\\S\\d'")) << "Greek";
}

TEST(StringDecoder, APageLastsForTheStringAndHoldsForHexBytes) {
  EXPECT_EQ("<0434>x<0434><00E4>|", Shown("\\PE\\\\X\\D4x\\S\\T\\PA\\\\S\\d'"));
  EXPECT_EQ("<00D4>|", Shown("\\X\\D4'"));
}

TEST(StringDecoder, AByteThatItsPageLacksStaysTheByte) {
  EXPECT_EQ("<0081>|", Shown("\\X\\81'")) << "Windows-1252 has nothing there";
  EXPECT_EQ("<00A5>|", Shown("\\PC\\\\X\\A5'")) << "nor has ISO 8859-3 here";
  EXPECT_EQ("<00E4>|", Shown("\\Pz\\\\S\\d'")) << "there is no such page";
}

TEST(StringDecoder, APageWithoutASecondBackslashIsText) {
  EXPECT_EQ("C:\\Projects\\new|", Shown("C:\\Projects\\new'"));
  EXPECT_EQ("\\P|", Shown("\\P'"));
  EXPECT_EQ("\\PA|", Shown("\\PA'"));
  EXPECT_EQ("\\P<DCE4>a|", Shown("\\P\xE4"
                                 "a'"));
  EXPECT_EQ("\\P\\|", Shown("\\P\\\\'"));
}

// --- \X
// --------------------------------------------------------------------------------------------

TEST(StringDecoder, HexBytes) {
  EXPECT_EQ("<00E4>A|", Shown("\\X\\E4\\X\\41'"));
  EXPECT_EQ("<00EF>|", Shown("\\X\\eF'"));
}

TEST(StringDecoder, HexUnits) {
  EXPECT_EQ("<00E4>|", Shown("\\X2\\00E4\\X0\\'"));
  EXPECT_EQ("a<00E4><20AC>b|", Shown("a\\X2\\00e420aC\\X0\\b'"));
  EXPECT_EQ("<D83D><DE00>|", Shown("\\X2\\D83DDE00\\X0\\'"));
  EXPECT_EQ("|", Shown("\\X2\\\\X0\\'"));
}

TEST(StringDecoder, LongHexUnitsGiveTheLowHalfFirst) {
  EXPECT_EQ("<263A>|", Shown("\\X4\\0000263A\\X0\\'"));
  EXPECT_EQ("<F600><0001>|", Shown("\\X4\\0001F600\\X0\\'"));
  EXPECT_EQ("A<0001>B|", Shown("\\X4\\0001004100000042\\X0\\'"));
}

TEST(StringDecoder, DigitsThatMakeNoWholeUnitAreDropped) {
  EXPECT_EQ("<00E4>x|", Shown("\\X2\\00E4123\\X0\\x'"));
  EXPECT_EQ("x|", Shown("\\X2\\0\\X0\\x'"));
  EXPECT_EQ("A|", Shown("\\X4\\000000410000004\\X0\\'"));
}

TEST(StringDecoder, HexUnitsEndAtTheFirstBackslash) {
  EXPECT_EQ("<00E4>bc|", Shown("\\X2\\00E4\\X0abc'"))
      << "four bytes are taken there, whatever they are";
}

TEST(StringDecoder, XBeforeAnythingElseIsDropped) {
  EXPECT_EQ("\\C:y|", Shown("\\\\C:\\Xy'"));
  EXPECT_EQ("3\\00E4|", Shown("\\X3\\\\00E4'"));
  EXPECT_EQ("|", Shown("\\X'"));
}

// --- Raw bytes
// -------------------------------------------------------------------------------------

TEST(StringDecoder, RawBytesAreKeptApartFromCharacters) {
  EXPECT_EQ("<DCC3><DCA4><DC80><DCFF>|", Shown("\xC3\xA4\x80\xFF'"));
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

TEST(StringDecoder, EveryByteThatIsNoDirectiveComesBack) {
  std::string all;
  std::string expected = "'";
  for (int byte = 1; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    if (c == '\'' || c == '\\') {
      all += std::string(2, c);
      expected += std::string(2, c);
    } else {
      all.push_back(c);
      if ((byte >= 32 && byte <= 126) || byte > 127) {
        expected.push_back(c);
      } else {
        char escaped[16];
        std::snprintf(escaped, sizeof escaped, "\\X2\\00%02X\\X0\\", static_cast<unsigned>(byte));
        expected += escaped;
      }
    }
  }
  EXPECT_EQ(expected + "',", Written(all + "'"));
}

// --- The end of the input
// --------------------------------------------------------------------------

TEST(StringDecoder, TheEndOfTheInputEndsTheString) {
  EXPECT_EQ("|", Shown(""));
  EXPECT_EQ("abc|", Shown("abc"));
  EXPECT_EQ("\\|", Shown("\\"));
  EXPECT_EQ("\\S|", Shown("\\S"));
  EXPECT_EQ("|", Shown("\\S\\"));
  EXPECT_EQ("\\P|", Shown("\\P"));
  EXPECT_EQ("\\PA|", Shown("\\PA"));
  EXPECT_EQ("|", Shown("\\PA\\"));
  EXPECT_EQ("|", Shown("\\X"));
  EXPECT_EQ("|", Shown("\\X\\"));
  EXPECT_EQ("|", Shown("\\X\\E"));
  EXPECT_EQ("|", Shown("\\X2"));
  EXPECT_EQ("|", Shown("\\X2\\00E"));
  EXPECT_EQ("<00E4>|", Shown("\\X2\\00E4"));
  EXPECT_EQ("<00E4>|", Shown("\\X2\\00E4\\X"));
}

}  // namespace
}  // namespace corvel
