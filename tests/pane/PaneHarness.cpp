#include "pane/PaneHarness.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>

#include "foundation/text/JsonText.h"
#include "pane/KeptPanes.h"
#include "support/PageAnswers.h"

namespace quillmarch::addin::test {

namespace {

// Logs of tests stay out of the user's folders where the platform lets a process say so.
[[maybe_unused]] const bool kLogsAside = [] {
#ifndef _WIN32
  const auto folder = std::filesystem::temp_directory_path() / "quillmarch-pane-tests";
  std::error_code ignored;
  std::filesystem::create_directories(folder, ignored);
  setenv("XDG_DATA_HOME", folder.c_str(), 1);
#endif
  return true;
}();

constexpr std::chrono::seconds kPatience{60};

}  // namespace

PaneHarness::PaneHarness()
    : hostRef(std::make_shared<FakeHost>()),
      threadRef(std::make_shared<ManualHostThread>()),
      host(*hostRef),
      thread(*threadRef) {
  host.AddPresentation();
  ProcessAccessToken().clear();
  MakePane(host.ContextOf(*host.windows.front()));
  OpenWindow();
}

PaneHarness::PaneHarness(PaneHarness& other, const WindowContext& window)
    : hostRef(other.hostRef), threadRef(other.threadRef), host(*hostRef), thread(*threadRef) {
  MakePane(window);
  OpenWindow();
}

PaneHarness::~PaneHarness() {
  if (pane != nullptr && pane->HasWindow()) pane->OnDestroy();
  pane.reset();
  while (ReleaseEndedPanes() > 0) thread.WaitForOutsideWork(1);
}

PaneSurroundings PaneHarness::Surroundings(std::uint32_t bridgeWaitMs) {
  return {thread,
          input,
          fonts,
          [this](const RunRecord& record) { records.push_back(record); },
          [this](CPptPane&) { ++webViewsStarted; },
          [this](CPptPane& made, std::uintptr_t) {
            if (createsWindow) made.OnCreate(0xBEEF);
            return createsWindow;
          },
          bridgeWaitMs};
}

void PaneHarness::MakePane(const WindowContext& window, std::uint32_t bridgeWaitMs) {
  if (pane != nullptr && pane->HasWindow()) pane->OnDestroy();
  HandOverBlock().app = host.Application();
  HandOverBlock().context = window;
  pane = CPptPane::Create(Surroundings(bridgeWaitMs));
  HandOverBlock() = {};
}

void PaneHarness::RemakePane(const std::function<void(HandOver&, PaneSurroundings&)>& change) {
  if (pane->HasWindow()) pane->OnDestroy();
  HandOver& block = HandOverBlock();
  block.app = host.Application();
  block.context = pane->windowContext();
  PaneSurroundings surroundings = Surroundings();
  change(block, surroundings);
  pane = CPptPane::Create(surroundings);
  block = {};
  OpenWindow();
}

void PaneHarness::OpenWindow() {
  page->onMessage = [this](const Wide& json) { OnMessage(json); };
  pane->OnCreate(0xBEEF);
  pane->browser().AttachWebView(page, page);
}

FakeShapeRef PaneHarness::AddSlide(const Wide& text) {
  FakeShapeRef shape = TextShape(text);
  deck().AddSlide({shape});
  return shape;
}

void PaneHarness::SayWide(const Wide& json) {
  pane->OnWebMessageReceived(json);
  RunPosts();
}

void PaneHarness::RunPosts() {
  while (thread.HasPosts()) thread.RunPosts();
}

void PaneHarness::LetIn(std::size_t at, std::size_t& calls, std::function<void()> inside) {
  host.onCall = [at, &calls, inside = std::move(inside), in = false](const std::string&) mutable {
    if (in || ++calls != at) return;
    in = true;
    inside();
    in = false;
  };
}

void PaneHarness::Say(const std::string& json) {
  SayWide(ToWide(json));
}

void PaneHarness::Start(const std::string& moreFields) {
  Say("{\"action\":\"start\",\"panelMode\":\"slide\",\"targetLang\":\"es\"" + moreFields + "}");
}

void PaneHarness::Tick() {
  thread.Advance(CPptPane::kRunTickMs);
  thread.FireDueTimers();
  RunPosts();
}

bool PaneHarness::RunUntil(const std::function<bool()>& done) {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  for (;;) {
    RunPosts();
    if (done()) return true;
    if (std::chrono::steady_clock::now() > end) return false;
    thread.WaitForPostOrOutsideWork(1);
  }
}

bool PaneHarness::WaitForRequests(std::size_t count) {
  return RunUntil([&] { return Requests().size() >= count; });
}

bool PaneHarness::WaitForWorker() {
  return RunUntil([&] { return thread.outsideWork() == 0; });
}

void PaneHarness::Finish() {
  RunUntil([&] {
    Tick();
    return pane == nullptr || !pane->run().runActive();
  });
}

std::vector<std::string> PaneHarness::Events() const {
  std::vector<std::string> events;
  for (const std::string& script : page->Scripts()) {
    const std::size_t end = script.find("&&");
    if (script.starts_with("window.on") && end != std::string::npos) {
      events.push_back(script.substr(7, end - 7));
    }
  }
  return events;
}

std::vector<std::string> PaneHarness::MainEvents() const {
  std::vector<std::string> events = Events();
  std::erase(events, "onScanProgress");
  std::erase(events, "onProgress");
  return events;
}

std::vector<Wide> PaneHarness::Requests(const char16_t* action) const {
  std::vector<Wide> requests;
  for (const ScriptedWebView::Call& call : page->calls) {
    if (!call.isScript && JsonGetString(call.text, u"action") == action) {
      requests.push_back(call.text);
    }
  }
  return requests;
}

void PaneHarness::OnMessage(const Wide& json) {
  const bool terms = JsonGetString(json, u"action") == u"terminologyResolveRequest";
  const Wide answer = AnswerTo(json);
  if (answer.empty() || !(terms ? pageAnswersTerms : pageAnswers)) return;
  thread.Post([weak = std::weak_ptr(pane), answer] {
    if (const auto held = weak.lock()) held->OnWebMessageReceived(answer);
  });
}

}  // namespace quillmarch::addin::test
