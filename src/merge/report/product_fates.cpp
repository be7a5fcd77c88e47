#include "merge/report/product_fates.h"

#include <algorithm>
#include <map>

#include "core/entity_cast.h"
#include "core/text.h"
#include "merge/marking.h"
#include "schema/interfaces/product.h"

namespace corvel {

namespace {

DropReason ReasonOf(LeftOutReason reason) {
  switch (reason) {
    case LeftOutReason::kInactive: return DropReason::kInactive;
    case LeftOutReason::kHidden: return DropReason::kHidden;
    case LeftOutReason::kNotSelected: break;
  }
  return DropReason::kNotSelected;
}

void Count(ProductTally& tally, const std::optional<DropReason>& dropped) {
  ++tally.in;
  if (dropped) {
    ++tally.dropped[static_cast<std::size_t>(*dropped)];
  } else {
    ++tally.kept;
  }
}

}  // namespace

void ProductFates::Collect(const IFC::MainContainer& container) {
  const auto add = [this](std::uint32_t number, IFC::IfcEntity* product) {
    products_.push_back({product, product->getClassName(), number, std::nullopt});
  };
  if (!container.productsAreListed) {
    for (const auto& [number, entity] : container.originalEntities) {
      if (EntityCast<IFC::VirtualIfcProduct>(entity) != nullptr) add(number, entity);
    }
    return;
  }
  // What has just been read has the number of its file.
  products_.reserve(container.products.size());
  for (IFC::IfcEntity* const product : container.products) add(product->marker, product);
  const auto isBefore = [](const Product& a, const Product& b) { return a.number < b.number; };
  if (!std::is_sorted(products_.begin(), products_.end(), isBefore)) {
    std::sort(products_.begin(), products_.end(), isBefore);
  }
}

void ProductFates::NoteLeftOut(const std::vector<LeftOutObject>& objects) {
  for (const LeftOutObject& object : objects) leftOut_.emplace(object.number, object.reason);
}

// The lists name objects; what else a product that is listed takes along at once are no products,
// but for the openings that a user wants to have gone.
void ProductFates::NoteMarked(MarkingStep step) {
  for (Product& product : products_) {
    if (product.dropped || !IsDeleted(*product.entity)) continue;
    const auto listed = leftOut_.find(product.number);
    if (listed != leftOut_.end()) {
      product.dropped = ReasonOf(listed->second);
    } else if (step == MarkingStep::kSwept) {
      product.dropped = DropReason::kNotNeeded;
    } else {
      const bool isOpening =
          step == MarkingStep::kChosen && ClassIs(*product.entity, u"IfcOpeningElement");
      product.dropped = isOpening ? DropReason::kOpening : DropReason::kHangsOnDropped;
    }
  }
}

void ProductFates::NoteGone(const IFC::MainContainer& folded, DropReason reason) {
  for (Product& product : products_) {
    if (product.dropped) continue;
    const IFC::IfcEntity& entity = *product.entity;
    if (IsDeleted(entity)) {
      product.dropped = reason;
    } else if (folded.entities.Find(entity.marker) != &entity) {
      product.dropped = DropReason::kJoined;
    }
  }
}

void ProductFates::DropRest(DropReason reason) {
  for (Product& product : products_) {
    if (!product.dropped) product.dropped = reason;
  }
}

std::vector<PlacedProduct> ProductFates::Placed() const {
  std::vector<PlacedProduct> placed;
  placed.reserve(products_.size());
  for (const Product& product : products_) {
    placed.push_back({product.entity, product.className, !product.dropped});
  }
  return placed;
}

void ProductFates::Forget() {
  for (Product& product : products_) product.dropped.reset();
}

ProductTally ProductFates::Tally() const {
  ProductTally tally;
  for (const Product& product : products_) Count(tally, product.dropped);
  return tally;
}

// Names are compared once for each class and not for each product: a class has one address.
std::vector<ClassTally> ProductFates::TallyByClass() const {
  std::unordered_map<const char16_t*, ProductTally> byAddress;
  const char16_t* lastName = nullptr;
  ProductTally* last = nullptr;
  for (const Product& product : products_) {
    if (last == nullptr || product.className != lastName) {
      lastName = product.className;
      last = &byAddress[lastName];
    }
    Count(*last, product.dropped);
  }
  std::map<std::string, ProductTally> byName;
  for (const auto& [address, tally] : byAddress) {
    ProductTally& sum = byName[ToUtf8(address)];
    sum.in += tally.in;
    sum.kept += tally.kept;
    for (std::size_t i = 0; i < kDropReasons; ++i) sum.dropped[i] += tally.dropped[i];
  }
  std::vector<ClassTally> classes;
  classes.reserve(byName.size());
  for (const auto& [name, tally] : byName) classes.push_back({name, tally});
  return classes;
}

}  // namespace corvel
