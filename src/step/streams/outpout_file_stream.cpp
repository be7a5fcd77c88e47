#include "step/streams/outpout_file_stream.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace FileStream {

namespace {

constexpr char16_t kOpenFailure[] = u". File path: ";

}  // namespace

OutpoutFileStream::OutpoutFileStream(const corvel::WideString& path,
                                     corvel::ErrorReporter showError, std::uint64_t blockSize,
                                     std::uint64_t keepBack)
    : OutpoutFileStream(path, showError, blockSize, keepBack, platform::OpenMode::kWrite,
                        CommitTo::kDisk, kOpenFailure) {}

OutpoutFileStream::OutpoutFileStream(corvel::WideString path, platform::File file,
                                     corvel::ErrorReporter showError, std::uint64_t blockSize,
                                     std::uint64_t keepBack)
    : BlockOutpoutStream(std::max<std::uint64_t>(blockSize, 1), keepBack),
      file_(std::move(file)),
      reopenMode_(platform::OpenMode::kAppend),
      commitTo_(CommitTo::kDisk),
      path_(std::move(path)),
      showError_(showError) {
  Start(kOpenFailure);
}

OutpoutFileStream::OutpoutFileStream(const corvel::WideString& path,
                                     corvel::ErrorReporter showError, std::uint64_t blockSize,
                                     std::uint64_t keepBack, platform::OpenMode mode,
                                     CommitTo commitTo, const char16_t* openFailure)
    : BlockOutpoutStream(std::max<std::uint64_t>(blockSize, 1), keepBack),
      reopenMode_(mode == platform::OpenMode::kWrite ? platform::OpenMode::kAppend : mode),
      commitTo_(commitTo),
      path_(path),
      showError_(showError) {
  file_.Open(path, mode);
  Start(openFailure);
}

void OutpoutFileStream::Start(const char16_t* openFailure) {
  open_ = file_.IsOpen();
  if (open_) {
    TakeBuffer();
    return;
  }
  failed_ = true;
  if (showError_ != nullptr) {
    showError_("could_not_open_file", openFailure + path_, corvel::kReportShow);
  }
}

OutpoutFileStream::~OutpoutFileStream() { OutpoutFileStream::Close(); }

void OutpoutFileStream::TakeBuffer() {
  if (AllocateBuffer()) {
    FillMargin();
  } else if (showError_ != nullptr) {
    showError_("", u"Unable to alloc enought memory. Try to use 64-bit Orlenta.",
               corvel::kReportShow);
  }
}

void OutpoutFileStream::FillMargin() {
  if (keepBack_ == 0) return;
  std::memset(window_, ' ', keepBack_ - 1);
  window_[keepBack_ - 1] = '\n';
}

void OutpoutFileStream::Fail() {
  if (failed_) return;
  failed_ = true;
  if (showError_ != nullptr) showError_("", u"Could not write to file", corvel::kReportShow);
}

void OutpoutFileStream::WriteOut(const void* bytes, std::uint64_t count) {
  if (file_.Write(bytes, count) != count) Fail();
}

void OutpoutFileStream::WriteBuffer() {
  // A position moved beyond the buffer stands for bytes that do not exist.
  if (position_ > windowCapacity_) {
    Fail();
  } else {
    WriteOut(window_, position_);
  }
}

bool OutpoutFileStream::CloseFile() {
  open_ = false;
  if (file_.IsOpen() && !file_.Close()) Fail();
  return !failed_;
}

void OutpoutFileStream::Write(const void* bytes, std::size_t count) { WriteOut(bytes, count); }

bool OutpoutFileStream::Close() {
  if (open_ && position_ > keepBack_) {
    WriteBuffer();
    StartBehindMargin();
  }
  return CloseFile();
}

bool OutpoutFileStream::Commit() {
  if (!file_.IsOpen()) return !failed_;
  WriteBuffer();
  StartBehindMargin();
  if (commitTo_ == CommitTo::kDisk && !file_.Sync()) Fail();
  return !failed_;
}

bool OutpoutFileStream::CommitAndClose() {
  const bool committed = Commit();
  return Close() && committed;
}

void OutpoutFileStream::StartBehindMargin() {
  if (window_ == nullptr) return;
  FillMargin();
  position_ = keepBack_;
}

bool OutpoutFileStream::Reopen() {
  if (window_ == nullptr) TakeBuffer();
  open_ = file_.Open(path_, reopenMode_);
  failed_ = !open_;
  if (!open_ && showError_ != nullptr) showError_("", u"Reopen failed.", corvel::kReportShow);
  return open_;
}

void OutpoutFileStream::MovePosition(std::int64_t delta, int /*whence*/) {
  const std::int64_t moved = static_cast<std::int64_t>(position_) + delta;
  if (moved < 0) {
    throw std::runtime_error("Write to file error. Unable to move pointer below 0.");
  }
  position_ = static_cast<std::uint64_t>(moved);
}

void OutpoutFileStream::FlushWindow() {
  const bool writable = open_ && window_ != nullptr && position_ <= windowCapacity_;
  const std::uint64_t due = DueBytes();
  if (!writable || file_.Write(window_, due) != due) {
    ++failedWrites_;
    open_ = false;
    failed_ = true;
    throw std::runtime_error("Unable to write to file");
  }
  KeepTail(due);
}

void OutpoutFileStream::WriteNarrowString(const std::string& text) {
  Store(text.data(), text.size());
}

}  // namespace FileStream
