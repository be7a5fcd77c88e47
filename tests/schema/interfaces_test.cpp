// Root, product, project and site as the engine sees them, in every release.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "schema/interfaces/interfaces.h"
#include "schema/record_model.h"

namespace corvel::test {

using IFC::IfcEntity;

namespace {

std::vector<IfcEntity*> ChildrenOf(const IfcEntity* entity) {
  IFC::ChildQueue queue;
  entity->collectChildren(queue);
  std::vector<IfcEntity*> children;
  for (std::size_t i = 0; i < queue.Size(); ++i) children.push_back(queue[i].entity);
  return children;
}

}  // namespace

// --- VirtualIfcRoot ------------------------------------------------------------------------------
class RootInterface : public EachRelease {
 protected:
  static bool OwnerHistoryIsMandatory() { return Schema() <= SchemaNamespace::IFC2X3; }
};
RUN_FOR_EACH_RELEASE(RootInterface);

TEST_P(RootInterface, SettingThreeNullsChangesNothing) {
  Add(1, "IFCOWNERHISTORY");
  auto& wall = AddAs<IFC::VirtualIfcRoot>(2, "IFCWALL('guid',#1,'name','text')");
  const std::string before = Written(&wall);
  wall.setRootAttributes(nullptr, nullptr, nullptr);
  EXPECT_EQ(before, Written(&wall));
  EXPECT_EQ("'guid',#1,'name','text'", FirstWritten(4, &wall));
}

TEST_P(RootInterface, EachArgumentReplacesItsAttributeOnly) {
  Add(1, "IFCOWNERHISTORY");
  IfcEntity* const other = Add(2, "IFCOWNERHISTORY");
  auto& wall = AddAs<IFC::VirtualIfcRoot>(3, "IFCWALL('guid',#1,'name','text')");
  wall.setRootAttributes("other", nullptr, nullptr);
  EXPECT_EQ("'other',#1,'name','text'", FirstWritten(4, &wall));
  wall.setRootAttributes(nullptr, other, nullptr);
  EXPECT_EQ("'other',#2,'name','text'", FirstWritten(4, &wall));
  wall.setRootAttributes(nullptr, nullptr, u"new");
  EXPECT_EQ("'other',#2,'new','text'", FirstWritten(4, &wall));
}

TEST_P(RootInterface, TextsAreKeptAsPointers) {
  const char* const guid = Pool().InternNarrow("kept");
  const ModelText name = Pool().InternText(u"kept");
  auto& wall = AddAs<IFC::VirtualIfcRoot>(1, "IFCWALL('guid',$,'name')");
  EXPECT_STREQ("guid", wall.getGlobalId());
  EXPECT_EQ(u"name", wall.getName().ToWide());
  wall.setRootAttributes(guid, nullptr, name);
  EXPECT_EQ(guid, wall.getGlobalId());
  EXPECT_EQ(name.Address(), wall.getName().Address());
}

TEST_P(RootInterface, SetGlobalIdKeepsThePointer) {
  const char* const guid = Pool().InternNarrow("kept");
  auto& wall = AddAs<IFC::VirtualIfcRoot>(1, "IFCWALL('guid',$,'name')");
  wall.setGlobalId(guid);
  EXPECT_EQ(guid, wall.getGlobalId());
}

TEST_P(RootInterface, NameThatIsSetIsPresent) {
  auto& wall = AddAs<IFC::VirtualIfcRoot>(1, "IFCWALL('guid',$,$)");
  EXPECT_FALSE(wall.getName().IsNull());
  wall.setRootAttributes(nullptr, nullptr, u"new");
  EXPECT_EQ(OwnerHistoryIsMandatory() ? "'guid',*,'new'" : "'guid',$,'new'",
            FirstWritten(3, &wall));
}

TEST_P(RootInterface, OwnerHistoryOfAnotherClassBecomesNull) {
  Add(1, "IFCOWNERHISTORY");
  IfcEntity* const person = Add(2, "IFCPERSON");
  auto& wall = AddAs<IFC::VirtualIfcRoot>(3, "IFCWALL('guid',#1,'name')");
  wall.setRootAttributes(nullptr, person, nullptr);
  EXPECT_EQ("'guid',*,'name'", FirstWritten(3, &wall));
}

TEST_P(RootInterface, ObjectWithoutOwnerHistoryKeepsWritingNoneWhereItIsOptional) {
  IfcEntity* const history = Add(1, "IFCOWNERHISTORY");
  auto& wall = AddAs<IFC::VirtualIfcRoot>(2, "IFCWALL('guid',$,'name')");
  wall.setRootAttributes(nullptr, history, nullptr);
  if (OwnerHistoryIsMandatory()) {
    EXPECT_EQ("'guid',#1,'name'", FirstWritten(3, &wall));
    EXPECT_EQ(std::vector<IfcEntity*>{history}, ChildrenOf(&wall));
  } else {
    EXPECT_EQ("'guid',$,'name'", FirstWritten(3, &wall));
    EXPECT_TRUE(ChildrenOf(&wall).empty());
  }
}

TEST_P(RootInterface, OwnerHistoryOfAnotherReleaseBecomesNull) {
  const SchemaNamespace other =
      Schema() == SchemaNamespace::IFC4 ? SchemaNamespace::IFC2X3 : SchemaNamespace::IFC4;
  if (ReleasesBuilt(other, other).empty()) GTEST_SKIP() << "left out of the build";
  RecordModel otherModel(other);
  Add(1, "IFCOWNERHISTORY");
  auto& wall = AddAs<IFC::VirtualIfcRoot>(2, "IFCWALL('guid',#1,'name')");
  wall.setRootAttributes(nullptr, otherModel.Add(1, "IFCOWNERHISTORY"), nullptr);
  EXPECT_EQ("'guid',*,'name'", FirstWritten(3, &wall));
}

// IfcVoxelData is a root that declares a second Name.
class VoxelDataInterface : public EachRelease {};
RUN_FOR_RELEASES(VoxelDataInterface, IFC4X4, IFC4X4);

TEST_P(VoxelDataInterface, NameOfARootIsTheOneBesideItsGuid) {
  auto& voxels =
      AddAs<IFC::VirtualIfcRoot>(1, "IFCREALVOXELDATA('guid',$,'name',$,$,$,$,'own name')");
  EXPECT_EQ(u"name", voxels.getName().ToWide());
  voxels.setRootAttributes(nullptr, nullptr, u"new");
  EXPECT_EQ("'guid',$,'new',$,$,$,$,'own name'", FirstWritten(8, &voxels));
}

// --- VirtualIfcProduct ---------------------------------------------------------------------------
class ProductInterface : public EachRelease {
 protected:
  static constexpr const char* kWallOn1 = "IFCWALL('guid',$,'name','text','type',#1)";

  IFC::VirtualLocalPlacement* AddPlacement(std::uint32_t number, const std::string& relativeTo) {
    return &AddAs<IFC::VirtualLocalPlacement>(number, "IFCLOCALPLACEMENT(" + relativeTo + ",$)");
  }
};
RUN_FOR_EACH_RELEASE(ProductInterface);

TEST_P(ProductInterface, ProductWithoutPlacementGetsABlankOneToBeFiled) {
  auto& wall = AddAs<IFC::VirtualIfcProduct>(1, "IFCWALL('guid',$,'name','text','type')");
  IFC::VirtualLocalPlacement* const made = wall.getRootPlacement(Pool());
  ASSERT_NE(nullptr, made);
  EXPECT_EQ(static_cast<std::uint32_t>(-6), made->marker);
  EXPECT_EQ(u"IfcLocalPlacement", WideString(made->getClassName()));
  made->marker = 7;
  EXPECT_EQ("IFCLOCALPLACEMENT($,*)", Written(made));
  EXPECT_EQ(std::vector<IfcEntity*>{made}, ChildrenOf(&wall));
}

TEST_P(ProductInterface, OwnPlacementIsOfAnyKind) {
  IfcEntity* const grid = Add(1, "IFCGRIDPLACEMENT");
  EXPECT_EQ(grid, AddAs<IFC::VirtualIfcProduct>(2, kWallOn1).getObjectPlacement());
  auto& wall = AddAs<IFC::VirtualIfcProduct>(3, "IFCWALL");
  EXPECT_EQ(nullptr, wall.getObjectPlacement());
  IFC::VirtualLocalPlacement* const made = wall.getRootPlacement(Pool());
  EXPECT_EQ(made, wall.getObjectPlacement());
}

TEST_P(ProductInterface, PlacementThatWasMadeIsTheRootFromThenOn) {
  auto& wall = AddAs<IFC::VirtualIfcProduct>(1, "IFCWALL");
  IFC::VirtualLocalPlacement* const made = wall.getRootPlacement(Pool());
  EXPECT_EQ(made, wall.getRootPlacement(Pool()));
}

TEST_P(ProductInterface, PlacementRelativeToNothingIsTheRoot) {
  IFC::VirtualLocalPlacement* const own = AddPlacement(1, "$");
  EXPECT_EQ(own, AddAs<IFC::VirtualIfcProduct>(2, kWallOn1).getRootPlacement(Pool()));
  EXPECT_EQ(1u, own->marker);
}

TEST_P(ProductInterface, OutermostPlacementOfTheChainIsTheRoot) {
  IFC::VirtualLocalPlacement* const outermost = AddPlacement(3, "$");
  AddPlacement(2, "#3");
  AddPlacement(1, "#2");
  EXPECT_EQ(outermost, AddAs<IFC::VirtualIfcProduct>(4, kWallOn1).getRootPlacement(Pool()));
}

TEST_P(ProductInterface, ProductOnAGridHasNoRootPlacement) {
  IfcEntity* const grid = Add(1, "IFCGRIDPLACEMENT");
  auto& wall = AddAs<IFC::VirtualIfcProduct>(2, kWallOn1);
  EXPECT_EQ(nullptr, wall.getRootPlacement(Pool()));
  EXPECT_EQ(std::vector<IfcEntity*>{grid}, ChildrenOf(&wall));
}

TEST_P(ProductInterface, PlacementOnAGridIsTheRoot) {
  Add(2, "IFCGRIDPLACEMENT");
  IFC::VirtualLocalPlacement* const own = AddPlacement(1, "#2");
  EXPECT_EQ(own, AddAs<IFC::VirtualIfcProduct>(3, kWallOn1).getRootPlacement(Pool()));
}

TEST_P(ProductInterface, ProductOnACircleOfPlacementsHasARoot) {
  IFC::VirtualLocalPlacement* const second = AddPlacement(2, "$");
  IFC::VirtualLocalPlacement* const own = AddPlacement(1, "#2");
  second->setPlacementRelTo(own);
  EXPECT_EQ(own, AddAs<IFC::VirtualIfcProduct>(3, kWallOn1).getRootPlacement(Pool()));
}

// --- IfcProjectVirtual, IfcSiteVirtual -----------------------------------------------------------
class ProjectInterface : public EachRelease {};
RUN_FOR_EACH_RELEASE(ProjectInterface);

TEST_P(ProjectInterface, ProjectTakesTheName) {
  const ModelText name = Pool().InternText(u"new");
  Add(1, "IFCOWNERHISTORY");
  auto& project = AddAs<IFC::IfcProjectVirtual>(2, "IFCPROJECT('guid',#1,$,'text')");
  project.setProjectName(name);
  EXPECT_EQ("'guid',#1,'new','text'", FirstWritten(4, &project));
  EXPECT_EQ(name.Address(), EntityCast<IFC::VirtualIfcRoot>(&project)->getName().Address());
}

TEST_P(ProjectInterface, NullLeavesTheNameOfTheProject) {
  Add(1, "IFCOWNERHISTORY");
  auto& project = AddAs<IFC::IfcProjectVirtual>(2, "IFCPROJECT('guid',#1,'name','text')");
  project.setProjectName(nullptr);
  EXPECT_EQ("'guid',#1,'name','text'", FirstWritten(4, &project));
}

class SiteInterface : public EachRelease {};
RUN_FOR_EACH_RELEASE(SiteInterface);

TEST_P(SiteInterface, ClearedRepresentationIsAbsent) {
  Add(1, "IFCOWNERHISTORY");
  IfcEntity* const placement = Add(2, "IFCLOCALPLACEMENT");
  IfcEntity* const shape = Add(3, "IFCPRODUCTDEFINITIONSHAPE");
  auto& site =
      AddAs<IFC::IfcSiteVirtual>(4, "IFCSITE('guid',#1,'name','text','type',#2,#3,$,.ELEMENT.)");
  EXPECT_EQ(shape, ChildrenOf(&site).back());
  site.clearRepresentation();
  EXPECT_EQ("'guid',#1,'name','text','type',#2,$", FirstWritten(7, &site));
  EXPECT_EQ(placement, ChildrenOf(&site).back());
}

}  // namespace corvel::test
