// A host with document windows, played from the add-in's start to its end, with a panel that
// answers. The clock leaps over every wait.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "foundation/settings/UserConfigFile.h"
#include "host/driver/AddinHost.h"
#include "host/driver/UnattendedInput.h"
#include "host/thread/LoopThread.h"
#include "shell/SourceResources.h"
#include "support/FakeHost.h"
#include "support/ScriptedDesktop.h"

namespace quillmarch::host::test {

using namespace addin;
using namespace addin::test;

class NoFonts final : public FontList {
 public:
  std::vector<Wide> FamilyNames() override { return {}; }
};

class AddinScene {
 public:
  // No presentation yet.
  AddinScene();
  ~AddinScene();
  AddinScene(const AddinScene&) = delete;
  AddinScene& operator=(const AddinScene&) = delete;

  // A presentation of one slide with one text, in a window of its own.
  FakeShapeRef AddDeck(const Wide& text);
  ObjectRef Window(std::size_t index) { return host.WindowObject(host.windows.at(index)); }
  // Takes the window out of the host.
  void CloseWindow(std::size_t index);

  AddinHostParts Parts();
  // False when it does not come about within a minute of the host's time.
  bool Wait(const std::function<bool()>& done) { return loop.PumpUntil(done, 60000); }
  // Lets the host's time go by.
  void Pass(std::uint32_t ms) {
    loop.PumpUntil([] { return false; }, ms);
  }
  // Clicks, and waits for the page that the click loads.
  bool OpenPage(AddinHost& addin, const Wide& button, const ObjectRef& window);
  // Begins to run over the first window's deck from the ribbon, up to a request that stays open.
  bool RunToTheFirstRequest(AddinHost& addin);
  // A whole run of a task pane's page; true when its record has come.
  bool Run(AddinHost& addin, std::size_t index);

  // Those whose panes have gone.
  void WaitForHungWorkers();
  // What a stopped add-in has left behind: empty, or in words what.
  std::string Leftovers() const;

  UserConfigFile config;
  FakeHost host;
  LoopThread loop{ClockMode::kUnpaced};
  ScriptedDesktop desktop;
  UnattendedInput hands;
  NoFonts fonts;
  SourceResources resources;
  bool panelTranslates = true;  // else requests for translations stay open
  int batches = 0;              // requests for translations that the panel got
  std::vector<Wide> beacons;
  std::vector<std::string> loaded;  // the addresses of pages
  std::vector<RunRecord> records;
};

// A whole deck, the requests made by the page.
RunRequest WholeDeck();

}  // namespace quillmarch::host::test
