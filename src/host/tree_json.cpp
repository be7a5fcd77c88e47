#include <string>

#include "host/json.h"
#include "host/tree_text.h"
#include "schema/registry.h"

namespace corvel::host {

namespace {

WideString TextOf(const Json& json) { return FromUtf8(InOneLine(json)); }

WideString Member(const char* key, const Json& value) {
  return u"  \"" + Widen(key) + u"\": " + TextOf(value) + u",\n";
}

WideString LineOf(const ModelScene& scene, std::size_t index, const TreeLook& look) {
  const SceneObject& object = scene.objects[index];
  Json json;
  json["number"] = object.number;
  json["class"] = scene.ClassOf(object);
  json["guid"] = ToUtf8(scene.GuidOf(index));
  json["name"] = ToUtf8(scene.NameOf(index));
  json["parent"] =
      object.parent == kNoObject ? Json(nullptr) : Json(scene.objects[object.parent].number);
  if (look.properties != nullptr) {
    Json& properties = json["properties"] = Json::object();
    for (const auto& [name, value] : look.properties->Of(object.number)) properties[name] = value;
  }
  return u"    " + TextOf(json);
}

}  // namespace

// Made line by line: a tree of its own for millions of objects would take gigabytes.
bool WriteTreeJson(WideView path, const ModelScene& scene, const TextSink& sink,
                   const TreeLook& look) {
  const Json schema = scene.schema ? Json(std::string(NameOf(*scene.schema))) : Json(nullptr);
  bool wanted = sink(u"{\n" + Member("file", ToUtf8(path)) + Member("schema", schema) +
                     Member("remarks", TextsOf(scene.remarks)) +
                     Member("problems", TextsOf(scene.problems)) + u"  \"objects\": [");
  bool isFirst = true;
  for (std::size_t i = 0; wanted && i < scene.objects.size(); ++i) {
    if (!look.Shows(i)) continue;
    wanted = sink((isFirst ? u"\n" : u",\n") + LineOf(scene, i, look));
    isFirst = false;
  }
  return wanted && sink(isFirst ? u"]\n}\n" : u"\n  ]\n}\n");
}

bool WriteEntriesJson(WideView path, const std::vector<FileStream::ArchiveEntry>& entries,
                      const TextSink& sink) {
  Json all;
  all["file"] = ToUtf8(path);
  all["entries"] = Json::array();
  for (const FileStream::ArchiveEntry& entry : entries) {
    Json one;
    one["name"] = ToUtf8(entry.name);
    one["bytes"] = entry.bytes;
    all["entries"].push_back(one);
  }
  return sink(TextOf(all) + u"\n");
}

}  // namespace corvel::host
