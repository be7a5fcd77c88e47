// What stands in the options window: its size, its controls, their font, and the window's icons.
#pragma once

#include <windows.h>

#include <array>
#include <cstddef>
#include <memory>
#include <type_traits>

#include "plugin/options_window.h"

namespace corvel::plugin {

// Outer size in pixels.
struct FormSize {
  int width;
  int height;
};
FormSize SizeOfForm(bool shortForm);

// In the order in which they are made.
enum FormControl : std::size_t {
  kGroupBox,
  kGenerateRadio,
  kSkipRadio,
  kUnitsBox,
  kEnumsBox,
  kRememberBox,
  kCloseButton,
  kFormControlCount  // no control
};

struct FontDeleter {
  void operator()(HFONT font) const { ::DeleteObject(font); }
};
struct IconDeleter {
  void operator()(HICON icon) const { ::DestroyIcon(icon); }
};

// One per opened window, which it has to outlive: the window draws with its font and icons. The
// controls themselves go with the window.
class OptionsForm {
 public:
  // Gives `window` its icons, as far as their file can be read, and its controls. The short form
  // has the boxes for units and enumerations too, hidden.
  void Fill(HWND window, const OptionsTexts& texts, bool shortForm);
  // Sets the radio and check marks.
  void SetMarks(const MergeOptions& options) const;
  // kFormControlCount when `window` is none of the controls.
  FormControl Find(HWND window) const;

 private:
  void LoadIcons(HWND window);

  std::array<HWND, kFormControlCount> controls_{};
  std::unique_ptr<std::remove_pointer_t<HFONT>, FontDeleter> font_;
  std::unique_ptr<std::remove_pointer_t<HICON>, IconDeleter> largeIcon_;
  std::unique_ptr<std::remove_pointer_t<HICON>, IconDeleter> smallIcon_;
};

}  // namespace corvel::plugin
