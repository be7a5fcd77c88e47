// What a person says of the objects that become one.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "core/text.h"
#include "merge/federation/federated_model.h"
#include "merge/federation/tree/spatial_structure.h"

namespace corvel {

// "2:2O2Fr$t4X7Zf8NOew3FLOH" or "2:#45".
struct ToldAddress {
  std::string text{};
  std::size_t input = 0;  // index
  std::string guid{};     // empty: by number
  std::uint32_t number = 0;
};

struct ToldLine {
  std::uint32_t line = 0;  // of the file, from 1
  ToldAddress object{};
  bool joins = false;      // otherwise it stays apart
  ToldAddress survivor{};  // of the join
};

struct TreeMap {
  WideString path;
  std::vector<ToldLine> lines;
  // By line: the index of an input and the name that it had.
  std::vector<std::pair<std::uint32_t, std::pair<std::size_t, WideString>>> inputs;
};

// Reads a file as tree_list.h writes it: a line is "join A B", "apart A" or "input N NAME"; blanks
// don't matter, and ";" begins a comment. Each mistake is a text for the user: "tree.txt, line 7:
// ...". The map is void with any.
TreeMap ReadTreeMap(const WideString& path, std::vector<WideString>& mistakes);

// Enters into the objects what is told of them. Mistakes are objects that are not there or told of
// twice, a survivor of a later or the same model, of another class or level, and two of one model
// that would become one.
void ApplyTreeMap(const TreeMap& map, const FederatedModel& model, SpatialStructure& structure,
                  std::vector<WideString>& mistakes);

}  // namespace corvel
