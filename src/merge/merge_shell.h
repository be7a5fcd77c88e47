// What a merge job needs of the shell around it: texts, dialogs, progress, options.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "core/reporting.h"
#include "core/text.h"
#include "merge/federation/choices.h"
#include "merge/federation/place/place_warning.h"
#include "merge/host_scene.h"
#include "merge/run_model.h"

namespace corvel {

class RunObserver;

// What the user chose in the options window and in config.txt.
struct MergeOptions {
  bool generateGuid = true;       // on a GUID that is there already: a new one, or skip the object
  bool remember = false;          // the choice above counts without being asked for
  bool ignoreUnits = false;       // files of other units take part
  bool ignoreEnumErrors = false;  // unknown enumeration values are replaced
  bool deleteOpenings = false;    // openings go with what they are in
  // Where the work files of the reading lie, without names; nothing: beside the inputs, as told at
  // IfcDocument. No choice of the window's.
  std::optional<WideString> workFolder{};
  // What a model holds that its release does not take is carried as it stands. No choice of the
  // window's either.
  bool tolerant = false;
  // Likewise.
  FederationChoices federation{};
  // Threads that read and write, that of the run among them; at least 1. What comes out is the same
  // for every number.
  unsigned threads = 1;
  // Everything is done but the writing, and nobody is asked for an output.
  bool isDryRun = false;
};

// What the save dialog starts with.
struct OutputSuggestion {
  WideString folder;     // with its separator at the end
  WideString name;       // without an extension
  WideString extension;  // of the first file, with its dot
};

// Called on the thread of the run alone. StartRun comes before OpenProgress and every report of
// the run, FinishRun last.
class MergeShell {
 public:
  virtual ~MergeShell() = default;

  // The localised text of a key; what it is for an unknown one is the shell's affair.
  virtual WideString Text(const char* key) = 0;
  // A box with the error icon, or another of the flags of the system's message box.
  virtual void ShowBox(const WideString& caption, const WideString& text, unsigned flags) = 0;
  // Asks where the output goes; false: the user thought better of it.
  virtual bool AskForOutput(const OutputSuggestion& suggestion) = 0;
  // The answer to that.
  virtual WideString OutputPath() = 0;
  // There is an output that the button for it may open.
  virtual void EnableOpenRecent() = 0;
  // Remembers the output for the button that opens it.
  virtual void RememberOutput(const WideString& path) = 0;

  // As they are now: the user may change them while a run asks.
  virtual MergeOptions Options() = 0;
  // Keeps them for the next start of the program.
  virtual void SaveOptions() = 0;
  // Takes the window off the screen, if it is open.
  virtual void HideOptionsWindow() = 0;

  // The reporter and the ticks that models and their merge are given. Neither is null; both may
  // wait for the user.
  virtual ErrorReporter Reporter() = 0;
  virtual ProgressCallback Ticks() = 0;

  // Who wants to hear of the run; borrowed, and null where nobody does. Asked once for a run.
  virtual RunObserver* Observer() { return nullptr; }

  // Nobody changes the scene or the options while the run lasts, and the scene minds no question:
  // what it is asked at the turn of a model it may be asked before.
  virtual bool SceneStandsStill() { return false; }

  // All models have been read and measured by the first one. For shells that have a use for it.
  virtual void TellModelsCompared(const std::vector<RunModel>& /*models*/) {}

  // Which models the map places badly or not at all. Only where models are placed by it.
  virtual void TellPlaces(const std::vector<PlaceWarning>& /*warnings*/) {}

  // Forgets errors and cancels of an earlier run.
  virtual void StartRun() = 0;
  // Closes the progress dialog, ends the log and offers it if something was reported.
  virtual void FinishRun() = 0;
  // Before the first tick.
  virtual void OpenProgress(const WideString& title) = 0;
  virtual void SetOverallText(const WideString& text) = 0;
  virtual void SetCurrentText(const WideString& text) = 0;
  // Puts ": " and the name of the file behind the current text.
  virtual void SetCurrentFile(const WideString& path) = 0;
  // What the stage before was worth is done; the next one is worth `weight` percent.
  virtual void StartStage(int weight) = 0;
  // The same with all that is left.
  virtual void StartLastStage() = 0;
  // Texts and stages as at the start; the dialog stays open.
  virtual void ResetProgress() = 0;
};

}  // namespace corvel
