#include "host/diff/pairing.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "host/diff/neighbours.h"
#include "merge/federation/attribute_values.h"
#include "platform/prefetch.h"

namespace corvel::host::diff {

namespace {

constexpr std::uint32_t kNone = Pairing::kNone;
// A context may be a part of one that is a part of one.
constexpr int kDeepestContext = 4;

Digest NameOfContext(const IFC::IfcEntity& context) {
  DigestMaker maker;
  const IFC::IfcEntity* at = &context;
  for (int depth = 0; at != nullptr && depth < kDeepestContext; ++depth) {
    maker.Add(WordOfName(at->getClassName()));
    for (const char* const name : {"ContextIdentifier", "ContextType", "TargetView"}) {
      maker.Add(WordOfName(TextOf(*at, name).c_str()));
      maker.Add(WordOfName(WordOf(*at, name)));
    }
    at = ReferenceOf(*at, "ParentContext");
  }
  return maker.Made();
}

// Nothing for what has no GUID.
std::optional<Digest> IdentityOf(const ComparedModel& model, std::size_t index) {
  if (model.WordOf(index).role == Role::kContext) return NameOfContext(*model.Objects()[index]);
  const std::string_view guid = model.GuidOf(index);
  if (guid.empty()) return std::nullopt;
  DigestMaker maker;
  maker.Add(std::uint64_t{guid.size()});
  for (std::size_t at = 0; at < guid.size(); at += sizeof(std::uint64_t)) {
    std::uint64_t part = 0;
    std::memcpy(&part, guid.data() + at, std::min(guid.size() - at, sizeof part));
    maker.Add(part);
  }
  return maker.Made();
}

// Objects of one model that have no pair yet, by what they are found by; several in a row.
class Waiting {
 public:
  explicit Waiting(std::size_t objects) : next_(objects, kNone) {}

  // In descending order, so that the first one is found first.
  void Add(const Digest& key, std::uint32_t index) {
    const auto [entry, isNew] = first_.try_emplace(key, index);
    if (isNew) return;
    next_[index] = entry->second;
    entry->second = index;
  }
  std::uint32_t Take(const Digest& key) {
    const auto entry = first_.find(key);
    if (entry == first_.end()) return kNone;
    const std::uint32_t index = entry->second;
    if (next_[index] == kNone) {
      first_.erase(entry);
    } else {
      entry->second = next_[index];
    }
    return index;
  }
  bool IsOnly(const Digest& key) const {
    const auto entry = first_.find(key);
    return entry != first_.end() && next_[entry->second] == kNone;
  }

 private:
  std::unordered_map<Digest, std::uint32_t, HashOfDigest> first_;
  std::vector<std::uint32_t> next_;
};

using Identities = std::vector<std::optional<Digest>>;

// Objects of one model without a pair whose identity one of the other model has.
class Holders {
 public:
  Holders(ObjectFacts& facts, const Identities& identities, const Identities& otherSide,
          const std::vector<std::uint32_t>& others)
      : facts_(facts),
        common_(identities),
        isLeft_(identities.size()),
        neighbours_(facts.Model(), FindLeft(otherSide, others)) {}

  // To the neighbours so many relations away, by what they say.
  void LookAround(int levels) {
    Identities identities = common_;
    for (std::size_t i = 0; i < identities.size(); ++i) {
      if (isLeft_[i]) identities[i]->high ^= facts_.ContentOf(i).high;
    }
    around_ = neighbours_.Keys(identities, levels);
    for (std::size_t i = 0; i < around_.size(); ++i) {
      if (around_[i] != 0) around_[i] ^= identities[i]->high;
    }
  }
  bool IsLeft(std::size_t index) const { return isLeft_[index]; }
  const Digest& IdentityOf(std::size_t index) const { return *common_[index]; }
  std::span<const std::uint32_t> NeighboursOf(std::size_t index) const {
    return neighbours_.Of(index);
  }
  std::optional<Digest> KeyAround(std::size_t index) const {
    if (!isLeft_[index] || around_[index] == 0) return std::nullopt;
    return Digest{common_[index]->high, around_[index]};
  }
  std::optional<Digest> Key(std::size_t index, Digest (ObjectFacts::*more)(std::size_t)) {
    if (!isLeft_[index]) return std::nullopt;
    return Digest{common_[index]->high, (facts_.*more)(index).low};
  }

 private:
  const std::vector<bool>& FindLeft(const Identities& otherSide,
                                    const std::vector<std::uint32_t>& others) {
    std::unordered_set<Digest, HashOfDigest> there;
    for (const auto& identity : otherSide) {
      if (identity) there.insert(*identity);
    }
    for (std::size_t i = 0; i < common_.size(); ++i) {
      if (common_[i] && !there.contains(*common_[i])) common_[i].reset();
      isLeft_[i] = common_[i] && others[i] == kNone;
    }
    return isLeft_;
  }

  ObjectFacts& facts_;
  Identities common_;  // that both models have
  std::vector<bool> isLeft_;
  Neighbours neighbours_;
  std::vector<std::uint64_t> around_;
};

class Pairs {
 public:
  Pairs(ObjectFacts& earlier, ObjectFacts& later, Shortcuts shortcuts)
      : earlier_(earlier), later_(later), takesShortcuts_(shortcuts == Shortcuts::kTaken) {
    pairing_.laterOf.assign(earlier.Model().Objects().size(), kNone);
    pairing_.earlierOf.assign(later.Model().Objects().size(), kNone);
  }

  Pairing Make() {
    Match(ContextOf, false);
    MatchByIdentity();
    for (const std::uint32_t later : pairing_.laterOf)
      pairing_.isFoundByIdentity.push_back(later != kNone);
    ReferByPairsOrClasses();
    MatchByContent();
    Match(ClassOfContext, true);
    ReferByPairs();
    earlier_.Values().Forget();
    later_.Values().Forget();
    ReferByThemselves(earlier_, pairing_.laterOf, 0);
    ReferByThemselves(later_, pairing_.earlierOf, 1);
    return std::move(pairing_);
  }

 private:
  using Look = ObjectFacts::Look;
  // Of several of one GUID first those that say the same and are related to what says the same,
  // then those that are related to pairs.
  void MatchByIdentity() {
    const Identities earlier = IdentitiesOf(earlier_);
    const Identities later = IdentitiesOf(later_);
    Match([&](const ObjectFacts& facts,
              std::size_t index) { return (&facts == &earlier_ ? earlier : later)[index]; },
          true);
    if (takesShortcuts_ && !SomeShareAnIdentity(earlier, later)) return;
    Holders here(earlier_, earlier, later, pairing_.laterOf);
    Holders there(later_, later, earlier, pairing_.earlierOf);
    MatchHolders(here, there);
    Match([&](const ObjectFacts& facts,
              std::size_t index) { return (&facts == &earlier_ ? earlier : later)[index]; },
          false);
  }

  // Of those without a pair an earlier and a later one.
  bool SomeShareAnIdentity(const Identities& earlier, const Identities& later) const {
    std::unordered_set<Digest, HashOfDigest> left;
    for (std::size_t i = 0; i < earlier.size(); ++i) {
      if (earlier[i] && pairing_.laterOf[i] == kNone) left.insert(*earlier[i]);
    }
    for (std::size_t i = 0; i < later.size() && !left.empty(); ++i) {
      const bool isLeft = later[i] && pairing_.earlierOf[i] == kNone;
      if (isLeft && left.contains(*later[i])) return true;
    }
    return false;
  }

  void MatchHolders(Holders& here, Holders& there) {
    const auto by = [&](auto key, bool onlyOne) {
      Match([&](const ObjectFacts& facts,
                std::size_t index) { return key(&facts == &earlier_ ? here : there, index); },
            onlyOne);
    };
    const auto around = [](const Holders& side, std::size_t i) { return side.KeyAround(i); };
    const auto whole = [](Holders& side, std::size_t i) {
      return side.Key(i, &ObjectFacts::WholeOf);
    };
    const auto content = [](Holders& side, std::size_t i) {
      return side.Key(i, &ObjectFacts::ContentOf);
    };
    constexpr int kFar = 4;
    ReferByPairsOrClasses();
    for (const int levels : {kFar, 1}) {
      here.LookAround(levels);
      there.LookAround(levels);
      by(around, true);
    }
    by(content, true);
    while (MatchByNeighbours(here, there)) {
    }
    ReferByPairsOrClasses();
    by(whole, false);
    by(content, false);
  }

  // With whom most of the neighbours have gone. False: nobody was.
  bool MatchByNeighbours(const Holders& here, const Holders& there) {
    std::unordered_multimap<Digest, std::uint32_t, HashOfDigest> waiting;
    for (std::size_t i = 0; i < pairing_.earlierOf.size(); ++i) {
      if (pairing_.earlierOf[i] != kNone || !there.IsLeft(i)) continue;
      waiting.emplace(there.IdentityOf(i), static_cast<std::uint32_t>(i));
    }
    bool found = false;
    for (std::size_t i = 0; i < pairing_.laterOf.size(); ++i) {
      if (pairing_.laterOf[i] != kNone || !here.IsLeft(i)) continue;
      const auto [first, last] = waiting.equal_range(here.IdentityOf(i));
      auto best = last;
      std::size_t most = 0;
      for (auto candidate = first; candidate != last; ++candidate) {
        const std::size_t common = CommonNeighbours(here, i, there, candidate->second);
        if (common < most || common == 0) continue;
        const bool isFirst = best == last || candidate->second < best->second;
        if (common > most || isFirst) best = candidate;
        most = common;
      }
      if (best == last) continue;
      pairing_.laterOf[i] = best->second;
      pairing_.earlierOf[best->second] = static_cast<std::uint32_t>(i);
      waiting.erase(best);
      found = true;
    }
    return found;
  }
  std::size_t CommonNeighbours(const Holders& here, std::size_t earlier, const Holders& there,
                               std::size_t later) const {
    std::unordered_set<std::uint32_t> gone;
    for (const std::uint32_t neighbour : here.NeighboursOf(earlier)) {
      if (pairing_.laterOf[neighbour] != kNone) gone.insert(pairing_.laterOf[neighbour]);
    }
    const auto others = there.NeighboursOf(later);
    return static_cast<std::size_t>(
        std::count_if(others.begin(), others.end(),
                      [&](std::uint32_t neighbour) { return gone.contains(neighbour); }));
  }

  static Identities IdentitiesOf(ObjectFacts& facts) {
    Identities identities;
    const ComparedModel& model = facts.Model();
    const std::size_t count = model.Objects().size();
    identities.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
      constexpr std::size_t kAway = 8;
      if (i + kAway < count) platform::PrefetchToRead(model.GuidOf(i + kAway));
      identities.push_back(IdentityOf(model, i));
    }
    return identities;
  }
  // What says the same has the same look, and whoever has that has the same name. So looks are only
  // asked where a name is one of both models, and contents where a look is none of one object of
  // each: all that a model says takes long.
  void MatchByContent() {
    const NameKeys namesOfEarlier = NameKeysOf(earlier_, pairing_.laterOf);
    const NameKeys namesOfLater = NameKeysOf(later_, pairing_.earlierOf);
    const Looks earlier = LooksOf(earlier_, namesOfEarlier, namesOfLater);
    const Looks later = LooksOf(later_, namesOfLater, namesOfEarlier);
    const auto lookAt = [&](const ObjectFacts& facts, std::size_t index) {
      return &facts == &earlier_ ? earlier[index] : later[index];
    };
    const auto telling = [&](ObjectFacts& facts, std::size_t index) -> std::optional<Digest> {
      const auto& look = lookAt(facts, index);
      return look && look->tells ? std::optional(look->digest) : std::nullopt;
    };
    Match(telling, true);
    const auto ofEarlier = WithoutPair(earlier, pairing_.laterOf);
    const auto ofLater = WithoutPair(later, pairing_.earlierOf);
    const auto content = [&](ObjectFacts& facts, std::size_t index) -> std::optional<Digest> {
      const auto& look = lookAt(facts, index);
      const bool hasLike =
          look && ofEarlier.contains(look->digest) && ofLater.contains(look->digest);
      return hasLike ? std::optional(facts.ContentOf(index)) : std::nullopt;
    };
    Match(content, false);
    Match(telling, true);
  }

  using NameKeys = std::vector<std::optional<std::uint64_t>>;  // of those without a pair
  using Looks = std::vector<std::optional<Look>>;
  static NameKeys NameKeysOf(const ObjectFacts& facts, const std::vector<std::uint32_t>& others) {
    const auto& objects = facts.Model().Objects();
    NameKeys keys(others.size());
    for (std::size_t i = 0; i < others.size(); ++i) {
      constexpr std::size_t kAway = 8;
      if (i + kAway < others.size()) FetchRecord(objects[i + kAway]);
      if (others[i] == kNone) keys[i] = facts.NameKeyOf(i);
    }
    return keys;
  }
  Looks LooksOf(ObjectFacts& facts, const NameKeys& names, const NameKeys& otherSide) const {
    std::unordered_set<std::uint64_t> there;
    for (const auto& name : otherSide) {
      if (name) there.insert(*name);
    }
    Looks looks(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (!names[i]) continue;
      if (!takesShortcuts_ || there.contains(*names[i])) looks[i] = facts.LookOf(i);
    }
    return looks;
  }
  static std::unordered_set<Digest, HashOfDigest> WithoutPair(
      const Looks& looks, const std::vector<std::uint32_t>& others) {
    std::unordered_set<Digest, HashOfDigest> alone;
    for (std::size_t i = 0; i < looks.size(); ++i) {
      if (others[i] == kNone && looks[i]) alone.insert(looks[i]->digest);
    }
    return alone;
  }

  template <class KeyOf>
  void Match(KeyOf keyOf, bool onlyOne) {
    Waiting waiting(pairing_.earlierOf.size());
    for (std::size_t i = pairing_.earlierOf.size(); i-- > 0;) {
      if (pairing_.earlierOf[i] != kNone) continue;
      if (const auto key = keyOf(later_, i)) waiting.Add(*key, static_cast<std::uint32_t>(i));
    }
    std::vector<std::optional<Digest>> keys(pairing_.laterOf.size());
    Waiting mine(onlyOne ? keys.size() : 0);
    for (std::size_t i = keys.size(); i-- > 0;) {
      if (pairing_.laterOf[i] == kNone) keys[i] = keyOf(earlier_, i);
      if (onlyOne && keys[i]) mine.Add(*keys[i], static_cast<std::uint32_t>(i));
    }
    for (std::size_t i = 0; i < keys.size(); ++i) {
      if (!keys[i]) continue;
      if (onlyOne && !(mine.IsOnly(*keys[i]) && waiting.IsOnly(*keys[i]))) continue;
      const std::uint32_t other = waiting.Take(*keys[i]);
      if (other == kNone) continue;
      pairing_.laterOf[i] = other;
      pairing_.earlierOf[other] = static_cast<std::uint32_t>(i);
    }
  }

  void ReferByPairsOrClasses() {
    earlier_.Values().Forget();
    later_.Values().Forget();
    RefersByClass(earlier_, pairing_.laterOf);
    RefersByClass(later_, pairing_.earlierOf);
    ReferByPairs();
  }
  static void RefersByClass(ObjectFacts& facts, const std::vector<std::uint32_t>& others) {
    const ComparedModel& model = facts.Model();
    for (std::size_t i = 0; i < others.size(); ++i) {
      if (others[i] != kNone) continue;
      const ClassWord& word = model.WordOf(i);
      facts.Values().SetReference(i, word.role == Role::kContext
                                         ? NameOfContext(*model.Objects()[i])
                                         : Digest{kReference, word.word});
    }
  }
  void ReferByPairs() {
    for (std::size_t i = 0; i < pairing_.laterOf.size(); ++i) {
      const std::uint32_t other = pairing_.laterOf[i];
      if (other == kNone) continue;
      const Digest reference = ReferenceTo(i);
      earlier_.Values().SetReference(i, reference);
      later_.Values().SetReference(other, reference);
    }
  }
  static void ReferByThemselves(ObjectFacts& facts, const std::vector<std::uint32_t>& others,
                                std::uint64_t model) {
    for (std::size_t i = 0; i < others.size(); ++i) {
      if (others[i] != kNone) continue;
      const bool isContext = facts.Model().WordOf(i).role == Role::kContext;
      facts.Values().SetReference(i, isContext ? NameOfContext(*facts.Model().Objects()[i])
                                               : Digest{kReference + 2 + model, i});
    }
  }

  // Contexts of one name are one to whoever refers to them.
  Digest ReferenceTo(std::size_t index) const {
    const ComparedModel& model = earlier_.Model();
    const bool isContext = model.WordOf(index).role == Role::kContext;
    return isContext ? NameOfContext(*model.Objects()[index]) : Digest{kReference + 1, index};
  }

  // Before anything refers to contexts: those that say the same.
  static std::optional<Digest> ContextOf(ObjectFacts& facts, std::size_t index) {
    if (facts.Model().WordOf(index).role != Role::kContext) return std::nullopt;
    const IFC::IfcEntity& object = *facts.Model().Objects()[index];
    DigestMaker maker;
    maker.Add(NameOfContext(object));
    maker.Add(facts.Values().Of(&object));
    return maker.Made();
  }
  static std::optional<Digest> ClassOfContext(ObjectFacts& facts, std::size_t index) {
    const ClassWord& word = facts.Model().WordOf(index);
    if (word.role != Role::kContext) return std::nullopt;
    return Digest{kReference, word.word};
  }

  static constexpr std::uint64_t kReference = 16;
  ObjectFacts& earlier_;
  ObjectFacts& later_;
  bool takesShortcuts_;
  Pairing pairing_;
};

}  // namespace

Pairing PairObjects(ObjectFacts& earlier, ObjectFacts& later, Shortcuts shortcuts) {
  return Pairs(earlier, later, shortcuts).Make();
}

}  // namespace corvel::host::diff
