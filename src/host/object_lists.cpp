#include "host/object_lists.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "host/nearest_name.h"

namespace corvel::host {

namespace {

bool IsNumber(WideView item) { return item.starts_with(u'#'); }
bool IsClass(WideView item) { return ToLowerAscii(item.substr(0, 3)) == u"ifc"; }

const char16_t* OptionOf(ListKind kind) {
  switch (kind) {
    case ListKind::kInactive: return u"--inactive";
    case ListKind::kHide: return u"--hide";
    case ListKind::kSelect: return u"--select";
  }
  return u"";
}

void Mark(ListKind kind, ObjectFlags& flags) {
  switch (kind) {
    case ListKind::kInactive: flags.active = false; break;
    case ListKind::kHide: flags.visible = false; break;
    case ListKind::kSelect: flags.selected = true; break;
  }
}

// Of an item that was understood as a number (see UnderstandChoices), so that nothing is thrown.
std::uint32_t NumberOf(WideView item) {
  return static_cast<std::uint32_t>(std::stoul(ToUtf8(item.substr(1))));
}

// The items of a list against one scene. Both may be long: each is gone through twice at most.
class ListMatch {
 public:
  ListMatch(const ObjectList& list, const ModelScene& scene)
      : list_(list),
        scene_(scene),
        named_(scene.objects.size()),
        classIsWanted_(scene.classes.size()),
        classIsThere_(scene.classes.size()) {
    for (std::size_t i = 0; i < scene.classes.size(); ++i) {
      classIds_.emplace(ToLowerAscii(Widen(scene.classes[i])), i);
    }
    for (const WideString& item : list.items) Enter(item);
    for (std::size_t i = 0; i < named_.size(); ++i) Look(i);
  }

  bool Names(std::size_t index) const { return named_[index]; }

  std::vector<WideString> Unmatched() const {
    std::vector<WideString> unmatched;
    for (const WideString& item : list_.items) {
      if (!Matches(item)) unmatched.push_back(Description(item));
    }
    return unmatched;
  }

 private:
  void Enter(const WideString& item) {
    if (IsNumber(item)) {
      const SceneObject* const object = scene_.Find(NumberOf(item));
      if (object != nullptr) {
        named_[static_cast<std::size_t>(object - scene_.objects.data())] = true;
      }
    } else if (IsClass(item)) {
      const auto found = classIds_.find(ToLowerAscii(item));
      if (found != classIds_.end()) classIsWanted_[found->second] = true;
    } else {
      guids_.try_emplace(item, false);
    }
  }

  void Look(std::size_t index) {
    const std::size_t classId = scene_.objects[index].classId;
    classIsThere_[classId] = true;
    if (classIsWanted_[classId]) named_[index] = true;
    if (guids_.empty()) return;
    const auto found = guids_.find(scene_.GuidOf(index));
    if (found == guids_.end()) return;
    found->second = true;
    named_[index] = true;
  }

  bool Matches(const WideString& item) const {
    if (IsNumber(item)) return scene_.Find(NumberOf(item)) != nullptr;
    if (!IsClass(item)) return guids_.at(item);
    const auto found = classIds_.find(ToLowerAscii(item));
    return found != classIds_.end() && classIsThere_[found->second];
  }

  WideString Description(const WideString& item) const {
    if (IsNumber(item)) return u"has the number " + item;
    if (!IsClass(item)) return u"has the GUID " + item;
    return u"is of the class " + item + NearestClass(item);
  }

  WideString NearestClass(WideView item) const {
    const std::optional<std::string> nearest = NearName(ToUtf8(item), scene_.classes);
    return nearest ? u"; the nearest there is " + Widen(*nearest) : WideString();
  }

  const ObjectList& list_;
  const ModelScene& scene_;
  std::vector<bool> named_;          // by object
  std::vector<bool> classIsWanted_;  // by class
  std::vector<bool> classIsThere_;
  std::unordered_map<WideString, std::size_t> classIds_;  // by name in small letters
  std::unordered_map<WideView, bool> guids_;              // true: an object has it
};

}  // namespace

SceneTexts TextsForLists(const std::vector<ObjectList>& lists, std::size_t input) {
  const auto isGuid = [](const WideString& item) { return !IsNumber(item) && !IsClass(item); };
  const bool anyGuid = std::any_of(lists.begin(), lists.end(), [&](const ObjectList& list) {
    return list.input == input && std::any_of(list.items.begin(), list.items.end(), isGuid);
  });
  return anyGuid ? SceneTexts::kGuids : SceneTexts::kNone;
}

std::vector<WideString> ApplyList(const ObjectList& list, LoadedModel& model) {
  const std::vector<SceneObject>& objects = model.scene.objects;
  const ListMatch match(list, model.scene);
  bool everything = false;
  for (std::size_t i = 0; i < objects.size(); ++i) {
    everything = everything || (objects[i].isProject && match.Names(i));
  }
  model.flags.resize(objects.size());
  for (std::size_t i = 0; i < objects.size(); ++i) {
    if (everything || match.Names(i)) Mark(list.kind, model.flags[i]);
  }
  std::vector<WideString> mistakes = match.Unmatched();
  for (WideString& mistake : mistakes) {
    mistake.insert(0, OptionOf(list.kind) + (u": no object of " + model.path) + u" ");
  }
  return mistakes;
}

}  // namespace corvel::host
