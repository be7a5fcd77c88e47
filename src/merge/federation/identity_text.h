// What an object says, as text: two that are written alike are the same.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "merge/federation/federated_model.h"
#include "merge/federation/sharing_graph.h"
#include "step/numbers/number_form.h"
#include "step/streams/outpout_text_stream.h"
#include "step/writer/step_writer.h"

namespace corvel {

// The record of an object without its number, and what is said by the relations that only point at
// it.
class IdentityText {
 public:
  // Borrowed.
  IdentityText(FederatedModel& model, SharingGraph& graph, NumberForm numbers)
      : model_(model), graph_(graph), writer_(stream_, numbers) {}

  // Void after the next call. References are as the markers of what they lead to.
  std::string_view Of(IFC::IfcEntity& entity);
  // Whether the relation counts by what it says, not as the object that it is: then it becomes one
  // with its like when what they describe does.
  bool CountsByValue(IFC::IfcEntity& describing, const IFC::IfcEntity& described);

 private:
  void AddDescriptions(IFC::IfcEntity& entity);
  bool DescribesOne(const IFC::IfcEntity& describing);
  std::string TextOfDescription(IFC::IfcEntity& describing, IFC::IfcEntity& described);

  FederatedModel& model_;
  SharingGraph& graph_;
  FileStream::OutpoutTextStream stream_;
  StepWriter writer_;
};

}  // namespace corvel
