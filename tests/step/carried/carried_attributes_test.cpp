// What tolerant readings carry, seen through the door to attributes and through the interfaces.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "schema/attributes.h"
#include "schema/interfaces/interfaces.h"
#include "step/carried/tolerant_model.h"
#include "support/written_text.h"

namespace corvel {
namespace {

using State = AttributeState;

class CarriedAttributes : public test::ReadTest {
 protected:
  static Attribute Of(IFC::IfcEntity* entity, std::string_view name) {
    return *AttributesOf(*entity).Find(name);
  }
};

TEST_F(CarriedAttributes, AValueThatIsCarriedIsAbsent) {
  test::ReadModel model = test::ReadTolerantly(
      "#1=IFCWALL('g',.ME.,5,$,$,$,$,(2),.CURTAIN.);\n#2=IFCSIUNIT(*,.WARPUNIT.,$,7);\n"
      "#3=IFCSPHERE(*,'five');\n#4=IFCCARTESIANPOINT((1.,'x'));\n");
  for (const char* const name : {"OwnerHistory", "Name", "Tag", "PredefinedType"}) {
    EXPECT_EQ(State::kAbsent, Of(model[1], name).State()) << name;
  }
  EXPECT_EQ(State::kValue, Of(model[1], "GlobalId").State());
  EXPECT_EQ(State::kAbsent, Of(model[2], "UnitType").State());
  EXPECT_EQ("", Of(model[2], "UnitType").EnumerationName());
  EXPECT_EQ(State::kAbsent, Of(model[2], "Name").State());
  EXPECT_EQ(nullptr, Of(model[3], "Radius").As<double>());
  EXPECT_EQ(nullptr, Of(model[4], "Coordinates").As<List<double>>());
}

TEST_F(CarriedAttributes, AReferenceThatIsNotAdmittedIsAbsent) {
  test::ReadModel model = test::ReadTolerantly(
      "#1=IFCWALL('g',#2,$,$,$,#77,#2,$,$);\n#2=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n"
      "#3=IFCRELAGGREGATES('g',$,$,$,#2,(#1));\n#4=IFCPROPERTYSINGLEVALUE('p',$,$,#1);\n");
  EXPECT_EQ(State::kAbsent, Of(model[1], "OwnerHistory").State());
  EXPECT_EQ(State::kAbsent, Of(model[1], "ObjectPlacement").State());
  EXPECT_EQ(State::kAbsent, Of(model[1], "Representation").State());
  EXPECT_EQ(State::kAbsent, Of(model[3], "RelatingObject").State());
  EXPECT_EQ(State::kAbsent, Of(model[4], "Unit").State());
  EXPECT_EQ("#3=IFCRELAGGREGATES('g',$,$,$,#2,(#1));", model.Line(3));
}

TEST_F(CarriedAttributes, AReferenceToAnObjectOfNoClassIsThere) {
  test::ReadModel model = test::ReadTolerantly(
      "#1=IFCWALL('g',.ME.,$,$,$,#2,$,$,$);\n#2=IFCNEWPLACEMENT();\n#3=IFCNEWOWNER();\n"
      "#4=IFCWALL('h',#3,$,$,$,$,$,$,$);\n");
  EXPECT_EQ(model[2], *Of(model[1], "ObjectPlacement").As<IFC::IfcEntity*>());
  EXPECT_EQ(model[3], *Of(model[4], "OwnerHistory").As<IFC::IfcEntity*>());
  for (const std::string& message : Messages()) {
    EXPECT_EQ(std::string::npos, message.find("A reference")) << message;
  }
}

TEST_F(CarriedAttributes, AnotherValueTakesThePlaceOfWhatIsCarried) {
  test::ReadModel model = test::ReadTolerantly(
      "#1=IFCWALL('g',.ME.,5,$,$,$,$,(2),.CURTAIN.);\n#2=IFCSIUNIT(*,.WARPUNIT.,$,7);\n"
      "#3=IFCSPHERE(*,'five');\n");
  EXPECT_TRUE(Of(model[1], "Name").Set(ModelText(u"W")));
  EXPECT_TRUE(Of(model[1], "Tag").Clear());
  EXPECT_TRUE(Of(model[1], "PredefinedType").SetEnumeration("SOLIDWALL"));
  EXPECT_EQ("#1=IFCWALL('g',.ME.,'W',$,$,$,$,$,.SOLIDWALL.);", model.Line(1));
  EXPECT_FALSE(Of(model[2], "Name").Clear()) << "mandatory";
  EXPECT_TRUE(Of(model[2], "UnitType").SetEnumeration("LENGTHUNIT"));
  EXPECT_EQ("#2=IFCSIUNIT(*,.LENGTHUNIT.,$,7);", model.Line(2));
  EXPECT_TRUE(Of(model[3], "Radius").Set(0.0));
  EXPECT_EQ(State::kValue, Of(model[3], "Radius").State());
  EXPECT_EQ("#3=IFCSPHERE(*,0.);", model.Line(3));
}

TEST_F(CarriedAttributes, WhatIsCarriedIsWrittenByItsAttribute) {
  test::ReadModel model = test::ReadTolerantly("#1=IFCWALL('g',.ME.,$,$,$,#77,#1,$,.CURTAIN.);\n");
  test::MemoryOutpoutStream stream;
  StepWriter writer(stream);
  for (const Attribute attribute : AttributesOf(*model[1])) attribute.Write(writer);
  EXPECT_EQ("'g',.ME.,$,$,$,#77,#1,$,.CURTAIN.,", stream.Text());
}

// --- Records of classes that the release lacks ---------------------------------------------------

TEST_F(CarriedAttributes, ARecordThatNobodyKnowsHasItsArguments) {
  test::ReadModel model =
      test::ReadTolerantly("#1=IFCNEW('it''s',#2,(#2,1.50),$);\n#2=IFCEXTRA();\n");
  const auto attributes = AttributesOf(*model[1]);
  EXPECT_STREQ("IFCNEW", attributes.Facts().name);
  ASSERT_EQ(4u, attributes.size());
  EXPECT_EQ("argument 2", attributes[1].Name());
  EXPECT_EQ(model[2], *attributes[1].As<IFC::IfcEntity*>());
  IFC::IfcEntity* const list = *attributes.Find("argument 3")->As<IFC::IfcEntity*>();
  EXPECT_EQ(State::kAbsent, attributes[3].State());
  EXPECT_EQ(u"(#2,1.50)", Of(list, "text").As<ModelText>()->ToWide());
  EXPECT_EQ(0u, AttributesOf(*model[2]).size());
  EXPECT_STREQ("IFCEXTRA", AttributesOf(*model[2]).Facts().name);
}

TEST_F(CarriedAttributes, ARecordOfAnotherReleaseHasTheAttributesOfItsClass) {
  test::ReadModel model = test::ReadTolerantly(
      "#1=IFCSHADINGDEVICE('guid',#3,'Blind',$,$,#2,$,$,.JALOUSIE.);\n"
      "#2=IFCLOCALPLACEMENT($,$);\n#3=IFCOWNERHISTORY($,$,$,.ADDED.,$,$,$,0);\n",
      "IFC2X3");
  EXPECT_EQ(u"IfcShadingDevice", WideView(model[1]->getClassName()));
  EXPECT_EQ(u"Blind", Of(model[1], "Name").As<ModelText>()->ToWide());
  EXPECT_EQ("JALOUSIE", Of(model[1], "PredefinedType").EnumerationName());
  EXPECT_EQ(model[2], *Of(model[1], "ObjectPlacement").As<IFC::IfcEntity*>());
  const auto* const root = model.As<IFC::VirtualIfcRoot>(1);
  ASSERT_NE(nullptr, root);
  EXPECT_STREQ("guid", root->getGlobalId());
  auto* const product = model.As<IFC::VirtualIfcProduct>(1);
  ASSERT_NE(nullptr, product);
  EXPECT_EQ(model[2], product->getRootPlacement(model.Container().Pool()));
}

TEST_F(CarriedAttributes, ANewGuidIsWrittenIntoARecordOfAnotherRelease) {
  test::ReadModel model = test::ReadTolerantly(
      "#1=IFCSHADINGDEVICE( 'guid', $ ,'Blind',$,$,$,$,$,.JALOUSIE.);\n", "IFC2X3");
  model.As<IFC::VirtualIfcRoot>(1)->setGlobalId("other");
  EXPECT_EQ("#1=IFCSHADINGDEVICE( 'other', $ ,'Blind',$,$,$,$,$,.JALOUSIE.);", model.Line(1));
}

TEST_F(CarriedAttributes, AClassWhoseValuesDoNotFitCountsAsNothing) {
  test::ReadModel model = test::ReadTolerantly(
      "#1=IFCSHADINGDEVICE('guid',$,'Blind',$,$,$,$,$,.PERGOLA.);\n"
      "#2=IFCSHADINGDEVICE('guid',$,'Blind');\n",
      "IFC2X3");
  EXPECT_EQ(nullptr, model.As<IFC::VirtualIfcRoot>(1));
  EXPECT_EQ(nullptr, model.As<IFC::VirtualIfcRoot>(2));
  EXPECT_EQ("#1=IFCSHADINGDEVICE('guid',$,'Blind',$,$,$,$,$,.PERGOLA.);", model.Line(1));
}

TEST_F(CarriedAttributes, TheFirstProjectIsTheProjectWithAnyNumberOfArguments) {
  test::ReadModel model = test::ReadTolerantly("#1=IFCPROJECT('p',$,'P');\n");
  EXPECT_EQ(model[1], model.Document().getIfcProject());
  EXPECT_EQ(model[1], model.Container().FirstProject());
}

}  // namespace
}  // namespace corvel
