// What sharing knows of the schemas, held against what was drawn from their texts.
#include "merge/federation/sharing_plan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "core/memory_pool.h"
#include "schema/attributes.h"
#include "schema/registry.h"

namespace corvel {
namespace {

// As the lists call them, by age.
constexpr std::array<std::string_view, 9> kReleasesOfLists = {"2x",  "2x2p", "2x2", "2x3", "4",
                                                              "4x1", "4x2",  "4x3", "4x4"};

std::ifstream OpenSharedList(const char* name) {
  return std::ifstream(std::string(CORVEL_SHARED_DIR) + "/federation/" + name);
}

// A place in the lists, "IfcStyledItem.Item".
struct ClassAndAttribute {
  std::string className;
  std::string attribute;

  explicit ClassAndAttribute(const std::string& place)
      : className(place.substr(0, place.find('.'))), attribute(place.substr(place.find('.') + 1)) {}
};

// One blank object of each class of one release.
class ReleaseInPlans {
 public:
  explicit ReleaseInPlans(SchemaNamespace schema) : factories_(FactoriesOf(schema)) {
    for (const ClassFacts& facts : factories_.classes->classes) {
      std::string name = facts.name;
      std::transform(name.begin(), name.end(), name.begin(),
                     [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
      if (const EntityCreator create = factories_.Find(name)) objects_[&facts] = create(pool_);
    }
  }

  // The class and its subtypes.
  std::vector<IFC::IfcEntity*> ObjectsOf(const std::string& className) const {
    std::vector<IFC::IfcEntity*> found;
    for (const auto& [facts, object] : objects_) {
      for (const ClassFacts* at = facts; at != nullptr; at = at->supertype) {
        if (at->name == className) found.push_back(object);
      }
    }
    return found;
  }
  bool MayBeShared(const std::string& className) {
    for (const IFC::IfcEntity* const object : ObjectsOf(className)) {
      if (plans_.Of(*object).isShareable) return true;
    }
    return false;
  }
  // The attribute stands in this part of the plan of the class and of each subtype.
  bool IsIn(std::vector<const AttributeFacts*> SharingPlan::*part, const ClassAndAttribute& place) {
    const auto objects = ObjectsOf(place.className);
    return std::all_of(objects.begin(), objects.end(), [&](const IFC::IfcEntity* object) {
      const auto& attributes = plans_.Of(*object).*part;
      return std::any_of(attributes.begin(), attributes.end(), [&](const AttributeFacts* facts) {
        return facts->name == place.attribute;
      });
    });
  }
  // Shareable classes that may stand there.
  bool MayLeadToShared(const AttributeFacts& facts) {
    for (const auto& [other, object] : objects_) {
      if (plans_.Of(*object).isShareable && facts.Admits(object)) return true;
    }
    return false;
  }
  SharingPlans& Plans() { return plans_; }

 private:
  const FactoryTable& factories_;
  MemoryPool pool_{1 << 16};
  std::map<const ClassFacts*, IFC::IfcEntity*> objects_;
  SharingPlans plans_;
};

// Each release of this build that a list names, "2x3,4"; in a list they have commas between them.
class ReleasesOfLists {
 public:
  template <class Action>
  void ForEachOf(const std::string& names, Action action) {
    std::istringstream in(names);
    for (std::string name; std::getline(in, name, ',');) {
      const auto* const known = std::find(kReleasesOfLists.begin(), kReleasesOfLists.end(), name);
      ASSERT_NE(kReleasesOfLists.end(), known) << name;
      const auto schema = static_cast<SchemaNamespace>(known - kReleasesOfLists.begin());
      try {
        const auto [release, isNew] = releases_.try_emplace(schema, schema);
        SCOPED_TRACE(name);
        action(release->second);
      } catch (const std::logic_error&) {
        // It is left out of this build.
      }
    }
  }

 private:
  std::map<SchemaNamespace, ReleaseInPlans> releases_;
};

// "IfcMaterialLayer.ToMaterialLayerSet <- IfcMaterialLayerSet.MaterialLayers 1:1 in 2x,2x2"
TEST(SharingPlans, KeepEachBoundOfAnInverse) {
  std::ifstream list = OpenSharedList("inverses.txt");
  if (!list) GTEST_SKIP() << "without ../shared/federation";
  ReleasesOfLists releases;
  int kept = 0;
  for (std::string line; std::getline(list, line);) {
    std::istringstream words(line);
    std::string inverse;
    std::string arrow;
    std::string place;
    words >> inverse >> arrow >> place;
    std::string bound;
    for (std::string in, names; words >> bound >> in >> names; words >> in) {
      if (bound.ends_with('?')) continue;
      releases.ForEachOf(names, [&](ReleaseInPlans& release) {
        if (!release.MayBeShared(ClassAndAttribute(inverse).className)) return;
        ++kept;
        const ClassAndAttribute from(place);
        EXPECT_TRUE(release.IsIn(&SharingPlan::owning, from) ||
                    release.IsIn(&SharingPlan::described, from))
            << line;
      });
    }
  }
  EXPECT_LT(10, kept);
}

// "  IfcPolyLoop.Polygon LIST [3:?] OF UNIQUE IfcCartesianPoint 2x,2x2p", and so for a SET.
TEST(SharingPlans, KnowEachListThatHoldsNothingTwice) {
  std::ifstream list = OpenSharedList("collections_and_parameters.txt");
  if (!list) GTEST_SKIP() << "without ../shared/federation";
  ReleasesOfLists releases;
  int known = 0;
  for (std::string line; std::getline(list, line);) {
    const bool isSet = line.find(" SET ") != std::string::npos;
    if (!line.starts_with("  ") || (!isSet && line.find(" UNIQUE ") == std::string::npos)) continue;
    std::istringstream words(line);
    const std::vector<std::string> all{std::istream_iterator<std::string>(words), {}};
    const std::string& member = all[all.size() - 2];
    releases.ForEachOf(all.back(), [&](ReleaseInPlans& release) {
      if (!release.MayBeShared(member)) return;
      ++known;
      EXPECT_TRUE(release.IsIn(&SharingPlan::distinct, ClassAndAttribute(all.front()))) << line;
    });
  }
  EXPECT_LT(40, known);
}

// What objects that only point at others use, and say nothing of.
constexpr std::string_view kUses[] = {"IfcApprovalActorRelationship.Actor",
                                      "IfcApprovalActorRelationship.Role",
                                      "IfcDirectionalLightSource.Direction",
                                      "IfcExtendedMaterialProperties.ExtendedProperties",
                                      "IfcIndexedColourMap.Colours",
                                      "IfcIndexedPolygonalTextureMap.Maps",
                                      "IfcIndexedPolygonalTextureMap.TexCoords",
                                      "IfcIndexedTriangleTextureMap.Maps",
                                      "IfcIndexedTriangleTextureMap.TexCoords",
                                      "IfcPointLightSource.Location",
                                      "IfcPresentationLayerAssignmentWithStyle.LayerColour",
                                      "IfcPresentationLayerAssignmentWithStyle.LayerCurveFont",
                                      "IfcPresentationLayerAssignmentWithStyle.LayerCurveWidth",
                                      "IfcPresentationLayerWithStyle.LayerStyles",
                                      "IfcReferenceEdge.Placement",
                                      "IfcReferenceFace.Placement",
                                      "IfcReferenceVertex.Placement",
                                      "IfcSpotLightSource.Direction",
                                      "IfcSpotLightSource.Location",
                                      "IfcTextureMap.Maps",
                                      "IfcTextureMap.Vertices"};

// "  IfcIndexedColourMap 4,4x1" below a heading of its own.
TEST(SharingPlans, KnowWhatEachPointingObjectDescribes) {
  std::ifstream list = OpenSharedList("collections_and_parameters.txt");
  if (!list) GTEST_SKIP() << "without ../shared/federation";
  ReleasesOfLists releases;
  std::set<std::string> others;
  std::string line;
  std::getline(list, line);
  while (std::getline(list, line) && line.starts_with("  ")) {
    std::istringstream words(line);
    std::string className;
    std::string names;
    words >> className >> names;
    releases.ForEachOf(names, [&](ReleaseInPlans& release) {
      for (IFC::IfcEntity* const object : release.ObjectsOf(className)) {
        const SharingPlan& plan = release.Plans().Of(*object);
        for (const AttributeFacts* const facts : plan.references) {
          if (plan.IsDescribed(*facts) || !release.MayLeadToShared(*facts)) continue;
          others.insert(std::string(FindFacts(*object)->name) + "." + facts->name);
        }
      }
    });
  }
  for (const std::string_view use : kUses) others.erase(std::string(use));
  EXPECT_EQ(std::set<std::string>(), others);
}

}  // namespace
}  // namespace corvel
