#include "pane/RunEvents.h"

#include <memory>
#include <utility>

#include "foundation/JsonText.h"
#include "pane/CPptPane.h"

namespace {

struct EventRoad {
  std::shared_ptr<PaneWindow> window;
  std::weak_ptr<CPptPane> pane;
  std::uint64_t runId;

  // `makeFields` gives what stands behind the run id, on the window thread.
  template <typename MakeFields>
  void Send(const char16_t* name, MakeFields makeFields) const {
    PostToPane(window, [to = pane, id = runId, name, make = std::move(makeFields)] {
      if (const std::shared_ptr<CPptPane> held = to.lock()) {
        held->CallPage(name, u"{\"runId\":" + DecimalUnsigned(id) + make() + u"}");
      }
    });
  }
};

Wide NoFields() {
  return {};
}

const char16_t* Word(bool value) {
  return value ? u"true" : u"false";
}

}  // namespace

void FillRunSink(CPptPane& pane, std::uint64_t runId, RunSink& sink) {
  const EventRoad road{pane.window, pane.weak_from_this(), runId};
  sink.onRunStarted = [road] { road.Send(u"onRunStarted", NoFields); };
  sink.onScanProgress = [road](std::int32_t current, std::int32_t total, const Wide& phase) {
    // The phase is one of the run's own fixed words, so it goes in as it stands.
    road.Send(u"onScanProgress", [current, total, phase] {
      return u",\"current\":" + Decimal(current) + u",\"total\":" + Decimal(total) +
             u",\"phase\":\"" + phase + u"\"";
    });
  };
  sink.onReady = [road](std::int32_t total, std::int32_t translatable) {
    road.Send(u"onReady", [total, translatable] {
      return u",\"total\":" + Decimal(total) + u",\"translatable\":" + Decimal(translatable);
    });
  };
  sink.onProgress = [road](std::int32_t unit, std::int32_t total, bool skipped,
                           const Wide& original, const Wide& translated) {
    road.Send(u"onProgress", [unit, total, skipped, original, translated] {
      return u",\"wordIndex\":" + Decimal(unit) + u",\"total\":" + Decimal(total) +
             u",\"skipped\":" + Word(skipped) + u",\"original\":\"" + JsonEscape(original) +
             u"\",\"translated\":\"" + JsonEscape(translated) + u"\"";
    });
  };
  sink.onComplete = [road](std::int64_t elapsedMs, std::int32_t total, bool bilingualCopy) {
    road.Send(u"onComplete", [elapsedMs, total, bilingualCopy] {
      return u",\"elapsed\":" + Decimal(elapsedMs) + u",\"total\":" + Decimal(total) +
             u",\"bilingualCopy\":" + Word(bilingualCopy);
    });
  };
  sink.onError = [road](const Wide& code, const Wide& message) {
    road.Send(u"onError", [code, message] {
      return u",\"code\":\"" + JsonEscape(code) + u"\",\"message\":\"" + JsonEscape(message) +
             u"\"";
    });
  };
  sink.onCancelled = [road] { road.Send(u"onCancelled", NoFields); };
}
