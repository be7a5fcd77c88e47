// Another way to tell what belongs to a model: everything that hangs together with the project.

#include "merge/marking.h"

namespace corvel {

namespace {

// Visits and saves all that hangs together with what it is given, over parents and children.
class Visitor {
 public:
  void VisitParents(const IFC::IfcEntity& entity) {
    for (IFC::IfcEntity* const parent : entity.parents.Members()) open_.Append(parent, true);
    Spread();
  }

  void VisitChildren(const IFC::IfcEntity& entity) {
    entity.CollectAllChildren(open_);
    Spread();
  }

 private:
  void Spread() {
    while (!open_.IsEmpty()) {
      IFC::IfcEntity* const entity = open_.TakeBack().entity;
      // Never taken back: both visits of a model share what they have seen.
      if (entity == nullptr || entity->visited) continue;
      entity->visited = true;
      entity->marker = IFC::kToSave;
      for (IFC::IfcEntity* const parent : entity->parents.Members()) open_.Append(parent, true);
      entity->CollectAllChildren(open_);
    }
  }

  IFC::ChildQueue open_;
};

}  // namespace

void VisitParentsAndSave(IFC::MainContainer& container, const IFC::IfcEntity& entity) {
  container.NoteChangedMarkers();
  Visitor().VisitParents(entity);
}

void VisitChildrenAndSave(IFC::MainContainer& container, const IFC::IfcEntity& entity) {
  container.NoteChangedMarkers();
  Visitor().VisitChildren(entity);
}

// What is left over is taken out by its marker. That is 0 for all of it, under which nothing is
// filed: nothing is taken out, and the marks alone are the result.
bool DeleteUnrelatedObjects(IFC::MainContainer& container, const IFC::IfcEntity* project,
                            ErrorReporter showError) {
  if (project == nullptr) {
    showError("", u"Unable to delete unrelated objects because project is NULL", kReportShow);
    return false;
  }
  VisitParentsAndSave(container, *project);
  VisitChildrenAndSave(container, *project);
  return true;
}

}  // namespace corvel
