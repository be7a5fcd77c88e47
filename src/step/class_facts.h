// What the classes of a release are: their attributes in order, with name, type and place in the
// object.
//
// All of this is constants, one set per release, generated from the same facts as the classes.
// Nothing is allocated, registered or changed at run time, so that addresses last as long as the
// program: a table from `const TypeFacts*` or `const AttributeFacts*` to whatever a caller works
// out (a factor, a column) may be filled once and asked millions of times. The same class of two
// releases has two records; names are what compares across releases.
//
// The values of an object are reached through schema/attributes.h. Here is what can be said without
// an object, also to the reader, which stands below the schemas.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <typeinfo>

#include "core/entity_cast.h"
#include "step/enum_table.h"

namespace corvel {

// What stands inside all lists of an attribute. Next to each kind the type in which the object
// holds it; List<T> (core/list.h) goes around it once or twice for AttributeFacts::depth 1 or 2.
enum class ValueKind : std::uint8_t {
  kReference,    // IFC::IfcEntity*: to an entity
  kSelect,       // IFC::IfcEntity*: to an entity or to a typed value that stands in the record
  kReal,         // double
  kNumber,       // double, written with six significant digits; never in a list
  kInteger,      // std::int32_t
  kBinary,       // std::int32_t
  kText,         // ModelText (core/model_text.h), in the pool of the model
  kGuid,         // const char*: NUL-ended, in that pool; never in a list
  kBoolean,      // std::int32_t: 0 true, 1 false
  kLogical,      // std::int32_t: 0 true, 1 false, 2 unknown
  kEnumeration,  // std::int32_t: a number of the table that Values() gives
};

// True of kReference and kSelect, which are held alike.
constexpr bool Refers(ValueKind kind) { return kind <= ValueKind::kSelect; }

// One list around a value, as the schema declares it. Reading does not enforce the bounds.
struct Aggregate {
  enum class Kind : std::uint8_t { kNone, kList, kSet, kArray, kBag };
  static constexpr std::uint8_t kUnbounded = std::numeric_limits<std::uint8_t>::max();

  Kind kind = Kind::kNone;
  std::uint8_t low = 0;  // fewest members; of an array the first index
  std::uint8_t high = kUnbounded;

  bool IsNone() const { return kind == Kind::kNone; }
};

// A type that attributes are declared of: an entity, a select, an enumeration, a defined type or a
// simple one ("REAL").
//
// A defined type leads to what it is made of: IfcPositiveLengthMeasure to IfcLengthMeasure to REAL,
// IfcCompoundPlaneAngleMeasure through `aggregate` to INTEGER. Every other type ends its chain.
struct TypeFacts {
  const char* name = nullptr;
  const TypeFacts* base = nullptr;    // null at the end of the chain
  Aggregate aggregate = {};           // the list that a defined type is of its base
  const EnumTable* values = nullptr;  // of enumerations, BOOLEAN and LOGICAL
  ClassTest* admitted = nullptr;      // of entities and selects: who may stand there

  // The last type of the chain: "REAL" of each length measure.
  const TypeFacts& Root() const;
  // Whether the type has this name or one of those that it is made of has. A chain has four links
  // at most; remember the answer by address where it is asked for each object.
  bool IsOrIsMadeOf(std::string_view typeName) const;
};

// One explicit attribute of a class, or the value of a typed value, which is called "value" and has
// the type after which its class is called. Inverse and derived attributes have none; an attribute
// that a subtype declares anew as derived stays the supertype's, as it does in files.
struct AttributeFacts {
  const char* name = nullptr;
  const TypeFacts* type = nullptr;  // inside `aggregates`
  // Lists that the attribute puts around its type, the outermost first; kNone behind the last.
  Aggregate aggregates[2] = {};
  ValueKind kind = ValueKind::kReference;
  std::uint8_t depth = 0;  // lists around the scalars: those above, and that of a defined type
  // From the beginning of the whole object: the member, and its flag; 0 when it is mandatory.
  std::uint16_t offset = 0;
  std::uint16_t flagOffset = 0;

  bool IsOptional() const { return flagOffset != 0; }
  // The texts of an enumeration, boolean or logical; null for all other kinds.
  const EnumTable* Values() const { return type->Root().values; }
  // Whether a reference may lead to `entity`. False for null, and for kinds that do not refer.
  bool Admits(const IFC::IfcEntity* entity) const;
  // As a schema declares it: "OPTIONAL LIST [1:?] OF IfcLengthMeasure". Bounds that the schema
  // leaves out are those that it means, [0:?].
  std::string Declaration() const;
};

// A class of one release: an entity, abstract ones too, or a typed value.
struct ClassFacts {
  const char* name = nullptr;             // "IfcWall"
  const std::type_info* type = nullptr;   // of its objects
  const ClassFacts* supertype = nullptr;  // null: the topmost
  const AttributeFacts* own = nullptr;    // those that the class itself declares
  std::uint16_t ownCount = 0;
  std::uint16_t inheritedCount = 0;  // of all supertypes together

  // Attributes of its records, inherited ones first.
  std::size_t AttributeCount() const { return std::size_t{inheritedCount} + ownCount; }
  // In the order of the record; `index` is below AttributeCount(). Walks up to the supertype that
  // declares it; whoever wants all in turn takes AttributesOf (schema/attributes.h).
  const AttributeFacts& Attribute(std::size_t index) const;
  // Null when the class has none of that name. Compares the names one by one.
  const AttributeFacts* FindAttribute(std::string_view attributeName) const;
};

// The classes of one release, by name in upper case.
struct ReleaseClasses {
  std::span<const ClassFacts> classes;

  // "IfcWall" or, as files have it, "IFCWALL". Null: no such class. Takes ten comparisons or so.
  const ClassFacts* Find(std::string_view className) const;
};

}  // namespace corvel
