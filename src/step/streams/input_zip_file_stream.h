// Reads one entry of a zip archive: the first file of an ".ifczip", a named one of an ".olf".
//
// The entry is read once, from its start to its end, and cannot be rewound. Two buffers are filled
// in turn, so that the bytes of the last refill but one are still there.
#pragma once

#include <memory>

#include "step/streams/input_stream.h"

namespace FileStream {

class ArchiveFile;

class InputZipFileStream final : public InputStream {
 public:
  // Opens the archive and the entry. ".ifczip": the first entry that is no folder, whatever its
  // name. ".olf": the one whose name is what stands behind the first "|" of `path`, byte for byte
  // in UTF-8. Everything that keeps it from opening is reported with an empty key, and IsOpen is
  // false then; that includes entries that are encrypted or neither stored nor deflated.
  // `showError` may be null. The stream takes two buffers of `bufferSize` bytes, 256 KiB at
  // most; when they cannot be had it is reported and the stream delivers nothing.
  InputZipFileStream(const corvel::WideString& path, corvel::ErrorReporter showError,
                     std::size_t bufferSize);
  ~InputZipFileStream() override;

  // GetChar `count` times: the bytes enter the statement text, and behind the end they are 255.
  std::size_t Read(void* destination, std::size_t count) override;
  int PeekChar() override;  // 0 when closed
  // 0, or the library's error. A damaged entry tells only when it has been read to its end.
  int Close() override;
  bool IsOpen() const override { return open_; }
  bool IsEof() const override { return Cursor() == WindowEnd() && endFound_; }
  std::int64_t Position() const override;
  // Moves on in the directory of the archive and gives up what is buffered; no other entry is
  // opened by that. Gives 0, or -100 behind the last entry, where nothing changes. -1 when closed.
  int NextEntry() override;
  // What the directory of the archive says of the current entry, cut to 32 bits.
  std::int64_t TotalSize() const override;
  // A read failed, there are no buffers, decompression failed, or what came out has not the size
  // and the checksum of the entry. Known once the end has been met, and reported then.
  bool IsDamaged() const override { return damaged_; }

 private:
  bool FillWindow() override;
  bool OpenArchive();
  bool ChooseEntry();
  bool GoToFirstFile();
  bool GoToNamedFile();
  bool OpenEntry();
  void Allocate(std::size_t size);
  void EndEntry(int result);
  int CloseArchive();

  corvel::WideString path_;
  std::unique_ptr<ArchiveFile> file_;
  void* archive_ = nullptr;  // the library's handle
  std::unique_ptr<char[]> buffers_[2];
  std::size_t capacity_ = 0;      // of each buffer
  std::uint64_t statedSize_ = 0;  // of the entry, by the archive
  std::uint64_t delivered_ = 0;   // up to WindowEnd()
  int current_ = 1;               // which buffer the window is in
  bool entryOpen_ = false;
  bool open_ = false;
  bool endFound_ = false;
  bool damaged_ = false;
};

}  // namespace FileStream
