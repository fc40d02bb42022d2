#include "shell/PaneWidth.h"

#include <algorithm>
#include <cstdlib>

#include "foundation/log/Log.h"
#include "foundation/settings/UserConfig.h"

namespace quillmarch::addin {

namespace {

constexpr std::int32_t kTolerancePt = 2;  // on both sides of the target
constexpr std::int32_t kTriesInWps = 6;
constexpr std::int32_t kGracePolls = 2;
constexpr std::uint64_t kStableMs = 1000;

std::int32_t Limited(std::int32_t width) {
  return std::clamp(width, kMinPaneWidthPt, kMaxPaneWidthPt);
}

void Save(PaneWidthState& state, std::int32_t width) {
  state.saveOk = WritePaneWidth(Limited(width), state.saveError);
  // As seen and not as limited: the same width is not saved again.
  state.lastSaved = width;
}

bool IsNear(std::int32_t width, std::int32_t target) {
  return std::abs(std::int64_t{width} - target) <= kTolerancePt;
}

WidthPoll Reapply(PaneWidthState& state, TaskPane& pane, std::int32_t width, std::uint64_t now) {
  if (IsNear(width, state.target)) {
    state.reapplying = false;
    state.grace = kGracePolls;
    state.triesLeft = 0;
    state.lastApplied = state.lastSaved = state.target;
    state.lastSeen = state.lastHandled = width;
    return WidthPoll::kDone;
  }
  if (state.hasApplied && width >= kSmallestRealWidthPt && width != state.lastSeen) {
    state.triesLeft = 0;
    state.reapplying = false;
    state.lastSeen = width;
    state.lastChangeTick = now;
    return WidthPoll::kUserTakeover;
  }
  if (state.triesLeft < 1) {
    state.reapplying = false;
    state.lastSeen = width;
    return WidthPoll::kGiveUp;
  }
  if (state.target > 0) {
    // By way of another width, as a host that takes itself to be that wide would do nothing.
    pane.PutWidth(state.target + 1);
    pane.PutWidth(state.target);
  }
  --state.triesLeft;
  state.lastApplied = state.lastSaved = state.target;
  state.hasApplied = true;
  state.grace = kGracePolls;
  state.lastSeen = width;
  // The last try leaves `reapplying` as it is: the next poll may still find the width reached.
  return state.triesLeft == 0 ? WidthPoll::kGiveUp : WidthPoll::kReapply;
}

WidthPoll Changed(PaneWidthState& state, std::int32_t width, std::uint64_t now) {
  state.lastSeen = width;
  state.lastChangeTick = now;
  return WidthPoll::kNone;
}

WidthPoll JudgeStable(PaneWidthState& state, std::int32_t width, std::uint64_t now) {
  if (now - state.lastChangeTick < kStableMs || width == state.lastHandled) return WidthPoll::kNone;
  state.lastHandled = width;
  if (width < kSmallestRealWidthPt) return WidthPoll::kSkipNoise;
  if (width == state.lastSaved) return WidthPoll::kNone;
  Save(state, width);
  return WidthPoll::kSaved;
}

}  // namespace

void BeginWidth(PaneWidthState& state, TaskPane& pane, std::int32_t width, bool inWps) {
  state = {};
  state.target = width;
  if (inWps) {
    state.reapplying = true;
    state.triesLeft = kTriesInWps;
  } else {
    pane.PutWidth(width);
    state.lastApplied = state.lastSaved = state.lastHandled = width;
    state.grace = kGracePolls;
  }
  LogLine(u"PPT pane width begin pt=" + Decimal(width) + u" host=" + (inWps ? u"wps" : u"office"));
}

WidthPoll Poll(PaneWidthState& state, TaskPane& pane, std::uint64_t now) {
  std::int32_t width = 0;
  if (Failed(pane.GetWidth(width)) || width <= 0) return WidthPoll::kNone;
  if (state.reapplying) return Reapply(state, pane, width, now);
  if (state.grace >= 1) {
    --state.grace;
    return Changed(state, width, now);
  }
  if (width != state.lastSeen) return Changed(state, width, now);
  return JudgeStable(state, width, now);
}

void LogWidthPoll(WidthPoll result, const PaneWidthState& state) {
  switch (result) {
    case WidthPoll::kNone:
      return;
    case WidthPoll::kReapply:
      LogLine(u"PaneWidth reapply -> " + Decimal(state.target) + u" try-left=" +
              Decimal(state.triesLeft));
      return;
    case WidthPoll::kDone:
      LogLine(u"PaneWidth reapply done at " + Decimal(state.lastSeen));
      return;
    case WidthPoll::kGiveUp:
      LogLine(u"PaneWidth reapply give-up (target=" + Decimal(state.target) + u")");
      return;
    case WidthPoll::kUserTakeover:
      LogLine(u"PaneWidth reapply give-up (user-takeover cur=" + Decimal(state.lastSeen) + u")");
      return;
    case WidthPoll::kSaved:
      LogLine(u"PaneWidth save pt=" + Decimal(state.lastSeen) + u" ok=" +
              Decimal(state.saveOk ? 1 : 0) + u" err=" + DecimalUnsigned(state.saveError) +
              u" file=" + ConfigPath());
      return;
    case WidthPoll::kSkipNoise:
      LogLine(u"PaneWidth skip-noise cur=" + Decimal(state.lastSeen) + u" (<200)");
      return;
  }
}

void SaveWidthOnShutdown(PaneWidthState& state, TaskPane& pane) {
  std::int32_t width = 0;
  if (Failed(pane.GetWidth(width)) || width < kSmallestRealWidthPt || width == state.lastSaved) {
    return;
  }
  Save(state, width);
  state.lastHandled = width;
  if (state.saveOk) LogLine(u"PaneWidth shutdown-save pt=" + Decimal(width));
}

}  // namespace quillmarch::addin
