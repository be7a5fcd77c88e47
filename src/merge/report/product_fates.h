// What becomes of the products of one model on the way from its file to the result.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/main_container.h"
#include "merge/marking_steps.h"
#include "merge/report/run_report.h"
#include "merge/report/shared/model_places.h"

namespace corvel {

// Borrows the objects of the model. The tallies and DropRest do without them.
class ProductFates {
 public:
  // All are kept at first. For the thread of the run, before anything has been marked.
  void Collect(const IFC::MainContainer& container);
  void NoteLeftOut(const std::vector<LeftOutObject>& objects);
  // Those that are deleted by now, and had not been before.
  void NoteMarked(MarkingStep step);
  // Those that are not in the folded model any more. `reason`: of those that were deleted; what was
  // not is joined with something.
  void NoteGone(const IFC::MainContainer& folded, DropReason reason);
  // All that is kept so far.
  void DropRest(DropReason reason);
  // All are kept again.
  void Forget();

  ProductTally Tally() const;
  std::vector<ClassTally> TallyByClass() const;
  std::vector<PlacedProduct> Placed() const;

 private:
  struct Product {
    IFC::IfcEntity* entity = nullptr;
    const char16_t* className = nullptr;  // of the program: outlives the model
    std::uint32_t number = 0;             // in its file
    std::optional<DropReason> dropped;
  };

  std::vector<Product> products_;
  std::unordered_map<std::uint32_t, LeftOutReason> leftOut_;
};

}  // namespace corvel
