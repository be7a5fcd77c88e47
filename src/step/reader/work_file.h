// Where the file of the records that wait for the second pass lies.
//
// Beside the input, under its name with the ending "_TEMP.ifc", where it stays and is overwritten
// by the next reading; or without a name in a folder of the host's choice, where it is gone as soon
// as the reading ends.
#pragma once

#include <optional>
#include <vector>

#include "core/text.h"
#include "platform/file.h"
#include "step/streams/input_stream.h"

namespace corvel {

struct WorkFileRules {
  // The inputs and the output of the run, which the file beside the input never takes the place of.
  std::vector<WideString> reserved;
  // Nothing: beside the input.
  std::optional<WideString> folder;
};

struct WorkFile {
  platform::File file;  // empty, for writing and reading; not open when it cannot be had
  WideString path;      // of the file; its folder when it has no name
  bool hasName = true;
};

// Opens the work file for `input`, which has been opened as `inputPath`, locked against other
// readings. Whatever looks like a model keeps its place, and so does what another reading has
// locked: the next number is taken then. Anything else in the way (no right to write, a folder, a
// link, a pipe, a device) leaves `file` closed. Nothing is reported: the one who saves does that.
WorkFile OpenWorkFile(const WideString& inputPath, const FileStream::InputStream& input,
                      const WorkFileRules& rules);

}  // namespace corvel
