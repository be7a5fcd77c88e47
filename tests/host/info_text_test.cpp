#include "host/info_text.h"

#include <gtest/gtest.h>

namespace corvel::host {

namespace {

FileFacts House() {
  FileFacts facts;
  facts.path = u"h.ifc";
  facts.bytes = 1234;
  facts.header = std::make_unique<HeaderToken>();
  facts.header->fileDescription = {u"view"};
  facts.header->implementationLevel = u"2;1";
  facts.header->name = u"B\u00fcro";
  facts.header->author = {u"A", u"B"};
  facts.header->schemaIdentifier = u"IFC4";
  facts.schema = SchemaNamespace::IFC4;
  facts.records = 3;
  facts.classes = {{"IFCWALL", 2}, {"IFCDOOR", 1}};
  return facts;
}

FileFacts Broken() {
  FileFacts facts;
  facts.path = u"b.ifc";
  facts.bytes = 6;
  facts.problems = {u"no header"};
  return facts;
}

std::string JsonOf(FileFacts facts) {
  std::vector<FileFacts> files;
  files.push_back(std::move(facts));
  return FactsAsJson(files);
}

}  // namespace

TEST(FactsAsText, LeadsWithTheModel) {
  FileFacts facts = House();
  facts.model.emplace();
  facts.model->release = "IFC4";
  facts.model->schemaIdentifier = u"IFC4";
  facts.model->exporter.application = u"Drawer 4";
  const std::string text = ToUtf8(FactsAsText(facts));
  EXPECT_TRUE(
      text.starts_with("h.ifc\n  size in bytes         1234\n  release         IFC4\n"
                       "  exporter        Drawer 4\n  units           not stated\n"))
      << text;
  EXPECT_NE(std::string::npos, text.find("  doubled GUIDs   0\n  description           view\n"));
}

TEST(FactsAsText, LongValuesGoOnInTheNextLine) {
  FileFacts facts = House();
  const WideString word(40, u'x');
  facts.header->preprocessorVersion = word + u" " + word;
  const std::string text = ToUtf8(FactsAsText(facts));
  const std::string narrow(40, 'x');
  EXPECT_NE(std::string::npos, text.find("  preprocessor version  " + narrow + "\n" +
                                         std::string(24, ' ') + narrow + "\n"))
      << text;
}

TEST(FactsAsJson, EndsWithTheModel) {
  FileFacts facts = House();
  facts.model.emplace();
  facts.model->metresPerLengthUnit = 0.001;
  const std::string text = JsonOf(std::move(facts));
  EXPECT_NE(std::string::npos, text.find("      \"model\": {\n        \"release\": \"\",\n"));
  EXPECT_NE(std::string::npos, text.find("\"metresPerLengthUnit\": 0.001,\n"));
}

TEST(FactsAsText, HasALineForEachFact) {
  EXPECT_EQ(
      "h.ifc\n"
      "  size in bytes         1234\n"
      "  description           view\n"
      "  implementation level  2;1\n"
      "  name                  B\u00fcro\n"
      "  time stamp            \n"
      "  author                A, B\n"
      "  organization          \n"
      "  preprocessor version  \n"
      "  originating system    \n"
      "  authorization         \n"
      "  schema identifier     IFC4\n"
      "  schema                IFC4\n"
      "  records               3\n"
      "           2  IFCWALL\n"
      "           1  IFCDOOR\n",
      ToUtf8(FactsAsText(House())));
}

TEST(FactsAsText, WithoutAHeaderThereIsTheSizeOnly) {
  EXPECT_EQ(u"b.ifc\n  size in bytes         6\n", FactsAsText(Broken()));
}

TEST(FactsAsText, RemarksAndAMissingSchemaAreTold) {
  FileFacts facts = House();
  facts.schema.reset();
  facts.remarks = {u"odd"};
  const WideString text = FactsAsText(facts);
  EXPECT_NE(WideString::npos, text.find(u"  schema                none\n"));
  EXPECT_NE(WideString::npos, text.find(u"  remark                odd\n"));
}

TEST(FactsAsText, NothingOfTheFileReachesTheTerminalAsACommand) {
  FileFacts facts = House();
  facts.header->name = u"\x1b]0;x\a";
  EXPECT_NE(WideString::npos, FactsAsText(facts).find(u"  name                  ?]0;x?\n"));
}

TEST(FactsAsJson, KeysAndTheirOrderAreFixed) {
  EXPECT_EQ(
      "{\n  \"files\": [\n    {\n"
      "      \"file\": \"h.ifc\",\n"
      "      \"bytes\": 1234,\n"
      "      \"header\": {\n"
      "        \"description\": [\n          \"view\"\n        ],\n"
      "        \"implementationLevel\": \"2;1\",\n"
      "        \"name\": \"B\u00fcro\",\n"
      "        \"timeStamp\": \"\",\n"
      "        \"author\": [\n          \"A\",\n          \"B\"\n        ],\n"
      "        \"organization\": [],\n"
      "        \"preprocessorVersion\": \"\",\n"
      "        \"originatingSystem\": \"\",\n"
      "        \"authorization\": \"\",\n"
      "        \"schemaIdentifier\": \"IFC4\"\n"
      "      },\n"
      "      \"schema\": \"IFC4\",\n"
      "      \"records\": 3,\n"
      "      \"classes\": {\n        \"IFCWALL\": 2,\n        \"IFCDOOR\": 1\n      },\n"
      "      \"remarks\": [],\n"
      "      \"problems\": [],\n      \"model\": null\n"
      "    }\n  ]\n}\n",
      JsonOf(House()));
}

TEST(FactsAsJson, WhatIsMissingIsNullOrEmpty) {
  EXPECT_EQ(
      "{\n  \"files\": [\n    {\n"
      "      \"file\": \"b.ifc\",\n"
      "      \"bytes\": 6,\n"
      "      \"header\": null,\n"
      "      \"schema\": null,\n"
      "      \"records\": 0,\n"
      "      \"classes\": {},\n"
      "      \"remarks\": [],\n"
      "      \"problems\": [\n        \"no header\"\n      ],\n      \"model\": null\n"
      "    }\n  ]\n}\n",
      JsonOf(Broken()));
  EXPECT_EQ("{\n  \"files\": []\n}\n", FactsAsJson({}));
}

TEST(FactsAsJson, BytesThatAreNoTextAreReplaced) {
  FileFacts facts = Broken();
  facts.path = WideString(u"a") + char16_t{0xDCE9} + u".ifc";
  EXPECT_NE(std::string::npos, JsonOf(std::move(facts)).find("\"a\xEF\xBF\xBD.ifc\""));
}

}  // namespace corvel::host
