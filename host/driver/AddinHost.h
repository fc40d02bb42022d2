// Plays the host program's side of the add-in's whole life: loads the connection, offers task
// panes, shows the ribbon and has its buttons clicked, closes. Host thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "foundation/automation/AutomationObject.h"
#include "foundation/seams/Desktop.h"
#include "foundation/seams/FontList.h"
#include "foundation/seams/HostThread.h"
#include "foundation/seams/InputState.h"
#include "host/driver/PlayedBrowser.h"
#include "host/driver/RunRequest.h"
#include "pane/CPptPane.h"
#include "shell/CConnect.h"

namespace quillmarch::host {

// A button of the ribbon as the host drew it.
struct DrawnButton {
  Wide id;
  Wide onAction;
  Wide label;
  Wide tip;
};

// A task pane as the host keeps it; the add-in may have let go of it.
struct HostedTaskPane {
  ObjectRef window;
  Wide title;
  bool visible = false;
  std::int32_t dock = 0;
  std::int32_t width = 0;  // points
  std::shared_ptr<addin::CPptPane> pane;
  std::unique_ptr<PlayedBrowser> browser;
  int references = 0;  // the add-in's
};

// All of it outlives the host, and the worker of a run that hung when its pane went.
struct AddinHostParts {
  HostThread& thread;
  Desktop& desktop;
  InputState& input;
  FontList& fonts;
  addin::ModuleResources& resources;
  addin::RunObserver observer;              // may be empty
  std::function<void(PlayedPage&)> onPage;  // a pane's page has been made; may be empty
  // For the task panes' calls and their browsers' steps; may be empty.
  PlayedAnswer answer;
  std::uint32_t bridgeWaitMs = addin::kBridgeWaitMs;  // how long a page may take over a request
};

class AddinHost {
 public:
  AddinHost(ObjectRef application, AddinHostParts parts);
  // Stops.
  ~AddinHost();
  AddinHost(const AddinHost&) = delete;
  AddinHost& operator=(const AddinHost&) = delete;

  // The host's start, in its order. False when the add-in fails a call or its ribbon is no XML.
  bool Start();
  // Clicks a button of the ribbon in a window; kUnknownName for a button that is not there. An
  // empty window gives the control no context.
  ResultCode Click(const Wide& buttonId, const ObjectRef& window);
  // The host destroys a task pane, as it does when it closes the window: every call of it fails
  // from here on.
  void CloseTaskPane(std::size_t index);
  // A start message of the page in the task pane, as the panel posts one.
  void SayStart(std::size_t index, const RunRequest& request);
  // The host's end: tells the add-in, destroys the panes' windows, lets go of everything.
  void Stop();

  const std::vector<DrawnButton>& buttons() const { return buttons_; }
  const std::vector<std::shared_ptr<HostedTaskPane>>& taskPanes() const { return taskPanes_; }
  // How often the add-in has asked for the ribbon to be drawn again.
  int invalidations() const { return invalidations_; }
  addin::CConnect* connection() { return connection_.get(); }

 private:
  class Factory;

  bool ReadRibbon(const Wide& xml);
  void DrawButtons();
  ResultCode Call(const Wide& name, const ObjectRef& control, Variant* result);
  std::shared_ptr<HostedTaskPane> MakeTaskPane(const Wide& title, const ObjectRef& window);

  ObjectRef application_;
  AddinHostParts parts_;
  std::shared_ptr<addin::CConnect> connection_;
  ObjectRef ribbon_;
  Wide onLoad_;
  std::vector<DrawnButton> buttons_;
  std::vector<std::shared_ptr<HostedTaskPane>> taskPanes_;
  int invalidations_ = 0;
};

}  // namespace quillmarch::host
