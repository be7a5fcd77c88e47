// What Windows has of its own in putting a file at its place.
#ifdef _WIN32

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <thread>
#include <vector>

#include "platform/part_name.h"
#include "platform/replacing_file.h"
#include "support/temporary_folder.h"

namespace platform {
namespace {

using Names = std::vector<std::string>;

const wchar_t* Native(const std::u16string& path) {
  return reinterpret_cast<const wchar_t*>(path.c_str());
}

class WindowsReplacingFile : public testing::Test {
 protected:
  void Begin(ReplacingFile& file, std::string_view bytes = "whole") const {
    ASSERT_TRUE(file.Begin(path));
    File opened = file.TakeFile();
    ASSERT_EQ(bytes.size(), opened.Write(bytes.data(), bytes.size()));
    ASSERT_TRUE(opened.Close());
  }
  // As programs open files that know nothing of deleting.
  HANDLE OpenTarget() const {
    return ::CreateFileW(Native(path), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                         OPEN_EXISTING, 0, nullptr);
  }
  static std::string PartOf(std::uint32_t process, PartKind kind) {
    const std::u16string name = PartName(u".out.ifc.corvel-", process, kind);
    return {name.begin(), name.end()};
  }

  const corvel::test::TemporaryFolder folder;
  const std::u16string path = folder.Path("out.ifc");
};

TEST_F(WindowsReplacingFile, LeavesNoBackup) {
  folder.Write("out.ifc", "older");
  ReplacingFile file;
  Begin(file);
  EXPECT_TRUE(file.Place());
  EXPECT_EQ(Names{"out.ifc"}, folder.Names());
  EXPECT_EQ("whole", folder.Read("out.ifc"));
}

TEST_F(WindowsReplacingFile, WaitsForAProgramThatHasItsTargetOpen) {
  folder.Write("out.ifc", "older");
  ReplacingFile file;
  Begin(file);
  const HANDLE other = OpenTarget();
  ASSERT_NE(INVALID_HANDLE_VALUE, other);
  std::thread soon([other] {
    ::Sleep(200);
    ::CloseHandle(other);
  });
  EXPECT_TRUE(file.Place());
  soon.join();
  EXPECT_EQ("whole", folder.Read("out.ifc"));
}

TEST_F(WindowsReplacingFile, StaysBesideATargetThatIsNeverFree) {
  folder.Write("out.ifc", "older");
  ReplacingFile file;
  Begin(file);
  const HANDLE other = OpenTarget();
  ASSERT_NE(INVALID_HANDLE_VALUE, other);
  const ULONGLONG start = ::GetTickCount64();
  EXPECT_FALSE(file.Place());
  EXPECT_GE(::GetTickCount64() - start, 900u);
  const std::u16string kept = file.Keep();
  ::CloseHandle(other);
  EXPECT_EQ("older", folder.Read("out.ifc"));
  ASSERT_EQ(2u, folder.Names().size());
  EXPECT_EQ(folder.Path(folder.Names()[1]), kept);
  EXPECT_EQ("whole", folder.Read(folder.Names()[1]));
}

TEST_F(WindowsReplacingFile, IsRefusedAReadOnlyTarget) {
  folder.Write("out.ifc", "older");
  ::SetFileAttributesW(Native(path), FILE_ATTRIBUTE_READONLY);
  ReplacingFile file;
  EXPECT_FALSE(file.Begin(path));
  ::SetFileAttributesW(Native(path), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(Names{"out.ifc"}, folder.Names());
}

TEST_F(WindowsReplacingFile, CanBeReadAndNeitherWrittenNorDeletedByOthers) {
  ReplacingFile file;
  Begin(file, "half");
  const std::string name = folder.Names().front();
  EXPECT_EQ("half", folder.Read(name));
  EXPECT_FALSE(RemoveFile(folder.Path(name)));
  File other;
  EXPECT_FALSE(other.Open(folder.Path(name), OpenMode::kAppend));
}

TEST_F(WindowsReplacingFile, LeavesWhatARunningProcessHasJustClosed) {
  const std::string part = PartOf(::GetCurrentProcessId(), PartKind::kPart);
  folder.Write(part, "whole");
  ReplacingFile file;
  Begin(file);
  EXPECT_EQ("whole", folder.Read(part));
}

TEST_F(WindowsReplacingFile, PutsBackWhatAKilledRunHadMovedAway) {
  constexpr std::uint32_t kNobody = 3;  // numbers of processes are multiples of 4
  folder.Write(PartOf(kNobody, PartKind::kBackup), "older");
  folder.Write(PartOf(kNobody, PartKind::kPart), "whole");
  {
    ReplacingFile file;
    Begin(file);
  }
  EXPECT_EQ(Names{"out.ifc"}, folder.Names());
  EXPECT_EQ("older", folder.Read("out.ifc"));
}

TEST_F(WindowsReplacingFile, RemovesABackupWhoseTargetIsThere) {
  folder.Write("out.ifc", "whole");
  folder.Write(PartOf(3, PartKind::kBackup), "older");
  ReplacingFile file;
  Begin(file);
  file.Discard();
  EXPECT_EQ(Names{"out.ifc"}, folder.Names());
  EXPECT_EQ("whole", folder.Read("out.ifc"));
}

}  // namespace
}  // namespace platform

#endif
