// Files as the streams need them: binary, 64-bit positions, unbuffered here because the streams
// hold the buffers. Paths are 16-bit units ("/" and "\" both separate folders on POSIX output of
// names; the system sees "/" only there).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace platform {

enum class OpenMode {
  kRead,          // an existing file
  kWrite,         // emptied or created
  kAppend,        // created if missing, writes go to the end
  kSharedAppend,  // as kAppend; others may read and write it meanwhile. An ordinary file alone: no
                  // link at the end of the path is followed, no pipe or device opened
};

// One open file. Movable, closes when it goes.
class File {
 public:
  File() = default;
  // Takes over what the system has opened: a descriptor, or on Windows a handle.
  explicit File(std::intptr_t opened) : handle_(opened) {}
  File(File&& other) noexcept;
  File& operator=(File&& other) noexcept;
  ~File();

  // Closes what was open. False when it cannot be opened; folders cannot, nor can a path with a NUL
  // in it.
  bool Open(const std::u16string& path, OpenMode mode);
  bool IsOpen() const;

  // Bytes read, fewer than `count` only at the end of the file or on an error.
  std::size_t Read(void* destination, std::size_t count);
  // Bytes written; fewer than `count` means that the write failed.
  std::size_t Write(const void* bytes, std::size_t count);
  // Offset from the start of the file, -1 when closed.
  std::int64_t Position() const;
  // To an offset from the start, which may lie behind the end. False when closed, and for a pipe.
  bool Seek(std::int64_t offset);
  // Size in bytes, -1 when closed.
  std::int64_t Size() const;
  // True once a read has met the end of the file.
  bool AtEnd() const { return atEnd_; }
  // True once a read came short for another reason than the end of the file.
  bool ReadFailed() const { return readFailed_; }
  // Takes all bytes away; the position is 0 then. False when the system refuses, or when closed.
  bool Empty();
  // Hands everything to the disk, and waits for it. False when the system refuses.
  bool Sync();
  // False when the system reports a late write error. The file is closed in any case.
  bool Close();
  // What the constructor takes; -1 when closed.
  std::intptr_t Opened() const { return handle_; }

 private:
  std::intptr_t handle_ = -1;
  bool atEnd_ = false;
  bool readFailed_ = false;
};

// Removes a file, or a link and not what it leads to. Folders and devices stay. Nothing to remove
// counts as failure.
bool RemoveFile(const std::u16string& path);
// Anything but a folder.
bool FileExists(const std::u16string& path);
bool IsFolder(const std::u16string& path);
// One folder in a folder that is there. False when it cannot be made, also when it is there
// already.
bool MakeFolder(const std::u16string& path);
// A file of bytes, or a link to one: neither folder nor pipe nor device.
bool IsOrdinaryFile(const std::u16string& path);
// True when both names lead to one existing file (links and spelling aside).
bool IsSameFile(const std::u16string& a, const std::u16string& b);

// Index of the last "/" or "\" of a path; npos without one.
inline std::size_t FindLastSeparator(std::u16string_view path) { return path.find_last_of(u"/\\"); }
// What stands behind it.
inline std::u16string_view FileNameOf(std::u16string_view path) {
  return path.substr(FindLastSeparator(path) + 1);
}
// `folder` and `name` with one separator between them, whether `folder` ends in one or not.
std::u16string JoinPath(std::u16string_view folder, std::u16string_view name);

}  // namespace platform
