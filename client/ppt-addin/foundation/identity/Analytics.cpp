#include "foundation/identity/Analytics.h"

#include <atomic>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "foundation/identity/ClientIdentity.h"
#include "foundation/log/Log.h"
#include "foundation/system/LiveCounts.h"
#include "foundation/system/ModulePin.h"
#include "foundation/text/Hex.h"

namespace quillmarch {

namespace {

constexpr WideView kEventsPath = u"/v1/analytics/events";

std::atomic<std::uint8_t> webViewErrorSent{0};
std::atomic<std::size_t> beaconsInTheAir{0};

struct Sender {
  std::mutex mutex;
  std::function<void(AnalyticsBeacon)> replacement;
};

// Never destroyed, as a detached thread may outlive the process's statics.
Sender& ProcessSender() {
  static Sender& sender = *std::make_unique<Sender>().release();
  return sender;
}

std::function<void(AnalyticsBeacon)> ReplacedSender() {
  const std::lock_guard lock(ProcessSender().mutex);
  return ProcessSender().replacement;
}

Wide EventHead(WideView eventName, WideView outcome) {
  Wide json = u"{\"events\":[{\"event\":\"";
  json += eventName;
  json += u"\",\"context\":";
  json += ClientContextJson();
  json += u",\"outcome\":\"";
  json += outcome;
  return json + u"\"";
}

// The case of the words that the pane passes hits none of these, and stays so.
WideView StageWord(const char16_t* stage) {
  const WideView text = stage == nullptr ? WideView() : WideView(stage);
  if (text.find(u"Controller") != WideView::npos) return u"controller";
  if (text.find(u"Environment") != WideView::npos) return u"environment";
  if (text.find(u"UserData") != WideView::npos) return u"user_data_dir";
  return u"init";
}

Wide CodeText(std::uint32_t code) {
  constexpr int kDigits = 8;
  return u"0x" + HexText(code, kDigits);
}

// Counts a beacon's thread from before it is made.
class InTheAir {
 public:
  InTheAir() { ++beaconsInTheAir; }
  ~InTheAir() { --beaconsInTheAir; }
  InTheAir(const InTheAir&) = delete;
  InTheAir& operator=(const InTheAir&) = delete;
};

}  // namespace

void SendAnalyticsEvent(const char16_t* eventName, const char16_t* source) {
  if (eventName == nullptr || *eventName == 0) return;
  PostBeacon(eventName, EventHead(eventName, u"ok") + u",\"props\":{\"source\":\"" +
                            (source == nullptr ? u"unknown" : source) + u"\"}}]}");
}

void SendWebViewInitError(const char16_t* stage, std::uint32_t hresult) {
  std::uint8_t unsent = 0;
  if (!webViewErrorSent.compare_exchange_strong(unsent, 1)) return;
  Wide json = EventHead(u"plugin:error", u"error");
  json += u",\"errorCode\":\"webview2_init\",\"props\":{\"feature\":\"pane\",\"stage\":\"";
  json += StageWord(stage);
  json += u"\",\"rawErrorCode\":\"" + CodeText(hresult) + u"\"}}]}";
  PostBeacon(u"plugin:error", json);
}

void PostBeacon(const Wide& eventName, const Wide& bodyJson) {
  AnalyticsBeacon beacon{DefaultEndpoint(), ToUtf8(bodyJson), eventName};
  if (const auto replaced = ReplacedSender()) {
    replaced(std::move(beacon));
    return;
  }
  PinOwnModule();
  auto counted = std::make_shared<InTheAir>();
  std::thread([beacon = std::move(beacon), counted = std::move(counted)]() mutable {
    const LiveCount<LiveKind::kThread> running;
    try {
      DeliverBeacon(beacon);
    } catch (const std::exception&) {
      // Memory ran out: the event is lost like one without a network.
    }
    counted.reset();
  }).detach();
}

void DeliverBeacon(const AnalyticsBeacon& beacon) {
  Wide error;
  const Wide answer = HttpPostJson(beacon.endpoint, kEventsPath, beacon.body, &error, nullptr,
                                   nullptr, nullptr, nullptr);
  if (!answer.empty()) return;
  // An answer without a body counts as none: nothing but the text is looked at.
  LogLine(beacon.eventName + u" beacon failed: " + (error.empty() ? Wide(u"(no detail)") : error));
}

std::size_t BeaconsInTheAir() {
  return beaconsInTheAir;
}

void SetBeaconSender(std::function<void(AnalyticsBeacon)> sender) {
  const std::lock_guard lock(ProcessSender().mutex);
  ProcessSender().replacement = std::move(sender);
}

void ForgetWebViewInitError() {
  webViewErrorSent = 0;
}

}  // namespace quillmarch
