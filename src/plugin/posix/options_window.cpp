// Nobody has a window to show here: the fields are what there is.
#include "plugin/options_window.h"

#include <utility>

namespace corvel::plugin {

class OptionsWindow::Window {};

OptionsWindow::OptionsWindow(OptionsTexts texts) : texts_(std::move(texts)) {}

OptionsWindow::~OptionsWindow() = default;

bool OptionsWindow::Show(bool /*shortForm*/) { return options.generateGuid; }

void OptionsWindow::ApplyState() {}

void OptionsWindow::Hide() {}

}  // namespace corvel::plugin
