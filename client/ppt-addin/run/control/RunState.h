// What the controller of a run keeps for itself. Host thread only, except for the worker's job.
#pragma once

#include <cstdint>
#include <thread>
#include <utility>

#include "run/PptCtrl.h"
#include "run/control/WorkerJob.h"
#include "run/document/RunCopies.h"
#include "run/document/RunTexts.h"
#include "run/document/RunWindow.h"
#include "run/write/RunWrites.h"

namespace quillmarch::addin {

// Values of RunState::tickPhase.
inline constexpr std::int32_t kPhaseShow = 0;   // bring the slide to view
inline constexpr std::int32_t kPhaseWrite = 1;  // write it after a while
inline constexpr std::int32_t kPhaseRest = 2;   // written; let it be looked at

struct RunState {
  RunState(ObjectRef application, RunSurroundings around) : surroundings(std::move(around)) {
    document.app = std::move(application);
  }

  RunSurroundings surroundings;
  RunParams params;
  const RunSink* sink = nullptr;
  bool registeredBusy = false;
  std::uintptr_t busyIdentity = 0;  // as registered, so that leaving needs no host call

  RunDocument document;
  RunTexts texts;
  RunCopies copies;
  RunWrites writes;

  WorkerJob job;
  std::thread thread;

  std::int32_t nextSlide = 0;  // index into slideRanges
  std::int32_t tickPhase = kPhaseShow;
  std::uint64_t phaseStart = 0;

  bool started = false;
  bool readySent = false;
  bool finished = false;
  bool abortRequested = false;
  // Set while one of the run's own host-thread entries is under way: a host call may pump messages
  // and so let a timer or the shutdown in again.
  bool entered = false;
  std::uint64_t startTick = 0;

  std::uint64_t Now() const { return surroundings.thread.TickCount(); }
  bool WorkerRunning() const {
    return thread.joinable() && !job.ended.load(std::memory_order_acquire);
  }
  WriteTask Writing() { return {document, texts, job.translations, params, copies, writes}; }
};

}  // namespace quillmarch::addin
