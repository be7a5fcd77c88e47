#include "step/streams/output_zip_file_stream.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

#include "step/streams/archive_file.h"
#include "step/streams/model_form.h"

namespace FileStream {

namespace {

constexpr uLong kMadeBy = 2605;  // version 4.5 on a system with NTFS
constexpr int kMemoryLevel = 8;  // the usual one of deflate

constexpr char16_t kNotWritten[] = u"Could not write to zip file";

}  // namespace

corvel::WideString NameOfEntry(corvel::WideView path) {
  const std::size_t bar = path.find(u'|');
  const std::size_t before =
      bar != corvel::WideView::npos ? bar : platform::FindLastSeparator(path);
  const corvel::WideView name = path.substr(before + 1);
  return corvel::WideString(name.substr(0, name.rfind(u'.'))) + kPlainEnding;
}

OutputZipFileStream::OutputZipFileStream(const corvel::WideString& path,
                                         corvel::ErrorReporter showError)
    : BlockOutpoutStream(kBlockSize, kKeepBack),
      file_(std::make_unique<ArchiveFile>(path, platform::OpenMode::kWrite)),
      showError_(showError) {
  if (!Start(path)) platform::RemoveFile(path);
}

OutputZipFileStream::OutputZipFileStream(const corvel::WideString& path, platform::File file,
                                         corvel::ErrorReporter showError)
    : BlockOutpoutStream(kBlockSize, kKeepBack),
      file_(std::make_unique<ArchiveFile>(std::move(file))),
      showError_(showError) {
  Start(path);
}

OutputZipFileStream::~OutputZipFileStream() { OutputZipFileStream::Close(); }

bool OutputZipFileStream::Start(const corvel::WideString& path) {
  zlib_filefunc64_def functions = file_->Functions();
  archive_ = zipOpen2_64(corvel::ToUtf8(path).c_str(), APPEND_STATUS_CREATE, nullptr, &functions);
  if (archive_ == nullptr) {
    Fail(u"Could not open or create zip archive");
  } else if (OpenEntry(path)) {
    open_ = true;
    TakeBuffer();
  } else {
    Fail(u"Could not open file in zip archive");
    CloseArchive();
    return false;
  }
  return true;
}

// Of all that the library offers for it, only this call sets the version and the flags.
bool OutputZipFileStream::OpenEntry(const corvel::WideString& path) {
  constexpr int kNotRaw = 0;
  constexpr uLong kNoFlags = 0;
  constexpr int kNoLargeFile = 0;
  const int result = zipOpenNewFileInZip4_64(
      archive_, corvel::ToUtf8(NameOfEntry(path)).c_str(), nullptr, nullptr, 0, nullptr, 0, nullptr,
      Z_DEFLATED, Z_DEFAULT_COMPRESSION, kNotRaw, -MAX_WBITS, kMemoryLevel, Z_DEFAULT_STRATEGY,
      nullptr, 0, kMadeBy, kNoFlags, kNoLargeFile);
  return result == ZIP_OK && !file_->Failed();
}

void OutputZipFileStream::TakeBuffer() {
  if (AllocateBuffer()) return;
  blockSize_ = keepBack_ = 0;
  Fail(u"Unable to alloc enought memory. Try to use 64-bit Orlenta.");
}

void OutputZipFileStream::Fail(const char16_t* message) {
  if (std::exchange(failed_, true)) return;
  if (showError_ != nullptr) showError_("", message, corvel::kReportShow);
}

void OutputZipFileStream::HandOver(const void* bytes, std::uint64_t count) {
  // The library counts in 32 bits.
  constexpr std::uint64_t kLargestPart = std::uint64_t{1} << 30;
  const char* from = static_cast<const char*>(bytes);
  while (count != 0 && !failed_) {
    const std::uint64_t part = std::min(count, kLargestPart);
    const int result = zipWriteInFileInZip(archive_, from, static_cast<unsigned>(part));
    if (result != ZIP_OK || file_->Failed()) Fail(kNotWritten);
    handedOver_ += part;
    from += part;
    count -= part;
  }
}

void OutputZipFileStream::Write(const void* bytes, std::size_t count) {
  if (open_) HandOver(bytes, count);
}

void OutputZipFileStream::CloseArchive() {
  const bool entryClosed = zipCloseFileInZip(archive_) == ZIP_OK;
  const bool closed = zipClose(std::exchange(archive_, nullptr), nullptr) == ZIP_OK;
  if (!entryClosed || !closed || file_->Failed()) Fail(kNotWritten);
}

bool OutputZipFileStream::Close() {
  if (!open_) return !failed_;
  if (position_ > windowCapacity_) {
    Fail(kNotWritten);
  } else {
    HandOver(window_, position_);
  }
  CloseArchive();
  FreeBuffer();
  open_ = false;
  return !failed_;
}

// Counts without the highest bit: steps below 0 lead far behind the buffer and back again, and
// there is room above for what Reserve adds.
void OutputZipFileStream::MovePosition(std::int64_t delta, int /*whence*/) {
  constexpr auto kCount = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  position_ = (position_ + static_cast<std::uint64_t>(delta)) & kCount;
}

void OutputZipFileStream::FlushWindow() {
  if (window_ == nullptr) throw std::runtime_error("Unable to write to file");
  if (position_ > windowCapacity_) {
    Fail(kNotWritten);
    position_ = 0;
    return;
  }
  const std::uint64_t due = DueBytes();
  HandOver(window_, due);
  KeepTail(due);
}

void OutputZipFileStream::WriteNarrowString(const std::string& text) {
  WriteNarrowText(text.c_str());
}

}  // namespace FileStream
