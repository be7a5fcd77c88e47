#include "step/reader/saved_records.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>

#include "platform/locked_file.h"
#include "step/reader/block_hash.h"
#include "step/streams/stream_buffer.h"

namespace corvel {

// Its window is a whole block, which has been compared.
class SavedRecords::Stream final : public FileStream::InputStream {
 public:
  explicit Stream(SavedRecords& records)
      : InputStream(records.Path(), records.showError_), records_(records) {}

  std::size_t Read(void* destination, std::size_t count) override {
    std::size_t copied = 0;
    while (copied < count && (Cursor() != WindowEnd() || Refill())) {
      const auto left = static_cast<std::size_t>(WindowEnd() - Cursor());
      const std::size_t part = std::min(count - copied, left);
      std::memcpy(static_cast<char*>(destination) + copied, Cursor(), part);
      SkipUncounted(part);
      copied += part;
    }
    return copied;
  }
  int PeekChar() override {
    if (Cursor() == WindowEnd() && !Refill()) return -1;
    return static_cast<signed char>(*Cursor());
  }
  int Close() override {
    DropWindow();
    open_ = false;
    return 0;
  }
  bool IsOpen() const override { return open_; }
  bool IsEof() const override { return Cursor() == WindowEnd() && IsAtEnd(); }
  std::int64_t Position() const override {
    return open_ ? static_cast<std::int64_t>(delivered_) - Unread() : -1;
  }
  int NextEntry() override { return -1; }
  std::int64_t TotalSize() const override { return records_.work_.file.Size(); }
  bool IsDamaged() const override { return records_.damaged_; }

 private:
  bool IsAtEnd() const { return delivered_ == records_.savedBytes_; }

  bool FillWindow() override {
    if (!loss_.empty()) throw std::runtime_error(loss_);
    if (!open_ || IsAtEnd()) return false;
    const std::uint64_t left = records_.savedBytes_ - delivered_;
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(left, records_.blockSize_));
    char* const block = records_.buffer_.get();
    platform::File& file = records_.work_.file;
    const bool placed = delivered_ != 0 || file.Seek(0);
    const std::size_t taken = placed ? file.Read(block, size) : 0;
    if (!placed || file.ReadFailed()) Lose(u"Could not read from file: ");
    if (taken != size || HashOfBlock({block, size}) != records_.hashes_[block_++] ||
        static_cast<std::uint64_t>(file.Size()) != records_.savedBytes_) {
      Lose(u"The work file was changed while it was in use: ");
    }
    delivered_ += size;
    SetWindow(block, block + size);
    return true;
  }

  [[noreturn]] void Lose(const char16_t* message) {
    records_.damaged_ = true;
    loss_ = ToUtf8(message + records_.Path());
    throw std::runtime_error(loss_);
  }

  SavedRecords& records_;
  std::uint64_t delivered_ = 0;  // up to the end of the window
  std::size_t block_ = 0;
  bool open_ = true;
  std::string loss_;  // what has been thrown, and is thrown again
};

SavedRecords::SavedRecords(WorkFile workFile, ErrorReporter showError, std::size_t blockSize)
    : work_(std::move(workFile)), showError_(showError), blockSize_(blockSize) {
  if (!IsReady()) {
    showError_("could_not_open_file", u". File path: " + work_.path, kReportShow);
    return;
  }
  try {
    buffer_ = FileStream::AllocateBuffer(blockSize_);
  } catch (const std::bad_alloc&) {
  }
  if (buffer_ != nullptr) return;
  showError_("", u"Unable to alloc enought memory. Try to use 64-bit Orlenta.", kReportShow);
  Remove();
}

SavedRecords::~SavedRecords() = default;

// After Discard nothing is saved any more.
void SavedRecords::Append(std::string_view record) {
  if (!IsReady()) return;
  ++savedRecords_;
  while (!record.empty()) {
    const std::size_t part = std::min(record.size(), blockSize_ - buffered_);
    std::memcpy(buffer_.get() + buffered_, record.data(), part);
    buffered_ += part;
    record.remove_prefix(part);
    if (buffered_ == blockSize_ && !WriteBlock()) {
      throw std::runtime_error("Unable to write to file");
    }
  }
}

bool SavedRecords::WriteBlock() {
  const std::size_t size = std::exchange(buffered_, 0);
  if (size == 0) return true;
  hashes_.push_back(HashOfBlock({buffer_.get(), size}));
  savedBytes_ += size;
  return work_.file.Write(buffer_.get(), size) == size;
}

bool SavedRecords::Finish() {
  if (!IsReady() || WriteBlock()) return true;
  showError_("", u"Could not write to file", kReportShow);
  return false;
}

void SavedRecords::Discard() {
  if (!readsAgain_) Remove();
}

std::unique_ptr<FileStream::InputStream> SavedRecords::ReadAgain() {
  readsAgain_ = true;
  return std::make_unique<Stream>(*this);
}

bool SavedRecords::AllRecordsWereRead() {
  if (readRecords_ == savedRecords_) return true;
  showError_("", u"Not all records were read again from the work file: " + work_.path, kReportShow);
  return false;
}

void SavedRecords::Remove() {
  if (work_.hasName) {
    platform::RemoveClaimedFile(work_.path, work_.file);
  } else {
    work_.file.Close();
  }
}

}  // namespace corvel
