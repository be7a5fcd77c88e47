// What the objects of one model say, so that it can be compared with what those of another do.
#pragma once

#include <cstdint>
#include <deque>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/list.h"
#include "host/diff/compared_model.h"
#include "host/diff/tolerance.h"
#include "merge/federation/equality/digest.h"
#include "schema/attributes.h"

namespace corvel::host::diff {

// Whether the object tells the unit of its own numbers.
bool TellsUnit(const IFC::IfcEntity& entity, const ClassWord& word);

// Values with the same digest say the same: class and attributes by name, numbers of measures in SI
// units, members of sets in any order, together with what only describes them. In the place of an
// object with an identity stands what SetReference says. The other way round it is only likely:
// numbers that hardly differ may have two digests, and so may what goes in a circle.
//
// Each object is looked at once, without recursion. 20 bytes or so for each that was asked about.
class ValueDigests {
 public:
  // Both live as long as this.
  ValueDigests(const ComparedModel& model, const Tolerance& tolerance);

  // What a reference to the object at `index` says: before Of is asked.
  void SetReference(std::size_t index, const Digest& digest) { references_[index] = digest; }
  // For when references have become others.
  void Forget() {
    known_.clear();
    facts_.clear();
  }
  // What parameters measure that stand in the values which are asked about, until told otherwise:
  // in a record of its own only that tells it. Gives what was said before.
  Dimension TellParameters(Dimension measured) { return std::exchange(parameters_, measured); }
  // Of a value, or of a reference to an object with an identity. Null has one too.
  Digest Of(const IFC::IfcEntity* entity);
  // Of what a relation says about each of those that it holds.
  Digest OfFact(const IFC::IfcEntity& relation);
  // Of an object that only describes others, without these.
  Digest OfDescription(const IFC::IfcEntity& entity) {
    return Finish(entity, {.isDescription = true});
  }
  // Class and attributes of an object with an identity. `place` is what stands for its placement;
  // without it that counts as a value. Sets of properties of a type don't count.
  Digest OfContent(const IFC::IfcEntity& object, const Digest* place);

 private:
  static constexpr Digest kUnknown{};
  static constexpr Digest kBegun{1, 0};
  static constexpr Digest kNull{2, 0};

  // What of an object is left out.
  struct Parts {
    bool isObject = false;
    const Digest* place = nullptr;
    const AttributeWord* holding = nullptr;
    bool isDescription = false;
  };

  // Of an object with an identity or a number.
  Digest& At(const IFC::IfcEntity& entity) {
    if (ComparedModel::HasIdentity(entity)) return references_[ComparedModel::IndexOf(entity)];
    const std::size_t number = model_.NumberOf(entity);
    if (number >= known_.size()) known_.resize(number + 1);
    return known_[number];
  }
  Digest Finish(const IFC::IfcEntity& entity, const Parts& parts);
  void Settle(std::size_t before);
  Digest Make(const IFC::IfcEntity& entity, const Parts& parts);
  void AddAttributes(DigestMaker& maker, const IFC::IfcEntity& entity, const ClassWord& word,
                     const Parts& parts);
  void AddAttribute(DigestMaker& maker, const ConstAttribute& held, const AttributeWord& attribute,
                    bool isHolding);
  void AddCarried(DigestMaker& maker, const IFC::IfcEntity& entity);
  void AddDescriptions(DigestMaker& maker, const IFC::IfcEntity& entity);
  Digest Child(const IFC::IfcEntity* entity);
  // What a reference to a relation says: relations that lead to each other would go in circles.
  Digest OfEnds(const IFC::IfcEntity& relation, const ClassWord& word) const;

  template <class T>
  void Add(DigestMaker& maker, const List<T>& list, const AttributeWord& attribute, unsigned depth);
  void Add(DigestMaker& maker, IFC::IfcEntity* entity, const AttributeWord& attribute, unsigned);
  void Add(DigestMaker& maker, double number, const AttributeWord& attribute, unsigned);
  void Add(DigestMaker& maker, std::int32_t number, const AttributeWord& attribute, unsigned);
  void Add(DigestMaker& maker, ModelText text, const AttributeWord&, unsigned) { maker.Add(text); }
  void Add(DigestMaker& maker, const char* text, const AttributeWord&, unsigned) {
    maker.Add(WordOfName(std::string_view(text)));
  }
  void AddSorted(DigestMaker& maker, std::size_t first);

  const ComparedModel& model_;
  const Tolerance& tolerance_;
  std::vector<Digest> references_;                           // by index
  std::deque<Digest> known_;                                 // by number
  std::unordered_map<const IFC::IfcEntity*, Digest> facts_;  // of relations
  std::vector<const IFC::IfcEntity*> waiting_;
  std::vector<Digest> sorted_;  // of the sets that are being made, the innermost at the end
  bool lacks_ = false;          // something is waiting that Make needs
  bool hasOwnUnit_ = false;     // the numbers at hand are told in no unit of the model
  Dimension parameters_ = Dimension::kNone;
  const ComparedModel* holders_ = nullptr;  // of the attribute at hand these don't count
};

}  // namespace corvel::host::diff
