#include <nlohmann/json.hpp>
#include <string>

#include "host/tree_text.h"
#include "schema/registry.h"

namespace corvel::host {

namespace {

// Keeps the order in which keys are put in.
using Json = nlohmann::ordered_json;

WideString TextOf(const Json& json) {
  return FromUtf8(json.dump(-1, ' ', false, Json::error_handler_t::replace));
}

Json TextsOf(const std::vector<WideString>& texts) {
  Json array = Json::array();
  for (const WideString& text : texts) array.push_back(ToUtf8(text));
  return array;
}

WideString Member(const char* key, const Json& value) {
  return u"  \"" + Widen(key) + u"\": " + TextOf(value) + u",\n";
}

WideString LineOf(const ModelScene& scene, std::size_t index) {
  const SceneObject& object = scene.objects[index];
  Json json;
  json["number"] = object.number;
  json["class"] = scene.ClassOf(object);
  json["guid"] = ToUtf8(scene.GuidOf(index));
  json["name"] = ToUtf8(scene.NameOf(index));
  json["parent"] =
      object.parent == kNoObject ? Json(nullptr) : Json(scene.objects[object.parent].number);
  return u"    " + TextOf(json);
}

}  // namespace

// Made line by line: a tree of its own for millions of objects would take gigabytes.
bool WriteTreeJson(WideView path, const ModelScene& scene, const TextSink& sink) {
  const Json schema = scene.schema ? Json(std::string(NameOf(*scene.schema))) : Json(nullptr);
  bool wanted = sink(u"{\n" + Member("file", ToUtf8(path)) + Member("schema", schema) +
                     Member("remarks", TextsOf(scene.remarks)) +
                     Member("problems", TextsOf(scene.problems)) + u"  \"objects\": [");
  for (std::size_t i = 0; wanted && i < scene.objects.size(); ++i) {
    wanted = sink((i == 0 ? u"\n" : u",\n") + LineOf(scene, i));
  }
  return wanted && sink(scene.objects.empty() ? u"]\n}\n" : u"\n  ]\n}\n");
}

}  // namespace corvel::host
