// Writes an ".ifczip": an archive with one deflated entry.
//
// There is no margin in front of the buffer, and closing writes all of it, however little. What has
// been written to the archive cannot be reached any more.
#pragma once

#include <memory>

#include "core/reporting.h"
#include "platform/file.h"
#include "step/streams/block_outpout_stream.h"

namespace FileStream {

class ArchiveFile;

class OutputZipFileStream final : public BlockOutpoutStream {
 public:
  static constexpr std::uint64_t kBlockSize = 1'048'576;
  static constexpr std::uint64_t kKeepBack = 10;

  // Empties or creates the archive and opens its entry, which has the name of the archive with the
  // ending ".ifc". Failures are reported with an empty key; the stream is then not open, and takes
  // nothing. An archive without an entry is not left behind. `showError` may be null.
  OutputZipFileStream(const corvel::WideString& path, corvel::ErrorReporter showError);
  // Makes the archive in `file`, which lies elsewhere than at `path` and is never removed: the
  // entry has its name from `path`. A file that is not open is a failure.
  OutputZipFileStream(const corvel::WideString& path, platform::File file,
                      corvel::ErrorReporter showError);
  // As Close.
  ~OutputZipFileStream() override;

  // Goes into the archive at once, ahead of what the buffer holds.
  void Write(const void* bytes, std::size_t count) override;
  // Writes the whole buffer, completes the archive and hands it to the disk. False when anything
  // failed since the stream was made; the first failure was reported, and nothing is compressed
  // after it.
  bool Close() override;
  bool CommitAndClose() override { return Close(); }
  bool IsOpen() const override { return open_; }
  // True when the entry has the size that it states, which is 0 until the archive is complete: as
  // long as nothing was handed over. Also when closed.
  bool IsEof() const override { return !open_ || handedOver_ == 0; }
  // Does not look where it leads. What is stored outside of the buffer is lost, and reported.
  void MovePosition(std::int64_t delta, int whence = 1) override;
  void WriteNarrowString(const std::string& text) override;  // up to the first NUL
 private:
  // A write that fails is reported and the stream goes on.
  void FlushWindow() override;
  // False when there is an archive, but no entry.
  bool Start(const corvel::WideString& path);
  bool OpenEntry(const corvel::WideString& path);
  void TakeBuffer();
  void HandOver(const void* bytes, std::uint64_t count);
  void CloseArchive();
  void Fail(const char16_t* message);

  std::unique_ptr<ArchiveFile> file_;
  void* archive_ = nullptr;  // the library's handle
  std::uint64_t handedOver_ = 0;
  bool open_ = false;
  bool failed_ = false;  // and told
  corvel::ErrorReporter showError_ = nullptr;
};

// "Merged.ifc" for "D:\x\Merged.ifczip": the part behind the last separator or a "|", with another
// ending.
corvel::WideString NameOfEntry(corvel::WideView path);

}  // namespace FileStream
