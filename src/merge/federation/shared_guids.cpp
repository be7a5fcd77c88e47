#include "merge/federation/shared_guids.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <numeric>
#include <string_view>
#include <unordered_map>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/federation/prefetch_object.h"
#include "platform/prefetch.h"
#include "step/reader/block_hash.h"

namespace corvel {

namespace {

constexpr std::size_t kBitsOfWord = 64;

// A table of bits for hashes, small enough for the cache of a core: what has a bit of its own is
// there once.
class BitTable {
 public:
  explicit BitTable(std::size_t hashes)
      : words_(std::bit_ceil(hashes * kBitsOfHash / kBitsOfWord + 1)) {}

  bool Has(std::uint64_t hash) const { return (words_[WordOf(hash)] & BitOf(hash)) != 0; }
  void Set(std::uint64_t hash) { words_[WordOf(hash)] |= BitOf(hash); }

 private:
  // One of so many hashes has its bit with others by chance.
  static constexpr std::size_t kBitsOfHash = 16;

  static std::uint64_t BitOf(std::uint64_t hash) { return std::uint64_t{1} << hash % kBitsOfWord; }
  std::size_t WordOf(std::uint64_t hash) const { return hash / kBitsOfWord & (words_.size() - 1); }

  std::vector<std::uint64_t> words_;
};

std::string_view GuidOf(IFC::IfcEntity* root) {
  return EntityCast<IFC::VirtualIfcRoot>(root)->getGlobalId();
}

}  // namespace

std::vector<std::uint64_t> HashesOfGuids(const std::vector<IFC::IfcEntity*>& roots) {
  std::vector<std::uint64_t> hashes;
  hashes.reserve(roots.size());
  std::vector<const char*> guids(kObjectsAhead);
  for (std::size_t from = 0; from < roots.size(); from += kObjectsAhead) {
    const std::size_t to = std::min(from + kObjectsAhead, roots.size());
    for (std::size_t i = to; i < std::min(to + kObjectsAhead, roots.size()); ++i)
      PrefetchObject(roots[i]);
    for (std::size_t i = from; i < to; ++i) {
      guids[i - from] = EntityCast<IFC::VirtualIfcRoot>(roots[i])->getGlobalId();
      platform::PrefetchToRead(guids[i - from]);
    }
    for (std::size_t i = from; i < to; ++i) hashes.push_back(HashOfBlock(guids[i - from]));
  }
  return hashes;
}

std::vector<std::size_t> PlacesOfRepeated(const std::vector<std::uint64_t>& hashes) {
  std::vector<std::size_t> places(hashes.size());
  std::iota(places.begin(), places.end(), std::size_t{0});
  // Each time by other bits of the hashes: one of eight is left by chance.
  for (const int turn : {0, 20, 40}) {
    const auto turned = [&](std::size_t place) { return std::rotr(hashes[place], turn); };
    BitTable met(places.size());
    BitTable metAgain(places.size());
    for (const std::size_t place : places) {
      const std::uint64_t hash = turned(place);
      (met.Has(hash) ? metAgain : met).Set(hash);
    }
    std::erase_if(places, [&](std::size_t place) { return !metAgain.Has(turned(place)); });
  }
  return places;
}

std::vector<IFC::IfcEntity*> HoldersOfSharedGuids(const std::vector<IFC::IfcEntity*>& roots) {
  std::unordered_map<std::string_view, std::size_t> counts;
  for (IFC::IfcEntity* const root : roots) ++counts[GuidOf(root)];
  std::vector<IFC::IfcEntity*> holders;
  std::copy_if(roots.begin(), roots.end(), std::back_inserter(holders), [&](IFC::IfcEntity* root) {
    const std::string_view guid = GuidOf(root);
    return !guid.empty() && counts.at(guid) > 1;
  });
  return holders;
}

}  // namespace corvel
