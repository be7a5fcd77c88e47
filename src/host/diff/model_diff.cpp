#include "host/diff/model_diff.h"

#include <string_view>
#include <utility>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"

#include "host/diff/lockstep.h"
#include "host/diff/object_changes.h"
#include "host/diff/pairing.h"
#include "host/diff/value_text.h"

namespace corvel::host::diff {

namespace {

ComparedFile FileOf(const IfcDocument& document, const ComparedModel& model) {
  return {ToUtf8(document.getFilePath()), ToUtf8(document.KnownSchemaIdentifier()),
          model.RootedCount()};
}

std::vector<ObjectLabel> Unpaired(const ComparedModel& model,
                                  const std::vector<std::uint32_t>& others) {
  std::vector<ObjectLabel> labels;
  for (std::size_t i = 0; i < others.size(); ++i) {
    if (others[i] == Pairing::kNone) labels.push_back(LabelOf(*model.Objects()[i]));
  }
  return labels;
}

bool HaveOneGuid(const IFC::IfcEntity& one, const IFC::IfcEntity& other) {
  const auto guidOf = [](const IFC::IfcEntity& object) -> std::string_view {
    const auto* const root = EntityCast<IFC::VirtualIfcRoot>(const_cast<IFC::IfcEntity*>(&object));
    return root == nullptr ? std::string_view() : root->getGlobalId();
  };
  return guidOf(one) == guidOf(other);
}

class Comparison {
 public:
  Comparison(const IfcDocument& before, const IfcDocument& after, const Tolerance& tolerance)
      : before_(before, words_, tolerance),
        after_(after, words_, tolerance),
        tolerance_(tolerance),
        areOfTwoReleases_(before.KnownSchemaIdentifier() != after.KnownSchemaIdentifier()) {}

  std::optional<ModelDiff> Run(const DiffProgress& progress) {
    constexpr int kPaired = 30;
    ModelDiff diff;
    diff.before = FileOf(before_.model.Document(), before_.model);
    diff.after = FileOf(after_.model.Document(), after_.model);
    if (!progress(0)) return std::nullopt;
    const Pairing pairing = PairObjects(before_.facts, after_.facts);
    diff.removed = Unpaired(before_.model, pairing.laterOf);
    diff.added = Unpaired(after_.model, pairing.earlierOf);
    Lockstep lockstep(before_.model, after_.model, pairing, tolerance_);
    ObjectChanges changes(before_.facts, after_.facts, tolerance_, lockstep);
    const std::size_t count = pairing.laterOf.size();
    for (std::size_t i = 0; i < count; ++i) {
      const auto done = static_cast<int>(i * (100 - kPaired) / count);
      if (i % kObjectsInATick == 0 && !progress(kPaired + done)) return std::nullopt;
      if (pairing.laterOf[i] != Pairing::kNone)
        Compare(i, pairing.laterOf[i], lockstep, changes, diff);
    }
    return diff;
  }

 private:
  static constexpr std::size_t kObjectsInATick = 256;

  struct Side {
    Side(const IfcDocument& document, ClassWords& words, const Tolerance& tolerance)
        : model(document, words), values(model, tolerance), facts(model, values, tolerance) {}
    ComparedModel model;
    ValueDigests values;
    ObjectFacts facts;
  };

  void Compare(std::size_t before, std::size_t after, Lockstep& lockstep, ObjectChanges& changes,
               ModelDiff& diff) {
    const IFC::IfcEntity& one = *before_.model.Objects()[before];
    const IFC::IfcEntity& other = *after_.model.Objects()[after];
    if (before_.model.Words().Of(one)->role == Role::kObject && !HaveOneGuid(one, other)) {
      diff.renamed.emplace_back(LabelOf(one), LabelOf(other));
    }
    // Objects of two releases are never in step.
    const bool same =
        lockstep.Same(before, after) ||
        (areOfTwoReleases_ && before_.facts.WholeOf(before) == after_.facts.WholeOf(after));
    if (!same) {
      ChangedObject object = changes.Of(before, after);
      if (!object.changes.empty()) {
        diff.changed.push_back(std::move(object));
        return;
      }
    }
    if (before_.model.Words().Of(one)->role == Role::kObject) ++diff.same;
  }

  ClassWords words_;
  Side before_;
  Side after_;
  const Tolerance& tolerance_;
  bool areOfTwoReleases_;
};

}  // namespace

std::optional<ModelDiff> CompareModels(const IfcDocument& before, const IfcDocument& after,
                                       const Tolerance& tolerance, const DiffProgress& progress) {
  return Comparison(before, after, tolerance).Run(progress);
}

}  // namespace corvel::host::diff
