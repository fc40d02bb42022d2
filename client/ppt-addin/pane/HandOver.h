// What the connection to the host leaves for the next pane that is made: a host constructs panes by
// their class only. Host thread only; one block for the process.
#pragma once

#include <cstdint>

#include "foundation/automation/AutomationObject.h"
#include "foundation/automation/WindowContext.h"
#include "foundation/text/Wide.h"

namespace quillmarch::addin {

struct HandOver {
  ObjectRef app;     // the host's application
  ObjectRef window;  // the document window that the pane is made for
  WindowContext context;
  std::int32_t paneId = 0;
  Wide pendingPage;  // taken by the pane; empty leaves the pane's own
  Wide pendingMode;
};

HandOver& HandOverBlock();

}  // namespace quillmarch::addin
