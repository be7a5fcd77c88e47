// What the user wants of an object whose GUID is taken.
#pragma once

namespace corvel {

// What to do with an object whose GUID the destination's GUID index holds: kAsk until the user has
// chosen; the answer then serves the rest of the run. Process-wide.
inline constexpr int kAskAboutGuids = -1;
inline constexpr int kSkipSameGuids = 0;
inline constexpr int kGenerateGuids = 1;
int& RememberedGuidChoice();
// The choice, asked for and remembered if there is none yet. The question may wait for the user.
int AskedGuidChoice();

// Asks the user for the choice: true means generate a new GUID. Installed by the shell; without one
// the answer is generate. Null takes it away.
using GuidQuestion = bool (*)();
void SetGuidQuestion(GuidQuestion question);

}  // namespace corvel
