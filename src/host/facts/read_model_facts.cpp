#include "host/facts/read_model_facts.h"

#include "host/hearing.h"
#include "host/watched_platform.h"
#include "merge/document.h"

namespace corvel::host {

std::optional<ModelFacts> ReadModelFacts(const WideString& path, const WideString& workFolder) {
  // What the reading would ask or show: nobody hears of it.
  const WatchedPlatform silent({[](platform::Buttons buttons, platform::Icon) {
                                  return std::optional(buttons == platform::Buttons::kYesNo
                                                           ? platform::Answer::kNo
                                                           : platform::Answer::kOk);
                                },
                                [](platform::Buttons, platform::Answer, bool) {}});
  IfcDocument document(true, Hear, nullptr);
  document.ReadTolerantly();
  document.KeepWorkFileIn(workFolder);
  constexpr int kOneFile = 1;
  document.OpenFile(path, kOneFile);
  return document.IsParsed() ? std::optional(ModelFactsOf(document)) : std::nullopt;
}

}  // namespace corvel::host
