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
// The form grows with the dots per inch of its screen, from 96 on.
FormSize SizeOfForm(bool shortForm, int dpi);
// Of the screen that `window` is on, as far as the viewer wants to know of it; of the first screen
// for null. 96 in a viewer whose windows the system scales.
int DpiOf(HWND window);

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
  void Fill(HWND window, const OptionsTexts& texts, bool shortForm, int dpi);
  // Moves the controls, and gives them the font, of another screen.
  void Scale(int dpi);
  // Outer size of the filled window.
  FormSize Size() const { return SizeOfForm(shortForm_, dpi_); }
  // Sets the radio and check marks.
  void SetMarks(const MergeOptions& options);
  // Takes what the marks say. Controls say nothing that could not be made, or were never marked.
  void GetMarks(MergeOptions& options) const;
  // kFormControlCount when `window` is none of the controls.
  FormControl Find(HWND window) const;

 private:
  void LoadIcons(HWND window);
  bool IsMarked(FormControl control) const;
  void GetMark(FormControl control, bool& on) const;
  void SetFont();

  bool shortForm_ = false;
  bool isMarked_ = false;
  int dpi_ = 96;
  std::array<HWND, kFormControlCount> controls_{};
  std::unique_ptr<std::remove_pointer_t<HFONT>, FontDeleter> font_;
  std::unique_ptr<std::remove_pointer_t<HICON>, IconDeleter> largeIcon_;
  std::unique_ptr<std::remove_pointer_t<HICON>, IconDeleter> smallIcon_;
};

}  // namespace corvel::plugin
