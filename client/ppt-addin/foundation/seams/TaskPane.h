// The host's task panes as the shell uses them: `ICTPFactory` and `_CustomTaskPane`. Letting go of
// an object releases the host's. Host thread only.
#pragma once

#include <cstdint>
#include <memory>

#include "foundation/automation/AutomationObject.h"
#include "foundation/text/ResultCode.h"
#include "foundation/text/Wide.h"

namespace quillmarch {

class TaskPane {
 public:
  static constexpr std::int32_t kDockRight = 2;  // msoCTPDockPositionRight

  virtual ~TaskPane() = default;

  // The document window that the pane is in. kOk with a non-null object, or a failure.
  virtual ResultCode GetWindow(ObjectRef& out) = 0;
  virtual ResultCode PutVisible(bool visible) = 0;
  virtual ResultCode GetDockPosition(std::int32_t& out) = 0;
  virtual ResultCode PutDockPosition(std::int32_t position) = 0;
  // Points.
  virtual ResultCode GetWidth(std::int32_t& out) = 0;
  virtual ResultCode PutWidth(std::int32_t width) = 0;
};

class TaskPaneFactory {
 public:
  virtual ~TaskPaneFactory() = default;

  // Makes the control of `progId` in a task pane of `parentWindow` (VT_DISPATCH). The control is
  // constructed before this returns. kOk with a pane, or the host's own failure code: where the
  // host raised an exception, the code that it holds.
  virtual ResultCode CreateCTP(const Wide& progId, const Wide& title, const ObjectRef& parentWindow,
                               std::shared_ptr<TaskPane>& out) = 0;
};

}  // namespace quillmarch
