// What the worker of a run is given and what it leaves: its only road to the run.
#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

#include "foundation/seams/HostThread.h"
#include "run/document/RunParams.h"
#include "run/document/RunSink.h"
#include "run/document/RunTexts.h"

namespace quillmarch::addin {

struct WorkerJob {
  // Set before the thread exists and outliving it.
  std::span<const Wide> sourceTexts;
  std::span<const UnitRange> slideRanges;
  const RunSink* sink = nullptr;
  HostThread* hostThread = nullptr;
  ResolveTerminologyHook resolveTerminology;
  // Its flags may be set at any time; the worker adds instruction and glossary.
  TranslateConfig config;

  // The only values that the host thread reads while the worker runs. slidesReady publishes the
  // translations of the slides that it counts.
  std::atomic<std::int32_t> slidesReady{0};
  std::atomic<bool> ended{false};

  // Written by the worker; the rest of them is read once it has ended.
  std::vector<Wide> translations;
  ResultCode result = kOk;
  Wide errorMessage;
  Wide errorCode;
};

}  // namespace quillmarch::addin
