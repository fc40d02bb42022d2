// Task panes for tests: what the host knows of each, and the calls that it got.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "foundation/seams/TaskPane.h"

namespace quillmarch::addin::test {

// The host's side of one task pane; it stays when the add-in has let go.
struct TaskPaneState {
  Wide progId;
  Wide title;
  ObjectRef window;
  bool visible = false;
  std::int32_t dock = 0;
  std::int32_t width = 300;
  bool takesWidth = true;  // else assignments are ignored
  std::vector<std::int32_t> widthsPut;
  int docksPut = 0;
  int references = 0;  // the add-in's
  ResultCode windowResult = kOk;
  ResultCode visibleResult = kOk;
  ResultCode dockResult = kOk;
  ResultCode widthResult = kOk;
  std::function<void()> onVisible;   // inside PutVisible
  std::function<void()> onDock;      // inside GetDockPosition
  std::function<void()> onPutWidth;  // inside PutWidth
};

class FakeTaskPane final : public TaskPane {
 public:
  explicit FakeTaskPane(std::shared_ptr<TaskPaneState> state) : state_(std::move(state)) {
    ++state_->references;
  }
  ~FakeTaskPane() override { --state_->references; }

  ResultCode GetWindow(ObjectRef& out) override {
    if (Succeeded(state_->windowResult)) out = state_->window;
    return state_->windowResult;
  }
  ResultCode PutVisible(bool visible) override {
    if (state_->onVisible) state_->onVisible();
    if (Succeeded(state_->visibleResult)) state_->visible = visible;
    return state_->visibleResult;
  }
  ResultCode GetDockPosition(std::int32_t& out) override {
    if (state_->onDock) state_->onDock();
    out = state_->dock;
    return state_->dockResult;
  }
  ResultCode PutDockPosition(std::int32_t position) override {
    state_->dock = position;
    ++state_->docksPut;
    return kOk;
  }
  ResultCode GetWidth(std::int32_t& out) override {
    out = state_->width;
    return state_->widthResult;
  }
  ResultCode PutWidth(std::int32_t width) override {
    if (state_->onPutWidth) state_->onPutWidth();
    state_->widthsPut.push_back(width);
    if (state_->takesWidth) state_->width = width;
    return kOk;
  }

 private:
  std::shared_ptr<TaskPaneState> state_;
};

}  // namespace quillmarch::addin::test
