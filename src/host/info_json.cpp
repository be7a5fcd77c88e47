#include "host/facts/facts_json.h"
#include "host/info_text.h"
#include "host/json.h"
#include "schema/registry.h"

namespace corvel::host {

namespace {

Json HeaderOf(const HeaderToken* header) {
  if (header == nullptr) return nullptr;
  Json object;
  object["description"] = TextsOf(header->fileDescription);
  object["implementationLevel"] = ToUtf8(header->implementationLevel);
  object["name"] = ToUtf8(header->name);
  object["timeStamp"] = ToUtf8(header->timeStamp);
  object["author"] = TextsOf(header->author);
  object["organization"] = TextsOf(header->organization);
  object["preprocessorVersion"] = ToUtf8(header->preprocessorVersion);
  object["originatingSystem"] = ToUtf8(header->originatingSystem);
  object["authorization"] = ToUtf8(header->authorization);
  object["schemaIdentifier"] = ToUtf8(header->schemaIdentifier);
  return object;
}

Json ClassesOf(const FileFacts& facts) {
  Json object = Json::object();
  // Names differ from each other; looking each up among all before it would take for ever on a file
  // with a million of them.
  auto& members = object.get_ref<Json::object_t&>();
  for (const auto& [name, count] : facts.classes) members.emplace_back(name, count);
  return object;
}

Json FileOf(const FileFacts& facts) {
  Json object;
  object["file"] = ToUtf8(facts.path);
  object["bytes"] = facts.bytes;
  object["header"] = HeaderOf(facts.header.get());
  object["schema"] = facts.schema ? Json(std::string(NameOf(*facts.schema))) : Json(nullptr);
  object["records"] = facts.records;
  object["classes"] = ClassesOf(facts);
  object["remarks"] = TextsOf(facts.remarks);
  object["problems"] = TextsOf(facts.problems);
  object["model"] = facts.model ? ModelFactsAsJson(*facts.model) : Json(nullptr);
  return object;
}

}  // namespace

std::string FactsAsJson(const std::vector<FileFacts>& files) {
  Json all;
  all["files"] = Json::array();
  for (const FileFacts& facts : files) all["files"].push_back(FileOf(facts));
  return Indented(all);
}

}  // namespace corvel::host
