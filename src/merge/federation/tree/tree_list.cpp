#include "merge/federation/tree/tree_list.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/shown_paths.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/tree/tree_addresses.h"

namespace corvel {

namespace {

constexpr const char* kHead =
    "; What becomes one, and what stays apart. With --tree-map this file is taken back, changed or "
    "not:\n"
    ";   join A B   A gives way to B, which is of an earlier model\n"
    ";   apart A    A stays as it is, and others may give way to it\n"
    "; An object is named by the position of its model and its GUID, or the number of its record.\n"
    "; What stands behind a semicolon is for you; the names of the models are compared.\n";

const char* WordFor(MatchReason reason) {
  switch (reason) {
    case MatchReason::kNone: break;
    case MatchReason::kGuid: return "equal GUID";
    case MatchReason::kName: return "equal name";
    case MatchReason::kHeight: return "equal height";
    case MatchReason::kOnly: return "the only ones of their level";
    case MatchReason::kTold: return "as told by the map";
  }
  return "";
}

// Line ends and the like would end the line.
std::string NameOf(const SpatialObject& object) {
  WideString name = TextOf(*object.entity, "Name");
  for (char16_t& unit : name) {
    if (unit < u' ' || unit == 0x7F) unit = u' ';
  }
  return "'" + ToUtf8(name) + "'";
}

std::string HeightOf(const SpatialObject& object) {
  if (!object.isStorey) return {};
  if (!object.heightMetres) return " without height";
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), " at %.3f m", *object.heightMetres);
  return text.data();
}

std::string WhatItIs(const SpatialObject& object) {
  return object.kind + " " + NameOf(object) + HeightOf(object);
}

class Lister {
 public:
  Lister(const FederatedModel& model, SpatialStructure& structure, const BecomesPart& becomesPart)
      : model_(model),
        structure_(structure),
        becomesPart_(becomesPart),
        addresses_(model, structure) {}

  std::string List() {
    for (const SpatialObject& object : structure_.objects) {
      if (object.survivor != nullptr) ++followers_[object.survivor];
    }
    for (const Ambiguity& ambiguity : structure_.ambiguities) {
      numbers_.emplace(&ambiguity, numbers_.size() + 1);
    }
    text_ = kHead;
    for (std::size_t input = 0; input < model_.InputCount(); ++input) {
      const WideString path = model_.Document(input).getFilePath();
      text_ += "input " + std::to_string(input + 1) + " " + ToUtf8(ShownFileName(path)) + "\n";
    }
    ListTrees();
    for (const Ambiguity& ambiguity : structure_.ambiguities) List(ambiguity);
    return std::move(text_);
  }

 private:
  // What no tree leads to stands behind the trees of its model.
  void ListTrees() {
    auto begin = structure_.objects.begin();
    while (begin != structure_.objects.end()) {
      const auto end = std::find_if(begin, structure_.objects.end(), [&](const auto& object) {
        return object.input != begin->input;
      });
      for (auto object = begin; object != end; ++object) {
        if (object->parent == nullptr && object->isPlaced) ListTree(*object);
      }
      for (; begin != end; ++begin) {
        if (listed_.insert(&*begin).second) List(*begin, 0);
      }
    }
  }

  void ListTree(const SpatialObject& top) {
    std::vector<std::pair<const SpatialObject*, std::size_t>> waiting = {{&top, 0}};
    while (!waiting.empty()) {
      const auto [object, depth] = waiting.back();
      waiting.pop_back();
      if (!listed_.insert(object).second) continue;
      List(*object, depth);
      // The first child comes back first.
      for (std::size_t i = object->children.size(); i-- > 0;) {
        waiting.emplace_back(object->children[i], depth + 1);
      }
    }
  }

  void List(const SpatialObject& object, std::size_t depth) {
    constexpr std::size_t kMostIndents = 16;
    text_.append(2 * std::min(depth, kMostIndents), ' ');
    if (object.survivor != nullptr) {
      text_ += "join " + addresses_.Of(object) + " " + addresses_.Of(*object.survivor) + " ; " +
               WhatItIs(object) + " to " + NameOf(*object.survivor) + HeightOf(*object.survivor) +
               ": " + WordFor(object.reason);
      if (becomesPart_(object)) text_ += "; has another shape, and becomes a part of it";
    } else {
      text_ += "apart " + addresses_.Of(object) + " ; " + WhatItIs(object) + WhyApart(object);
    }
    text_ += "\n";
  }

  std::string WhyApart(const SpatialObject& object) const {
    const auto followers = followers_.find(&object);
    if (followers != followers_.end()) {
      const bool isOne = followers->second == 1;
      return ": " + std::to_string(followers->second) +
             (isOne ? " gives way to it" : " give way to it");
    }
    if (!object.isPlaced) return ": not below the project, or out of order";
    if (object.isTold) return ": as told by the map";
    if (object.ambiguity != nullptr) {
      return ": several would match, see list " + std::to_string(numbers_.at(object.ambiguity));
    }
    if (object.isContradicted) return ": its name stands at another height";
    return ": nothing matches";
  }

  void List(const Ambiguity& ambiguity) {
    text_ += "; list " + std::to_string(numbers_.at(&ambiguity)) + ", " +
             WordFor(ambiguity.reason) + ":";
    for (const SpatialObject* const object : ambiguity.objects) {
      text_ += " " + addresses_.Of(*object);
    }
    text_ += "\n";
  }

  const FederatedModel& model_;
  SpatialStructure& structure_;
  const BecomesPart& becomesPart_;
  TreeAddresses addresses_;
  std::unordered_map<const SpatialObject*, std::size_t> followers_;
  std::unordered_map<const Ambiguity*, std::size_t> numbers_;
  std::unordered_set<const SpatialObject*> listed_;
  std::string text_;
};

}  // namespace

std::string TreeList(const FederatedModel& model, SpatialStructure& structure,
                     const BecomesPart& becomesPart) {
  return Lister(model, structure, becomesPart).List();
}

}  // namespace corvel
