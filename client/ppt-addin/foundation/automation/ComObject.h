// Host objects of COM behind the automation interface. Windows sources only.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include "foundation/automation/AutomationObject.h"

namespace quillmarch {

// A host object that holds a reference of its own to `dispatch`; empty for null. Throws when
// memory runs out.
ObjectRef WrapDispatch(IDispatch* dispatch);

// The object that WrapDispatch wrapped, without a new reference; null for every other object.
IDispatch* DispatchOf(AutomationObject* object);

// As AutoInvoke, but where the host raised an exception the result is the code that the exception
// holds, if it holds one.
ResultCode InvokeForOwnCode(AutomationObject* object, DispId id, std::uint16_t flags,
                            const ParamBlock& params, Variant& result);

}  // namespace quillmarch
