// Small random models without cycles, built twice: of objects for the engine, and for LiteralMerge.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "graph_document.h"
#include "literal_merge.h"

namespace corvel::test {

// What one object is, before there is one.
struct PlannedEntity {
  int kind = 0;
  std::uint32_t number = 0;  // 0: filed nowhere, as a value inside a record
  bool deleted = false;
  std::string guid;
  WideString name;
  std::vector<int> children;  // by place in the plan, always earlier ones; -1 is a null
};

using PlannedModel = std::vector<PlannedEntity>;

struct ModelShape {
  int entities = 8;
  int mostChildren = 4;
  std::uint32_t highestNumber = 12;
};

// Texts come from a handful, so that names and GUIDs meet within and between models.
PlannedModel AnyModel(std::mt19937& random, const ModelShape& shape);

// One model in both forms. The ids of its objects begin at `firstId`.
class BuiltModel {
 public:
  // Objects for the engine are allocated in an order drawn from `allocation`.
  BuiltModel(const PlannedModel& plan, int firstId, const WideString& path, unsigned allocation);

  GraphDocument engine;
  LiteralDocument literal;
  // By place in the plan.
  std::vector<GraphNode*> objects;
  std::deque<LiteralEntity> twins;

  // Files both; the caller sets the numbering of the process before.
  void FileEngine();
  void FileLiteral(LiteralMerge& merge);

 private:
  const PlannedModel plan_;
  Graph graph_;
};

}  // namespace corvel::test
