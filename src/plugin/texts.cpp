#include "plugin/texts.h"

#include "plugin/host_functions.h"

namespace corvel::plugin {

namespace {

bool LoadLanguage(const WideString& dataFolder, const WideString& language) {
  const WideString path = dataFolder + u"lang." + language;
  return CallHost(Host().load_texts, path.c_str()) != 0;
}

}  // namespace

void LoadTexts(const WideString& dataFolder) {
  const WideString language = TextOrEmpty(CallHost(Host().get_language));
  if (!LoadLanguage(dataFolder, language)) LoadLanguage(dataFolder, u"en");
}

WideString GetText(const char* key) { return TextOrEmpty(CallHost(Host().get_text, key)); }

}  // namespace corvel::plugin
