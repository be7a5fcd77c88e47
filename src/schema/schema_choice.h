// The release that serves a file whose schema name is none of those that are known.
#pragma once

#include <optional>

#include "core/text.h"
#include "step/factories.h"

namespace corvel {

struct SchemaChoice {
  SchemaNamespace release{};
  WideString told;  // one line for the user; empty when the identifier is the name of the release
};

// For tolerant readings. Letter case and blanks around count for nothing; a draft or an addendum
// that nobody knows goes to the release that has most of the classes in the first megabyte of the
// file, of several to the one whose name it begins with. Always one of this build's; nothing is
// reported.
SchemaChoice ChooseSchemaTolerantly(const WideString& identifier, const WideString& path);

// The first megabyte of the file holds what looks like records.
bool SeemsToHoldRecords(const WideString& path);

}  // namespace corvel
