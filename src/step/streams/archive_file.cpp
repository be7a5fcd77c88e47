#include "step/streams/archive_file.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace FileStream {

namespace {

ArchiveFile& FileOf(voidpf self) { return *static_cast<ArchiveFile*>(self); }

}  // namespace

ArchiveFile::ArchiveFile(const corvel::WideString& path, platform::OpenMode mode)
    : writes_(mode != platform::OpenMode::kRead) {
  file_.Open(path, mode);
}

ArchiveFile::ArchiveFile(platform::File file) : file_(std::move(file)), writes_(true) {}

zlib_filefunc64_def ArchiveFile::Functions() {
  zlib_filefunc64_def functions{};
  functions.zopen64_file = &OnOpen;
  functions.zread_file = &OnRead;
  functions.zwrite_file = &OnWrite;
  functions.ztell64_file = &OnTell;
  functions.zseek64_file = &OnSeek;
  functions.zclose_file = &OnClose;
  functions.zerror_file = &OnTestError;
  functions.opaque = this;
  return functions;
}

voidpf ArchiveFile::OnOpen(voidpf self, const void* /*path*/, int /*mode*/) {
  return FileOf(self).file_.IsOpen() ? self : nullptr;
}

uLong ArchiveFile::OnRead(voidpf self, voidpf /*stream*/, void* destination, uLong count) {
  return static_cast<uLong>(FileOf(self).Read(static_cast<char*>(destination), count));
}

uLong ArchiveFile::OnWrite(voidpf self, voidpf /*stream*/, const void* bytes, uLong count) {
  FileOf(self).Write(bytes, count);
  return count;
}

ZPOS64_T ArchiveFile::OnTell(voidpf self, voidpf /*stream*/) { return FileOf(self).position_; }

long ArchiveFile::OnSeek(voidpf self, voidpf /*stream*/, ZPOS64_T offset, int origin) {
  return FileOf(self).Seek(offset, origin) ? 0 : -1;
}

int ArchiveFile::OnClose(voidpf self, voidpf /*stream*/) { return FileOf(self).Close() ? 0 : -1; }

int ArchiveFile::OnTestError(voidpf self, voidpf /*stream*/) {
  return FileOf(self).failed_ ? -1 : 0;
}

bool ArchiveFile::GoTo(std::uint64_t offset) {
  if (filePosition_ != offset && !file_.Seek(static_cast<std::int64_t>(offset))) return false;
  filePosition_ = offset;
  return true;
}

// Steps backwards come as large unsigned numbers. The system hears of it with the next transfer.
bool ArchiveFile::Seek(std::uint64_t offset, int origin) {
  std::uint64_t target = offset;
  if (origin == ZLIB_FILEFUNC_SEEK_CUR) target += position_;
  if (origin == ZLIB_FILEFUNC_SEEK_END) target += static_cast<std::uint64_t>(file_.Size());
  if (target > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return false;
  position_ = target;
  if (origin == ZLIB_FILEFUNC_SEEK_SET) lastSeek_ = target;
  return true;
}

bool ArchiveFile::FillWindow() {
  windowOffset_ = position_;
  windowSize_ = GoTo(position_) ? file_.Read(window_.data(), window_.size()) : 0;
  filePosition_ += windowSize_;
  failed_ = failed_ || file_.ReadFailed();
  return windowSize_ != 0;
}

std::size_t ArchiveFile::ReadUncorrected(char* destination, std::size_t count) {
  std::size_t copied = 0;
  while (copied < count) {
    const bool inWindow = position_ >= windowOffset_ && position_ - windowOffset_ < windowSize_;
    if (!inWindow && !FillWindow()) break;
    const auto start = static_cast<std::size_t>(position_ - windowOffset_);
    const std::size_t part = std::min(count - copied, windowSize_ - start);
    std::memcpy(destination + copied, window_.data() + start, part);
    copied += part;
    position_ += part;
  }
  return copied;
}

std::size_t ArchiveFile::Read(char* destination, std::size_t count) {
  const std::uint64_t begin = position_;
  const std::size_t taken = ReadUncorrected(destination, count);
  const std::uint64_t from = std::max(begin, correctionOffset_);
  const std::uint64_t to = std::min(begin + taken, correctionOffset_ + correction_.size());
  if (from < to) {
    std::memcpy(destination + (from - begin), correction_.data() + (from - correctionOffset_),
                static_cast<std::size_t>(to - from));
  }
  return taken;
}

void ArchiveFile::Write(const void* bytes, std::size_t count) {
  if (!failed_) {
    const std::size_t written = GoTo(position_) ? file_.Write(bytes, count) : 0;
    filePosition_ += written;
    failed_ = written != count;
  }
  // Also for what is no longer written: offsets in the archive's own records go on counting.
  position_ += count;
}

bool ArchiveFile::Close() {
  if (writes_ && !failed_) failed_ = !file_.Sync();
  if (!file_.Close()) failed_ = true;
  return !failed_;
}

std::string ArchiveFile::BytesAt(std::uint64_t offset, std::size_t count) {
  const std::uint64_t before = std::exchange(position_, offset);
  std::string bytes(count, '\0');
  bytes.resize(ReadUncorrected(bytes.data(), count));
  position_ = before;
  return bytes;
}

void ArchiveFile::Correct(std::uint64_t offset, std::string bytes) {
  correctionOffset_ = offset;
  correction_ = std::move(bytes);
}

}  // namespace FileStream
