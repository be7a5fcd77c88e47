// The library as the build leaves it, with the texts and pictures that users get.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "session.h"

namespace corvel::test_host {
namespace {

class ShippedLibrary : public testing::Test {
 protected:
  void LoadIn(const char16_t* language) {
    session.viewer.language = language;
    session.viewer.readsTexts = true;
    session.Load();
  }
  bool Has(std::string_view line) const {
    const auto& lines = session.transcript.Lines();
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  }
  // The files that the calls of `function` name.
  std::vector<std::string> FilesOf(std::string_view function) const {
    std::vector<std::string> names;
    for (const std::string& line : session.transcript.Lines()) {
      const std::size_t start = line.find("\"<data>/");
      if (!line.starts_with(function) || start == std::string::npos) continue;
      const std::size_t name = start + std::string_view("\"<data>/").size();
      names.push_back(line.substr(name, line.find('"', name) - name));
    }
    return names;
  }

  Session session{Session::AsBuilt()};
};

TEST_F(ShippedLibrary, HasItsOwnNameAndItsDataBesideIt) {
  EXPECT_EQ("corvel", PathText(session.LibraryPath().stem()));
  session.Load();
  plugin::PluginInformation information{};
  session.TheLibrary().getPluginInfo(&information);
  EXPECT_EQ("<data>/", session.transcript.Normalised(Utf8(information.dataFolder)));
  EXPECT_TRUE(std::filesystem::is_directory(session.DataFolder()));
}

TEST_F(ShippedLibrary, ShowsEnglishTextsToAnEnglishViewer) {
  LoadIn(u"en");
  EXPECT_TRUE(Has("load_texts(\"<data>/lang.en\") = 1"));
  EXPECT_TRUE(Has("create_group(0, \"Corvel\") = 1"));
  EXPECT_TRUE(
      Has(R"(set_button_text(11, "Merge", "Merges the loaded projects into one IFC file."))"));
  EXPECT_TRUE(Has(R"(set_button_text(24, "Merge options", "Sets how duplicate GUIDs, differing )"
                  R"(units and unknown enumeration values are handled."))"));
}

TEST_F(ShippedLibrary, ShowsPolishTextsToAPolishViewer) {
  LoadIn(u"pl");
  EXPECT_TRUE(Has("load_texts(\"<data>/lang.pl\") = 1"));
  EXPECT_TRUE(
      Has(R"(set_button_text(11, "Scalanie", "Scala wczytane projekty w jeden plik IFC."))"));
  EXPECT_TRUE(Has(R"(set_button_text(24, "Opcje scalania", "Określa postępowanie z powtórzonymi )"
                  R"(GUID, różnymi jednostkami i nieznanymi wartościami typów wyliczeniowych."))"));
}

TEST_F(ShippedLibrary, ShowsEnglishTextsToAViewerOfAnotherLanguage) {
  LoadIn(u"tlh");
  EXPECT_TRUE(Has("load_texts(\"<data>/lang.tlh\") = 0"));
  EXPECT_TRUE(
      Has(R"(set_button_text(11, "Merge", "Merges the loaded projects into one IFC file."))"));
}

TEST_F(ShippedLibrary, HasEveryPictureOfTheRibbon) {
  session.Load();
  EXPECT_EQ((std::vector<std::string>{"merge.png", "open.png"}), FilesOf("set_button_image("));
  EXPECT_EQ((std::vector<std::string>{"merge_small.png", "combine_active.png",
                                      "combine_visible_small.png", "combine_selected.png",
                                      "options.png", "open_small.png"}),
            FilesOf("set_button_small_image("));
  constexpr std::string_view kPng = "\x89PNG\r\n\x1a\n";
  for (const char* const function : {"set_button_image(", "set_button_small_image("}) {
    for (const std::string& name : FilesOf(function)) {
      EXPECT_TRUE(ReadBytes(session.DataFolder() / name).starts_with(kPng)) << name;
    }
  }
}

TEST_F(ShippedLibrary, HasTheIconOfItsWindow) {
  constexpr std::string_view kIcon("\0\0\1\0", 4);
  EXPECT_TRUE(ReadBytes(session.DataFolder() / "options.ico").starts_with(kIcon));
}

}  // namespace
}  // namespace corvel::test_host
