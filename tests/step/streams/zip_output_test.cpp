#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/file.h"
#include "step/streams/input_zip_file_stream.h"
#include "step/streams/open_output.h"
#include "step/streams/output_zip_file_stream.h"
#include "support/recorded_reports.h"
#include "support/replaced_allocator.h"
#include "support/temporary_folder.h"

namespace FileStream {
namespace {

using corvel::WideString;
using corvel::test::RecordedReports;
using corvel::test::ReplacedAllocator;
using corvel::test::Report;
using corvel::test::TemporaryFolder;
using Reports = std::vector<Report>;

constexpr std::size_t kFull = OutputZipFileStream::kBlockSize + OutputZipFileStream::kKeepBack;

class ZipOutput : public testing::Test {
 protected:
  OutputZipFileStream Open() { return {path_, RecordedReports::Reporter}; }

  // The entry as our own reader gives it; the tests in Python ask other programs.
  std::string Content() const {
    InputZipFileStream stream(path_, RecordedReports::Reporter, 1 << 16);
    std::string all;
    while (stream.Refill()) {
      all.append(stream.Cursor(), stream.WindowEnd());
      stream.SetCursor(stream.WindowEnd());
    }
    EXPECT_FALSE(stream.IsDamaged());
    return all;
  }

  TemporaryFolder folder_;
  const WideString path_ = folder_.Path("out.ifczip");
  RecordedReports reports_;
};

std::uint32_t NumberAt(const std::string& bytes, std::size_t at, int width) {
  std::uint32_t number = 0;
  for (int i = width; i-- > 0;) {
    number = number << 8 | static_cast<unsigned char>(bytes[at + static_cast<std::size_t>(i)]);
  }
  return number;
}

TEST_F(ZipOutput, TheEntryHasItsSettings) {
  OutputZipFileStream stream = Open();
  stream.WriteNarrowString("#1=IFCWALL();\n");
  EXPECT_TRUE(stream.Close());
  const std::string archive = folder_.Read("out.ifczip");
  const std::size_t record = archive.rfind("PK\1\2");
  ASSERT_NE(std::string::npos, record);
  constexpr std::uint32_t kSizesBehindTheData = 8;  // a library may put them there
  EXPECT_EQ(2605u, NumberAt(archive, record + 4, 2));
  EXPECT_EQ(0u, NumberAt(archive, record + 8, 2) & ~kSizesBehindTheData);
  EXPECT_EQ(8u, NumberAt(archive, record + 10, 2)) << "deflate";
  EXPECT_EQ(0u, NumberAt(archive, record + 12, 4)) << "no time";
  EXPECT_EQ(14u, NumberAt(archive, record + 24, 4)) << "size";
  EXPECT_EQ(7u, NumberAt(archive, record + 28, 2)) << "length of the name";
  EXPECT_EQ(0u, NumberAt(archive, record + 30, 2)) << "no extra field";
  EXPECT_EQ(0u, NumberAt(archive, record + 32, 2)) << "no comment";
  EXPECT_EQ("out.ifc", archive.substr(record + 46, 7));
  const std::size_t end = archive.rfind("PK\5\6");
  EXPECT_EQ(1u, NumberAt(archive, end + 10, 2)) << "one entry";
  EXPECT_EQ(end + 22, archive.size()) << "no comment of the archive";
  EXPECT_EQ("PK\3\4", archive.substr(0, 4));
}

TEST_F(ZipOutput, TheEntryIsNamedAfterTheArchive) {
  EXPECT_EQ(u"Merged.ifc", NameOfEntry(u"D:\\x\\Merged.ifczip"));
  EXPECT_EQ(u"Merged.ifc", NameOfEntry(u"/x.y/Merged.ifczip"));
  EXPECT_EQ(u"Model.ifc", NameOfEntry(u"Model.IFCZIP"));
  EXPECT_EQ(u"a.b.ifc", NameOfEntry(u"a.b.ifczip"));
  EXPECT_EQ(u"no ending.ifc", NameOfEntry(u"no ending"));
  EXPECT_EQ(u".ifc", NameOfEntry(u".ifczip"));
  EXPECT_EQ(u"sub/m.ifc", NameOfEntry(u"D:\\x\\a.olf|sub/m.ifczip"));
  EXPECT_EQ(u"k\u00FChl\U0001F3E0.ifc", NameOfEntry(u"k\u00FChl\U0001F3E0.ifczip"));
}

TEST_F(ZipOutput, NamesOfEntriesAreUtf8) {
  const WideString path = folder_.Path() + u"/k\u00FChl\U0001F3E0.ifczip";
  OutputZipFileStream stream(path, RecordedReports::Reporter);
  ASSERT_TRUE(stream.Close());
  ASSERT_EQ(1u, folder_.Names().size());
  platform::File file;
  ASSERT_TRUE(file.Open(path, platform::OpenMode::kRead));
  std::string archive(static_cast<std::size_t>(file.Size()), '\0');
  ASSERT_EQ(archive.size(), file.Read(archive.data(), archive.size()));
  EXPECT_NE(std::string::npos, archive.find("k\xC3\xBChl\xF0\x9F\x8F\xA0.ifc"));
}

TEST_F(ZipOutput, TheEndingChoosesTheStream) {
  const auto open = [this](const char* name) {
    const WideString path = folder_.Path(name);
    platform::File file;
    EXPECT_FALSE(IsOutputName(path) && !file.Open(path, platform::OpenMode::kWrite));
    return OpenOutput(path, std::move(file), RecordedReports::Reporter);
  };
  EXPECT_EQ(nullptr, open("a.zip"));
  EXPECT_EQ(nullptr, open("a"));
  EXPECT_EQ(nullptr, open("ifc"));
  EXPECT_EQ(nullptr, open("a.ifczip "));
  EXPECT_TRUE(folder_.Names().empty());
  open("Model.IFCZIP")->CommitAndClose();
  open("a.Ifc")->CommitAndClose();
  EXPECT_NE(std::string::npos, folder_.Read("Model.IFCZIP").find("Model.ifc"));
  EXPECT_EQ("", folder_.Read("a.Ifc"));
}

TEST_F(ZipOutput, AnExistingFileIsReplaced) {
  folder_.Write("out.ifczip", std::string(100'000, 'x'));
  OutputZipFileStream stream = Open();
  stream.WriteNarrowText("new");
  EXPECT_TRUE(stream.Close());
  EXPECT_EQ("new", Content());
  EXPECT_LT(folder_.Read("out.ifczip").size(), 1000u);
}

TEST_F(ZipOutput, CloseWritesHoweverLittle) {
  EXPECT_TRUE(Open().Close());
  EXPECT_EQ("", Content());
  OutputZipFileStream stream = Open();
  stream.WriteNarrowText("a");
  EXPECT_TRUE(stream.IsOpen());
  EXPECT_TRUE(stream.Close());
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_TRUE(stream.Close());
  EXPECT_EQ("a", Content());
}

TEST_F(ZipOutput, TheDestructorCloses) {
  {
    OutputZipFileStream stream = Open();
    stream.WriteNarrowText("abc");
  }
  EXPECT_EQ("abc", Content());
}

TEST_F(ZipOutput, StoresTakeTheLowBytes) {
  OutputZipFileStream stream = Open();
  stream.WriteWideString(std::u16string(u"a\u0142\u00E4\0z", 5));
  stream.WriteWideText(u"b\u0143");
  stream.WriteNarrowText("c\xFF");
  stream.WriteNarrowString(std::string("d\0lost", 6));
  EXPECT_TRUE(stream.Close());
  EXPECT_EQ(std::string("a\x42\xE4\0zb\x43"
                        "c\xFF"
                        "d",
                        10),
            Content());
}

TEST_F(ZipOutput, ABlockGoesOutWhenItAndTheKeepBackAreFull) {
  OutputZipFileStream stream = Open();
  stream.WriteNarrowString(std::string(kFull - 1, 'a'));
  EXPECT_TRUE(stream.IsEof()) << "nothing has been handed over";
  stream.WriteNarrowText("bcd");
  EXPECT_FALSE(stream.IsEof());
  EXPECT_TRUE(stream.Close());
  EXPECT_TRUE(stream.IsEof());
  EXPECT_EQ(std::string(kFull - 1, 'a') + "bcd", Content());
}

TEST_F(ZipOutput, ThePositionGoesBackOverAFlush) {
  OutputZipFileStream stream = Open();
  stream.WriteNarrowString(std::string(kFull, 'a'));
  stream.MovePosition(-static_cast<std::int64_t>(OutputZipFileStream::kKeepBack));
  stream.WriteNarrowText("end");
  EXPECT_TRUE(stream.Close());
  EXPECT_EQ(std::string(OutputZipFileStream::kBlockSize, 'a') + "end", Content());
}

TEST_F(ZipOutput, ThePositionMayGoBelowZeroAndComeBack) {
  OutputZipFileStream stream = Open();
  stream.WriteNarrowText("abc");
  stream.MovePosition(-5);
  stream.MovePosition(4, 0);
  stream.WriteNarrowText("X");
  EXPECT_TRUE(stream.Close());
  EXPECT_EQ("abX", Content());
  EXPECT_EQ(Reports{}, *reports_);
}

TEST_F(ZipOutput, WhatIsStoredOutsideOfTheBufferIsLostAndTold) {
  const Reports told{{"", u"Could not write to zip file", 0}};
  for (const std::int64_t delta :
       {std::int64_t{-1}, std::int64_t{-1} << 62, std::int64_t{1} << 40}) {
    reports_.Forget();
    OutputZipFileStream stored = Open();
    stored.MovePosition(delta);
    stored.WriteNarrowText("a");
    EXPECT_EQ(told, *reports_);
    EXPECT_FALSE(stored.Close());
    reports_.Forget();
    OutputZipFileStream appended = Open();
    appended.MovePosition(delta);
    appended.Append("a");
    EXPECT_EQ(told, *reports_);
    EXPECT_FALSE(appended.Close());
    reports_.Forget();
    OutputZipFileStream closed = Open();
    closed.MovePosition(delta);
    EXPECT_FALSE(closed.Close());
    EXPECT_EQ(told, *reports_);
  }
}

TEST_F(ZipOutput, WriteGoesAheadOfTheBuffer) {
  OutputZipFileStream stream = Open();
  stream.WriteNarrowText("second");
  stream.Write("first ", 6);
  EXPECT_FALSE(stream.IsEof());
  EXPECT_TRUE(stream.Close());
  EXPECT_EQ("first second", Content());
}

// All ways to store, in any order, give the bytes of the same stores in a string.
TEST_F(ZipOutput, ManyBlocksOfAnyStoresComeBackAsTheyWere) {
  std::mt19937 random(3);
  OutputZipFileStream stream = Open();
  std::string wanted;
  while (wanted.size() < 6u << 20) {
    std::string text(random() % 3000 + 2, '\0');
    for (char& byte : text) byte = static_cast<char>(random() % 255 + 1);
    switch (random() % 4) {
      case 0: stream.WriteNarrowString(text); break;
      case 1: stream.WriteWideString(corvel::Widen(text)); break;
      case 2: stream.Append(text); break;
      default:
        stream.WriteNarrowText(text.c_str());
        stream.MovePosition(-2);
        text.resize(text.size() - 2);
    }
    wanted += text;
  }
  EXPECT_TRUE(stream.CommitAndClose());
  EXPECT_TRUE(wanted == Content());
  EXPECT_EQ(Reports{}, *reports_);
}

TEST_F(ZipOutput, AnArchiveThatCannotBeMadeIsTold) {
  const WideString path = folder_.Path("none/out.ifczip");
  OutputZipFileStream stream(path, RecordedReports::Reporter);
  EXPECT_EQ((Reports{{"", u"Could not open or create zip archive", 0}}), *reports_);
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_TRUE(stream.IsEof());
  stream.Write("a", 1);
  EXPECT_THROW(stream.WriteNarrowText("a"), std::runtime_error);
  EXPECT_THROW(stream.Append("a"), std::runtime_error);
  EXPECT_FALSE(stream.Close());
  EXPECT_EQ(1u, reports_->size());
  OutputZipFileStream silent(path, nullptr);
  EXPECT_FALSE(silent.Close());
}

TEST_F(ZipOutput, ABufferThatCannotBeHadIsToldAndTakesNothing) {
  for (const BufferAllocator allocator :
       {&ReplacedAllocator::Throwing, &ReplacedAllocator::GivingNull}) {
    reports_.Forget();
    const ReplacedAllocator outOfMemory(allocator);
    OutputZipFileStream stream = Open();
    const Reports told{{"", u"Unable to alloc enought memory. Try to use 64-bit Orlenta.", 0}};
    EXPECT_EQ(told, *reports_);
    EXPECT_THROW(stream.WriteNarrowText("a"), std::runtime_error);
    EXPECT_THROW(stream.WriteWideString(u"a"), std::runtime_error);
    EXPECT_FALSE(stream.Close());
    EXPECT_EQ(told, *reports_);
  }
}

}  // namespace
}  // namespace FileStream
