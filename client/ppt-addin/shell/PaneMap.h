// The task panes of a connection, one for each document window. Host thread only.
#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "foundation/automation/WindowContext.h"
#include "foundation/seams/TaskPane.h"
#include "foundation/text/Wide.h"
#include "shell/PaneWidth.h"

namespace quillmarch::addin {

// Stands for a window, also when the host gives no handle.
std::int64_t PaneMapKey(const WindowContext& context);

// "hwnd=0x%lX id=%p", as all logs show a window.
Wide ContextText(const WindowContext& context);

struct PaneMapEntry {
  std::shared_ptr<TaskPane> pane;
  WindowContext context;
  PaneWidthState width;
};

using PaneMap = std::map<std::int64_t, PaneMapEntry>;

}  // namespace quillmarch::addin
