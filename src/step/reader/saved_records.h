// The records that the first pass could not complete, on their way to the second.
//
// They go to the work file and come back through the same handle, which holds its lock from the
// first record to the end of the second pass. Disks fail all the same, and not every system keeps a
// lock: what comes back is compared with what was saved, block by block, before anybody reads it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "core/reporting.h"
#include "core/text.h"
#include "step/reader/work_file.h"
#include "step/streams/input_stream.h"

namespace corvel {

class SavedRecords {
 public:
  // `blockSize` bytes are written and read at a time. A file that is not open and a buffer that
  // cannot be had are reported, and nothing can be saved then: ask IsReady. No file is left then.
  SavedRecords(WorkFile workFile, ErrorReporter showError, std::size_t blockSize);
  ~SavedRecords();
  SavedRecords(const SavedRecords&) = delete;
  SavedRecords& operator=(const SavedRecords&) = delete;

  bool IsReady() const { return work_.file.IsOpen(); }
  // Of the file; its folder when it has no name.
  const WideString& Path() const { return work_.path; }

  // --- First pass -------------------------------------------------------------------------------
  // Saves the text of one record. Throws std::runtime_error when the disk takes no more.
  void Append(std::string_view record);
  // Hands what was saved to the system. False (reported) when it does not take it.
  bool Finish();
  // Closes and removes the file. The second pass leaves it where it is.
  void Discard();

  // --- Second pass ------------------------------------------------------------------------------
  // All that was saved, from its start; call once, after Finish. The stream borrows this object. It
  // throws std::runtime_error, whose text tells it, instead of bytes that are not those saved, and
  // again each time that it is asked for more.
  std::unique_ptr<FileStream::InputStream> ReadAgain();
  void CountReadRecord() { ++readRecords_; }
  // Bytes that were saved did not come back.
  bool IsDamaged() const { return damaged_; }
  // Call after a second pass that nothing has stopped. False (reported): it has not met all records
  // that were saved.
  bool AllRecordsWereRead();

  // Closes and removes the file, whatever the pass.
  void Remove();

 private:
  class Stream;

  bool WriteBlock();

  WorkFile work_;
  ErrorReporter showError_;
  std::size_t blockSize_;
  std::unique_ptr<char[]> buffer_;  // what is not written yet; in the second pass what was read
  std::size_t buffered_ = 0;
  std::vector<std::uint64_t> hashes_;  // of the blocks; all but the last are full
  std::uint64_t savedBytes_ = 0;
  std::uint64_t savedRecords_ = 0;
  std::uint64_t readRecords_ = 0;
  bool readsAgain_ = false;
  bool damaged_ = false;
};

}  // namespace corvel
