// The second chance of frames that look like one phrase broken over paragraphs and came back
// untranslated: the joined text of the whole frame is sent as one. Host thread only; its translate
// calls hold that thread.
#pragma once

#include "run/write/RunWrites.h"

namespace quillmarch::addin {

// Adds 1 to appliedCount for each frame repaired. A repair that fails is silent. `owner` holds the
// gate during a write.
void BrokenPhrasePass(const WriteTask& task, TranslateConfig& config, HostThread& thread,
                      const void* owner);

// False for the codes and English names of Chinese, Japanese and Korean, for "auto" and for an
// empty text; a code that merely contains "zh", "ja" or "ko" counts as these as well.
bool IsNonCjkTarget(WideView language);

}  // namespace quillmarch::addin
