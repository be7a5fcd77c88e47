// The folded model as the steps of federation see it: one container, and which of its objects came
// with which input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "core/main_container.h"
#include "core/ticker.h"
#include "merge/document.h"
#include "merge/federation/prefetch_object.h"
#include "merge/federation/sorted_objects.h"
#include "step/factories.h"

namespace corvel {

// An object that is in the model is filed and not deleted. One that gives way to another (the
// survivor) is not filed any more, and whoever refers to it is written with the survivor's number.
class FederatedModel {
 public:
  // `documents`: all that were folded into the first, in their order, the first included. All are
  // borrowed. `records`: those of each, as they were sorted before the fold; empty: they were not.
  explicit FederatedModel(std::vector<IfcDocument*> documents,
                          std::vector<std::shared_ptr<SortedObjects>> records = {});
  FederatedModel(const FederatedModel&) = delete;
  FederatedModel& operator=(const FederatedModel&) = delete;

  std::size_t InputCount() const { return documents_.size(); }
  IfcDocument& Document(std::size_t input) const { return *documents_[input]; }
  IfcDocument& Merged() const { return *documents_.front(); }
  IFC::MainContainer& Container() const { return *Merged().mainContainer; }
  // Nothing when the classes of the model are those of no release.
  std::optional<SchemaNamespace> Release() const;
  // The records of an input by the numbers of its file, whatever became of them.
  const NumberTable& RecordsOf(std::size_t input) const;
  // The project that those of all inputs gave way to. Null without one.
  IFC::IfcEntity* Project() const { return Container().FirstProject(); }

  bool Contains(const IFC::IfcEntity& entity) const {
    return entity.marker != IFC::kDeleted && Container().entities.Find(entity.marker) == &entity;
  }
  // The object itself, or the one that stands in the model for it. Null for null, for what was
  // deleted, and for what stayed behind in the fold.
  IFC::IfcEntity* InModel(IFC::IfcEntity* entity) const;

  // From here on `survivor` stands for `entity`. Both are in the model, and two objects.
  void GiveWay(IFC::IfcEntity& entity, IFC::IfcEntity& survivor);
  // As GiveWay, for very many, since nothing is remembered of it: `survivor` never gives way
  // itself. `number` is the one that `entity` is filed under, whatever its marker says by now.
  void GiveWayForGood(std::uint32_t number, IFC::IfcEntity& entity, const IFC::IfcEntity& survivor);
  // To be called behind the last step: whoever gave way to an object that gave way itself gets the
  // number of the last survivor.
  void Settle();
  // Leaves the object out of what is written: `$` stands in places that refer to it, and lists are
  // shorter by it.
  void Delete(IFC::IfcEntity& entity);

  // A new object with a GUID to be, of a class of the model's release; it came with no input. Null
  // (reported) as IfcDocument::CreateESet.
  IFC::IfcEntity* MakeRoot(const char* className);
  // Files an object of that kind. False: there is no number left.
  bool AddRoot(IFC::IfcEntity& made);
  const std::vector<IFC::IfcEntity*>& MadeRoots() const { return madeRoots_; }

  bool HasSurvivors() const { return !survivors_.empty(); }
  // Calls `action` with each object that gave way and the one that stands for it now, which may be
  // deleted. In no particular order.
  template <class Action>
  void ForEachThatGaveWay(Action action) const {
    for (const auto& [gone, survivor] : survivors_) action(*gone, *LastSurvivor(survivor));
  }

  // Calls `action` with each object with a GUID that came with an input and is in the model, in
  // ascending number of its file. They are looked for once, whoever asks. False as soon as the user
  // cancels; they are as many pieces for `ticker` as the input has objects.
  template <class Action>
  bool ForEachRootOf(std::size_t input, Ticker& ticker, Action action) const {
    return ForEachRootOf(
        input, ticker, [](const ClassFacts*) { return true; }, action);
  }
  // As ForEachRootOf, with those alone of whose class isWanted(facts) is true. It is asked once for
  // each class, with null for one of no release; objects of other classes cost next to nothing.
  template <class IsWanted, class Action>
  bool ForEachRootOf(std::size_t input, Ticker& ticker, IsWanted isWanted, Action action) const {
    return ForEachRoot(input, ticker, isWanted, [&](IFC::IfcEntity& entity) {
      if (Contains(entity)) action(entity);
    });
  }
  // As ForEachRootOf, also with those that gave way: `action` gets what stands for them.
  template <class IsWanted, class Action>
  bool ForEachRootWithSurvivorsOf(std::size_t input, Ticker& ticker, IsWanted isWanted,
                                  Action action) const {
    return ForEachRoot(input, ticker, isWanted, [&](IFC::IfcEntity& entity) {
      if (IFC::IfcEntity* const there = InModel(&entity)) action(*there);
    });
  }
  // As ForEachRootOf, also with those that were left out or gave way.
  template <class IsWanted, class Action>
  bool ForEachRootThatCameWith(std::size_t input, Ticker& ticker, IsWanted isWanted,
                               Action action) const {
    return ForEachRoot(input, ticker, isWanted, action);
  }
  // Calls `action` with the contexts, coordinate operations and applications of an input that are
  // in the model: few objects, which are looked for along with those that have a GUID.
  template <class Action>
  void ForEachResourceOf(std::size_t input, Action action) const {
    for (IFC::IfcEntity* const entity : SortedOf(input).Resources()) {
      if (Contains(*entity)) action(*entity);
    }
  }
  // Of the objects with a GUID that came with any input, whatever became of them: those whose GUID
  // another one has. In the order of the inputs and their numbers. Good until a GUID is changed.
  const std::vector<IFC::IfcEntity*>& HoldersOfSharedGuids() const;
  // Objects of all inputs, for the ticks of a loop over them.
  std::size_t ObjectCount() const;

 private:
  IFC::IfcEntity* LastSurvivor(IFC::IfcEntity* entity) const;
  const NumberTable& ObjectsOf(std::size_t input) const;
  // Of the objects of an input, whether they are in the model or not.
  SortedObjects& SortedOf(std::size_t input) const;

  // All of them; they are as many pieces for `ticker` as the input has objects.
  template <class IsWanted, class Action>
  bool ForEachRoot(std::size_t input, Ticker& ticker, IsWanted isWanted, Action action) const {
    const SortedObjects& sorted = SortedOf(input);
    const std::vector<IFC::IfcEntity*>& roots = sorted.Roots();
    const SortedObjects::Classes wanted = sorted.ClassesThat(isWanted);
    const std::size_t pieces = roots.empty() ? 0 : ObjectsOf(input).Size() / roots.size();
    for (std::size_t i = 0; i < roots.size(); ++i) {
      const std::size_t ahead = i + kObjectsAhead;
      if (ahead < roots.size() && wanted.HasThatOf(ahead)) PrefetchObject(roots[ahead]);
      if (wanted.HasThatOf(i)) action(*roots[i]);
      if (!ticker.Advance(pieces)) return false;
    }
    return true;
  }

  std::vector<IfcDocument*> documents_;
  // By input; nothing before somebody asked.
  mutable std::vector<std::shared_ptr<SortedObjects>> sorted_;
  mutable std::optional<std::vector<IFC::IfcEntity*>> holdersOfSharedGuids_;
  std::vector<IFC::IfcEntity*> madeRoots_;
  // By who gave way. A survivor may give way in turn.
  std::unordered_map<IFC::IfcEntity*, IFC::IfcEntity*> survivors_;
};

}  // namespace corvel
