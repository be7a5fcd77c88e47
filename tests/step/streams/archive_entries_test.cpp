#include "step/streams/archive_entries.h"

#include <gtest/gtest.h>

#include <string>

#include "support/temporary_folder.h"
#include "support/zip_bytes.h"

namespace corvel::test {

namespace {

std::string EntriesIn(const std::string& archive) {
  const TemporaryFolder folder;
  const auto entries = FileStream::EntriesOf(folder.Write("c.olf", archive));
  if (!entries) return "(unreadable)";
  std::string text;
  for (const FileStream::ArchiveEntry& entry : *entries) {
    text += ToUtf8(entry.name) + " " + std::to_string(entry.bytes) + "\n";
  }
  return text;
}

}  // namespace

TEST(ArchiveEntries, FilesStandInTheirOrderWithTheirBytes) {
  EXPECT_EQ("b.ifc 4\na\xC3\xA9.ifc 0\nd/c.ifc 10\n",
            EntriesIn(ZipOf({{"b.ifc", "1234"},
                             {"a\xC3\xA9.ifc", ""},
                             {"d/", ""},
                             {"d/c.ifc", "1234567890", false}})));
}

TEST(ArchiveEntries, LargeEntriesTellTheirBytesElsewhere) {
  EXPECT_EQ("a.ifc 4\n", EntriesIn(ZipOf({{.name = "a.ifc", .content = "1234", .large = true}})));
}

// The library opens none without an entry.
TEST(ArchiveEntries, AnEmptyArchiveIsUnreadable) {
  EXPECT_EQ("(unreadable)", EntriesIn(ZipOf({})));
}

TEST(ArchiveEntries, WhatIsNoArchiveIsUnreadable) {
  EXPECT_EQ("(unreadable)", EntriesIn("no archive"));
  const TemporaryFolder folder;
  EXPECT_FALSE(FileStream::EntriesOf(folder.Path("none.olf")));
}

}  // namespace corvel::test
