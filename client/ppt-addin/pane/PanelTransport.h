// Requests that go out through the panel's page, under the page's own session: a worker asks, waits
// and gets the page's answer. Two kinds, each with a map of what is pending.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "foundation/seams/HostThread.h"
#include "pane/PendingRequest.h"
#include "translate/TranslateConfig.h"

namespace quillmarch::addin {

inline constexpr std::uint32_t kBridgeWaitMs = 120000;

class PanelTransport {
 public:
  struct Link {
    HostThread& thread;
    std::function<bool()> available;  // any thread: the page can be asked
    std::function<void(Wide)> post;   // any thread: leaves a JSON message for the page
    std::uint32_t waitMs = kBridgeWaitMs;
  };

  // The constructing thread is the owner: its waits let messages through, since the page's answer
  // comes on that very thread.
  explicit PanelTransport(Link link);

  // Any thread; blocks until the page has answered, the request was failed or the time is over.
  TranslateBatchResult TranslateViaPage(const TranslateBatchRequest& request);
  bool ResolveTerminologyViaPage(const std::vector<Wide>& glossaryIds, const Wide& instructionId,
                                 const std::vector<Wide>& corpusTexts, Wide& instructionOut,
                                 std::vector<GlossaryEntry>& glossaryOut, Wide& codeOut,
                                 Wide& messageOut);

  // The page's answers. One that nobody waits for is dropped.
  void CompleteTranslate(const Wide& message);
  void CompleteTerminology(const Wide& message);

  // Ends every wait for a translation, of any run. Terminology waits go on: only the page's
  // answer or their time limit ends them.
  void FailAllPendingTranslate(const Wide& code);

 private:
  bool WaitPending(RequestEvent& event);
  Wide NewRequestId(const char16_t* prefix);

  Link link_;
  const std::thread::id ownerThreadId_ = std::this_thread::get_id();
  std::atomic<std::uint64_t> requestIdCounter_{0};
  // Guards both maps and the fields of the records in them; never held over a wait, a post or the
  // reading of an answer.
  std::mutex mutex_;
  std::map<Wide, std::shared_ptr<PendingTranslateRequest>> pendingTranslate_;
  std::map<Wide, std::shared_ptr<PendingTerminologyRequest>> pendingTerminology_;
};

// Whether a run goes on without terminology after the page failed with this code.
bool IsSoftBridgeError(const Wide& code);

}  // namespace quillmarch::addin
