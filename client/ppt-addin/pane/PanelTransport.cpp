#include "pane/PanelTransport.h"

#include <algorithm>
#include <array>
#include <utility>

#include "foundation/text/JsonText.h"
#include "pane/Terminology.h"
#include "pane/TransportMessages.h"

namespace quillmarch::addin {

namespace {

// A clock that leaps must not leap over the page's work.
class OutsideWork {
 public:
  explicit OutsideWork(HostThread& thread) : thread_(thread) { thread_.OutsideWorkBegins(); }
  ~OutsideWork() { thread_.OutsideWorkEnds(); }
  OutsideWork(const OutsideWork&) = delete;
  OutsideWork& operator=(const OutsideWork&) = delete;

 private:
  HostThread& thread_;
};

template <typename Record>
std::shared_ptr<Record> FindPending(const std::map<Wide, std::shared_ptr<Record>>& pending,
                                    const Wide& requestId) {
  const auto found = pending.find(requestId);
  return found == pending.end() ? nullptr : found->second;
}

}  // namespace

PanelTransport::PanelTransport(Link link) : link_(std::move(link)) {}

Wide PanelTransport::NewRequestId(const char16_t* prefix) {
  return prefix + DecimalUnsigned(++requestIdCounter_);
}

bool PanelTransport::WaitPending(RequestEvent& event) {
  if (std::this_thread::get_id() != ownerThreadId_) return event.Wait(link_.waitMs);
  const OutsideWork pageIsAsked(link_.thread);
  return link_.thread.PumpUntil([&event] { return event.IsSet(); }, link_.waitMs);
}

TranslateBatchResult PanelTransport::TranslateViaPage(const TranslateBatchRequest& request) {
  TranslateBatchResult result;
  if (!link_.available()) {
    result.code = u"webview_unavailable";
    result.message = u"panel unavailable";
    return result;
  }
  const auto record = std::make_shared<PendingTranslateRequest>();
  record->runId = request.runId;
  record->requestId = NewRequestId(u"ppttr_");
  {
    const std::lock_guard lock(mutex_);
    pendingTranslate_[record->requestId] = record;
  }
  link_.post(TranslateBatchMessage(record->requestId, request));
  const bool answered = WaitPending(record->event);

  const std::lock_guard lock(mutex_);
  pendingTranslate_.erase(record->requestId);
  if (!answered) {
    result.code = u"request_timeout";
    result.message = u"JS bridge timeout";
    return result;
  }
  result.ok = record->ok;
  result.translations = std::move(record->translations);
  result.unitIds = std::move(record->unitIds);
  result.code = std::move(record->code);
  result.message = std::move(record->message);
  return result;
}

bool PanelTransport::ResolveTerminologyViaPage(const std::vector<Wide>& glossaryIds,
                                               const Wide& instructionId,
                                               const std::vector<Wide>& corpusTexts,
                                               Wide& instructionOut,
                                               std::vector<GlossaryEntry>& glossaryOut,
                                               Wide& codeOut, Wide& messageOut) {
  if (!link_.available()) {
    codeOut = u"webview_unavailable";
    messageOut.clear();
    return false;
  }
  const auto record = std::make_shared<PendingTerminologyRequest>();
  record->requestId = NewRequestId(u"pptterm_");
  {
    const std::lock_guard lock(mutex_);
    pendingTerminology_[record->requestId] = record;
  }
  link_.post(TerminologyResolveMessage(record->requestId, glossaryIds, instructionId, corpusTexts));
  const bool answered = WaitPending(record->event);

  Wide resultJson;
  {
    const std::lock_guard lock(mutex_);
    pendingTerminology_.erase(record->requestId);
    if (!answered) {
      codeOut = u"request_timeout";
      messageOut = u"terminology bridge timeout";
      return false;
    }
    if (!record->ok) {
      codeOut = std::move(record->code);
      messageOut = std::move(record->message);
      return false;
    }
    resultJson = std::move(record->resultJson);
  }
  ReadResolvedTerms(resultJson, instructionOut, glossaryOut);
  return true;
}

void PanelTransport::CompleteTranslate(const Wide& message) {
  const Wide requestId = JsonGetString(message, u"requestId");
  if (requestId.empty()) return;
  std::shared_ptr<PendingTranslateRequest> record;
  {
    const std::lock_guard lock(mutex_);
    record = FindPending(pendingTranslate_, requestId);
  }
  if (record == nullptr) return;
  PendingTranslateRequest answer;
  answer.ok = JsonGetBool(message, u"ok");
  if (answer.ok) {
    answer.translations = JsonGetStringArray(message, u"translations");
    answer.unitIds = JsonGetStringArray(message, u"unitIds");
  } else {
    answer.code = JsonGetString(message, u"code");
    answer.message = JsonGetString(message, u"message");
  }
  {
    // A second answer, while the waiter has not yet taken the first, overwrites its fields.
    const std::lock_guard lock(mutex_);
    record->ok = answer.ok;
    if (answer.ok) {
      record->translations = std::move(answer.translations);
      record->unitIds = std::move(answer.unitIds);
    } else {
      record->code = std::move(answer.code);
      record->message = std::move(answer.message);
    }
    record->done = true;
  }
  record->event.Set();
}

void PanelTransport::CompleteTerminology(const Wide& message) {
  const Wide requestId = JsonGetString(message, u"requestId");
  if (requestId.empty()) return;
  std::shared_ptr<PendingTerminologyRequest> record;
  {
    const std::lock_guard lock(mutex_);
    record = FindPending(pendingTerminology_, requestId);
  }
  if (record == nullptr) return;
  const bool ok = JsonGetBool(message, u"ok");
  Wide result = ok ? JsonGetObject(message, u"result") : Wide();
  Wide code = ok ? Wide() : JsonGetString(message, u"code");
  Wide text = ok ? Wide() : JsonGetString(message, u"message");
  {
    const std::lock_guard lock(mutex_);
    record->ok = ok;
    if (ok) {
      record->resultJson = std::move(result);
    } else {
      record->code = std::move(code);
      record->message = std::move(text);
    }
    record->done = true;
  }
  record->event.Set();
}

void PanelTransport::FailAllPendingTranslate(const Wide& code) {
  std::vector<std::shared_ptr<PendingTranslateRequest>> failed;
  {
    const std::lock_guard lock(mutex_);
    for (const auto& [requestId, record] : pendingTranslate_) {
      if (record->done) continue;
      record->done = true;
      record->ok = false;
      record->code = code;
      record->message = u"cancelled";  // whatever the code
      failed.push_back(record);
    }
  }
  for (const auto& record : failed) record->event.Set();
}

bool IsSoftBridgeError(const Wide& code) {
  static constexpr std::array<WideView, 8> kSoft = {
      u"cancelled",           u"aborted", u"AbortError", u"request_timeout", u"webview_navigating",
      u"webview_unavailable", u"401",     u"402"};
  return std::find(kSoft.begin(), kSoft.end(), WideView(code)) != kSoft.end();
}

}  // namespace quillmarch::addin
