// The task panes of a connection, one for each document window. Host thread only.
#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "foundation/Wide.h"
#include "foundation/WindowContext.h"
#include "shell/PaneWidth.h"
#include "shell/TaskPane.h"

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
