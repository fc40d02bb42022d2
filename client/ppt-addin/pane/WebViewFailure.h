// A browser that cannot be created, as log, service and user are told.
#pragma once

#include <cstdint>
#include <functional>

#include "foundation/seams/Desktop.h"
#include "foundation/text/ResultCode.h"

namespace quillmarch::addin {

// `stage` is one of "userdata", "create", "environment", "controller", "core". Only the first
// failure of the process shows the dialog; null `desktop` shows none. `owner` gives the window to
// show it over, 0 for none, and is asked again after the dialog: the window may go while the user
// reads. Host thread.
void ReportWebViewFailure(const char16_t* stage, ResultCode code, Desktop* desktop,
                          const std::function<std::uintptr_t()>& owner);

// As at the process's start; for tests.
void ForgetFailureDialog();

}  // namespace quillmarch::addin
