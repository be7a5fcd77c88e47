#include "host/diff/diff_run.h"

#include <exception>
#include <new>
#include <utility>
#include <vector>

#include "core/cancellation.h"
#include "host/diff/diff_text.h"
#include "host/diff/model_diff.h"
#include "host/display_text.h"
#include "host/header_look.h"
#include "host/hearing.h"
#include "host/reading_watch.h"
#include "host/run_checks.h"
#include "step/log/utilities.h"

namespace corvel::host::diff {

namespace {

constexpr int kReadingShare = 40;  // percent of the whole that one reading takes

class DiffRun {
 public:
  DiffRun(const DiffOrder& order, RunConsole& console, const TextSink& output)
      : order_(order),
        console_(console),
        output_(output),
        watch_(console, u"Comparing", kReadingShare) {
    MemoryReportOutput() = nullptr;  // standard output is for what is found
  }

  ExitStatus Run() {
    if (!InputsAreGood()) return ExitStatus::kNothingWritten;
    IfcDocument one(order_.ignoreEnumErrors, Hear, ReadingWatch::Tick);
    IfcDocument other(order_.ignoreEnumErrors, Hear, ReadingWatch::Tick);
    if (!Read(one, order_.before, 0) || !Read(other, order_.after, kReadingShare)) return Unread();
    constexpr double kMillimetre = 1e-3;
    const Tolerance tolerance{order_.toleranceMm * kMillimetre};
    const auto diff =
        CompareModels(one, other, tolerance, [this](int percent) { return Draw(percent); });
    if (!diff) return Unread();
    console_.EraseBars();
    const bool written = order_.json ? WriteDiffJson(*diff, order_.toleranceMm, output_)
                                     : WriteDiffText(*diff, order_.inColours, output_);
    if (!written) return ExitStatus::kNothingWritten;
    return diff->IsEmpty() ? ExitStatus::kDone : ExitStatus::kDifferent;
  }

 private:
  bool InputsAreGood() {
    bool good = true;
    for (const WideString* const path : {&order_.before, &order_.after}) {
      auto trouble = TroubleWithInput(*path);
      if (!trouble) trouble = LookAtHeader(*path, order_.tolerant).trouble;
      if (!trouble) continue;
      console_.Say(Printable(*path) + u": " + *trouble);
      good = false;
    }
    const auto trouble = TroubleWithWorkFolder(order_.workFolder);
    if (trouble) console_.Say(Printable(order_.workFolder) + u": " + *trouble);
    return good && !trouble;
  }

  bool Read(IfcDocument& document, const WideString& path, int startsAt) {
    watch_.StepBegins(u"Reading " + path, startsAt);
    std::vector<WideString> told;
    const Hearing hearing(told);
    if (order_.tolerant) document.ReadTolerantly();
    document.KeepWorkFileIn(order_.workFolder);
    document.threads = order_.threads;
    document.ReservePaths({order_.before, order_.after});
    constexpr int kOneFile = 1;
    document.OpenFile(path, kOneFile);
    SayAbout(path, told);
    SayAbout(path, document.Remarks());
    return document.IsParsed();
  }

  // A spoilt file has as much wrong with it as it has lines.
  void SayAbout(const WideString& path, const std::vector<WideString>& texts) {
    constexpr std::size_t kMost = 10;
    for (std::size_t i = 0; i < texts.size() && i < kMost; ++i) {
      console_.Say(Printable(path) + u": " + texts[i]);
    }
    if (texts.size() > kMost) {
      console_.Say(Printable(path) + u": and " + Widen(std::to_string(texts.size() - kMost)) +
                   u" more of such");
    }
  }

  bool Draw(int percent) {
    constexpr int kBothRead = 2 * kReadingShare;
    watch_.StepBegins(u"Comparing", kBothRead);
    return watch_.Draw(percent, kBothRead + percent * (100 - kBothRead) / 100) ||
           !console_.ShallEnd();
  }

  ExitStatus Unread() {
    const bool cancelled = console_.WasCancelled();
    console_.Say(cancelled ? u"Cancelled, nothing was compared." : u"Nothing was compared.");
    return cancelled ? ExitStatus::kCancelled : ExitStatus::kNothingWritten;
  }

  const DiffOrder& order_;
  RunConsole& console_;
  const TextSink& output_;
  ReadingWatch watch_;
};

}  // namespace

ExitStatus RunDiff(const DiffOrder& order, RunConsole& console, const TextSink& output) {
  DiffRun run(order, console, output);
  try {
    return run.Run();
  } catch (const std::bad_alloc&) {
    console.Say(u"Not enough memory for these models.");
  }
  return ExitStatus::kNothingWritten;
}

}  // namespace corvel::host::diff
