#include "host/diff/common_changes.h"
#include "host/diff/diff_text.h"
#include "host/json.h"

namespace corvel::host::diff {

namespace {

const char* NameOf(ChangeKind kind) {
  switch (kind) {
    case ChangeKind::kClass: return "class";
    case ChangeKind::kAttribute: return "attribute";
    case ChangeKind::kProperty: return "property";
    case ChangeKind::kQuantity: return "quantity";
    case ChangeKind::kPlace: return "place";
    case ChangeKind::kType: return "type";
    case ChangeKind::kMaterial: return "material";
    case ChangeKind::kContainment: return "containment";
    case ChangeKind::kRelation: break;
  }
  return "relation";
}

Json TextOrNull(const std::optional<std::string>& text) { return text ? Json(*text) : Json(); }

Json JsonOf(const ComparedFile& file) {
  Json json;
  json["file"] = file.path;
  json["schema"] = file.schema;
  json["objects"] = file.objects;
  return json;
}

Json JsonOf(const ObjectLabel& label) {
  Json json;
  json["number"] = label.number;
  json["class"] = label.className;
  json["guid"] = label.guid;
  json["name"] = label.name;
  return json;
}

Json JsonOf(const Change& change) {
  Json json;
  json["kind"] = NameOf(change.kind);
  json["path"] = change.path;
  json["before"] = TextOrNull(change.before);
  json["after"] = TextOrNull(change.after);
  if (change.movement) {
    json["movement"]["by"] = change.movement->by;
    json["movement"]["degrees"] = change.movement->degrees;
    json["movement"]["axis"] = change.movement->axis;
  }
  return json;
}

Json JsonOf(const ChangedObject& object) {
  Json json;
  json["before"] = JsonOf(object.before);
  json["after"] = JsonOf(object.after);
  json["changes"] = Json::array();
  for (const Change& change : object.changes) json["changes"].push_back(JsonOf(change));
  json["omitted"] = object.omitted;
  return json;
}

Json JsonOf(const CommonChange& common, const ModelDiff& diff) {
  Json json;
  json["change"] = JsonOf(common.change);
  json["numbers"] = Json::array();
  for (const std::size_t index : common.objects) {
    json["numbers"].push_back(diff.changed[index].after.number);
  }
  return json;
}

WideString TextOf(const Json& json) { return FromUtf8(InOneLine(json)); }

// Each member on a line of its own: there may be as many as there are objects.
template <class Items, class Make>
bool WriteList(const char16_t* name, const Items& items, Make make, const TextSink& sink) {
  if (!sink(WideString(u",\n\"") + name + u"\": [")) return false;
  bool isFirst = true;
  for (const auto& item : items) {
    if (!sink((isFirst ? u"\n" : u",\n") + TextOf(make(item)))) return false;
    isFirst = false;
  }
  return sink(u"]");
}

}  // namespace

bool WriteDiffJson(const ModelDiff& diff, double toleranceMm, const TextSink& sink) {
  const auto plain = [](const auto& item) { return JsonOf(item); };
  const auto pair = [](const auto& renamed) {
    Json json;
    json["before"] = JsonOf(renamed.first);
    json["after"] = JsonOf(renamed.second);
    return json;
  };
  const auto common = [&](const CommonChange& change) { return JsonOf(change, diff); };
  return sink(u"{\"before\": " + TextOf(JsonOf(diff.before)) + u",\n\"after\": " +
              TextOf(JsonOf(diff.after)) + u",\n\"toleranceMm\": " + TextOf(Json(toleranceMm)) +
              u",\n\"equal\": " + (diff.IsEmpty() ? u"true" : u"false") + u",\n\"same\": " +
              Widen(std::to_string(diff.same))) &&
         WriteList(u"removed", diff.removed, plain, sink) &&
         WriteList(u"added", diff.added, plain, sink) &&
         WriteList(u"renamed", diff.renamed, pair, sink) &&
         WriteList(u"changed", diff.changed, plain, sink) &&
         WriteList(u"common", FindCommonChanges(diff).common, common, sink) && sink(u"}\n");
}

}  // namespace corvel::host::diff
