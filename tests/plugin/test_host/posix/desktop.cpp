// Functions of the C library that are defined here are the ones that every library of this process
// finds, the one under test among them.
#include "desktop.h"

#include <sys/syscall.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <thread>
#include <utility>

namespace corvel::test_host {

namespace {

Desktop* current = nullptr;
unsigned char nextRandom = 0;
std::time_t seconds = 0;

constexpr std::string_view kPrompt = "[y/n] ";
// Names the file in which a program that was opened tells of it.
constexpr char kOpenedVariable[] = "CORVEL_TEST_HOST_OPENED";

ssize_t WriteToDesktop(void* state, const char* bytes, std::size_t count);

}  // namespace

// The terminal: what goes to standard error are boxes and prompts, and each prompt is answered on
// standard input.
struct DesktopState {
  Desktop& desktop;
  std::vector<SystemBox> boxes;
  std::FILE* error = nullptr;
  std::FILE* realError = nullptr;
  int realInput = -1;
  int answers[2] = {-1, -1};  // a pipe

  explicit DesktopState(Desktop& theDesktop) : desktop(theDesktop) {
    if (::pipe(answers) != 0) throw std::runtime_error("no pipe");
    realInput = ::dup(STDIN_FILENO);
    ::dup2(answers[0], STDIN_FILENO);
    cookie_io_functions_t functions{};
    functions.write = WriteToDesktop;
    error = ::fopencookie(this, "w", functions);
    constexpr std::size_t kLongestBox = 1 << 20;  // one write each
    std::setvbuf(error, nullptr, _IOFBF, kLongestBox);
    realError = std::exchange(stderr, error);
  }
  ~DesktopState() {
    stderr = realError;
    std::fclose(error);
    ::dup2(realInput, STDIN_FILENO);
    for (const int descriptor : {realInput, answers[0], answers[1]}) ::close(descriptor);
  }
  DesktopState(const DesktopState&) = delete;
  DesktopState& operator=(const DesktopState&) = delete;

  void Take(std::string_view text) {
    if (text == kPrompt && !boxes.empty()) {
      const bool yes = desktop.NextAnswer();
      boxes.back().answeredYes = yes;
      if (::write(answers[1], yes ? "y\n" : "n\n", 2) != 2) std::abort();
      return;
    }
    if (!text.empty() && text.back() == '\n') text.remove_suffix(1);
    const std::size_t colon = text.find(": ");
    const std::size_t titleEnd = colon == std::string_view::npos ? 0 : colon;
    boxes.push_back({std::string(text.substr(0, titleEnd)),
                     std::string(text.substr(titleEnd == 0 ? 0 : titleEnd + 2)),
                     {}});
  }
};

namespace {

ssize_t WriteToDesktop(void* state, const char* bytes, std::size_t count) {
  static_cast<DesktopState*>(state)->Take({bytes, count});
  return static_cast<ssize_t>(count);
}

// The desktop opens documents with this program.
constexpr char kOpener[] =
    "#!/bin/sh\n"
    "printf '%s' \"opened $1\" >\"$CORVEL_TEST_HOST_OPENED.new\"\n"
    "mv \"$CORVEL_TEST_HOST_OPENED.new\" \"$CORVEL_TEST_HOST_OPENED\"\n";

}  // namespace

Desktop::Desktop(const WorkFolder& work) : work_(work) {
  namespace fs = std::filesystem;
  const fs::path opener = work / "desktop" / "xdg-open";
  WriteBytes(opener, kOpener);
  fs::permissions(opener, fs::perms::owner_all);
  static const std::string path = std::getenv("PATH") == nullptr ? "" : std::getenv("PATH");
  ::setenv("PATH", (opener.parent_path().native() + ":" + path).c_str(), 1);
  ::setenv("DISPLAY", ":corvel-test-host", 1);
  ::setenv("XDG_DATA_HOME", UserDataFolder().c_str(), 1);
  ::setenv(kOpenedVariable, (work / "desktop" / "opened").c_str(), 1);
  state_ = std::make_unique<DesktopState>(*this);
  current = this;
}

Desktop::~Desktop() { current = nullptr; }

void Desktop::Surround(void* /*module*/) {}

void Desktop::ResetRandom() { nextRandom = 0; }

std::vector<SystemBox> Desktop::TakeBoxes() { return std::exchange(state_->boxes, {}); }

std::string Desktop::TakeOpened() {
  const std::filesystem::path file = work_ / "desktop" / "opened";
  for (int attempt = 0; attempt < 500; ++attempt) {
    if (std::filesystem::exists(file)) {
      const std::string opened = ReadBytes(file);
      std::filesystem::remove(file);
      return opened;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return {};
}

std::filesystem::path Desktop::UserDataFolder() const { return work_ / "local"; }

bool WasStartedForDocument(int count, char** arguments) {
  const char* const told = std::getenv(kOpenedVariable);
  if (told == nullptr || count != 2) return false;
  const std::filesystem::path fresh = std::string(told) + ".new";
  WriteBytes(fresh, std::string("started the viewer with ") + arguments[1]);
  std::filesystem::rename(fresh, told);
  return true;
}

}  // namespace corvel::test_host

using corvel::test_host::ClockMode;
using corvel::test_host::current;

extern "C" {

int clock_gettime(clockid_t id, struct timespec* time) noexcept {
  if (id != CLOCK_MONOTONIC || current == nullptr) {
    return static_cast<int>(::syscall(SYS_clock_gettime, id, time));
  }
  if (current->clock == ClockMode::kLeaping) ++corvel::test_host::seconds;
  *time = {1'000'000 + corvel::test_host::seconds, 0};
  return 0;
}

// Nobody pulls the plug here, and thousands of small runs would wait for the disk.
int fsync(int descriptor) {
  return current == nullptr ? static_cast<int>(::syscall(SYS_fsync, descriptor)) : 0;
}

int getentropy(void* buffer, std::size_t length) {
  if (current == nullptr) return static_cast<int>(::syscall(SYS_getrandom, buffer, length, 0)) < 0;
  std::memset(buffer, ++corvel::test_host::nextRandom, length);
  return 0;
}

int isatty(int descriptor) noexcept {
  if (current != nullptr && (descriptor == STDIN_FILENO || descriptor == STDERR_FILENO)) return 1;
  struct termios settings {};
  return ::tcgetattr(descriptor, &settings) == 0 ? 1 : 0;
}

}  // extern "C"
