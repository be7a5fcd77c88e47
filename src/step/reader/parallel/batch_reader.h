// Reads a batch of records on whatever thread it runs.
#pragma once

#include <cstdint>
#include <memory>

#include "core/number_table.h"
#include "step/reader/parallel/ahead_references.h"
#include "step/reader/parallel/record_batch.h"
#include "step/reader/parser.h"

namespace corvel {

// Reads what is plain and stops where something would have to be reported, asked or noted: that
// record, and all behind it, is left to the parser of the model. Nothing of the process is touched,
// and nothing of the model but the objects that are read.
//
// What one reader makes stands in one pool, so two threads never use one reader at a time.
class BatchReader {
 public:
  // The first pass. Makes objects, in `pool`, and files them nowhere. Borrows both, as below.
  BatchReader(const Parser& model, MemoryPool& pool);
  // The second pass. Reads the objects of `filed` again.
  BatchReader(const Parser& model, MemoryPool& pool, const NumberTable& filed);
  ~BatchReader();

  void Read(RecordBatch& batch);
  // See AheadReferences.
  void Bind(RecordBatch& batch) { references_.Bind(batch); }

 private:
  void Open(RecordBatch& batch);
  bool ReadRecord(RecordBatch& batch);
  TokenType TakeNumber(std::uint32_t& number);
  IFC::IfcEntity* TakeEntity(std::uint32_t number, std::uint32_t& slot);
  const FactoryRow* TakeRow();

  NumberTable own_;           // of the batch, in the first pass
  const NumberTable* filed_;  // null in the first pass
  AheadReferences references_;
  SkippedInput skipped_;
  RecordBorders borders_{skipped_};
  Parser parser_;
};

}  // namespace corvel
