// The first look at a model file: which release does it ask for?
#pragma once

#include <memory>
#include <optional>

#include "core/reporting.h"
#include "core/text.h"
#include "step/factories.h"
#include "step/reader/scanner.h"

namespace corvel {

// The namespace that serves a schema identifier, compared as it stands (case and blanks count);
// nothing when it is refused. An unknown IFC4X3 variant is read as IFC4X3_ADD2, and that is logged.
std::optional<SchemaNamespace> ChooseSchemaNamespace(const WideString& identifier,
                                                     ErrorReporter showError);

// The HEADER section, and everything before it. Null without the sequence ISO line, ";", HEADER.
std::unique_ptr<HeaderToken> ReadHeaderToken(Scanner& scanner);
// What is said then.
inline constexpr char16_t kNoHeader[] =
    u"Unable to read header token. No schema identifier can be read.";

// What a file says of its schema.
struct SchemaOfFile {
  bool opened = false;    // false: it could not be opened or is damaged, which has been reported
  bool damaged = false;   // see InputStream::IsDamaged
  WideString identifier;  // the first string of FILE_SCHEMA; empty without a readable HEADER
};

// Reads the HEADER alone. A file in which ReadHeaderToken finds none is reported; not so if
// `tolerant`, where whatever can be found counts.
SchemaOfFile ReadSchemaOfFile(const WideString& path, ErrorReporter showError,
                              bool tolerant = false);

}  // namespace corvel
