#include "host/language_file.h"

#include <gtest/gtest.h>

#include <optional>

#include "support/temporary_folder.h"

namespace corvel::host {

namespace {

using Text = std::optional<WideString>;
using Problems = std::vector<WideString>;

Text TextIn(const LanguageFile& file, std::string_view key) {
  const WideString* const text = file.Find(key);
  return text == nullptr ? Text() : Text(*text);
}

class LanguageFileReading : public testing::Test {
 protected:
  // The file's whole content.
  void Read(std::string_view bytes) { ASSERT_TRUE(file.Load(folder.Write("lang.xx", bytes))); }

  // What is said of a line that is the only one of its file, without path and number.
  WideString ProblemOf(std::string_view line) {
    EXPECT_TRUE(file.Load(folder.Write("lang.xx", line)));
    EXPECT_EQ(0U, file.Size());
    const WideString start = folder.Path("lang.xx") + u", line 1: ";
    if (file.Problems().size() != 1 || file.Problems()[0].rfind(start, 0) != 0) return u"?";
    return file.Problems()[0].substr(start.size());
  }

  // The text of a line `key = TEXT`, which has to be without a problem.
  Text Reads(std::string_view text) {
    EXPECT_TRUE(file.Load(folder.Write("lang.xx", "key = " + std::string(text) + "\n")));
    EXPECT_EQ(Problems(), file.Problems());
    return TextIn(file, "key");
  }

  const test::TemporaryFolder folder;
  LanguageFile file;
};

}  // namespace

TEST_F(LanguageFileReading, EveryLineGivesATextToAKey) {
  Read("btn_merge = Merge\nbtn_merge.hint=Merges all.\nbtnCancelName\t=\tCancel");
  EXPECT_EQ(3U, file.Size());
  EXPECT_EQ(u"Merge", TextIn(file, "btn_merge"));
  EXPECT_EQ(u"Merges all.", TextIn(file, "btn_merge.hint"));
  EXPECT_EQ(u"Cancel", TextIn(file, "btnCancelName"));
  EXPECT_EQ(Problems(), file.Problems());
}

TEST_F(LanguageFileReading, AKeyIsFoundAsItIsWrittenOnly) {
  Read("name = Name\n");
  EXPECT_EQ(Text(), TextIn(file, "Name"));
  EXPECT_EQ(Text(), TextIn(file, "nam"));
  EXPECT_EQ(Text(), TextIn(file, ""));
}

TEST_F(LanguageFileReading, CommentsAndEmptyLinesDoNotCount) {
  Read("# a = b\n\n   \t\n  # indented = too\nkey = text # of the key\n");
  EXPECT_EQ(1U, file.Size());
  EXPECT_EQ(u"text # of the key", TextIn(file, "key"));
  EXPECT_EQ(Problems(), file.Problems());
}

TEST_F(LanguageFileReading, AnEmptyFileHasNoTextsAndNoProblems) {
  Read("");
  EXPECT_EQ(0U, file.Size());
  EXPECT_EQ(Problems(), file.Problems());
}

TEST_F(LanguageFileReading, OnlyTheFirstEqualSignSeparates) { EXPECT_EQ(u"b = c", Reads("b = c")); }

TEST_F(LanguageFileReading, BlanksAroundATextDoNotBelongToIt) {
  EXPECT_EQ(u"two  words", Reads("  \ttwo  words \t "));
}

TEST_F(LanguageFileReading, QuotesKeepTheBlanksAtTheEnds) {
  EXPECT_EQ(u" a b\t", Reads("\" a b\t\"  "));
  EXPECT_EQ(u"", Reads("\"\""));
}

TEST_F(LanguageFileReading, NoBreakSpacesBelongToATextEvenAtItsEnd) {
  EXPECT_EQ(u"Lecture\u00A0", Reads("Lecture\xC2\xA0"));
}

TEST_F(LanguageFileReading, EscapesStandForLineFeedBackslashAndQuote) {
  EXPECT_EQ(u"a\nb\\c\"d", Reads("a\\nb\\\\c\\\"d"));
  EXPECT_EQ(u"\na\\nb\"\n", Reads("\"\\na\\\\nb\\\"\\n\""));
  EXPECT_EQ(u"\"quoted\"", Reads("\\\"quoted\\\""));
}

TEST_F(LanguageFileReading, AQuoteInsideAnUnquotedTextStandsForItself) {
  EXPECT_EQ(u"the key \"a\" counts", Reads("the key \"a\" counts"));
}

TEST_F(LanguageFileReading, TextsAreUtf8) {
  EXPECT_EQ(u"Łączny, größer, énumération, ¿Desea…?",
            Reads("Łączny, größer, énumération, ¿Desea…?"));
  EXPECT_EQ(u"\U0001F3E0", Reads("\xF0\x9F\x8F\xA0"));
}

TEST_F(LanguageFileReading, LinesOfOtherSystemsAndAByteOrderMarkAreFine) {
  Read(
      "\xEF\xBB\xBF"
      "a = 1\r\n\r\n# note\r\nb = \" 2 \"\r\n");
  EXPECT_EQ(u"1", TextIn(file, "a"));
  EXPECT_EQ(u" 2 ", TextIn(file, "b"));
  EXPECT_EQ(Problems(), file.Problems());
}

TEST_F(LanguageFileReading, AMalformedLineIsToldWhyAndSkipped) {
  EXPECT_EQ(u"there is no \"=\".", ProblemOf("btn_merge Merge"));
  EXPECT_EQ(u"there is no proper key before the \"=\".", ProblemOf("= Merge"));
  EXPECT_EQ(u"there is no proper key before the \"=\".", ProblemOf("btn merge = Merge"));
  EXPECT_EQ(u"there is no proper key before the \"=\".", ProblemOf("\"btn_merge\" = Merge"));
  EXPECT_EQ(u"there is no proper key before the \"=\".", ProblemOf("größe = Size"));
  EXPECT_EQ(u"the text is missing.", ProblemOf("btn_merge =  "));
  EXPECT_EQ(u"a backslash stands at the end.", ProblemOf("btn_merge = Merge\\"));
  EXPECT_EQ(u"only n, \\ and \" may follow a backslash.", ProblemOf("btn_merge = a\\tb"));
  EXPECT_EQ(u"the closing quote is missing.", ProblemOf("btn_merge = \"Merge"));
  EXPECT_EQ(u"the closing quote is missing.", ProblemOf("btn_merge = \"Merge\\\""));
  EXPECT_EQ(u"the closing quote is missing.", ProblemOf("btn_merge = \""));
  EXPECT_EQ(u"something follows the closing quote.", ProblemOf("btn_merge = \"Merge\" all"));
  EXPECT_EQ(u"something follows the closing quote.", ProblemOf("btn_merge = \"a\"b\""));
}

TEST_F(LanguageFileReading, ATextThatIsNotUtf8IsSkipped) {
  EXPECT_EQ(u"the text is not UTF-8.", ProblemOf("key = gr\xF6\xDF"
                                                 "er"));
  EXPECT_EQ(u"the text is not UTF-8.", ProblemOf("key = cut \xC3"));
  EXPECT_EQ(u"the text is not UTF-8.", ProblemOf("key = \"\xF0\x9F\x8F\xA0 \xA0\""));
}

TEST_F(LanguageFileReading, ProblemsNameFileAndLineAndTheOtherLinesCount) {
  Read("# Texts\na = 1\nno text\n\nb = \"2\nc = 3\n");
  EXPECT_EQ(2U, file.Size());
  EXPECT_EQ(u"1", TextIn(file, "a"));
  EXPECT_EQ(u"3", TextIn(file, "c"));
  const WideString path = folder.Path("lang.xx");
  EXPECT_EQ((Problems{path + u", line 3: there is no \"=\".",
                      path + u", line 5: the closing quote is missing."}),
            file.Problems());
}

TEST_F(LanguageFileReading, OfTwoTextsOfAKeyTheFirstCounts) {
  Read("a = 1\nb = 2\na = 3\n");
  EXPECT_EQ(u"1", TextIn(file, "a"));
  EXPECT_EQ(Problems{folder.Path("lang.xx") + u", line 3: the key \"a\" has a text already."},
            file.Problems());
}

TEST_F(LanguageFileReading, TheNextFileTakesThePlaceOfTheOneBefore) {
  Read("a = 1\nb = 2\nbad\n");
  ASSERT_TRUE(file.Load(folder.Write("lang.yy", "b = zwei\n")));
  EXPECT_EQ(1U, file.Size());
  EXPECT_EQ(u"zwei", TextIn(file, "b"));
  EXPECT_EQ(Problems(), file.Problems());
}

TEST_F(LanguageFileReading, AFileThatCannotBeReadChangesNothing) {
  Read("a = 1\nbad\n");
  const Problems before = file.Problems();
  EXPECT_FALSE(file.Load(folder.Path("none")));
  EXPECT_FALSE(file.Load(folder.Path()));
  const std::string tooLarge(LanguageFile::kLargestFile + 1, '\n');
  EXPECT_FALSE(file.Load(folder.Write("large", tooLarge)));
#ifdef __linux__
  EXPECT_FALSE(file.Load(u"/proc/self/mem"));  // opens, but its first page cannot be read
#endif
  EXPECT_EQ(u"1", TextIn(file, "a"));
  EXPECT_EQ(before, file.Problems());
}

TEST_F(LanguageFileReading, AFileOfTheLargestSizeIsRead) {
  std::string bytes(LanguageFile::kLargestFile, '\n');
  bytes.replace(bytes.size() - 6, 5, "a = 1");
  Read(bytes);
  EXPECT_EQ(u"1", TextIn(file, "a"));
}

TEST(ShippedLanguageFiles, AreReadWithoutAProblem) {
  for (const char16_t* code : {u"en", u"pl", u"de", u"fr", u"es"}) {
    const WideString path = FromUtf8(CORVEL_DATA_DIR) + u"/lang." + code;
    LanguageFile file;
    ASSERT_TRUE(file.Load(path)) << ToUtf8(path);
    EXPECT_EQ(Problems(), file.Problems());
    EXPECT_EQ(60U, file.Size()) << ToUtf8(path);
  }
}

TEST(ShippedLanguageFiles, KeepTheEndsThatHoldGluedTextsApart) {
  LanguageFile file;
  ASSERT_TRUE(file.Load(FromUtf8(CORVEL_DATA_DIR) + u"/lang.en"));
  EXPECT_EQ(u"This file could not be read completely:\n", TextIn(file, "unable_to_continue"));
  EXPECT_EQ(u"\nThe merge will be terminated.", TextIn(file, "merging_terminate"));
  EXPECT_EQ(u" because their IFC schema is different", TextIn(file, "due_to_invalid_schema"));
}

}  // namespace corvel::host
