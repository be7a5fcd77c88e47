// The file under an archive, as the zip library sees it.
//
// The library reaches its files through a table of functions. Ours lead to platform::File, so that
// paths are what they are everywhere else (long, of any characters), failures of the disk are told
// from damaged data, and what is written reaches the disk before the archive counts as closed. They
// also read ahead: the library takes the headers of an archive byte by byte.
#pragma once

#include <unzip.h>
#include <zip.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/text.h"
#include "platform/file.h"

namespace FileStream {

class ArchiveFile {
 public:
  // Opens for reading, or for writing, which empties or creates the file.
  ArchiveFile(const corvel::WideString& path, platform::OpenMode mode);
  // For writing to a file that is open and empty.
  explicit ArchiveFile(platform::File file);
  ArchiveFile(const ArchiveFile&) = delete;
  ArchiveFile& operator=(const ArchiveFile&) = delete;

  // For unzOpen2_64 and zipOpen2_64, whose path is then of no interest: they get this file, or a
  // failure when it is not open. Borrows this object for as long as the archive is open. Closing
  // the archive hands everything written to the disk and closes the file.
  zlib_filefunc64_def Functions();

  // The disk failed: a read, a write or the closing. The library is not told of writes: it would
  // lose memory over a header that cannot be written. After the first failure nothing is written.
  bool Failed() const { return failed_; }

  // Where the library last went by an offset from the start of the file.
  std::uint64_t LastSeek() const { return lastSeek_; }
  // Bytes that stand at `offset`; as many as there are, at most `count`. The library's position
  // stays where it was.
  std::string BytesAt(std::uint64_t offset, std::size_t count);
  // From now on the library reads `bytes` at `offset` in the place of what stands there.
  void Correct(std::uint64_t offset, std::string bytes);

 private:
  static voidpf OnOpen(voidpf self, const void* path, int mode);
  static uLong OnRead(voidpf self, voidpf stream, void* destination, uLong count);
  static uLong OnWrite(voidpf self, voidpf stream, const void* bytes, uLong count);
  static ZPOS64_T OnTell(voidpf self, voidpf stream);
  static long OnSeek(voidpf self, voidpf stream, ZPOS64_T offset, int origin);
  static int OnClose(voidpf self, voidpf stream);
  static int OnTestError(voidpf self, voidpf stream);

  std::size_t Read(char* destination, std::size_t count);
  std::size_t ReadUncorrected(char* destination, std::size_t count);
  bool FillWindow();
  void Write(const void* bytes, std::size_t count);
  bool Seek(std::uint64_t offset, int origin);
  bool Close();
  bool GoTo(std::uint64_t offset);

  platform::File file_;
  std::uint64_t position_ = 0;      // the library's
  std::uint64_t filePosition_ = 0;  // the system's
  std::uint64_t lastSeek_ = 0;
  bool writes_;
  bool failed_ = false;
  std::array<char, 0x10000> window_{};  // bytes of the file from windowOffset_ on
  std::uint64_t windowOffset_ = 0;
  std::size_t windowSize_ = 0;
  std::uint64_t correctionOffset_ = 0;
  std::string correction_;
};

}  // namespace FileStream
