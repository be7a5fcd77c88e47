#include "transcript.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <sstream>

#include "work_folder.h"

namespace corvel::test_host {

namespace {

void ReplaceAll(std::string& text, std::string_view wanted, std::string_view by) {
  for (std::size_t at = text.find(wanted); at != std::string::npos;
       at = text.find(wanted, at + by.size())) {
    text.replace(at, wanted.size(), by);
  }
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

}  // namespace

void Transcript::Replace(std::string text, std::string sign) {
  signs_.emplace_back(std::move(text), std::move(sign));
}

std::string Transcript::Normalised(std::string_view line) const {
  std::string text(line);
  std::replace(text.begin(), text.end(), '\\', '/');
  for (const auto& [wanted, sign] : signs_) ReplaceAll(text, wanted, sign);
  ReplaceAll(text, "\n", "\\n");
  return text;
}

void Transcript::AddContent(std::string_view content) {
  std::string text(content);
  ReplaceAll(text, "\r\n", "\n");
  for (const std::string& line : LinesOf(text)) lines_.push_back("  | " + line);
}

std::string Transcript::Text() const {
  std::string text;
  for (const std::string& line : lines_) text += line + "\n";
  return text;
}

void Transcript::AddLog(const std::string& log) {
  static const std::regex date(R"(\[\d\d-\d\d-\d{4}    \d\d:\d\d:\d\d\])");
  static const std::regex figure(R"(: \d+ MB)");
  static const std::string margin = std::string(199, ' ') + "\n";
  std::string text = std::regex_replace(log, date, "[<date and time>]");
  text = std::regex_replace(text, figure, ": <n> MB");
  ReplaceAll(text, margin, "\r\n<margin>");
  std::string lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find("\r\n", at), text.size());
    lines += Normalised(std::string_view(text).substr(at, end - at)) + "\n";
    at = end + 2;
  }
  AddContent(lines);
}

bool& UpdateGolden() {
  static bool update = false;
  return update;
}

void ExpectGolden(std::string_view name, const std::string& text) {
  const auto path = std::filesystem::path(CORVEL_GOLDEN_DIR) / (std::string(name) + ".txt");
  if (UpdateGolden()) {
    WriteBytes(path, text);
    return;
  }
  std::string wanted = ReadBytes(path);
  ReplaceAll(wanted, "\r\n", "\n");
  if (wanted == text) return;
  const std::vector<std::string> expected = LinesOf(wanted);
  const std::vector<std::string> got = LinesOf(text);
  const auto [expectedAt, gotAt] =
      std::mismatch(expected.begin(), expected.end(), got.begin(), got.end());
  ADD_FAILURE() << "golden/" << name << ".txt, line " << expectedAt - expected.begin() + 1
                << "\nwanted: " << (expectedAt == expected.end() ? "the end" : *expectedAt)
                << "\ngot:    " << (gotAt == got.end() ? "the end" : *gotAt)
                << "\n(--update-golden writes what was got)";
}

}  // namespace corvel::test_host
