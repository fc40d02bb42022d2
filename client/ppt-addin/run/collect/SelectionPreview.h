// How much the user has selected, for the panel to show before a run. Host thread only.
#pragma once

#include <cstdint>

#include "foundation/automation/AutomationObject.h"
#include "foundation/automation/WindowContext.h"
#include "foundation/text/Wide.h"

namespace quillmarch::addin {

struct SelectionPreview {
  bool empty = true;
  std::int32_t fragments = 0;  // slides, shapes, or 1 for a piece of text
  std::int32_t chars = 0;      // UTF-16 units of a piece of text
  Wide label;                  // for the user
};

// Empty when the context's window is not the host's active one, and for every failed call.
SelectionPreview ReadSelectionPreview(AutomationObject* app, const WindowContext& windowContext);

}  // namespace quillmarch::addin
