// What the writers of a run need and what they leave. Host thread only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "foundation/seams/HostThread.h"
#include "run/document/RunCopies.h"
#include "run/document/RunParams.h"
#include "run/document/RunRecord.h"
#include "run/document/RunTexts.h"
#include "run/document/RunWindow.h"

namespace quillmarch::addin {

// Why a unit was not written.
struct WriteFailure {
  FailCause cause = FailCause::kRefused;
  ResultCode code = kOk;
};

struct RunWrites {
  std::int32_t appliedCount = 0;
  Wide applyError;                               // names of the units not written, for the summary
  std::vector<bool> reached;                     // units whose translation is in the deck
  std::vector<bool> repairedUnits;               // empty until the broken phrase pass
  std::map<std::size_t, WriteFailure> failures;  // by unit
};

struct WriteTask {
  RunDocument& document;
  const RunTexts& texts;
  // As long as the texts, or empty; of slides that are ready.
  const std::vector<Wide>& translations;
  const RunParams& params;
  const RunCopies& copies;
  RunWrites& writes;
};

}  // namespace quillmarch::addin
