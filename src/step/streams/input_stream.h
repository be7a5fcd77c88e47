// Byte streams under the scanner.
//
// Two ways to read stand side by side: the virtual operations, one byte or block a call, and the
// window, which lets the scanner run over the buffer without a call per byte. Both move the same
// position, and both count towards the statement text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/reporting.h"
#include "core/text.h"
#include "step/streams/model_form.h"

namespace FileStream {

class InputStream {
 public:
  InputStream(const InputStream&) = delete;
  InputStream& operator=(const InputStream&) = delete;

  // Up to `count` bytes into `destination`; gives how many. They do not enter the statement text.
  virtual std::size_t Read(void* destination, std::size_t count) = 0;
  // The next byte as a signed char, -1 at the end (a byte of 255 looks the same).
  virtual int PeekChar() = 0;
  // The next byte as a signed char, and moves on; refills when the window is used up. -1 at the end
  // of the data, 0 when the stream is closed.
  virtual int GetChar();
  // Every byte delivered by GetChar or through the window since ClearStatementText, as a copy. All
  // of it is held in memory, so that long runs over the data clear it on the way.
  virtual std::string StatementText() const;
  // Frees the buffers; again, does nothing. 0, or what the system or the library calls the failure.
  virtual int Close() = 0;
  virtual bool IsOpen() const = 0;
  // The buffer is used up and the last refill found the end of the data.
  virtual bool IsEof() const = 0;
  // Offset of the next byte in the whole data, -1 when closed.
  virtual std::int64_t Position() const = 0;
  // Moves to the next entry of an archive; -1 on a plain file.
  virtual int NextEntry() = 0;
  // Size of the whole data in bytes, -1 when it cannot be told. May look at the disk.
  virtual std::int64_t TotalSize() const = 0;
  // What came is not all that was written, or not as it was: the disk or the data's own checks say
  // so, or there was no memory to read it into. The stream has reported it.
  virtual bool IsDamaged() const = 0;
  virtual ~InputStream() = default;

  // --- The window -------------------------------------------------------------------------------
  // Bytes [Cursor(), WindowEnd()) are buffered and unread. Consume by SetCursor.
  const char* Cursor() const { return cursor_; }
  const char* WindowEnd() const { return windowEnd_; }
  void SetCursor(const char* position) { cursor_ = position; }
  // Call only with Cursor() == WindowEnd(). True: at least one new byte is in the window. False:
  // end of data or closed. Pointers into the old window are void afterwards; the consumed part of
  // the statement text is kept.
  bool Refill();

  // True: there is a next byte, at the cursor. False: as for Refill.
  bool HasByte() { return cursor_ != windowEnd_ || Refill(); }

  // The statement text without a copy where it lies in one piece. Void after the next call of any
  // operation that moves on.
  std::string_view StatementView();

  // Bytes of the statement text.
  std::size_t StatementSize() const {
    return carriedText_.size() + static_cast<std::size_t>(cursor_ - statementStart_);
  }
  // Forgets the statement text: it starts anew at the cursor.
  void ClearStatementText() {
    carriedText_.clear();
    statementStart_ = cursor_;
  }
  // Moves back behind the first `kept` bytes of the statement text, at most StatementSize(): the
  // others come once more. For those who read by the window alone.
  void Rewind(std::size_t kept);
  // Forgets all but the first `kept` bytes of the statement text; `text` comes next, in their
  // place. For those who read by the window alone. Costs no more than `text` is long.
  // `tells`: see HoldReports.
  void Replace(std::size_t kept, std::string text, bool tells = false);

  // For those who read ahead: from now on what the stream has to report waits until TellHeld is
  // called, or until a text is used up that Replace has been given with `tells`.
  void HoldReports() { holdsReports_ = true; }
  bool HasHeldReport() const { return !heldReports_.empty(); }
  // Reports what waits, if anything does; nothing is held back any more.
  void TellHeld();
  // True when the last byte delivered was a ";".
  bool LastWasSemicolon() const {
    return cursor_ != deliveredStart_ ? cursor_[-1] == ';' : keptSemicolon_;
  }

  // See ExtensionOf.
  const corvel::WideString& Extension() const { return extension_; }
  // The path up to the "|", or the whole path.
  const corvel::WideString& ContainerPath() const { return containerPath_; }
  // The part behind the "|" of an entry of a container; empty otherwise.
  const corvel::WideString& EntryName() const { return entryName_; }

 protected:
  InputStream(const corvel::WideString& path, corvel::ErrorReporter showError);

  // Brings the next block: sets the window by SetWindow. False: nothing more.
  virtual bool FillWindow() = 0;
  void SetWindow(const char* begin, const char* end) {
    cursor_ = statementStart_ = deliveredStart_ = begin;
    windowEnd_ = end;
  }
  // Bytes that were brought and not yet taken.
  std::int64_t Unread() const;
  // To the reporter, if there is one, as something to be shown.
  void Tell(const corvel::WideString& message);
  // Empties the window, whose bytes may then go; what was consumed of it is kept, or the whole
  // statement text is given up when there is no memory for it.
  void DropWindow() noexcept;
  void ForgetSemicolon() {
    deliveredStart_ = cursor_;
    keptSemicolon_ = false;
  }
  // Moves over `count` bytes of the window that Read hands out: they neither enter the statement
  // text nor count for LastWasSemicolon.
  void SkipUncounted(std::size_t count);

  corvel::WideString extension_;
  corvel::WideString containerPath_;
  corvel::WideString entryName_;
  corvel::ErrorReporter showError_ = nullptr;

 private:
  // A text that comes next, and the window that it has interrupted.
  struct Interruption {
    std::string text;
    const char* cursor = nullptr;
    const char* windowEnd = nullptr;
    bool tells = false;                   // behind its end
    std::unique_ptr<Interruption> outer;  // whose text that window is; null: none
  };

  const char* cursor_ = nullptr;
  const char* windowEnd_ = nullptr;
  // Copies what was consumed since the last call out of the window.
  void KeepConsumed();
  void Interrupt(std::string text, bool tells);

  const char* statementStart_ = nullptr;
  const char* deliveredStart_ = nullptr;  // bytes from here to the cursor were all delivered
  std::string carriedText_;               // statement text that is no longer in the window
  bool holdsReports_ = false;
  std::vector<corvel::WideString> heldReports_;
  bool keptSemicolon_ = false;                  // LastWasSemicolon as of deliveredStart_
  std::unique_ptr<Interruption> interruption_;  // null but for a while behind Rewind and Replace
};

}  // namespace FileStream
