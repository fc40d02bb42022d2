// The registration scripts: text that names registry keys and values as a tree, run to write them
// or to take them away.
//
//   ROOT { [NoRemove|ForceRemove|Delete] Key [= s 'text' | d 'number'] { ... val Name = s 'text' }
//   }
//
// ROOT is HKCU, or HKCR, which stands for HKCU\Software\Classes: registration is the user's own.
// Any other root is refused, and so nothing can be written elsewhere. A quote inside a text stands
// twice. %NAME% is replaced before anything else; %% is a percent sign.
#pragma once

#include <map>

#include "foundation/ResultCode.h"
#include "foundation/UserRegistry.h"
#include "foundation/Wide.h"

using ScriptVariables = std::map<Wide, Wide>;  // name without percent signs, text

// kOk, kBadScript before anything is written when the text is no script, or an HRESULT made of the
// registry's first failure.
inline constexpr ResultCode kBadScript = MakeResult(0x80020009);

// Keys are made, ForceRemove keys after taking away what stood there.
ResultCode RunRegisterScript(WideView script, const ScriptVariables& variables,
                             UserRegistry& registry);
// Values go, ForceRemove keys with all below them, other keys when nothing is left in them; what is
// marked NoRemove stays. What is not there is no failure.
ResultCode RunUnregisterScript(WideView script, const ScriptVariables& variables,
                               UserRegistry& registry);
