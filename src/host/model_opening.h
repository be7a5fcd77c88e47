// The start of a model file, for whoever looks into one without making objects of it.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "core/text.h"
#include "step/factories.h"
#include "step/reader/scanner.h"
#include "step/reader/token.h"

namespace corvel::host {

inline constexpr std::size_t kModelBuffer = 0x100000;

// The file at `path`; if `tolerant`, what a tolerant reading takes of it.
std::unique_ptr<Scanner> OpenModel(const WideString& path, bool tolerant);

// What the file begins with when it is no STEP file at all. If `tolerant`, a file that holds
// records is one.
std::optional<WideString> NoModelFile(const WideString& path, bool tolerant);

// The HEADER of the file at `path`, in the strict order in which a reading of the model takes it;
// the next byte of the stream is then the one behind it. Null, and a problem more, when it is not
// there.
std::unique_ptr<HeaderToken> ReadHeader(Scanner& scanner, const WideString& path,
                                        std::vector<WideString>& problems);

// The release that serves the identifier of the file at `path`; nothing, and a problem more, when
// none does. If `tolerant` one always does (see ChooseSchemaTolerantly).
std::optional<SchemaNamespace> ChooseSchema(const WideString& identifier, const WideString& path,
                                            bool tolerant, std::vector<WideString>& remarks,
                                            std::vector<WideString>& problems);

}  // namespace corvel::host
