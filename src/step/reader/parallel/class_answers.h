// Which classes an attribute admits, as one thread of several remembers it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <typeinfo>

#include "core/entity.h"
#include "core/entity_cast.h"

namespace corvel {

// As ClassTest::Admits, without touching the test. One answer a place: what comes to a place that
// is taken is asked anew, and takes it.
class ClassAnswers {
 public:
  bool Admits(const ClassTest& test, const IFC::IfcEntity& entity) {
    const std::type_info* const dynamicClass = &typeid(entity);
    Answer& known = answers_[PlaceOf(&test, dynamicClass)];
    if (known.test != &test || known.dynamicClass != dynamicClass) [[unlikely]]
      known = {&test, dynamicClass, test.AdmitsSlowly(&entity)};
    return known.isYes;
  }

 private:
  static constexpr unsigned kBits = 10;

  struct Answer {
    const ClassTest* test = nullptr;
    const std::type_info* dynamicClass = nullptr;
    bool isYes = false;
  };
  static std::size_t PlaceOf(const ClassTest* test, const std::type_info* dynamicClass) {
    const auto one = reinterpret_cast<std::uintptr_t>(test);
    const auto other = reinterpret_cast<std::uintptr_t>(dynamicClass);
    return ((one >> 3) * 31 + (other >> 3)) * 0x9E3779B97F4A7C15ull >> (64 - kBits);
  }

  std::array<Answer, std::size_t{1} << kBits> answers_{};
};

}  // namespace corvel
