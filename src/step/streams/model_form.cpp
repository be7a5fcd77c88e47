#include "step/streams/model_form.h"

namespace FileStream {

ModelForm FormOfExtension(corvel::WideView extension) {
  if (extension == kPlainEnding) return ModelForm::kPlain;
  if (extension == u".ifczip") return ModelForm::kPacked;
  return extension == u".olf" ? ModelForm::kContained : ModelForm::kNone;
}

corvel::WideString ExtensionOf(corvel::WideView path) {
  constexpr std::size_t kBeforeBar = 4;  // for extensions such as ".olf"
  const std::size_t bar = path.find(u'|');
  if (bar != corvel::WideView::npos) {
    const std::size_t start = bar > kBeforeBar ? bar - kBeforeBar : 0;
    return corvel::ToLowerAscii(path.substr(start, bar - start));
  }
  const std::size_t dot = path.rfind(u'.');
  return dot == corvel::WideView::npos ? corvel::WideString()
                                       : corvel::ToLowerAscii(path.substr(dot));
}

}  // namespace FileStream
