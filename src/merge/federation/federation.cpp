#include "merge/federation/federation.h"

#include "core/shown_paths.h"
#include "core/ticker.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/federated_model.h"
#include "merge/federation/join_contexts.h"
#include "merge/federation/join_equal_objects.h"
#include "merge/federation/lost_hosts.h"
#include "merge/federation/mend_relations.h"
#include "merge/federation/place/drop_conversions.h"
#include "merge/federation/prune.h"
#include "merge/federation/renew_guids.h"
#include "merge/federation/share_equal.h"
#include "merge/federation/stamp_inputs.h"
#include "merge/federation/tree/join_trees.h"
#include "merge/federation/unite_relations.h"
#include "step/log/ifc_log.h"

namespace corvel {

namespace {

constexpr std::size_t kTicksOfStep = 50;

void Log(const WideString& text) { IfcLog::Instance().LogLine(text); }

WideString Count(std::size_t count) { return Widen(std::to_string(count)); }

class Steps {
 public:
  Steps(FederatedModel& model, ProgressCallback progress, RunObserver* observer)
      : model_(model), progress_(progress), observer_(observer) {}

  bool DropConversions(const OneMap& oneMap) {
    std::size_t dropped = 0;
    const bool done = Run(u"maps", [&](Ticker& ticker) {
      return corvel::DropConversions(model_, oneMap.leftovers, ticker, dropped);
    });
    Log(u"Objects left out since the map of the first model counts: " + Count(dropped));
    Tell({"place", {{"onOneMap", oneMap.documents.size()}, {"leftOut", dropped}}});
    return done;
  }

  bool JoinContexts(const OneMap& oneMap) {
    JoinedContexts counts;
    const bool done = Run(u"contexts", [&](Ticker& ticker) {
      return corvel::JoinContexts(model_, oneMap.documents, ticker, counts);
    });
    Log(u"Contexts joined: " + Count(counts.joined) + u", entered in the project: " +
        Count(counts.entered));
    for (const WideString& context : counts.apart) {
      Log(u"Context stays apart for its coordinate system: " + context);
    }
    Tell({"contexts",
          {{"joined", counts.joined}, {"entered", counts.entered}},
          {{"apart", &counts.apart}}});
    return done;
  }

  bool MendRelations() {
    MendedRelations& counts = mended_;
    const bool done = Run(u"relations", [&](Ticker& ticker) {
      return corvel::MendRelations(model_, ticker, counts);
    });
    Log(u"Members that left a later relation: " + Count(counts.left) + u", relations united: " +
        Count(counts.united) + u", gone: " + Count(counts.deleted.size()));
    Log(u"Property sets joined: " + Count(counts.propertySets));
    for (const WideString& difference : counts.differences) {
      Log(u"Differs, and the first stays: " + difference);
    }
    Tell({"mend",
          {{"left", counts.left},
           {"united", counts.united},
           {"gone", counts.deleted.size()},
           {"propertySets", counts.propertySets}},
          {{"differences", &counts.differences}}});
    return done;
  }

  bool ProposeTree(const TreeTask& task) {
    return Run(u"tree", [&](Ticker& ticker) { return corvel::ProposeTree(model_, task, ticker); });
  }

  bool JoinTrees(const TreeTask& task) {
    JoinedTrees counts;
    const bool done = Run(
        u"tree", [&](Ticker& ticker) { return corvel::JoinTrees(model_, task, ticker, counts); });
    Log(u"Sites, buildings and storeys joined: " + Count(counts.joined) +
        u", made parts for their shape: " + Count(counts.parts) + u", placements folded: " +
        Count(counts.folded));
    for (const WideString& objects : counts.ambiguous) {
      Log(u"Several would match, none is taken: " + objects);
    }
    Tell({"tree",
          {{"joined", counts.joined}, {"parts", counts.parts}, {"folded", counts.folded}},
          {{"ambiguous", &counts.ambiguous}}});
    return done;
  }

  bool JoinEqualObjects() {
    JoinedObjects counts;
    const bool done = Run(u"objects", [&](Ticker& ticker) {
      return corvel::JoinEqualObjects(model_, ticker, counts);
    });
    Log(u"Objects joined with an equal one: " + Count(counts.joined) + u", applications: " +
        Count(counts.applications));
    Tell({"objects", {{"joined", counts.joined}, {"applications", counts.applications}}});
    return done;
  }

  bool UniteRelations() {
    std::size_t united = 0;
    const bool done = Run(u"relations", [&](Ticker& ticker) {
      return corvel::UniteRelations(model_, ticker, united);
    });
    Log(u"Relations joined with one that says the same: " + Count(united));
    Tell({"relations", {{"joined", united}}});
    return done;
  }

  bool LeaveOutBelongings() {
    std::size_t leftOut = 0;
    const bool done = Run(u"relations", [&](Ticker& ticker) {
      return corvel::LeaveOutBelongings(model_, mended_, ticker, leftOut);
    });
    Log(u"Objects left out since they belonged to what was joined: " + Count(leftOut));
    Tell({"belongings", {{"leftOut", leftOut}}});
    return done;
  }

  bool RenewGuids(bool listed) {
    std::vector<RenewedGuid> renewed;
    const bool done =
        Run(u"GUIDs", [&](Ticker& ticker) { return corvel::RenewGuids(model_, ticker, renewed); });
    Log(u"GUIDs renewed: " + Count(renewed.size()));
    std::vector<WideString> differences;
    for (const auto& [object, input] : renewed) {
      if (!listed) break;
      const WideString path = model_.Document(input).getFilePath();
      differences.push_back(DisplayName(*object) + u" of " + ShownFileName(path));
      Log(u"Differs from the one whose GUID it had: " + differences.back());
    }
    Tell({"guids", {{"renewed", renewed.size()}}, {{"differences", &differences}}});
    return done;
  }

  bool Prune() {
    std::size_t hostless = 0;
    std::size_t pruned = 0;
    const bool done = Run(u"prune", [&](Ticker& ticker) {
      return DeleteWhatLostItsHost(model_, ticker, hostless) &&
             corvel::Prune(model_, ticker, pruned);
    });
    Log(u"Objects and relations left out since their hosts are gone: " + Count(hostless));
    Log(u"Objects left out since nothing needs them: " + Count(pruned));
    Tell({"prune", {{"hostless", hostless}, {"unneeded", pruned}}});
    return done;
  }

  bool ShareEqual(NumberForm numbers) {
    std::size_t shared = 0;
    const bool done = Run(u"share", [&](Ticker& ticker) {
      return corvel::ShareEqual(model_, numbers, ticker, shared);
    });
    Log(u"Objects left out since an equal one is written: " + Count(shared));
    Tell({"share", {{"shared", shared}}});
    return done;
  }

  bool Stamp() {
    std::size_t stamped = 0;
    const bool done =
        Run(u"stamp", [&](Ticker& ticker) { return StampInputs(model_, ticker, stamped); });
    Log(u"Groups made for inputs: " + Count(stamped));
    Tell({"stamp", {{"groups", stamped}}});
    return done;
  }

 private:
  void Tell(const FederationNote& note) const {
    if (observer_ != nullptr) observer_->StepIsDone(note);
  }

  template <class Step>
  bool Run(const WideString& name, Step step) const {
    Ticker ticker({.callback = progress_, .text = &name},
                  {.block = model_.ObjectCount() / kTicksOfStep + 1});
    return step(ticker);
  }

  FederatedModel& model_;
  ProgressCallback progress_;
  RunObserver* observer_;
  MendedRelations mended_;
};

}  // namespace

PreparedFederation PrepareFederation(const std::vector<IfcDocument*>& documents,
                                     const FederationChoices& choices) {
  PreparedFederation prepared;
  const bool matchesTrees = choices.JoinTrees() || choices.proposeTree;
  const bool renewsGuids = choices.guids != GuidHandling::kKeep;
  if (!matchesTrees && !renewsGuids) return prepared;
  for (std::size_t input = 0; input < documents.size(); ++input) {
    IFC::MainContainer& container = *documents[input]->mainContainer;
    prepared.records.push_back(std::make_shared<SortedObjects>(container.originalEntities));
    SortedObjects& records = *prepared.records.back();
    if (matchesTrees) NoteSpatialGuids(records, prepared.guids);
    if (!renewsGuids) continue;
    // Inputs that are to be joined get the same GUIDs where they are the same.
    const std::size_t position = choices.guids == GuidHandling::kJoin ? 0 : input;
    const std::size_t renewed = RenewGuidsWithin(container, records, position);
    if (renewed != 0) {
      Log(u"GUIDs renewed within " + documents[input]->getFilePath() + u": " + Count(renewed));
    }
  }
  return prepared;
}

bool RunFederation(const std::vector<IfcDocument*>& documents, const FederationChoices& choices,
                   const PreparedFederation& prepared, ErrorReporter showError,
                   ProgressCallback progress, RunObserver* observer) {
  if (!choices.ChangeModel()) return true;
  FederatedModel model(documents, prepared.records);
  Steps steps(model, progress, observer);
  if (choices.placeByMap && !steps.DropConversions(prepared.oneMap)) return false;
  if (choices.joinContexts && !steps.JoinContexts(prepared.oneMap)) return false;
  const TreeTask tree = {choices, prepared.guids, showError};
  if (choices.proposeTree) return steps.ProposeTree(tree);
  const bool joinsTrees = choices.JoinTrees();
  const bool joinsObjects = choices.guids == GuidHandling::kJoin;
  if (joinsTrees && !steps.JoinTrees(tree)) return false;
  if (joinsObjects && !steps.JoinEqualObjects()) return false;
  if ((joinsTrees || joinsObjects) && !steps.MendRelations()) return false;
  if (joinsObjects && !steps.UniteRelations()) return false;
  if (choices.guids != GuidHandling::kKeep && !steps.RenewGuids(joinsObjects)) return false;
  const bool leavesBelongings = (joinsTrees || joinsObjects) && !choices.prune;
  if (leavesBelongings && !steps.LeaveOutBelongings()) return false;
  if (choices.prune && !steps.Prune()) return false;
  if (choices.shareEqual && !steps.ShareEqual(choices.numbers)) return false;
  if (choices.stamp && !steps.Stamp()) return false;
  model.Settle();
  return true;
}

}  // namespace corvel
