#include <cstdio>
#include <exception>
#include <new>

#include "host/command.h"
#include "host/display_text.h"
#include "platform/console.h"

int main(int count, char** arguments) {
  const char* failure = "corvel: unknown error\n";
  platform::KeepStandardStreams();
  try {
    const auto status = corvel::host::RunCommand(platform::ProgramArguments(count, arguments));
    return static_cast<int>(status);
  } catch (const std::bad_alloc&) {
    failure = "corvel: not enough memory\n";
  } catch (const std::exception& error) {
    const auto text = corvel::host::Printable(corvel::FromUtf8(error.what()), true);
    std::fprintf(stderr, "corvel: %s\n", corvel::ToUtf8(text).c_str());
    failure = "";
  } catch (...) {
  }
  std::fputs(failure, stderr);
  return static_cast<int>(corvel::host::ExitStatus::kNothingWritten);
}
