#include "step/log/ifc_log.h"

#include <cstdio>
#include <stdexcept>

#include "core/shown_paths.h"
#include "platform/file.h"
#include "platform/platform.h"
#include "step/streams/input_stream.h"

namespace corvel {

namespace {

// Calls of LogReadingEntity that write nothing, between two that do.
constexpr std::uint32_t kSilentReadingCalls = 100;

void ShowBox(WideView title, WideView text) {
  platform::Get().ShowMessageBox(title, text, platform::Buttons::kOk, platform::Icon::kError);
}

// The log of this run exists before anybody could race for it.
[[maybe_unused]] const IfcLog& startedEarly = IfcLog::Instance();

}  // namespace

WideString LogPathOf(WideView modelPath) {
  WideString path(modelPath);
  if (const std::size_t bar = path.find(u'|'); bar != WideString::npos) {
    path.resize(platform::FindLastSeparator(modelPath.substr(0, bar)) + 1);
    path += platform::FileNameOf(modelPath.substr(bar + 1));
  }
  const std::size_t nameStart = platform::FindLastSeparator(path) + 1;
  const std::size_t dot = path.rfind(u'.');
  if (dot != WideString::npos && dot >= nameStart) path.erase(dot);
  return path + u"_IFC_LOG.txt";
}

IfcLog& IfcLog::Instance() {
  static IfcLog log;
  return log;
}

// The stream's boxes must outlive the log, so the system's implementation is made first.
IfcLog::IfcLog() { platform::System(); }

IfcLog::~IfcLog() = default;

void IfcLog::Open(const WideString& path) {
  muted_ = false;
  if (stream_ != nullptr) {
    if (!stream_->IsOpen()) stream_->Reopen();
    return;
  }
  if (heldBack_) return;  // goes on with it, as with a file
  if (place_) return StartHeldBack();
  path_ = LogPathOf(path);
  auto stream = std::make_unique<FileStream::OutputLogFileStream>(path_);
  if (!stream->IsOpen()) {
    ShowBox(u"Log file error", u"Could not create log file: " + path_);
    return;
  }
  stream_ = std::move(stream);
  Guarded([this] {
    stream_->WriteNarrowString(DateLine());
    stream_->Commit();
  });
}

void IfcLog::StartHeldBack() {
  path_.clear();
  heldBack_ = DateLine();
}

std::string IfcLog::DateLine() {
  const platform::LocalTime now = platform::Get().Now();
  char text[96];
  const int length = std::snprintf(text, sizeof text, "[%02d-%02d-%d    %02d:%02d:%02d]\r\n",
                                   now.day, now.month, now.year, now.hour, now.minute, now.second);
  return {text, static_cast<std::size_t>(length)};
}

void IfcLog::KeepFile() {
  if (!heldBack_) return;
  // Taken out first: a log that is refused its place is given up, and holds nothing back any more.
  const std::string bytes = *std::exchange(heldBack_, std::nullopt);
  const WideString path = FreeLogPath(place_->path);
  if (!MakeLogFile(path)) {
    if (place_->refused) place_->refused(path);
    return;
  }
  auto stream = std::make_unique<FileStream::OutputLogFileStream>(path);
  if (!stream->IsOpen()) return;
  path_ = path;
  stream_ = std::move(stream);
  Write(bytes);
}

void IfcLog::Close() {
  heldBack_.reset();
  if (stream_ != nullptr) stream_->Close();
  stream_.reset();
}

void IfcLog::Discard() {
  Close();
  if (!path_.empty()) platform::RemoveFile(path_);
}

void IfcLog::Append(WideView message, WideView lineEnd, bool indentAfter) {
  lastMarkerText_.clear();
  if (!IsReady()) return;
  line_.clear();
  AppendUtf8(indent_, line_);
  AppendUtf8(WithShownPaths(message), line_);
  AppendUtf8(lineEnd, line_);
  if (indentAfter) indent_.push_back(u'\t');
  Write(line_);
}

void IfcLog::Write(const std::string& bytes) {
  if (heldBack_) {
    heldBack_->append(bytes);
    return;
  }
  Guarded([&] {
    stream_->WriteNarrowString(bytes);
    if (flushEveryLine_) stream_->Commit();
  });
}

void IfcLog::EndBlock() {
  const std::size_t tab = indent_.rfind(u'\t');
  indent_.erase(tab == WideString::npos ? 0 : tab);
}

void IfcLog::CountReadingEntity(std::uint32_t marker) {
  if (readingCalls_ < kSilentReadingCalls) {
    ++readingCalls_;
    return;
  }
  readingCalls_ = 0;
  if (!IsReady()) return;
  lastMarkerText_ = ToWide(marker);
  Write(ToUtf8(u"Reading entity: #" + lastMarkerText_));
}

void IfcLog::Flush() {
  if (!muted_ && !heldBack_ && IsReady()) stream_->Commit();
}

// A stream that a failed write has closed is told once and given up.
bool IfcLog::IsReady() {
  if (heldBack_) return true;
  if (stream_ == nullptr) return false;
  if (stream_->IsOpen()) return true;
  ShowBox(u"IFC lib", u"LogFile is closed.");
  stream_.reset();
  return false;
}

// A log that cannot be written must not end the work that it tells of.
template <class WriteBytes>
void IfcLog::Guarded(WriteBytes writeBytes) {
  try {
    writeBytes();
  } catch (const std::runtime_error&) {
    FileStream::ShowLogfileError("", u"Could not write to file", kReportShow);
  }
}

}  // namespace corvel
