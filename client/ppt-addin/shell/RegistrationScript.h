// The registration scripts: text that names registry keys and values as a tree, run to write them
// or to take them away.
//
//   ROOT { [NoRemove|ForceRemove] KEY [= s 'text'] { ... [NoRemove] val NAME = s 'text' ... } ... }
//
// A value's type is s (text) or d (number). Words are parted by blanks; one that holds blanks or
// nothing stands in quotes, and a quote inside quotes stands twice. %NAME% is replaced before
// anything else, and %% is a percent sign. ROOT is HKCU, or HKCR, which stands for
// HKCU\Software\Classes, since registration is the user's own. Any other root is refused, so that
// nothing can be written elsewhere.
#pragma once

#include <map>

#include "foundation/seams/UserRegistry.h"
#include "foundation/text/ResultCode.h"
#include "foundation/text/Wide.h"

namespace quillmarch::addin {

using ScriptVariables = std::map<Wide, Wide>;  // name without percent signs, text

// A text that is no script; nothing has been touched.
inline constexpr ResultCode kBadScript = MakeResult(0x80020009);

// The HRESULT that stands for a Win32 code.
ResultCode ResultOfWin32(UserRegistry::Code code);

// Keys and values are made in the script's order; a ForceRemove key after what stood there was
// taken away. The first failure of the registry ends the run and is its result.
ResultCode RunRegisterScript(WideView script, const ScriptVariables& variables,
                             UserRegistry& registry);

// A ForceRemove key goes with all below it; any other key loses the script's values and goes when
// nothing is left in it. What is marked NoRemove stays. What is not there is no failure. The run
// goes on over failures, and the first is its result.
ResultCode RunUnregisterScript(WideView script, const ScriptVariables& variables,
                               UserRegistry& registry);

}  // namespace quillmarch::addin
