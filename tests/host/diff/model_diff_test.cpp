#include "host/diff/model_diff.h"

#include <string>

#include "host/diff/diff_of_models.h"

namespace corvel::host::diff {

namespace {

using ModelDiffTest = test::ReadTest;

const std::string kUnits =
    "#1=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);#2=IFCUNITASSIGNMENT((#1));"
    "#3=IFCPROJECT('project',$,'P',$,$,$,$,(#4),#2);"
    "#4=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-5,#5,$);#5=IFCAXIS2PLACEMENT3D(#6,$,$);"
    "#6=IFCCARTESIANPOINT((0.,0.,0.));";

const std::string kHouse =
    kUnits +
    "#10=IFCBUILDINGSTOREY('storey',$,'Level 1',$,$,#11,$,$,.ELEMENT.,0.);"
    "#11=IFCLOCALPLACEMENT($,#5);"
    "#20=IFCWALL('wall',$,'Wall 1',$,$,#21,#25,'T1',.STANDARD.);"
    "#21=IFCLOCALPLACEMENT(#11,#22);#22=IFCAXIS2PLACEMENT3D(#23,$,$);"
    "#23=IFCCARTESIANPOINT((1000.,0.,0.));"
    "#25=IFCPRODUCTDEFINITIONSHAPE($,$,(#26));"
    "#26=IFCSHAPEREPRESENTATION(#4,'Body','SweptSolid',(#27));"
    "#27=IFCEXTRUDEDAREASOLID(#28,#5,#29,3000.);"
    "#28=IFCRECTANGLEPROFILEDEF(.AREA.,$,$,200.,4000.);#29=IFCDIRECTION((0.,0.,1.));"
    "#30=IFCDOOR('door',$,'Door 1',$,$,#31,$,$,2000.,900.,$,$,$);"
    "#31=IFCLOCALPLACEMENT(#21,#5);"
    "#40=IFCRELCONTAINEDINSPATIALSTRUCTURE('r1',$,$,$,(#20,#30),#10);"
    "#41=IFCPROPERTYSET('p1',$,'Pset_WallCommon',$,(#42,#43));"
    "#42=IFCPROPERTYSINGLEVALUE('FireRating',$,IFCLABEL('F30'),$);"
    "#43=IFCPROPERTYSINGLEVALUE('IsExternal',$,IFCBOOLEAN(.T.),$);"
    "#44=IFCRELDEFINESBYPROPERTIES('r2',$,$,$,(#20),#41);"
    "#45=IFCELEMENTQUANTITY('q1',$,'Qto_WallBaseQuantities',$,$,(#46));"
    "#46=IFCQUANTITYLENGTH('Length',$,$,4000.,$);"
    "#47=IFCRELDEFINESBYPROPERTIES('r3',$,$,$,(#20),#45);"
    "#50=IFCMATERIAL('Brick',$,$);#51=IFCRELASSOCIATESMATERIAL('r4',$,$,$,(#20),#50);"
    "#52=IFCWALLTYPE('type',$,'W',$,$,$,$,$,$,.STANDARD.);"
    "#53=IFCRELDEFINESBYTYPE('r5',$,$,$,(#20),#52);"
    "#60=IFCSTYLEDITEM(#27,(#61),$);#61=IFCSURFACESTYLE('Red',.BOTH.,(#62));"
    "#62=IFCSURFACESTYLESHADING(#63,$);#63=IFCCOLOURRGB($,1.,0.,0.);";

std::string ChangesWith(const std::string& from, const std::string& to) {
  return ChangesOf(kHouse, With(kHouse, from, to));
}

}  // namespace

TEST_F(ModelDiffTest, AModelIsTheSameAsItself) {
  const ModelDiff diff = DiffOf(kHouse, kHouse);
  EXPECT_TRUE(diff.IsEmpty());
  EXPECT_EQ(5u, diff.same);
  EXPECT_EQ(
      "--- a.ifc (IFC4, 5 objects)\n"
      "+++ b.ifc (IFC4, 5 objects)\n"
      "no difference\n",
      TextOf(diff));
}

TEST_F(ModelDiffTest, NumbersOrderAndGuidsOfRelationsAreNoDifference) {
  EXPECT_EQ("",
            ChangesOf("#3=IFCPROJECT('project',$,'P',$,$,$,$,$,$);#7=IFCWALL('a',$,$,$,$,$,$,$,$);"
                      "#8=IFCWALL('b',$,$,$,$,$,$,$,$);#9=IFCSITE('s',$,$,$,$,$,$,$,$,$,$,$,$,$);"
                      "#10=IFCRELCONTAINEDINSPATIALSTRUCTURE('r',$,$,$,(#7,#8),#9);"
                      "#11=IFCPROPERTYSET('ps',$,'P',$,(#12,#13));"
                      "#12=IFCPROPERTYSINGLEVALUE('A',$,$,$);#13=IFCPROPERTYSINGLEVALUE('B',$,$,$);"
                      "#14=IFCRELDEFINESBYPROPERTIES('rp',$,$,$,(#7,#8),#11);",
                      // One relation has become two, and everything has another number.
                      "#91=IFCRELCONTAINEDINSPATIALSTRUCTURE('x',$,$,$,(#80),#30);"
                      "#92=IFCRELCONTAINEDINSPATIALSTRUCTURE('y',$,$,$,(#70),#30);"
                      "#21=IFCPROPERTYSET('z',$,'P',$,(#23,#22));"
                      "#22=IFCPROPERTYSINGLEVALUE('A',$,$,$);#23=IFCPROPERTYSINGLEVALUE('B',$,$,$);"
                      "#24=IFCRELDEFINESBYPROPERTIES('u',$,$,$,(#80,#70),#21);"
                      "#30=IFCSITE('s',$,$,$,$,$,$,$,$,$,$,$,$,$);"
                      "#80=IFCWALL('b',$,$,$,$,$,$,$,$);#70=IFCWALL('a',$,$,$,$,$,$,$,$);"
                      "#99=IFCPROJECT('project',$,'P',$,$,$,$,$,$);"));
}

TEST_F(ModelDiffTest, OwnerHistoriesAreNoDifference) {
  EXPECT_EQ(
      "", ChangesOf("#1=IFCWALL('w',#2,$,$,$,$,$,$,$);"
                    "#2=IFCOWNERHISTORY(#3,#3,$,.ADDED.,$,$,$,1);#3=IFCPERSON('a',$,$,$,$,$,$,$);",
                    "#1=IFCWALL('w',$,$,$,$,$,$,$,$);"));
}

TEST_F(ModelDiffTest, AttributesAreToldAsTheyWereAndAre) {
  EXPECT_EQ(
      "~ IfcWall wall 'North' #20\n"
      "    Name: 'Wall 1' -> 'North'\n",
      ChangesWith("'Wall 1'", "'North'"));
  EXPECT_EQ(
      "~ IfcWall wall 'Wall 1' #20\n"
      "    Tag: 'T1' -> (none)\n"
      "    PredefinedType: STANDARD -> SHEAR\n",
      ChangesWith("'T1',.STANDARD.", "$,.SHEAR."));
  EXPECT_EQ(
      "~ IfcDoor door 'Door 1' #30\n"
      "    OverallHeight: 2 m -> 2.1 m\n",
      ChangesWith("2000.,900.", "2100.,900."));
}

TEST_F(ModelDiffTest, PropertiesAreToldBySetAndName) {
  EXPECT_EQ(
      "~ IfcWall wall 'Wall 1' #20\n"
      "    Pset_WallCommon.FireRating: 'F30' -> 'F60'\n",
      ChangesWith("IFCLABEL('F30')", "IFCLABEL('F60')"));
  EXPECT_EQ(
      "~ IfcWall wall 'Wall 1' #20\n"
      "    Pset_WallCommon.FireRating: IfcLabel 'F30' -> IfcText 'F30'\n",
      ChangesWith("IFCLABEL('F30')", "IFCTEXT('F30')"));
  EXPECT_EQ(
      "~ IfcWall wall 'Wall 1' #20\n"
      "    Pset_WallCommon.IsExternal: true -> (none)\n",
      ChangesWith("(#42,#43)", "(#42)"));
  EXPECT_EQ(
      "~ IfcWall wall 'Wall 1' #20\n"
      "    Pset_WallCommon.FireRating: 'F30' -> (none)\n"
      "    Pset_WallCommon.IsExternal: true -> (none)\n"
      "    Pset_X.FireRating: (none) -> 'F30'\n"
      "    Pset_X.IsExternal: (none) -> true\n",
      ChangesWith("'Pset_WallCommon'", "'Pset_X'"));
  EXPECT_EQ(
      "~ IfcWall wall 'Wall 1' #20\n"
      "    Qto_WallBaseQuantities.Length: 4 m -> 4.5 m\n",
      ChangesWith("'Length',$,$,4000.", "'Length',$,$,4500."));
}

TEST_F(ModelDiffTest, PropertiesOfATypeAreItsOwn) {
  const std::string withSet = With(kHouse, "'type',$,'W',$,$,$", "'type',$,'W',$,$,(#70)") +
                              "#70=IFCPROPERTYSET('p7',$,'Pset_Type',$,(#71));"
                              "#71=IFCPROPERTYSINGLEVALUE('U',$,IFCREAL(0.5),$);";
  EXPECT_EQ(
      "~ IfcWallType type 'W' #52\n"
      "    Pset_Type.U: (none) -> 0.5\n",
      ChangesOf(kHouse, withSet));
  EXPECT_EQ(
      "~ IfcWallType type 'W' #52\n"
      "    Pset_Type.U: 0.5 -> 0.7\n",
      ChangesOf(withSet, With(withSet, "IFCREAL(0.5)", "IFCREAL(0.7)")));
}

TEST_F(ModelDiffTest, AMoveOfManyIsOneLine) {
  EXPECT_EQ(
      "* 3 objects (IfcBuildingStorey 1, IfcDoor 1, IfcWall 1)\n"
      "    moved by 5 m (3, 4, 0)\n",
      ChangesWith("#11=IFCLOCALPLACEMENT($,#5);",
                  "#11=IFCLOCALPLACEMENT($,#70);#70=IFCAXIS2PLACEMENT3D(#71,$,$);"
                  "#71=IFCCARTESIANPOINT((3000.,4000.,0.));"));
}

TEST_F(ModelDiffTest, AMoveIsToldInTheWorldAndInMetres) {
  EXPECT_EQ(
      "~ IfcWall wall 'Wall 1' #20\n"
      "    moved by 0.5 m (0.5, 0, 0)\n"
      "~ IfcDoor door 'Door 1' #30\n"
      "    moved by 0.5 m (0.5, 0, 0)\n",
      ChangesWith("((1000.,0.,0.))", "((1500.,0.,0.))"));
}

TEST_F(ModelDiffTest, AnotherPlacementAtTheSamePlaceIsNoMove) {
  EXPECT_EQ("", ChangesWith("#31=IFCLOCALPLACEMENT(#21,#5);", "#31=IFCLOCALPLACEMENT($,#22);"));
}

TEST_F(ModelDiffTest, ATurnIsToldByAngleAndAxis) {
  EXPECT_EQ(
      "~ IfcDoor door 'Door 1' #30\n"
      "    turned by 90 degrees about (0, 0, 1)\n",
      ChangesWith("#31=IFCLOCALPLACEMENT(#21,#5);",
                  "#31=IFCLOCALPLACEMENT(#21,#70);#70=IFCAXIS2PLACEMENT3D(#6,#29,#71);"
                  "#71=IFCDIRECTION((0.,1.,0.));"));
}

TEST_F(ModelDiffTest, WhatTurnsTogetherIsOneLine) {
  EXPECT_EQ(
      "* 3 objects (IfcBuildingStorey 1, IfcDoor 1, IfcWall 1)\n"
      "    turned together by 180 degrees about (0, 0, 1), origin to (2, 0, 0)\n",
      ChangesWith("#11=IFCLOCALPLACEMENT($,#5);",
                  "#11=IFCLOCALPLACEMENT($,#70);#70=IFCAXIS2PLACEMENT3D(#72,#29,#71);"
                  "#71=IFCDIRECTION((-1.,0.,0.));#72=IFCCARTESIANPOINT((2000.,0.,0.));"));
}

TEST_F(ModelDiffTest, ShapesAreToldByWhereTheyDiffer) {
  EXPECT_EQ(
      "~ IfcWall wall 'Wall 1' #20\n"
      "    Representation.Representations[Body].Items[1].Depth: 3 m -> 3.2 m\n",
      ChangesWith("#29,3000.)", "#29,3200.)"));
}

TEST_F(ModelDiffTest, WhatOnlyDescribesAShapeBelongsToIt) {
  EXPECT_EQ(
      "~ IfcWall wall 'Wall 1' #20\n"
      "    Representation.Representations[B...Styles[Red].Styles[1].SurfaceColour.Red:\n"
      "      - 1\n"
      "      + 0.5\n",
      ChangesWith("IFCCOLOURRGB($,1.", "IFCCOLOURRGB($,0.5"));
}

TEST_F(ModelDiffTest, RelationsAreToldByWhatTheyLeadTo) {
  EXPECT_EQ(
      "~ IfcWall wall 'Wall 1' #20\n"
      "    material.Name: 'Brick' -> 'Stone'\n",
      ChangesWith("'Brick'", "'Stone'"));
  EXPECT_EQ(
      "~ IfcWall wall 'Wall 1' #20\n"
      "    type: IfcWallType 'W' -> (none)\n",
      ChangesWith("#53=IFCRELDEFINESBYTYPE('r5',$,$,$,(#20),#52);", ""));
  EXPECT_EQ(
      "+ IfcBuildingStorey storey2 'Level 2' #70\n"
      "~ IfcDoor door 'Door 1' #30\n"
      "    contained in: IfcBuildingStorey 'Level 1' -> IfcBuildingStorey 'Level 2'\n",
      ChangesWith("(#20,#30),#10);",
                  "(#20),#10);#71=IFCRELCONTAINEDINSPATIALSTRUCTURE('r7',$,$,$,(#30),#70);"
                  "#70=IFCBUILDINGSTOREY('storey2',$,'Level 2',$,$,#11,$,$,.ELEMENT.,0.);"));
  EXPECT_EQ(
      "~ IfcWall wall 'Wall 1' #20\n"
      "    material.Description: (none) -> 'outside'\n",
      ChangesWith("'r4',$,$,$", "'r4',$,$,'outside'"));
}

TEST_F(ModelDiffTest, ClassesMayChange) {
  EXPECT_EQ(
      "~ IfcWallStandardCase wall 'Wall 1' #20\n"
      "    class: IfcWall -> IfcWallStandardCase\n",
      ChangesWith("#20=IFCWALL(", "#20=IFCWALLSTANDARDCASE("));
}

TEST_F(ModelDiffTest, ObjectsComeAndGo) {
  EXPECT_EQ(
      "- IfcDoor door 'Door 1' #30\n"
      "+ IfcSlab slab 'S' #70\n",
      ChangesOf(kHouse,
                With(With(kHouse, "#30=IFCDOOR('door',$,'Door 1',$,$,#31,$,$,2000.,900.,$,$,$);",
                          "#70=IFCSLAB('slab',$,'S',$,$,$,$,$,$);"),
                     "(#20,#30)", "(#20)")));
}

TEST_F(ModelDiffTest, AnObjectIsFoundUnderAnotherGuidByContentAndPlace) {
  EXPECT_EQ(
      "= IfcDoor other 'Door 1' #30\n"
      "    GUID: door -> other\n",
      ChangesWith("'door'", "'other'"));
}

TEST_F(ModelDiffTest, AnObjectIsFoundUnderAnotherGuidByNameAndPlaceOfItsOwn) {
  EXPECT_EQ(
      "= IfcDoor other 'Door 1' #30\n"
      "    GUID: door -> other\n"
      "~ IfcDoor other 'Door 1' #30\n"
      "    OverallWidth: 0.9 m -> 1 m\n",
      ChangesWith("'door',$,'Door 1',$,$,#31,$,$,2000.,900.",
                  "'other',$,'Door 1',$,$,#31,$,$,2000.,1000."));
}

TEST_F(ModelDiffTest, OfSeveralAlikeUnderOtherGuidsThoseArePairedThatSayTheSame) {
  const std::string two =
      "#1=IFCWALL('a',$,'W',$,$,$,$,'first',$);#2=IFCWALL('b',$,'W',$,$,$,$,'second',$);";
  const std::string swapped =
      "#1=IFCWALL('c',$,'W',$,$,$,$,'second',$);#2=IFCWALL('d',$,'W',$,$,$,$,'first',$);";
  EXPECT_EQ(
      "= IfcWall d 'W' #2\n"
      "    GUID: a -> d\n"
      "= IfcWall c 'W' #1\n"
      "    GUID: b -> c\n",
      ChangesOf(two, swapped));
  // The one of the two that is left has a look of its own then.
  EXPECT_EQ(
      "= IfcWall d 'W' #2\n"
      "    GUID: a -> d\n"
      "= IfcWall c 'W' #1\n"
      "    GUID: b -> c\n"
      "~ IfcWall c 'W' #1\n"
      "    Tag: 'second' -> 'third'\n",
      ChangesOf(two, With(swapped, "'second'", "'third'")));
}

TEST_F(ModelDiffTest, TheOrderOfASetIsNoDifference) {
  const auto wall = [](const std::string& properties) {
    std::string model =
        "#1=IFCWALL('w',$,$,$,$,$,$,$,$);#2=IFCRELDEFINESBYPROPERTIES('r',$,$,$,(#1),#3);"
        "#3=IFCPROPERTYSET('p',$,'P',$,(" +
        properties + "));";
    for (int i = 10; i < 110; ++i) {
      const std::string number = std::to_string(i);
      model +=
          "#" + number + "=IFCPROPERTYSINGLEVALUE('" + number + "',$,IFCREAL(" + number + ".),$);";
    }
    return model;
  };
  const auto numbers = [](int first, int last) {
    std::string text;
    for (int i = first; i != last; i += first < last ? 1 : -1) {
      text += (text.empty() ? "#" : ",#") + std::to_string(i);
    }
    return text;
  };
  EXPECT_EQ("", ChangesOf(wall(numbers(10, 30)), wall(numbers(29, 9))));
  EXPECT_EQ("", ChangesOf(wall(numbers(10, 110)), wall(numbers(109, 9))));
  EXPECT_EQ(
      "~ IfcWall w #1\n"
      "    P.10: 10 -> (none)\n",
      ChangesOf(wall(numbers(10, 30)), wall(numbers(29, 10))));
}

TEST_F(ModelDiffTest, TheOrderOfDescriptionsAndRelationsIsNoDifference) {
  const std::string layers =
      "#80=IFCPRESENTATIONLAYERASSIGNMENT('L1',$,(#27),$);"
      "#81=IFCPRESENTATIONLAYERASSIGNMENT('L2',$,(#27),$);";
  const std::string otherLayers =
      "#80=IFCPRESENTATIONLAYERASSIGNMENT('L2',$,(#27),$);"
      "#81=IFCPRESENTATIONLAYERASSIGNMENT('L1',$,(#27),$);";
  EXPECT_EQ("", ChangesOf(kHouse + layers, kHouse + otherLayers));
  EXPECT_NE("", ChangesOf(kHouse + layers, With(kHouse + otherLayers, "'L2'", "'L3'")));
  std::string other =
      With(kHouse, "#44=IFCRELDEFINESBYPROPERTIES", "#48=IFCRELDEFINESBYPROPERTIES");
  EXPECT_EQ("", ChangesOf(kHouse, other));
}

TEST_F(ModelDiffTest, TwoObjectsOfOneGuidArePairedInTheirOrder) {
  const std::string twice = "#1=IFCWALL('w',$,'A',$,$,$,$,$,$);#2=IFCWALL('w',$,'B',$,$,$,$,$,$);";
  EXPECT_EQ("", ChangesOf(twice, twice));
  EXPECT_EQ(
      "~ IfcWall w 'C' #2\n"
      "    Name: 'B' -> 'C'\n",
      ChangesOf(twice, With(twice, "'B'", "'C'")));
}

TEST_F(ModelDiffTest, OfTwoHoldersOfAGuidTheOneMeetsItsLikeThatIsRelatedToTheSame) {
  // As two models stand in one that was merged from both: each brings the site, the storey, the
  // type and a wall, all of the same GUIDs, and something of its own.
  const auto part = [](const std::string& digit, const std::string& own, const std::string& wall) {
    std::string text =
        "#10=IFCSITE('site',$,'S',$,$,$,$,$,$,$,$,$,$,$);"
        "#20=IFCBUILDINGSTOREY('storey',$,'L1',$,$,$,$,$,$,0.);"
        "#30=IFCRELAGGREGATES('r1',$,$,$,#10,(#20));"
        "#40=IFCWALL('wall',$,'W',$,$,$,$,'" +
        wall +
        "',$);"
        "#50=IFCWALL('" +
        own +
        "',$,'O',$,$,$,$,$,$);"
        "#60=IFCRELCONTAINEDINSPATIALSTRUCTURE('r2',$,$,$,(#40,#50),#20);"
        "#70=IFCWALLTYPE('type',$,'T',$,$,$,$,$,$,.STANDARD.);"
        "#80=IFCRELDEFINESBYTYPE('r3',$,$,$,(#40),#70);";
    for (std::size_t at = 0; (at = text.find('#', at)) != std::string::npos; ++at) {
      text.insert(at + 1, digit);
    }
    return text;
  };
  for (const std::string tag : {"first", "second"}) {
    const std::string first = part("1", "own1", "first");
    const std::string second = part("2", "own2", tag);
    EXPECT_EQ(
        "+ IfcSite site 'S' #110\n+ IfcBuildingStorey storey 'L1' #120\n"
        "+ IfcWall wall 'W' #140\n+ IfcWall own1 'O' #150\n+ IfcWallType type 'T' #170\n",
        ChangesOf(second, first + second));
    EXPECT_EQ(
        "+ IfcSite site 'S' #210\n+ IfcBuildingStorey storey 'L1' #220\n"
        "+ IfcWall wall 'W' #240\n+ IfcWall own2 'O' #250\n+ IfcWallType type 'T' #270\n",
        ChangesOf(first, first + second));
    EXPECT_EQ("", ChangesOf(first + second, part("1", "own2", tag) + part("2", "own1", "first")));
  }
}

TEST_F(ModelDiffTest, OfTwoHoldersOfAGuidTheOnesWithMostCommonNeighboursBelongTogether) {
  const auto storeys = [](const std::string& first, const std::string& second) {
    return "#1=IFCBUILDINGSTOREY('s',$,'L',$,$,$,$,$,$,0.);#2=IFCBUILDINGSTOREY('s',$,'L',$,$,$,$,$"
           ","
           "$,0.);"
           "#11=IFCWALL('a',$,$,$,$,$,$,$,$);#12=IFCWALL('b',$,$,$,$,$,$,$,$);"
           "#13=IFCWALL('c',$,$,$,$,$,$,$,$);#14=IFCWALL('d',$,$,$,$,$,$,$,$);"
           "#21=IFCRELCONTAINEDINSPATIALSTRUCTURE('r',$,$,$,(" +
           first + "),#1);#22=IFCRELCONTAINEDINSPATIALSTRUCTURE('q',$,$,$,(" + second + "),#2);";
  };
  EXPECT_EQ(
      "~ IfcWall c #13\n"
      "    contained in: IfcBuildingStorey 'L' #1 -> IfcBuildingStorey 'L' #1\n",
      ChangesOf(storeys("#11,#12,#13", "#14"), storeys("#14,#13", "#11,#12")));
}

TEST_F(ModelDiffTest, AnglesAreToldInDegreesWhateverTheUnits) {
  const auto wall = [](const std::string& units, const std::string& angle) {
    return units +
           "#3=IFCPROJECT('project',$,'P',$,$,$,$,$,#2);#7=IFCWALL('a',$,$,$,$,$,$,$,$);"
           "#11=IFCPROPERTYSET('ps',$,'P',$,(#12));"
           "#12=IFCPROPERTYSINGLEVALUE('Slope',$,IFCPLANEANGLEMEASURE(" +
           angle + "),$);#14=IFCRELDEFINESBYPROPERTIES('rp',$,$,$,(#7),#11);";
  };
  const std::string radians =
      "#1=IFCSIUNIT(*,.PLANEANGLEUNIT.,$,.RADIAN.);#2=IFCUNITASSIGNMENT((#1));";
  const std::string degrees =
      "#5=IFCDIMENSIONALEXPONENTS(0,0,0,0,0,0,0);#1=IFCCONVERSIONBASEDUNIT(#5,.PLANEANGLEUNIT.,"
      "'DEGREE',#6);#6=IFCMEASUREWITHUNIT(IFCPLANEANGLEMEASURE(0.017453292519943295),#8);"
      "#8=IFCSIUNIT(*,.PLANEANGLEUNIT.,$,.RADIAN.);#2=IFCUNITASSIGNMENT((#1));";
  EXPECT_EQ(
      "~ IfcProject project 'P' #3\n"
      "    UnitsInContext.Units[DEGREE]:\n"
      "      - IfcConversionBasedUnit 'DEGREE'\n"
      "      + IfcSIUnit 'RADIAN'\n",
      ChangesOf(wall(degrees, "45."), wall(radians, "0.7853981633974483")));
  EXPECT_EQ(
      "~ IfcWall a #7\n"
      "    P.Slope: 45 deg -> 60 deg\n",
      ChangesOf(wall(degrees, "45."), wall(degrees, "60.")));
}

TEST_F(ModelDiffTest, PropertiesOfPropertiesAreToldByTheirNames) {
  const std::string model =
      "#7=IFCWALL('a',$,$,$,$,$,$,$,$);#14=IFCRELDEFINESBYPROPERTIES('rp',$,$,$,(#7),#11);"
      "#11=IFCPROPERTYSET('ps',$,'P',$,(#12,#15));"
      "#12=IFCCOMPLEXPROPERTY('Frame [mm]',$,'u',(#13));"
      "#13=IFCPROPERTYSINGLEVALUE('Width',$,IFCREAL(1.),$);"
      "#15=IFCPROPERTYSINGLEVALUE('Empty',$,$,$);";
  EXPECT_EQ(
      "~ IfcWall a #7\n"
      "    P.Frame [mm].Width: 1 -> 2\n",
      ChangesOf(model, With(model, "IFCREAL(1.)", "IFCREAL(2.)")));
  EXPECT_EQ(
      "~ IfcWall a #7\n"
      "    P.Empty: (no value) -> (none)\n",
      ChangesOf(model, With(model, "(#12,#15)", "(#12)")));
}

TEST_F(ModelDiffTest, ModelsInOtherUnitsAreTheSame) {
  const auto house = [](const std::string& prefix, const std::string& zeros) {
    return "#1=IFCSIUNIT(*,.LENGTHUNIT.," + prefix +
           ",.METRE.);#2=IFCUNITASSIGNMENT((#1));#3=IFCPROJECT('project',$,'P',$,$,$,$,$,#2);"
           "#20=IFCDOOR('d',$,'Wall 1',$,$,#21,$,$,2" +
           zeros + ".,1" + zeros +
           ".,$,$,$);"
           "#21=IFCLOCALPLACEMENT($,#22);#22=IFCAXIS2PLACEMENT3D(#23,$,$);"
           "#23=IFCCARTESIANPOINT((7" +
           zeros +
           ".,0.,0.));"
           "#41=IFCPROPERTYSET('p1',$,'P',$,(#42));"
           "#42=IFCPROPERTYSINGLEVALUE('L',$,IFCLENGTHMEASURE(5" +
           zeros +
           ".),$);"
           "#44=IFCRELDEFINESBYPROPERTIES('r2',$,$,$,(#20),#41);";
  };
  EXPECT_EQ(
      "~ IfcProject project 'P' #3\n"
      "    UnitsInContext.Units[1].Prefix: MILLI -> (none)\n",
      ChangesOf(house(".MILLI.", "000"), house("$", "")));
}

TEST_F(ModelDiffTest, LengthsWithinTheToleranceAreTheSame) {
  const std::string moved = With(kHouse, "((1000.,0.,0.))", "((1000.4,0.,0.))");
  EXPECT_EQ("", ChangesOf(kHouse, moved, 0.5));
  EXPECT_NE("", ChangesOf(kHouse, moved, 0.3));
  EXPECT_NE("", ChangesOf(kHouse, moved));
  const std::string higher = With(kHouse, "#29,3000.)", "#29,3000.4)");
  EXPECT_EQ("", ChangesOf(kHouse, higher, 0.5));
  EXPECT_NE("", ChangesOf(kHouse, higher, 0.3));
}

TEST_F(ModelDiffTest, TheOrderOfAListCounts) {
  const auto line = [](const std::string& points) {
    return "#1=IFCANNOTATION('a',$,$,$,$,$,#2);#2=IFCPRODUCTDEFINITIONSHAPE($,$,(#3));"
           "#3=IFCSHAPEREPRESENTATION(#9,'Axis','Curve2D',(#4));#4=IFCPOLYLINE(" +
           points +
           ");"
           "#5=IFCCARTESIANPOINT((0.,0.));#6=IFCCARTESIANPOINT((1.,0.));"
           "#9=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,$,#10,$);"
           "#10=IFCAXIS2PLACEMENT2D(#5,$);";
  };
  EXPECT_EQ("", ChangesOf(line("(#5,#6)"), line("(#5,#6)")));
  const ModelDiff diff = DiffOf(line("(#5,#6)"), line("(#6,#5)"));
  ASSERT_EQ(1u, diff.changed.size());
  EXPECT_EQ(2u, diff.changed[0].changes.size());
}

TEST_F(ModelDiffTest, AReportedChangeOfAContextIsItsOwn) {
  EXPECT_EQ(
      "~ IfcGeometricRepresentationContext #4\n"
      "    Precision: 1e-05 -> 1e-06\n",
      ChangesWith("1.E-5", "1.E-6"));
}

TEST_F(ModelDiffTest, ReleasesAreComparedByNames) {
  test::ReadModel before("#1=IFCWALL('w',$,'A',$,$,$,$,'T');", {.schema = "IFC2X3"});
  test::ReadModel after("#1=IFCWALL('w',$,'A',$,$,$,$,'T',$);", {.schema = "IFC4"});
  const ModelDiff diff = DiffOf(before, after);
  EXPECT_EQ("schema: IFC2X3 -> IFC4\n", ChangesOf(diff));
  EXPECT_FALSE(diff.IsEmpty());
}

TEST_F(ModelDiffTest, ACancelledComparisonGivesNothing) {
  test::ReadModel before(kHouse);
  test::ReadModel after(kHouse);
  EXPECT_FALSE(CompareModels(before.Document(), after.Document(), {}, [](int) { return false; }));
}

}  // namespace corvel::host::diff
