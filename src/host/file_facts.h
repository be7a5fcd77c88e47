// What can be told of a model file, mostly without making objects of it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/text.h"
#include "host/facts/model_facts.h"
#include "step/factories.h"
#include "step/reader/token.h"

namespace corvel::host {

struct FileFacts {
  WideString path;
  std::int64_t bytes = 0;
  std::unique_ptr<HeaderToken> header;    // null: the file could not be read as a STEP file
  std::optional<SchemaNamespace> schema;  // the release whose classes would serve the file
  std::uint64_t records = 0;
  // Records by class, the most frequent first, equal ones by name. Names are as the file writes
  // them, without underscores; an instance of several classes counts as kComplexInstance.
  std::vector<std::pair<std::string, std::uint64_t>> classes;
  // What is told first; ReadFacts leaves it to whoever wants objects made of the file.
  std::optional<ModelFacts> model{};
  std::vector<WideString> remarks;  // worth knowing
  // What is wrong with the file. Without problems it may still hold what a merge refuses.
  std::vector<WideString> problems;
};

inline constexpr char kComplexInstance[] = "(complex)";
// A record whose name is missing or no word.
inline constexpr char kNamelessInstance[] = "(nameless)";

// One pass over the file, in constant memory but for the names of classes. Records are told apart
// only, so that it works on classes that no release knows; what stands inside of a record is not
// looked at. Nothing is reported: trouble stands among the problems. If `tolerant` the records are
// those that a tolerant reading takes.
FileFacts ReadFacts(const WideString& path, bool tolerant = false);

}  // namespace corvel::host
