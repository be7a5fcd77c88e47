// The functions of the viewer that the plug-in calls, played by the scripted viewer.
#include <algorithm>
#include <filesystem>

#include "plugin/host_api.h"
#include "viewer.h"

#ifdef _WIN32
#define CORVEL_EXPORT extern "C" __declspec(dllexport)
#else
#define CORVEL_EXPORT extern "C" __attribute__((visibility("default")))
#endif

// Declared as the plug-in knows them: a definition that is different does not compile.
namespace corvel::plugin {
#define CORVEL_HOST_FUNCTION(Result, name, parameters) CORVEL_EXPORT Result name parameters;
#include "plugin/host_functions.inc"
#undef CORVEL_HOST_FUNCTION
}  // namespace corvel::plugin

namespace {

using corvel::test_host::kSceneRoot;
using corvel::test_host::SceneObject;
using corvel::test_host::Utf8;
using corvel::test_host::Viewer;

Viewer& V() { return *Viewer::Current(); }

const SceneObject* Find(corvel::HostObject id) {
  const auto found = std::find_if(V().objects.begin(), V().objects.end(),
                                  [id](const SceneObject& object) { return object.id == id; });
  return found == V().objects.end() ? nullptr : &*found;
}

// Null and 0 ask for the number.
std::uint32_t Give(const std::vector<corvel::HostObject>& items, corvel::HostObject* list,
                   std::uint32_t capacity) {
  const std::size_t room = list == nullptr ? 0 : capacity;
  std::copy_n(items.begin(), std::min(items.size(), room), list);
  return static_cast<std::uint32_t>(items.size());
}

}  // namespace

namespace corvel::plugin {

extern "C" {

// --- The scene ----------------------------------------------------------------------------------

std::uint32_t get_all_objects(HostHandle host, HostObject* list, std::uint32_t capacity) {
  std::vector<HostObject> ids;
  for (const SceneObject& object : V().objects) ids.push_back(object.id);
  return V().RecordAnswer(Give(ids, list, capacity), host, "get_all_objects", list, capacity);
}

void get_object_info(HostHandle host, const HostObject* objects, ObjectInfo* infos,
                     std::uint32_t count) {
  V().Record(host, "get_object_info", objects, infos, count);
  for (std::uint32_t i = 0; i < count; ++i) {
    const SceneObject* const object = Find(objects[i]);
    if (object == nullptr) continue;
    infos[i].className = object->className;
    infos[i].number = object->number;
    infos[i].parent = object->parent;
  }
}

void get_object_info2(HostHandle host, const HostObject* objects, ObjectInfo* infos,
                      std::uint32_t count) {
  V().Record(host, "get_object_info2", objects, infos, count);
  for (std::uint32_t i = 0; i < count; ++i) {
    if (const SceneObject* const object = Find(objects[i])) infos[i].project = object->project;
  }
}

void get_object_state(HostHandle host, const HostObject* objects, ObjectState* states,
                      std::uint32_t count) {
  V().Record(host, "get_object_state", objects, states, count);
  for (std::uint32_t i = 0; i < count; ++i) {
    if (const SceneObject* const object = Find(objects[i])) states[i] = object->state;
  }
}

void set_visible(HostHandle host, HostObject object, std::uint32_t visible) {
  V().Record(host, "set_visible", object, visible);
}

void invalidate(HostHandle host) { V().Record(host, "invalidate"); }

const char16_t* get_project_path(HostHandle host, HostObject project) {
  const auto found = V().paths.find(project);
  const char16_t* const path = found == V().paths.end() ? nullptr : found->second.c_str();
  return V().RecordAnswer(path, host, "get_project_path", project);
}

std::uint32_t get_projects_offsets(HostHandle host, ProjectOffsetRecord* list,
                                   std::uint32_t capacity) {
  const auto count = static_cast<std::uint32_t>(V().projects.size());
  for (std::uint32_t i = 0; list != nullptr && i < std::min(capacity, count); ++i) {
    list[i] = {V().projects[i], 0, 0, 0};
  }
  return V().RecordAnswer(count, host, "get_projects_offsets", list, capacity);
}

void get_project_and_coordinate_center(HostHandle host, double* centerA, double* centerB) {
  V().Record(host, "get_project_and_coordinate_center", centerA, centerB);
  std::fill_n(centerA, 3, 0.0);
  std::fill_n(centerB, 3, 0.0);
}

HostObject get_all_objects_id(HostHandle host) {
  return V().RecordAnswer(kSceneRoot, host, "get_all_objects_id");
}

HostObject get_selected_id(HostHandle host) {
  return V().RecordAnswer(HostObject{0}, host, "get_selected_id");
}

std::uint32_t get_childs(HostHandle host, HostObject parent, HostObject* list,
                         std::uint32_t capacity) {
  const std::uint32_t count =
      parent == kSceneRoot ? Give(V().projects, list, capacity) : std::uint32_t{0};
  return V().RecordAnswer(count, host, "get_childs", parent, list, capacity);
}

std::uint32_t get_loaded_ifc_files_count(HostHandle host) {
  const auto count = static_cast<std::uint32_t>(V().projects.size());
  return V().RecordAnswer(count, host, "get_loaded_ifc_files_count");
}

// --- Dialogs and texts --------------------------------------------------------------------------

void set_save_dialog_params(HostHandle host, const char16_t* filter, const char16_t* folder,
                            const char16_t* name) {
  V().Record(host, "set_save_dialog_params", filter, folder, name);
}

void set_save_dialog_default_extension(HostHandle host, const char16_t* extension) {
  V().Record(host, "set_save_dialog_default_extension", extension);
}

std::int32_t save_dialog(HostHandle host, std::int32_t zero) {
  const std::int32_t answer = V().output.has_value() ? 1 : 0;
  return V().RecordAnswer(answer, host, "save_dialog", zero);
}

const char16_t* get_save_dialog_name(HostHandle host) {
  const char16_t* const name = V().output ? V().output->c_str() : nullptr;
  return V().RecordAnswer(name, host, "get_save_dialog_name");
}

void show_progress_bar(HostHandle host, std::int32_t visible, std::int32_t one,
                       const char16_t* title) {
  if (visible == 0 && V().beforeHiding) V().beforeHiding();
  V().Record(host, "show_progress_bar", visible, one, title);
  V().progressIsShown = visible != 0;
}

std::uint8_t update_progress_bar(HostHandle host, std::int32_t overall, const char16_t* overallText,
                                 std::int32_t current, const char16_t* currentText) {
  Viewer& viewer = V();
  viewer.progress.push_back({overall, Utf8(overallText), current, Utf8(currentText)});
  const int number = static_cast<int>(viewer.progress.size());
  const bool cancels = viewer.cancelAt != 0 && (viewer.keepsCancelling ? number >= viewer.cancelAt
                                                                       : number == viewer.cancelAt);
  const std::uint8_t goOn = cancels ? 0 : 1;
  viewer.RecordAnswer(goOn, host, "update_progress_bar", overall, overallText, current,
                      currentText);
  if (viewer.duringUpdate) viewer.duringUpdate();
  return goOn;
}

std::int32_t message_box(HostHandle host, const char16_t* caption, const char16_t* text,
                         std::uint32_t flags) {
  constexpr std::int32_t kOk = 1;
  return V().RecordAnswer(kOk, host, "message_box", caption, text, flags);
}

std::uint8_t load_texts(HostHandle host, const char16_t* path) {
  const std::uint8_t found = V().LoadTexts(path) ? 1 : 0;
  return V().RecordAnswer(found, host, "load_texts", path);
}

const char16_t* get_language(HostHandle host) {
  return V().RecordAnswer(V().language.c_str(), host, "get_language");
}

const char16_t* get_text(HostHandle host, const char* key) {
  V().Record(host, "get_text", key);
  return V().TextOf(key);
}

// --- The ribbon ---------------------------------------------------------------------------------

std::int32_t create_group(HostHandle host, std::int32_t zero, const char16_t* title) {
  return V().RecordAnswer(V().nextGroup++, host, "create_group", zero, title);
}

std::int32_t create_sub_button(HostHandle host, std::int32_t group, std::int32_t one) {
  return V().RecordAnswer(V().nextDropDown++, host, "create_sub_button", group, one);
}

std::int32_t create_small_button(HostHandle host, std::int32_t group, HostCallback click) {
  V().click = click;
  return V().RecordAnswer(V().nextButton++, host, "create_small_button", group, click);
}

void add_button(HostHandle host, std::int32_t parent, std::int32_t child) {
  V().Record(host, "add_button", parent, child);
}

void set_button_text(HostHandle host, std::int32_t button, const char16_t* text,
                     const char16_t* hint) {
  V().Record(host, "set_button_text", button, text, hint);
}

void set_button_image(HostHandle host, std::int32_t button, const char16_t* path) {
  V().Record(host, "set_button_image", button, path);
}

void set_button_small_image(HostHandle host, std::int32_t button, const char16_t* path) {
  V().Record(host, "set_button_small_image", button, path);
}

void enable_button(HostHandle host, std::int32_t button, std::uint8_t enabled) {
  V().Record(host, "enable_button", button, enabled);
  V().enabled[button] = enabled != 0;
}

void set_button_down(HostHandle host, std::int32_t button, std::uint8_t down) {
  V().Record(host, "set_button_down", button, down);
}

void register_on_button_click(HostHandle host, const char16_t* caption, HostCallback click) {
  V().Record(host, "register_on_button_click", caption, click);
}

std::int32_t clicked_button(HostHandle host) {
  return V().RecordAnswer(V().clicked, host, "clicked_button");
}

std::uint64_t get_draw_object_id(HostHandle host) {
  return V().RecordAnswer(std::uint64_t{7}, host, "get_draw_object_id");
}

// --- Registrars of callbacks --------------------------------------------------------------------

#define CORVEL_REGISTRAR(name, Callback)                          \
  void name(HostHandle host, Callback callback) {                 \
    V().Record(host, #name, callback);                            \
    V().events[#name] = reinterpret_cast<HostCallback>(callback); \
  }
CORVEL_REGISTRAR(on_measure_change, HostCallback)
CORVEL_REGISTRAR(can_clear_model, HostQuestion)
CORVEL_REGISTRAR(on_model_clear, HostCallback)
CORVEL_REGISTRAR(on_main_form_close, HostCallback)
CORVEL_REGISTRAR(on_selection_change, HostCallback)
CORVEL_REGISTRAR(on_hover, HostCallback)
CORVEL_REGISTRAR(on_draw, HostCallback)
CORVEL_REGISTRAR(on_draw_object_click, HostCallback)
CORVEL_REGISTRAR(on_context_menu, HostCallback)
CORVEL_REGISTRAR(on_gallery_item_context_menu, HostCallback)
CORVEL_REGISTRAR(on_tab_change, HostCallback)
CORVEL_REGISTRAR(on_tab_sheet_placement, HostTabCallback)
CORVEL_REGISTRAR(on_tab_sheet_change, HostTabCallback)
CORVEL_REGISTRAR(on_plugin_message, HostMessageCallback)
CORVEL_REGISTRAR(on_property_change, HostCallback)
CORVEL_REGISTRAR(on_object_list_changed, HostCallback)
CORVEL_REGISTRAR(on_model_load, HostCallback)
CORVEL_REGISTRAR(on_save_olf, HostCallback)
#undef CORVEL_REGISTRAR

}  // extern "C"

}  // namespace corvel::plugin
