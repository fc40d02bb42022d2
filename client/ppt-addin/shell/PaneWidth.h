// How wide the user wants the pane, told apart from the noise in what hosts report. Widths are in
// points. Host thread only.
#pragma once

#include <cstdint>

#include "foundation/seams/TaskPane.h"
#include "foundation/text/Wide.h"

namespace quillmarch::addin {

struct PaneWidthState {
  std::int32_t target = 0;       // width to enforce
  std::int32_t lastApplied = 0;  // last width assigned
  std::int32_t lastSeen = 0;     // at the last poll
  std::int32_t lastSaved = 0;    // or taken as saved
  std::int32_t lastHandled = 0;  // last stable width that has been judged
  std::uint64_t lastChangeTick = 0;
  std::int32_t grace = 0;      // polls to ignore
  std::int32_t triesLeft = 0;  // assignments left
  bool reapplying = false;     // enforcing target
  bool hasApplied = false;     // assigned at least once in this state
  bool saveOk = false;         // last save
  std::uint32_t saveError = 0;
};

enum class WidthPoll { kNone, kReapply, kDone, kGiveUp, kUserTakeover, kSaved, kSkipNoise };

inline constexpr std::int32_t kSmallestRealWidthPt = 200;

// A fresh state for a pane that has just been made. Logs.
void BeginWidth(PaneWidthState& state, TaskPane& pane, std::int32_t width, bool inWps);

// One look at the pane; may assign a width or save one. `now` is the host thread's tick count.
WidthPoll Poll(PaneWidthState& state, TaskPane& pane, std::uint64_t now);
// The line that Poll's result leaves in the log; kNone leaves none.
void LogWidthPoll(WidthPoll result, const PaneWidthState& state);

// Saves a width that is real and has not been saved, without waiting for it to hold.
void SaveWidthOnShutdown(PaneWidthState& state, TaskPane& pane);

}  // namespace quillmarch::addin
