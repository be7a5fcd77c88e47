#include "host/diff/diff_text.h"

#include <string>
#include <vector>

#include "host/diff/common_changes.h"
#include "host/diff/diff_of_models.h"
#include "support/json_schema.h"

namespace corvel::host::diff {

namespace {

ModelDiff Empty() {
  ModelDiff diff;
  diff.before = {"a.ifc", "IFC4", 1};
  diff.after = {"b.ifc", "IFC4", 1};
  return diff;
}

Change NameFrom(const std::string& before, const std::string& after) {
  return {ChangeKind::kAttribute, "Name", before, after, {}};
}

ModelDiff Renaming(const std::vector<std::string>& names) {
  ModelDiff diff = Empty();
  std::uint32_t number = 0;
  for (const std::string& name : names) {
    ++number;
    diff.changed.push_back({{number, "IfcWall", "g" + std::to_string(number), ""},
                            {number, "IfcWall", "g" + std::to_string(number), ""},
                            {NameFrom("'old'", name)},
                            0});
  }
  return diff;
}

std::string LinesBehindHead(const ModelDiff& diff) { return ChangesOf(diff); }

nlohmann::json JsonOf(const ModelDiff& diff) {
  WideString text;
  EXPECT_TRUE(WriteDiffJson(diff, 0.001, [&](WideView piece) {
    text += piece;
    return true;
  }));
  EXPECT_TRUE(text.ends_with(u"}\n"));
  return nlohmann::json::parse(ToUtf8(text));
}

std::vector<std::string> MistakesIn(const nlohmann::json& json) {
  return test::JsonSchema::OfFile(CORVEL_DOCS_DIR "/diff.schema.json").Mistakes(json);
}

// One of everything.
ModelDiff Full() {
  ModelDiff diff = Renaming({"'x'", "'x'", "'x'"});
  diff.added.push_back({7, "IfcDoor", "new", "D"});
  diff.removed.push_back({8, "IfcDoor", "", ""});
  diff.renamed.push_back({{9, "IfcSlab", "before", "S"}, {9, "IfcSlab", "after", "S"}});
  diff.changed[0].omitted = 3;
  Change moved{ChangeKind::kPlace, "place", "(0, 0, 0)", "(1, 0, 0)", Movement{}};
  moved.movement->by = {1.0, 0.0, 0.0};
  diff.changed[1].changes.push_back(moved);
  int kind = 0;
  for (Change change = NameFrom("a", "b"); kind <= static_cast<int>(ChangeKind::kRelation);
       ++kind) {
    change.kind = static_cast<ChangeKind>(kind);
    change.before.reset();
    diff.changed[2].changes.push_back(change);
  }
  return diff;
}

}  // namespace

TEST(DiffText, CountsComeFirst) {
  EXPECT_EQ(
      "--- a.ifc (IFC4, 1 object)\n"
      "+++ b.ifc (IFC4, 1 object)\n"
      "0 removed, 0 added, 1 changed, 0 under another GUID, 0 the same\n"
      "~ IfcWall g1 #1\n"
      "    Name: 'old' -> 'x'\n",
      TextOf(Renaming({"'x'"})));
}

TEST(DiffText, TwoObjectsAreToldOneByOneAndThreeAtOnce) {
  EXPECT_EQ(
      "~ IfcWall g1 #1\n"
      "    Name: 'old' -> 'x'\n"
      "~ IfcWall g2 #2\n"
      "    Name: 'old' -> 'x'\n",
      LinesBehindHead(Renaming({"'x'", "'x'"})));
  EXPECT_EQ(
      "* 3 objects (IfcWall 3)\n"
      "    Name: 'old' -> 'x'\n"
      "~ IfcWall g2 #2\n"
      "    Name: 'old' -> 'y'\n",
      LinesBehindHead(Renaming({"'x'", "'y'", "'x'", "'x'"})));
}

TEST(DiffText, AbsentIsNotTheTextThatSaysSo) {
  ModelDiff diff = Renaming({"a", "a", "a"});
  diff.changed[2].changes[0].before.reset();
  EXPECT_TRUE(FindCommonChanges(diff).common.empty());
}

TEST(DiffText, LongValuesStandInLinesOfTheirOwnAndAreCutAt80Columns) {
  const std::string text = LinesBehindHead(Renaming({"'" + std::string(100, 'x') + "'"}));
  EXPECT_EQ(
      "~ IfcWall g1 #1\n"
      "    Name:\n"
      "      - 'old'\n"
      "      + '" +
          std::string(68, 'x') + "...\n",
      text);
}

TEST(DiffText, LongNamesLoseTheirMiddle) {
  ModelDiff diff = Empty();
  diff.added.push_back({138584, "IfcWallStandardCase", "2O2Fr$t4X7Zf8NOew3FNtn",
                        "Basic Wall:Exterior - Brick on Block with insulation:138584"});
  const std::string text = LinesBehindHead(diff);
  EXPECT_EQ(
      "+ IfcWallStandardCase 2O2Fr$t4X7Zf8NOew3FNtn 'Basic Wall:...tion:138584' "
      "#138584\n",
      text);
  EXPECT_GE(81u, text.size());
}

TEST(DiffText, CutsGoThroughNoCharacter) {
  ModelDiff diff = Empty();
  std::string name;
  for (int i = 0; i < 40; ++i) name += "\xF0\x9F\x8F\xA0";
  diff.added.push_back({1, "IfcWall", "", name});
  const std::string text = LinesBehindHead(diff);
  EXPECT_EQ(std::string::npos, text.find("\xEF\xBF\xBD")) << text;
  EXPECT_NE(std::string::npos, text.find("\xF0\x9F\x8F\xA0...\xF0\x9F\x8F\xA0")) << text;
}

TEST(DiffText, OfManyClassesTheFirstAreNamedWhole) {
  ModelDiff diff = Renaming({"'x'", "'x'", "'x'", "'x'"});
  diff.changed[0].after.className = "IfcBuildingElementProxy";
  diff.changed[1].after.className = "IfcBuildingStorey";
  diff.changed[2].after.className = "IfcDistributionControlElement";
  EXPECT_TRUE(LinesBehindHead(diff).starts_with(
      "* 4 objects (IfcBuildingElementProxy 1, IfcBuildingStorey 1, ...)\n"));
}

TEST(DiffText, OneObjectIsNotManyHoweverOftenItHasTheSameChange) {
  ModelDiff diff = Renaming({"'x'"});
  const Change change = diff.changed[0].changes[0];
  diff.changed[0].changes.insert(diff.changed[0].changes.end(), 3, change);
  diff.changed[0].changes.push_back(NameFrom("'old'", "'y'"));
  EXPECT_EQ(
      "~ IfcWall g1 #1\n"
      "    Name: 'old' -> 'x'\n"
      "      (4 times)\n"
      "    Name: 'old' -> 'y'\n",
      LinesBehindHead(diff));
}

TEST(DiffText, WideLettersTakeTwoColumns) {
  std::string name = "'";
  for (int i = 0; i < 60; ++i) name += "\xE5\xA3\x81";
  const std::string text = LinesBehindHead(Renaming({name}));
  const std::string last = text.substr(text.find("+ '") + 3);
  EXPECT_EQ(34u * 3 + 4, last.size()) << last;
}

TEST(DiffText, WhatAModelSaysIsSafeToShow) {
  EXPECT_EQ(
      "~ IfcWall g1 #1\n"
      "    Name: 'old' -> 'a?[2Jb'\n",
      LinesBehindHead(Renaming({"'a\x1b[2Jb'"})));
}

TEST(DiffText, ColoursAreForTerminals) {
  EXPECT_EQ(std::string::npos, TextOf(Full(), false).find('\x1b'));
  EXPECT_NE(std::string::npos, TextOf(Full(), true).find("\x1b[32m+ IfcDoor new 'D' #7\x1b[0m\n"));
}

TEST(DiffText, OmittedChangesAreCounted) {
  ModelDiff diff = Renaming({"'x'"});
  diff.changed[0].omitted = 2;
  EXPECT_TRUE(TextOf(diff).ends_with("    and 2 changes more\n"));
}

TEST(DiffText, EndsWithASinkThatTakesNoMore) {
  EXPECT_FALSE(WriteDiffText(Full(), false, [](WideView) { return false; }));
  EXPECT_FALSE(WriteDiffJson(Full(), 1.0, [](WideView) { return false; }));
}

TEST(DiffJson, IsAsItsSchemaSays) {
  EXPECT_EQ(std::vector<std::string>(), MistakesIn(JsonOf(Full())));
  EXPECT_EQ(std::vector<std::string>(), MistakesIn(JsonOf(Empty())));
}

TEST(DiffJson, TheSchemaRefusesWhatIsNotSo) {
  nlohmann::json json = JsonOf(Full());
  json["changed"][0]["changes"][0]["kind"] = "mood";
  json["more"] = 1;
  json.erase("equal");
  EXPECT_EQ((std::vector<std::string>{"/more: is not allowed",
                                      "/changed/0/changes/0/kind: is none of those allowed",
                                      ": lacks \"equal\""}),
            MistakesIn(json));
}

TEST(DiffJson, ValuesAreWhole) {
  const std::string name = "'" + std::string(500, 'x') + "'";
  const nlohmann::json json = JsonOf(Renaming({name}));
  EXPECT_EQ(name, json["changed"][0]["changes"][0]["after"]);
  EXPECT_EQ(false, json["equal"]);
  EXPECT_EQ(true, JsonOf(Empty())["equal"]);
}

}  // namespace corvel::host::diff
