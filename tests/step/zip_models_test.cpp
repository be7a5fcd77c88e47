// Whole models through archives: what comes out is what plain files give, or nothing.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "core/cancellation.h"
#include "support/read_model.h"
#include "support/zip_bytes.h"
#ifndef _WIN32
#include "support/posix_faults.h"
#endif

namespace corvel {
namespace {

using test::ReadModel;
using test::RecordedReports;
using test::Report;
using test::ZipEntry;
using test::ZipOf;
using Reports = std::vector<Report>;

class ZipModels : public test::ReadTest {
 protected:
  // About 2.5 MB, so that blocks are written on the way, with references in both directions.
  static std::string Records() {
    std::string records;
    for (unsigned number = 1; number <= 60'000; number += 2) {
      const std::string next = std::to_string(number + 1);
      records += "#" + std::to_string(number) + "=IFCPOLYLINE((#" + next + "));\n#" + next +
                 "=IFCCARTESIANPOINT((" + std::to_string(number * 7919u % 1'000'003u) + ".,2.));\n";
    }
    return records;
  }

  // 1 when the model at `path` was read.
  int Open(const WideString& path) {
    document_ = std::make_unique<IfcDocument>(false, RecordedReports::Reporter,
                                              test::RecordedProgress::Callback);
    IFC::MainContainer::ResetUniqueMarker();
    Cancellation::OfProcess().mode = CancelMode::kAsk;
    return document_->OpenFile(path, 1);
  }
  std::string SavedPlain() {
    EXPECT_EQ(1, document_->SaveFile(folder_.Path("plain.ifc")));
    return folder_.Read("plain.ifc");
  }
  // Nothing of the model can be merged or written.
  void ExpectNotRead(const std::string& archive) {
    reports_.Forget();
    EXPECT_EQ(0, Open(folder_.Write("a.ifczip", archive)));
    EXPECT_FALSE(document_->IsParsed());
    EXPECT_FALSE(reports_->empty());
  }

  test::TemporaryFolder folder_;
  std::unique_ptr<IfcDocument> document_;
};

TEST_F(ZipModels, AnArchiveHoldsTheBytesOfThePlainFile) {
  ASSERT_EQ(1, Open(folder_.Write("a.ifc", test::ModelFile(Records()))));
  ASSERT_EQ(1, document_->SaveFile(folder_.Path("first.ifczip")));
  // A second save writes no lists in the header: both are read and written again.
  ASSERT_EQ(1, Open(folder_.Path("first.ifczip")));
  const std::string ofPacked = SavedPlain();
  ASSERT_EQ(1, Open(folder_.Write("a.ifc", test::ModelFile(Records()))));
  EXPECT_TRUE(ofPacked == SavedPlain());
  EXPECT_EQ(Reports{}, *reports_);
}

TEST_F(ZipModels, AnEntryOfAContainerIsReadLikeAPlainFile) {
  const std::string model = test::ModelFile("#1=IFCPOLYLINE((#2));\n#2=IFCCARTESIANPOINT((1.));\n");
  folder_.Write("a.olf", ZipOf({{"other.ifc", "no model"}, {"sub/model.ifc", model, false}}));
  ASSERT_EQ(1, Open(folder_.Path("a.olf") + u"|sub/model.ifc"));
  EXPECT_EQ(folder_.Path("a.olf") + u"|sub/model.ifc", document_->getFilePath());
  EXPECT_EQ(u"IFC4", document_->getSchemaIdentifier());
  EXPECT_NE(std::string::npos, SavedPlain().find("#1=IFCPOLYLINE((#2));\n"));
  EXPECT_TRUE(folder_.Has("model_TEMP.ifc")) << "the working file is named after the entry";
  EXPECT_EQ(Reports{}, *reports_);
}

TEST_F(ZipModels, TheWorkingFileOfAnArchiveIsNamedAfterIt) {
  ASSERT_EQ(1, Open(folder_.Write("a.b.ifczip", ZipOf({{"x", test::ModelFile("")}}))));
  EXPECT_TRUE(folder_.Has("a.b_TEMP.ifc"));
}

TEST_F(ZipModels, AModelWhoseChecksumIsWrongIsNotRead) {
  ZipEntry entry{"m.ifc", test::ModelFile("#1=IFCPERSON();")};
  entry.checksum = 1;
  ExpectNotRead(ZipOf({entry}));
  EXPECT_EQ(
      (Reports{{"", u"The data in the zip archive is damaged: " + folder_.Path("a.ifczip"), 0}}),
      *reports_);
  // Too long for the header alone to reach its end.
  entry.content = test::ModelFile(Records());
  ExpectNotRead(ZipOf({entry}));
  EXPECT_EQ(
      (Reports{{"", u"The data in the zip archive is damaged: " + folder_.Path("a.ifczip"), 0}}),
      *reports_);
  EXPECT_FALSE(folder_.Has("a_TEMP.ifc"));
}

TEST_F(ZipModels, AModelThatBreaksOffIsNotRead) {
  const ZipEntry entry{"m.ifc", test::ModelFile(Records())};
  const std::string archive = ZipOf({entry});
  for (std::size_t at = 5000; at + 5000 < archive.size(); at += archive.size() / 5) {
    std::string broken = archive;
    for (std::size_t i = 0; i < 300; ++i) broken[at + i] = '\xFF';
    ExpectNotRead(broken);
  }
}

TEST_F(ZipModels, AnArchiveThatDoesNotOpenIsNoModel) {
  const WideString path = folder_.Write("a.ifczip", "ISO-10303-21;");
  EXPECT_EQ(0, Open(path));
  EXPECT_EQ((Reports{{"", u"Could not open zip archive: " + path, 0},
                     {"could_not_open_file", u". File path: " + path, 0}}),
            *reports_);
  reports_.Forget();
  EXPECT_EQ(0, Open(folder_.Write("a.ifczip", ZipOf({{"m", ""}}))));
  EXPECT_EQ((Reports{{"", u"Unable to read header token. No schema identifier can be read.", 0},
                     {"unknown_schema_identifier", u": ", 0}}),
            *reports_);
}

TEST_F(ZipModels, AnArchiveThatCannotBeMadeIsNotWritten) {
  ASSERT_EQ(1, Open(folder_.Write("a.ifc", test::ModelFile("#1=IFCPERSON();"))));
  const WideString path = folder_.Path("none/out.ifczip");
  EXPECT_EQ(0, document_->SaveFile(path));
  EXPECT_EQ((Reports{{"", u"Could not open or create zip archive", 0},
                     {"could_not_open_file_write", u"File path: " + path, 0}}),
            *reports_);
}

TEST_F(ZipModels, ACancelledArchiveIsNotLeftBehind) {
  ASSERT_EQ(1, Open(folder_.Write("a.ifc", test::ModelFile("#1=IFCPERSON();"))));
  progress_.Forget();
  progress_.CancelAt(1);
  EXPECT_EQ(2, document_->SaveFile(folder_.Path("out.ifczip")));
  EXPECT_FALSE(folder_.Has("out.ifczip"));
}

#ifndef _WIN32

TEST_F(ZipModels, AnArchiveIsThereWholeOrNotAtAll) {
  ASSERT_EQ(1, Open(folder_.Write("a.ifc", test::ModelFile(Records()))));
  // The second save is smaller, without the lists of the header, and like all later ones.
  ASSERT_EQ(1, document_->SaveFile(folder_.Path("first.ifczip")));
  ASSERT_EQ(1, document_->SaveFile(folder_.Path("all.ifczip")));
  const std::size_t size = folder_.Read("all.ifczip").size();
  for (std::size_t limit = 0; limit < size; limit += size / 11) {
    reports_.Forget();
    const test::FileSizeLimit full(limit);
    EXPECT_EQ(0, document_->SaveFile(folder_.Path("out.ifczip"))) << limit;
    EXPECT_FALSE(reports_->empty());
    EXPECT_FALSE(folder_.Has("out.ifczip")) << limit;
  }
  EXPECT_EQ(1, document_->SaveFile(folder_.Path("out.ifczip")));
}

TEST_F(ZipModels, AnArchiveOnAFullDiskReplacesNothing) {
  ASSERT_EQ(1, Open(folder_.Write("a.ifc", test::ModelFile("#1=IFCPERSON();"))));
  test::LinkToFullDevice(folder_.Path("out.ifczip"));
  EXPECT_EQ(0, document_->SaveFile(folder_.Path("out.ifczip")));
  EXPECT_TRUE(std::filesystem::is_symlink(folder_.Native("out.ifczip")));
}

#endif

}  // namespace
}  // namespace corvel
