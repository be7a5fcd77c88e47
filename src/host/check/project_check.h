// The project, its units and its contexts.
#pragma once

#include <cstdint>
#include <vector>

#include "core/entity.h"
#include "host/check/findings.h"
#include "step/class_facts.h"

namespace corvel::host {

// Takes the objects of a model one after the other.
class ProjectCheck {
 public:
  enum class Role : std::uint8_t {
    kNone,
    kProject,
    kLibrary,  // names units and contexts as a project does
    kUnits,
    kContext,     // one that a project has to list
    kSubContext,  // one that belongs to another
    kRepresentation
  };
  static Role RoleOf(const ClassFacts& facts);

  void Look(IFC::IfcEntity& entity, Role role);
  // Behind the last object.
  void Finish(Findings& findings) const;

 private:
  bool HasGeometricContext() const;
  void TellUnlisted(const std::vector<IFC::IfcEntity*>& objects, const char* attribute, RuleId rule,
                    Findings& findings) const;

  std::vector<IFC::IfcEntity*> projects_;
  std::vector<IFC::IfcEntity*> listing_;  // projects and libraries
  std::vector<IFC::IfcEntity*> units_;
  std::vector<IFC::IfcEntity*> contexts_;
  bool hasRepresentations_ = false;
};

}  // namespace corvel::host
