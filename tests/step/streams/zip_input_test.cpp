#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "step/streams/input_file_stream.h"
#include "step/streams/input_zip_file_stream.h"
#include "step/streams/open_input.h"
#include "support/memory_streams.h"
#include "support/recorded_reports.h"
#include "support/replaced_allocator.h"
#include "support/temporary_folder.h"
#include "support/zip_bytes.h"

namespace FileStream {
namespace {

using corvel::WideString;
using corvel::test::Bytes;
using corvel::test::kZipDescriptor;
using corvel::test::kZipEncrypted;
using corvel::test::RecordedReports;
using corvel::test::ReplacedAllocator;
using corvel::test::Report;
using corvel::test::TakeByChar;
using corvel::test::TemporaryFolder;
using corvel::test::ZipEntry;
using corvel::test::ZipOf;
using corvel::test::ZipWriter;
using Reports = std::vector<Report>;

// A text that takes many refills and compresses a little.
std::string LongText() {
  std::string text;
  for (int i = 0; i < 3000; ++i) text += "#" + std::to_string(i * i) + "=IFCWALL('x;',$);\n";
  return text;
}

std::string AllOf(InputStream& stream) {
  std::string all;
  while (stream.Refill()) {
    all.append(stream.Cursor(), stream.WindowEnd());
    stream.SetCursor(stream.WindowEnd());
  }
  return all;
}

class ZipInput : public testing::Test {
 protected:
  // The bytes as "a.ifczip", opened.
  InputZipFileStream Open(const std::string& bytes, std::size_t bufferSize = 4096) {
    return OpenPath(folder_.Write("a.ifczip", bytes), bufferSize);
  }
  // An entry of the bytes as "a.olf", opened.
  InputZipFileStream OpenEntry(const std::string& bytes, const WideString& entry) {
    return OpenPath(folder_.Write("a.olf", bytes) + u"|" + entry);
  }
  static InputZipFileStream OpenPath(const WideString& path, std::size_t bufferSize = 4096) {
    return {path, RecordedReports::Reporter, bufferSize};
  }
  // It does not open, with this message alone, neither with nor without somebody to tell.
  void ExpectRefused(const WideString& path, const WideString& message) {
    reports_.Forget();
    InputZipFileStream stream = OpenPath(path);
    EXPECT_EQ((Reports{{"", message, 0}}), *reports_);
    ExpectClosed(stream);
    reports_.Forget();
    InputZipFileStream silent(path, nullptr, 4096);
    EXPECT_FALSE(silent.IsOpen());
    EXPECT_EQ(Reports{}, *reports_);
    // Nobody holds on to the file.
    const auto bar = path.find(u'|');
    const std::filesystem::path file = path.substr(0, bar);
    if (std::filesystem::exists(file)) {
      EXPECT_TRUE(std::filesystem::remove(file));
    }
  }
  static void ExpectClosed(InputZipFileStream& stream) {
    char byte = 'x';
    EXPECT_FALSE(stream.IsOpen());
    EXPECT_EQ(0, stream.GetChar());
    EXPECT_EQ(0, stream.PeekChar());
    EXPECT_EQ(0u, stream.Read(&byte, 1));
    EXPECT_EQ(-1, stream.Position());
    EXPECT_EQ(-1, stream.NextEntry());
    EXPECT_EQ(-1, stream.TotalSize());
    EXPECT_EQ(0, stream.Close());
  }

  TemporaryFolder folder_;
  RecordedReports reports_;
};

// --- Which entry ---------------------------------------------------------------------------------

TEST_F(ZipInput, TheFirstEntryIsTheModelWhateverItsName) {
  InputZipFileStream stream = Open(ZipOf({{"notes.txt", "first"}, {"model.ifc", "second"}}));
  EXPECT_TRUE(stream.IsOpen());
  EXPECT_EQ("first", AllOf(stream));
  EXPECT_EQ(u"", stream.EntryName());
  EXPECT_EQ(u".ifczip", stream.Extension());
}

TEST_F(ZipInput, FoldersInFrontOfTheModelArePassedOver) {
  ZipEntry large{"a/", "", false};
  large.large = true;
  const std::vector<ZipEntry> archives[] = {
      {{"a/", "", false}, {"a/b/", ""}, {"a\\b\\", ""}, {"a/b/m", "model"}},
      {large, large, {"a/m", "model"}},
      {{"no folder, for it has bytes/", "model"}, {"b", "x"}},
  };
  for (const auto& entries : archives) {
    InputZipFileStream stream = Open(ZipOf(entries));
    EXPECT_EQ("model", AllOf(stream));
    EXPECT_EQ(Reports{}, *reports_);
  }
}

TEST_F(ZipInput, AContainerGivesTheEntryOfThatName) {
  const std::string archive = ZipOf({{"sub/", ""}, {"model.ifc", "a"}, {"sub/model.ifc", "b"}});
  InputZipFileStream stream = OpenEntry(archive, u"sub/model.ifc");
  EXPECT_EQ(u".olf", stream.Extension());
  EXPECT_EQ(folder_.Path("a.olf"), stream.ContainerPath());
  EXPECT_EQ(u"sub/model.ifc", stream.EntryName());
  EXPECT_EQ("b", AllOf(stream));
  EXPECT_EQ(Reports{}, *reports_);
}

TEST_F(ZipInput, NamesOfEntriesAreComparedByteByByte) {
  const std::string archive = ZipOf({{"Model.ifc", "x"}, {"model.ifc2", "x"}, {"odel.ifc", "x"}});
  for (const char16_t* name : {u"model.ifc", u"Model.ifc ", u"Model.if", u"/Model.ifc", u""}) {
    const WideString path = folder_.Write("a.olf", archive) + u"|" + name;
    ExpectRefused(path, u"Could not go to specified file in zip archive. File path: " + path);
  }
}

TEST_F(ZipInput, NamesOfEntriesMayHoldAnything) {
  const std::string longName(3000, 'n');
  const std::string archive = ZipOf({{"k\xC3\xBChl/\xF0\x9F\x8F\xA0.ifc", "umlaut"},
                                     {"k\x81hl.ifc", "bytes of an old code page"},
                                     {"a|b|c", "bars"},
                                     {longName, "long"}});
  const auto textOf = [&](const WideString& name) {
    InputZipFileStream stream = OpenEntry(archive, name);
    return AllOf(stream);
  };
  EXPECT_EQ("umlaut", textOf(u"k\u00FChl/\U0001F3E0.ifc"));
  EXPECT_EQ("bytes of an old code page", textOf(corvel::FromUtf8("k\x81hl.ifc")));
  EXPECT_EQ("bars", textOf(u"a|b|c"));
  EXPECT_EQ("long", textOf(corvel::Widen(longName)));
}

TEST_F(ZipInput, AContainerWithoutABarIsSearchedForItsOwnPath) {
  const WideString path = folder_.Path("a.OLF");
  folder_.Write("a.OLF", ZipOf({{"x", "no"}, {corvel::ToUtf8(path), "itself"}}));
  {
    InputZipFileStream stream = OpenPath(path);
    EXPECT_EQ("itself", AllOf(stream));
    EXPECT_EQ(u"", stream.EntryName());
  }
  folder_.Write("a.OLF", ZipOf({{"x", "no"}}));
  ExpectRefused(path, u"Could not go to specified file in zip archive. File path: " + path);
}

// --- What other programs write
// ---------------------------------------------------------------------

class ZipForms : public ZipInput, public testing::WithParamInterface<bool> {
 protected:
  void ExpectRead(const ZipEntry& entry, const std::string& archive) {
    for (const std::size_t bufferSize : {1u, 7u, 16384u, 1u << 20}) {
      InputZipFileStream stream = Open(archive, bufferSize);
      ASSERT_EQ(Reports{}, *reports_);
      EXPECT_EQ(static_cast<std::int64_t>(entry.content.size()), stream.TotalSize());
      EXPECT_TRUE(entry.content == AllOf(stream)) << bufferSize;
      EXPECT_FALSE(stream.IsDamaged());
      EXPECT_EQ(Reports{}, *reports_);
      EXPECT_EQ(0, stream.Close());
    }
  }
  ZipEntry Entry() const { return {"model.ifc", LongText(), GetParam()}; }
};

INSTANTIATE_TEST_SUITE_P(StoredAndDeflated, ZipForms, testing::Bool());

TEST_P(ZipForms, Plain) { ExpectRead(Entry(), ZipOf({Entry(), {"b", "other"}})); }

TEST_P(ZipForms, Empty) {
  ZipEntry entry = Entry();
  entry.content.clear();
  ExpectRead(entry, ZipOf({entry}));
}

TEST_P(ZipForms, WithSizesBehindTheData) {
  ZipEntry entry = Entry();
  entry.flags = kZipDescriptor;
  ExpectRead(entry, ZipOf({entry, {"b", "other"}}));
}

TEST_P(ZipForms, WithCommentsAndExtraFields) {
  ZipEntry entry = Entry();
  entry.comment = "about the entry";
  entry.extra = Bytes(0x5455, 2) + Bytes(5, 2) + Bytes(1, 5);
  ExpectRead(entry, ZipOf({entry, {"b", "other"}}, "about the archive"));
  ExpectRead(entry, ZipOf({entry}, std::string(60'000, 'c')));
}

TEST_P(ZipForms, WithSizesInTheFieldForLargeArchives) {
  ZipEntry entry = Entry();
  entry.large = true;
  ExpectRead(entry, ZipOf({entry}));
  ExpectRead(entry, ZipOf({{"folder/", ""}, entry, {"b", "other"}}));
  // Behind another extra field, and with the sizes behind the data.
  entry.extra = Bytes(0x5455, 2) + Bytes(5, 2) + Bytes(1, 5);
  entry.flags = kZipDescriptor;
  ExpectRead(entry, ZipOf({entry, {"b", "other"}}));
}

TEST_P(ZipForms, WithTheDirectoryOfLargeArchives) {
  ZipWriter writer;
  ZipEntry entry = Entry();
  entry.large = true;
  writer.Add(entry);
  writer.Add({"b", "other"});
  ExpectRead(entry, writer.Finish("comment", true));
}

TEST_P(ZipForms, BehindOtherBytes) {
  ZipWriter writer(std::string(5000, 'P'));
  ZipEntry entry = Entry();
  writer.Add(entry);
  ExpectRead(entry, writer.Finish());
  entry.large = true;
  ZipWriter large("#!/bin/sh\n");
  large.Add(entry);
  ExpectRead(entry, large.Finish());
}

TEST_P(ZipForms, AmongThousandsOfEntries) {
  ZipWriter writer;
  for (int i = 0; i < 5000; ++i) writer.Add({"folder/" + std::to_string(i), "x", false});
  ZipEntry entry = Entry();
  writer.Add(entry);
  writer.Add({"last", "x"});
  InputZipFileStream stream = OpenEntry(writer.Finish(), u"model.ifc");
  EXPECT_TRUE(entry.content == AllOf(stream));
}

// --- Reading -------------------------------------------------------------------------------------

TEST_F(ZipInput, TenBytesThenTheEnd) {
  InputZipFileStream stream = Open(ZipOf({{"m", "0123456789"}}));
  EXPECT_EQ(0, stream.Position());
  EXPECT_FALSE(stream.IsEof());
  EXPECT_EQ("012345678", TakeByChar(stream, 9));
  EXPECT_FALSE(stream.IsEof());
  EXPECT_EQ(9, stream.Position());
  EXPECT_EQ('9', stream.PeekChar());
  EXPECT_EQ('9', stream.GetChar());
  EXPECT_TRUE(stream.IsEof()) << "the refill came short";
  EXPECT_EQ(10, stream.Position());
  EXPECT_EQ(-1, stream.PeekChar());
  EXPECT_EQ(-1, stream.GetChar());
  EXPECT_EQ(-1, stream.GetChar());
  EXPECT_EQ(10, stream.Position());
  EXPECT_EQ(10, stream.TotalSize());
}

TEST_F(ZipInput, ABufferThatTheEntryFillsExactlyHidesTheEndUntilTheNextRefill) {
  InputZipFileStream stream = Open(ZipOf({{"m", "0123456789"}}), 5);
  EXPECT_EQ("0123456789", TakeByChar(stream, 10));
  EXPECT_FALSE(stream.IsEof());
  EXPECT_EQ(-1, stream.GetChar());
  EXPECT_TRUE(stream.IsEof());
}

TEST_F(ZipInput, PeekingRefills) {
  InputZipFileStream stream = Open(ZipOf({{"m", "abcd"}}), 2);
  EXPECT_EQ("ab", TakeByChar(stream, 2));
  EXPECT_EQ('c', stream.PeekChar());
  EXPECT_EQ(2, stream.WindowEnd() - stream.Cursor());
  EXPECT_EQ(2, stream.Position());
  EXPECT_EQ("cd", TakeByChar(stream, 2));
  EXPECT_EQ("abcd", stream.StatementText());
}

TEST_F(ZipInput, BytesAreSignedCharacters) {
  InputZipFileStream stream = Open(ZipOf({{"m", "\xE4\xFFz"}}));
  EXPECT_EQ(-28, stream.PeekChar());
  EXPECT_EQ(-28, stream.GetChar());
  EXPECT_EQ(-1, stream.GetChar());
  EXPECT_EQ('z', stream.GetChar());
}

TEST_F(ZipInput, TheLastWindowButOneIsStillThere) {
  InputZipFileStream stream = Open(ZipOf({{"m", "abcdefgh"}}), 3);
  ASSERT_TRUE(stream.Refill());
  const char* const first = stream.Cursor();
  stream.SetCursor(stream.WindowEnd());
  ASSERT_TRUE(stream.Refill());
  EXPECT_EQ("abc", std::string(first, 3));
  EXPECT_NE(first, stream.Cursor());
  stream.SetCursor(stream.WindowEnd());
  ASSERT_TRUE(stream.Refill());
  EXPECT_EQ(first, stream.Cursor());
  EXPECT_EQ("gh", std::string(first, 2));
}

TEST_F(ZipInput, StatementTextAndSemicolonGoAcrossWindows) {
  InputZipFileStream stream = Open(ZipOf({{"m", "#1=A;#2"}}), 2);
  EXPECT_FALSE(stream.LastWasSemicolon());
  EXPECT_EQ("#1=A;", TakeByChar(stream, 5));
  EXPECT_TRUE(stream.LastWasSemicolon());
  EXPECT_EQ("#1=A;", stream.StatementText());
  stream.ClearStatementText();
  EXPECT_EQ("#2", TakeByChar(stream, 2));
  EXPECT_FALSE(stream.LastWasSemicolon());
  EXPECT_EQ("#2", stream.StatementText());
}

TEST_F(ZipInput, ReadTakesCharactersAndDoesNotStopAtTheEnd) {
  InputZipFileStream stream = Open(ZipOf({{"m", "ab;"}}), 2);
  std::string bytes(5, 'x');
  EXPECT_EQ(0u, stream.Read(bytes.data(), 0));
  EXPECT_EQ(5u, stream.Read(bytes.data(), 5));
  EXPECT_EQ("ab;\xFF\xFF", bytes);
  EXPECT_EQ("ab;", stream.StatementText());
}

TEST_F(ZipInput, NextEntryMovesInTheDirectoryAndGivesUpWhatIsBuffered) {
  InputZipFileStream stream = Open(ZipOf({{"a", "one;two"}, {"b", "four"}}));
  EXPECT_EQ("one;", TakeByChar(stream, 4));
  EXPECT_TRUE(stream.LastWasSemicolon());
  EXPECT_EQ(7, stream.TotalSize());
  EXPECT_EQ(0, stream.NextEntry());
  EXPECT_EQ(4, stream.TotalSize());
  EXPECT_FALSE(stream.LastWasSemicolon());
  EXPECT_EQ(stream.Cursor(), stream.WindowEnd());
  EXPECT_EQ(7, stream.Position());
  EXPECT_EQ(-1, stream.GetChar()) << "the next entry has not been opened";
}

TEST_F(ZipInput, BehindTheLastEntryNothingMoves) {
  InputZipFileStream stream = Open(ZipOf({{"a", "one;two"}}));
  EXPECT_EQ("one;", TakeByChar(stream, 4));
  EXPECT_EQ(-100, stream.NextEntry());
  EXPECT_EQ(-100, stream.NextEntry());
  EXPECT_EQ(4, stream.Position());
  EXPECT_TRUE(stream.LastWasSemicolon());
  EXPECT_EQ("two", TakeByChar(stream, 3));
}

TEST_F(ZipInput, APlainFileHasNoNextEntry) {
  InputFileStream stream(folder_.Write("a.ifc", "x"), nullptr, 16);
  EXPECT_EQ(-1, stream.NextEntry());
}

TEST_F(ZipInput, TheStatedSizeIsCutTo32Bits) {
  ZipEntry entry{"m", "model"};
  entry.size = 0xFFFFFFFE;
  EXPECT_EQ(0xFFFFFFFE, Open(ZipOf({entry})).TotalSize());
  entry.large = true;
  entry.size = (std::uint64_t{1} << 32) + 7;
  InputZipFileStream stream = Open(ZipOf({entry}));
  // Where the library cannot read such entries they don't open.
  if (stream.IsOpen()) {
    EXPECT_EQ(7, stream.TotalSize());
  } else {
    EXPECT_EQ((Reports{{"", u"Could not open first file in zip archive", 0}}), *reports_);
  }
}

TEST_F(ZipInput, AClosedStreamGivesNothing) {
  InputZipFileStream stream = Open(ZipOf({{"m", "model"}}));
  stream.GetChar();
  EXPECT_EQ(0, stream.Close());
  ExpectClosed(stream);
  EXPECT_TRUE(std::filesystem::remove(folder_.Native("a.ifczip")));
}

TEST_F(ZipInput, TheEndingChoosesTheStream) {
  const std::string archive = ZipOf({{"m", "packed"}});
  const auto textOf = [](const WideString& path) {
    const auto stream = OpenInput(path, 4096, RecordedReports::Reporter);
    return stream == nullptr ? "null" : AllOf(*stream);
  };
  EXPECT_EQ("plain", textOf(folder_.Write("a.IFC", "plain")));
  EXPECT_EQ("packed", textOf(folder_.Write("a.IfcZip", archive)));
  EXPECT_EQ("packed", textOf(folder_.Write("a.OLF", archive) + u"|m"));
  EXPECT_EQ("null", textOf(folder_.Write("a.zip", archive)));
  EXPECT_EQ("null", textOf(folder_.Write("b.ifczip", archive) + u"|m"));
  EXPECT_EQ(Reports{}, *reports_);
}

// --- What goes wrong -----------------------------------------------------------------------------

TEST_F(ZipInput, AnArchiveThatIsNoneIsTold) {
  for (const char* bytes : {"", "PK", "ISO-10303-21;\nHEADER;\n"}) {
    const WideString path = folder_.Write("a.ifczip", bytes);
    ExpectRefused(path, u"Could not open zip archive: " + path);
  }
  ExpectRefused(folder_.Path("none.ifczip"),
                u"Could not open zip archive: " + folder_.Path("none.ifczip"));
  const WideString entry = folder_.Path("none.olf|a");
  ExpectRefused(entry, u"Could not open zip archive: " + entry);
}

TEST_F(ZipInput, AnArchiveWithoutAFileIsTold) {
  // (The library takes an archive of nothing but its end for none.)
  const std::string empty = ZipWriter("some bytes").Finish();
  ExpectRefused(folder_.Write("a.ifczip", empty), u"Could not go to first file in zip archive");
  ExpectRefused(folder_.Write("a.olf", empty) + u"|a",
                u"Could not go to first file in zip archive");
  ExpectRefused(folder_.Write("a.ifczip", ZipOf({{"a/", ""}, {"a/b/", ""}})),
                u"Could not go to first file in zip archive");
}

TEST_F(ZipInput, AnEntryThatCannotBeOpenedIsTold) {
  ZipEntry encrypted{"m", "model"};
  encrypted.flags = kZipEncrypted;
  ZipEntry foreign{"m", "model"};
  foreign.method = 12;
  ZipEntry unknown{"m", "model"};
  unknown.method = 99;
  ZipEntry large{"m", "model"};
  large.large = true;
  large.size = std::uint64_t{1} << 40;
  large.packedSize = std::uint64_t{1} << 63;
  std::string noHeader = ZipOf({{"m", "model"}});
  noHeader[0] = 'X';
  for (const std::string& archive :
       {ZipOf({encrypted}), ZipOf({foreign}), ZipOf({unknown}), noHeader}) {
    ExpectRefused(folder_.Write("a.ifczip", archive), u"Could not open first file in zip archive");
    ExpectRefused(folder_.Write("a.olf", archive) + u"|m",
                  u"Could not open first file in zip archive");
  }
}

TEST_F(ZipInput, AnotherExtensionIsTold) {
  for (const char* name : {"a.zip", "a.ifc", "a", "a.ifczip|m"}) {
    const WideString path = folder_.Path(name);
    ExpectRefused(path, u"Wrong extension of file: " + path);
  }
}

TEST_F(ZipInput, ABufferThatCannotBeHadIsToldAndGivesNothing) {
  const std::string archive = ZipOf({{"m", "model"}});
  for (const BufferAllocator allocator :
       {&ReplacedAllocator::Throwing, &ReplacedAllocator::GivingNull}) {
    reports_.Forget();
    const ReplacedAllocator outOfMemory(allocator);
    InputZipFileStream stream = Open(archive);
    EXPECT_EQ((Reports{{"", u"Unable to alloc enought memory. Try to use 64-bit Orlenta.", 0}}),
              *reports_);
    EXPECT_EQ(-1, stream.GetChar());
    EXPECT_EQ(-1, stream.PeekChar());
    EXPECT_EQ(0, stream.Position());
    EXPECT_EQ(0, stream.Close());
  }
  const ReplacedAllocator outOfMemory(&ReplacedAllocator::Throwing);
  InputZipFileStream silent(folder_.Path("a.ifczip"), nullptr, 16);
  EXPECT_EQ(-1, silent.GetChar());
}

TEST_F(ZipInput, AFolderIsNoArchive) {
  std::filesystem::create_directory(folder_.Native("folder.ifczip"));
  InputZipFileStream stream = OpenPath(folder_.Path("folder.ifczip"));
  EXPECT_EQ((Reports{{"", u"Could not open zip archive: " + folder_.Path("folder.ifczip"), 0}}),
            *reports_);
}

}  // namespace
}  // namespace FileStream
