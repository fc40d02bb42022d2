// A pane in its window with a page that answers, over a FakeHost.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "pane/CPptPane.h"
#include "pane/HandOver.h"
#include "support/FakeHost.h"
#include "support/ManualHostThread.h"
#include "support/ScriptedInput.h"
#include "support/ScriptedWebView.h"

namespace quillmarch::addin::test {

class ListedFonts final : public FontList {
 public:
  std::vector<Wide> FamilyNames() override { return names; }
  std::vector<Wide> names;
};

class PaneHarness {
 public:
  PaneHarness();
  // A second pane in the process, over the host and the clock of another; on a window of its own
  // when `window` names one.
  PaneHarness(PaneHarness& other, const WindowContext& window);
  ~PaneHarness();
  PaneHarness(const PaneHarness&) = delete;
  PaneHarness& operator=(const PaneHarness&) = delete;

  FakePresentation& deck() { return *host.presentations.front(); }
  FakeShapeRef AddSlide(const Wide& text);

  // Lets `inside` in at the host's call number `at`, 1-based and 0 for never, and counts the calls
  // from outside of it in `calls`, which must live until host.onCall is another.
  void LetIn(std::size_t at, std::size_t& calls, std::function<void()> inside);

  // A message of the page, with what it leads to at once.
  void Say(const std::string& json);
  void SayWide(const Wide& json);
  void Start(const std::string& moreFields = "");

  // Those too that posts make.
  void RunPosts();

  // 120 ms later, with the timers that are due.
  void Tick();
  // Runs what is posted until `done`; false when that does not come about.
  bool RunUntil(const std::function<bool()>& done);
  // Until the worker waits for the page's answer number `count`.
  bool WaitForRequests(std::size_t count);
  bool WaitForWorker();
  // Ticks until no run is active or the pane has gone.
  void Finish();

  // The page functions that were called, without their arguments: "onReady".
  std::vector<std::string> Events() const;
  // Events without the progress of scan and units.
  std::vector<std::string> MainEvents() const;
  // The requests that the page got, as they came.
  std::vector<Wide> Requests(const char16_t* action = u"translateBatchRequest") const;

  std::shared_ptr<FakeHost> hostRef;
  std::shared_ptr<ManualHostThread> threadRef;
  FakeHost& host;
  ManualHostThread& thread;
  ScriptedInput input;
  ListedFonts fonts;
  std::shared_ptr<ScriptedWebView> page = std::make_shared<ScriptedWebView>();
  std::vector<RunRecord> records;
  bool pageAnswers = true;       // else requests for translations stay open
  bool pageAnswersTerms = true;  // with an empty result
  int webViewsStarted = 0;
  bool createsWindow = true;
  std::shared_ptr<CPptPane> pane;

  PaneSurroundings Surroundings(std::uint32_t bridgeWaitMs = kBridgeWaitMs);
  // Makes the pane anew, without a window.
  void MakePane(const WindowContext& window, std::uint32_t bridgeWaitMs = kBridgeWaitMs);
  void OpenWindow();
  // The same window with a pane made anew, whose hand-over and surroundings `change` settles.
  void RemakePane(const std::function<void(HandOver&, PaneSurroundings&)>& change);

 private:
  void OnMessage(const Wide& json);
};

}  // namespace quillmarch::addin::test
