#include "host/facts/exporter.h"

#include "merge/federation/attribute_values.h"
#include "step/reader/token.h"

namespace corvel::host {

const WideString& Exporter::Name() const {
  if (!application.empty()) return application;
  return originatingSystem.empty() ? preprocessorVersion : originatingSystem;
}

Exporter ExporterInHeader(const IfcDocument& document) {
  const HeaderToken* const header = document.getHeader();
  if (header == nullptr) return {};
  return {{}, header->originatingSystem, header->preprocessorVersion, header->timeStamp};
}

// Many full names end with the version already.
WideString ApplicationText(const IFC::IfcEntity& application) {
  WideString text = TextOf(application, "ApplicationFullName");
  const WideString version = TextOf(application, "Version");
  if (version.empty() || text.find(version) != WideString::npos) return text;
  if (!text.empty()) text += u" ";
  return text + version;
}

}  // namespace corvel::host
