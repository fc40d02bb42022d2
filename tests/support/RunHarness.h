// Plays the pane for one run over a FakeHost: parameters, sink, translator and timer.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "run/PptCtrl.h"
#include "support/FakeHost.h"
#include "support/ManualHostThread.h"
#include "support/ScriptedInput.h"

namespace quillmarch::addin::test {

inline constexpr std::uint32_t kTickMs = 120;

// "T(text)", so that every translation differs from its source.
Wide Translated(const Wide& text);

class RunHarness {
 public:
  // Over a host of its own, with one empty presentation.
  explicit RunHarness(FakePersonality personality = {});
  // A second run in the same process, over the host and the clock of another.
  RunHarness(std::shared_ptr<FakeHost> sharedHost, std::shared_ptr<ManualHostThread> sharedThread);
  ~RunHarness();
  RunHarness(const RunHarness&) = delete;
  RunHarness& operator=(const RunHarness&) = delete;

  FakePresentation& deck() { return *host.presentations.front(); }
  FakeWindow& window() { return *host.windows.front(); }
  void UseScope(Scope scope);

  bool Start();
  // 120 ms later: Tick while the worker runs, else Finish.
  void TickOnce();
  void TickTimes(int times);
  // Ticks until the run has finished.
  void Finish();
  // Start and Finish.
  void RunToEnd();

  // Holds the worker inside batch `number` (1-based) until Release; holding is what makes earlier
  // slides certain to be ready.
  void HoldBatch(int number);
  void WaitUntilHeld();
  void Release();
  // Blocks until the worker has ended.
  void WaitForWorker();

  std::vector<std::string> Events() const;
  // Events without "scan" and "progress".
  std::vector<std::string> MainEvents() const;
  std::vector<std::vector<Wide>> Requests() const;
  const RunRecord& Record() const { return records.at(0); }

  std::shared_ptr<FakeHost> hostRef;
  std::shared_ptr<ManualHostThread> threadRef;
  FakeHost& host;
  ManualHostThread& thread;
  ScriptedInput input;
  RunParams params;
  RunSink sink;
  Wide outMessage;
  bool started = false;
  std::int64_t elapsedMs = -1;
  TranslateConfig* config = nullptr;  // the pane's slot
  std::vector<RunRecord> records;
  std::function<Wide(const Wide&)> translate = Translated;
  // Replaces `translate` when set; runs on the worker (and on the host thread for a repair).
  std::function<TranslateBatchResult(const TranslateBatchRequest&)> onBatch;
  std::function<ObjectRef(const ObjectRef&)> wrapApplication;
  ThreadStart startThread;
  std::unique_ptr<PptCtrl> ctrl;

 private:
  void FillSink();
  void Note(std::string event);
  TranslateBatchResult Answer(const TranslateBatchRequest& request);

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<std::string> events_;
  std::vector<std::vector<Wide>> requests_;
  int batches_ = 0;
  int holdAt_ = 0;
  bool held_ = false;
};

}  // namespace quillmarch::addin::test
