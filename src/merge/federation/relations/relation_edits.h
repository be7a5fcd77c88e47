// Members that leave relations, all at once, and relations that go for want of them.
#pragma once

#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "merge/federation/federated_model.h"
#include "merge/federation/mend_relations.h"
#include "schema/attributes.h"

namespace corvel {

// Members are told as the relation refers to them, whether they gave way or not.
class RelationEdits {
 public:
  using Members = std::unordered_set<const IFC::IfcEntity*>;

  RelationEdits(FederatedModel& model, MendedRelations& mended) : model_(model), mended_(mended) {}

  // Takes the members out of the attribute, a list or one reference. The relation goes when it
  // cannot be without them. True: it is still there.
  bool Leave(IFC::IfcEntity& relation, const AttributeFacts& attribute, const Members& members);
  // The same by the name of a list.
  bool Leave(IFC::IfcEntity& relation, std::string_view attribute, const Members& members);
  void Delete(IFC::IfcEntity& entity);

  // In the order in which they went.
  const std::vector<IFC::IfcEntity*>& Deleted() const { return mended_.deleted; }

 private:
  FederatedModel& model_;
  MendedRelations& mended_;
};

}  // namespace corvel
