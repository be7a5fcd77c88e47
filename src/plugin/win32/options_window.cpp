#include "plugin/options_window.h"

#include <windows.h>

#include <exception>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "platform/platform.h"
#include "platform/win32/wide.h"
#include "plugin/win32/options_form.h"

namespace corvel::plugin {

namespace {

constexpr wchar_t kClassName[] = L"OptionsWindowClass";
// WM_DPICHANGED, which the headers have for later systems only.
constexpr UINT kDpiChanged = 0x02E0;
constexpr COLORREF kWhite = RGB(255, 255, 255);

void Tell(const WideString& text) {
  platform::Get().ShowMessageBox(u"Error!", text, platform::Buttons::kOk, platform::Icon::kWarning);
}

// The library that holds this code, or the program when it is linked into that. Classes of windows
// are known by module, so that another library may use the same name.
HINSTANCE OwnModule() {
  HMODULE module = nullptr;
  ::GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&OwnModule), &module);
  return module;
}

// Where a window of this size is in the middle of the desktop.
WindowPosition MiddleOfDesktop(const FormSize& size) {
  RECT desktop{};
  if (::GetWindowRect(::GetDesktopWindow(), &desktop) == 0) return {100, 100};
  return {(desktop.right - desktop.left) / 2 - size.width / 2,
          (desktop.bottom - desktop.top) / 2 - size.height / 2};
}

// Takes a quit message that waits for this thread, and gives its exit code. Nothing else is served.
std::optional<WPARAM> TakeQuit() {
  MSG message{};
  if (::PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE | PM_QS_POSTMESSAGE) == 0) {
    return {};
  }
  return message.wParam;
}

struct BrushDeleter {
  void operator()(HBRUSH brush) const { ::DeleteObject(brush); }
};

// A window on the screen, from its creation until its loop has ended.
struct Opening {
  HWND window = nullptr;  // null when it was closed
  OptionsForm form;
};

}  // namespace

// The messages that a Show serves may do anything: call Show again, close the window, end the
// viewer, destroy the OptionsWindow. So a Show holds on to this object by itself.
class OptionsWindow::Window {
 public:
  explicit Window(OptionsWindow& fields) : fields_(&fields), module_(OwnModule()) { Register(); }

  bool Show(bool shortForm) {
    if (open_ != nullptr) {
      Raise();
    } else {
      Open(shortForm);
    }
    return fields_ != nullptr ? fields_->options.generateGuid : lastChoice_;
  }

  void ApplyState() const {
    if (open_ != nullptr) open_->form.SetMarks(fields_->options);
  }

  void Hide() const {
    if (open_ != nullptr) ::ShowWindow(open_->window, SW_HIDE);
  }

  // The fields are about to go: closes the window, whose Show comes back in its own time, and frees
  // the name of the class for those that come after.
  void Leave() {
    KeepState();
    lastChoice_ = fields_->options.generateGuid;
    fields_ = nullptr;
    if (open_ != nullptr) ::DestroyWindow(open_->window);
    if (class_ != 0) ::UnregisterClassW(kClassName, module_);
    class_ = 0;
  }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  void Register();
  void Open(bool shortForm);
  bool Create(const FormSize& size, Opening& opening);
  void Raise() const;
  void RunLoop(Opening& opening);
  void EndLoop(Opening& opening);
  bool IsOwnQuit(WPARAM exitCode);
  void Look(const MSG& message);
  void KeepMarks() const;
  void StorePosition();
  void KeepState();
  void OnDpiChanged(HWND window, int dpi, const RECT& place) const;
  void OnDestroy(HWND window);
  HBRUSH WhiteBrush();

  OptionsWindow* fields_;  // null when they are gone
  HINSTANCE module_;
  ATOM class_ = 0;  // 0: could not be registered
  Opening* open_ = nullptr;
  std::unique_ptr<std::remove_pointer_t<HBRUSH>, BrushDeleter> white_;
  bool lastChoice_ = true;
  // A closed window has posted its quit message, and no loop of ours has come across it yet.
  bool ownQuitWaits_ = false;
  // The exit code of another's quit message, which is posted again after the loop.
  std::optional<WPARAM> otherQuit_;
};

void OptionsWindow::Window::Register() {
  try {
    WNDCLASSEXW record{};
    record.cbSize = sizeof record;
    record.lpfnWndProc = &Window::Procedure;
    record.hInstance = module_;
    record.hIcon = ::LoadIconW(nullptr, IDI_APPLICATION);
    record.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
    record.hbrBackground = reinterpret_cast<HBRUSH>(INT_PTR{COLOR_WINDOW + 1});
    record.lpszClassName = kClassName;
    record.hIconSm = record.hIcon;
    class_ = ::RegisterClassExW(&record);
    if (class_ == 0) Tell(u"Option Window Registration Failed!");
  } catch (const std::exception& error) {
    Tell(u"Option Window Registration Failed!\nError message: " + Widen(error.what()));
  }
}

void OptionsWindow::Window::Open(bool shortForm) {
  Opening opening;
  if (!Create(SizeOfForm(shortForm, DpiOf(nullptr)), opening)) {
    Tell(u"Options Window Creation Failed!");
    return;
  }
  // Whatever happens, the window does not outlive `opening`.
  const struct Ending {
    Window& self;
    Opening& opening;
    ~Ending() { self.EndLoop(opening); }
  } ending{*this, opening};
  opening.form.Fill(opening.window, fields_->texts_, shortForm, DpiOf(opening.window));
  opening.form.SetMarks(fields_->options);
  const FormSize size = opening.form.Size();
  ::SetWindowPos(opening.window, HWND_TOPMOST, fields_->position.x, fields_->position.y, size.width,
                 size.height, 0);
  ::ShowWindow(opening.window, SW_SHOW);
  RunLoop(opening);
}

// A class of this name that someone else has registered is not ours to use.
bool OptionsWindow::Window::Create(const FormSize& size, Opening& opening) {
  if (class_ == 0) return false;
  const WindowPosition middle = MiddleOfDesktop(size);
  opening.window = ::CreateWindowExW(WS_EX_CLIENTEDGE, kClassName,
                                     platform::ToNative(fields_->texts_[kWindowTitle]).c_str(),
                                     WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX, middle.x, middle.y,
                                     size.width, size.height, nullptr, nullptr, module_, this);
  if (opening.window == nullptr) return false;
  open_ = &opening;
  return true;
}

void OptionsWindow::Window::Raise() const {
  const HWND window = open_->window;
  ::ShowWindow(window, ::IsIconic(window) != 0 ? SW_RESTORE : SW_SHOW);
  ::SetWindowPos(window, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
  ::SetForegroundWindow(window);
}

void OptionsWindow::Window::RunLoop(Opening& opening) {
  while (opening.window != nullptr) {
    MSG message{};
    const BOOL result = ::GetMessageW(&message, nullptr, 0, 0);
    if (result < 0) return;
    if (result == 0) {
      if (IsOwnQuit(message.wParam)) continue;
      otherQuit_ = message.wParam;
      return;
    }
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
    Look(message);
  }
}

// Leaves neither the window nor its quit message behind: that would end the viewer's own loop.
void OptionsWindow::Window::EndLoop(Opening& opening) {
  if (opening.window != nullptr) {
    KeepState();
    open_ = nullptr;
    ::DestroyWindow(std::exchange(opening.window, nullptr));
  }
  if (ownQuitWaits_) {
    // None is there when a loop within this one, of a box for instance, has used it up.
    const std::optional<WPARAM> code = TakeQuit();
    if (code && !IsOwnQuit(*code)) otherQuit_ = code;
    ownQuitWaits_ = false;
  }
  if (otherQuit_) ::PostQuitMessage(static_cast<int>(*otherQuit_));
  otherQuit_.reset();
}

// The thread keeps one quit message only: with another exit code it is another's, who came later.
bool OptionsWindow::Window::IsOwnQuit(WPARAM exitCode) {
  return std::exchange(ownQuitWaits_, false) && exitCode == 0;
}

// What the messages that have been dispatched mean to the window itself.
void OptionsWindow::Window::Look(const MSG& message) {
  if (open_ == nullptr || fields_ == nullptr) return;
  if (message.message == WM_PAINT) StorePosition();
  if (message.message == WM_LBUTTONDOWN && open_->form.Find(message.hwnd) == kCloseButton) {
    ::DestroyWindow(open_->window);
  }
}

// The marks are the choice: a press that is let go elsewhere changes neither, a key changes both.
void OptionsWindow::Window::KeepMarks() const {
  if (open_ != nullptr && fields_ != nullptr) open_->form.GetMarks(fields_->options);
}

// A minimised window stands far off the screen, where nobody would find it the next time.
void OptionsWindow::Window::StorePosition() {
  RECT place{};
  if (::IsIconic(open_->window) != 0 || ::GetWindowRect(open_->window, &place) == 0) return;
  fields_->position = {place.left, place.top};
}

// Programs that help their users to see may have set a mark without telling the window.
void OptionsWindow::Window::KeepState() {
  if (open_ == nullptr || fields_ == nullptr) return;
  KeepMarks();
  StorePosition();
}

// The window has come to a screen of other dots, where the system wants it at `place`.
void OptionsWindow::Window::OnDpiChanged(HWND window, int dpi, const RECT& place) const {
  if (open_ == nullptr || open_->window != window) return;
  open_->form.Scale(dpi);
  const FormSize size = open_->form.Size();
  ::SetWindowPos(window, nullptr, place.left, place.top, size.width, size.height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

// The viewer may have asked for its end just before: its message would be lost in ours.
void OptionsWindow::Window::OnDestroy(HWND window) {
  if (open_ == nullptr || open_->window != window) return;
  KeepState();
  std::exchange(open_, nullptr)->window = nullptr;
  if (!ownQuitWaits_) otherQuit_ = TakeQuit();
  ::PostQuitMessage(0);
  ownQuitWaits_ = true;
}

HBRUSH OptionsWindow::Window::WhiteBrush() {
  if (white_ == nullptr) white_.reset(::CreateSolidBrush(kWhite));
  return white_.get();
}

LRESULT CALLBACK OptionsWindow::Window::Procedure(HWND window, UINT message, WPARAM wParam,
                                                  LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* creation = reinterpret_cast<const CREATESTRUCTW*>(lParam);
    ::SetWindowLongPtrW(window, GWLP_USERDATA,
                        reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
  }
  auto* self = reinterpret_cast<Window*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
  switch (message) {
    case WM_DESTROY:
      if (self != nullptr) self->OnDestroy(window);
      return 0;
    case WM_CLOSE: ::DestroyWindow(window); return 0;
    case WM_COMMAND:
      if (self != nullptr) self->KeepMarks();
      return 0;
    case kDpiChanged:
      if (self == nullptr) break;
      self->OnDpiChanged(window, LOWORD(wParam), *reinterpret_cast<const RECT*>(lParam));
      return 0;
    case WM_CTLCOLORSTATIC:
      if (self == nullptr) break;
      ::SetBkColor(reinterpret_cast<HDC>(wParam), kWhite);
      return reinterpret_cast<LRESULT>(self->WhiteBrush());
    default: break;
  }
  return ::DefWindowProcW(window, message, wParam, lParam);
}

OptionsWindow::OptionsWindow(OptionsTexts texts)
    : texts_(std::move(texts)), window_(std::make_shared<Window>(*this)) {}

OptionsWindow::~OptionsWindow() { window_->Leave(); }

bool OptionsWindow::Show(bool shortForm) {
  const std::shared_ptr<Window> kept = window_;
  return kept->Show(shortForm);
}

void OptionsWindow::ApplyState() { window_->ApplyState(); }

void OptionsWindow::Hide() { window_->Hide(); }

}  // namespace corvel::plugin
