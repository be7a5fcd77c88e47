#include "host/tree_properties.h"

#include <map>

#include "host/diff/object_facts.h"
#include "host/diff/property_text.h"
#include "host/diff/value_text.h"
#include "host/hearing.h"
#include "merge/document.h"
#include "merge/federation/attribute_values.h"
#include "step/log/utilities.h"

namespace corvel::host {

namespace {

using diff::ComparedModel;
using Named = std::map<std::string, std::string>;

void AddSet(const ComparedModel& model, const IFC::IfcEntity& set, Named& named) {
  const std::string name = diff::NameOf(set);
  for (const IFC::IfcEntity* const property : diff::PropertiesIn(&set)) {
    named.try_emplace(name + "." + diff::NameOf(*property), diff::TextOfProperty(model, *property));
  }
}

}  // namespace

struct ModelProperties::Parts {
  explicit Parts(std::unique_ptr<IfcDocument> read)
      : document(std::move(read)),
        model(*document, words),
        values(model, tolerance),
        facts(model, values, tolerance) {}

  // Of the object at `index` and of its types.
  void Add(std::size_t index, Named& named) {
    for (const IFC::IfcEntity* const set : facts.PropertySetsOf(index)) AddSet(model, *set, named);
    for (const IFC::IfcEntity* const relation : model.RelationsOf(index)) {
      const IFC::IfcEntity* const type =
          isOfType.IsTrueOf(*relation) ? ReferenceOf(*relation, "RelatingType") : nullptr;
      if (type == nullptr || !ComparedModel::HasIdentity(*type)) continue;
      for (const IFC::IfcEntity* const set : facts.PropertySetsOf(ComparedModel::IndexOf(*type))) {
        AddSet(model, *set, named);
      }
    }
  }

  std::unique_ptr<IfcDocument> document;
  diff::ClassWords words;
  diff::Tolerance tolerance;
  ComparedModel model;
  diff::ValueDigests values;
  diff::ObjectFacts facts;
  ClassQuestion isOfType{"IfcRelDefinesByType"};
};

ModelProperties::ModelProperties() = default;
ModelProperties::~ModelProperties() = default;

std::unique_ptr<ModelProperties> ModelProperties::Read(const WideString& path, bool tolerant,
                                                       const WideString& workFolder,
                                                       std::vector<WideString>& messages) {
  const Hearing hearing(messages);
  MemoryReportOutput() = nullptr;  // standard output is for the tree
  constexpr bool kIgnoreEnumErrors = true;
  auto document = std::make_unique<IfcDocument>(kIgnoreEnumErrors, Hear, nullptr);
  if (tolerant) document->ReadTolerantly();
  document->KeepWorkFileIn(workFolder);
  document->ReservePaths({path});
  constexpr int kOneFile = 1;
  if (document->OpenFile(path, kOneFile) == 0 || !document->IsParsed()) return nullptr;
  std::unique_ptr<ModelProperties> made(new ModelProperties);
  made->parts_ = std::make_unique<Parts>(std::move(document));
  return made;
}

ModelProperties::Properties ModelProperties::Of(std::uint32_t number) const {
  const IFC::IfcEntity* const object =
      parts_->document->mainContainer->GetEntityByOrginalNumber(number);
  Named named;
  if (object != nullptr && ComparedModel::HasIdentity(*object)) {
    parts_->Add(ComparedModel::IndexOf(*object), named);
  }
  return {named.begin(), named.end()};
}

}  // namespace corvel::host
