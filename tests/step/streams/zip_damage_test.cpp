// Archives that are not what was once written. Whatever is wrong is told, and nothing that reads to
// its end without a word is wrong.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "step/streams/input_zip_file_stream.h"
#include "support/recorded_reports.h"
#include "support/temporary_folder.h"
#include "support/zip_bytes.h"

namespace FileStream {
namespace {

using corvel::test::kZipDescriptor;
using corvel::test::RecordedReports;
using corvel::test::Report;
using corvel::test::TemporaryFolder;
using corvel::test::ZipEntry;
using corvel::test::ZipOf;
using Reports = std::vector<Report>;

// `count` lines that don't compress to nothing.
std::string Records(int count) {
  std::mt19937 random(1);
  std::string text;
  for (int i = 1; i <= count; ++i) {
    text += "#" + std::to_string(i) + "=IFCCARTESIANPOINT((" + std::to_string(random()) + ".));\n";
  }
  return text;
}

class ZipDamage : public testing::Test {
 protected:
  struct Outcome {
    bool opened = false;
    bool damaged = false;
    std::string content;
    Reports reports;
  };

  Outcome Read(const std::string& archive, std::size_t bufferSize = 4096) {
    reports_.Forget();
    Outcome outcome;
    InputZipFileStream stream(folder_.Write("a.ifczip", archive), RecordedReports::Reporter,
                              bufferSize);
    outcome.opened = stream.IsOpen();
    while (stream.Refill()) {
      outcome.content.append(stream.Cursor(), stream.WindowEnd());
      stream.SetCursor(stream.WindowEnd());
    }
    if (outcome.opened) {
      EXPECT_TRUE(stream.IsEof());
      EXPECT_EQ(-1, stream.GetChar()) << "damage is the end of the data";
    }
    outcome.damaged = stream.IsDamaged();
    outcome.reports = *reports_;
    return outcome;
  }

  // What the entry gives is `content` or damaged, and damage is told once.
  void ExpectWholeOrTold(const std::string& archive, const std::string& content,
                         const std::string& what) {
    const Outcome outcome = Read(archive);
    if (outcome.opened && !outcome.damaged) {
      EXPECT_TRUE(outcome.content == content) << what;
      EXPECT_EQ(Reports{}, outcome.reports) << what;
    } else {
      EXPECT_EQ(1u, outcome.reports.size()) << what;
    }
  }

  void ExpectDamagedOrClosed(const std::string& archive) {
    const Outcome outcome = Read(archive);
    EXPECT_TRUE(!outcome.opened || outcome.damaged);
    EXPECT_EQ(1u, outcome.reports.size());
  }

  void ExpectDamaged(const std::string& archive) {
    for (const std::size_t bufferSize : {1u, 100u, 1u << 20}) {
      const Outcome outcome = Read(archive, bufferSize);
      EXPECT_TRUE(outcome.opened);
      EXPECT_TRUE(outcome.damaged) << bufferSize;
      EXPECT_EQ(kDamaged, outcome.reports) << bufferSize;
    }
  }

  TemporaryFolder folder_;
  RecordedReports reports_;
  const Reports kDamaged{
      {"", u"The data in the zip archive is damaged: " + folder_.Path("a.ifczip"), 0}};
};

TEST_F(ZipDamage, AnArchiveThatWasCutDoesNotOpen) {
  const std::string archive = ZipOf({{"m.ifc", Records(5000)}});
  ASSERT_GT(archive.size(), 30u * 1024);
  const Reports notOpened{{"", u"Could not open zip archive: " + folder_.Path("a.ifczip"), 0}};
  for (std::size_t size = 0; size < archive.size(); size += 1024) {
    const Outcome outcome = Read(archive.substr(0, size));
    EXPECT_FALSE(outcome.opened) << size;
    EXPECT_EQ(notOpened, outcome.reports) << size;
  }
  // The library does not miss the last bytes, which tell how long the comment is.
  const std::string small = ZipOf({{"m.ifc", Records(3)}});
  for (std::size_t size = 0; size < small.size(); ++size) {
    ExpectWholeOrTold(small.substr(0, size), Records(3), "size " + std::to_string(size));
  }
}

TEST_F(ZipDamage, NoFlippedBitGoesUnseen) {
  const std::string content = Records(20);
  for (const bool deflated : {true, false}) {
    for (const bool large : {true, false}) {
      ZipEntry entry{"m.ifc", content, deflated};
      entry.large = large;
      const std::string archive = ZipOf({entry});
      for (std::size_t bit = 0; bit < archive.size() * 8; ++bit) {
        std::string flipped = archive;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
        ExpectWholeOrTold(flipped, content, "bit " + std::to_string(bit));
      }
    }
  }
}

TEST_F(ZipDamage, NoHoleGoesUnseen) {
  const std::string content = Records(400);
  ZipEntry entry{"m.ifc", content};
  entry.flags = kZipDescriptor;
  const std::string archive = ZipOf({{"folder/", ""}, entry, {"other", "x"}}, "comment");
  std::mt19937 random(7);
  for (int round = 0; round < 2000; ++round) {
    std::string holed = archive;
    const std::size_t at = random() % holed.size();
    const std::size_t length = std::min<std::size_t>(random() % 40 + 1, holed.size() - at);
    if (round % 2 == 0) {
      holed.erase(at, length);
    } else {
      std::generate_n(holed.begin() + static_cast<std::ptrdiff_t>(at), length,
                      [&] { return static_cast<char>(random()); });
    }
    const Outcome outcome = Read(holed);
    // A name or a comment may change, and a folder may become a file without bytes.
    if (outcome.opened && !outcome.damaged) {
      EXPECT_TRUE(outcome.content == content || outcome.content.empty() || outcome.content == "x")
          << round;
    } else {
      EXPECT_EQ(1u, outcome.reports.size()) << round;
    }
  }
}

TEST_F(ZipDamage, AWrongChecksumIsTold) {
  for (const bool deflated : {true, false}) {
    for (const std::uint16_t flags : {std::uint16_t{0}, kZipDescriptor}) {
      ZipEntry entry{"m.ifc", Records(50), deflated, flags};
      entry.checksum = 0x12345678;
      ExpectDamaged(ZipOf({entry}));
      EXPECT_EQ(entry.content, Read(ZipOf({entry})).content) << "known at the end only";
    }
  }
}

TEST_F(ZipDamage, ASizeThatIsALieIsTold) {
  const std::string content = Records(50);
  for (const std::uint64_t lie :
       {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{content.size() - 1},
        std::uint64_t{content.size() + 1}, std::uint64_t{0xFFFFFFF0}}) {
    ZipEntry entry{"m.ifc", content};
    entry.size = lie;
    ExpectDamaged(ZipOf({entry}));
    EXPECT_LE(Read(ZipOf({entry})).content.size(), std::min<std::uint64_t>(lie, content.size()));
  }
}

TEST_F(ZipDamage, ACompressedSizeThatIsALieIsTold) {
  const std::string content = Records(50);
  for (const std::uint64_t lie : {0, 1, 100}) {
    ZipEntry entry{"m.ifc", content};
    entry.packedSize = lie;
    ExpectDamaged(ZipOf({entry}));
  }
}

TEST_F(ZipDamage, StoredDataThatTheArchiveDoesNotHoldIsTold) {
  ZipEntry entry{"m.ifc", Records(50), false};
  entry.size = entry.packedSize = 0x7FFFFFFF;
  ExpectDamaged(ZipOf({entry}));
}

// A library that reads them itself may not look at how long their field is.
TEST_F(ZipDamage, SizesOfALargeEntryWithoutRoomAreToldOrRead) {
  ZipEntry entry{"m.ifc", Records(5)};
  entry.large = true;
  std::string archive = ZipOf({entry});
  const std::size_t record = archive.rfind("PK\1\2");
  const std::size_t field = record + 46 + entry.name.size();
  ASSERT_EQ(corvel::test::Bytes(1, 2) + corvel::test::Bytes(24, 2), archive.substr(field, 4));
  archive[field + 2] = 4;
  ExpectWholeOrTold(archive, entry.content, "no room for the sizes");
  archive.replace(field, 2, corvel::test::Bytes(7, 2));
  ExpectDamagedOrClosed(archive);
}

TEST_F(ZipDamage, WhatGrowsToAMultipleOfItsSizeTakesTwoBuffersAllTheSame) {
  constexpr std::size_t kSize = 100'000'000;
  const std::string archive = ZipOf({{"m.ifc", std::string(kSize, '\0')}});
  ASSERT_LT(archive.size(), 200'000u);
  InputZipFileStream stream(folder_.Write("a.ifczip", archive), RecordedReports::Reporter, 4096);
  std::size_t taken = 0;
  while (stream.Refill()) {
    taken += static_cast<std::size_t>(stream.WindowEnd() - stream.Cursor());
    ASSERT_LE(stream.WindowEnd() - stream.Cursor(), 4096);
    stream.SetCursor(stream.WindowEnd());
    stream.ClearStatementText();
  }
  EXPECT_EQ(kSize, taken);
  EXPECT_FALSE(stream.IsDamaged());
}

}  // namespace
}  // namespace FileStream
