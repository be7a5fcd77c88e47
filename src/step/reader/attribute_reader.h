// The readers behind every generated `read`: one per kind of value, shared by all releases.
//
// Each turns the tokens of one attribute into a value. "Absent" is `$`, `*`, or a record that ends
// early. Once the parser has stopped (failed or cancelled) every reader returns at once without
// taking a token, so that a running chain of reads drains by itself. A wrong token is reported, the
// user is asked whether to go on, and a token that closes something (")" or ";") or the end of the
// input stays in place.
#pragma once

#include <cstdint>

#include "core/entity_cast.h"
#include "core/list.h"
#include "step/enum_table.h"

namespace corvel {

class Parser;

// True when the next attribute has no value: `$` or `*` (taken), or ")" (left in place: a record
// with too few arguments reads as if the rest were absent). False when the parser has stopped.
bool IsAbsent(Parser& parser);
// True at ")" (left in place), at ";" and at the end of the input, and when the parser has stopped.
bool IsListEnd(Parser& parser);

// --- Scalars -----------------------------------------------------------------------------------
double ReadReal(Parser& parser);           // absent: 0.0
std::int32_t ReadInteger(Parser& parser);  // absent: 0; saturates to 32 bits
std::int32_t ReadBinary(Parser& parser);   // absent: 0; takes integer tokens only
ModelText ReadString(Parser& parser);      // interned; absent: the empty text
const char* ReadGuid(Parser& parser);      // interned; absent: the empty text
// The next three have no absent form: `$` is a wrong token for them.
std::int32_t ReadBoolean(Parser& parser);  // 0 true, 1 false; 1 on a wrong token
std::int32_t ReadLogical(Parser& parser);  // 0 true, 1 false, 2 unknown; 2 on a wrong token
std::int32_t ReadEnum(Parser& parser, const EnumTable& table);  // a wrong token: the last row
// A mandatory IfcBoolean or IfcLogical held by value: absent gives false, unknown.
std::int32_t ReadBooleanValue(Parser& parser);
std::int32_t ReadLogicalValue(Parser& parser);

// --- References and selects ----------------------------------------------------------------------
// `#12`, or a typed value such as IFCLABEL('x') that becomes an object of its own. Null: absent, a
// number that is not filed (yet), a class that `admitted` does not admit, or an error (reported).
// `value` is where the attribute stands, and where a parser that reads ahead binds it later.
void ReadEntityRef(Parser& parser, ClassTest& admitted, IFC::IfcEntity*& value);
// For parsers that do not read ahead.
IFC::IfcEntity* ReadEntityRef(Parser& parser, ClassTest& admitted);
// Members that come back null are left out. The list replaces what `list` held.
void ReadEntityRefList(Parser& parser, ClassTest& admitted, EntityList& list);
void ReadEntityRefLists(Parser& parser, ClassTest& admitted, List<EntityList>& lists);

// --- Aggregates of values ------------------------------------------------------------------------
// An absent list is empty. A first token that is no "(" is a wrong token and stays in place. A `$`
// inside a list is the element's default and stays as an element.
void ReadRealList(Parser& parser, List<double>& list);
void ReadIntegerList(Parser& parser, List<std::int32_t>& list);
void ReadBinaryList(Parser& parser, List<std::int32_t>& list);
void ReadStringList(Parser& parser, List<ModelText>& list);
void ReadBooleanList(Parser& parser, List<std::int32_t>& list);
void ReadLogicalList(Parser& parser, List<std::int32_t>& list);
void ReadEnumList(Parser& parser, const EnumTable& table, List<std::int32_t>& list);
void ReadRealLists(Parser& parser, List<List<double>>& lists);
void ReadIntegerLists(Parser& parser, List<List<std::int32_t>>& lists);

}  // namespace corvel
