// Places of findings as files know them that number their records differently.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "host/check/rules.h"

namespace corvel::host {

// By ObjectIdentity.
struct PlaceOfObject {
  std::uint64_t count = 0;
  std::uint32_t number = 0;  // of the first of these records
};
using PlacesByObject = std::map<std::uint64_t, PlaceOfObject>;

// Those that other models have, from which a model takes its own.
class KnownPlaces {
 public:
  struct Object {
    std::uint64_t count = 0;
    std::size_t file = 0;      // the first that has it
    std::uint32_t number = 0;  // there
  };
  struct Sum {
    std::uint64_t anonymous = 0;  // places that are about no object
    std::map<std::uint64_t, Object> objects{};
    std::uint64_t Count() const;
  };
  using Key = std::pair<RuleId, std::string>;

  // The places of one finding of the model number `file`, `count` of them.
  void Add(RuleId rule, const std::string& subject, std::uint64_t count,
           const PlacesByObject& byObject, std::size_t file);

  // Takes up to `count` places and gives how many there were.
  std::uint64_t Take(RuleId rule, std::string_view subject, std::uint64_t object,
                     std::uint64_t count);
  std::uint64_t TakeAnonymous(RuleId rule, std::string_view subject, std::uint64_t count);

  // What nobody has taken, by rule and subject; some may be used up.
  const std::map<Key, Sum, std::less<>>& Rest() const { return sums_; }

 private:
  Sum* Find(RuleId rule, std::string_view subject);

  std::map<Key, Sum, std::less<>> sums_;
};

}  // namespace corvel::host
