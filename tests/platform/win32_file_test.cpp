#ifdef _WIN32

#include <gtest/gtest.h>
#include <windows.h>

#include <thread>

#include "platform/file.h"
#include "platform/locked_file.h"
#include "platform/win32/long_path.h"
#include "support/temporary_folder.h"

namespace platform {
namespace {

using corvel::test::TemporaryFolder;

std::string ReadUpTo(File& file, std::size_t count) {
  std::string bytes(count, '\0');
  bytes.resize(file.Read(bytes.data(), count));
  return bytes;
}

const wchar_t* Native(const std::u16string& path) {
  return reinterpret_cast<const wchar_t*>(path.c_str());
}

// --- Long paths ----------------------------------------------------------------------------------

TEST(LongPath, APathWithinTheLimitStaysAsItIs) {
  EXPECT_EQ(L"C:\\m\\a.ifc", PathForSystem(u"C:\\m\\a.ifc"));
  EXPECT_EQ(L"C:/m/../a.ifc", PathForSystem(u"C:/m/../a.ifc"));
  EXPECT_EQ(L"a.ifc", PathForSystem(u"a.ifc"));
  EXPECT_EQ(L"", PathForSystem(u""));
}

TEST(LongPath, APathBeyondTheLimitIsCleanedAndGetsThePrefix) {
  const std::u16string name(240, u'n');
  const std::wstring native(240, L'n');
  EXPECT_EQ(L"\\\\?\\C:\\m\\" + native + L"\\a.ifc",
            PathForSystem(u"C:/m/sub/../" + name + u"/a.ifc"));
  EXPECT_EQ(L"\\\\?\\UNC\\server\\share\\" + native + L"\\a.ifc",
            PathForSystem(u"\\\\server\\share\\" + name + u"\\a.ifc"));
}

TEST(LongPath, TheCurrentFolderCountsToo) {
  const std::u16string name(240, u'n');
  const std::wstring path = PathForSystem(name + u"/long.ifc");
  EXPECT_EQ(std::filesystem::current_path().wstring().insert(0, L"\\\\?\\") + L"\\" +
                std::wstring(240, L'n') + L"\\long.ifc",
            path);
}

TEST(LongPath, APrefixThatIsThereStays) {
  const std::u16string name(300, u'n');
  const std::wstring native(300, L'n');
  EXPECT_EQ(L"\\\\?\\C:\\" + native, PathForSystem(u"\\\\?\\C:\\" + name));
  EXPECT_EQ(L"\\\\.\\pipe\\" + native, PathForSystem(u"\\\\.\\pipe\\" + name));
}

TEST(LongPath, FilesAreMadeReadAndRemovedThere) {
  TemporaryFolder folder;
  std::u16string deep = folder.Path();
  for (int level = 0; level < 5; ++level) {
    deep = JoinPath(deep, u"Geb\u00E4ude \u0142 " + std::u16string(80, u'n'));
    ASSERT_TRUE(MakeFolder(deep));
  }
  EXPECT_TRUE(IsFolder(deep));
  const std::u16string path = JoinPath(deep, u"a.ifc");
  ASSERT_GT(path.size(), 400u);
  File file;
  ASSERT_TRUE(file.Open(path, OpenMode::kWrite));
  EXPECT_EQ(3u, file.Write("abc", 3));
  ASSERT_TRUE(file.Open(path, OpenMode::kRead));
  EXPECT_EQ("abc", ReadUpTo(file, 10));
  file.Close();
  EXPECT_TRUE(FileExists(path));
  EXPECT_TRUE(IsSameFile(path, JoinPath(deep, u"./a.ifc")));
  EXPECT_TRUE(RemoveFile(path));
  EXPECT_FALSE(FileExists(path));
}

// --- Sharing -------------------------------------------------------------------------------------

TEST(WindowsFile, AnOpenFileIsNotRemoved) {
  TemporaryFolder folder;
  const auto path = folder.Write("a.ifc", "x");
  File file;
  ASSERT_TRUE(file.Open(path, OpenMode::kRead));
  EXPECT_FALSE(RemoveFile(path));
  file.Close();
  EXPECT_TRUE(RemoveFile(path));
}

TEST(WindowsFile, WhatAnotherProgramKeepsToItselfCannotBeOpened) {
  TemporaryFolder folder;
  const auto path = folder.Write("a.ifc", "x");
  const HANDLE other = ::CreateFileW(Native(path), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, {});
  ASSERT_NE(INVALID_HANDLE_VALUE, other);
  File file;
  for (const OpenMode mode :
       {OpenMode::kRead, OpenMode::kWrite, OpenMode::kAppend, OpenMode::kSharedAppend}) {
    EXPECT_FALSE(file.Open(path, mode));
  }
  ::CloseHandle(other);
  EXPECT_EQ("x", folder.Read("a.ifc"));
}

TEST(WindowsFile, WhatIsClaimedIsNeitherWrittenNorRemovedByOthers) {
  TemporaryFolder folder;
  const auto path = folder.Write("a.ifc", "x");
  File claimed;
  ASSERT_EQ(Claim::kTaken, ClaimFile(path, claimed));
  File other;
  for (const OpenMode mode : {OpenMode::kWrite, OpenMode::kAppend, OpenMode::kSharedAppend}) {
    EXPECT_FALSE(other.Open(path, mode));
  }
  EXPECT_FALSE(RemoveFile(path));
  EXPECT_TRUE(other.Open(path, OpenMode::kRead));
  EXPECT_EQ("x", ReadUpTo(other, 10));
}

TEST(WindowsFile, WhatAnotherProgramKeepsToItselfIsLocked) {
  TemporaryFolder folder;
  const auto path = folder.Write("a.ifc", "x");
  const HANDLE other = ::CreateFileW(Native(path), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, {});
  ASSERT_NE(INVALID_HANDLE_VALUE, other);
  File file;
  EXPECT_EQ(Claim::kLocked, ClaimFile(path, file));
  ::CloseHandle(other);
  EXPECT_EQ(Claim::kTaken, ClaimFile(path, file));
}

TEST(WindowsFile, APipeIsNeverClaimed) {
  const std::u16string name = u"\\\\.\\pipe\\corvel_claim_" + [] {
    const std::string number = std::to_string(::GetCurrentProcessId());
    return std::u16string(number.begin(), number.end());
  }();
  const HANDLE pipe = ::CreateNamedPipeW(Native(name), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1, 4096,
                                         4096, 0, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, pipe);
  File file;
  EXPECT_EQ(Claim::kRefused, ClaimFile(name, file));
  EXPECT_FALSE(file.IsOpen());
  ::CloseHandle(pipe);
}

TEST(WindowsFile, AReadOnlyFileIsReadAndNotRemoved) {
  TemporaryFolder folder;
  const auto path = folder.Write("a.ifc", "x");
  ASSERT_TRUE(::SetFileAttributesW(Native(path), FILE_ATTRIBUTE_READONLY));
  File file;
  EXPECT_FALSE(RemoveFile(path));
  EXPECT_TRUE(file.Open(path, OpenMode::kRead));
  EXPECT_EQ("x", ReadUpTo(file, 10));
  file.Close();
  ::SetFileAttributesW(Native(path), FILE_ATTRIBUTE_NORMAL);
}

TEST(WindowsFile, CapitalsDoNotMakeAnotherFile) {
  TemporaryFolder folder;
  const auto path = folder.Write("model.ifc", "x");
  EXPECT_TRUE(IsSameFile(path, folder.Path("MODEL.IFC")));
}

// --- Failures and pipes --------------------------------------------------------------------------

TEST(WindowsFile, AFailedReadIsNotTheEndOfTheFile) {
  TemporaryFolder folder;
  File file;
  ASSERT_TRUE(file.Open(folder.Path("a.ifc"), OpenMode::kWrite));  // without the right to read
  EXPECT_EQ("", ReadUpTo(file, 1));
  EXPECT_TRUE(file.ReadFailed());
  EXPECT_FALSE(file.AtEnd());
}

TEST(WindowsFile, WhatIsOpenForReadingTakesNothing) {
  TemporaryFolder folder;
  File file;
  ASSERT_TRUE(file.Open(folder.Write("a.ifc", "x"), OpenMode::kRead));
  EXPECT_EQ(0u, file.Write("y", 1));
}

TEST(WindowsFile, BuffersBeyondOneTransferAreFilledAndWrittenWhole) {
  TemporaryFolder folder;
  std::string sent(5'000'001, '\0');
  for (std::size_t i = 0; i < sent.size(); ++i) sent[i] = static_cast<char>(i * 7 + i / 256);
  File file;
  ASSERT_TRUE(file.Open(folder.Path("a.ifc"), OpenMode::kWrite));
  EXPECT_EQ(sent.size(), file.Write(sent.data(), sent.size()));
  ASSERT_TRUE(file.Open(folder.Path("a.ifc"), OpenMode::kRead));
  EXPECT_TRUE(sent == ReadUpTo(file, sent.size() + 10));
  EXPECT_TRUE(file.AtEnd());
}

TEST(WindowsFile, APipeIsReadUntilItsWriterGoes) {
  const std::u16string name = u"\\\\.\\pipe\\corvel_test_" + [] {
    const std::string number = std::to_string(::GetCurrentProcessId());
    return std::u16string(number.begin(), number.end());
  }();
  const HANDLE pipe = ::CreateNamedPipeW(Native(name), PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE, 1,
                                         4096, 4096, 0, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, pipe);
  std::thread writer([pipe] {
    ::ConnectNamedPipe(pipe, nullptr);
    DWORD written = 0;
    for (const char* part : {"one", "two", "three"}) {
      ::WriteFile(pipe, part, static_cast<DWORD>(std::string_view(part).size()), &written, nullptr);
    }
    ::FlushFileBuffers(pipe);
    ::CloseHandle(pipe);
  });
  File file;
  EXPECT_TRUE(file.Open(name, OpenMode::kRead));
  EXPECT_EQ("onetwothree", ReadUpTo(file, 100));
  EXPECT_TRUE(file.AtEnd());
  EXPECT_FALSE(file.ReadFailed());
  file.Close();
  writer.join();
}

}  // namespace
}  // namespace platform

#endif
