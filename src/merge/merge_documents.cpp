#include "merge/merge_documents.h"

#include "core/entity.h"
#include "merge/document_merge.h"
#include "step/log/ifc_log.h"

namespace corvel {

namespace {

GuidQuestion installedQuestion = nullptr;

WideString FileNameOf(const WideString& path) { return path.substr(path.find_last_of(u"/\\") + 1); }

}  // namespace

int& RememberedGuidChoice() {
  static int choice = kAskAboutGuids;
  return choice;
}

void SetGuidQuestion(GuidQuestion question) { installedQuestion = question; }

int AskedGuidChoice() {
  int& choice = RememberedGuidChoice();
  if (choice == kAskAboutGuids) {
    const bool generate = installedQuestion == nullptr || installedQuestion();
    choice = generate ? kGenerateGuids : kSkipSameGuids;
  }
  return choice;
}

void MergeParents(const IFC::IfcEntity& entity, IFC::IfcEntity& target, ParentStore& store) {
  for (IFC::IfcEntity* const parent : entity.parents.Members()) {
    target.mergedParents.Insert(parent, store);
  }
  for (IFC::IfcEntity* const parent : target.mergedParents.Members()) {
    target.parents.Insert(parent, store);
  }
}

IfcDocument* MergeDocuments(const std::vector<IfcDocument*>& documents, const MergeChoices& choices,
                            const std::function<void(const IfcDocument&)>& announce) {
  IfcDocument* const destination = documents.front();
  for (std::size_t i = 1; i < documents.size(); ++i) {
    IfcDocument& source = *documents[i];
    if (!source.mergeable) continue;
    if (announce) announce(source);
    IfcLog::Instance().LogText(u"Merging " + FileNameOf(source.getFilePath()));
    destination->MergeDocument(source, choices.mergeLevel, choices.nameAndGuid);
  }
  if (destination->mergeStatus != MergeStatus::kMerged) {
    IfcLog::Instance().LogText(u"Merging result: False ");
    return nullptr;
  }
  return destination;
}

bool IfcDocument::MergeDocument(IfcDocument& source, unsigned mergeLevel, bool nameAndGuid) {
  if (&source == this || mainContainer == nullptr || source.mainContainer == nullptr) {
    showError_("", u"There is no model to merge: " + source.getFilePath(), kReportShow);
    if (mergeStatus == MergeStatus::kNotMerged) mergeStatus = MergeStatus::kFailed;
    return false;
  }
  absorbedContainers.push_back(std::move(source.mainContainer));
  return DocumentMerge(*this, *absorbedContainers.back(), source.getFilePath(), showError_,
                       progress_)
      .Run(mergeLevel, nameAndGuid);
}

}  // namespace corvel
