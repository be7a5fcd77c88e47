#include "merge/document_checks.h"

#include <algorithm>

#include "platform/file.h"
#include "step/log/ifc_log.h"

namespace corvel {

namespace {

WideString FileNameOf(const IfcDocument& document) {
  const WideString path = document.getFilePath();
  return path.substr(platform::FindLastSeparator(path) + 1);
}

WideString NameAndSchema(const IfcDocument& document) {
  return FileNameOf(document) + u"(" + document.KnownSchemaIdentifier() + u")";
}

void ReportRejectedProjects(const std::vector<std::unique_ptr<IfcDocument>>& documents,
                            MergeShell& shell) {
  const IfcDocument& first = *documents.front();
  WideString rejected;
  WideString merged;
  for (std::size_t i = 1; i < documents.size(); ++i) {
    const IfcDocument& document = *documents[i];
    if (document.mergeable) {
      merged += FileNameOf(document) + u"\"\n";
    } else {
      rejected += NameAndSchema(document) + u"\n";
    }
  }
  if (rejected.empty()) return;
  const ErrorReporter report = shell.Reporter();
  report("",
         shell.Text("not_all_projects_merge") + u" \"" + FileNameOf(first) + u"\"(" +
             first.KnownSchemaIdentifier() + u")",
         kReportCollect);
  report("", shell.Text("due_to_invalid_schema") + u".", kReportCollect);
  report("", shell.Text("projects_that_will_not_be_merged"), kReportCollect);
  report("", rejected, kReportCollect);
  if (!merged.empty()) {
    report("", shell.Text("projects_that_will_be_merged") + u"\n\n" + merged, kReportCollect);
  }
  report("", u"", kReportShow);
}

}  // namespace

int CheckDocuments(const std::vector<std::unique_ptr<IfcDocument>>& documents, MergeShell& shell) {
  if (documents.size() < 2) {
    IfcLog::Instance().LogText(u"No files to compare.");
    return 0;
  }
  const WideString schema = documents.front()->KnownSchemaIdentifier();
  for (const auto& document : documents) {
    document->mergeable = document->KnownSchemaIdentifier() == schema;
  }
  ReportRejectedProjects(documents, shell);
  return static_cast<int>(std::count_if(documents.begin(), documents.end(),
                                        [](const auto& document) { return document->mergeable; }));
}

}  // namespace corvel
