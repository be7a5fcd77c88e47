// The functions that the program exports for the plug-in, as a desktop viewer does. Those that the
// headless viewer has no use for are not there, as in an old version of a viewer.
#include <algorithm>

#include "host/viewer.h"
#include "plugin/host_functions.h"

#ifdef _WIN32
#define CORVEL_EXPORT extern "C" __declspec(dllexport)
#else
#define CORVEL_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

using corvel::HostObject;
using corvel::ObjectInfo;
using corvel::ObjectState;
using corvel::ProjectOffsetRecord;
using corvel::host::ProgressView;
using corvel::host::Viewer;
using corvel::host::ViewerScene;
using corvel::plugin::HostCallback;
using corvel::plugin::HostHandle;

// Above the projects; no project or object has this handle.
constexpr HostObject kRoot = ~HostObject{0};

ViewerScene& Scene() { return Viewer::Instance()->Scene(); }

// The number of items; as many of them as there is room for go to `list`.
template <class Item>
std::uint32_t Fill(const std::vector<Item>& items, Item* list, std::uint32_t capacity) {
  if (list != nullptr) {
    std::copy_n(items.begin(), std::min<std::size_t>(items.size(), capacity), list);
  }
  return static_cast<std::uint32_t>(items.size());
}

}  // namespace

CORVEL_EXPORT std::uint32_t get_all_objects(HostHandle, HostObject* list, std::uint32_t capacity) {
  return Fill(Scene().Objects(), list, capacity);
}

CORVEL_EXPORT void get_object_info(HostHandle, const HostObject* objects, ObjectInfo* infos,
                                   std::uint32_t count) {
  for (std::uint32_t i = 0; i < count; ++i) infos[i] = Scene().InfoOf(objects[i]);
}

CORVEL_EXPORT void get_object_info2(HostHandle, const HostObject* objects, ObjectInfo* infos,
                                    std::uint32_t count) {
  const ViewerScene& scene = Scene();
  for (std::uint32_t i = 0; i < count; ++i) infos[i].project = scene.ProjectOf(objects[i]);
}

CORVEL_EXPORT void get_object_state(HostHandle, const HostObject* objects, ObjectState* states,
                                    std::uint32_t count) {
  for (std::uint32_t i = 0; i < count; ++i) states[i] = Scene().StateOf(objects[i]);
}

CORVEL_EXPORT void set_visible(HostHandle, HostObject object, std::uint32_t visible) {
  Scene().SetVisible(object, visible != 0);
}

// Nothing is drawn, so that nothing is to be drawn again.
CORVEL_EXPORT void invalidate(HostHandle) {}

CORVEL_EXPORT std::uint32_t get_projects_offsets(HostHandle, ProjectOffsetRecord* records,
                                                 std::uint32_t capacity) {
  return Fill(Scene().Offsets(), records, capacity);
}

CORVEL_EXPORT void get_project_and_coordinate_center(HostHandle, double* centerA, double* centerB) {
  const auto& center = Scene().CenterMetres();
  std::copy(center.begin(), center.end(), centerA);
  std::fill_n(centerB, center.size(), 0.0);
}

CORVEL_EXPORT HostObject get_all_objects_id(HostHandle) { return kRoot; }

CORVEL_EXPORT std::uint32_t get_childs(HostHandle, HostObject parent, HostObject* list,
                                       std::uint32_t capacity) {
  if (parent != kRoot) return 0;
  return Fill(Scene().Projects(), list, capacity);
}

CORVEL_EXPORT std::uint32_t get_loaded_ifc_files_count(HostHandle) {
  return static_cast<std::uint32_t>(Scene().Projects().size());
}

CORVEL_EXPORT const char16_t* get_project_path(HostHandle, HostObject project) {
  return Scene().PathOf(project).c_str();
}

CORVEL_EXPORT std::int32_t save_dialog(HostHandle, std::int32_t /*zero*/) {
  return Viewer::Instance()->Output().empty() ? 0 : 1;
}

CORVEL_EXPORT const char16_t* get_save_dialog_name(HostHandle) {
  return Viewer::Instance()->Output().c_str();
}

CORVEL_EXPORT void show_progress_bar(HostHandle, std::int32_t visible, std::int32_t /*one*/,
                                     const char16_t* /*title*/) {
  Viewer::Instance()->ShowProgress(visible != 0);
}

CORVEL_EXPORT std::uint8_t update_progress_bar(HostHandle, std::int32_t overall,
                                               const char16_t* overallText, std::int32_t current,
                                               const char16_t* currentText) {
  const ProgressView view{overall, current, overallText, currentText};
  return static_cast<std::uint8_t>(Viewer::Instance()->UpdateProgress(view));
}

CORVEL_EXPORT std::int32_t message_box(HostHandle, const char16_t* /*caption*/,
                                       const char16_t* text, std::uint32_t /*flags*/) {
  constexpr std::int32_t kOk = 1;
  Viewer::Instance()->ShowBox(text);
  return kOk;
}

CORVEL_EXPORT std::uint8_t load_texts(HostHandle, const char16_t* path) {
  return static_cast<std::uint8_t>(Viewer::Instance()->LoadTexts(path));
}

CORVEL_EXPORT const char16_t* get_language(HostHandle) { return u"en"; }

CORVEL_EXPORT const char16_t* get_text(HostHandle, const char* key) {
  return Viewer::Instance()->Text(key);
}

CORVEL_EXPORT std::int32_t create_sub_button(HostHandle, std::int32_t /*group*/,
                                             std::int32_t /*one*/) {
  // It only opens the entries below it.
  return Viewer::Instance()->CreateButton(nullptr);
}

CORVEL_EXPORT std::int32_t create_small_button(HostHandle, std::int32_t /*group*/,
                                               HostCallback click) {
  return Viewer::Instance()->CreateButton(click);
}

CORVEL_EXPORT void enable_button(HostHandle, std::int32_t button, std::uint8_t enabled) {
  Viewer::Instance()->EnableButton(button, enabled != 0);
}

CORVEL_EXPORT std::int32_t clicked_button(HostHandle) {
  return Viewer::Instance()->ClickedButton();
}

CORVEL_EXPORT void on_model_load(HostHandle, HostCallback callback) {
  Viewer::Instance()->SetModelLoadCallback(callback);
}
