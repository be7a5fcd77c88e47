#include "host/diff/value_digests.h"

#include <algorithm>
#include <utility>

#include "core/carried.h"
#include "schema/attributes.h"
#include "step/carried/carried_objects.h"

namespace corvel::host::diff {

namespace {

// A value that is no more than its text, which has the numbers of the file in it.
bool IsText(const IFC::IfcEntity& entity) {
  return entity.carries && dynamic_cast<const CarriedValue*>(&entity) != nullptr;
}

}  // namespace

bool TellsUnit(const IFC::IfcEntity& entity, const ClassWord& word) {
  if (!word.hasUnit) return false;
  for (const AttributeWord& attribute : word.attributes) {
    if (attribute.isUnit && ConstAttribute(entity, *attribute.facts).HasValue()) return true;
  }
  return false;
}

ValueDigests::ValueDigests(const ComparedModel& model, const Tolerance& tolerance)
    : model_(model), tolerance_(tolerance), references_(model.Objects().size()) {}

Digest ValueDigests::Of(const IFC::IfcEntity* entity) {
  if (entity == nullptr) return kNull;
  if (entity->inlineValue) return Finish(*entity, {});
  const Digest& known = At(*entity);  // stays where it is
  if (known != kUnknown) return known;
  const ClassWord* const word = model_.Words().Of(*entity);
  const bool isRelation = word != nullptr && word->role == Role::kRelation;
  if (isRelation && !ComparedModel::HasIdentity(*entity)) return OfEnds(*entity, *word);
  waiting_.push_back(entity);
  Settle(0);
  return known;
}

Digest ValueDigests::OfFact(const IFC::IfcEntity& relation) {
  const auto [known, isNew] = facts_.try_emplace(&relation);
  if (isNew) {
    known->second = Finish(relation, {.holding = model_.HoldingAttribute(relation)});
  }
  return known->second;
}

Digest ValueDigests::OfContent(const IFC::IfcEntity& object, const Digest* place) {
  return Finish(object, {.isObject = true, .place = place});
}

Digest ValueDigests::Finish(const IFC::IfcEntity& entity, const Parts& parts) {
  for (;;) {
    lacks_ = false;
    const Digest made = Make(entity, parts);
    if (!lacks_) return made;
    Settle(0);
  }
}

// Whoever needs something that is not known yet has it put on top, and is made again once that is
// known. What has been begun and is needed further up leads to itself.
void ValueDigests::Settle(std::size_t before) {
  const Dimension outer = TellParameters(Dimension::kNone);
  while (waiting_.size() > before) {
    const IFC::IfcEntity& top = *waiting_.back();
    Digest& known = At(top);  // stays where it is when others are added
    if (known == kUnknown || known == kBegun) {
      known = kBegun;
      lacks_ = false;
      const Digest made = Make(top, {});
      if (lacks_) continue;
      known = made;
    }
    waiting_.pop_back();
  }
  parameters_ = outer;
}

Digest ValueDigests::Child(const IFC::IfcEntity* entity) {
  if (entity == nullptr) return kNull;
  if (entity->inlineValue) return Make(*entity, {});
  const Digest& known = At(*entity);
  if (known != kUnknown) return known;
  const ClassWord* const word = model_.Words().Of(*entity);
  if (word != nullptr && word->role == Role::kRelation) return OfEnds(*entity, *word);
  waiting_.push_back(entity);
  lacks_ = true;
  return known;
}

Digest ValueDigests::OfEnds(const IFC::IfcEntity& relation, const ClassWord& word) const {
  DigestMaker maker;
  maker.Add(word.word);
  for (const AttributeWord& attribute : word.attributes) {
    if (!attribute.isRelated && !attribute.isRelating) continue;
    ConstAttribute(relation, *attribute.facts).ForEach<IFC::IfcEntity*>([&](const auto* end) {
      if (end != nullptr && model_.HasIdentity(*end))
        maker.Add(references_[ComparedModel::IndexOf(*end)]);
    });
  }
  return maker.Made();
}

Digest ValueDigests::Make(const IFC::IfcEntity& entity, const Parts& parts) {
  const ClassWord* const word = model_.Words().Of(entity);
  DigestMaker maker;
  if (word == nullptr) {
    maker.Add(WordOfName(entity.getClassName()));
    return maker.Made();
  }
  maker.Add(entity.carries ? WordOfName(entity.getClassName()) : word->word);
  if (!IsText(entity)) AddAttributes(maker, entity, *word, parts);
  if (entity.carries) AddCarried(maker, entity);
  if (entity.visited && !parts.isDescription) AddDescriptions(maker, entity);
  return maker.Made();
}

void ValueDigests::AddAttributes(DigestMaker& maker, const IFC::IfcEntity& entity,
                                 const ClassWord& word, const Parts& parts) {
  const ConstAttributes all(entity, *word.facts);
  const bool outer = hasOwnUnit_;
  hasOwnUnit_ = outer || TellsUnit(entity, word);
  const Dimension outerParameters = parameters_;
  if (!entity.inlineValue) {
    parameters_ = word.hasBasisCurve ? DimensionOfParameters(entity) : Dimension::kNone;
  }
  auto at = all.begin();
  for (const AttributeWord& attribute : word.attributes) {
    const ConstAttribute held = *at;
    ++at;
    const bool isLeftOut = !attribute.isContent || (parts.isObject && attribute.isPropertySets) ||
                           (parts.isDescription && word.Describes(*attribute.facts));
    if (isLeftOut) continue;
    if (parts.place != nullptr && attribute.isPlacement) {
      maker.Add(*parts.place);
    } else if (held.HasValue()) {
      AddAttribute(maker, held, attribute, parts.holding == &attribute);
    }
  }
  hasOwnUnit_ = outer;
  parameters_ = outerParameters;
}

void ValueDigests::AddAttribute(DigestMaker& maker, const ConstAttribute& held,
                                const AttributeWord& attribute, bool isHolding) {
  maker.Add(attribute.word);
  const auto* const outer = std::exchange(holders_, isHolding ? &model_ : nullptr);
  held.Visit([&](const auto& value) { Add(maker, value, attribute, 0); });
  holders_ = outer;
}

// The text as it stands, but for the numbers in it.
void ValueDigests::AddCarried(DigestMaker& maker, const IFC::IfcEntity& entity) {
  if (const auto* const value = dynamic_cast<const CarriedValue*>(&entity)) {
    maker.Add(WordOfName(value->text.bytes));
    for (const CarriedReference& reference : value->text.references) {
      maker.Add(Child(reference.target));
    }
    return;
  }
  const CarriedParts* const parts = CarriedTable::Find(entity);
  if (parts == nullptr) return;
  for (const CarriedArgument& argument : parts->arguments) {
    maker.Add(std::uint64_t{argument.index});
    maker.Add(Child(argument.value));
  }
}

void ValueDigests::AddDescriptions(DigestMaker& maker, const IFC::IfcEntity& entity) {
  const std::size_t first = sorted_.size();
  for (const ComparedModel::Description& description : model_.DescriptionsOf(entity)) {
    const Digest made = Make(*description.by, {.isDescription = true});
    sorted_.push_back(made);
  }
  AddSorted(maker, first);
}

void ValueDigests::AddSorted(DigestMaker& maker, std::size_t first) {
  const auto begin = sorted_.begin() + static_cast<std::ptrdiff_t>(first);
  std::sort(begin, sorted_.end());
  for (auto at = begin; at != sorted_.end(); ++at) maker.Add(*at);
  sorted_.resize(first);
}

template <class T>
void ValueDigests::Add(DigestMaker& maker, const List<T>& list, const AttributeWord& attribute,
                       unsigned depth) {
  if (!attribute.isUnordered[depth] && holders_ == nullptr) {
    maker.Add(std::uint64_t{list.size()});
    for (const T& item : list) Add(maker, item, attribute, depth + 1);
    return;
  }
  const std::size_t first = sorted_.size();
  for (const T& item : list) {
    DigestMaker one;
    Add(one, item, attribute, depth + 1);
    const bool isHolder = holders_ != nullptr && one.Made() == DigestMaker().Made();
    if (!isHolder) sorted_.push_back(one.Made());
  }
  AddSorted(maker, first);
}

void ValueDigests::Add(DigestMaker& maker, IFC::IfcEntity* entity, const AttributeWord&, unsigned) {
  if (holders_ != nullptr && entity != nullptr && holders_->HasIdentity(*entity)) return;
  maker.Add(Child(entity));
}

void ValueDigests::Add(DigestMaker& maker, double number, const AttributeWord& attribute,
                       unsigned) {
  const Dimension dimension = attribute.isParameter ? parameters_ : attribute.dimension;
  const double scale = hasOwnUnit_ ? 1.0 : model_.Scales().Of(dimension);
  maker.Add(tolerance_.WordOf(number * scale, dimension));
}

void ValueDigests::Add(DigestMaker& maker, std::int32_t number, const AttributeWord& attribute,
                       unsigned) {
  const bool isNamed = attribute.facts->kind == ValueKind::kEnumeration;
  maker.Add(isNamed ? WordOfName(attribute.facts->Values()->ToText(number))
                    : static_cast<std::uint64_t>(number));
}

}  // namespace corvel::host::diff
