#include "merge/guid_choice.h"

namespace corvel {

namespace {

GuidQuestion installedQuestion = nullptr;

}  // namespace

int& RememberedGuidChoice() {
  static int choice = kAskAboutGuids;
  return choice;
}

void SetGuidQuestion(GuidQuestion question) { installedQuestion = question; }

int AskedGuidChoice() {
  int& choice = RememberedGuidChoice();
  if (choice == kAskAboutGuids) {
    // Nobody to ask: with a new GUID nothing is lost.
    const bool generate = installedQuestion == nullptr || installedQuestion();
    choice = generate ? kGenerateGuids : kSkipSameGuids;
  }
  return choice;
}

}  // namespace corvel
