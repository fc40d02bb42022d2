#include "support/RunHarness.h"

#include <cstdlib>
#include <filesystem>
#include <utility>

namespace quillmarch::addin::test {

namespace {

// Logs of tests stay out of the user's folders where the platform lets a process say so.
[[maybe_unused]] const bool kLogsAside = [] {
#ifndef _WIN32
  const auto folder = std::filesystem::temp_directory_path() / "quillmarch-run-tests";
  std::error_code ignored;
  std::filesystem::create_directories(folder, ignored);
  setenv("XDG_DATA_HOME", folder.c_str(), 1);
#endif
  return true;
}();

std::shared_ptr<FakeHost> HostWithDeck(FakePersonality personality) {
  auto host = std::make_shared<FakeHost>(std::move(personality));
  host->AddPresentation();
  return host;
}

}  // namespace

Wide Translated(const Wide& text) {
  return u"T(" + text + u")";
}

RunHarness::RunHarness(FakePersonality personality)
    : RunHarness(HostWithDeck(std::move(personality)), std::make_shared<ManualHostThread>()) {}

RunHarness::RunHarness(std::shared_ptr<FakeHost> sharedHost,
                       std::shared_ptr<ManualHostThread> sharedThread)
    : hostRef(std::move(sharedHost)),
      threadRef(std::move(sharedThread)),
      host(*hostRef),
      thread(*threadRef) {
  params.windowContext = host.ContextOf(window());
  params.configSlot = &config;
  params.owner = this;
  params.runId = 7;
  params.translateViaPage = [this](const TranslateBatchRequest& request) {
    return Answer(request);
  };
  FillSink();
}

RunHarness::~RunHarness() {
  Release();
  ctrl.reset();
}

void RunHarness::UseScope(Scope scope) {
  params.scope = scope;
  params.full = scope == Scope::kWholeDeck;
}

bool RunHarness::Start() {
  ObjectRef app = host.Application();
  if (wrapApplication) app = wrapApplication(app);
  const RunObserver observer = [this](const RunRecord& record) { records.push_back(record); };
  ctrl = std::make_unique<PptCtrl>(std::move(app),
                                   RunSurroundings{thread, input, observer, startThread});
  started = ctrl->Start(params, &sink, outMessage);
  return started;
}

void RunHarness::TickOnce() {
  thread.Advance(kTickMs);
  if (ctrl->finished()) return;
  if (ctrl->WorkerRunning()) {
    if (!ctrl->abortRequested()) ctrl->Tick();
  } else {
    ctrl->Finish();
  }
}

void RunHarness::TickTimes(int times) {
  for (int i = 0; i < times; ++i) TickOnce();
}

void RunHarness::Finish() {
  while (!ctrl->finished()) {
    thread.WaitForOutsideWork(1);
    TickOnce();
  }
}

void RunHarness::RunToEnd() {
  if (Start()) Finish();
}

void RunHarness::HoldBatch(int number) {
  const std::lock_guard lock(mutex_);
  holdAt_ = number;
}

void RunHarness::WaitUntilHeld() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return held_; });
}

void RunHarness::Release() {
  const std::lock_guard lock(mutex_);
  holdAt_ = 0;
  held_ = false;
  changed_.notify_all();
}

void RunHarness::WaitForWorker() {
  while (ctrl->WorkerRunning()) thread.WaitForOutsideWork(1);
}

std::vector<std::string> RunHarness::Events() const {
  const std::lock_guard lock(mutex_);
  return events_;
}

std::vector<std::string> RunHarness::MainEvents() const {
  std::vector<std::string> main;
  for (const std::string& event : Events()) {
    if (!event.starts_with("scan ") && !event.starts_with("progress ")) main.push_back(event);
  }
  return main;
}

std::vector<std::vector<Wide>> RunHarness::Requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

void RunHarness::Note(std::string event) {
  const std::lock_guard lock(mutex_);
  events_.push_back(std::move(event));
}

void RunHarness::FillSink() {
  sink.onRunStarted = [this] { Note("started"); };
  sink.onScanProgress = [this](std::int32_t current, std::int32_t total, const Wide& phase) {
    Note("scan " + std::to_string(current) + "/" + std::to_string(total) + " " + ToUtf8(phase));
  };
  sink.onReady = [this](std::int32_t total, std::int32_t translatable) {
    Note("ready " + std::to_string(total) + "/" + std::to_string(translatable));
  };
  sink.onProgress = [this](std::int32_t unit, std::int32_t total, bool skipped,
                           const Wide& original, const Wide& translated) {
    Note("progress " + std::to_string(unit) + "/" + std::to_string(total) +
         (skipped ? " skipped " : " ") + ToUtf8(original) + " -> " + ToUtf8(translated));
  };
  sink.onComplete = [this](std::int64_t elapsed, std::int32_t total, bool copy) {
    elapsedMs = elapsed;
    Note("complete " + std::to_string(total) + (copy ? " copy" : ""));
  };
  sink.onError = [this](const Wide& code, const Wide& message) {
    Note("error " + ToUtf8(code) + ": " + ToUtf8(message));
  };
  sink.onCancelled = [this] { Note("cancelled"); };
}

TranslateBatchResult RunHarness::Answer(const TranslateBatchRequest& request) {
  {
    std::unique_lock lock(mutex_);
    requests_.push_back(request.texts);
    if (++batches_ == holdAt_) {
      held_ = true;
      changed_.notify_all();
      changed_.wait(lock, [this] { return !held_; });
    }
  }
  if (onBatch) return onBatch(request);
  TranslateBatchResult result;
  result.ok = true;
  for (const Wide& text : request.texts) result.translations.push_back(translate(text));
  return result;
}

}  // namespace quillmarch::addin::test
