#include "host/diff/value_walk.h"

#include <algorithm>
#include <map>

#include "core/carried.h"
#include "host/diff/value_text.h"

namespace corvel::host::diff {

namespace {

// Deeper than shapes and materials ever are; each level takes a piece of the stack.
constexpr unsigned kDeepest = 200;

std::string With(const std::string& path, std::string_view name) {
  return path.empty() ? std::string(name) : path + "." + std::string(name);
}

// Members with a name are told by it.
std::string WithMember(const std::string& path, const IFC::IfcEntity* member, std::size_t index) {
  const std::string name = member == nullptr ? std::string() : NameOf(*member);
  return path + "[" + (name.empty() ? std::to_string(index + 1) : name) + "]";
}

std::string WithIndex(const std::string& path, std::size_t index) {
  return path + "[" + std::to_string(index + 1) + "]";
}

const AttributeWord* FindWord(const ClassWord& words, const AttributeWord& sought) {
  for (const AttributeWord& word : words.attributes) {
    if (word.word == sought.word) return &word;
  }
  return nullptr;
}

bool HaveSameClass(const IFC::IfcEntity& one, const IFC::IfcEntity& other) {
  return one.getClassName() == other.getClassName() ||
         WideView(one.getClassName()) == other.getClassName();
}

template <class T>
constexpr bool kHoldsScalars = true;
template <class T>
constexpr bool kHoldsScalars<List<T>> = false;
template <>
constexpr bool kHoldsScalars<IFC::IfcEntity*> = false;

}  // namespace

std::string ValueWalk::TextBefore(const IFC::IfcEntity* entity) const {
  return ValueText(before_.Model(), hasOwnUnitBefore_).Of(entity);
}

std::string ValueWalk::TextAfter(const IFC::IfcEntity* entity) const {
  return ValueText(after_.Model(), hasOwnUnitAfter_).Of(entity);
}

void ValueWalk::Compare(const IFC::IfcEntity* before, const IFC::IfcEntity* after,
                        const std::string& path) {
  if (!differs_ && !SaySame(before, after)) CompareUnlike(before, after, path);
}

// Of members only those that differ need a path, and nobody needs one who only asks.
void ValueWalk::CompareMembers(const IFC::IfcEntity* before, const IFC::IfcEntity* after,
                               const std::string& path, std::size_t index) {
  if (differs_ || SaySame(before, after)) return;
  CompareUnlike(before, after, isAsking_ ? path : WithMember(path, before, index));
}

void ValueWalk::CompareUnlike(const IFC::IfcEntity* before, const IFC::IfcEntity* after,
                              const std::string& path) {
  if (before == nullptr || after == nullptr) {
    if (Answers()) return;
    return Tell(path, before == nullptr ? std::nullopt : std::optional(TextBefore(before)),
                after == nullptr ? std::nullopt : std::optional(TextAfter(after)));
  }
  const bool isReference =
      before_.Model().HasIdentity(*before) || after_.Model().HasIdentity(*after);
  const ClassWord* const classWord = before_.Model().Words().Of(*before);
  const bool isRelation = classWord != nullptr && classWord->role == Role::kRelation;
  const bool isText = before->carries && before->inlineValue;
  if (isReference || isRelation || isText || !HaveSameClass(*before, *after)) {
    if (Answers()) return;
    std::string one = TextBefore(before);
    std::string other = TextAfter(after);
    if (before->inlineValue && after->inlineValue && !isText) {
      one = ToUtf8(before->getClassName()) + " " + one;
      other = ToUtf8(after->getClassName()) + " " + other;
    } else if (one == other && !isText) {
      one += " #" + std::to_string(before->marker);
      other += " #" + std::to_string(after->marker);
    }
    return Tell(path, one, other);
  }
  if (!met_->Add(before, after)) return;
  if (depth_ == kDeepest) {
    if (Answers()) return;
    return Tell(path, TextBefore(before), TextAfter(after));
  }
  ++depth_;
  CompareAttributes(*before, *after, path,
                    [](const AttributeWord& word) { return word.isContent; });
  CompareDescriptions(*before, *after, path);
  --depth_;
}

// What is in step says the same; what is not may do so in another order. Whoever asks whether one
// of many is the same has their digests, and would go through them in step for each pair.
bool ValueWalk::SaySame(const IFC::IfcEntity* before, const IFC::IfcEntity* after) {
  const bool hasAngles =
      parametersBefore_ != Dimension::kNone || parametersAfter_ != Dimension::kNone;
  const bool inUnitsOfModels =
      !hasOwnUnitBefore_ && !hasOwnUnitAfter_ && (!hasAngles || HaveOneAngle());
  if (inUnitsOfModels && !isAsking_ && lockstep_.SameValues(before, after)) return true;
  return before_.Values().Of(before) == after_.Values().Of(after);
}

bool ValueWalk::HaveOneAngle() const {
  return before_.Model().Scales().angle == after_.Model().Scales().angle;
}

void ValueWalk::TellParameters(Dimension before, Dimension after) {
  parametersBefore_ = before;
  parametersAfter_ = after;
  before_.Values().TellParameters(before);
  after_.Values().TellParameters(after);
}

void ValueWalk::CompareAttributes(const IFC::IfcEntity& before, const IFC::IfcEntity& after,
                                  const std::string& path, const IsWanted& isWanted) {
  const ClassWord* const one = before_.Model().Words().Of(before);
  const ClassWord* const other = after_.Model().Words().Of(after);
  if (one == nullptr || other == nullptr) return;
  const bool outerBefore = hasOwnUnitBefore_;
  const bool outerAfter = hasOwnUnitAfter_;
  hasOwnUnitBefore_ = outerBefore || TellsUnit(before, *one);
  hasOwnUnitAfter_ = outerAfter || TellsUnit(after, *other);
  const Dimension outerParametersBefore = parametersBefore_;
  const Dimension outerParametersAfter = parametersAfter_;
  if (!before.inlineValue) {
    TellParameters(one->hasBasisCurve ? DimensionOfParameters(before) : Dimension::kNone,
                   other->hasBasisCurve ? DimensionOfParameters(after) : Dimension::kNone);
  }
  // The value of a typed value has no name worth telling, and nobody reads it who only asks.
  std::string longer;
  const auto pathTo = [&](const AttributeWord& word) -> const std::string& {
    if (before.inlineValue || isAsking_) return path;
    return longer = With(path, word.facts->name);
  };
  const ConstAttributes here(before, *one->facts);
  const ConstAttributes there(after, *other->facts);
  for (const AttributeWord& word : one->attributes) {
    if (differs_) break;
    if (!isWanted(word)) continue;
    const ConstAttribute held = here.Of(*word.facts);
    const AttributeWord* const same = one == other ? &word : FindWord(*other, word);
    if (same != nullptr) {
      CompareAttribute(held, there.Of(*same->facts), {word, *same}, pathTo(word));
    } else if (held.HasValue() && !Answers()) {
      Tell(pathTo(word), ValueText(before_.Model(), hasOwnUnitBefore_).Of(held, word), {});
    }
  }
  for (const AttributeWord& word : other->attributes) {
    if (one == other) break;
    if (!isWanted(word) || FindWord(*one, word) != nullptr) continue;
    const ConstAttribute held = there.Of(*word.facts);
    if (!held.HasValue() || Answers()) continue;
    Tell(pathTo(word), {}, ValueText(after_.Model(), hasOwnUnitAfter_).Of(held, word));
  }
  CompareCarried(before, after, path);
  hasOwnUnitBefore_ = outerBefore;
  hasOwnUnitAfter_ = outerAfter;
  TellParameters(outerParametersBefore, outerParametersAfter);
}

void ValueWalk::CompareCarried(const IFC::IfcEntity& before, const IFC::IfcEntity& after,
                               const std::string& path) {
  if (!before.carries && !after.carries) return;
  std::map<std::uint32_t, std::pair<const IFC::IfcEntity*, const IFC::IfcEntity*>> arguments;
  if (const CarriedParts* const parts = before.carries ? CarriedTable::Find(before) : nullptr) {
    for (const CarriedArgument& argument : parts->arguments) {
      arguments[argument.index].first = argument.value;
    }
  }
  if (const CarriedParts* const parts = after.carries ? CarriedTable::Find(after) : nullptr) {
    for (const CarriedArgument& argument : parts->arguments) {
      arguments[argument.index].second = argument.value;
    }
  }
  for (const auto& [index, values] : arguments) {
    Compare(values.first, values.second, With(path, "argument " + std::to_string(index + 1)));
  }
}

void ValueWalk::CompareAttribute(const ConstAttribute& before, const ConstAttribute& after,
                                 const Held& held, const std::string& path) {
  const bool isHere = before.HasValue();
  const bool isThere = after.HasValue();
  if (!isHere && !isThere) return;
  if (isHere != isThere && Answers()) return;
  const ValueText one(before_.Model(), hasOwnUnitBefore_);
  const ValueText other(after_.Model(), hasOwnUnitAfter_);
  if (!isThere) return Tell(path, one.Of(before, held.before), {});
  if (!isHere) return Tell(path, {}, other.Of(after, held.after));
  before.Visit([&](const auto& value) {
    const auto* const there = after.As<std::remove_cvref_t<decltype(value)>>();
    if (there != nullptr) return CompareHeld(value, *there, held, path);
    if (Answers()) return;
    Tell(path, one.Of(before, held.before), other.Of(after, held.after));
  });
}

void ValueWalk::CompareHeld(IFC::IfcEntity* before, IFC::IfcEntity* after, const Held&,
                            const std::string& path) {
  Compare(before, after, path);
}

template <class T>
void ValueWalk::CompareHeld(const T& before, const T& after, const Held& held,
                            const std::string& path) {
  if (SameScalar(before, after, held) || Answers()) return;
  AttributeWord one = held.before;
  AttributeWord other = held.after;
  // Parameters are told as they are written where both models have one unit.
  if (!HaveOneAngle()) {
    one.dimension = DimensionBefore(held);
    other.dimension = DimensionAfter(held);
  }
  Tell(path, ValueText(before_.Model(), hasOwnUnitBefore_).OfHeld(before, one),
       ValueText(after_.Model(), hasOwnUnitAfter_).OfHeld(after, other));
}

bool ValueWalk::SameScalar(double before, double after, const Held& held) const {
  const Dimension dimension = DimensionBefore(held);
  const double one = hasOwnUnitBefore_ ? 1.0 : before_.Model().Scales().Of(dimension);
  const double other = hasOwnUnitAfter_ ? 1.0 : after_.Model().Scales().Of(DimensionAfter(held));
  return tolerance_.Same(before * one, after * other, dimension);
}

bool ValueWalk::SameScalar(std::int32_t before, std::int32_t after, const Held& held) {
  if (held.before.facts->kind != ValueKind::kEnumeration) return before == after;
  return held.before.facts->Values()->ToText(before) == held.after.facts->Values()->ToText(after);
}

// A few numbers are told at once, as those of a point.
template <class T>
void ValueWalk::CompareHeld(const List<T>& before, const List<T>& after, Held held,
                            const std::string& path) {
  constexpr std::size_t kFew = 4;
  const auto tellAll = [&] {
    if (Answers()) return;
    Tell(path, ValueText(before_.Model(), hasOwnUnitBefore_).OfHeld(before, held.before),
         ValueText(after_.Model(), hasOwnUnitAfter_).OfHeld(after, held.after));
  };
  if (before.size() != after.size()) return tellAll();
  ++held.depth;
  if constexpr (kHoldsScalars<T>) {
    const auto same = [&](const T& one, const T& other) { return SameScalar(one, other, held); };
    const bool isSet = held.before.isUnordered[held.depth - 1];
    if (isSet ? std::is_permutation(before.begin(), before.end(), after.begin(), same)
              : std::equal(before.begin(), before.end(), after.begin(), same)) {
      return;
    }
    if (isSet || before.size() <= kFew) return tellAll();
  }
  for (std::size_t i = 0; i < before.size() && !differs_; ++i) {
    CompareHeld(before[i], after[i], held, isAsking_ ? path : WithIndex(path, i));
  }
}

void ValueWalk::CompareHeld(const EntityList& before, const EntityList& after, Held held,
                            const std::string& path) {
  const bool isAlone = before.size() == 1 && after.size() == 1;
  const bool isSet = held.before.isUnordered[held.depth] && held.after.isUnordered[held.depth];
  if (isAlone || (!isSet && before.size() == after.size())) {
    for (std::size_t i = 0; i < before.size() && !differs_; ++i) {
      CompareMembers(before[i], after[i], path, i);
    }
    return;
  }
  Members one(before.begin(), before.end());
  Members other(after.begin(), after.end());
  if (isSet) {
    CompareSets(std::move(one), std::move(other), path);
  } else {
    CompareLists(std::move(one), std::move(other), path);
  }
}

// What says the same on both sides goes.
void ValueWalk::DropEqual(Members& before, Members& after) {
  std::map<Digest, std::size_t> there;
  for (const IFC::IfcEntity* const member : after) ++there[after_.Values().Of(member)];
  std::map<Digest, std::size_t> taken;
  std::erase_if(before, [&](const IFC::IfcEntity* member) {
    const Digest digest = before_.Values().Of(member);
    const auto found = there.find(digest);
    if (found == there.end() || found->second == 0) return false;
    --found->second;
    ++taken[digest];
    return true;
  });
  std::erase_if(after, [&](const IFC::IfcEntity* member) {
    const auto found = taken.find(after_.Values().Of(member));
    if (found == taken.end() || found->second == 0) return false;
    --found->second;
    return true;
  });
}

bool ValueWalk::Same(const IFC::IfcEntity& before, const IFC::IfcEntity& after) {
  MetPairs met;
  MetPairs* const outer = std::exchange(met_, &met);
  const bool isAsking = std::exchange(isAsking_, true);
  const bool differs = std::exchange(differs_, false);
  Compare(&before, &after, "");
  met_ = outer;
  isAsking_ = isAsking;
  return !std::exchange(differs_, differs);
}

// What has a name meets its namesake; the others meet the next of their class.
void ValueWalk::CompareSets(Members before, Members after, const std::string& path) {
  constexpr std::size_t kFew = 32;
  DropEqual(before, after);
  const bool few = before.size() <= kFew && after.size() <= kFew;
  const auto dropWith = [&](auto belongTogether, bool compares) {
    std::erase_if(before, [&](const IFC::IfcEntity* one) {
      const auto other = std::find_if(after.begin(), after.end(), [&](const auto* candidate) {
        return one != nullptr && candidate != nullptr && belongTogether(*one, *candidate);
      });
      if (other == after.end()) return false;
      if (compares) CompareMembers(one, *other, path, 0);
      after.erase(other);
      return true;
    });
  };
  if (!few) return ComparePairs(before, after, path);
  if (before.size() > 1 || after.size() > 1) {
    dropWith([&](const auto& one, const auto& other) { return Same(one, other); }, false);
    dropWith(
        [&](const auto& one, const auto& other) {
          const std::string name = NameOf(one);
          return !name.empty() && name == NameOf(other) && HaveSameClass(one, other);
        },
        true);
  }
  ComparePairs(before, after, path);
}

// Of two lengths.
void ValueWalk::CompareLists(Members before, Members after, const std::string& path) {
  const auto same = [&](const IFC::IfcEntity* one, const IFC::IfcEntity* other) {
    return before_.Values().Of(one) == after_.Values().Of(other);
  };
  while (!before.empty() && !after.empty() && same(before.back(), after.back())) {
    before.pop_back();
    after.pop_back();
  }
  std::size_t first = 0;
  while (first < before.size() && first < after.size() && same(before[first], after[first])) {
    ++first;
  }
  const auto from = static_cast<std::ptrdiff_t>(first);
  TellMembers({before.begin() + from, before.end()}, {after.begin() + from, after.end()}, path);
}

void ValueWalk::ComparePairs(Members& before, Members& after, const std::string& path) {
  const std::size_t pairs = std::min(before.size(), after.size());
  for (std::size_t i = 0; i < pairs; ++i) CompareMembers(before[i], after[i], path, i);
  const auto from = static_cast<std::ptrdiff_t>(pairs);
  TellMembers({before.begin() + from, before.end()}, {after.begin() + from, after.end()}, path);
}

void ValueWalk::TellMembers(const Members& before, const Members& after, const std::string& path) {
  if ((!before.empty() || !after.empty()) && Answers()) return;
  for (const IFC::IfcEntity* const gone : before) {
    Tell(path + "[]", TextBefore(gone), {});
  }
  for (const IFC::IfcEntity* const come : after) {
    Tell(path + "[]", {}, TextAfter(come));
  }
}

void ValueWalk::CompareDescriptions(const IFC::IfcEntity& before, const IFC::IfcEntity& after,
                                    const std::string& path) {
  if (!before.visited && !after.visited) return;
  Members one;
  Members other;
  for (const auto& description : before_.Model().DescriptionsOf(before)) {
    one.push_back(description.by);
  }
  for (const auto& description : after_.Model().DescriptionsOf(after)) {
    other.push_back(description.by);
  }
  std::erase_if(one, [&](const IFC::IfcEntity* here) {
    const Digest digest = before_.Values().OfDescription(*here);
    const auto there = std::find_if(other.begin(), other.end(), [&](const IFC::IfcEntity* by) {
      return after_.Values().OfDescription(*by) == digest;
    });
    if (there == other.end()) return false;
    other.erase(there);
    return true;
  });
  for (const IFC::IfcEntity* const here : one) {
    const std::string name = With(path, ToUtf8(here->getClassName()));
    const auto there = std::find_if(other.begin(), other.end(), [&](const IFC::IfcEntity* by) {
      return HaveSameClass(*here, *by);
    });
    if (there == other.end()) {
      if (Answers()) return;
      Tell(name, TextBefore(here), {});
      continue;
    }
    const ClassWord& words = *before_.Model().Words().Of(*here);
    const ClassWord& wordsThere = *after_.Model().Words().Of(**there);
    CompareAttributes(*here, **there, name, [&](const AttributeWord& word) {
      return word.isContent && !words.Describes(*word.facts) && !wordsThere.Describes(*word.facts);
    });
    other.erase(there);
  }
  if (!other.empty() && Answers()) return;
  for (const IFC::IfcEntity* const there : other) {
    Tell(With(path, ToUtf8(there->getClassName())), {}, TextAfter(there));
  }
}

void ValueWalk::Tell(const std::string& path, std::optional<std::string> before,
                     std::optional<std::string> after) {
  if (found_.size() == kMostChanges) {
    ++omitted_;
    return;
  }
  found_.push_back({path, std::move(before), std::move(after)});
}

std::vector<Difference> ValueWalk::Take(std::size_t& omitted) {
  omitted += std::exchange(omitted_, 0);
  ownMet_ = {};
  return std::exchange(found_, {});
}

}  // namespace corvel::host::diff
