// How large the shapes of products are, as far as it shows without any geometry being worked out.
#pragma once

#include <array>
#include <optional>
#include <unordered_map>

#include "core/entity.h"
#include "merge/federation/named_attribute.h"
#include "merge/federation/per_class.h"
#include "merge/federation/tree/transform.h"
#include "merge/federation/tree/world_places.h"
#include "merge/report/shared/bounds.h"
#include "merge/report/shared/shape_points.h"

namespace corvel {

// Knows extrusions of profiles, meshes and faceted bodies, boxes, what is cut from such, and what
// is mapped from elsewhere, which is looked at once however often it is used. A curved profile
// counts by its points.
class ShapeBoxes {
 public:
  // In the coordinates of the product and the length unit of the model. Empty for a shape that is
  // none of these. `shape`: the Representation of a product.
  Bounds Of(const IFC::IfcEntity& shape);

 private:
  enum class Kind { kOther, kExtrusion, kMesh, kFaces, kBox, kCut, kTree, kMapped };

  Kind KindOf(const IFC::IfcEntity& item);
  Bounds OfRepresentation(const IFC::IfcEntity& representation, int depth);
  Bounds OfItem(const IFC::IfcEntity& item, int depth);
  Bounds BoundsOfProfile(const IFC::IfcEntity& profile);
  Bounds BoundsOfExtrusion(const IFC::IfcEntity& solid);
  Bounds OfMapped(const IFC::IfcEntity& item, int depth);
  const Bounds& OfSource(const IFC::IfcEntity& source, int depth);

  Bounds BoundsOfBox(const IFC::IfcEntity& box);
  Bounds ParametersOf(const IFC::IfcEntity& profile);
  Transform OperatorOf(const IFC::IfcEntity& target);
  Bounds OfOperand(NamedAttribute& attribute, const IFC::IfcEntity& item, int depth);
  Triple DirectionOf(const IFC::IfcEntity* direction, const Triple& absent);

  PerClass<Kind> kinds_;
  PlaceReader places_;
  ShapePoints points_;
  NamedAttribute coordinates_{"Coordinates"};  // of meshes: the list of their points
  NamedAttribute representations_{"Representations"};
  NamedAttribute identifier_{"RepresentationIdentifier"};
  NamedAttribute items_{"Items"};
  NamedAttribute firstOperand_{"FirstOperand"};
  NamedAttribute treeRoot_{"TreeRootExpression"};
  NamedAttribute outerCurve_{"OuterCurve"};
  NamedAttribute position_{"Position"};
  NamedAttribute sweptArea_{"SweptArea"};
  NamedAttribute extrudedDirection_{"ExtrudedDirection"};
  NamedAttribute ratios_{"DirectionRatios"};
  NamedAttribute depth_{"Depth"};
  NamedAttribute radius_{"Radius"};
  NamedAttribute corner_{"Corner"};
  // The size that parameters of a profile give it, those of the schema's own order of preference.
  std::array<NamedAttribute, 6> widths_{
      NamedAttribute{"XDim"},  NamedAttribute{"OverallWidth"},      NamedAttribute{"FlangeWidth"},
      NamedAttribute{"Width"}, NamedAttribute{"BottomFlangeWidth"}, NamedAttribute{"HeadWidth"}};
  std::array<NamedAttribute, 4> depths_{NamedAttribute{"YDim"}, NamedAttribute{"OverallDepth"},
                                        NamedAttribute{"Depth"}, NamedAttribute{"OverallHeight"}};
  NamedAttribute zDim_{"ZDim"};
  NamedAttribute source_{"MappingSource"};
  NamedAttribute target_{"MappingTarget"};
  NamedAttribute origin_{"MappingOrigin"};
  NamedAttribute mapped_{"MappedRepresentation"};
  NamedAttribute localOrigin_{"LocalOrigin"};
  NamedAttribute axis1_{"Axis1"};
  NamedAttribute axis2_{"Axis2"};
  NamedAttribute axis3_{"Axis3"};
  NamedAttribute scale_{"Scale"};
  NamedAttribute scale2_{"Scale2"};
  NamedAttribute scale3_{"Scale3"};
  std::unordered_map<const IFC::IfcEntity*, Bounds> sources_;
};

}  // namespace corvel
