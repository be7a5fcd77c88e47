// The stream under the log: small blocks, open to readers while it is written, all of it on Close.
#pragma once

#include "step/streams/outpout_file_stream.h"

namespace FileStream {

// Shows `message` in a box titled "Logfile error". `key` and `mode` are ignored. Gives 0.
int ShowLogfileError(const char* key, const corvel::WideString& message, int mode);

class OutputLogFileStream final : public OutpoutFileStream {
 public:
  static constexpr std::uint64_t kBlockSize = 1024;
  static constexpr std::uint64_t kKeepBack = 200;

  // Deletes what stands at `path` and opens a new file there. Failures go to ShowLogfileError.
  explicit OutputLogFileStream(const corvel::WideString& path);
  ~OutputLogFileStream() override;

  // Writes everything that the buffer holds, however little, and frees it.
  bool Close() override;
};

}  // namespace FileStream
