// How an operation that fails for a reason worth telling says so.
#pragma once

#include "foundation/text/ResultCode.h"
#include "foundation/text/Wide.h"

namespace quillmarch {

// Codes are compared; words are only shown.
struct Status {
  ResultCode code = kOk;
  Wide words;

  bool ok() const { return Succeeded(code); }
};

}  // namespace quillmarch
