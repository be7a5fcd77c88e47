#include "host/model_opening.h"

#include "host/foreign_file.h"
#include "host/hearing.h"
#include "step/reader/schema_identifier.h"

namespace corvel::host {

std::unique_ptr<HeaderToken> ReadHeader(Scanner& scanner, const WideString& path,
                                        std::vector<WideString>& problems) {
  auto header = ReadHeaderToken(scanner);
  if (header == nullptr) problems.push_back(NoStepFile(path).value_or(kNoHeader));
  return header;
}

std::optional<SchemaNamespace> ChooseSchema(const WideString& identifier,
                                            std::vector<WideString>& remarks,
                                            std::vector<WideString>& problems) {
  const Hearing hearing(remarks);
  const auto schema = ChooseSchemaNamespace(identifier, Hear);
  if (!schema) problems.push_back(u"Unknown schema identifier: " + identifier);
  return schema;
}

}  // namespace corvel::host
