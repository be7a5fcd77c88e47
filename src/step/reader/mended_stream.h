// A spoilt file as a good one.
#pragma once

#include <bitset>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "step/reader/record_mender.h"
#include "step/reader/scanner.h"
#include "step/reader/skipped_input.h"
#include "step/reader/tolerant_borders.h"
#include "step/streams/input_stream.h"

namespace corvel {

// For those who look into a file without reading its model: what comes is what a tolerant reading
// takes of it, record by record, each under the number that it gets there. A header comes first,
// and the closing line last if the file has one.
class MendedStream final : public FileStream::InputStream {
 public:
  // Owns `file`, which is open.
  MendedStream(std::unique_ptr<Scanner> file, corvel::ErrorReporter showError);

  std::size_t Read(void* destination, std::size_t count) override;
  int PeekChar() override;
  int Close() override;
  bool IsOpen() const override { return open_; }
  bool IsEof() const override { return Cursor() == WindowEnd() && ended_; }
  // In the file, of what has been mended by now.
  std::int64_t Position() const override { return open_ ? file_->Stream()->Position() : -1; }
  int NextEntry() override { return -1; }
  std::int64_t TotalSize() const override { return file_->Stream()->TotalSize(); }
  bool IsDamaged() const override { return file_->Stream()->IsDamaged(); }

 private:
  // A number at a time, whatever gaps there are.
  class Numbers {
   public:
    // False when it is there already.
    bool Add(std::uint32_t number);
    bool Has(std::uint32_t number) const;
    std::uint32_t Largest() const { return largest_; }

   private:
    static constexpr unsigned kPageBits = 12;
    using Page = std::bitset<std::size_t{1} << kPageBits>;

    std::unordered_map<std::uint32_t, Page> pages_;
    std::uint32_t last_ = 0;  // of lastPage_
    Page* lastPage_ = nullptr;
    std::uint32_t largest_ = 0;
  };

  bool FillWindow() override;
  void AddHead();
  bool AddRecord();
  void AddPlainRecords();
  void AddEnd();
  void AddText(std::uint32_t number, const std::string& text);

  std::unique_ptr<Scanner> file_;
  Tolerance unheard_;
  SkippedInput skipped_;
  RecordMender mender_{unheard_};
  TolerantBorders borders_{skipped_, mender_};
  Numbers numbers_;
  std::vector<std::string> putAside_;
  std::string block_;
  bool open_ = true;
  bool hasHead_ = false;
  bool ended_ = false;
};

}  // namespace corvel
