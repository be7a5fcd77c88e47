// Writes a plain file through one buffer that keeps its tail, so that the position can go back.
//
// Right after opening, and again after Commit and Close, the front holds a margin of blanks that
// ends in a line feed. The first text of a fresh stream overwrites it; after Commit and Close it
// stays, and goes out in front of the text that follows.
#pragma once

#include "core/reporting.h"
#include "platform/file.h"
#include "step/streams/block_outpout_stream.h"

namespace FileStream {

class OutpoutFileStream : public BlockOutpoutStream {
 public:
  // Empties or creates the file. A failure is reported with the key "could_not_open_file"; the
  // stream is then not open and takes nothing. `showError` may be null.
  OutpoutFileStream(const corvel::WideString& path, corvel::ErrorReporter showError,
                    std::uint64_t blockSize, std::uint64_t keepBack);
  // Writes to `file`, which lies elsewhere than at `path`: messages name `path`. A file that is not
  // open is a failure to open. Not for Reopen.
  OutpoutFileStream(corvel::WideString path, platform::File file, corvel::ErrorReporter showError,
                    std::uint64_t blockSize, std::uint64_t keepBack);
  // As Close.
  ~OutpoutFileStream() override;

  // A short write is reported and the stream goes on.
  void Write(const void* bytes, std::size_t count) override;
  // Writes the buffer when more than the keep-back stands in it, and drops it otherwise: a stream
  // that received no more than that in all leaves an empty file unless Commit came before. Closes
  // the file also when a failed flush has closed the stream. False when anything failed since the
  // stream was opened.
  bool Close() override;
  // Writes the whole buffer, however little, hands the file to the disk and closes it.
  bool CommitAndClose() override;
  bool IsOpen() const override { return open_; }
  bool IsEof() const override { return file_.AtEnd(); }
  void MovePosition(std::int64_t delta, int whence = 1) override;
  void WriteNarrowString(const std::string& text) override;

  // Writes the whole buffer and hands the file to the disk, the log as far as the system only. The
  // position then stands behind a new margin, which goes out in front of whatever follows. False
  // when that or anything before failed since the stream was opened.
  bool Commit();
  // Opens the file again for writing at its end, with the buffer as it stands. False, after the
  // report "Reopen failed.", when it cannot be opened.
  bool Reopen();

  // Flushes that failed, Reopen or not.
  std::uint32_t FailedWrites() const { return failedWrites_; }
  const corvel::WideString& Path() const { return path_; }

 protected:
  // How far Commit hands the bytes on, and whether it waits for that.
  enum class CommitTo { kDisk, kSystem };

  // `openFailure` is what stands before the path in the report of a failed opening.
  OutpoutFileStream(const corvel::WideString& path, corvel::ErrorReporter showError,
                    std::uint64_t blockSize, std::uint64_t keepBack, platform::OpenMode mode,
                    CommitTo commitTo, const char16_t* openFailure);

  void FlushWindow() override;
  // The steps of Close. A failure is reported the first time after an opening, when it is news.
  void WriteBuffer();
  bool CloseFile();

 private:
  void Start(const char16_t* openFailure);
  void TakeBuffer();
  void FillMargin();
  void StartBehindMargin();
  void WriteOut(const void* bytes, std::uint64_t count);
  void Fail();

  platform::File file_;
  std::uint32_t failedWrites_ = 0;
  bool open_ = false;
  bool failed_ = false;  // since the last opening, and told
  platform::OpenMode reopenMode_;
  CommitTo commitTo_;
  corvel::WideString path_;
  corvel::ErrorReporter showError_ = nullptr;
};

}  // namespace FileStream
