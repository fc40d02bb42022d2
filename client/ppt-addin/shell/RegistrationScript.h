// The registration scripts: text that names registry keys and values as a tree, run to write or
// remove them.
//
//   ROOT { [NoRemove|ForceRemove] KEY [= s 'text'] { ... [NoRemove] val NAME = s 'text' ... } ... }
//
// A value's type is s (text) or d (number). Words are separated by spaces; a word that
// contains spaces or is empty is quoted, and a quote inside quotes is doubled. %NAME% is replaced
// before anything else, and %% is a percent sign. ROOT is HKCU, or HKCR, which means
// HKCU\Software\Classes, since registration is the user's own. Any other root is refused, so that
// nothing can be written elsewhere.
#pragma once

#include <map>

#include "foundation/seams/UserRegistry.h"
#include "foundation/text/ResultCode.h"
#include "foundation/text/Wide.h"

namespace quillmarch::addin {

using ScriptVariables = std::map<Wide, Wide>;  // name without percent signs, text

// The text is not a script; nothing has been touched.
inline constexpr ResultCode kBadScript = MakeResult(0x80020009);

// The HRESULT of a Win32 code.
ResultCode ResultOfWin32(UserRegistry::Code code);

// Keys and values are made in the script's order; a ForceRemove key after the existing one
// was removed. The first failure of the registry ends the run and is its result.
ResultCode RunRegisterScript(WideView script, const ScriptVariables& variables,
                             UserRegistry& registry);

// A ForceRemove key is removed with everything below it; any other key loses the script's values
// and is removed when it is then empty. What is marked NoRemove stays. A missing key or value is
// not a failure. The run continues after failures, and the first is its result.
ResultCode RunUnregisterScript(WideView script, const ScriptVariables& variables,
                               UserRegistry& registry);

}  // namespace quillmarch::addin
