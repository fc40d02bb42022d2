#include "run/document/StaGate.h"

#include <algorithm>

namespace quillmarch::addin {

namespace {

struct GateState {
  const void* owner = nullptr;
  std::uint64_t quietUntil = 0;
};

GateState& Gate() {
  static GateState gate;
  return gate;
}

constexpr std::uint32_t kMouseQueueMask = 0x1C07;  // the kinds of input that a look takes off
constexpr std::uint32_t kMouseArrived = 0x6;       // moved, or a button

}  // namespace

bool StaGateHasOwner() {
  return Gate().owner != nullptr;
}

void RaiseQuiet(HostThread& thread, std::uint32_t ms) {
  Gate().quietUntil = std::max(Gate().quietUntil, thread.TickCount() + ms);
}

bool UserIsBusy(InputState& input) {
  return input.LeftButtonDown() || input.HasCapture() ||
         (input.QueueStatus(kMouseQueueMask) & kMouseArrived) != 0;
}

GateHold::GateHold(const void* owner, HostThread& thread, std::uint32_t holdMs)
    : thread_(thread),
      holdMs_(holdMs),
      held_(Gate().owner == nullptr && thread.TickCount() >= Gate().quietUntil) {
  if (held_) Gate().owner = owner;
}

GateHold::~GateHold() {
  if (!held_) return;
  Gate().owner = nullptr;
  RaiseQuiet(thread_, holdMs_);
}

}  // namespace quillmarch::addin
