// The host's task panes through its dispatch: a member by its published id, never by its place in a
// table. Windows only.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <memory>

#include "foundation/seams/TaskPane.h"

namespace quillmarch::addin {

// Null for null.
std::shared_ptr<TaskPaneFactory> WrapPaneFactory(IDispatch* factory);

}  // namespace quillmarch::addin
