// A known change of each attribute of each class, and what the comparison makes of it.
#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "core/memory_pool.h"
#include "host/diff/diff_of_models.h"
#include "host/diff/object_facts.h"
#include "host/diff/pairing.h"
#include "host/diff/relation_words.h"
#include "host/diff/value_walk.h"
#include "schema/registry.h"

namespace corvel::host::diff {

namespace {

constexpr std::size_t kNoAttribute = 1000;

// Models with one record of each class, and with what these refer to.
class EveryClass {
 public:
  explicit EveryClass(SchemaNamespace release) : factories_(FactoriesOf(release)) {
    for (const ClassFacts& facts : factories_.classes->classes) {
      std::string key = facts.name;
      std::transform(key.begin(), key.end(), key.begin(),
                     [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
      IFC::IfcEntity* const blank = factories_.Find(key)(pool_);
      classes_.push_back({&facts, key, words_.Of(*blank), blank});
    }
  }

  struct Class {
    const ClassFacts* facts;
    std::string key;
    const ClassWord* word;
    const IFC::IfcEntity* blank;

    bool IsEntity() const { return blank->isComplexType(); }
  };
  const std::vector<Class>& Classes() const { return classes_; }
  static std::uint32_t NumberOf(std::size_t index) { return static_cast<std::uint32_t>(index + 1); }

  // What the record has in the place of this attribute can be changed.
  bool MayChange(const Class& of, std::size_t attribute) {
    return attribute < of.word->attributes.size() &&
           Value(of, attribute, 0) != Value(of, attribute, 1);
  }

  // The records of the classes of a role, with the attribute at `changed` in its other form.
  std::string Records(const std::set<Role>& roles, std::size_t changed) {
    std::string text;
    for (std::size_t i = 0; i < classes_.size(); ++i) {
      const Class& one = classes_[i];
      if (!one.IsEntity() || !roles.contains(one.word->role)) continue;
      text += "#" + std::to_string(NumberOf(i)) + "=" + one.key + "(";
      for (std::size_t k = 0; k < one.word->attributes.size(); ++k) {
        text += (k == 0 ? "" : ",") + Value(one, k, k == changed ? 1 : 0);
      }
      text += ");\n";
    }
    for (const std::size_t index : helpers_) text += Helper(index, 0) + Helper(index, 1);
    return text;
  }

 private:
  static constexpr std::size_t kFirstHelper = 10000;

  std::string Value(const Class& of, std::size_t attribute, int form) {
    const AttributeWord& word = of.word->attributes[attribute];
    const AttributeFacts& facts = *word.facts;
    if (facts.kind == ValueKind::kGuid) return "'" + of.key + "'";
    // What would change the objects that are described.
    if (of.word->Describes(facts)) return facts.depth == 0 ? "*" : "()";
    return InLists(Scalar(facts, form), facts.depth);
  }

  static std::string InLists(const std::string& scalar, unsigned depth) {
    return std::string(depth, '(') + scalar + std::string(depth, ')');
  }

  std::string Scalar(const AttributeFacts& facts, int form) {
    switch (facts.kind) {
      case ValueKind::kReference:
      case ValueKind::kSelect: return Reference(facts, form);
      case ValueKind::kReal:
      case ValueKind::kNumber: return form == 0 ? "1." : "2.";
      case ValueKind::kInteger: return form == 0 ? "1" : "2";
      case ValueKind::kBinary: return form == 0 ? "3" : "4";
      case ValueKind::kText: return form == 0 ? "'a'" : "'b'";
      case ValueKind::kGuid: return "'guid'";
      case ValueKind::kBoolean:
      case ValueKind::kLogical: return form == 0 ? ".T." : ".F.";
      case ValueKind::kEnumeration: break;
    }
    const auto rows = facts.Values()->rows;
    const std::size_t row = form == 0 || rows.size() == 1 || rows[1].readOnly ? 0 : 1;
    return "." + std::string(rows[row].Name()) + ".";
  }

  std::string Reference(const AttributeFacts& facts, int form) {
    for (const bool wantsEntity : {true, false}) {
      for (std::size_t i = 0; i < classes_.size(); ++i) {
        const Class& one = classes_[i];
        if (one.IsEntity() != wantsEntity || !facts.Admits(one.blank)) continue;
        if (!wantsEntity) return TypedValue(one, form);
        if (!HasScalars(one)) continue;
        helpers_.insert(i);
        return "#" + std::to_string(NumberOfHelper(i, form));
      }
    }
    return "*";
  }

  std::string TypedValue(const Class& one, int form) {
    const AttributeFacts& facts = *one.word->attributes.front().facts;
    return one.key + "(" + InLists(Scalar(facts, form), facts.depth) + ")";
  }

  // Two of a class differ in something.
  static bool HasScalars(const Class& one) {
    return one.word->role == Role::kObject ||
           std::any_of(one.word->attributes.begin(), one.word->attributes.end(),
                       [](const AttributeWord& word) {
                         const ValueKind kind = word.facts->kind;
                         return kind == ValueKind::kReal || kind == ValueKind::kText ||
                                kind == ValueKind::kInteger || kind == ValueKind::kBoolean;
                       });
  }

  static std::uint32_t NumberOfHelper(std::size_t index, int form) {
    return static_cast<std::uint32_t>(kFirstHelper + 2 * index) + static_cast<std::uint32_t>(form);
  }

  std::string Helper(std::size_t index, int form) {
    const Class& one = classes_[index];
    std::string text = "#" + std::to_string(NumberOfHelper(index, form)) + "=" + one.key + "(";
    for (std::size_t k = 0; k < one.word->attributes.size(); ++k) {
      const AttributeFacts& facts = *one.word->attributes[k].facts;
      if (k != 0) text += ",";
      if (facts.kind == ValueKind::kGuid) {
        text += "'helper " + one.key + std::to_string(form) + "'";
      } else if (Refers(facts.kind)) {
        text += facts.depth == 0 ? "*" : "()";
      } else {
        text += InLists(Scalar(facts, form), facts.depth);
      }
    }
    return text + ");\n";
  }

  const FactoryTable& factories_;
  MemoryPool pool_{1 << 16};
  ClassWords words_;
  std::vector<Class> classes_;
  std::set<std::size_t> helpers_;
};

std::size_t MostAttributes(const EveryClass& every) {
  std::size_t most = 0;
  for (const auto& one : every.Classes()) most = std::max(most, one.word->attributes.size());
  return most;
}

// Both sides of a comparison, in pieces.
struct Sides {
  Sides(test::ReadModel& one, test::ReadModel& other)
      : before(one.Document(), words),
        after(other.Document(), words),
        valuesBefore(before, tolerance),
        valuesAfter(after, tolerance),
        factsBefore(before, valuesBefore, tolerance),
        factsAfter(after, valuesAfter, tolerance) {}
  ClassWords words;
  Tolerance tolerance;
  ComparedModel before;
  ComparedModel after;
  ValueDigests valuesBefore;
  ValueDigests valuesAfter;
  ObjectFacts factsBefore;
  ObjectFacts factsAfter;
};

std::vector<std::string> ReleasesOfBuild() {
  std::vector<std::string> names;
  for (int i = 0; i <= static_cast<int>(SchemaNamespace::IFC4X4); ++i) {
    const auto release = static_cast<SchemaNamespace>(i);
    const auto built = BuiltFactories();
    try {
      if (std::find(built.begin(), built.end(), &FactoriesOf(release)) != built.end()) {
        names.emplace_back(NameOf(release));
      }
    } catch (const std::logic_error&) {
      continue;  // left out of this build
    }
  }
  return names;
}

SchemaNamespace ReleaseOf(const std::string& name) {
  for (int i = 0;; ++i) {
    if (NameOf(static_cast<SchemaNamespace>(i)) == name) return static_cast<SchemaNamespace>(i);
  }
}

class DiffOfEveryClass : public test::ReadTest, public testing::WithParamInterface<std::string> {
 protected:
  void Compare(const std::set<Role>& roles, std::size_t attribute) {
    // The first pass finds all that is referred to.
    every_.Records(roles, attribute);
    every_.Records(roles, kNoAttribute);
    const test::ReadOptions options{.schema = GetParam()};
    before_ = std::make_unique<test::ReadModel>(every_.Records(roles, kNoAttribute), options);
    after_ = std::make_unique<test::ReadModel>(every_.Records(roles, attribute), options);
    ASSERT_TRUE(before_->IsRead() && after_->IsRead()) << Narrow(reports_->back().message);
  }

  EveryClass every_{ReleaseOf(GetParam())};
  std::unique_ptr<test::ReadModel> before_;
  std::unique_ptr<test::ReadModel> after_;
};

INSTANTIATE_TEST_SUITE_P(Releases, DiffOfEveryClass, testing::ValuesIn(ReleasesOfBuild()));

}  // namespace

TEST_P(DiffOfEveryClass, AChangedAttributeOfAnObjectIsToldAndNothingElse) {
  const std::size_t most = MostAttributes(every_);
  std::size_t told = 0;
  for (std::size_t k = 0; k < most; ++k) {
    Compare({Role::kObject}, k);
    const ModelDiff diff = DiffOf(*before_, *after_);
    EXPECT_TRUE(diff.renamed.empty());
    // A set of properties that nobody has is an object of its own.
    for (const auto* const labels : {&diff.added, &diff.removed}) {
      for (const ObjectLabel& label : *labels) {
        EXPECT_TRUE(label.guid.starts_with("helper ")) << label.guid;
      }
    }
    std::map<std::string, const ChangedObject*> changed;
    for (const ChangedObject& object : diff.changed) changed[object.before.className] = &object;
    for (const auto& one : every_.Classes()) {
      if (!one.IsEntity() || one.word->role != Role::kObject) continue;
      const bool isChanged = every_.MayChange(one, k) && one.word->attributes[k].isContent;
      const std::string name = one.facts->name;
      ASSERT_EQ(isChanged, changed.contains(name)) << name << " attribute " << k;
      if (!isChanged) continue;
      ++told;
      const AttributeWord& word = one.word->attributes[k];
      for (const Change& change : changed[name]->changes) {
        const bool fits = word.isPropertySets ? change.kind == ChangeKind::kProperty
                                              : change.path.starts_with(word.facts->name);
        EXPECT_TRUE(fits) << name << "." << word.facts->name << ": " << change.path;
      }
    }
  }
  EXPECT_LT(100u, told);
}

TEST_P(DiffOfEveryClass, AChangedAttributeOfAValueIsToldAndNothingElse) {
  const std::size_t most = MostAttributes(every_);
  std::size_t told = 0;
  for (std::size_t k = 0; k < most; ++k) {
    Compare({Role::kValue}, k);
    Sides sides(*before_, *after_);
    const Pairing pairing = PairObjects(sides.factsBefore, sides.factsAfter);
    Lockstep lockstep(sides.before, sides.after, pairing, sides.tolerance);
    ValueWalk walk(sides.factsBefore, sides.factsAfter, sides.tolerance, lockstep);
    for (std::size_t i = 0; i < every_.Classes().size(); ++i) {
      const EveryClass::Class& one = every_.Classes()[i];
      if (!one.IsEntity() || one.word->role != Role::kValue) continue;
      const std::uint32_t number = EveryClass::NumberOf(i);
      walk.Compare((*before_)[number], (*after_)[number], "");
      std::size_t omitted = 0;
      const std::vector<Difference> found = walk.Take(omitted);
      const bool isChanged = every_.MayChange(one, k) && one.word->attributes[k].isContent;
      ASSERT_EQ(isChanged, !found.empty()) << one.facts->name << " attribute " << k;
      for (const Difference& difference : found) {
        EXPECT_TRUE(difference.path.starts_with(one.word->attributes[k].facts->name))
            << one.facts->name << ": " << difference.path;
      }
      told += found.empty() ? 0 : 1;
    }
  }
  EXPECT_LT(300u, told);
}

TEST_P(DiffOfEveryClass, AChangedAttributeOfARelationIsToldOfTheObjectsThatItIsAFactAbout) {
  const std::size_t most = MostAttributes(every_);
  std::size_t told = 0;
  for (std::size_t k = 0; k < most; ++k) {
    Compare({Role::kRelation}, k);
    const ModelDiff diff = DiffOf(*before_, *after_);
    std::set<std::string> words;
    for (const ChangedObject& object : diff.changed) {
      // By themselves, or by what they say of properties.
      if (object.before.className.starts_with("IfcRel")) continue;
      for (const Change& change : object.changes) {
        if (change.kind == ChangeKind::kProperty || change.kind == ChangeKind::kQuantity) continue;
        words.insert(change.path.substr(0, change.path.find_first_of(".[")));
      }
    }
    std::set<std::string> wanted;
    for (const auto& one : every_.Classes()) {
      if (!one.IsEntity() || one.word->role != Role::kRelation) continue;
      if (!every_.MayChange(one, k) || !one.word->attributes[k].isContent) continue;
      wanted.insert(WordOfRelation(*one.facts).text);
    }
    for (const std::string& word : wanted) told += words.contains(word) ? 1 : 0;
    for (const std::string& word : words) {
      EXPECT_TRUE(wanted.contains(word)) << word << " for attribute " << k;
    }
  }
  EXPECT_LT(30u, told);
}

}  // namespace corvel::host::diff
