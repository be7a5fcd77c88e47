#include "host/header_look.h"

#include "host/display_text.h"
#include "host/foreign_file.h"
#include "host/hearing.h"
#include "host/model_opening.h"

namespace corvel::host {

namespace {

// Enough for any header that is not made to be long; the scanner refills for those.
constexpr std::size_t kHeadBuffer = 0x10000;

bool NothingServes(const WideString& identifier) {
  std::vector<WideString> remarks;
  std::vector<WideString> problems;
  return !ChooseSchema(identifier, remarks, problems);
}

}  // namespace

HeaderLook LookAtHeader(const WideString& path) {
  HeaderLook look;
  look.trouble = NoStepFile(path);
  if (look.trouble) return look;
  std::vector<WideString> problems;
  Scanner scanner(path, kHeadBuffer, Hear);
  const auto header = scanner.IsOpen() ? ReadHeader(scanner, path, problems) : nullptr;
  if (header != nullptr) {
    look.schemaIdentifier = header->schemaIdentifier;
  } else {
    look.trouble =
        problems.empty() ? WideString(u"this file cannot be opened for reading") : problems.front();
  }
  return look;
}

std::vector<SchemaTrouble> TroubleWithSchemas(const std::vector<WideString>& inputs,
                                              const std::vector<HeaderLook>& looks) {
  const WideString& first = looks.front().schemaIdentifier;
  if (NothingServes(first)) return {{0, u"no release of IFC serves its schema '" + first + u"'"}};
  const WideString ofFirst =
      u"', and that of the first, " + Printable(inputs.front()) + u", is '" + first + u"'";
  std::vector<SchemaTrouble> differing;
  for (std::size_t i = 1; i < looks.size(); ++i) {
    const WideString& schema = looks[i].schemaIdentifier;
    if (schema == first) return {};
    differing.push_back({i, WideString(u"its schema is '").append(schema).append(ofFirst)});
  }
  return differing;
}

}  // namespace corvel::host
