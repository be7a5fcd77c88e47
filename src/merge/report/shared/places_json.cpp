#include "merge/report/shared/places_json.h"

#include "core/text.h"

namespace corvel {

namespace {

// Metres are told to the tenth of a millimetre, angles to a thousandth of a degree.
constexpr int kLengthDigits = 4;
constexpr int kAngleDigits = 3;

template <class Number>
void AddNumbers(std::string_view key, const std::vector<Number>& numbers, JsonText& json) {
  json.Key(key).BeginArray();
  for (const Number number : numbers) json.Value(number);
  json.EndArray();
}

void AddNorth(const ModelPlaces& places, JsonText& json) {
  json.Key("north");
  if (!places.north) return json.Null();
  json.BeginArray();
  for (const double value : *places.north) json.Rounded(value, kLengthDigits);
  json.EndArray();
}

void AddStorey(const StoreyPlace& storey, JsonText& json) {
  json.BeginObject();
  json.Member("input", storey.input);
  json.Member("name", storey.name);
  json.Key("height").Rounded(storey.height, kLengthDigits);
  json.EndObject();
}

void AddClass(const ClassOfPlaces& one, JsonText& json) {
  json.BeginObject();
  json.Member("class", one.name);
  json.Member("products", one.products);
  json.Member("listed", one.listed);
  json.EndObject();
}

// A row, since there are very many; what has no box ends before it.
void AddProduct(const ProductPlace& product, JsonText& json) {
  json.BeginArray();
  json.Value(product.input);
  json.Value(product.classIndex);
  json.Utf8(product.guid);
  json.Value(product.name);
  for (const double value : product.origin) json.Rounded(value, kLengthDigits);
  if (product.box) {
    for (const double value : product.box->centre) json.Rounded(value, kLengthDigits);
    for (const double value : product.box->size) json.Rounded(value, kLengthDigits);
    json.Rounded(product.box->degrees, kAngleDigits);
  }
  json.EndArray();
}

}  // namespace

void AddTree(const std::vector<SpatialNode>& tree, JsonText& json) {
  json.EachOnALine(tree, [&json](const SpatialNode& node) {
    json.BeginObject();
    json.Member("class", node.className);
    json.Key("guid").Utf8(node.guid);
    json.Member("name", node.name);
    AddNumbers("inputs", node.inputs, json);
    AddNumbers("products", node.products, json);
    AddNumbers("children", node.children, json);
    json.EndObject();
  });
}

void AddPlaces(const ModelPlaces* places, JsonText& json) {
  if (places == nullptr) return json.Null();
  json.BeginObject();
  json.Member("unit", "metre");
  AddNorth(*places, json);
  json.Member("withoutPlace", places->withoutPlace);
  json.Key("storeys");
  json.EachOnALine(places->storeys, [&json](const auto& storey) { AddStorey(storey, json); });
  json.Key("classes");
  json.EachOnALine(places->classes, [&json](const auto& one) { AddClass(one, json); });
  json.Key("columns").BeginArray();
  for (const char* const column : {"input", "class", "guid", "name", "x", "y", "z", "boxX", "boxY",
                                   "boxZ", "width", "depth", "height", "degrees"}) {
    json.Value(column);
  }
  json.EndArray();
  constexpr std::size_t kBytesOfProduct = 100;
  json.Expect(places->products.size() * kBytesOfProduct);
  json.Key("products");
  json.EachOnALine(places->products, [&json](const auto& product) { AddProduct(product, json); });
  json.EndObject();
}

}  // namespace corvel
