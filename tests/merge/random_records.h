// Small random models as the records of a file, with classes of real releases that meet rules of
// their own when a model is marked.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "record_document.h"

namespace corvel::test {

struct RecordsShape {
  bool isIfc4 = true;  // else IFC2X3
  int records = 20;
  int mostMembers = 3;
};

struct RandomRecords {
  std::vector<PlannedRecord> records;
  std::vector<std::uint32_t> objects;  // of those that a host would list
  // For each of `objects`, the one that a host might give as its parent; 0 for none.
  std::vector<std::uint32_t> hostParents;
};

// Numbers have gaps and records come in any order. References lead anywhere where the schema admits
// them, also in circles; some that the schema demands are missing.
RandomRecords AnyRecords(std::mt19937& random, const RecordsShape& shape);

}  // namespace corvel::test
