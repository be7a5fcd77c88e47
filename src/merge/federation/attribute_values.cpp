#include "merge/federation/attribute_values.h"

namespace corvel {

namespace {

// The attribute as T, null where there is none. For objects without facts too.
template <class T>
const T* ValueOf(const IFC::IfcEntity& entity, std::string_view attribute) {
  if (FindFacts(entity) == nullptr) return nullptr;
  const auto found = AttributesOf(entity).Find(attribute);
  return found ? found->template As<T>() : nullptr;
}

}  // namespace

WideString TextOf(const IFC::IfcEntity& entity, std::string_view attribute) {
  const auto* const text = ValueOf<ModelText>(entity, attribute);
  return text == nullptr ? WideString() : text->ToWide();
}

std::string_view WordOf(const IFC::IfcEntity& entity, std::string_view attribute) {
  if (FindFacts(entity) == nullptr) return {};
  const auto found = AttributesOf(entity).Find(attribute);
  return found ? found->EnumerationName() : std::string_view();
}

IFC::IfcEntity* ReferenceOf(const IFC::IfcEntity& entity, std::string_view attribute) {
  auto* const* const reference = ValueOf<IFC::IfcEntity*>(entity, attribute);
  return reference == nullptr ? nullptr : *reference;
}

const EntityList* ReferencesOf(const IFC::IfcEntity& entity, std::string_view attribute) {
  return ValueOf<EntityList>(entity, attribute);
}

const List<double>* RealsOf(const IFC::IfcEntity& entity, std::string_view attribute) {
  return ValueOf<List<double>>(entity, attribute);
}

double RealOf(const IFC::IfcEntity& entity, std::string_view attribute) {
  const auto* const value = ValueOf<double>(entity, attribute);
  return value == nullptr ? 0.0 : *value;
}

std::int32_t IntegerOf(const IFC::IfcEntity& entity, std::string_view attribute) {
  const auto* const value = ValueOf<std::int32_t>(entity, attribute);
  return value == nullptr ? 0 : *value;
}

WideString DisplayName(const IFC::IfcEntity& entity) {
  const WideString name = TextOf(entity, "Name");
  WideString text = entity.getClassName();
  if (!name.empty()) text += u" '" + name + u"'";
  return text + u" (#" + ToWide(entity.marker) + u")";
}

bool AppendReference(IFC::IfcEntity& entity, std::string_view attribute, IFC::IfcEntity& member,
                     MemoryPool& pool) {
  if (FindFacts(entity) == nullptr) return false;
  const auto found = AttributesOf(entity).Find(attribute);
  if (!found || !found->Facts().Admits(&member)) return false;
  if (auto* const list = found->As<EntityList>()) {
    list->Append(&member, pool);
    return true;
  }
  EntityList list;
  list.Append(&member, pool);
  return found->Set(list);
}

}  // namespace corvel
