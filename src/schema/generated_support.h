// What the generated classes call beside the readers and the writer: the steps of an optional
// attribute, and the walk over references.
//
// These are functions of the library, not inline ones: nine releases call each of them thousands of
// times, and a call with two addresses is a fifth of the code that it stands for.
#pragma once

#include <cstdint>

#include "core/child_queue.h"
#include "core/entity.h"
#include "core/list.h"
#include "core/memory_pool.h"
#include "step/enum_table.h"
#include "step/reader/attribute_reader.h"
#include "step/writer/step_writer.h"

namespace corvel {

// --- Optional attributes, read -------------------------------------------------------------------
// Absent (`$`, `*` or a record that ends early): `present` false and the value its default.
// Otherwise `present` is true, save for a reference that comes back null (a number that is not
// filed yet, a class that is not admitted): that one counts as absent.
void ReadOptionalEntityRef(Parser& parser, ClassTest& admitted, IFC::IfcEntity*& value,
                           bool& present);
void ReadOptionalReal(Parser& parser, double& value, bool& present);
void ReadOptionalInteger(Parser& parser, std::int32_t& value, bool& present);
void ReadOptionalBinary(Parser& parser, std::int32_t& value, bool& present);
void ReadOptionalString(Parser& parser, ModelText& value, bool& present);
void ReadOptionalBoolean(Parser& parser, std::int32_t& value, bool& present);
void ReadOptionalLogical(Parser& parser, std::int32_t& value, bool& present);
void ReadOptionalEnum(Parser& parser, const EnumTable& table, std::int32_t& value, bool& present);

void ReadOptionalEntityRefList(Parser& parser, ClassTest& admitted, EntityList& list,
                               bool& present);
void ReadOptionalEntityRefLists(Parser& parser, ClassTest& admitted, List<EntityList>& lists,
                                bool& present);
void ReadOptionalRealList(Parser& parser, List<double>& list, bool& present);
void ReadOptionalIntegerList(Parser& parser, List<std::int32_t>& list, bool& present);
void ReadOptionalBinaryList(Parser& parser, List<std::int32_t>& list, bool& present);
void ReadOptionalStringList(Parser& parser, List<ModelText>& list, bool& present);
void ReadOptionalBooleanList(Parser& parser, List<std::int32_t>& list, bool& present);
void ReadOptionalLogicalList(Parser& parser, List<std::int32_t>& list, bool& present);
void ReadOptionalEnumList(Parser& parser, const EnumTable& table, List<std::int32_t>& list,
                          bool& present);
void ReadOptionalRealLists(Parser& parser, List<List<double>>& lists, bool& present);
void ReadOptionalIntegerLists(Parser& parser, List<List<std::int32_t>>& lists, bool& present);

// --- Optional attributes, written ----------------------------------------------------------------
// `$,` when not present.
void WriteOptionalEntityRef(StepWriter& writer, const IFC::IfcEntity* value, bool present);
void WriteOptionalReal(StepWriter& writer, double value, bool present);
void WriteOptionalCount(StepWriter& writer, double value, bool present);
void WriteOptionalInteger(StepWriter& writer, std::int32_t value, bool present);
void WriteOptionalBinaryValue(StepWriter& writer, std::int32_t value, bool present);
void WriteOptionalText(StepWriter& writer, ModelText value, bool present);
void WriteOptionalBoolean(StepWriter& writer, std::int32_t value, bool present);
void WriteOptionalLogical(StepWriter& writer, std::int32_t value, bool present);
void WriteOptionalEnum(StepWriter& writer, const EnumTable& table, std::int32_t value,
                       bool present);

void WriteOptionalEntityRefList(StepWriter& writer, const EntityList& list, bool present);
void WriteOptionalEntityRefLists(StepWriter& writer, const List<EntityList>& lists, bool present);
void WriteOptionalRealList(StepWriter& writer, const List<double>& list, bool present);
void WriteOptionalIntegerList(StepWriter& writer, const List<std::int32_t>& list, bool present);
void WriteOptionalBinaryList(StepWriter& writer, const List<std::int32_t>& list, bool present);
void WriteOptionalStringList(StepWriter& writer, const List<ModelText>& list, bool present);
void WriteOptionalBooleanList(StepWriter& writer, const List<std::int32_t>& list, bool present);
void WriteOptionalLogicalList(StepWriter& writer, const List<std::int32_t>& list, bool present);
void WriteOptionalEnumList(StepWriter& writer, const EnumTable& table,
                           const List<std::int32_t>& list, bool present);
void WriteOptionalRealLists(StepWriter& writer, const List<List<double>>& lists, bool present);
void WriteOptionalIntegerLists(StepWriter& writer, const List<List<std::int32_t>>& lists,
                               bool present);

// --- References, walked --------------------------------------------------------------------------
// A mandatory reference cannot be lost, and is skipped when null. An optional one that is present
// is a child even when null. Members of lists can always be lost.
void CollectReference(IFC::ChildQueue& queue, IFC::IfcEntity* value);
void CollectOptionalReference(IFC::ChildQueue& queue, IFC::IfcEntity* value, bool present);
void CollectList(IFC::ChildQueue& queue, const EntityList& list);
void CollectOptionalList(IFC::ChildQueue& queue, const EntityList& list, bool present);
void CollectLists(IFC::ChildQueue& queue, const List<EntityList>& lists);
void CollectOptionalLists(IFC::ChildQueue& queue, const List<EntityList>& lists, bool present);

// The same where a value may stand that refers to entities: these are children too.
void CollectReferenceThroughValues(IFC::ChildQueue& queue, IFC::IfcEntity* value);
void CollectOptionalReferenceThroughValues(IFC::ChildQueue& queue, IFC::IfcEntity* value,
                                           bool present);
void CollectListThroughValues(IFC::ChildQueue& queue, const EntityList& list);
void CollectOptionalListThroughValues(IFC::ChildQueue& queue, const EntityList& list, bool present);

// True when no member is left that is not marked as deleted, and of an empty list.
bool NoneIsLive(const EntityList& list);

}  // namespace corvel
