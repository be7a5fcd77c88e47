// The user and the system around the library: who answers its boxes, what opens its documents, and
// the clock and the random numbers that it sees. Files are real, but nothing waits for the disk.
//
// On Windows the boxes are real windows; a second thread finds, reads and answers them. On other
// systems they are lines on a terminal, which this program plays.
#pragma once

#include <cstddef>
#include <deque>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "work_folder.h"

namespace corvel::test_host {

struct SystemBox {
  std::string title;
  std::string text;
  std::optional<bool> answeredYes;  // nothing: there was only OK
};

enum class ClockMode {
  kStopped,  // no time passes: the reading ticks where its passes start
  kLeaping   // every look is a second later: the reading ticks at every record that counts
};

class Desktop {
 public:
  // Borrows the folder, where it keeps files of its own.
  explicit Desktop(const WorkFolder& work);
  ~Desktop();
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  // Puts what is scripted between a library that was just loaded and the system.
  void Surround(void* module);

  // Answers to boxes that ask yes or no, in order; behind them `otherwise`.
  std::deque<bool> answers;
  bool otherwise = false;
  ClockMode clock = ClockMode::kStopped;
  // The random numbers start anew.
  void ResetRandom();

  // The boxes since the last call.
  std::vector<SystemBox> TakeBoxes();
  // The next document or program that was opened by the shell; waits a while for it. "" when there
  // is none.
  std::string TakeOpened();

  // The folder for the user's data as the library finds it.
  std::filesystem::path UserDataFolder() const;

 private:
  friend struct DesktopState;
  bool NextAnswer();

  const WorkFolder& work_;
  std::unique_ptr<struct DesktopState> state_;
};

// What this program does when it was started as the viewer for a document; nothing when it was not.
bool WasStartedForDocument(int count, char** arguments);

}  // namespace corvel::test_host
