#include "host/check/known_places.h"

#include <algorithm>

namespace corvel::host {

std::uint64_t KnownPlaces::Sum::Count() const {
  std::uint64_t count = anonymous;
  for (const auto& [identity, object] : objects) count += object.count;
  return count;
}

void KnownPlaces::Add(RuleId rule, const std::string& subject, std::uint64_t count,
                      const PlacesByObject& byObject, std::size_t file) {
  Sum& sum = sums_[Key(rule, subject)];
  for (const auto& [identity, place] : byObject) {
    Object& object = sum.objects.try_emplace(identity, Object{0, file, place.number}).first->second;
    object.count += place.count;
    count -= place.count;
  }
  sum.anonymous += count;
}

KnownPlaces::Sum* KnownPlaces::Find(RuleId rule, std::string_view subject) {
  const auto found = sums_.find(Key(rule, subject));
  return found == sums_.end() ? nullptr : &found->second;
}

std::uint64_t KnownPlaces::Take(RuleId rule, std::string_view subject, std::uint64_t object,
                                std::uint64_t count) {
  Sum* const sum = Find(rule, subject);
  if (sum == nullptr) return 0;
  const auto found = sum->objects.find(object);
  if (found == sum->objects.end()) return 0;
  const std::uint64_t taken = std::min(count, found->second.count);
  found->second.count -= taken;
  return taken;
}

std::uint64_t KnownPlaces::TakeAnonymous(RuleId rule, std::string_view subject,
                                         std::uint64_t count) {
  Sum* const sum = Find(rule, subject);
  if (sum == nullptr) return 0;
  const std::uint64_t taken = std::min(count, sum->anonymous);
  sum->anonymous -= taken;
  return taken;
}

}  // namespace corvel::host
