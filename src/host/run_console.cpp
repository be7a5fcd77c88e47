#include "host/run_console.h"

#include <utility>

#include "host/display_text.h"
#include "host/texts.h"
#include "platform/console.h"
#include "platform/terminal.h"
#include "step/log/ifc_log.h"

namespace corvel::host {

namespace {

RunConsole* alive = nullptr;

bool StartsWithPunctuation(WideView text) {
  return !text.empty() && WideView(u".:,;").find(text.front()) != WideView::npos;
}

// The text of the key in front of the message, as people read it.
WideString Joined(WideView subject, WideView message) {
  while (!message.empty() && message.front() == u' ') message.remove_prefix(1);
  WideString joined(subject);
  if (!joined.empty() && !message.empty() && !StartsWithPunctuation(message)) joined += u' ';
  return joined.append(message);
}

WideView WithoutBlankEnd(WideView text) {
  while (!text.empty() && (text.back() == u'\n' || text.back() == u' ')) text.remove_suffix(1);
  return text;
}

}  // namespace

RunConsole::Output RunConsole::StandardError(bool mayDraw) {
  return {[](WideView text) { platform::WriteStandardError(text); },
          [] { return platform::TerminalColumns(); }, mayDraw && platform::CanDrawOnTerminal()};
}

RunConsole::RunConsole(Output output)
    : output_(std::move(output)),
      bars_(output_.write, output_.columns),
      platform_({[this](platform::Buttons buttons) { return BeforeBox(buttons); },
                 [this](platform::Buttons buttons, platform::Answer answer, bool byAPerson) {
                   AfterBox(buttons, answer, byAPerson);
                 }}) {
  alive = this;
  CancelTexts& texts = SharedCancelTexts();
  texts.question = TextOf("continue_question");
  texts.prompt = TextOf("progress_bar_cancel_message");
  texts.caption = TextOf("btnCancelName");
}

RunConsole::~RunConsole() { alive = nullptr; }

int RunConsole::Reporter(const char* key, const WideString& message, int mode) {
  return alive == nullptr ? 0 : alive->Report(key, message, mode);
}

bool RunConsole::Ticks(int value, int stageWeight, const WideString* extraText, bool exactMode,
                       int maximum) {
  return alive == nullptr || alive->Tick(value, stageWeight, extraText, exactMode, maximum);
}

int RunConsole::Report(std::string_view key, const WideString& message, int mode) {
  ++reportCount_;
  const WideString subject = key.empty() ? WideString() : TextOf(key);
  IfcLog& log = IfcLog::Instance();
  {
    const LogUnmuted unmuted(log);
    log.LogText(subject.empty() ? message : subject + u" " + message);
  }
  const WideString shown = Joined(subject, message);
  if (mode == kReportCollect && log.HasStream()) {
    pending_.append(WithoutBlankEnd(shown)).push_back(u'\n');
    return 0;
  }
  if (mode != kReportShow && log.HasStream()) return 0;
  const WideString all = std::exchange(pending_, {}) + shown;
  if (CancelMode() == 0 || CancelMode() == 2) Show(all);
  return 0;
}

void RunConsole::Show(WideView text) {
  WideString line = fileAtWork_.empty() ? WideString() : fileAtWork_ + u": ";
  Say(line.append(text));
}

void RunConsole::Say(WideView text) {
  bars_.Erase();
  output_.write(u"corvel: " + Printable(WithoutBlankEnd(text), true) + u"\n");
}

bool RunConsole::Tick(int value, int stageWeight, const WideString* extraText, bool exactMode,
                      int maximum) {
  const ProgressView view = progress_.Tick(value, stageWeight, extraText, exactMode, maximum);
  if (output_.drawsBars) bars_.Draw(view);
  if (platform::IsInterrupted()) cancelAsked_ = true;
  return !WasCancelled();
}

// Whoever has stopped the run is not asked again by the loops that are still winding down.
std::optional<platform::Answer> RunConsole::BeforeBox(platform::Buttons buttons) {
  if (buttons == platform::Buttons::kYesNo && cancelConfirmed_) return platform::Answer::kYes;
  bars_.Erase();
  return {};
}

// An automatic Yes behind bad data is no wish of the user.
void RunConsole::AfterBox(platform::Buttons buttons, platform::Answer answer, bool byAPerson) {
  if (buttons != platform::Buttons::kYesNo) return;
  if (!byAPerson) {
    Say(answer == platform::Answer::kYes ? u"Yes, as nobody is asked."
                                         : u"No, as nobody is asked.");
  }
  if (answer == platform::Answer::kYes) {
    cancelConfirmed_ = cancelAsked_ || byAPerson;
  } else {
    platform::ForgetInterrupt();
    cancelAsked_ = false;
  }
}

}  // namespace corvel::host
