// Host objects of COM behind the automation interface. Windows sources only.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include "foundation/AutomationObject.h"

// A host object that holds a reference of its own to `dispatch`; empty for null. Throws when
// memory runs out.
ObjectRef WrapDispatch(IDispatch* dispatch);

// What an object of WrapDispatch stands for, without a new reference; null for every other object.
IDispatch* DispatchOf(AutomationObject* object);

// Objects of WrapDispatch that are alive; any thread.
long WrappedObjects();
