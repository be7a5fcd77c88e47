// Finds the objects that say the same, from the bottom up.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "merge/federation/equal_table.h"
#include "merge/federation/federated_model.h"
#include "merge/federation/identity_text.h"
#include "merge/federation/sharing_graph.h"

namespace corvel {

// One pass over the candidates of a model: each gets the marker of the first one that is equal to
// it, which is written as it is, references by the markers that they have got. What is found is no
// change of the model yet: the markers of objects are the numbers of others meanwhile.
//
// An object has its turn behind all that it refers to, and a stack of its own keeps the way: what
// refers to itself over others stays by itself. Linear in the records.
class EqualObjects {
 public:
  // Borrowed. `numbers`: reals are equal when they are written alike.
  EqualObjects(FederatedModel& model, SharingGraph& graph, NumberForm numbers);

  // Once. False: the user cancelled.
  bool Find(Ticker& ticker);

 private:
  void TakeTurn(IFC::IfcEntity& entity);
  bool PushWhatComesFirst(IFC::IfcEntity& entity);
  void PushReferred(IFC::IfcEntity& holder, const AttributeFacts& facts);
  void PushBehindDescriptions(const IFC::IfcEntity& entity);
  void Meet(IFC::IfcEntity& holder, IFC::IfcEntity& referred);
  bool WaitsForNothing(const IFC::IfcEntity& entity);
  void AlignDescriptions(const IFC::IfcEntity& entity);
  void AlignGone(IFC::IfcEntity& holder);
  void Conclude(IFC::IfcEntity& entity);

  FederatedModel& model_;
  SharingGraph& graph_;
  const SharingMarks& marks_;
  IdentityText text_;
  IdentityText textOfOther_;
  EqualTable table_;
  std::vector<IFC::IfcEntity*> stack_;
};

}  // namespace corvel
