// The log of one merge: a text file beside the first model, or where the host wants it.
//
// The file is UTF-8. LogText ends no line, so stage texts run on until a LogLine ends them; indents
// are tabs. No operation throws: trouble with the file is told in message boxes.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "core/text.h"
#include "step/log/log_place.h"
#include "step/streams/output_log_file_stream.h"

namespace corvel {

// For one thread, as everything in the engine.
class IfcLog {
 public:
  // The process-wide log. Tests make their own.
  static IfcLog& Instance();

  IfcLog();
  ~IfcLog();
  IfcLog(const IfcLog&) = delete;
  IfcLog& operator=(const IfcLog&) = delete;

  // From the next Open on the log goes to `place`, and is held back in memory until KeepFile: a run
  // with nothing to tell makes no file. Nothing: beside the model, from the start.
  void SetPlace(std::optional<LogPlace> place) { place_ = std::move(place); }

  // Starts the log of the model at `path` with a line of date and time; goes on with the log that
  // is there already, reopening it if a failed write closed it. Unmutes. Without a file that can be
  // made, all other operations do nothing.
  void Open(const WideString& path);
  // Closes the file and forgets the stream, and what was held back; Path stays.
  void Close();
  // There is something to tell: what was held back becomes a file, and so does all that follows.
  // Does nothing for a log that is a file already, or was given up.
  void KeepFile();
  // Close, and the file goes: with a place only one that KeepFile has made.
  void Discard();

  // The indent and `message`, with no line end. Costs one test while muted.
  void LogText(WideView message) {
    if (!muted_) Append(message, {}, false);
  }
  // The indent, `message` and CR LF; `indentAfter` adds a tab to the indent of what follows.
  void LogLine(WideView message, bool indentAfter = false) {
    if (!muted_) Append(message, u"\r\n", indentAfter);
  }
  // Takes the last tab off the indent.
  void EndBlock();
  // One call in 101 writes `Reading entity: #` and the number, with no indent and no line end.
  void LogReadingEntity(std::uint32_t marker) {
    if (!muted_) CountReadingEntity(marker);
  }
  // Hands all that was logged to the system, where readers see it.
  void Flush();

  // While muted, nothing is logged, and Flush does nothing.
  bool IsMuted() const { return muted_; }
  void SetMuted(bool muted) { muted_ = muted; }
  // Flush after every call that logs.
  bool FlushesEveryLine() const { return flushEveryLine_; }
  void SetFlushEveryLine(bool flush) { flushEveryLine_ = flush; }

  // True while there is a file to log to.
  bool HasStream() const { return stream_ != nullptr; }
  // Path of the log file of the last Open; with a place it is empty unless there is a file.
  const WideString& Path() const { return path_; }
  // Number of the last "Reading entity: #" text if nothing was logged since.
  const WideString& LastMarkerText() const { return lastMarkerText_; }

 private:
  void Append(WideView message, WideView lineEnd, bool indentAfter);
  void CountReadingEntity(std::uint32_t marker);
  void Write(const std::string& bytes);
  void StartHeldBack();
  bool IsReady();
  static std::string DateLine();
  template <class WriteBytes>
  void Guarded(WriteBytes writeBytes);

  std::optional<LogPlace> place_;
  std::optional<std::string> heldBack_;  // bytes of a log that is no file yet
  WideString path_;
  WideString indent_;
  std::unique_ptr<FileStream::OutputLogFileStream> stream_;
  WideString lastMarkerText_;
  std::string line_;  // kept for its storage
  bool flushEveryLine_ = false;
  bool muted_ = false;
  std::uint32_t readingCalls_ = 0;
};

// Lets the log write for a while, muted or not, and puts the muting back.
class LogUnmuted {
 public:
  explicit LogUnmuted(IfcLog& log) : log_(log), wasMuted_(log.IsMuted()) { log_.SetMuted(false); }
  ~LogUnmuted() { log_.SetMuted(wasMuted_); }
  LogUnmuted(const LogUnmuted&) = delete;
  LogUnmuted& operator=(const LogUnmuted&) = delete;

 private:
  IfcLog& log_;
  bool wasMuted_;
};

// Path of the log of a model: its own path with "_IFC_LOG.txt" in the place of the extension, and
// appended to a name without one. For `archive|entry` the log lies beside the archive and has the
// last part of the entry's name.
WideString LogPathOf(WideView modelPath);

}  // namespace corvel
