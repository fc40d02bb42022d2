#include "host/driver/EventSink.h"

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace {

// The events on their way. One post carries all that came before it runs: a run reports thousands
// of units, and waking the host thread for each would cost more than the units do.
struct EventQueue {
  RunEventListener listener;
  std::mutex mutex;
  std::vector<RunEvent> waiting;  // not empty: a post is on its way

  // Whether the caller has to post a Deliver.
  bool Add(RunEvent event) {
    const std::lock_guard lock(mutex);
    waiting.push_back(std::move(event));
    return waiting.size() == 1;
  }
  void Deliver() {
    std::vector<RunEvent> events;
    {
      const std::lock_guard lock(mutex);
      events.swap(waiting);
    }
    if (!listener) return;
    for (const RunEvent& event : events) listener(event);
  }
};

}  // namespace

RunSink MakeEventSink(HostThread& thread, std::uint64_t runId, RunEventListener listener) {
  const auto queue = std::make_shared<EventQueue>();
  queue->listener = std::move(listener);
  const auto post = [&thread, runId, queue](RunEvent event) {
    event.runId = runId;
    if (queue->Add(std::move(event))) thread.Post([queue] { queue->Deliver(); });
  };

  RunSink sink;
  sink.onRunStarted = [post] { post({.kind = RunEventKind::kOnRunStarted}); };
  sink.onScanProgress = [post](std::int32_t current, std::int32_t total, const Wide& phase) {
    post({.kind = RunEventKind::kOnScanProgress,
          .current = current,
          .total = total,
          .phase = phase});
  };
  sink.onReady = [post](std::int32_t total, std::int32_t translatable) {
    post({.kind = RunEventKind::kOnReady, .total = total, .translatable = translatable});
  };
  sink.onProgress = [post](std::int32_t unit, std::int32_t total, bool skipped,
                           const Wide& original, const Wide& translated) {
    post({.kind = RunEventKind::kOnProgress,
          .current = unit,
          .total = total,
          .skipped = skipped,
          .original = original,
          .translated = translated});
  };
  sink.onComplete = [post](std::int64_t elapsedMs, std::int32_t total, bool bilingualCopy) {
    post({.kind = RunEventKind::kOnComplete,
          .total = total,
          .elapsedMs = elapsedMs,
          .bilingualCopy = bilingualCopy});
  };
  sink.onError = [post](const Wide& code, const Wide& message) {
    post({.kind = RunEventKind::kOnError, .code = code, .message = message});
  };
  sink.onCancelled = [post] { post({.kind = RunEventKind::kOnCancelled}); };
  return sink;
}
