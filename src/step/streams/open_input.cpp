#include "step/streams/open_input.h"

#include "step/streams/input_file_stream.h"

namespace FileStream {

std::unique_ptr<InputStream> OpenInput(const corvel::WideString& path, std::size_t bufferSize,
                                       corvel::ErrorReporter showError) {
  if (ExtensionOf(path) != u".ifc") return nullptr;
  return std::make_unique<InputFileStream>(path, showError, bufferSize);
}

}  // namespace FileStream
