#include "desktop.h"

#include <windows.h>

#include <objbase.h>
#include <shellapi.h>
#include <shlobj.h>

#include <atomic>
#include <cstring>
#include <mutex>
#include <thread>
#include <utility>

#include "win32/imports.h"

namespace corvel::test_host {

namespace {

Desktop* current = nullptr;
unsigned char nextRandom = 0;
LONGLONG seconds = 0;

constexpr LONGLONG kTicksPerSecond = 10'000'000;

std::string TextOf(HWND window) {
  std::wstring text(static_cast<std::size_t>(::GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<std::size_t>(
      ::GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return PathText(text);
}

// The text of a box is the longest of its captions; the icon is one without a text.
std::string TextOfBox(HWND box) {
  std::string text;
  for (HWND label = ::FindWindowExW(box, nullptr, L"Static", nullptr); label != nullptr;
       label = ::FindWindowExW(box, label, L"Static", nullptr)) {
    const std::string caption = TextOf(label);
    if (caption.size() > text.size()) text = caption;
  }
  return text;
}

// A visible box of this process; null without one.
HWND FindBox() {
  HWND box = nullptr;
  while ((box = ::FindWindowExW(nullptr, box, L"#32770", nullptr)) != nullptr) {
    DWORD process = 0;
    ::GetWindowThreadProcessId(box, &process);
    if (process == ::GetCurrentProcessId() && ::IsWindowVisible(box) != 0) return box;
  }
  return nullptr;
}

}  // namespace

// The user: a thread that watches for boxes and answers them.
struct DesktopState {
  explicit DesktopState(Desktop& theDesktop) : desktop(theDesktop), user([this] { Watch(); }) {}
  ~DesktopState() {
    ends = true;
    user.join();
  }
  DesktopState(const DesktopState&) = delete;
  DesktopState& operator=(const DesktopState&) = delete;

  void Watch() {
    while (!ends) {
      if (HWND const box = FindBox()) {
        Answer(box);
      } else {
        ::Sleep(1);
      }
    }
  }

  // Comes back when the box is gone.
  void Answer(HWND box) {
    SystemBox seen{TextOf(box), TextOfBox(box), {}};
    if (!seen.text.empty() && seen.text.back() == '\n') seen.text.pop_back();
    int button = IDOK;
    {
      const std::lock_guard lock(mutex);
      if (::GetDlgItem(box, IDYES) != nullptr) {
        seen.answeredYes = desktop.NextAnswer();
        button = *seen.answeredYes ? IDYES : IDNO;
      }
      boxes.push_back(std::move(seen));
    }
    ::PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
    while (::IsWindow(box) != 0 && !ends) ::Sleep(1);
  }

  Desktop& desktop;
  std::mutex mutex;
  std::vector<SystemBox> boxes;
  std::deque<std::string> opened;
  std::atomic<bool> ends{false};
  std::thread user;
};

namespace {

DesktopState* currentState = nullptr;

BOOL WINAPI ScriptedCounter(LARGE_INTEGER* counter) {
  if (current->clock == ClockMode::kLeaping) ++seconds;
  counter->QuadPart = seconds * kTicksPerSecond;
  return TRUE;
}

BOOL WINAPI ScriptedFrequency(LARGE_INTEGER* frequency) {
  frequency->QuadPart = kTicksPerSecond;
  return TRUE;
}

// Nobody pulls the plug here, and thousands of small runs would wait for the disk.
BOOL WINAPI ScriptedFlush(HANDLE) { return TRUE; }

// The bytes that the other systems give for their own random source, with the marks of version 4.
HRESULT WINAPI ScriptedGuid(GUID* guid) {
  std::memset(guid, ++nextRandom, sizeof *guid);
  guid->Data3 = static_cast<unsigned short>((guid->Data3 & 0x0FFF) | 0x4000);
  guid->Data4[0] = static_cast<unsigned char>((guid->Data4[0] & 0x3F) | 0x80);
  return S_OK;
}

HINSTANCE WINAPI ScriptedOpen(HWND, LPCWSTR, LPCWSTR target, LPCWSTR parameters, LPCWSTR, INT) {
  std::string text = "opened " + PathText(target);
  if (parameters != nullptr) {
    std::wstring path(parameters);
    std::erase(path, L'"');
    wchar_t program[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, program, MAX_PATH);
    const char* const what = std::wcscmp(program, target) == 0 ? "the viewer" : "another program";
    text = std::string("started ") + what + " with " + PathText(path);
  }
  currentState->opened.push_back(std::move(text));
  constexpr INT_PTR kStarted = 33;
  return reinterpret_cast<HINSTANCE>(kStarted);
}

template <class Function>
void Replace(void* module, const char* name, Function* replacement) {
  ReplaceImport(module, name, reinterpret_cast<void (*)()>(replacement));
}

}  // namespace

Desktop::Desktop(const WorkFolder& work)
    : work_(work), state_(std::make_unique<DesktopState>(*this)) {
  current = this;
  currentState = state_.get();
}

Desktop::~Desktop() {
  state_.reset();
  current = nullptr;
  currentState = nullptr;
}

void Desktop::Surround(void* module) {
  Replace(module, "QueryPerformanceCounter", &ScriptedCounter);
  Replace(module, "QueryPerformanceFrequency", &ScriptedFrequency);
  Replace(module, "FlushFileBuffers", &ScriptedFlush);
  Replace(module, "CoCreateGuid", &ScriptedGuid);
  Replace(module, "ShellExecuteW", &ScriptedOpen);
}

void Desktop::ResetRandom() { nextRandom = 0; }

std::vector<SystemBox> Desktop::TakeBoxes() {
  const std::lock_guard lock(state_->mutex);
  return std::exchange(state_->boxes, {});
}

std::string Desktop::TakeOpened() {
  if (state_->opened.empty()) return {};
  std::string opened = std::move(state_->opened.front());
  state_->opened.pop_front();
  return opened;
}

std::filesystem::path Desktop::UserDataFolder() const {
  wchar_t path[MAX_PATH] = {};
  ::SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, path);
  return path;
}

bool WasStartedForDocument(int /*count*/, char** /*arguments*/) { return false; }

}  // namespace corvel::test_host
