// A connection in a host with document windows, a ribbon and task panes whose controls are real
// panes, with browsers that the test completes.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "foundation/identity/Analytics.h"
#include "foundation/settings/UserConfigFile.h"
#include "pane/CPptPane.h"
#include "shell/CConnect.h"
#include "shell/FakeTaskPane.h"
#include "shell/SourceResources.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"
#include "support/ManualHostThread.h"
#include "support/ScriptedBrowser.h"
#include "support/ScriptedDesktop.h"
#include "support/ScriptedInput.h"

namespace quillmarch::addin::test {

class NoFonts final : public FontList {
 public:
  std::vector<Wide> FamilyNames() override { return {}; }
};

class ShellHarness {
 public:
  // One presentation in one window, connected, with a factory.
  ShellHarness();
  ~ShellHarness();
  ShellHarness(const ShellHarness&) = delete;
  ShellHarness& operator=(const ShellHarness&) = delete;

  FakeWindow& AddWindow();
  const std::shared_ptr<FakeWindow>& window(std::size_t index) { return host.windows[index]; }
  // Takes a window out of the host, as closing it does.
  void CloseWindow(std::size_t index);

  // A ribbon control with an id and what it says its context is; an empty one has no such member.
  static ObjectRef Control(const Wide& id, const ObjectRef& context = {});
  ObjectRef ControlIn(std::size_t windowIndex, const Wide& id = u"btn");
  // A click through the ribbon's dispatch.
  ResultCode Click(DispId id, std::size_t windowIndex);
  ResultCode ClickWith(DispId id, const ObjectRef& control);

  // One task pane's control made by the factory.
  struct Made {
    std::shared_ptr<TaskPaneState> task;
    std::shared_ptr<CPptPane> pane;
    std::shared_ptr<ScriptedBrowser> browser;
  };
  Made& made(std::size_t index) { return made_.at(index); }
  std::size_t madeCount() const { return made_.size(); }

  std::vector<std::string> BoxTexts() const;

  // ---- How the factory behaves ----
  ResultCode createResult = kOk;
  bool createsNothing = false;    // succeeds without a pane
  ObjectRef landsIn;              // another window than asked for
  std::int32_t firstWidth = 300;  // of a task pane that is made
  bool takesWidth = true;
  std::uint32_t bridgeWaitMs = kBridgeWaitMs;  // of a pane that is made
  std::function<void()> onCreate;              // inside CreateCTP, before the control is made
  std::vector<std::string> events;             // "event source" of each beacon

  UserConfigFile config;
  FakeHost host;
  ManualHostThread thread;
  ScriptedDesktop desktop;
  SourceResources resources;
  ScriptedInput input;
  NoFonts fonts;
  std::shared_ptr<CConnect> connect;

 private:
  class Factory;
  friend class Factory;
  ResultCode Create(const Wide& progId, const Wide& title, const ObjectRef& parentWindow,
                    std::shared_ptr<TaskPane>& out);

  std::vector<Made> made_;
};

}  // namespace quillmarch::addin::test
