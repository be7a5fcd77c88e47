// Where the products of a result stand, and the tree that they hang in.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/text.h"

namespace corvel {

// Lengths in metres, in the coordinates of the result.
struct ProductBox {
  std::array<double, 3> centre{};
  std::array<double, 3> size{};  // along its own axes, the third one upward
  double degrees = 0.0;          // of its first axis from that of the model, counter-clockwise
};

struct ProductPlace {
  std::uint32_t input = 0;       // index
  std::uint32_t classIndex = 0;  // of ModelPlaces::classes
  std::string guid;
  WideString name;
  std::array<double, 3> origin{};
  std::optional<ProductBox> box{};  // where the shape tells one
};

struct StoreyPlace {
  std::uint32_t input = 0;
  WideString name;
  double height = 0.0;
};

// A node of the spatial tree: the project, sites, buildings, storeys, spaces and their like.
struct SpatialNode {
  std::string className;
  std::string guid;
  WideString name;
  // Whence it comes, by index: the input whose object it is, and those whose objects it stands for.
  std::vector<std::uint32_t> inputs;
  // Products in it that are no nodes of the tree, by input.
  std::vector<std::size_t> products;
  std::vector<std::size_t> children;  // by index of ModelPlaces::tree
};

struct ClassOfPlaces {
  std::string name;
  std::size_t products = 0;  // that have a place
  std::size_t listed = 0;    // of these, among `products`
};

struct ModelPlaces {
  std::vector<ClassOfPlaces> classes;
  std::vector<ProductPlace> products;  // by input, and then by number
  std::vector<StoreyPlace> storeys;    // by height
  // Where true north points to in the plan; nothing when the model does not tell.
  std::optional<std::array<double, 2>> north;
  std::size_t withoutPlace = 0;   // products whose place cannot be told
  std::vector<SpatialNode> tree;  // the first is the root; empty without a project
};

}  // namespace corvel
