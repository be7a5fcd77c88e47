// Models in, one model out.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "core/document.h"
#include "core/text.h"
#include "host/exit_status.h"
#include "host/run_console.h"
#include "step/factories.h"

namespace corvel::host {

struct ModelOrder {
  std::vector<WideString> inputs;  // one: read and written back; several: folded into the first
  WideString output;
  bool ignoreEnumErrors = false;
};

// One run: it checks, reads every input, folds, writes, and tells how it ended. The log lies beside
// the first input while the run lasts, and stays if something was reported.
class ModelRun {
 public:
  // Borrows `console`.
  ModelRun(ModelOrder order, RunConsole& console);

  // Never throws but for a lack of memory that leaves no room to tell of it. Nothing of the models
  // is in memory afterwards, and no working file on the disk.
  ExitStatus Run();

 private:
  bool PathsAreGood();
  void OpenLog();
  void CloseLog();
  bool Write();
  bool ReleasesAgree();
  std::optional<SchemaNamespace> ReleaseOf(const WideString& path);
  bool ReadAll();
  bool Read(const WideString& path);
  bool Fold();
  bool Save();
  ExitStatus Conclude(bool written);

  ModelOrder order_;
  RunConsole& console_;
  std::vector<std::unique_ptr<IfcDocument>> documents_;
  bool logOpened_ = false;
};

}  // namespace corvel::host
