#include "core/entity_cast.h"

#include <utility>

namespace corvel {

void ClassMemory::Remember(const std::type_info* dynamicClass, std::ptrdiff_t offset) {
  // Never more than half full, so that a search for an unknown class ends soon.
  if ((used_ + 1) * 2 > entries_.size()) {
    std::vector<Entry> old =
        std::exchange(entries_, std::vector<Entry>(entries_.empty() ? 8 : entries_.size() * 2));
    used_ = 0;
    for (const Entry& entry : old) {
      if (entry.dynamicClass != nullptr) Remember(entry.dynamicClass, entry.offset);
    }
  }
  std::size_t i = Slot(dynamicClass);
  while (entries_[i].dynamicClass != nullptr) i = (i + 1) & (entries_.size() - 1);
  entries_[i] = {dynamicClass, offset};
  ++used_;
}

bool ClassTest::AdmitsAnother(const IFC::IfcEntity* entity, const std::type_info* dynamicClass) {
  const std::ptrdiff_t* const known = memory_.Find(dynamicClass);
  lastAnswer_ = known != nullptr ? *known != ClassMemory::kNotOfThisClass : slowTest_(entity);
  if (known == nullptr) {
    // The offset is not needed here: any number stands for yes.
    memory_.Remember(dynamicClass, lastAnswer_ ? 0 : ClassMemory::kNotOfThisClass);
  }
  lastClass_ = dynamicClass;
  return lastAnswer_;
}

}  // namespace corvel
