#include <cstdio>
#include <exception>
#include <new>

#include "host/command.h"
#include "host/display_text.h"
#include "platform/console.h"

namespace corvel::host {

namespace {

// Tells what nobody has foreseen.
ExitStatus Run(int count, char** arguments, std::vector<WideString>& words) {
  const char* failure = "corvel: unknown error\n";
  try {
    words = platform::ProgramArguments(count, arguments);
    return RunCommand(words);
  } catch (const std::bad_alloc&) {
    failure = "corvel: not enough memory\n";
  } catch (const std::exception& error) {
    const auto text = Printable(FromUtf8(error.what()), true);
    std::fprintf(stderr, "corvel: %s\n", ToUtf8(text).c_str());
    failure = "";
  } catch (...) {
  }
  std::fputs(failure, stderr);
  return ExitStatus::kNothingWritten;
}

}  // namespace

}  // namespace corvel::host

int main(int count, char** arguments) {
  platform::KeepStandardStreams();
  std::vector<corvel::WideString> words;
  const auto status = corvel::host::Run(count, arguments, words);
  corvel::host::TellEndToPrograms(words, status);
  return static_cast<int>(status);
}
