#include "step/streams/open_output.h"

#include <utility>

#include "step/streams/model_form.h"
#include "step/streams/outpout_file_stream.h"
#include "step/streams/output_zip_file_stream.h"

namespace FileStream {

namespace {

constexpr std::uint64_t kBlockSize = 1'048'576;
constexpr std::uint64_t kKeepBack = 4'096;

// A "|" in the name of an output means nothing.
ModelForm FormOfOutput(corvel::WideView path) {
  return FormOf(path.substr(path.find_last_of(u'|') + 1));
}

}  // namespace

bool IsOutputName(const corvel::WideString& path) {
  const ModelForm form = FormOfOutput(path);
  return form == ModelForm::kPlain || form == ModelForm::kPacked;
}

std::unique_ptr<OutpoutStream> OpenOutput(const corvel::WideString& path, platform::File file,
                                          corvel::ErrorReporter showError) {
  const ModelForm form = FormOfOutput(path);
  if (form == ModelForm::kPacked) {
    return std::make_unique<OutputZipFileStream>(path, std::move(file), showError);
  }
  if (form != ModelForm::kPlain) return nullptr;
  return std::make_unique<OutpoutFileStream>(path, std::move(file), showError, kBlockSize,
                                             kKeepBack);
}

}  // namespace FileStream
