#include "merge/federation/units/object_copies.h"

#include <string>

#include "core/text.h"
#include "schema/attributes.h"
#include "step/reader/parser.h"

namespace corvel {

namespace {

std::string FactoryName(const IFC::IfcEntity& entity) {
  std::string name = FindFacts(entity)->name;
  for (char& letter : name) {
    if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
  }
  return name;
}

class Copying {
 public:
  explicit Copying(IfcDocument& document)
      : document_(document), pool_(document.mainContainer->Pool()) {}

  void CopyValues(const IFC::IfcEntity& from, IFC::IfcEntity& to) {
    const ConstAttributes originals = AttributesOf(from);
    auto original = originals.begin();
    for (const Attribute attribute : AttributesOf(to)) {
      (*original++).Visit([&](const auto& value) { attribute.Set(Own(value)); });
    }
  }

 private:
  template <class T>
  T Own(const T& value) {
    return value;
  }
  IFC::IfcEntity* Own(IFC::IfcEntity* const& reference) {
    const bool isValue = reference != nullptr && reference->inlineValue;
    return isValue ? CopyOfValue(*reference) : reference;
  }
  template <class T>
  List<T> Own(const List<T>& list) {
    List<T> copy = list.Clone(pool_);
    for (T& item : copy) item = Own(item);
    return copy;
  }

  // A carried text is shared: nobody changes it.
  IFC::IfcEntity* CopyOfValue(IFC::IfcEntity& value) {
    if (value.carries || FindFacts(value) == nullptr) return &value;
    const EntityCreator create = document_.GetParser().factories->Find(FactoryName(value));
    if (create == nullptr) return &value;
    IFC::IfcEntity* const copy = create(pool_);
    copy->inlineValue = true;
    CopyValues(value, *copy);
    return copy;
  }

  IfcDocument& document_;
  MemoryPool& pool_;
};

}  // namespace

IFC::IfcEntity* CopyObject(const IFC::IfcEntity& original, IfcDocument& document) {
  if (FindFacts(original) == nullptr) return nullptr;
  const std::string name = FactoryName(original);
  if (document.GetParser().factories->Find(name) == nullptr) return nullptr;
  IFC::IfcEntity* const copy = document.CreateESet(name);
  if (copy != nullptr) Copying(document).CopyValues(original, *copy);
  return copy;
}

}  // namespace corvel
