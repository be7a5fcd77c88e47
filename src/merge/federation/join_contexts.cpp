#include "merge/federation/join_contexts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <string>
#include <tuple>
#include <unordered_map>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "core/shown_paths.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/map_properties.h"
#include "merge/federation/same_value.h"
#include "merge/length_unit.h"

namespace corvel {

namespace {

constexpr double kTolerance = 1e-6;
constexpr std::array<double, 3> kXAxis = {1.0, 0.0, 0.0};
constexpr std::array<double, 3> kYAxis = {0.0, 1.0, 0.0};
constexpr std::array<double, 3> kZAxis = {0.0, 0.0, 1.0};

int SayNothing(const char* /*key*/, const WideString& /*message*/, int /*mode*/) { return 0; }

bool Near(const std::array<double, 3>& one, const std::array<double, 3>& other) {
  for (std::size_t i = 0; i < one.size(); ++i) {
    if (!(std::abs(one[i] - other[i]) <= kTolerance)) return false;
  }
  return true;
}

// Two or three numbers; `absent` where there are none.
std::array<double, 3> Triple(const IFC::IfcEntity* entity, std::string_view attribute,
                             const std::array<double, 3>& absent) {
  const List<double>* const numbers = entity == nullptr ? nullptr : RealsOf(*entity, attribute);
  if (numbers == nullptr || numbers->empty()) return absent;
  std::array<double, 3> triple{};
  std::copy_n(numbers->begin(), std::min(numbers->size(), triple.size()), triple.begin());
  return triple;
}

std::array<double, 3> DirectionOf(const IFC::IfcEntity* direction,
                                  const std::array<double, 3>& absent) {
  std::array<double, 3> ratios = Triple(direction, "DirectionRatios", absent);
  const double length = std::hypot(ratios[0], ratios[1], ratios[2]);
  if (length == 0.0) return absent;
  for (double& ratio : ratios) ratio /= length;
  return ratios;
}

struct Frame {
  std::array<double, 3> originMetres;
  std::array<double, 3> z;
  std::array<double, 3> x;

  bool Equals(const Frame& other) const {
    return Near(originMetres, other.originMetres) && Near(z, other.z) && Near(x, other.x);
  }
};

// A placement of two dimensions has no axis, and stands upright.
Frame FrameOf(const IFC::IfcEntity* placement, double metresPerUnit) {
  if (placement == nullptr) return {{}, kZAxis, kXAxis};
  Frame frame = {Triple(ReferenceOf(*placement, "Location"), "Coordinates", {}),
                 DirectionOf(ReferenceOf(*placement, "Axis"), kZAxis),
                 DirectionOf(ReferenceOf(*placement, "RefDirection"), kXAxis)};
  for (double& number : frame.originMetres) number *= metresPerUnit;
  return frame;
}

struct Context {
  IFC::IfcEntity* entity = nullptr;
  std::size_t lastInput = 0;  // the last one of which it, or what gave way to it, is
  Frame frame{};
  std::array<double, 3> north{};
  double precisionMetres = 0.0;  // 0: none is told
  double metresPerUnit = 1.0;
  bool isOnOneMap = false;                     // that of the first input
  bool lostItsMap = false;                     // since it stands on that one
  std::vector<IFC::IfcEntity*> conversions;    // to a map
  std::vector<IFC::IfcEntity*> mapProperties;  // in their place, in IFC2X3; by name
};

class ContextJoiner {
 public:
  ContextJoiner(FederatedModel& model, const std::unordered_set<const IfcDocument*>& onOneMap,
                JoinedContexts& counts)
      : model_(model), onOneMap_(onOneMap), counts_(counts) {}

  bool Run(Ticker& ticker) {
    for (std::size_t input = 0; input < model_.InputCount(); ++input) {
      if (!Gather(input, ticker)) return false;
      for (IFC::IfcEntity* const entity : contexts_) Take(Described(*entity, input), input);
      for (IFC::IfcEntity* const entity : subContexts_) TakeSubContext(*entity, input);
    }
    return true;
  }

 private:
  using Kind = std::tuple<WideString, WideString, std::int32_t>;
  // Parent, identifier, type, view with its name, scale: what tells a sub-context.
  using SubKind =
      std::tuple<const IFC::IfcEntity*, WideString, WideString, std::string, WideString, double>;
  struct SubContext {
    IFC::IfcEntity* entity = nullptr;
    std::size_t lastInput = 0;
  };

  // What the step looks at among the objects of an input.
  enum class Family : std::uint8_t { kOther, kContext, kSubContext, kConversion, kPropertySet };

  static Family FamilyOf(const ClassFacts* facts) {
    if (IsOrIsBelow(facts, "IfcGeometricRepresentationSubContext")) return Family::kSubContext;
    if (IsOrIsBelow(facts, "IfcGeometricRepresentationContext")) return Family::kContext;
    if (IsOrIsBelow(facts, "IfcCoordinateOperation")) return Family::kConversion;
    return IsOrIsBelow(facts, "IfcPropertySet") ? Family::kPropertySet : Family::kOther;
  }

  static bool HasNameOfMapProperties(IFC::IfcEntity& propertySet) {
    const auto* const root = EntityCast<IFC::VirtualIfcRoot>(&propertySet);
    return root != nullptr && IsNameOfMapProperties(root->getName());
  }

  void Note(IFC::IfcEntity& entity) {
    const Family family = families_.Of(entity, FamilyOf);
    if (family == Family::kSubContext) {
      subContexts_.push_back(&entity);
    } else if (family == Family::kContext) {
      contexts_.push_back(&entity);
    } else if (family == Family::kConversion) {
      conversions_[ReferenceOf(entity, "SourceCRS")].push_back(&entity);
    } else if (family == Family::kPropertySet && HasNameOfMapProperties(entity)) {
      const EntityList* const properties = ReferencesOf(entity, "HasProperties");
      if (properties == nullptr) return;
      mapProperties_.insert(mapProperties_.end(), properties->begin(), properties->end());
    }
  }

  bool Gather(std::size_t input, Ticker& ticker) {
    contexts_.clear();
    subContexts_.clear();
    conversions_.clear();
    mapProperties_.clear();
    const IFC::IfcEntity* const units = model_.Document(input).getIfcUnitAssignment();
    metresPerUnit_ = 1.0 / LengthUnitsPerMetre(units, SayNothing);
    const auto note = [this](IFC::IfcEntity& entity) { Note(entity); };
    model_.ForEachResourceOf(input, note);
    const auto isOfInterest = [](const ClassFacts* facts) {
      return FamilyOf(facts) != Family::kOther;
    };
    const bool goesOn = model_.ForEachRootOf(input, ticker, isOfInterest, note);
    const auto byName = [](const IFC::IfcEntity* one, const IFC::IfcEntity* other) {
      return TextOf(*one, "Name") < TextOf(*other, "Name");
    };
    std::stable_sort(mapProperties_.begin(), mapProperties_.end(), byName);
    return goesOn;
  }

  Context Described(IFC::IfcEntity& entity, std::size_t input) const {
    Context context;
    context.entity = &entity;
    context.lastInput = input;
    context.metresPerUnit = metresPerUnit_;
    context.isOnOneMap = onOneMap_.contains(&model_.Document(input));
    context.lostItsMap = context.isOnOneMap && input != 0;
    context.frame = FrameOf(ReferenceOf(entity, "WorldCoordinateSystem"), metresPerUnit_);
    context.north = DirectionOf(ReferenceOf(entity, "TrueNorth"), kYAxis);
    context.precisionMetres = RealOf(entity, "Precision") * metresPerUnit_;
    const auto found = conversions_.find(&entity);
    if (found != conversions_.end()) context.conversions = found->second;
    context.mapProperties = mapProperties_;
    return context;
  }

  void Take(Context context, std::size_t input) {
    const IFC::IfcEntity& entity = *context.entity;
    std::vector<Context>& ofKind =
        known_[{TextOf(entity, "ContextIdentifier"), TextOf(entity, "ContextType"),
                IntegerOf(entity, "CoordinateSpaceDimension")}];
    bool hasOtherFrame = false;
    for (Context& earlier : ofKind) {
      if (earlier.lastInput == input || !SameButForFrame(earlier, context)) continue;
      if (earlier.frame.Equals(context.frame)) {
        Join(context, earlier, input);
        return;
      }
      hasOtherFrame = true;
    }
    if (hasOtherFrame) NameAsApart(entity, input);
    if (input != 0) EnterInProject(*context.entity);
    ofKind.push_back(std::move(context));
  }

  static bool SameButForFrame(const Context& one, const Context& other) {
    if (!Near(one.north, other.north)) return false;
    return SameMap(one, other);
  }

  static bool SameMap(const Context& one, const Context& other) {
    if (one.isOnOneMap && other.isOnOneMap) return true;
    if (one.lostItsMap || other.lostItsMap) return false;
    return SameInTurn(one.conversions, other.conversions) &&
           SameInTurn(one.mapProperties, other.mapProperties);
  }

  static bool SameInTurn(const std::vector<IFC::IfcEntity*>& one,
                         const std::vector<IFC::IfcEntity*>& other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](const IFC::IfcEntity* here, const IFC::IfcEntity* there) {
                        return SameByValue(here, there, kTolerance, "SourceCRS");
                      });
  }

  void Join(const Context& context, Context& earlier, std::size_t input) {
    // One conversion is all that a context may have.
    for (IFC::IfcEntity* const conversion : context.conversions) model_.Delete(*conversion);
    KeepFinest(context, earlier);
    model_.GiveWay(*context.entity, *earlier.entity);
    earlier.lastInput = input;
    ++counts_.joined;
  }

  static void KeepFinest(const Context& context, Context& earlier) {
    const double precision = context.precisionMetres;
    if (precision <= 0.0) return;
    if (earlier.precisionMetres > 0.0 && earlier.precisionMetres <= precision) return;
    if (SetAttribute(*earlier.entity, "Precision", precision / earlier.metresPerUnit)) {
      earlier.precisionMetres = precision;
    }
  }

  void NameAsApart(const IFC::IfcEntity& entity, std::size_t input) {
    const WideString path = model_.Document(input).getFilePath();
    counts_.apart.push_back(TextOf(entity, "ContextType") + u" (#" + ToWide(entity.marker) +
                            u" of " + ShownFileName(path) + u")");
  }

  // The project of a later input gave way, and with it the list that knew the context.
  void EnterInProject(IFC::IfcEntity& entity) {
    IFC::IfcEntity* const project = model_.Project();
    if (project == nullptr) return;
    const EntityList* const listed = ReferencesOf(*project, "RepresentationContexts");
    if (listed != nullptr && std::find(listed->begin(), listed->end(), &entity) != listed->end()) {
      return;
    }
    MemoryPool& pool = model_.Container().Pool();
    if (AppendReference(*project, "RepresentationContexts", entity, pool)) ++counts_.entered;
  }

  // A parent that gave way counts as the one that stands for it.
  void TakeSubContext(IFC::IfcEntity& entity, std::size_t input) {
    const IFC::IfcEntity* const parent = model_.InModel(ReferenceOf(entity, "ParentContext"));
    SubContext& known =
        knownBelow_[{parent, TextOf(entity, "ContextIdentifier"), TextOf(entity, "ContextType"),
                     std::string(WordOf(entity, "TargetView")),
                     TextOf(entity, "UserDefinedTargetView"), RealOf(entity, "TargetScale")}];
    if (known.entity == nullptr) {
      known = {&entity, input};
    } else if (known.lastInput != input) {
      model_.GiveWay(entity, *known.entity);
      known.lastInput = input;
      ++counts_.joined;
    }
  }

  FederatedModel& model_;
  const std::unordered_set<const IfcDocument*>& onOneMap_;
  JoinedContexts& counts_;
  PerClass<Family> families_;
  std::map<Kind, std::vector<Context>> known_;
  std::map<SubKind, SubContext> knownBelow_;
  // Of the input whose turn it is.
  std::vector<IFC::IfcEntity*> contexts_;
  std::vector<IFC::IfcEntity*> subContexts_;
  std::unordered_map<const IFC::IfcEntity*, std::vector<IFC::IfcEntity*>> conversions_;
  std::vector<IFC::IfcEntity*> mapProperties_;
  double metresPerUnit_ = 1.0;
};

}  // namespace

bool JoinContexts(FederatedModel& model, const std::unordered_set<const IfcDocument*>& onOneMap,
                  Ticker& ticker, JoinedContexts& counts) {
  return ContextJoiner(model, onOneMap, counts).Run(ticker);
}

}  // namespace corvel
