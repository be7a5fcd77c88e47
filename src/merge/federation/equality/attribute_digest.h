// What an attribute says.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "merge/federation/equality/digest.h"
#include "schema/attributes.h"

namespace corvel {

// Adds attributes to what is made of an object. What stands in the place of a reference is told by
// `digestOf`, which is called with each; in a SET their order does not count.
template <class DigestOf>
class AttributeDigest {
 public:
  AttributeDigest(DigestMaker& maker, DigestOf digestOf) : maker_(maker), digestOf_(digestOf) {}

  void Add(const ConstAttribute& attribute) {
    maker_.Add(static_cast<std::uint64_t>(attribute.State()));
    isSet_ = attribute.Facts().aggregates[0].kind == Aggregate::Kind::kSet;
    attribute.Visit([this](const auto& value) { this->AddHeld(value); });
  }

 private:
  template <class T>
  void AddHeld(const List<T>& list) {
    maker_.Add(std::uint64_t{list.size()});
    for (const T& item : list) AddHeld(item);
  }
  void AddHeld(const EntityList& list) {
    std::vector<Digest> digests;
    for (IFC::IfcEntity* const item : list) digests.push_back(digestOf_(item));
    if (isSet_) std::sort(digests.begin(), digests.end());
    maker_.Add(std::uint64_t{list.size()});
    for (const Digest& digest : digests) maker_.Add(digest);
  }
  void AddHeld(IFC::IfcEntity* entity) { maker_.Add(digestOf_(entity)); }
  void AddHeld(double number) { maker_.Add(number); }
  void AddHeld(std::int32_t number) { maker_.Add(static_cast<std::uint64_t>(number)); }
  void AddHeld(ModelText text) { maker_.Add(text); }
  void AddHeld(const char* text) {
    for (; *text != '\0'; ++text) maker_.Add(std::uint64_t{static_cast<unsigned char>(*text)});
    maker_.Add(std::uint64_t{0});
  }

  DigestMaker& maker_;
  DigestOf digestOf_;
  bool isSet_ = false;
};

}  // namespace corvel
