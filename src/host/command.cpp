#include "host/command.h"

#include <utility>

#include "core/shown_paths.h"
#include "host/check/check_report.h"
#include "host/check/check_run.h"
#include "host/command_line.h"
#include "host/diff/diff_run.h"
#include "host/display_text.h"
#include "host/dry_run_text.h"
#include "host/facts/read_model_facts.h"
#include "host/file_facts.h"
#include "host/file_names.h"
#include "host/info_text.h"
#include "host/model_run.h"
#include "host/piped_files.h"
#include "host/run_console.h"
#include "host/savings.h"
#include "host/tree_command.h"
#include "platform/console.h"
#include "platform/locked_file.h"
#include "platform/threads.h"
#include "step/log/utilities.h"

namespace corvel::host {

namespace {

bool Tell(WideView text) { return platform::WriteStandardOutput(WithShownPaths(text)); }

constexpr ExitStatus Status(bool good) {
  return good ? ExitStatus::kDone : ExitStatus::kNothingWritten;
}

ExitStatus RunModels(const CommandLine& line) {
  platform::SetDialogs(platform::Dialogs::kTerminal);
  platform::SetAnswerPolicy(line.answer);
  platform::CatchInterrupts();
  RunConsole console(RunConsole::StandardError(!line.quiet, line.progressIsJson));
  const ModelOrder order{line.inputs,
                         line.output,
                         line.choices,
                         line.command == Command::kExtract,
                         line.userFolder,
                         line.workFolder.value_or(platform::SystemTemporaryFolder()),
                         line.log,
                         line.answer.has_value(),
                         line.outputIsPiped ? u"standard output" : WideString(),
                         NameOf(line.command),
                         line.isDryRun,
                         line.reports};
  ModelRun run(order, console);
  const ExitStatus status = run.Run();
  if (line.isDryRun) {
    const bool isTold =
        run.Report() == nullptr || run.Report()->inputs.empty() || Tell(DryRunText(*run.Report()));
    return isTold ? status : ExitStatus::kNothingWritten;
  }
  if (line.quiet || line.outputIsPiped) return status;
  if (status == ExitStatus::kDone) {
    Tell(Printable(line.output) + u" was written.\n");
  }
  if (line.command == Command::kOptimise && run.Result().written) {
    Tell(SavingsAsText({run.Result().recordsRead, run.Result().recordsWritten},
                       {BytesOfModel(line.inputs.front()), BytesOfModel(line.output)}));
  }
  return status;
}

// Shows a file as soon as it is read; programs get all files in one object at the end.
ExitStatus RunInfo(const CommandLine& line) {
  RunConsole console(RunConsole::StandardError(false));
  MemoryReportOutput() = nullptr;  // standard output is for what files hold
  bool good = true;
  std::vector<FileFacts> files;
  for (const WideString& path : line.inputs) {
    FileFacts facts = ReadFacts(path, line.choices.tolerant);
    if (!line.quick && facts.schema && facts.problems.empty()) {
      facts.model =
          ReadModelFacts(path, line.workFolder.value_or(platform::SystemTemporaryFolder()));
    }
    for (const WideString& problem : facts.problems)
      console.Say(Printable(path).append(u": ").append(problem));
    good = good && facts.problems.empty();
    if (line.json) {
      files.push_back(std::move(facts));
    } else if (facts.bytes != 0) {
      good = Tell(FactsAsText(facts)) && good;
    }
  }
  if (line.json) good = Tell(FromUtf8(FactsAsJson(files))) && good;
  return Status(good);
}

// Standard output in large pieces.
class BlockOutput {
 public:
  bool Write(WideView text) {
    constexpr std::size_t kBlock = 0x10000;
    block_.append(text);
    return block_.size() < kBlock || Flush();
  }
  bool Flush() {
    good_ = good_ && Tell(block_);
    block_.clear();
    return good_;
  }

 private:
  WideString block_;
  bool good_ = true;
};

ExitStatus RunTree(const CommandLine& line) {
  RunConsole console(RunConsole::StandardError(false));
  TreeOrder order;
  order.path = line.inputs.front();
  order.choice = line.tree;
  order.tolerant = line.choices.tolerant;
  order.json = line.json;
  order.workFolder = line.workFolder.value_or(platform::SystemTemporaryFolder());
  BlockOutput output;
  const ExitStatus status =
      RunTree(order, console, [&](WideView text) { return output.Write(text); });
  return output.Flush() ? status : ExitStatus::kNothingWritten;
}

ExitStatus RunDiff(const CommandLine& line) {
  platform::SetDialogs(platform::Dialogs::kTerminal);
  platform::SetAnswerPolicy(line.answer);
  platform::CatchInterrupts();
  RunConsole console(RunConsole::StandardError(!line.quiet));
  diff::DiffOrder order;
  order.before = line.inputs[0];
  order.after = line.inputs[1];
  order.toleranceMm = line.toleranceMm;
  order.ignoreEnumErrors = line.choices.ignoreEnumErrors;
  order.tolerant = line.choices.tolerant;
  order.json = line.json;
  order.inColours = platform::CanColourOutput();
  order.threads = line.choices.threads.value_or(platform::UsableCores());
  order.workFolder = line.workFolder.value_or(platform::SystemTemporaryFolder());
  BlockOutput output;
  const ExitStatus status =
      diff::RunDiff(order, console, [&](WideView text) { return output.Write(text); });
  return output.Flush() ? status : ExitStatus::kNothingWritten;
}

ExitStatus Explain(const std::string& name) {
  if (const Rule* const rule = FindRule(name)) {
    return Status(Tell(ExplanationOf(*rule)));
  }
  RunConsole(RunConsole::StandardError(false))
      .Say(u"check: there is no rule '" + FromUtf8(name) + u"'. There are:\n" + ListOfRules());
  return ExitStatus::kWrongUsage;
}

ExitStatus RunCheck(const CommandLine& line) {
  if (line.explain) return Explain(*line.explain);
  platform::SetDialogs(platform::Dialogs::kTerminal);
  platform::SetAnswerPolicy(line.answer);
  platform::CatchInterrupts();
  RunConsole console(RunConsole::StandardError(!line.quiet));
  const CheckRunOrder order{line.inputs,
                            line.against,
                            line.json,
                            platform::CanColourOutput(),
                            line.workFolder.value_or(platform::SystemTemporaryFolder()),
                            line.reports};
  BlockOutput output;
  const ExitStatus status =
      RunCheck(order, console, [&output](WideView text) { return output.Write(text); });
  return output.Flush() ? status : ExitStatus::kNothingWritten;
}

ExitStatus RunOnFiles(const CommandLine& line) {
  switch (line.command) {
    case Command::kInfo: return RunInfo(line);
    case Command::kTree: return RunTree(line);
    case Command::kDiff: return RunDiff(line);
    case Command::kCheck: return RunCheck(line);
    case Command::kMerge:
    case Command::kExtract:
    case Command::kResave:
    case Command::kOptimise: break;
  }
  return RunModels(line);
}

ExitStatus RunInPipes(CommandLine line) {
  const auto say = [](WideView text) { RunConsole(RunConsole::StandardError(false)).Say(text); };
  platform::CatchInterrupts();
  PipedFiles pipes;
  if (const auto trouble = pipes.TakeFor(line)) {
    say(trouble->empty() ? WideString(u"Cancelled, nothing was read.") : *trouble);
    return trouble->empty() ? ExitStatus::kCancelled : ExitStatus::kNothingWritten;
  }
  const ExitStatus status = RunOnFiles(line);
  const bool isWritten = status == ExitStatus::kDone || status == ExitStatus::kWrittenWithReports;
  if (!isWritten || pipes.SendOutput()) return status;
  say(u"standard output did not take the whole model");
  return ExitStatus::kNothingWritten;
}

ExitStatus Run(const CommandLine& line) {
  return PipedFiles::AreIn(line) ? RunInPipes(line) : RunOnFiles(line);
}

ExitStatus Run(const Explanation& explanation) { return Status(Tell(explanation.text)); }

ExitStatus Run(const UsageError& error) {
  RunConsole(RunConsole::StandardError(false)).Say(error.text);
  return ExitStatus::kWrongUsage;
}

// As it is written, whether the rest is understood or not.
bool AsksForProgressAsJson(const std::vector<WideString>& arguments) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == u"--progress=json") return true;
    if (arguments[i] == u"json" && i != 0 && arguments[i - 1] == u"--progress") return true;
  }
  return false;
}

}  // namespace

void TellEndToPrograms(const std::vector<WideString>& arguments, ExitStatus status) {
  if (!AsksForProgressAsJson(arguments)) return;
  RunConsole(RunConsole::StandardError(false, true)).TellEnd(static_cast<int>(status));
}

ExitStatus RunCommand(const std::vector<WideString>& arguments) {
  return std::visit([](const auto& order) { return Run(order); },
                    ParseCommandLine(arguments, FindFiles));
}

}  // namespace corvel::host
