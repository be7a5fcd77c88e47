// The first look at a model file: which release does it ask for?
#pragma once

#include <optional>

#include "core/reporting.h"
#include "core/text.h"
#include "step/factories.h"

namespace corvel {

// The namespace that serves a schema identifier, compared as it stands (case and blanks count);
// nothing when it is refused. An unknown IFC4X3 variant is read as IFC4X3_ADD2, and that is logged.
std::optional<SchemaNamespace> ChooseSchemaNamespace(const WideString& identifier,
                                                     ErrorReporter showError);

// What a file says of its schema.
struct SchemaOfFile {
  bool opened = false;    // false: it could not be opened or is damaged, which has been reported
  bool damaged = false;   // see InputStream::IsDamaged
  WideString identifier;  // the first string of FILE_SCHEMA; empty without a readable HEADER
};

// Reads the HEADER alone. A file without the sequence ISO line, ";", HEADER is reported.
SchemaOfFile ReadSchemaOfFile(const WideString& path, ErrorReporter showError);

}  // namespace corvel
