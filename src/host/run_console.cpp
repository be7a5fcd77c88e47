#include "host/run_console.h"

#include <algorithm>
#include <string>
#include <utility>

#include "core/cancellation.h"
#include "core/shown_paths.h"
#include "host/display_text.h"
#include "platform/console.h"
#include "platform/terminal.h"

namespace corvel::host {

namespace {

WideView WithoutBlankEnd(WideView text) {
  while (!text.empty() && (text.back() == u'\n' || text.back() == u' ')) text.remove_suffix(1);
  return text;
}

}  // namespace

RunConsole::Output RunConsole::StandardError(bool mayDraw, bool tellsPrograms) {
  return {[](WideView text) { platform::WriteStandardError(WithShownPaths(text)); },
          [] { return platform::TerminalColumns(); },
          mayDraw && !tellsPrograms && platform::CanDrawOnTerminal(), tellsPrograms};
}

RunConsole::RunConsole(Output output)
    : output_(std::move(output)),
      bars_(output_.write, output_.columns),
      platform_({[this](platform::Buttons buttons, platform::Icon icon) {
                   return BeforeBox(buttons, icon);
                 },
                 [this](platform::Buttons buttons, platform::Answer answer, bool byAPerson) {
                   AfterBox(buttons, answer, byAPerson);
                 }}) {}

void RunConsole::Say(WideView text) {
  bars_.Erase();
  output_.write(u"corvel: " + Printable(WithoutBlankEnd(text), true) + u"\n");
}

bool RunConsole::Draw(const ProgressView& view) {
  constexpr int kMost = 99;
  const int overall = std::min(view.overall, kMost);
  if (output_.drawsBars) {
    // Names are settled before the bars find out what fits.
    bars_.Draw({overall, view.step, WithShownPaths(view.overallText) + pace_.Text(overall),
                WithShownPaths(view.stepText)});
  }
  const ProgressView shown = {overall, view.step, view.overallText, view.stepText};
  if (output_.tellsPrograms && shown != told_) {
    told_ = shown;
    output_.write(ProgressAsJson(shown, pace_.Seconds(), pace_.SecondsLeft(overall)) + u"\n");
  }
  return !cancelConfirmed_ && !platform::IsInterrupted();
}

void RunConsole::StartClock(std::int64_t bytes) { pace_ = RunPace(bytes); }

void RunConsole::TellEnd(int status) {
  if (!output_.tellsPrograms) return;
  output_.write(u"{\"event\":\"end\",\"status\":" + Widen(std::to_string(status)) + u"}\n");
}

bool RunConsole::ShallEnd() {
  return cancelConfirmed_ || (platform::IsInterrupted() && Cancellation::OfProcess().Ask());
}

// Nobody is there any more to be asked.
bool RunConsole::EndsAsRequested() {
  const WideView request = platform::RequestToEnd();
  if (request.empty()) return false;
  if (!cancelConfirmed_) Say(u"Asked to end by " + WideString(request) + u".");
  cancelConfirmed_ = true;
  return true;
}

// The log question is the one yes/no box that only informs. Whoever has stopped the run is not
// asked again by the loops that are still winding down.
std::optional<platform::Answer> RunConsole::BeforeBox(platform::Buttons buttons,
                                                      platform::Icon icon) {
  if (buttons == platform::Buttons::kYesNo) {
    if (icon == platform::Icon::kInformation) {
      logOffered_ = true;
      return platform::Answer::kNo;
    }
    if (cancelConfirmed_ || EndsAsRequested()) return platform::Answer::kYes;
  }
  if (holdsBackBoxes_ && buttons == platform::Buttons::kOk) return platform::Answer::kOk;
  bars_.Erase();
  return {};
}

void RunConsole::AfterBox(platform::Buttons buttons, platform::Answer answer, bool byAPerson) {
  if (buttons != platform::Buttons::kYesNo) return;
  if (!byAPerson && EndsAsRequested()) return;
  if (!byAPerson) {
    Say(answer == platform::Answer::kYes ? u"Yes, as nobody is asked."
                                         : u"No, as nobody is asked.");
  }
  if (answer == platform::Answer::kYes) {
    cancelConfirmed_ = true;
    stoppedUnasked_ = !byAPerson && !platform::IsInterrupted();
  } else {
    platform::ForgetInterrupt();
  }
}

}  // namespace corvel::host
