#include "host/reading_watch.h"

#include <algorithm>
#include <utility>

namespace corvel::host {

namespace {

ReadingWatch* watching = nullptr;

}  // namespace

ReadingWatch::ReadingWatch(RunConsole& console, WideString overallText, int readingShare)
    : console_(console), readingShare_(readingShare) {
  view_.overallText = std::move(overallText);
  watching = this;
}

ReadingWatch::~ReadingWatch() { watching = nullptr; }

void ReadingWatch::StepBegins(WideString text, int overall) {
  view_.stepText = std::move(text);
  view_.overall = before_ = overall;
}

bool ReadingWatch::Draw(int step, int overall) {
  view_.step = step;
  view_.overall = overall;
  return console_.Draw(view_);
}

bool ReadingWatch::Tick(int value, int /*stageWeight*/, const WideString* /*text*/,
                        bool /*exactMode*/, int /*maximum*/) {
  if (watching == nullptr) return true;
  constexpr int kHundred = 100;
  const int step = std::clamp(value, 0, kHundred);
  return watching->Draw(step, watching->before_ + step * watching->readingShare_ / kHundred);
}

}  // namespace corvel::host
