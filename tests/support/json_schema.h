// Whether JSON is as a schema says: the part of JSON Schema (2020-12) that our documents use. A
// schema that asks for anything else fails, so that no word of it is passed over.
#pragma once

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

namespace corvel::test {

class JsonSchema {
 public:
  explicit JsonSchema(nlohmann::json schema) : schema_(std::move(schema)) {}
  // Throws when there is no such file, or no JSON in it.
  static JsonSchema OfFile(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error("cannot read " + path);
    return JsonSchema(nlohmann::json::parse(file));
  }

  // What is wrong, each with the place: "/changed/0/kind: is none of those allowed".
  std::vector<std::string> Mistakes(const nlohmann::json& value) const {
    std::vector<std::string> mistakes;
    Check(schema_, value, "", mistakes);
    return mistakes;
  }

 private:
  using Json = nlohmann::json;
  using Mistakes_ = std::vector<std::string>;

  void Check(const Json& schema, const Json& value, const std::string& at,
             Mistakes_& mistakes) const {
    if (schema.is_boolean()) {
      if (!schema.get<bool>()) mistakes.push_back(at + ": is not allowed");
      return;
    }
    for (const auto& [word, rule] : schema.items()) {
      CheckWord(word, rule, schema, value, at, mistakes);
    }
  }

  void CheckWord(const std::string& word, const Json& rule, const Json& schema, const Json& value,
                 const std::string& at, Mistakes_& mistakes) const {
    const auto require = [&](bool good, const std::string& trouble) {
      if (!good) mistakes.push_back(at + ": " + trouble);
    };
    if (word == "type") {
      require(IsOfType(rule, value), "is no " + rule.dump());
    } else if (word == "enum") {
      require(std::find(rule.begin(), rule.end(), value) != rule.end(), "is none of those allowed");
    } else if (word == "const") {
      require(rule == value, "is not " + rule.dump());
    } else if (word == "minimum") {
      require(!value.is_number() || value >= rule, "is too small");
    } else if (word == "exclusiveMinimum") {
      require(!value.is_number() || value > rule, "is too small");
    } else if (word == "maximum") {
      require(!value.is_number() || value <= rule, "is too large");
    } else if (word == "minItems") {
      require(!value.is_array() || value.size() >= rule.get<std::size_t>(), "has too few items");
    } else if (word == "maxItems") {
      require(!value.is_array() || value.size() <= rule.get<std::size_t>(), "has too many items");
    } else if (word == "pattern") {
      require(!value.is_string() ||
                  std::regex_search(value.get<std::string>(), std::regex(rule.get<std::string>())),
              "does not match " + rule.dump());
    } else if (word == "required") {
      for (const Json& name : rule) {
        require(!value.is_object() || value.contains(name.get<std::string>()),
                "lacks " + name.dump());
      }
    } else if (word == "properties") {
      CheckProperties(rule, value, at, mistakes);
    } else if (word == "additionalProperties") {
      CheckOthers(rule, schema, value, at, mistakes);
    } else if (word == "items") {
      for (std::size_t i = 0; value.is_array() && i < value.size(); ++i) {
        Check(rule, value[i], at + "/" + std::to_string(i), mistakes);
      }
    } else if (word == "$ref") {
      const std::string path = rule.get<std::string>();
      Check(schema_.at(Json::json_pointer(path.substr(1))), value, at, mistakes);
    } else if (word == "anyOf" || word == "oneOf") {
      const auto fitting = std::count_if(rule.begin(), rule.end(), [&](const Json& one) {
        Mistakes_ trouble;
        Check(one, value, at, trouble);
        return trouble.empty();
      });
      require(word == "anyOf" ? fitting > 0 : fitting == 1, "fits none of those allowed");
    } else if (!IsRemark(word)) {
      throw std::runtime_error("the schema asks for " + word);
    }
  }

  static bool IsRemark(const std::string& word) {
    return word == "$schema" || word == "$id" || word == "$defs" || word == "$comment" ||
           word == "title" || word == "description" || word == "examples";
  }

  static bool IsOfType(const Json& types, const Json& value) {
    if (types.is_array()) {
      return std::any_of(types.begin(), types.end(),
                         [&](const Json& type) { return IsOfType(type, value); });
    }
    const std::string type = types.get<std::string>();
    if (type == "integer") return value.is_number_integer();
    if (type == "number") return value.is_number();
    return type == value.type_name();
  }

  void CheckProperties(const Json& rules, const Json& value, const std::string& at,
                       Mistakes_& mistakes) const {
    for (const auto& [name, rule] : rules.items()) {
      const bool isThere = value.is_object() && value.contains(name);
      if (isThere) Check(rule, value.at(name), std::string(at).append("/").append(name), mistakes);
    }
  }

  void CheckOthers(const Json& rule, const Json& schema, const Json& value, const std::string& at,
                   Mistakes_& mistakes) const {
    if (!value.is_object()) return;
    for (const auto& [name, other] : value.items()) {
      const bool isNamed = schema.contains("properties") && schema.at("properties").contains(name);
      if (!isNamed) Check(rule, other, std::string(at).append("/").append(name), mistakes);
    }
  }

  Json schema_;
};

}  // namespace corvel::test
