// The options of federation as users write them: behind two dashes on the command line, a line each
// in federation.txt. They count in the order in which they are written.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "merge/federation/choices.h"

namespace corvel {

struct FederationOption {
  std::string_view name;  // "contexts"
  bool takesValue = false;
  bool ofResave = false;  // of `corvel resave` too
  // Puts into the choices what the value says, or gives what is wrong with it, as the rest of a
  // sentence: "takes 'keep' or 'join'". The value is empty for an option that takes none.
  std::optional<std::string> (*take)(std::string_view value, FederationChoices& choices);
};

std::span<const FederationOption> AllFederationOptions();
// Null for any other name.
const FederationOption* FindFederationOption(std::string_view name);

}  // namespace corvel
