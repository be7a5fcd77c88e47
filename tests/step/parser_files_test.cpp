// What a read leaves beside its input, however it ends.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "core/cancellation.h"
#include "platform/locked_file.h"
#include "support/read_model.h"
#include "support/zip_bytes.h"

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

// What somebody does to the temporary file while it is in use.
std::function<void()>& Meanwhile() {
  static std::function<void()> action;
  return action;
}

bool DoMeanwhile(int, int, const WideString*, bool, int) {
  Meanwhile()();
  return true;
}

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

TEST_F(TemporaryFile, OfAnEntryWithoutAPointLiesBesideItsContainer) {
  folder_.Write("d.x/c.olf", test::ZipOf({{"sub.d/model", ModelFile(kForward)}}));
  EXPECT_TRUE(Read("d.x/c.olf|sub.d/model"));
  EXPECT_TRUE(folder_.Has("d.x/model_TEMP.ifc"));
  EXPECT_EQ(Names{"d.x"}, folder_.Names());
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

TEST_F(TemporaryFile, NeverReplacesAModelBehindAByteOrderMarkOrBlanks) {
  const std::string blanks(10'000, '\n');
  for (const std::string& kept : {"\xEF\xBB\xBFISO-10303-21;"s, " \t\r\nISO-10303-21;"s,
                                  "\xEF\xBB\xBF\r\nISO"s, blanks + "ISO"}) {
    folder_.Write("model.ifc", ModelFile(kForward));
    folder_.Write("model_TEMP.ifc", kept);
    EXPECT_TRUE(Read("model.ifc"));
    EXPECT_EQ(kept, folder_.Read("model_TEMP.ifc"));
    EXPECT_TRUE(folder_.Has("model_TEMP2.ifc"));
    std::filesystem::remove(folder_.Native("model_TEMP2.ifc"));
  }
}

TEST_F(TemporaryFile, ReplacesWhatOnlyBeginsLikeAModel) {
  const std::string blanks(10'000, ' ');
  for (const std::string& old : {""s, "IS"s, "IS O-10303"s, "#1=ISO;"s, "\xEF\xBB\xBF"s, blanks,
                                 blanks + "#1=IFCWALL();", "\n#1=IFCWALL('ISO');"s}) {
    folder_.Write("model.ifc", ModelFile(kForward));
    folder_.Write("model_TEMP.ifc", old);
    EXPECT_TRUE(Read("model.ifc"));
    EXPECT_EQ("\n#1=IFCLOCALPLACEMENT(#2,$);", folder_.Read("model_TEMP.ifc")) << old;
    EXPECT_FALSE(folder_.Has("model_TEMP2.ifc"));
  }
}

TEST_F(TemporaryFile, ThatAnotherReadingHoldsIsLeftToIt) {
  folder_.Write("model.ifc", ModelFile(kForward));
  platform::File other;
  ASSERT_EQ(platform::Claim::kTaken, platform::ClaimFile(folder_.Path("model_TEMP.ifc"), other));
  other.Write("#9=IFCWALL();", 13);
  EXPECT_TRUE(Read("model.ifc"));
  EXPECT_EQ("#9=IFCWALL();", folder_.Read("model_TEMP.ifc"));
  EXPECT_EQ("\n#1=IFCLOCALPLACEMENT(#2,$);", folder_.Read("model_TEMP2.ifc"));
  EXPECT_TRUE(reports_->empty());
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

TEST_F(TemporaryFile, IsNoLinkPipeOrDevice) {
  folder_.Write("model.ifc", ModelFile(kForward));
  folder_.Write("other.txt", "any bytes");
  const std::filesystem::path place = folder_.Native("model_TEMP.ifc");
  const WideString path = folder_.Path("model_TEMP.ifc");
  const auto expectRefused = [&] {
    reports_.Forget();
    EXPECT_FALSE(Read("model.ifc"));
    EXPECT_EQ((std::vector<Report>{{"could_not_open_file", u". File path: " + path, 0},
                                   {"", u"Unable to create copy of file: \"" + path + u"\"", 0}}),
              *reports_);
    std::filesystem::remove(place);
  };
  for (const char* const target : {"other.txt", "none.txt", "/dev/null"}) {
    std::filesystem::create_symlink(target, place);
    expectRefused();
  }
  ASSERT_EQ(0, ::mkfifo(place.c_str(), 0600));
  expectRefused();
  EXPECT_EQ("any bytes", folder_.Read("other.txt"));
  EXPECT_FALSE(folder_.Has("none.txt"));
}
#endif

// --- Without a name ------------------------------------------------------------------------------

class UnnamedWorkFile : public TemporaryFile {
 protected:
  // In a folder of its own, unlike the input.
  bool ReadUnnamed(const WideString& path) {
    document_ =
        std::make_unique<IfcDocument>(false, RecordedReports::Reporter, RecordedProgress::Callback);
    document_->KeepWorkFileIn(work_.Path());
    return document_->OpenFile(path, 1) != 0;
  }

  TemporaryFolder work_;
  std::unique_ptr<IfcDocument> document_;
};

TEST_F(UnnamedWorkFile, LeavesNothingAnywhere) {
  EXPECT_TRUE(ReadUnnamed(folder_.Write("model.ifc", ModelFile(kForward))));
  EXPECT_EQ("#1=IFCLOCALPLACEMENT(#2,*);\n#2=IFCLOCALPLACEMENT($,*);\n",
            test::LinesOf(*document_->mainContainer));
  EXPECT_EQ(Names{"model.ifc"}, folder_.Names());
  EXPECT_EQ(Names{}, work_.Names());
}

TEST_F(UnnamedWorkFile, LeavesNothingWhenTheReadingFailsOrIsCancelled) {
  EXPECT_FALSE(ReadUnnamed(folder_.Write("model.ifc", ModelFile(kForward + "#3=IFCNOTHING();"s))));
  platform_.nanosecondsPerCall = 60'000'000;
  for (const std::size_t tick : {0u, 2u}) {
    Cancellation::OfProcess().mode = CancelMode::kAsk;
    progress_.Forget();
    progress_.CancelAt(tick);
    EXPECT_FALSE(ReadUnnamed(folder_.Write("model.ifc", ModelFile(kForward)))) << tick;
  }
  EXPECT_EQ(Names{"model.ifc"}, folder_.Names());
  EXPECT_EQ(Names{}, work_.Names());
}

TEST_F(UnnamedWorkFile, NeedsItsFolder) {
  const WideString path = folder_.Write("model.ifc", ModelFile(kForward));
  IfcDocument document(false, RecordedReports::Reporter, RecordedProgress::Callback);
  document.KeepWorkFileIn(work_.Path("none"));
  EXPECT_EQ(0, document.OpenFile(path, 1));
  const WideString none = work_.Path("none");
  EXPECT_EQ((std::vector<Report>{{"could_not_open_file", u". File path: " + none, 0},
                                 {"", u"Unable to create copy of file: \"" + none + u"\"", 0}}),
            *reports_);
  EXPECT_TRUE(document.IsCancelled());
}

#ifndef _WIN32
TEST_F(UnnamedWorkFile, LetsAReadOnlyFolderBe) {
  folder_.Write("model.ifc", ModelFile(kForward));
  std::filesystem::permissions(folder_.Native(""), std::filesystem::perms(0555));
  std::filesystem::permissions(work_.Native(""), std::filesystem::perms(0777));
  {
    const test::OrdinaryUser user;
    EXPECT_TRUE(ReadUnnamed(folder_.Path("model.ifc")));
  }
  std::filesystem::permissions(folder_.Native(""), std::filesystem::perms(0755));
  EXPECT_TRUE(reports_->empty());
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

TEST_F(TemporaryFile, BeginsOutsideOfACommentThatIsTooLongToBeKept) {
  for (const char* const lead : {"", "/* before */"}) {
    const std::string comment = "/*" + std::string(2 * Scanner::kLongestLeadIn, 'c') + "*/";
    Model model(lead + comment + "\n#1=IFCLOCALPLACEMENT(#2,$);\n#2=IFCLOCALPLACEMENT($,$);");
    EXPECT_TRUE(model.IsRead());
    EXPECT_EQ("#1=IFCLOCALPLACEMENT(#2,*);", model.Line(1));
    EXPECT_EQ("\n#1=IFCLOCALPLACEMENT(#2,$);", model.Folder().Read("model_TEMP.ifc"));
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

TEST_F(TemporaryFile, IsLockedInBothPassesAndFreeBehindThem) {
  folder_.Write("model.ifc", ModelFile(kForward));
  std::vector<platform::Claim> claims;
  Meanwhile() = [&] {
    platform::File other;
    claims.push_back(platform::ClaimFile(folder_.Path("model_TEMP.ifc"), other));
  };
  platform_.nanosecondsPerCall = 60'000'000;
  IfcDocument document(false, RecordedReports::Reporter, DoMeanwhile);
  EXPECT_EQ(1, document.OpenFile(folder_.Path("model.ifc"), 1));
  EXPECT_EQ(std::vector<platform::Claim>(3, platform::Claim::kLocked), claims);
  Meanwhile()();
  EXPECT_EQ(platform::Claim::kTaken, claims.back());
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

TEST_F(TemporaryFile, ThatVanishesBeforeTheSecondPassIsReadAllTheSame) {
  folder_.Write("model.ifc", ModelFile(kForward));
  Meanwhile() = [this] { std::filesystem::remove(folder_.Native("model_TEMP.ifc")); };
  platform_.nanosecondsPerCall = 60'000'000;
  IfcDocument document(false, RecordedReports::Reporter, DoMeanwhile);
  EXPECT_EQ(1, document.OpenFile(folder_.Path("model.ifc"), 1));
  EXPECT_TRUE(reports_->empty());
  EXPECT_EQ("#1=IFCLOCALPLACEMENT(#2,*);\n#2=IFCLOCALPLACEMENT($,*);\n",
            test::LinesOf(*document.mainContainer));
}

TEST_F(TemporaryFile, ThatSomebodyEmptiesFailsTheRead) {
  std::string records;
  const std::string padding(1 << 20, ' ');
  for (int number = 1; number <= 11; ++number) {  // more than is written at a time
    records += "#" + std::to_string(number) + "=IFCLOCALPLACEMENT(#" + std::to_string(number + 1) +
               "," + padding + "$);\n";
  }
  folder_.Write("model.ifc", ModelFile(records));
  Meanwhile() = [this] { std::filesystem::resize_file(folder_.Native("model_TEMP.ifc"), 0); };
  platform_.nanosecondsPerCall = 60'000'000;
  IfcDocument document(false, RecordedReports::Reporter, DoMeanwhile);
  EXPECT_EQ(0, document.OpenFile(folder_.Path("model.ifc"), 1));
  EXPECT_EQ(
      (std::vector<Report>{
          {"", u"The work file was changed while it was in use: " + folder_.Path("model_TEMP.ifc"),
           0}}),
      *reports_);
  EXPECT_EQ(ParserState::kFailed, document.GetParser().state);
}
#endif

}  // namespace
}  // namespace corvel
