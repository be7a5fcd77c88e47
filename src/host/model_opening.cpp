#include "host/model_opening.h"

#include <utility>

#include "host/foreign_file.h"
#include "host/hearing.h"
#include "schema/schema_choice.h"
#include "step/reader/mended_stream.h"
#include "step/reader/schema_identifier.h"

namespace corvel::host {

std::unique_ptr<Scanner> OpenModel(const WideString& path, bool tolerant) {
  auto file = std::make_unique<Scanner>(path, kModelBuffer, Hear);
  if (!tolerant || !file->IsOpen()) return file;
  return std::make_unique<Scanner>(std::make_unique<MendedStream>(std::move(file), Hear), Hear);
}

std::optional<WideString> NoModelFile(const WideString& path, bool tolerant) {
  auto told = NoStepFile(path);
  return told && tolerant && SeemsToHoldRecords(path) ? std::nullopt : told;
}

std::unique_ptr<HeaderToken> ReadHeader(Scanner& scanner, const WideString& path,
                                        std::vector<WideString>& problems) {
  auto header = ReadHeaderToken(scanner);
  if (header == nullptr) problems.push_back(NoStepFile(path).value_or(kNoHeader));
  return header;
}

std::optional<SchemaNamespace> ChooseSchema(const WideString& identifier, const WideString& path,
                                            bool tolerant, std::vector<WideString>& remarks,
                                            std::vector<WideString>& problems) {
  if (tolerant) {
    SchemaChoice choice = ChooseSchemaTolerantly(identifier, path);
    if (!choice.told.empty()) remarks.push_back(std::move(choice.told));
    return choice.release;
  }
  const Hearing hearing(remarks);
  const auto schema = ChooseSchemaNamespace(identifier, Hear);
  if (!schema) problems.push_back(u"Unknown schema identifier: " + identifier);
  return schema;
}

}  // namespace corvel::host
