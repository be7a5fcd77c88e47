// What is the same on every system; each has the rest in a file of its own.
#include "desktop.h"

namespace corvel::test_host {

bool Desktop::NextAnswer() {
  if (answers.empty()) return otherwise;
  const bool answer = answers.front();
  answers.pop_front();
  return answer;
}

}  // namespace corvel::test_host
