#include "host/diff/model_diff.h"

#include <algorithm>
#include <string_view>
#include <utility>

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
  constexpr std::size_t kAway = 8;
  const auto& objects = model.Objects();
  std::vector<ObjectLabel> labels;
  labels.reserve(
      static_cast<std::size_t>(std::count(others.begin(), others.end(), Pairing::kNone)));
  for (std::size_t i = 0; i < others.size(); ++i) {
    if (i + kAway < others.size()) FetchRecord(objects[i + kAway]);
    if (others[i] == Pairing::kNone) labels.push_back(LabelOf(*objects[i]));
  }
  return labels;
}

class Comparison {
 public:
  Comparison(const IfcDocument& before, const IfcDocument& after, const Tolerance& tolerance,
             Shortcuts shortcuts)
      : before_(before, words_, tolerance, shortcuts),
        after_(after, words_, tolerance, shortcuts),
        tolerance_(tolerance),
        shortcuts_(shortcuts),
        areOfTwoReleases_(before.KnownSchemaIdentifier() != after.KnownSchemaIdentifier()) {}

  std::optional<ModelDiff> Run(const DiffProgress& progress) {
    constexpr int kPaired = 30;
    ModelDiff diff;
    diff.before = FileOf(before_.model.Document(), before_.model);
    diff.after = FileOf(after_.model.Document(), after_.model);
    if (!progress(0)) return std::nullopt;
    const Pairing pairing = PairObjects(before_.facts, after_.facts, shortcuts_);
    diff.removed = Unpaired(before_.model, pairing.laterOf);
    diff.added = Unpaired(after_.model, pairing.earlierOf);
    Lockstep lockstep(before_.model, after_.model, pairing, tolerance_, shortcuts_);
    lockstep.WalkValues();
    ObjectChanges changes(before_.facts, after_.facts, tolerance_, lockstep);
    const std::size_t count = pairing.laterOf.size();
    for (std::size_t i = 0; i < count; ++i) {
      const auto done = static_cast<int>(i * (100 - kPaired) / count);
      if (i % kObjectsInATick == 0 && !progress(kPaired + done)) return std::nullopt;
      if (pairing.laterOf[i] != Pairing::kNone) Compare(i, pairing, lockstep, changes, diff);
    }
    return diff;
  }

 private:
  static constexpr std::size_t kObjectsInATick = 256;

  struct Side {
    Side(const IfcDocument& document, ClassWords& words, const Tolerance& tolerance,
         Shortcuts shortcuts)
        : model(document, words, shortcuts),
          values(model, tolerance),
          facts(model, values, tolerance) {}
    ComparedModel model;
    ValueDigests values;
    ObjectFacts facts;
  };

  bool HaveOneGuid(std::size_t before, std::size_t after) const {
    return std::string_view(before_.model.GuidOf(before)) == after_.model.GuidOf(after);
  }

  void Compare(std::size_t before, const Pairing& pairing, Lockstep& lockstep,
               ObjectChanges& changes, ModelDiff& diff) {
    const std::size_t after = pairing.laterOf[before];
    const bool isObject = before_.model.WordOf(before).role == Role::kObject;
    if (isObject && !pairing.isFoundByIdentity[before] && !HaveOneGuid(before, after)) {
      diff.renamed.emplace_back(LabelOf(*before_.model.Objects()[before]),
                                LabelOf(*after_.model.Objects()[after]));
    }
    // Objects of two releases are never in step.
    const bool same =
        lockstep.Same(before, after) ||
        (areOfTwoReleases_ && before_.facts.WholeOf(before) == after_.facts.WholeOf(after));
    if (!same || !changes.StandOnGridsAtOnePlace(before, after)) {
      ChangedObject object = changes.Of(before, after);
      if (!object.changes.empty()) {
        diff.changed.push_back(std::move(object));
        return;
      }
    }
    if (isObject) ++diff.same;
  }

  ClassWords words_;
  Side before_;
  Side after_;
  const Tolerance& tolerance_;
  Shortcuts shortcuts_;
  bool areOfTwoReleases_;
};

}  // namespace

std::optional<ModelDiff> CompareModels(const IfcDocument& before, const IfcDocument& after,
                                       const Tolerance& tolerance, const DiffProgress& progress,
                                       Shortcuts shortcuts) {
  return Comparison(before, after, tolerance, shortcuts).Run(progress);
}

}  // namespace corvel::host::diff
