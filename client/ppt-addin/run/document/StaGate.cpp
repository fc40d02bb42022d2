#include "run/document/StaGate.h"

#include <algorithm>

namespace quillmarch::addin {

namespace {

struct GateState {
  const void* owner = nullptr;
  std::uint64_t quietUntil = 0;       // after a mutation
  std::uint64_t inputQuietUntil = 0;  // after the user's input
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

void RaiseInputQuiet(HostThread& thread) {
  Gate().inputQuietUntil =
      std::max(Gate().inputQuietUntil, thread.TickCount() + kQuietAfterInputMs);
}

void WaitOutMutationQuiet(HostThread& thread) {
  const std::uint64_t now = thread.TickCount();
  if (now < Gate().quietUntil) thread.Sleep(static_cast<std::uint32_t>(Gate().quietUntil - now));
}

bool UserIsBusy(InputState& input) {
  return input.LeftButtonDown() || input.HasCapture() ||
         (input.QueueStatus(kMouseQueueMask) & kMouseArrived) != 0;
}

GateHold::GateHold(const void* owner, HostThread& thread, Heed heed) : thread_(thread) {
  const GateState& gate = Gate();
  const std::uint64_t now = thread.TickCount();
  held_ = gate.owner == nullptr && now >= gate.quietUntil &&
          (heed == Heed::kMutationQuiet || now >= gate.inputQuietUntil);
  if (held_) Gate().owner = owner;
}

GateHold::~GateHold() {
  if (!held_) return;
  Gate().owner = nullptr;
  RaiseQuiet(thread_, kQuietAfterMutationMs);
}

}  // namespace quillmarch::addin
