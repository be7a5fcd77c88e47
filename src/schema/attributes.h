// The door to the attributes of any object, without knowing its release or class.
//
//     for (const Attribute attribute : AttributesOf(object)) {
//       if (!attribute.Facts().type->IsOrIsMadeOf("IfcLengthMeasure")) continue;
//       attribute.ForEach<double>([&](double& length) { length *= factor; });
//     }
//
// Two attributes side by side, where Same is overloaded for what is held and for lists of it:
//
//     bool same = one.State() == other.State();
//     one.Visit([&](const auto& value) {
//       const auto* const there = other.As<std::remove_cvref_t<decltype(value)>>();
//       same = there != nullptr && Same(value, *there);
//     });
//
// Where both are the same attribute of two objects of one class, VisitWith does it in one step.
//
// What an attribute is (name, declared type, kind, optional or not) stands in step/class_facts.h;
// what it holds in one object is read and replaced here. Attributes come in the order of the
// record, inherited ones first. Inverse attributes are none: who refers to an object is told by its
// `parents` (core/entity.h).
//
// An object of a defined type, such as the IFCLABEL('x') behind a select, has one attribute called
// "value". Such typed values are objects of their own (`inlineValue`), and AttributesOf gives the
// reference to them; ForEachInRecord goes through them too.
//
// Ownership. An Attribute is a name of a place in an object: a few pointers, copied freely, good as
// long as the object. Texts, lists and objects that are put in belong to the pool of the model that
// the object is in, or to one that lives as long; nothing is copied. A list that is copied shares
// its storage (core/list.h). IFC::Prototype::clone shares too: the copy has the typed values of the
// original, and its lists except the one of members, so that what is rewritten in place in one of
// the two changes the other; what is put in by Set does not.
//
// What the model keeps beside its objects is not kept up: whoever redirects references tells
// `parents` about it, whoever replaces a GUID the table of GUIDs (core/main_container.h).
//
// Cost. AttributesOf looks the class up by its dynamic type, about 10 ns; a step and a look at the
// value are a few loads and branches, 3 ns together. The first object of a class costs a search by
// name in each release. One thread, as all of the engine.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <type_traits>
#include <vector>

#include "core/entity.h"
#include "core/list.h"
#include "step/class_facts.h"

namespace corvel {

class StepWriter;

// What stands in the place of an attribute, and what becomes of it in the file.
enum class AttributeState : std::uint8_t {
  kValue,  // a value. That a reference leads to a deleted object, or that a number has no text in
           // its enumeration, is a matter of the value: both are written as `$` all the same
  // An optional attribute without a value: `$`. Also any whose value does not fit, in models that
  // were read with tolerance: such a value is written as it stood until another is put in.
  kAbsent,
  // A reference that is not absent and leads nowhere: `*`. Such is an attribute that a subtype
  // derives, and a mandatory one whose file had `$`, a number of nothing or an object of a wrong
  // class: reading makes one of them all.
  kDerived,
};

namespace attribute_detail {

// The scalar inside all lists of a held type, and how many lists there are.
template <class T>
struct Held {
  using Scalar = T;
  static constexpr unsigned kDepth = 0;
};
template <class T>
struct Held<List<T>> {
  using Scalar = typename Held<T>::Scalar;
  static constexpr unsigned kDepth = 1 + Held<T>::kDepth;
};

template <class Scalar>
constexpr bool HoldsScalar(ValueKind kind) {
  if constexpr (std::is_same_v<Scalar, IFC::IfcEntity*>) {
    return Refers(kind);
  } else if constexpr (std::is_same_v<Scalar, double>) {
    return kind == ValueKind::kReal || kind == ValueKind::kNumber;
  } else if constexpr (std::is_same_v<Scalar, ModelText>) {
    return kind == ValueKind::kText;
  } else if constexpr (std::is_same_v<Scalar, const char*>) {
    return kind == ValueKind::kGuid;
  } else {
    static_assert(std::is_same_v<Scalar, std::int32_t>, "no attribute holds this type");
    return kind == ValueKind::kInteger || kind >= ValueKind::kBoolean || kind == ValueKind::kBinary;
  }
}

template <class T>
constexpr bool Holds(const AttributeFacts& facts) {
  return facts.depth == Held<T>::kDepth && HoldsScalar<typename Held<T>::Scalar>(facts.kind);
}

// Whether the attribute may have this value (see BasicAttribute::Set).
bool MayBe(const AttributeFacts& facts, double value);
bool MayBe(const AttributeFacts& facts, std::int32_t value);
bool MayBe(const AttributeFacts& facts, ModelText value);
bool MayBe(const AttributeFacts& facts, const char* value);
bool MayBe(const AttributeFacts& facts, IFC::IfcEntity* value);
template <class T>
bool MayBe(const AttributeFacts& facts, const List<T>& list) {
  for (const T& item : list) {
    if (!MayBe(facts, item)) return false;
  }
  return true;
}

template <class T, class Action>
void ForEachScalar(T& held, Action& action) {
  if constexpr (Held<std::remove_const_t<T>>::kDepth == 0) {
    action(held);
  } else {
    for (auto& item : held) ForEachScalar(item, action);
  }
}

template <class T, class Predicate>
std::size_t RemoveMembers(List<T>& list, Predicate& predicate) {
  if constexpr (Held<T>::kDepth == 0) {
    return list.RemoveIf(predicate);
  } else {
    std::size_t removed = 0;
    for (T& inner : list) removed += RemoveMembers(inner, predicate);
    return removed;
  }
}

// The member itself, whether it counts as a value or not.
template <class T, class Byte>
auto& At(Byte* object, const AttributeFacts& facts) {
  using Member = std::conditional_t<std::is_const_v<Byte>, const T, T>;
  return *reinterpret_cast<Member*>(object + facts.offset);
}

template <class Scalar, class Byte, class Visitor>
void VisitDepth(Byte* object, const AttributeFacts& facts, Visitor& visitor) {
  if (facts.depth == 0) {
    visitor(At<Scalar>(object, facts));
  } else if (facts.depth == 1) {
    visitor(At<List<Scalar>>(object, facts));
  } else {
    visitor(At<List<List<Scalar>>>(object, facts));
  }
}

template <class Byte, class Visitor>
void VisitMember(Byte* object, const AttributeFacts& facts, Visitor& visitor) {
  switch (facts.kind) {
    case ValueKind::kReference:
    case ValueKind::kSelect: return VisitDepth<IFC::IfcEntity*>(object, facts, visitor);
    case ValueKind::kReal:
    case ValueKind::kNumber: return VisitDepth<double>(object, facts, visitor);
    case ValueKind::kText: return VisitDepth<ModelText>(object, facts, visitor);
    case ValueKind::kGuid: return visitor(At<const char*>(object, facts));
    case ValueKind::kInteger:
    case ValueKind::kBinary:
    case ValueKind::kBoolean:
    case ValueKind::kLogical:
    case ValueKind::kEnumeration: return VisitDepth<std::int32_t>(object, facts, visitor);
  }
}

inline bool IsMarkedAbsent(const std::byte* object, const AttributeFacts& facts) {
  return facts.IsOptional() && !*reinterpret_cast<const bool*>(object + facts.flagOffset);
}

inline AttributeState StateOf(const std::byte* object, const AttributeFacts& facts) {
  if (IsMarkedAbsent(object, facts)) return AttributeState::kAbsent;
  const bool leadsNowhere =
      Refers(facts.kind) && facts.depth == 0 && At<IFC::IfcEntity*>(object, facts) == nullptr;
  return leadsNowhere ? AttributeState::kDerived : AttributeState::kValue;
}

// Of an object that carries something: whether that stands in the place of the attribute, or what a
// reference leads to is not admitted there.
bool IsMisfit(const IFC::IfcEntity& holder, const std::byte* object, const AttributeFacts& facts);
// The same, as it is written; false when nothing is carried.
bool WriteMisfit(const IFC::IfcEntity& holder, const AttributeFacts& facts, StepWriter& writer);
// Another value takes the place of what is carried.
void DropMisfit(const IFC::IfcEntity& holder, const AttributeFacts& facts);

bool Clear(std::byte* object, const AttributeFacts& facts);
void Write(const std::byte* object, const AttributeFacts& facts, StepWriter& writer);
std::string_view EnumerationName(const std::byte* object, const AttributeFacts& facts);

}  // namespace attribute_detail

// One attribute of one object. `Object` is IFC::IfcEntity, or const IFC::IfcEntity for reading
// only: then what is said below to be given as T is given as const T, and nothing can be replaced.
template <class Object>
class BasicAttribute {
  static constexpr bool kReadsOnly = std::is_const_v<Object>;
  using Byte = std::conditional_t<kReadsOnly, const std::byte, std::byte>;
  template <class T>
  using Given = std::conditional_t<kReadsOnly, const T, T>;

 public:
  // `facts` are of the class of `object` or of a supertype of it.
  BasicAttribute(Object& object, const AttributeFacts& facts)
      : BasicAttribute(BeginOf(object), facts, HolderOf(object)) {}

  const AttributeFacts& Facts() const { return *facts_; }
  std::string_view Name() const { return facts_->name; }
  AttributeState State() const {
    return IsMisfit() ? AttributeState::kAbsent : attribute_detail::StateOf(object_, *facts_);
  }
  bool HasValue() const { return State() == AttributeState::kValue; }

  // --- The value -------------------------------------------------------------------------------
  // The value in place, null when there is none or it is not held as T. The types are those at
  // ValueKind, in as many List<> as `depth` says: As<double>(), As<List<List<std::int32_t>>>().
  // A reference that is given is never null; members of lists are not either after reading.
  template <class T>
  Given<T>* As() const {
    const bool isHeld = attribute_detail::Holds<T>(*facts_) &&
                        !attribute_detail::IsMarkedAbsent(object_, *facts_) && !IsMisfit();
    if (!isHeld) return nullptr;
    Given<T>* const value = &Stored<T>();
    if constexpr (std::is_same_v<T, IFC::IfcEntity*>) {
      if (*value == nullptr) return nullptr;
    }
    return value;
  }

  // Calls `visitor` with the value as a reference to the type in which it is held, or not at all
  // when there is none. The visitor has to take each of the types at ValueKind, and lists of them.
  template <class Visitor>
  void Visit(Visitor&& visitor) const {
    if (HasValue()) attribute_detail::VisitMember(object_, *facts_, visitor);
  }
  // Likewise with the values of both; `other` is the same attribute, of an object of the same
  // class, and both have a value.
  template <class Visitor>
  void VisitWith(const BasicAttribute& other, Visitor&& visitor) const {
    assert(facts_ == other.facts_);
    const auto both = [&](auto& value) {
      using Value = std::remove_cvref_t<decltype(value)>;
      visitor(value, other.template Stored<Value>());
    };
    attribute_detail::VisitMember(object_, *facts_, both);
  }

  // Calls `action` with each scalar of type T in the attribute, through all its lists, in order:
  // T is IFC::IfcEntity*, double, std::int32_t, ModelText or const char*. Nothing happens
  // when the attribute has no value or holds others. Integers come with enumerations and the like:
  // Facts().kind tells them apart. What a reference leads to is not entered.
  template <class T, class Action>
  void ForEach(Action action) const;

  // "METRE" of an enumeration, "T", "F" or "U" of a boolean or logical: what compares across
  // releases, whose numbers differ. Empty for a list, another kind, no value, or a number without
  // a name.
  std::string_view EnumerationName() const {
    return attribute_detail::EnumerationName(object_, *facts_);
  }

  // The value as the object's own `write` puts it into the record, a comma behind it: `'name',`,
  // `$,`, `(1.,2.5E+00),`, `IFCLABEL('x'),`. References are numbers as they are filed now.
  void Write(StepWriter& writer) const {
    if (IsMisfit() && attribute_detail::WriteMisfit(*holder_, *facts_, writer)) return;
    attribute_detail::Write(object_, *facts_, writer);
  }

  // --- Replacing it ----------------------------------------------------------------------------
  // Each gives true when it was done; otherwise nothing has changed.

  // Puts a value in, also where there was none. False when the attribute holds another type than T,
  // and for what could not be read back: a reference, also in a list, that is null or not admitted
  // there; a number that the enumeration has not; a null text. Bounds of lists are not looked at.
  // T is exact: Set(3.0) for a real, Set(std::int32_t{3}) for an integer.
  template <class T>
  bool Set(T value) const;
  // By name, as EnumerationName gives it.
  bool SetEnumeration(std::string_view name) const;
  // Takes the value away. An optional attribute becomes absent, a mandatory reference derived;
  // false for every other, which cannot be without a value.
  bool Clear() const {
    static_assert(!kReadsOnly);
    if (!attribute_detail::Clear(object_, *facts_)) return false;
    DropMisfit();
    return true;
  }
  // Takes those references out of a list, or out of the lists in it, for which `predicate` is true,
  // and gives their number. The others keep their order. A list may end up empty and stays there:
  // IfcEntity::hasNoLiveMembers tells whether the object has lost its reason.
  template <class Predicate>
  std::size_t RemoveReferences(Predicate predicate) const;

 private:
  template <class OfObject>
  friend class BasicAttributes;

  BasicAttribute(Byte* object, const AttributeFacts& facts, const IFC::IfcEntity* holder)
      : object_(object), facts_(&facts), holder_(holder) {}
  static const IFC::IfcEntity* HolderOf(Object& object) {
    return object.carries ? &object : nullptr;
  }
  bool IsMisfit() const {
    return holder_ != nullptr && attribute_detail::IsMisfit(*holder_, object_, *facts_);
  }
  void DropMisfit() const {
    if (holder_ != nullptr) attribute_detail::DropMisfit(*holder_, *facts_);
  }
  // The whole object, of which IfcEntity is a part at some distance: offsets count from there.
  static Byte* BeginOf(Object& object) {
    return static_cast<Byte*>(
        dynamic_cast<std::conditional_t<kReadsOnly, const void, void>*>(&object));
  }
  template <class T>
  Given<T>& Stored() const {
    return attribute_detail::At<T>(object_, *facts_);
  }

  Byte* object_;
  const AttributeFacts* facts_;
  const IFC::IfcEntity* holder_;  // the object, if it carries something; null otherwise
};

using Attribute = BasicAttribute<IFC::IfcEntity>;
using ConstAttribute = BasicAttribute<const IFC::IfcEntity>;

// All attributes of one object, in the order of its record.
template <class Object>
class BasicAttributes {
 public:
  class Iterator {
   public:
    using difference_type = std::ptrdiff_t;
    using value_type = BasicAttribute<Object>;

    value_type operator*() const {
      assert(declaring_ != nullptr);  // not at the end
      return {object_, declaring_->own[next_], holder_};
    }
    Iterator& operator++() {
      ++next_;
      SkipFinished();
      return *this;
    }
    Iterator operator++(int) {
      Iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(std::default_sentinel_t /*end*/) const { return declaring_ == nullptr; }

   private:
    friend class BasicAttributes;
    explicit Iterator(const BasicAttributes& all)
        : object_(all.object_), holder_(all.holder_), facts_(all.facts_), declaring_(all.facts_) {
      while (declaring_->supertype != nullptr) declaring_ = declaring_->supertype;
      SkipFinished();
    }
    // On to the class below that has attributes of its own, if there is one.
    void SkipFinished() {
      while (next_ == declaring_->ownCount) {
        const ClassFacts* const finished = declaring_;
        declaring_ = finished == facts_ ? nullptr : facts_;
        if (declaring_ == nullptr) return;
        while (declaring_->supertype != finished) declaring_ = declaring_->supertype;
        next_ = 0;
      }
    }

    typename BasicAttribute<Object>::Byte* object_;
    const IFC::IfcEntity* holder_;
    const ClassFacts* facts_;      // of the object
    const ClassFacts* declaring_;  // of the supertype that it has come to; null at the end
    std::size_t next_ = 0;
  };

  // `facts` are those of the object's class.
  BasicAttributes(Object& object, const ClassFacts& facts)
      : object_(BasicAttribute<Object>::BeginOf(object)),
        holder_(BasicAttribute<Object>::HolderOf(object)),
        facts_(&facts) {}

  const ClassFacts& Facts() const { return *facts_; }
  std::size_t size() const { return facts_->AttributeCount(); }
  Iterator begin() const { return Iterator(*this); }
  std::default_sentinel_t end() const { return {}; }
  // `index` is below size().
  BasicAttribute<Object> operator[](std::size_t index) const {
    return {object_, facts_->Attribute(index), holder_};
  }
  // `facts` are of the class or of a supertype of it.
  BasicAttribute<Object> Of(const AttributeFacts& facts) const { return {object_, facts, holder_}; }
  // By the name that the schema gives it, "RelatedObjects".
  std::optional<BasicAttribute<Object>> Find(std::string_view name) const {
    const AttributeFacts* const found = facts_->FindAttribute(name);
    if (found == nullptr) return std::nullopt;
    return BasicAttribute<Object>(object_, *found, holder_);
  }

 private:
  typename BasicAttribute<Object>::Byte* object_;
  const IFC::IfcEntity* holder_;
  const ClassFacts* facts_;
};

using Attributes = BasicAttributes<IFC::IfcEntity>;
using ConstAttributes = BasicAttributes<const IFC::IfcEntity>;

// What the class of `object` is; null for an object of no generated class, as tests have them.
const ClassFacts* FindFacts(const IFC::IfcEntity& object);
// The same for any thread: remembers nothing, at the cost of a search by name in each release.
const ClassFacts* SearchFacts(const IFC::IfcEntity& object);

// The attributes of an object of a generated class. Throws std::logic_error for any other: a record
// without attributes would be lost without a word.
Attributes AttributesOf(IFC::IfcEntity& object);
ConstAttributes AttributesOf(const IFC::IfcEntity& object);

// Calls `action` with each attribute of everything that stands in the record of `object`: its own,
// and then those of the typed values in it, which may hold others. References to other records are
// not entered. `action` may replace what it is given; a typed value that it puts in is entered too.
template <class Object, class Action>
void ForEachInRecord(Object& object, Action action) {
  std::vector<Object*> waiting;
  Object* current = &object;
  for (std::size_t taken = 0;; ++taken) {
    for (const BasicAttribute<Object> attribute : AttributesOf(*current)) {
      action(attribute);
      attribute.template ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* referred) {
        if (referred != nullptr && referred->inlineValue) waiting.push_back(referred);
      });
    }
    if (taken == waiting.size()) return;
    current = waiting[taken];
  }
}

// --- How it is done ------------------------------------------------------------------------------

template <class Object>
template <class T, class Action>
void BasicAttribute<Object>::ForEach(Action action) const {
  using attribute_detail::ForEachScalar;
  if (!attribute_detail::HoldsScalar<T>(facts_->kind) || !HasValue()) return;
  if (facts_->depth == 0) {
    ForEachScalar(Stored<T>(), action);
  } else if (facts_->depth == 1) {
    ForEachScalar(Stored<List<T>>(), action);
  } else {
    ForEachScalar(Stored<List<List<T>>>(), action);
  }
}

template <class Object>
template <class T>
bool BasicAttribute<Object>::Set(T value) const {
  static_assert(!kReadsOnly);
  if (!attribute_detail::Holds<T>(*facts_) || !attribute_detail::MayBe(*facts_, value)) {
    return false;
  }
  Stored<T>() = value;
  DropMisfit();
  if (facts_->IsOptional()) *reinterpret_cast<bool*>(object_ + facts_->flagOffset) = true;
  return true;
}

template <class Object>
bool BasicAttribute<Object>::SetEnumeration(std::string_view name) const {
  const EnumTable* const values = facts_->Values();
  const EnumRow* const row = values == nullptr ? nullptr : values->FindByName(name);
  return row != nullptr && Set(row->number);
}

template <class Object>
template <class Predicate>
std::size_t BasicAttribute<Object>::RemoveReferences(Predicate predicate) const {
  static_assert(!kReadsOnly);
  if (!Refers(facts_->kind) || !HasValue()) return 0;
  if (facts_->depth == 1) {
    return attribute_detail::RemoveMembers(Stored<EntityList>(), predicate);
  }
  if (facts_->depth == 2) {
    return attribute_detail::RemoveMembers(Stored<List<EntityList>>(), predicate);
  }
  return 0;
}

}  // namespace corvel
