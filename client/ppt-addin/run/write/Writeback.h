// Puts the translations of one slide into the presentation. Host thread only.
#pragma once

#include <cstddef>

#include "run/write/RunWrites.h"

namespace quillmarch::addin {

// Writes the units of one entry of slideRanges, with the gate held. Never throws; what could not be
// written is named in applyError and has its entry in failures.
void WriteSlide(const WriteTask& task, std::size_t entry) noexcept;

// Adds the unit to the list, separated by "; ", and logs it.
void RecordApplyFailure(Wide& failures, const Wide& unitId);

// The translation that the unit is to be given; empty when there is nothing to write: no answer,
// one equal to the source, or a frame that was repaired already.
Wide TextToWrite(const WriteTask& task, std::size_t unit);

}  // namespace quillmarch::addin
