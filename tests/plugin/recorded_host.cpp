#include "recorded_host.h"

#include <algorithm>
#include <initializer_list>
#include <type_traits>

#include "platform/file.h"
#include "plugin/attachment.h"
#include "plugin/entry_points.h"
#include "plugin/plugin.h"
#include "step/log/utilities.h"

namespace corvel::test {

namespace {

using plugin::HostAddress;
using plugin::HostCallback;
using plugin::HostHandle;

RecordedHost* alive = nullptr;

std::string Shown(const char16_t* text) {
  return text == nullptr ? "null" : "\"" + ToUtf8(text) + "\"";
}
std::string Shown(const char* text) {
  return text == nullptr ? "null" : "'" + std::string(text) + "'";
}
template <class Number>
std::enable_if_t<std::is_arithmetic_v<Number>, std::string> Shown(Number number) {
  return std::to_string(number);
}
// Addresses differ from run to run.
template <class Anything>
std::string Shown(Anything* address) {
  return address == nullptr ? "null" : "...";
}

template <class... Arguments>
void Record(const char* name, Arguments... arguments) {
  std::string line = std::string(name) + "(";
  const char* separator = "";
  for (const std::string& text : std::initializer_list<std::string>{Shown(arguments)...}) {
    line.append(separator).append(text);
    separator = ", ";
  }
  alive->calls.push_back(line + ")");
}

std::uint32_t Fill(const std::vector<HostObject>& items, HostObject* list, std::uint32_t capacity) {
  if (list != nullptr)
    std::copy_n(items.begin(), std::min<std::size_t>(items.size(), capacity), list);
  return static_cast<std::uint32_t>(items.size());
}

const RecordedHost::Object* Find(HostObject handle) {
  const auto found = std::find_if(alive->objects.begin(), alive->objects.end(),
                                  [=](const auto& object) { return object.handle == handle; });
  return found == alive->objects.end() ? nullptr : &*found;
}

std::uint32_t AllObjects(HostHandle, HostObject* list, std::uint32_t capacity) {
  Record("get_all_objects", list, capacity);
  std::vector<HostObject> handles;
  for (const auto& object : alive->objects) handles.push_back(object.handle);
  return Fill(handles, list, capacity);
}

void Infos(HostHandle, const HostObject* handles, ObjectInfo* infos, std::uint32_t count) {
  Record("get_object_info2", count);
  for (std::uint32_t i = 0; i < count; ++i) {
    if (const auto* const object = Find(handles[i])) infos[i].project = object->project;
  }
}

void ObjectInfos(HostHandle, const HostObject* handles, ObjectInfo* infos, std::uint32_t count) {
  Record("get_object_info", count);
  for (std::uint32_t i = 0; i < count; ++i) {
    const auto* const object = Find(handles[i]);
    if (object == nullptr) continue;
    infos[i].className = object->className;
    infos[i].number = object->number;
    infos[i].parent = object->parent;
  }
}

void States(HostHandle, const HostObject* handles, ObjectState* states, std::uint32_t count) {
  Record("get_object_state", count);
  for (std::uint32_t i = 0; i < count; ++i) {
    if (const auto* const object = Find(handles[i])) states[i] = object->state;
  }
}

std::uint32_t Children(HostHandle, HostObject parent, HostObject* list, std::uint32_t capacity) {
  Record("get_childs", parent, list, capacity);
  if (alive->askedForChildren) alive->askedForChildren();
  return Fill(alive->children, list, capacity);
}

const char16_t* ProjectPath(HostHandle, HostObject project) {
  Record("get_project_path", project);
  const auto found = alive->paths.find(project);
  return found == alive->paths.end() ? nullptr : found->second.c_str();
}

std::uint32_t LoadedFiles(HostHandle) {
  Record("get_loaded_ifc_files_count");
  return alive->loadedFiles;
}

HostObject Root(HostHandle) {
  Record("get_all_objects_id");
  return alive->root;
}

HostObject Selected(HostHandle) {
  Record("get_selected_id");
  return alive->selected;
}

void SaveDialogParameters(HostHandle, const char16_t* filter, const char16_t* folder,
                          const char16_t* name) {
  Record("set_save_dialog_params", filter, folder, name);
}

void SaveDialogExtension(HostHandle, const char16_t* extension) {
  Record("set_save_dialog_default_extension", extension);
}

std::int32_t SaveDialog(HostHandle, std::int32_t zero) {
  Record("save_dialog", zero);
  return alive->output.empty() ? 0 : 1;
}

const char16_t* SaveDialogName(HostHandle) {
  Record("get_save_dialog_name");
  return alive->output.c_str();
}

void ShowProgress(HostHandle, std::int32_t visible, std::int32_t one, const char16_t* title) {
  Record("show_progress_bar", visible, one, title);
}

std::uint8_t UpdateProgress(HostHandle, std::int32_t overall, const char16_t* overallText,
                            std::int32_t current, const char16_t* currentText) {
  Record("update_progress_bar", overall, overallText, current, currentText);
  return static_cast<std::uint8_t>(!alive->tick || alive->tick());
}

std::int32_t MessageBox(HostHandle, const char16_t* caption, const char16_t* text,
                        std::uint32_t flags) {
  Record("message_box", caption, text, flags);
  return 1;
}

std::uint8_t LoadTexts(HostHandle, const char16_t* path) {
  Record("load_texts", path);
  return static_cast<std::uint8_t>(alive->languageFiles.count(path));
}

const char16_t* Language(HostHandle) {
  Record("get_language");
  return alive->language.c_str();
}

// Not recorded: there are too many.
const char16_t* Text(HostHandle, const char* key) {
  return alive->texts.try_emplace(key, Widen(key)).first->second.c_str();
}

std::int32_t CreateGroup(HostHandle, std::int32_t zero, const char16_t* title) {
  Record("create_group", zero, title);
  return 500;
}

std::int32_t NewButton(HostCallback click) {
  const auto id = static_cast<std::int32_t>(501 + alive->clicks.size());
  alive->clicks[id] = click;
  return id;
}

std::int32_t CreateSubButton(HostHandle, std::int32_t group, std::int32_t one) {
  Record("create_sub_button", group, one);
  return NewButton(nullptr);
}

std::int32_t CreateSmallButton(HostHandle, std::int32_t group, HostCallback click) {
  Record("create_small_button", group, click);
  return NewButton(click);
}

void EnableButton(HostHandle, std::int32_t button, std::uint8_t enabled) {
  Record("enable_button", button, enabled);
  alive->enabled[button] = enabled != 0;
}

std::int32_t ClickedButton(HostHandle) {
  Record("clicked_button");
  return alive->clicked;
}

void CanClearModel(HostHandle, plugin::HostQuestion question) {
  Record("can_clear_model", question);
  alive->canClearModel = question;
}

void PluginMessage(HostHandle, plugin::HostMessageCallback callback) {
  Record("on_plugin_message", callback);
  alive->pluginMessage = callback;
}

// What is recorded and does nothing else, or keeps a callback.
template <class Result, class... Parameters>
struct Plain {
  template <const char* Name>
  static Result Call(HostHandle, Parameters... parameters) {
    Record(Name, parameters...);
    if constexpr (sizeof...(Parameters) == 1) {
      if constexpr ((std::is_same_v<Parameters, HostCallback> && ...)) {
        alive->callbacks[Name] = (parameters, ...);
      }
    }
    return Result();
  }
};

template <const char* Name, class Result, class... Parameters>
HostAddress PlainFunction(Result (*)(HostHandle, Parameters...)) {
  return reinterpret_cast<HostAddress>(&Plain<Result, Parameters...>::template Call<Name>);
}

#define CORVEL_HOST_FUNCTION(Result, name, parameters) constexpr char k_##name[] = #name;
#include "plugin/host_functions.inc"
#undef CORVEL_HOST_FUNCTION

std::map<std::string, HostAddress> AllFunctions() {
  std::map<std::string, HostAddress> all;
  const plugin::HostFunctions types;
#define CORVEL_HOST_FUNCTION(Result, name, parameters) \
  all[#name] = PlainFunction<k_##name>(types.name);
#include "plugin/host_functions.inc"
#undef CORVEL_HOST_FUNCTION
  const auto put = [&](const char* name, auto* function) {
    all[name] = reinterpret_cast<HostAddress>(function);
  };
  put("get_all_objects", &AllObjects);
  put("get_object_info", &ObjectInfos);
  put("get_object_info2", &Infos);
  put("get_object_state", &States);
  put("get_childs", &Children);
  put("get_project_path", &ProjectPath);
  put("get_loaded_ifc_files_count", &LoadedFiles);
  put("get_all_objects_id", &Root);
  put("get_selected_id", &Selected);
  put("set_save_dialog_params", &SaveDialogParameters);
  put("set_save_dialog_default_extension", &SaveDialogExtension);
  put("save_dialog", &SaveDialog);
  put("get_save_dialog_name", &SaveDialogName);
  put("show_progress_bar", &ShowProgress);
  put("update_progress_bar", &UpdateProgress);
  put("message_box", &MessageBox);
  put("load_texts", &LoadTexts);
  put("get_language", &Language);
  put("get_text", &Text);
  put("create_group", &CreateGroup);
  put("create_sub_button", &CreateSubButton);
  put("create_small_button", &CreateSmallButton);
  put("enable_button", &EnableButton);
  put("clicked_button", &ClickedButton);
  put("can_clear_model", &CanClearModel);
  put("on_plugin_message", &PluginMessage);
  return all;
}

}  // namespace

RecordedHost::RecordedHost() {
  alive = this;
  MemoryReportOutput() = nullptr;
}

RecordedHost::~RecordedHost() {
  plugin::Detach();
  plugin::ForgetBinding();
  plugin::TheHostHandle() = 0;
  alive = nullptr;
}

std::vector<std::string> RecordedHost::CallsOf(const std::string& name) const {
  std::vector<std::string> found;
  std::copy_if(calls.begin(), calls.end(), std::back_inserter(found),
               [&](const std::string& call) { return call.rfind(name + "(", 0) == 0; });
  return found;
}

void RecordedHost::Attach() {
  plugin::Attach(&Lookup);
  plugin::Plugin::Instance()->folders.user = platform::JoinPath(user.Path(), u"");
}

void RecordedHost::Load() {
  Attach();
  on_plugin_load(7, 0, nullptr);
}

void RecordedHost::Click(std::int32_t button) {
  clicked = button;
  plugin::Plugin::Instance()->buttonClick();
}

void RecordedHost::TellModelsAreLoaded() { callbacks.at("on_model_load")(); }

void RecordedHost::AddProject(HostObject project, const WideString& path) {
  children.push_back(project);
  paths[project] = path;
  objects.push_back({project * 100, project});
}

HostAddress RecordedHost::Lookup(const char* name) {
  static const std::map<std::string, HostAddress> all = AllFunctions();
  alive->lookups.emplace_back(name);
  const auto found = all.find(name);
  return found == all.end() || alive->missing.count(name) != 0 ? nullptr : found->second;
}

}  // namespace corvel::test
