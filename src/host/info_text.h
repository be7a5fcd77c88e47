// The facts of files as people and as programs read them.
#pragma once

#include <string>
#include <vector>

#include "core/text.h"
#include "host/file_facts.h"

namespace corvel::host {

// Some lines, each with its end. Nothing of a file without a header but its size.
WideString FactsAsText(const FileFacts& facts);

// One JSON object, in UTF-8, with a line feed behind it. Keys and their order are fixed:
// {"files": [{"file", "bytes", "header": {"description": [], "implementationLevel", "name",
// "timeStamp", "author": [], "organization": [], "preprocessorVersion", "originatingSystem",
// "authorization", "schemaIdentifier"} or null, "schema" or null, "records", "classes": {name:
// count}, "remarks": [], "problems": [], "model": see facts/facts_json.h, or null}]}. Bytes that
// are no valid text become U+FFFD.
std::string FactsAsJson(const std::vector<FileFacts>& files);

}  // namespace corvel::host
