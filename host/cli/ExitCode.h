// How the command ends.
#pragma once

#include <initializer_list>

namespace quillmarch::host {

inline constexpr int kExitOk = 0;
inline constexpr int kExitRunFailed = 1;
inline constexpr int kExitBadInput = 2;    // or usage
inline constexpr int kExitIncomplete = 3;  // some translated text did not reach the deck
inline constexpr int kExitCancelled = 130;

// The more severe of two exit codes: 130, 2, 1, 3, 0.
constexpr int GraverExit(int first, int second) {
  for (const int code : {kExitCancelled, kExitBadInput, kExitRunFailed, kExitIncomplete}) {
    if (first == code || second == code) return code;
  }
  return kExitOk;
}

}  // namespace quillmarch::host
