#include "schema/generated_support.h"

#include <algorithm>

#include "step/reader/parser.h"

namespace corvel {

namespace {

// !IsAbsent: mostly a look is enough.
bool IsPresent(Parser& parser) {
  if (parser.StandsAtValue()) return true;
  if (!parser.IsStopped() && parser.scanner->TakeSign('$')) return false;
  return !IsAbsent(parser);
}

// A list that is absent is emptied: `read` replaces whatever an earlier pass left.
template <class Item, class ReadList>
void ReadOptionalList(Parser& parser, List<Item>& list, bool& present, ReadList readList) {
  present = IsPresent(parser);
  if (present) {
    readList();
  } else {
    list.Clear();
  }
}

template <class Write>
void WriteOptional(StepWriter& writer, bool present, Write write) {
  if (present) {
    write();
  } else {
    writer.WriteAbsent();
  }
}

// An entity has a turn of its own in every walk; a value that stands in the record has none.
void CollectReferencesOfValue(IFC::ChildQueue& queue, const IFC::IfcEntity* value) {
  if (value != nullptr && value->inlineValue) value->collectChildren(queue);
}

}  // namespace

// --- Optional attributes, read -------------------------------------------------------------------

void ReadOptionalEntityRef(Parser& parser, ClassTest& admitted, IFC::IfcEntity*& value,
                           bool& present) {
  value = IsPresent(parser) ? ReadEntityRef(parser, admitted) : nullptr;
  present = value != nullptr;
  if (RecordBatch::IsPending(value)) parser.ahead->BindLater(value, admitted, &present);
}

void ReadOptionalReal(Parser& parser, double& value, bool& present) {
  present = IsPresent(parser);
  value = present ? ReadReal(parser) : 0.0;
}

void ReadOptionalInteger(Parser& parser, std::int32_t& value, bool& present) {
  present = IsPresent(parser);
  value = present ? ReadInteger(parser) : 0;
}

void ReadOptionalBinary(Parser& parser, std::int32_t& value, bool& present) {
  present = IsPresent(parser);
  value = present ? ReadBinary(parser) : 0;
}

void ReadOptionalString(Parser& parser, ModelText& value, bool& present) {
  present = IsPresent(parser);
  value = present ? ReadString(parser) : kEmptyWide;
}

void ReadOptionalBoolean(Parser& parser, std::int32_t& value, bool& present) {
  present = IsPresent(parser);
  value = present ? ReadBoolean(parser) : kBooleanDataType.Fallback();
}

void ReadOptionalLogical(Parser& parser, std::int32_t& value, bool& present) {
  present = IsPresent(parser);
  value = present ? ReadLogical(parser) : kLogicalDataType.Fallback();
}

void ReadOptionalEnum(Parser& parser, const EnumTable& table, std::int32_t& value, bool& present) {
  present = IsPresent(parser);
  value = present ? ReadEnum(parser, table) : table.Fallback();
}

void ReadOptionalEntityRefList(Parser& parser, ClassTest& admitted, EntityList& list,
                               bool& present) {
  ReadOptionalList(parser, list, present, [&] { ReadEntityRefList(parser, admitted, list); });
}

void ReadOptionalEntityRefLists(Parser& parser, ClassTest& admitted, List<EntityList>& lists,
                                bool& present) {
  ReadOptionalList(parser, lists, present, [&] { ReadEntityRefLists(parser, admitted, lists); });
}

void ReadOptionalRealList(Parser& parser, List<double>& list, bool& present) {
  ReadOptionalList(parser, list, present, [&] { ReadRealList(parser, list); });
}

void ReadOptionalIntegerList(Parser& parser, List<std::int32_t>& list, bool& present) {
  ReadOptionalList(parser, list, present, [&] { ReadIntegerList(parser, list); });
}

void ReadOptionalBinaryList(Parser& parser, List<std::int32_t>& list, bool& present) {
  ReadOptionalList(parser, list, present, [&] { ReadBinaryList(parser, list); });
}

void ReadOptionalStringList(Parser& parser, List<ModelText>& list, bool& present) {
  ReadOptionalList(parser, list, present, [&] { ReadStringList(parser, list); });
}

void ReadOptionalBooleanList(Parser& parser, List<std::int32_t>& list, bool& present) {
  ReadOptionalList(parser, list, present, [&] { ReadBooleanList(parser, list); });
}

void ReadOptionalLogicalList(Parser& parser, List<std::int32_t>& list, bool& present) {
  ReadOptionalList(parser, list, present, [&] { ReadLogicalList(parser, list); });
}

void ReadOptionalEnumList(Parser& parser, const EnumTable& table, List<std::int32_t>& list,
                          bool& present) {
  ReadOptionalList(parser, list, present, [&] { ReadEnumList(parser, table, list); });
}

void ReadOptionalRealLists(Parser& parser, List<List<double>>& lists, bool& present) {
  ReadOptionalList(parser, lists, present, [&] { ReadRealLists(parser, lists); });
}

void ReadOptionalIntegerLists(Parser& parser, List<List<std::int32_t>>& lists, bool& present) {
  ReadOptionalList(parser, lists, present, [&] { ReadIntegerLists(parser, lists); });
}

// --- Optional attributes, written ----------------------------------------------------------------

void WriteOptionalEntityRef(StepWriter& writer, const IFC::IfcEntity* value, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteEntityRef(value); });
}

void WriteOptionalReal(StepWriter& writer, double value, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteReal(value); });
}

void WriteOptionalCount(StepWriter& writer, double value, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteCount(value); });
}

void WriteOptionalInteger(StepWriter& writer, std::int32_t value, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteInteger(value); });
}

void WriteOptionalBinaryValue(StepWriter& writer, std::int32_t value, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteBinaryValue(value); });
}

void WriteOptionalText(StepWriter& writer, ModelText value, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteText(value); });
}

void WriteOptionalBoolean(StepWriter& writer, std::int32_t value, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteBoolean(value); });
}

void WriteOptionalLogical(StepWriter& writer, std::int32_t value, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteLogical(value); });
}

void WriteOptionalEnum(StepWriter& writer, const EnumTable& table, std::int32_t value,
                       bool present) {
  WriteOptional(writer, present, [&] { writer.WriteEnum(table, value); });
}

void WriteOptionalEntityRefList(StepWriter& writer, const EntityList& list, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteEntityRefList(list); });
}

void WriteOptionalEntityRefLists(StepWriter& writer, const List<EntityList>& lists, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteEntityRefLists(lists); });
}

void WriteOptionalRealList(StepWriter& writer, const List<double>& list, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteRealList(list); });
}

void WriteOptionalIntegerList(StepWriter& writer, const List<std::int32_t>& list, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteIntegerList(list); });
}

void WriteOptionalBinaryList(StepWriter& writer, const List<std::int32_t>& list, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteBinaryList(list); });
}

void WriteOptionalStringList(StepWriter& writer, const List<ModelText>& list, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteStringList(list); });
}

void WriteOptionalBooleanList(StepWriter& writer, const List<std::int32_t>& list, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteBooleanList(list); });
}

void WriteOptionalLogicalList(StepWriter& writer, const List<std::int32_t>& list, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteLogicalList(list); });
}

void WriteOptionalEnumList(StepWriter& writer, const EnumTable& table,
                           const List<std::int32_t>& list, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteEnumList(table, list); });
}

void WriteOptionalRealLists(StepWriter& writer, const List<List<double>>& lists, bool present) {
  WriteOptional(writer, present, [&] { writer.WriteRealLists(lists); });
}

void WriteOptionalIntegerLists(StepWriter& writer, const List<List<std::int32_t>>& lists,
                               bool present) {
  WriteOptional(writer, present, [&] { writer.WriteIntegerLists(lists); });
}

// --- References, walked --------------------------------------------------------------------------

void CollectReference(IFC::ChildQueue& queue, IFC::IfcEntity* value) {
  if (value != nullptr) queue.Append(value, false);
}

void CollectOptionalReference(IFC::ChildQueue& queue, IFC::IfcEntity* value, bool present) {
  if (present) queue.Append(value, true);
}

void CollectList(IFC::ChildQueue& queue, const EntityList& list) {
  for (IFC::IfcEntity* const member : list) queue.Append(member, true);
}

void CollectOptionalList(IFC::ChildQueue& queue, const EntityList& list, bool present) {
  if (present) CollectList(queue, list);
}

void CollectLists(IFC::ChildQueue& queue, const List<EntityList>& lists) {
  for (const EntityList& list : lists) CollectList(queue, list);
}

void CollectOptionalLists(IFC::ChildQueue& queue, const List<EntityList>& lists, bool present) {
  if (present) CollectLists(queue, lists);
}

void CollectReferenceThroughValues(IFC::ChildQueue& queue, IFC::IfcEntity* value) {
  CollectReference(queue, value);
  CollectReferencesOfValue(queue, value);
}

void CollectOptionalReferenceThroughValues(IFC::ChildQueue& queue, IFC::IfcEntity* value,
                                           bool present) {
  CollectOptionalReference(queue, value, present);
  if (present) CollectReferencesOfValue(queue, value);
}

void CollectListThroughValues(IFC::ChildQueue& queue, const EntityList& list) {
  CollectList(queue, list);
  for (IFC::IfcEntity* const member : list) CollectReferencesOfValue(queue, member);
}

void CollectOptionalListThroughValues(IFC::ChildQueue& queue, const EntityList& list,
                                      bool present) {
  if (present) CollectListThroughValues(queue, list);
}

bool NoneIsLive(const EntityList& list) {
  return std::none_of(list.begin(), list.end(), [](const IFC::IfcEntity* member) {
    return member != nullptr && member->marker != IFC::kDeleted;
  });
}

}  // namespace corvel
