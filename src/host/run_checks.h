// What can be said against a run before anything is read.
#pragma once

#include <optional>
#include <vector>

#include "core/text.h"

namespace corvel::host {

// The reason why the model cannot be read; nothing when it can be opened and holds at least one
// byte. Devices and pipes are refused: a model is read more than once.
std::optional<WideString> TroubleWithInput(const WideString& path);

// The reason why the output cannot be written; nothing when it can. What it finds may be otherwise
// a moment later, which the run then reports. An output that is there already is left alone here,
// and one that could be made is not left behind.
std::optional<WideString> TroubleWithOutput(const WideString& path,
                                            const std::vector<WideString>& inputs);

// The same of a file that is no model.
std::optional<WideString> TroubleWithList(const WideString& path,
                                          const std::vector<WideString>& inputs);
// And of a report, whose name has one of its endings.
std::optional<WideString> TroubleWithReport(const WideString& path,
                                            const std::vector<WideString>& inputs);

// The reason why files that are needed meanwhile cannot be kept in the folder; nothing when they
// can.
std::optional<WideString> TroubleWithWorkFolder(const WideString& folder);
// The reason why no log goes to that place. A folder that refuses files is none: the run goes on
// without a log.
std::optional<WideString> TroubleWithLog(const WideString& path);

}  // namespace corvel::host
