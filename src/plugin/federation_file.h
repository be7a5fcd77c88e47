// federation.txt in the user's folder: what a run does beyond what the options window offers.
#pragma once

#include <optional>

#include "core/text.h"
#include "merge/federation/choices.h"

namespace corvel::plugin {

// All of it is off where there is no such file.
struct FederationOptions {
  bool tolerant = false;  // whatever a model holds that its release does not take is carried
  FederationChoices steps{};
  bool reports = false;  // a page that tells of the run is written beside its log
};

// Reads the file at `path` into `options`, which are as they are made when there is none. It has
// one option a line, `name` or `name = value`; blanks don't matter, and a "#" begins a comment.
// Gives the first mistake as a text for the user; `options` are void then.
std::optional<WideString> ReadFederationFile(const WideString& path, FederationOptions& options);

}  // namespace corvel::plugin
