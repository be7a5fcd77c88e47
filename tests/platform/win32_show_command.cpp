// A program for the tests of ShellOpen: writes the show command that it was started with into the
// file that an environment variable names.
#include <windows.h>

#include <cstdio>

int main() {
  wchar_t path[MAX_PATH] = {};
  if (::GetEnvironmentVariableW(L"CORVEL_SHOW_COMMAND_FILE", path, MAX_PATH) == 0) return 1;
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  ::GetStartupInfoW(&startup);
  const bool isTold = (startup.dwFlags & STARTF_USESHOWWINDOW) != 0;
  std::FILE* const file = ::_wfopen(path, L"wb");
  if (file == nullptr) return 1;
  std::fprintf(file, "%d.", isTold ? startup.wShowWindow : -1);
  return std::fclose(file);
}
