// Why a collection failed, for programs: sentences are for people and change.
#pragma once

#include "foundation/text/ResultCode.h"

namespace quillmarch::addin {

inline constexpr ResultCode kNothingSelected = MakeResult(0x80040201);
inline constexpr ResultCode kSelectionWithoutText = MakeResult(0x80040202);
inline constexpr ResultCode kSelectionUnreadable = MakeResult(0x80040203);
inline constexpr ResultCode kSelectionTooLarge = MakeResult(0x80040204);

}  // namespace quillmarch::addin
