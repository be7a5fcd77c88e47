#include "host/header_look.h"

#include "host/display_text.h"
#include "host/hearing.h"
#include "host/model_opening.h"
#include "schema/schema_choice.h"
#include "step/reader/schema_identifier.h"

namespace corvel::host {

namespace {

// Enough for any header that is not made to be long; the scanner refills for those.
constexpr std::size_t kHeadBuffer = 0x10000;

// Enough for any header that is not made to be long; the scanner refills for those.
constexpr std::size_t kSmallBuffer = 0x10000;

bool NothingServes(const HeaderLook& look) {
  if (look.release) return false;
  const auto unheard = [](const char*, const WideString&, int) { return 0; };
  return !ChooseSchemaNamespace(look.schemaIdentifier, unheard);
}

bool GoTogether(const HeaderLook& a, const HeaderLook& b) {
  return a.schemaIdentifier == b.schemaIdentifier || (a.release && a.release == b.release);
}

HeaderLook LookTolerantly(const WideString& path) {
  HeaderLook look;
  const SchemaOfFile schema = ReadSchemaOfFile(path, Hear, true);
  if (schema.opened) {
    look.schemaIdentifier = schema.identifier;
    look.release = ChooseSchemaTolerantly(schema.identifier, path).release;
  } else {
    look.trouble = u"this file cannot be opened for reading";
  }
  return look;
}

}  // namespace

HeaderLook LookAtHeader(const WideString& path, bool tolerant) {
  HeaderLook look;
  look.trouble = NoModelFile(path, tolerant);
  if (look.trouble) return look;
  if (tolerant) return LookTolerantly(path);
  std::vector<WideString> problems;
  Scanner scanner(path, kSmallBuffer, Hear);
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
  if (NothingServes(looks.front())) {
    return {{0, u"no release of IFC serves its schema '" + first + u"'"}};
  }
  const WideString ofFirst =
      u"', and that of the first, " + Printable(inputs.front()) + u", is '" + first + u"'";
  std::vector<SchemaTrouble> differing;
  for (std::size_t i = 1; i < looks.size(); ++i) {
    const WideString& schema = looks[i].schemaIdentifier;
    if (GoTogether(looks[i], looks.front())) return {};
    differing.push_back({i, WideString(u"its schema is '").append(schema).append(ofFirst)});
  }
  return differing;
}

}  // namespace corvel::host
