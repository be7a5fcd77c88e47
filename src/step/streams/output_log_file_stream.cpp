#include "step/streams/output_log_file_stream.h"

#include "platform/file.h"
#include "platform/platform.h"

namespace FileStream {

namespace {

const corvel::WideString& Removed(const corvel::WideString& path) {
  platform::RemoveFile(path);
  return path;
}

}  // namespace

int ShowLogfileError(const char* /*key*/, const corvel::WideString& message, int /*mode*/) {
  platform::Get().ShowMessageBox(u"Logfile error", message, platform::Buttons::kOk,
                                 platform::Icon::kError);
  return 0;
}

// A log that waited for the disk at each report would hold the run up for minutes; what the system
// has survives the end of this process all the same.
OutputLogFileStream::OutputLogFileStream(const corvel::WideString& path)
    : OutpoutFileStream(Removed(path), &ShowLogfileError, kBlockSize, kKeepBack,
                        platform::OpenMode::kSharedAppend, CommitTo::kSystem, u"File path: ") {}

OutputLogFileStream::~OutputLogFileStream() { OutputLogFileStream::Close(); }

bool OutputLogFileStream::Close() {
  if (IsOpen()) {
    WriteBuffer();
    FreeBuffer();
  }
  return CloseFile();
}

}  // namespace FileStream
