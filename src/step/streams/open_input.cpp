#include "step/streams/open_input.h"

#include "step/streams/input_file_stream.h"
#include "step/streams/input_zip_file_stream.h"

namespace FileStream {

std::unique_ptr<InputStream> OpenInput(const corvel::WideString& path, std::size_t bufferSize,
                                       corvel::ErrorReporter showError) {
  const corvel::WideString extension = ExtensionOf(path);
  if (extension == u".ifczip" || extension == u".olf") {
    return std::make_unique<InputZipFileStream>(path, showError, bufferSize);
  }
  if (extension != u".ifc") return nullptr;
  return std::make_unique<InputFileStream>(path, showError, bufferSize);
}

}  // namespace FileStream
