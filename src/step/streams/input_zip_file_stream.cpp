#include "step/streams/input_zip_file_stream.h"

#include <algorithm>
#include <new>
#include <string>
#include <utility>

#include "step/streams/archive_file.h"
#include "step/streams/large_entry.h"
#include "step/streams/stream_buffer.h"

namespace FileStream {

namespace {

constexpr uLong kEncrypted = 1;  // among the flags of an entry
constexpr uLong kStored = 0;
// What has been decompressed is read while the processor still has it at hand.
constexpr std::size_t kLargestBuffer = std::size_t{256} << 10;

int InfoOf(unzFile archive, unz_file_info64& info) {
  return unzGetCurrentFileInfo64(archive, &info, nullptr, 0, nullptr, 0, nullptr, 0);
}

// Of the current entry, empty when it cannot be read. No terminator ends it: names may hold any
// byte.
std::string NameOf(unzFile archive) {
  unz_file_info64 info{};
  if (InfoOf(archive, info) != UNZ_OK) return {};
  std::string name(info.size_filename, '\0');
  const int result = unzGetCurrentFileInfo64(
      archive, &info, name.data(), static_cast<uLong>(name.size()), nullptr, 0, nullptr, 0);
  return result == UNZ_OK ? name : std::string();
}

// Folders are entries without bytes whose names end in a "/"; some programs write "\\".
bool IsFolder(unzFile archive, ArchiveFile& file) {
  const std::string name = NameOf(archive);
  if (!name.ends_with('/') && !name.ends_with('\\')) return false;
  unz_file_info64 info{};
  return ReadSizesOfLargeEntry(archive, file) && InfoOf(archive, info) == UNZ_OK &&
         info.uncompressed_size == 0;
}

// What the library can decompress. It opens other entries too, and delivers nonsense.
bool CanBeRead(const unz_file_info64& info) {
  const bool known = info.compression_method == kStored || info.compression_method == Z_DEFLATED;
  return known && (info.flag & kEncrypted) == 0;
}

}  // namespace

InputZipFileStream::InputZipFileStream(const corvel::WideString& path,
                                       corvel::ErrorReporter showError, std::size_t bufferSize)
    : InputStream(path, showError), path_(path) {
  const ModelForm form = FormOfExtension(Extension());
  if (form == ModelForm::kContained) {
    const std::size_t bar = path.find(u'|');
    if (bar != corvel::WideString::npos) entryName_ = path.substr(bar + 1);
  } else if (form != ModelForm::kPacked) {
    Tell(u"Wrong extension of file: " + path);
    return;
  }
  if (OpenArchive() && ChooseEntry() && OpenEntry()) {
    open_ = true;
    Allocate(bufferSize);
  } else {
    damaged_ = file_ != nullptr && file_->Failed();
    CloseArchive();
  }
}

InputZipFileStream::~InputZipFileStream() { InputZipFileStream::Close(); }

bool InputZipFileStream::OpenArchive() {
  file_ = std::make_unique<ArchiveFile>(ContainerPath(), platform::OpenMode::kRead);
  zlib_filefunc64_def functions = file_->Functions();
  archive_ = unzOpen2_64(corvel::ToUtf8(ContainerPath()).c_str(), &functions);
  if (archive_ == nullptr) Tell(u"Could not open zip archive: " + path_);
  return archive_ != nullptr;
}

bool InputZipFileStream::ChooseEntry() {
  if (unzGoToFirstFile(archive_) != UNZ_OK) {
    Tell(u"Could not go to first file in zip archive");
    return false;
  }
  return FormOfExtension(Extension()) == ModelForm::kPacked ? GoToFirstFile() : GoToNamedFile();
}

// Packed folders come before what is in them: the first file stands behind its folders.
bool InputZipFileStream::GoToFirstFile() {
  int result = UNZ_OK;
  while (result == UNZ_OK && IsFolder(archive_, *file_)) result = unzGoToNextFile(archive_);
  if (result != UNZ_OK) Tell(u"Could not go to first file in zip archive");
  return result == UNZ_OK;
}

// Without a "|" it is the path itself that is looked for.
bool InputZipFileStream::GoToNamedFile() {
  const bool named = path_.find(u'|') != corvel::WideString::npos;
  const std::string wanted = corvel::ToUtf8(named ? entryName_ : path_);
  int result = UNZ_OK;
  while (result == UNZ_OK && NameOf(archive_) != wanted) result = unzGoToNextFile(archive_);
  if (result != UNZ_OK) {
    Tell(u"Could not go to specified file in zip archive. File path: " + path_);
  }
  return result == UNZ_OK;
}

bool InputZipFileStream::OpenEntry() {
  unz_file_info64 info{};
  const bool readable = ReadSizesOfLargeEntry(archive_, *file_) &&
                        InfoOf(archive_, info) == UNZ_OK && CanBeRead(info);
  entryOpen_ = readable && unzOpenCurrentFile(archive_) == UNZ_OK;
  statedSize_ = info.uncompressed_size;
  if (!entryOpen_) Tell(u"Could not open first file in zip archive");
  return entryOpen_;
}

void InputZipFileStream::Allocate(std::size_t size) {
  capacity_ = std::min(size, kLargestBuffer);
  try {
    for (auto& buffer : buffers_) buffer = AllocateBuffer(std::max<std::size_t>(capacity_, 1));
  } catch (const std::bad_alloc&) {
  }
  if (buffers_[0] != nullptr && buffers_[1] != nullptr) {
    for (auto& buffer : buffers_) buffer[0] = '\0';
    SetWindow(buffers_[current_].get(), buffers_[current_].get());
    return;
  }
  capacity_ = 0;
  damaged_ = true;
  Tell(u"Unable to alloc enought memory. Try to use 64-bit Orlenta.");
}

bool InputZipFileStream::FillWindow() {
  if (!open_ || !entryOpen_ || capacity_ == 0) return false;
  current_ = 1 - current_;
  char* const buffer = buffers_[current_].get();
  const int result = unzReadCurrentFile(archive_, buffer, static_cast<unsigned>(capacity_));
  const auto valid = static_cast<std::size_t>(std::max(result, 0));
  delivered_ += valid;
  endFound_ = valid < capacity_;
  SetWindow(buffer, buffer + valid);
  if (endFound_) EndEntry(result);
  return valid != 0;
}

// The library compares checksums when an entry that was read to its end is closed.
void InputZipFileStream::EndEntry(int result) {
  entryOpen_ = false;
  const bool sound = unzCloseCurrentFile(archive_) == UNZ_OK;
  if (sound && result >= 0 && delivered_ == statedSize_) return;
  damaged_ = true;
  if (file_->Failed()) {
    Tell(u"Could not read from file: " + ContainerPath());
  } else {
    Tell(u"The data in the zip archive is damaged: " + path_);
  }
}

int InputZipFileStream::PeekChar() {
  if (Cursor() == WindowEnd() && !Refill()) return open_ ? -1 : 0;
  return static_cast<signed char>(*Cursor());
}

std::size_t InputZipFileStream::Read(void* destination, std::size_t count) {
  if (!open_) return 0;
  char* const bytes = static_cast<char*>(destination);
  for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<char>(GetChar());
  return count;
}

int InputZipFileStream::CloseArchive() {
  if (archive_ == nullptr) return 0;
  int result = std::exchange(entryOpen_, false) ? unzCloseCurrentFile(archive_) : UNZ_OK;
  const int closed = unzClose(std::exchange(archive_, nullptr));
  if (result == UNZ_OK) result = closed;
  file_.reset();
  return result;
}

int InputZipFileStream::Close() {
  if (!open_) return 0;
  open_ = false;
  DropWindow();
  for (auto& buffer : buffers_) buffer.reset();
  return CloseArchive();
}

std::int64_t InputZipFileStream::Position() const {
  return open_ ? static_cast<std::int64_t>(delivered_) - Unread() : -1;
}

int InputZipFileStream::NextEntry() {
  if (!open_) return -1;
  const int result = unzGoToNextFile(archive_);
  if (result != UNZ_OK) return result;
  DropWindow();
  ForgetSemicolon();
  return UNZ_OK;
}

std::int64_t InputZipFileStream::TotalSize() const {
  unz_file_info info{};
  if (!open_ ||
      unzGetCurrentFileInfo(archive_, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK)
    return -1;
  return static_cast<std::uint32_t>(info.uncompressed_size);
}

}  // namespace FileStream
