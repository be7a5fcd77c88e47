// "-" among the files of a command: standard input and standard output.
#pragma once

#include <optional>

#include "core/text.h"
#include "host/command_line.h"

namespace corvel::host {

// What comes through a pipe is kept as a file until the command has ended, since models are read
// twice and written in one piece. The files lie in a folder of their own in the work folder, and go
// with this.
class PipedFiles {
 public:
  PipedFiles() = default;
  ~PipedFiles();
  PipedFiles(const PipedFiles&) = delete;
  PipedFiles& operator=(const PipedFiles&) = delete;

  static bool AreIn(const CommandLine& line);
  // Puts files in the place of each "-", and reads standard input to its end if it is one of them.
  // What it begins with tells a packed model from a plain one. Nothing, or why that cannot be; an
  // empty text where the user, or who ended the session, wanted an end.
  std::optional<WideString> TakeFor(CommandLine& line);
  // Sends the output, if that is one of them and is there. False when it could not be sent whole.
  bool SendOutput();

 private:
  bool MakeFolder(const WideString& workFolder);
  // Where what is called `name` lies meanwhile.
  WideString FileFor(WideView ending, const WideString& name) const;
  std::optional<WideString> Spool(WideString& input);

  WideString folder_;
  WideString output_;
};

}  // namespace corvel::host
