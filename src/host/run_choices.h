// What a user chooses for one merge on the command line: the objects that count, where the models
// are shown, and the options that a desktop viewer has in a window.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "core/text.h"
#include "host/viewer_scene.h"
#include "merge/federation/federation_options.h"
#include "merge/merge_job.h"
#include "merge/merge_shell.h"

namespace corvel::host {

enum class ListKind { kInactive, kHide, kSelect };

// Objects of one input. An item is a record as "#12", the name of a class in any case, which begins
// with "Ifc", or else a GUID. No item is empty.
struct ObjectList {
  ListKind kind = ListKind::kSelect;
  std::size_t input = 0;  // index
  std::vector<WideString> items;
};

struct RunChoices {
  SavingMode mode = SavingMode::kMergeActive;
  std::vector<ObjectList> lists;
  std::vector<std::pair<std::size_t, Point>> offsetsMm;  // by the index of the input
  Point centerMetres{};
  bool ignoreEnumErrors = false;
  bool tolerant = false;
  bool ignoreUnits = false;
  bool deleteOpenings = false;
  std::optional<bool> generateGuids;  // nothing: as the plug-in remembers it
  std::optional<unsigned> threads;    // nothing: as many as there are cores to use
  FederationChoices federation{};

  // The remembered options with the choices of this run over them.
  MergeOptions Over(MergeOptions remembered) const;
};

// The values of the options as they were typed; nothing for an option that was not given.
struct ChoiceWords {
  bool areOfOneInput = false;  // lists and offsets name no file
  std::optional<std::string> mode;
  std::vector<std::string> inactive;
  std::vector<std::string> hide;
  std::vector<std::string> select;
  std::vector<std::string> offsets;
  std::optional<std::string> center;
  std::optional<std::string> onDuplicateGuid;
  std::optional<std::string> threads;
  // In the order in which they were typed; the value is empty for an option that takes none.
  std::vector<std::pair<const FederationOption*, std::string>> federation;
};

// Fills what the words tell: everything but the flags of the options window. The first mistake
// comes as a text that names the option and the word.
std::variant<RunChoices, std::string> UnderstandChoices(const ChoiceWords& words,
                                                        const std::vector<std::string>& inputs);

}  // namespace corvel::host
