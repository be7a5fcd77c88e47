#include "step/streams/open_input.h"

#include "step/streams/input_file_stream.h"
#include "step/streams/input_zip_file_stream.h"

namespace FileStream {

std::unique_ptr<InputStream> OpenInput(const corvel::WideString& path, std::size_t bufferSize,
                                       corvel::ErrorReporter showError) {
  switch (FormOf(path)) {
    case ModelForm::kPlain: return std::make_unique<InputFileStream>(path, showError, bufferSize);
    case ModelForm::kPacked:
    case ModelForm::kContained:
      return std::make_unique<InputZipFileStream>(path, showError, bufferSize);
    case ModelForm::kNone: break;
  }
  return nullptr;
}

}  // namespace FileStream
