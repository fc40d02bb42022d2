// The second chance of frames that look like one phrase broken over paragraphs and came back
// untranslated: the joined text of the whole frame is sent as one. Host thread only; its translate
// calls hold that thread.
#pragma once

#include "run/control/RunState.h"

namespace quillmarch::addin {

// Adds 1 to `appliedCount` for each frame repaired. A repair that fails is silent.
void BrokenPhrasePass(RunState& run, std::int32_t& appliedCount);

// False for the codes and English names of Chinese, Japanese and Korean, for "auto" and for an
// empty text; a code that merely contains "zh", "ja" or "ko" counts as these as well.
bool IsNonCjkTarget(WideView language);

}  // namespace quillmarch::addin
