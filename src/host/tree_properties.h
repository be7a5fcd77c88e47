// The properties of the objects of a tree.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/text.h"

namespace corvel::host {

// A model that is read for what its objects have: unlike a scene that takes the memory of a model.
class ModelProperties {
 public:
  // Null when it cannot be read, which `messages` tell.
  static std::unique_ptr<ModelProperties> Read(const WideString& path, bool tolerant,
                                               const WideString& workFolder,
                                               std::vector<WideString>& messages);
  ~ModelProperties();
  ModelProperties(const ModelProperties&) = delete;
  ModelProperties& operator=(const ModelProperties&) = delete;

  // "Pset_WallCommon.FireRating" and "'F30'", in UTF-8, by name: what the object with this number
  // has itself, and what it has of its type beyond that. Lengths, areas and volumes in metres.
  using Properties = std::vector<std::pair<std::string, std::string>>;
  Properties Of(std::uint32_t number) const;

 private:
  ModelProperties();
  struct Parts;

  std::unique_ptr<Parts> parts_;
};

}  // namespace corvel::host
