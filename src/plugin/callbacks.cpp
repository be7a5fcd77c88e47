#include "plugin/callbacks.h"

#include "plugin/delivery.h"

namespace corvel::plugin::callbacks {

namespace {

// An event without arguments.
template <void (cpp::PluginBase::*Event)()>
void Forward() {
  Deliver([](Plugin& plugin) { (plugin.*Event)(); });
}

template <void (cpp::PluginBase::*Event)(std::uint64_t)>
void ForwardSheet(std::uint64_t sheet) {
  Deliver([=](Plugin& plugin) { (plugin.*Event)(sheet); });
}

bool CanClearModel() {
  return Deliver(true, [](Plugin& plugin) { return plugin.CanClearModel(); });
}

void OnDrawObjectClick() {
  const std::uint64_t object = CallHost(Host().get_draw_object_id);
  Deliver([=](Plugin& plugin) { plugin.OnDrawObjectClick(object); });
}

void OnGalleryItemContextMenu() {
  const std::int32_t item = CallHost(Host().clicked_button);
  Deliver([=](Plugin& plugin) { plugin.OnGalleryItemContextMenu(item); });
}

bool OnPluginMessage(std::uint64_t first, std::uint64_t second) {
  Deliver([=](Plugin& plugin) { plugin.OnPluginMessage(first, second); });
  return true;
}

}  // namespace

void OnButtonClick() {
  // Asked at once: while the event runs the user may click another.
  const std::int32_t button = CallHost(Host().clicked_button);
  Deliver([=](Plugin& plugin) { plugin.OnButtonClick(button); });
}

void Register() {
  using cpp::PluginBase;
  const HostFunctions& host = Host();
  CallHost(host.on_measure_change, &Forward<&PluginBase::OnMeasureChange>);
  CallHost(host.can_clear_model, &CanClearModel);
  CallHost(host.on_model_clear, &Forward<&PluginBase::OnModelClear>);
  CallHost(host.on_main_form_close, &Forward<&PluginBase::OnMainFormClose>);
  CallHost(host.on_selection_change, &Forward<&PluginBase::OnSelectionChange>);
  CallHost(host.on_hover, &Forward<&PluginBase::OnHover>);
  CallHost(host.on_draw, &Forward<&PluginBase::OnDraw>);
  CallHost(host.on_draw_object_click, &OnDrawObjectClick);
  CallHost(host.on_context_menu, &Forward<&PluginBase::OnContextMenu>);
  CallHost(host.on_gallery_item_context_menu, &OnGalleryItemContextMenu);
  CallHost(host.on_tab_change, &Forward<&PluginBase::OnTabChange>);
  CallHost(host.on_tab_sheet_placement, &ForwardSheet<&PluginBase::OnTabSheetPlacement>);
  CallHost(host.on_tab_sheet_change, &ForwardSheet<&PluginBase::OnTabSheetChange>);
  CallHost(host.on_plugin_message, &OnPluginMessage);
  CallHost(host.on_property_change, &Forward<&PluginBase::OnPropertyChange>);
  CallHost(host.on_object_list_changed, &Forward<&PluginBase::OnObjectListChanged>);
}

void RegisterModelEvents() {
  using cpp::PluginBase;
  CallHost(Host().on_model_load, &Forward<&PluginBase::OnModelLoad>);
  CallHost(Host().on_save_olf, &Forward<&PluginBase::OnSaveOlf>);
}

}  // namespace corvel::plugin::callbacks
