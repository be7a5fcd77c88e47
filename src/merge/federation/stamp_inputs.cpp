#include "merge/federation/stamp_inputs.h"

#include <algorithm>
#include <string>
#include <vector>

#include "core/entity_cast.h"
#include "core/guid.h"
#include "core/shown_paths.h"
#include "merge/federation/attribute_values.h"
#include "platform/file.h"
#include "schema/interfaces/product.h"

namespace corvel {

namespace {

class Stamp {
 public:
  explicit Stamp(FederatedModel& model) : model_(model) {}

  bool Put(std::size_t input, Ticker& ticker, std::size_t& stamped) {
    std::vector<IFC::IfcEntity*> products;
    const auto isProduct = [](const ClassFacts* facts) { return IsOrIsBelow(facts, "IfcProduct"); };
    const bool goesOn =
        model_.ForEachRootWithSurvivorsOf(input, ticker, isProduct, [&](IFC::IfcEntity& entity) {
          if (EntityCast<IFC::VirtualIfcProduct>(&entity) != nullptr) products.push_back(&entity);
        });
    if (!goesOn) return false;
    if (products.empty()) return true;
    // By number, each once: several of one input may have given way to the same.
    const auto byNumber = [](const IFC::IfcEntity* one, const IFC::IfcEntity* other) {
      return one->marker < other->marker;
    };
    std::sort(products.begin(), products.end(), byNumber);
    products.erase(std::unique(products.begin(), products.end()), products.end());
    if (!MakeGroup(input, products)) return false;
    ++stamped;
    return true;
  }

 private:
  bool MakeGroup(std::size_t input, const std::vector<IFC::IfcEntity*>& products) {
    IFC::IfcEntity* const group = MakeRoot("IfcGroup", input, NameOf(input));
    IFC::IfcEntity* const relation = MakeRoot("IfcRelAssignsToGroup", input, {});
    if (group == nullptr || relation == nullptr) return false;
    EntityList members;
    members.Assign(products, model_.Container().Pool());
    return SetAttribute(*relation, "RelatedObjects", members) &&
           SetAttribute(*relation, "RelatingGroup", group);
  }

  // Null (reported) when there is no number left.
  IFC::IfcEntity* MakeRoot(const char* className, std::size_t input, const WideString& name) {
    IFC::IfcEntity* const made = model_.MakeRoot(className);
    if (made == nullptr) return nullptr;
    MemoryPool& pool = model_.Container().Pool();
    const std::string guid = DeriveGuid(className + ToUtf8(NameOf(input)), input);
    SetAttribute<const char*>(*made, "GlobalId", pool.InternNarrow(guid));
    if (IFC::IfcEntity* const history = OwnerHistoryOf(input)) {
      SetAttribute(*made, "OwnerHistory", history);
    }
    if (!name.empty()) SetAttribute(*made, "Name", pool.InternText(name));
    return made;
  }

  WideString NameOf(std::size_t input) const {
    return ShownFileName(model_.Document(input).getFilePath());
  }

  // That of the first project where the input's own did not come along.
  IFC::IfcEntity* OwnerHistoryOf(std::size_t input) const {
    for (const IFC::IfcEntity* const project :
         {model_.Document(input).getIfcProject(), model_.Project()}) {
      if (project == nullptr) continue;
      if (auto* const history = model_.InModel(ReferenceOf(*project, "OwnerHistory"))) {
        return history;
      }
    }
    return nullptr;
  }

  FederatedModel& model_;
};

}  // namespace

bool StampInputs(FederatedModel& model, Ticker& ticker, std::size_t& stamped) {
  Stamp stamp(model);
  for (std::size_t input = 0; input < model.InputCount(); ++input) {
    if (!stamp.Put(input, ticker, stamped)) return false;
  }
  return true;
}

}  // namespace corvel
