// All that a run holds, shared by the sources of this folder and seen by nobody else. Host thread
// only, save for what WorkerContext hands to the worker.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <thread>
#include <utility>
#include <vector>

#include "run/PptCtrl.h"
#include "run/document/TextUnit.h"

namespace quillmarch::addin {

inline constexpr ResultCode kWorkerOk = kOk;

// Values of RunState::tickPhase.
inline constexpr std::int32_t kPhaseShow = 0;   // bring the slide to view
inline constexpr std::int32_t kPhaseWrite = 1;  // write it after a while
inline constexpr std::int32_t kPhaseRest = 2;   // written; let it be looked at

// The bilingual copy of one source slide.
struct CopyInfo {
  std::int32_t copyId = 0;     // SlideID, 0 when unknown
  std::int32_t copyIndex = 0;  // SlideIndex when it was made or found
  std::int32_t sourceId = 0;
};

// First unit and end unit, end exclusive.
using UnitRange = std::pair<std::size_t, std::size_t>;

// The only road by which the worker reaches the run. Everything that it points to outlives the
// thread; of these the host thread reads nothing before the worker has ended, except slidesReady
// and the translations of slides that it counts.
struct WorkerContext {
  TranslateConfig* config = nullptr;
  const RunParams* params = nullptr;
  const std::vector<Wide>* sourceTexts = nullptr;
  std::vector<Wide>* translations = nullptr;
  Wide* errorMessage = nullptr;
  Wide* errorCode = nullptr;
  ResultCode* workerResult = nullptr;
  const RunSink* sink = nullptr;
  const std::vector<UnitRange>* slideRanges = nullptr;
  std::atomic<std::int32_t>* slidesReady = nullptr;
  std::atomic<bool>* ended = nullptr;
  HostThread* hostThread = nullptr;
  ResolveTerminologyHook resolveTerminology;
};

struct RunState {
  RunState(ObjectRef application, RunSurroundings around)
      : app(std::move(application)), surroundings(std::move(around)) {}

  ObjectRef app;
  RunSurroundings surroundings;
  WindowContext windowContext;
  ObjectRef window;        // resolved once
  ObjectRef presentation;  // resolved once
  bool registeredBusy = false;
  std::uintptr_t busyIdentity = 0;  // as registered, so that leaving needs no host call

  // Equal length, equal order; the index is a unit's identity for the whole run.
  std::vector<TextUnit> units;
  std::vector<Wide> sourceTexts;
  std::vector<Wide> translations;
  std::vector<UnitLocator> locators;

  std::vector<UnitRange> slideRanges;
  std::vector<std::int32_t> slideNumbers;
  std::int32_t firstSlide = 1;
  std::atomic<std::int32_t> slidesReady{0};
  std::int32_t nextSlide = 0;  // index into slideRanges

  std::int32_t appliedCount = 0;
  Wide applyError;
  std::vector<bool> reached;        // units whose translation stands in the deck
  std::vector<bool> repairedUnits;  // empty until the broken phrase pass

  std::int32_t tickPhase = kPhaseShow;
  std::uint64_t phaseStart = 0;

  TranslateConfig config;
  ResultCode workerResult = kWorkerOk;
  std::vector<Wide> skipNotes;
  std::map<std::int32_t, std::int32_t> slideIdBySource;
  std::map<std::int32_t, CopyInfo> copyBySource;
  std::vector<CopyInfo> copyPairs;
  RunParams params;
  const RunSink* sink = nullptr;
  std::int32_t smartArtSkipped = 0;

  WorkerContext workerContext;
  std::thread thread;
  std::atomic<bool> workerEnded{false};

  bool started = false;
  bool readySent = false;
  bool finished = false;
  bool abortRequested = false;
  // Set while one of the run's own host-thread entries is under way: a host call may pump messages
  // and so let a timer or the shutdown in again.
  bool entered = false;
  std::uint64_t startTick = 0;
  Wide errorMessage;
  Wide errorCode;

  std::uint64_t Now() const { return surroundings.thread.TickCount(); }
  bool WorkerRunning() const {
    return thread.joinable() && !workerEnded.load(std::memory_order_acquire);
  }
  // The slide that entry `index` of slideRanges is written to.
  std::int32_t SlideNumberAt(std::int32_t index) const {
    const auto at = static_cast<std::size_t>(index);
    return at < slideNumbers.size() ? slideNumbers[at] : firstSlide + index;
  }
};

}  // namespace quillmarch::addin
