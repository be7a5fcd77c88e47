#include "host/diff/pairing.h"

#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/federation/attribute_values.h"

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
std::optional<Digest> IdentityOf(IFC::IfcEntity& object, const ClassWord& word) {
  if (word.role == Role::kContext) return NameOfContext(object);
  const auto* const root = EntityCast<IFC::VirtualIfcRoot>(&object);
  const std::string_view guid = root == nullptr ? "" : root->getGlobalId();
  if (guid.empty()) return std::nullopt;
  DigestMaker maker;
  for (const char c : guid) maker.Add(std::uint64_t{static_cast<unsigned char>(c)});
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

class Pairs {
 public:
  Pairs(ObjectFacts& earlier, ObjectFacts& later) : earlier_(earlier), later_(later) {
    pairing_.laterOf.assign(earlier.Model().Objects().size(), kNone);
    pairing_.earlierOf.assign(later.Model().Objects().size(), kNone);
  }

  Pairing Make() {
    Match(ContextOf, false);
    const auto byIdentity = [](ObjectFacts& facts, std::size_t index) {
      IFC::IfcEntity& object = *facts.Model().Objects()[index];
      return IdentityOf(object, *facts.Model().Words().Of(object));
    };
    Match(byIdentity, false);
    RefersByClass(earlier_, pairing_.laterOf);
    RefersByClass(later_, pairing_.earlierOf);
    ReferByPairs();
    MatchByContent();
    Match(ClassOfContext, true);
    ReferByPairs();
    ReferByThemselves(earlier_, pairing_.laterOf, 0);
    ReferByThemselves(later_, pairing_.earlierOf, 1);
    return std::move(pairing_);
  }

 private:
  using Look = ObjectFacts::Look;

  // What says the same has the same look. So contents are only asked where a look is none of one
  // object of each model: all that a model says takes long.
  void MatchByContent() {
    const std::vector<std::optional<Look>> earlier = LooksOf(earlier_, pairing_.laterOf);
    const std::vector<std::optional<Look>> later = LooksOf(later_, pairing_.earlierOf);
    const auto lookAt = [&](const ObjectFacts& facts, std::size_t index) {
      return &facts == &earlier_ ? earlier[index] : later[index];
    };
    const auto telling = [&](ObjectFacts& facts, std::size_t index) -> std::optional<Digest> {
      const auto& look = lookAt(facts, index);
      return look && look->tells ? std::optional(look->digest) : std::nullopt;
    };
    Match(telling, true);
    std::unordered_set<Digest, HashOfDigest> ofEarlier = WithoutPair(earlier, pairing_.laterOf);
    std::unordered_set<Digest, HashOfDigest> ofLater = WithoutPair(later, pairing_.earlierOf);
    const auto content = [&](ObjectFacts& facts, std::size_t index) -> std::optional<Digest> {
      const Digest look = lookAt(facts, index)->digest;
      const bool hasLike = ofEarlier.contains(look) && ofLater.contains(look);
      return hasLike ? std::optional(facts.ContentOf(index)) : std::nullopt;
    };
    Match(content, false);
    Match(telling, true);
  }
  static std::vector<std::optional<Look>> LooksOf(ObjectFacts& facts,
                                                  const std::vector<std::uint32_t>& others) {
    std::vector<std::optional<Look>> looks(others.size());
    for (std::size_t i = 0; i < others.size(); ++i) {
      if (others[i] == kNone) looks[i] = facts.LookOf(i);
    }
    return looks;
  }
  static std::unordered_set<Digest, HashOfDigest> WithoutPair(
      const std::vector<std::optional<Look>>& looks, const std::vector<std::uint32_t>& others) {
    std::unordered_set<Digest, HashOfDigest> alone;
    for (std::size_t i = 0; i < looks.size(); ++i) {
      if (others[i] == kNone) alone.insert(looks[i]->digest);
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

  static void RefersByClass(ObjectFacts& facts, const std::vector<std::uint32_t>& others) {
    const ComparedModel& model = facts.Model();
    for (std::size_t i = 0; i < others.size(); ++i) {
      if (others[i] != kNone) continue;
      const IFC::IfcEntity& object = *model.Objects()[i];
      facts.Values().SetReference(object, {kReference, model.Words().Of(object)->word});
    }
  }
  void ReferByPairs() {
    for (std::size_t i = 0; i < pairing_.laterOf.size(); ++i) {
      const std::uint32_t other = pairing_.laterOf[i];
      if (other == kNone) continue;
      const Digest reference = ReferenceTo(i);
      earlier_.Values().SetReference(*earlier_.Model().Objects()[i], reference);
      later_.Values().SetReference(*later_.Model().Objects()[other], reference);
    }
  }
  static void ReferByThemselves(ObjectFacts& facts, const std::vector<std::uint32_t>& others,
                                std::uint64_t model) {
    for (std::size_t i = 0; i < others.size(); ++i) {
      if (others[i] != kNone) continue;
      const IFC::IfcEntity& object = *facts.Model().Objects()[i];
      const bool isContext = facts.Model().Words().Of(object)->role == Role::kContext;
      facts.Values().SetReference(
          object, isContext ? NameOfContext(object) : Digest{kReference + 2 + model, i});
    }
  }

  // Contexts of one name are one to whoever refers to them.
  Digest ReferenceTo(std::size_t index) const {
    const ComparedModel& model = earlier_.Model();
    const IFC::IfcEntity& object = *model.Objects()[index];
    const bool isContext = model.Words().Of(object)->role == Role::kContext;
    return isContext ? NameOfContext(object) : Digest{kReference + 1, index};
  }

  // Before anything refers to contexts: those that say the same.
  static std::optional<Digest> ContextOf(ObjectFacts& facts, std::size_t index) {
    const IFC::IfcEntity& object = *facts.Model().Objects()[index];
    if (facts.Model().Words().Of(object)->role != Role::kContext) return std::nullopt;
    DigestMaker maker;
    maker.Add(NameOfContext(object));
    maker.Add(facts.Values().Of(&object));
    return maker.Made();
  }
  static std::optional<Digest> ClassOfContext(ObjectFacts& facts, std::size_t index) {
    const ClassWord& word = *facts.Model().Words().Of(*facts.Model().Objects()[index]);
    if (word.role != Role::kContext) return std::nullopt;
    return Digest{kReference, word.word};
  }

  static constexpr std::uint64_t kReference = 16;
  ObjectFacts& earlier_;
  ObjectFacts& later_;
  Pairing pairing_;
};

}  // namespace

Pairing PairObjects(ObjectFacts& earlier, ObjectFacts& later) {
  return Pairs(earlier, later).Make();
}

}  // namespace corvel::host::diff
