// The first look at a model: whether it is one, and which schema it names.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "core/text.h"
#include "step/factories.h"

namespace corvel::host {

struct HeaderLook {
  std::optional<WideString> trouble;  // why no header could be read
  WideString schemaIdentifier;        // as the file names it
  // What serves it in a tolerant reading; nothing in a strict one.
  std::optional<SchemaNamespace> release{};
};
HeaderLook LookAtHeader(const WideString& path, bool tolerant = false);

struct SchemaTrouble {
  std::size_t input = 0;  // index
  WideString text;
};
// Why these inputs, all of which have a header, can never become one model: nothing serves the
// schema of the first, or none of the later ones has it. In tolerant readings those of one release
// have the same. One that differs beside others that fit is
// no trouble here: the merge leaves it out, and tells so.
std::vector<SchemaTrouble> TroubleWithSchemas(const std::vector<WideString>& inputs,
                                              const std::vector<HeaderLook>& looks);

}  // namespace corvel::host
