#include "plugin/win32/options_form.h"

#include <algorithm>
#include <utility>

#include "platform/win32/wide.h"

namespace corvel::plugin {

namespace {

// Sizes and places are told for a screen of this many dots per inch.
constexpr int kUsualDpi = 96;

constexpr int kWidth = 600;
constexpr int kFullHeight = 420;
constexpr int kShortHeight = 360;

// The viewer's working folder is its own.
constexpr wchar_t kIconFile[] = L"plugins\\corvel_data\\options.ico";
constexpr wchar_t kFontName[] = L"Tahoma";
constexpr int kFontHeight = 15;

constexpr DWORD kShown = WS_CHILD | WS_VISIBLE;

struct ControlLook {
  OptionsText text;
  DWORD style;
  int x;
  int y;
  int width;
  int height;
};

using ControlLooks = std::array<ControlLook, kFormControlCount>;

int Scaled(int length, int dpi) { return ::MulDiv(length, dpi, kUsualDpi); }

// In the window's client area; `height` is that of the whole window.
constexpr ControlLooks UsualLooks(int height) {
  constexpr int kRow = kWidth - 120;
  return {{
      {kGroupTitle, kShown | BS_GROUPBOX, 20, 20, kWidth - 80, 90},
      {kGenerateText, kShown | WS_GROUP | BS_AUTORADIOBUTTON, 40, 50, kRow, 20},
      {kSkipText, kShown | BS_AUTORADIOBUTTON, 40, 80, kRow, 20},
      {kIgnoreUnitsText, kShown | BS_AUTOCHECKBOX, 20, 220, kRow, 20},
      {kIgnoreEnumsText, kShown | BS_AUTOCHECKBOX, 20, 250, kRow, 20},
      {kRememberText, kShown | BS_AUTOCHECKBOX, 20, height - 120, kRow, 20},
      {kButtonText, kShown | BS_PUSHBUTTON | BS_CENTER, kWidth - 120, height - 80, 80, 30},
  }};
}

ControlLooks LooksOf(bool shortForm, int dpi) {
  ControlLooks looks = UsualLooks(shortForm ? kShortHeight : kFullHeight);
  for (ControlLook& look : looks) {
    for (int* const length : {&look.x, &look.y, &look.width, &look.height}) {
      *length = Scaled(*length, dpi);
    }
  }
  return looks;
}

HWND MakeControl(HWND window, const ControlLook& look, const OptionsTexts& texts) {
  const auto module = reinterpret_cast<HINSTANCE>(::GetWindowLongPtrW(window, GWLP_HINSTANCE));
  return ::CreateWindowExW(WS_EX_WINDOWEDGE, L"BUTTON",
                           platform::ToNative(texts[look.text]).c_str(), look.style, look.x, look.y,
                           look.width, look.height, window, nullptr, module, nullptr);
}

HFONT MakeFont(int dpi) {
  return ::CreateFontW(Scaled(kFontHeight, dpi), 0, 0, 0, FW_DONTCARE, FALSE, FALSE, FALSE,
                       DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                       DEFAULT_PITCH | FF_DONTCARE, kFontName);
}

// The picture of the file that comes closest to what the system wants for `width` and `height`.
HICON LoadIconOfSize(int width, int height) {
  return static_cast<HICON>(::LoadImageW(nullptr, kIconFile, IMAGE_ICON, ::GetSystemMetrics(width),
                                         ::GetSystemMetrics(height), LR_LOADFROMFILE));
}

void SetIcon(HWND window, WPARAM which, HICON icon) {
  if (icon != nullptr) ::SendMessageW(window, WM_SETICON, which, reinterpret_cast<LPARAM>(icon));
}

}  // namespace

FormSize SizeOfForm(bool shortForm, int dpi) {
  return {Scaled(kWidth, dpi), Scaled(shortForm ? kShortHeight : kFullHeight, dpi)};
}

// Screens have dots of their own from Windows 10 on; before, all have those of the first.
int DpiOf(HWND window) {
  using DpiForWindow = UINT(WINAPI*)(HWND);
  const auto dpiForWindow = reinterpret_cast<DpiForWindow>(reinterpret_cast<void*>(
      ::GetProcAddress(::GetModuleHandleW(L"user32.dll"), "GetDpiForWindow")));
  int dpi = 0;
  if (window != nullptr && dpiForWindow != nullptr) dpi = static_cast<int>(dpiForWindow(window));
  if (dpi == 0) {
    const HDC screen = ::GetDC(nullptr);
    dpi = ::GetDeviceCaps(screen, LOGPIXELSX);
    ::ReleaseDC(nullptr, screen);
  }
  return std::max(dpi, kUsualDpi);
}

void OptionsForm::Fill(HWND window, const OptionsTexts& texts, bool shortForm, int dpi) {
  LoadIcons(window);
  shortForm_ = shortForm;
  dpi_ = dpi;
  const ControlLooks looks = LooksOf(shortForm, dpi);
  for (std::size_t i = 0; i < kFormControlCount; ++i) {
    controls_[i] = MakeControl(window, looks[i], texts);
  }
  SetFont();
  if (shortForm) {
    ::ShowWindow(controls_[kUnitsBox], SW_HIDE);
    ::ShowWindow(controls_[kEnumsBox], SW_HIDE);
  }
}

void OptionsForm::Scale(int dpi) {
  dpi_ = std::max(dpi, kUsualDpi);
  const ControlLooks looks = LooksOf(shortForm_, dpi_);
  for (std::size_t i = 0; i < kFormControlCount; ++i) {
    ::SetWindowPos(controls_[i], nullptr, looks[i].x, looks[i].y, looks[i].width, looks[i].height,
                   SWP_NOZORDER | SWP_NOACTIVATE);
  }
  SetFont();
}

// The font before lives until no control draws with it.
void OptionsForm::SetFont() {
  std::unique_ptr<std::remove_pointer_t<HFONT>, FontDeleter> font(MakeFont(dpi_));
  for (const HWND control : controls_) {
    ::SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), TRUE);
  }
  font_ = std::move(font);
}

void OptionsForm::LoadIcons(HWND window) {
  largeIcon_.reset(LoadIconOfSize(SM_CXICON, SM_CYICON));
  smallIcon_.reset(LoadIconOfSize(SM_CXSMICON, SM_CYSMICON));
  SetIcon(window, ICON_BIG, largeIcon_.get());
  SetIcon(window, ICON_SMALL, smallIcon_.get());
}

void OptionsForm::SetMarks(const MergeOptions& options) {
  isMarked_ = true;
  const auto mark = [this](FormControl control, bool on) {
    ::SendMessageW(controls_[control], BM_SETCHECK, on ? BST_CHECKED : BST_UNCHECKED, 0);
  };
  mark(kGenerateRadio, options.generateGuid);
  mark(kSkipRadio, !options.generateGuid);
  mark(kUnitsBox, options.ignoreUnits);
  mark(kEnumsBox, options.ignoreEnumErrors);
  mark(kRememberBox, options.remember);
}

bool OptionsForm::IsMarked(FormControl control) const {
  return ::SendMessageW(controls_[control], BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void OptionsForm::GetMark(FormControl control, bool& on) const {
  if (controls_[control] != nullptr) on = IsMarked(control);
}

// Of the two radio buttons the marked one counts, as there may be none.
void OptionsForm::GetMarks(MergeOptions& options) const {
  if (!isMarked_) return;
  if (IsMarked(kGenerateRadio)) {
    options.generateGuid = true;
  } else if (IsMarked(kSkipRadio)) {
    options.generateGuid = false;
  }
  GetMark(kUnitsBox, options.ignoreUnits);
  GetMark(kEnumsBox, options.ignoreEnumErrors);
  GetMark(kRememberBox, options.remember);
}

// Messages to the thread itself have no window; a control that could not be made is none either.
FormControl OptionsForm::Find(HWND window) const {
  if (window == nullptr) return kFormControlCount;
  const auto found = std::find(controls_.begin(), controls_.end(), window);
  return static_cast<FormControl>(found - controls_.begin());
}

}  // namespace corvel::plugin
