#include "merge/merge_documents.h"

#include "platform/file.h"
#include "step/log/ifc_log.h"

namespace corvel {

IfcDocument* MergeDocuments(const std::vector<IfcDocument*>& documents, const MergeChoices& choices,
                            const std::function<void(const IfcDocument&)>& announce) {
  IfcDocument* const destination = documents.front();
  for (std::size_t i = 1; i < documents.size(); ++i) {
    IfcDocument& source = *documents[i];
    if (announce) announce(source);
    const WideString path = source.getFilePath();
    IfcLog::Instance().LogText(WideString(u"Merging ").append(platform::FileNameOf(path)));
    // One that fails leaves its mark in the status, which counts at the end.
    destination->MergeDocument(source, choices.mergeLevel, choices.nameAndGuid);
  }
  if (destination->mergeStatus != MergeStatus::kMerged) {
    IfcLog::Instance().LogText(u"Merging result: False ");
    return nullptr;
  }
  return destination;
}

}  // namespace corvel
