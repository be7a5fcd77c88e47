#include "host/model_opening.h"

#include "step/reader/schema_identifier.h"

namespace corvel::host {

namespace {

// Scanners report through plain functions.
std::vector<WideString>* heard = nullptr;

}  // namespace

int Hear(const char* /*key*/, const WideString& message, int /*mode*/) {
  if (heard == nullptr) return 0;
  heard->push_back(message.substr(0, message.find_last_not_of(u"\n ") + 1));
  return 0;
}

Hearing::Hearing(std::vector<WideString>& messages) : before_(std::exchange(heard, &messages)) {}

Hearing::~Hearing() { heard = before_; }

std::unique_ptr<HeaderToken> ReadHeader(Scanner& scanner, std::vector<WideString>& problems) {
  std::unique_ptr<HeaderToken> header;
  if (scanner.NextToken()->Is(TokenType::IsoToken) &&
      scanner.NextToken()->Is(TokenType::SemicolonToken)) {
    header = std::move(scanner.NextToken()->header);
  }
  if (header == nullptr) {
    problems.emplace_back(u"Unable to read header token. No schema identifier can be read.");
  }
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
