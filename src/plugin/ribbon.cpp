#include "plugin/ribbon.h"

#include "plugin/host_functions.h"
#include "plugin/texts.h"

namespace corvel::plugin {

namespace {

struct ButtonLook {
  const char* text;
  const char* hint;
  const char16_t* image;  // null: none
  const char16_t* smallImage;
};

constexpr ButtonLook kMain{"btn_merge", "btn_merge.hint", u"merge.png", u"merge_small.png"};
constexpr ButtonLook kMergeActive{"merge_active", "merge_active.hint", nullptr,
                                  u"combine_active.png"};
constexpr ButtonLook kMergeVisible{"merge_visible", "merge_visible.hint", nullptr,
                                   u"combine_visible_small.png"};
constexpr ButtonLook kMergeSelected{"merge_selected", "merge_selected.hint", nullptr,
                                    u"combine_selected.png"};
constexpr ButtonLook kOptions{"options_window_name", "btn_options_description", nullptr,
                              u"options.png"};
constexpr ButtonLook kOpenRecent{"open_recent_created_file_button_name",
                                 "open_recent_created_file_button_description", u"open.png",
                                 u"open_small.png"};

void Enable(std::int32_t button, bool enabled) {
  CallHost(Host().enable_button, button, static_cast<std::uint8_t>(enabled));
}

void Dress(std::int32_t button, const ButtonLook& look, const WideString& dataFolder,
           bool enabled) {
  const WideString text = GetText(look.text);
  const WideString hint = GetText(look.hint);
  CallHost(Host().set_button_text, button, text.c_str(), hint.c_str());
  if (look.image != nullptr) {
    CallHost(Host().set_button_image, button, (dataFolder + look.image).c_str());
  }
  CallHost(Host().set_button_small_image, button, (dataFolder + look.smallImage).c_str());
  Enable(button, enabled);
}

}  // namespace

void Ribbon::Build(const WideString& dataFolder, HostCallback click) {
  constexpr std::int32_t kZero = 0;
  constexpr std::int32_t kWithDropDown = 1;
  const std::int32_t group = CallHost(Host().create_group, kZero, GetText("group.Corvel").c_str());
  main = CallHost(Host().create_sub_button, group, kWithDropDown);
  Dress(main, kMain, dataFolder, false);
  const auto addEntry = [&](std::int32_t& entry, const ButtonLook& look) {
    entry = CallHost(Host().create_small_button, kNoGroup, click);
    CallHost(Host().add_button, main, entry);
    Dress(entry, look, dataFolder, false);
  };
  addEntry(mergeActive, kMergeActive);
  addEntry(mergeVisible, kMergeVisible);
  addEntry(mergeSelected, kMergeSelected);
  options = CallHost(Host().create_small_button, group, click);
  Dress(options, kOptions, dataFolder, true);
  openRecent = CallHost(Host().create_small_button, group, click);
  Dress(openRecent, kOpenRecent, dataFolder, true);
}

void Ribbon::EnableForModels(bool enabled) const {
  for (const std::int32_t button : {main, mergeVisible, mergeActive, mergeSelected, openRecent}) {
    Enable(button, enabled);
  }
}

void Ribbon::EnableOpenRecent() const { Enable(openRecent, true); }

void Ribbon::ShowToggleState(bool down) const {
  CallHost(Host().set_button_down, toggle, static_cast<std::uint8_t>(down));
}

}  // namespace corvel::plugin
