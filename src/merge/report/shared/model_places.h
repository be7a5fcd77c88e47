// What a report tells of the geometry and the tree of a result.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "merge/document.h"
#include "merge/report/shared/report_places.h"

namespace corvel {

// Looking at shapes costs most.
enum class Boxes { kOfDrawn, kOfAll };

struct PlacesWanted {
  // More products than this are thinned out, each class by the same share.
  std::size_t most = 100'000;
  Boxes boxes = Boxes::kOfDrawn;  // see DrawnProducts
  // In all, that of the caller among them. More than one: nothing of the model is carried.
  unsigned threads = 1;
};

// A product of an input. One that is not kept may have another object stand for it; one that is
// stands in the model itself.
struct PlacedProduct {
  IFC::IfcEntity* entity = nullptr;
  const char16_t* className = nullptr;  // never null: the class has one address
  bool isKept = true;
};

// What is known of products by their class. No object is touched but the first of its class: they
// lie all over the memory.
template <class Value>
class PerProductClass {
 public:
  // `find` takes that object.
  template <class Find>
  Value Of(const PlacedProduct& product, Find find) {
    if (product.className == lastName_) [[likely]]
      return lastValue_;
    auto found = values_.find(product.className);
    if (found == values_.end()) {
      found = values_.emplace(product.className, find(*product.entity)).first;
    }
    lastName_ = product.className;
    return lastValue_ = found->second;
  }

 private:
  std::unordered_map<const char16_t*, Value> values_;
  const char16_t* lastName_ = nullptr;
  Value lastValue_{};
};

// An input that is folded into the model, or the model itself.
struct PlacedInput {
  std::uint32_t input = 0;                // index in the report
  std::vector<PlacedProduct> products{};  // by number
};

// Looks at the model as it is going to be written: numbers are true. Lengths count in its length
// unit, whatever that of an input was: a model a thousand times too large shows as one. `inputs`:
// in the order of the fold.
ModelPlaces CollectPlaces(const IfcDocument& merged, const std::vector<PlacedInput>& inputs,
                          const PlacesWanted& wanted = {});

}  // namespace corvel
