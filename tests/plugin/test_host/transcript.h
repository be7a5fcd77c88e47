// What happened in a scene, in lines that are the same on every system.
//
// Folders of the scene stand as <work>, <user> and <data>, with "/" between names. A line feed
// within a text stands as \n.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvel::test_host {

class Transcript {
 public:
  // From now on, `text` stands as `sign`. The text has "/" between names.
  void Replace(std::string text, std::string sign);

  void Add(std::string_view line) { lines_.push_back(Normalised(line)); }
  // Lines of a file as they are, each behind a bar.
  void AddContent(std::string_view content);
  // The same of a log, without what differs from run to run: date and time, and the figures of the
  // machine. Each piece that was flushed stands on a line of its own, behind the blanks that the
  // stream puts there.
  void AddLog(const std::string& log);
  void Clear() { lines_.clear(); }
  const std::vector<std::string>& Lines() const { return lines_; }
  std::string Text() const;

  std::string Normalised(std::string_view line) const;

 private:
  std::vector<std::pair<std::string, std::string>> signs_;
  std::vector<std::string> lines_;
};

// Compares with golden/`name`.txt; with UpdateGolden it is written instead. Fails the test that
// runs, showing the first line that differs.
void ExpectGolden(std::string_view name, const std::string& text);
bool& UpdateGolden();

}  // namespace corvel::test_host
