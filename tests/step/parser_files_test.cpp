// What a read leaves beside its input, however it ends.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/read_model.h"

#ifndef _WIN32
#include "support/posix_faults.h"
#endif

namespace corvel {
namespace {

using namespace std::string_literals;
using test::ModelFile;
using Model = test::ReadModel;
using test::RecordedProgress;
using test::RecordedReports;
using test::Report;
using test::TemporaryFolder;
using Names = std::vector<std::string>;

// The first of the two is a forward reference.
constexpr const char* kForward = "#1=IFCLOCALPLACEMENT(#2,$);\n#2=IFCLOCALPLACEMENT($,$);";

class TemporaryFile : public test::ReadTest {
 protected:
  // Reads `name` of the folder in a document of its own.
  bool Read(const std::string& name, std::vector<WideString> reserved = {}) {
    IfcDocument document(false, RecordedReports::Reporter, RecordedProgress::Callback);
    document.ReservePaths(std::move(reserved));
    return document.OpenFile(folder_.Path(name), 1) != 0;
  }

  TemporaryFolder folder_;
};

// --- Its name ------------------------------------------------------------------------------------

TEST_F(TemporaryFile, HasTheNameOfTheInputWithAnotherEnding) {
  folder_.Write("a.b.IFC", ModelFile(kForward));
  EXPECT_TRUE(Read("a.b.IFC"));
  EXPECT_EQ((Names{"a.b.IFC", "a.b_TEMP.ifc"}), folder_.Names());
}

TEST_F(TemporaryFile, LiesBesideTheInputAlsoInAFolderWithAPoint) {
  folder_.Write("x.y/model.ifc", ModelFile(kForward));
  EXPECT_TRUE(Read("x.y/model.ifc"));
  EXPECT_TRUE(folder_.Has("x.y/model_TEMP.ifc"));
}

TEST_F(TemporaryFile, ReplacesTheOneOfAnEarlierRead) {
  folder_.Write("model.ifc", ModelFile(kForward));
  folder_.Write("model_TEMP.ifc", "#77=IFCWALL();" + std::string(1000, ' '));
  EXPECT_TRUE(Read("model.ifc"));
  EXPECT_EQ("\n#1=IFCLOCALPLACEMENT(#2,$);", folder_.Read("model_TEMP.ifc"));
  EXPECT_EQ((Names{"model.ifc", "model_TEMP.ifc"}), folder_.Names());
}

TEST_F(TemporaryFile, NeverReplacesAnInputOrOutputOfTheRun) {
  folder_.Write("model.ifc", ModelFile(kForward));
  folder_.Write("model_TEMP.ifc", "any bytes");
  EXPECT_TRUE(Read("model.ifc", {folder_.Path("model.ifc"), folder_.Path("model_TEMP.ifc"),
                                 folder_.Path("model_TEMP2.ifc")}));
  EXPECT_EQ("any bytes", folder_.Read("model_TEMP.ifc"));
  EXPECT_EQ((Names{"model.ifc", "model_TEMP.ifc", "model_TEMP3.ifc"}), folder_.Names());
}

TEST_F(TemporaryFile, NeverReplacesWhatLooksLikeAModel) {
  folder_.Write("model.ifc", ModelFile(kForward));
  folder_.Write("model_TEMP.ifc", "ISO-10303-21;");
  folder_.Write("model_TEMP2.ifc", "ISO");
  EXPECT_TRUE(Read("model.ifc"));
  EXPECT_EQ("ISO-10303-21;", folder_.Read("model_TEMP.ifc"));
  EXPECT_EQ("ISO", folder_.Read("model_TEMP2.ifc"));
  EXPECT_TRUE(folder_.Has("model_TEMP3.ifc"));
}

TEST_F(TemporaryFile, AnInputThatIsCalledLikeOneIsReadLikeAnyOther) {
  folder_.Write("model_TEMP.ifc", ModelFile(kForward));
  EXPECT_TRUE(Read("model_TEMP.ifc"));
  EXPECT_EQ((Names{"model_TEMP.ifc", "model_TEMP_TEMP.ifc"}), folder_.Names());
}

TEST_F(TemporaryFile, TheInputKeepsItsBytes) {
  const std::string bytes = ModelFile(kForward);
  folder_.Write("model.ifc", bytes);
  EXPECT_TRUE(Read("model.ifc", {folder_.Path("model.ifc")}));
  EXPECT_EQ(bytes, folder_.Read("model.ifc"));
}

#ifndef _WIN32
TEST_F(TemporaryFile, NeverReplacesWhatALinkLeadsTo) {
  folder_.Write("model.ifc", ModelFile(kForward));
  folder_.Write("other.ifc", "any bytes");
  std::filesystem::create_symlink(folder_.Native("other.ifc"), folder_.Native("model_TEMP.ifc"));
  EXPECT_TRUE(Read("model.ifc", {folder_.Path("other.ifc")}));
  EXPECT_EQ("any bytes", folder_.Read("other.ifc"));
  EXPECT_TRUE(folder_.Has("model_TEMP2.ifc"));
}
#endif

// --- Its content ---------------------------------------------------------------------------------

TEST_F(TemporaryFile, HoldsTheTextOfForwardRecordsAsItStands) {
  const std::string first = "\r\n\t#1 = IFC_LOCALPLACEMENT ( #2 ,/* it's \xE4 */ $ , 'more;' ) ;";
  const std::string third = " #3=IFCLOCALPLACEMENT(#9,$);";
  Model model(first + "#2=IFCLOCALPLACEMENT($,$);" + third);
  EXPECT_TRUE(model.IsRead());
  EXPECT_EQ("\n" + first + third, model.Folder().Read("model_TEMP.ifc"));
}

TEST_F(TemporaryFile, IsCompleteWhateverItsLength) {
  // The buffer is 10 MiB and keeps 10 bytes back: around that length the end is easily lost.
  const std::string begin = "#1=IFCLOCALPLACEMENT(#2,$/*";
  const std::string end = "*/);";
  for (const std::size_t wanted : {0xA00000u + 9, 0xA00000u + 10, 0xA00000u + 11}) {
    const std::string record =
        begin + std::string(wanted - 1 - begin.size() - end.size(), 'x') + end;
    Model model(record + "\n#2=IFCLOCALPLACEMENT($,$);");
    EXPECT_TRUE(model.IsRead());
    EXPECT_EQ("#1=IFCLOCALPLACEMENT(#2,*);", model.Line(1));
    EXPECT_TRUE("\n" + record == model.Folder().Read("model_TEMP.ifc")) << wanted;
  }
}

// --- What stays ----------------------------------------------------------------------------------

TEST_F(TemporaryFile, StaysAfterACompleteRead) {
  Model model(kForward);
  EXPECT_TRUE(model.IsRead());
  EXPECT_EQ((Names{"model.ifc", "model_TEMP.ifc"}), model.Folder().Names());
}

TEST_F(TemporaryFile, IsGoneAfterACancellationInTheFirstPass) {
  progress_.CancelAt(0);
  Model model(kForward);
  EXPECT_FALSE(model.IsRead());
  EXPECT_EQ(ParserState::kCancelled, model.GetParser().state);
  EXPECT_EQ((Names{"model.ifc"}), model.Folder().Names());
}

TEST_F(TemporaryFile, StaysAfterACancellationInTheSecondPass) {
  platform_.nanosecondsPerCall = 60'000'000;
  progress_.CancelAt(2);
  Model model(kForward);
  EXPECT_FALSE(model.IsRead());
  EXPECT_EQ(5, progress_->back().stageWeight);
  EXPECT_EQ(ParserState::kCancelled, model.GetParser().state);
  EXPECT_EQ((Names{"model.ifc", "model_TEMP.ifc"}), model.Folder().Names());
}

TEST_F(TemporaryFile, IsGoneAfterAnUnreadableRecord) {
  Model model(kForward + "#3=IFCNOTHING();"s);
  EXPECT_FALSE(model.IsRead());
  EXPECT_EQ((Names{"model.ifc"}), model.Folder().Names());
}

TEST_F(TemporaryFile, StaysWhenABadNumberBetweenRecordsStopsTheScanner) {
  {
    Model model(kForward + "#=IFCPERSON();"s);
    EXPECT_FALSE(model.IsRead());
    EXPECT_EQ((std::vector<Report>{{"", u"invalid stoul argument", 0}}), *reports_);
    EXPECT_EQ(ParserState::kNotFinished, model.GetParser().state);
    EXPECT_TRUE(model.Document().IsCancelled());
    EXPECT_EQ("\n#1=IFCLOCALPLACEMENT(#2,$);", model.Folder().Read("model_TEMP.ifc"));
  }
  folder_.Write("model.ifc", ModelFile(kForward + "#=IFCPERSON();"s));
  EXPECT_FALSE(Read("model.ifc"));
  EXPECT_EQ((Names{"model.ifc", "model_TEMP.ifc"}), folder_.Names())
      << "also when the document is gone";
}

// --- Trouble with it -----------------------------------------------------------------------------

TEST_F(TemporaryFile, ThatCannotBeMadeEndsTheRead) {
  folder_.Write("model.ifc", ModelFile(kForward));
  std::filesystem::create_directory(folder_.Native("model_TEMP.ifc"));
  IfcDocument document(false, RecordedReports::Reporter, RecordedProgress::Callback);
  EXPECT_EQ(0, document.OpenFile(folder_.Path("model.ifc"), 1));
  const WideString path = folder_.Path("model_TEMP.ifc");
  EXPECT_EQ((std::vector<Report>{{"could_not_open_file", u". File path: " + path, 0},
                                 {"", u"Unable to create copy of file: \"" + path + u"\"", 0}}),
            *reports_);
  EXPECT_EQ(ParserState::kFailed, document.GetParser().state);
  EXPECT_FALSE(document.IsParsed());
  EXPECT_TRUE(document.IsCancelled());
}

TEST_F(TemporaryFile, ThatCannotBeMadeIsNotRemovedEither) {
  folder_.Write("model.ifc", ModelFile(kForward));
  std::filesystem::create_directory(folder_.Native("model_TEMP.ifc"));
  EXPECT_FALSE(Read("model.ifc"));
  EXPECT_EQ((Names{"model.ifc", "model_TEMP.ifc"}), folder_.Names());
}

#ifndef _WIN32
TEST_F(TemporaryFile, OnAFullDiskEndsTheReadAndGoes) {
  std::string records;
  for (unsigned number = 1; number <= 400; ++number) {
    records += test::PlacementRelativeTo(number + 1, number);
  }
  folder_.Write("model.ifc", ModelFile(records));
  IfcDocument document(false, RecordedReports::Reporter, RecordedProgress::Callback);
  {
    const test::FileSizeLimit limit(4096);
    EXPECT_EQ(0, document.OpenFile(folder_.Path("model.ifc"), 1));
  }
  EXPECT_EQ((std::vector<Report>{{"", u"Could not write to file", 0}}), *reports_);
  EXPECT_EQ(ParserState::kFailed, document.GetParser().state);
  EXPECT_EQ((Names{"model.ifc"}), folder_.Names());
}

TEST_F(TemporaryFile, OnADiskThatFillsDuringThePassEndsTheReadAndGoes) {
  std::string records;
  const std::string padding(1 << 20, ' ');
  for (int number = 1; number <= 11; ++number) {
    records += "#" + std::to_string(number) + "=IFCLOCALPLACEMENT(#" + std::to_string(number + 1) +
               "," + padding + "$);\n";
  }
  folder_.Write("model.ifc", ModelFile(records));
  IfcDocument document(false, RecordedReports::Reporter, RecordedProgress::Callback);
  {
    const test::FileSizeLimit limit(1 << 20);
    EXPECT_EQ(0, document.OpenFile(folder_.Path("model.ifc"), 1));
  }
  EXPECT_EQ((std::vector<Report>{{"", u"Unable to write to file", 0}}), *reports_);
  EXPECT_EQ(ParserState::kFailed, document.GetParser().state);
  EXPECT_EQ((Names{"model.ifc"}), folder_.Names());
}

TEST_F(TemporaryFile, InAReadOnlyFolderEndsTheRead) {
  folder_.Write("model.ifc", ModelFile(kForward));
  std::filesystem::permissions(folder_.Native(""), std::filesystem::perms(0555));
  {
    const test::OrdinaryUser user;
    EXPECT_FALSE(Read("model.ifc"));
  }
  std::filesystem::permissions(folder_.Native(""), std::filesystem::perms(0755));
  const WideString path = folder_.Path("model_TEMP.ifc");
  EXPECT_EQ((std::vector<Report>{{"could_not_open_file", u". File path: " + path, 0},
                                 {"", u"Unable to create copy of file: \"" + path + u"\"", 0}}),
            *reports_);
  EXPECT_EQ((Names{"model.ifc"}), folder_.Names());
}

// Removes the temporary file when the first pass is at its end.
std::filesystem::path& Doomed() {
  static std::filesystem::path path;
  return path;
}

bool RemoveDoomed(int, int, const WideString*, bool, int) {
  std::filesystem::remove(Doomed());
  return true;
}

TEST_F(TemporaryFile, ThatHasVanishedBeforeTheSecondPassIsReported) {
  folder_.Write("model.ifc", ModelFile(kForward));
  Doomed() = folder_.Native("model_TEMP.ifc");
  platform_.nanosecondsPerCall = 60'000'000;
  IfcDocument document(false, RecordedReports::Reporter, RemoveDoomed);
  EXPECT_EQ(0, document.OpenFile(folder_.Path("model.ifc"), 1));
  EXPECT_EQ((std::vector<Report>{
                {"could_not_open_file", u". File path: " + folder_.Path("model_TEMP.ifc"), 0}}),
            *reports_);
  EXPECT_EQ(ParserState::kFailed, document.GetParser().state);
}
#endif

}  // namespace
}  // namespace corvel
