#include "host/json.h"

namespace corvel::host {

namespace {

std::string TextOf(const Json& json, int indent) {
  return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

Json TextsOf(const std::vector<WideString>& texts) {
  Json array = Json::array();
  for (const WideString& text : texts) array.push_back(ToUtf8(text));
  return array;
}

std::string InOneLine(const Json& json) { return TextOf(json, -1); }

std::string Indented(const Json& json) {
  constexpr int kIndent = 2;
  return TextOf(json, kIndent) + "\n";
}

}  // namespace corvel::host
