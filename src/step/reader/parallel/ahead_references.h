// The references of a parser that reads records before those in front of them are filed.
#pragma once

#include <cstdint>

#include "core/list.h"
#include "core/memory_pool.h"
#include "core/number_table.h"
#include "step/reader/parallel/class_answers.h"
#include "step/reader/parallel/record_batch.h"

namespace corvel {

// What the readers of attributes ask in the place of the container. A number that is not known here
// gives a pending reference, whose place the reader tells as soon as it stands where it stays.
class AheadReferences {
 public:
  // All borrowed. `known`: where numbers are looked up. A number that is not there is that of a
  // record elsewhere; `knowsAll`: of none.
  AheadReferences(MemoryPool& pool, const NumberTable& known, bool knowsAll)
      : pool_(pool), known_(known), knowsAll_(knowsAll) {}
  AheadReferences(const AheadReferences&) = delete;
  AheadReferences& operator=(const AheadReferences&) = delete;

  MemoryPool& Pool() { return pool_; }
  void StartBatch(RecordBatch& batch) { batch_ = &batch; }

  // Null: of a class that is not admitted, or of no record.
  IFC::IfcEntity* Find(std::uint32_t number, const ClassTest& admitted) {
    IFC::IfcEntity* const entity = known_.Find(number);
    if (entity != nullptr) return answers_.Admits(admitted, *entity) ? entity : nullptr;
    if (knowsAll_) return nullptr;
    batch_->numbers.push_back(number);
    return RecordBatch::Pending(batch_->numbers.size() - 1);
  }
  bool Admits(const ClassTest& admitted, const IFC::IfcEntity* entity) {
    return entity != nullptr && answers_.Admits(admitted, *entity);
  }

  // `value` is pending. `present`, when there is one, tells whether the attribute has a value.
  void BindLater(IFC::IfcEntity*& value, const ClassTest& admitted, bool* present = nullptr) {
    const std::uint32_t index = RecordBatch::IndexOf(value);
    batch_->places.push_back({&admitted, &value, nullptr, present, index});
  }
  // Some members of `list` may be pending.
  void BindLater(EntityList& list, const ClassTest& admitted) {
    for (const IFC::IfcEntity* const member : list) {
      if (!RecordBatch::IsPending(member)) continue;
      const std::uint32_t index = RecordBatch::IndexOf(member);
      batch_->places.push_back({&admitted, nullptr, &list, nullptr, index});
      return;
    }
  }

  // Puts the targets of a batch where its references are pending; those that are null or not
  // admitted go. Records that have no targets are left as they are.
  void Bind(RecordBatch& batch);

 private:
  MemoryPool& pool_;
  const NumberTable& known_;
  bool knowsAll_;
  RecordBatch* batch_ = nullptr;
  ClassAnswers answers_;
};

}  // namespace corvel
