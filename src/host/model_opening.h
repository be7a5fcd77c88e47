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

// The HEADER of the file at `path`, in the strict order in which a reading of the model takes it;
// the next byte of the stream is then the one behind it. Null, and a problem more, when it is not
// there.
std::unique_ptr<HeaderToken> ReadHeader(Scanner& scanner, const WideString& path,
                                        std::vector<WideString>& problems);

// The release that serves an identifier; nothing, and a problem more, when none does.
std::optional<SchemaNamespace> ChooseSchema(const WideString& identifier,
                                            std::vector<WideString>& remarks,
                                            std::vector<WideString>& problems);

}  // namespace corvel::host
