#include "pane/RunEvents.h"

#include <memory>
#include <utility>

#include "foundation/text/JsonText.h"
#include "pane/CPptPane.h"

namespace quillmarch::addin {

namespace {

// Appends the fields after the run id, each with its comma. A run has an event for every text, so
// the JSON text grows in one buffer.
class Fields {
 public:
  explicit Fields(std::uint64_t runId) : json_(u"{\"runId\":") {
    json_.reserve(kUsualPayload);
    json_ += DecimalUnsigned(runId);
  }
  Fields& Number(WideView name, std::int64_t value) {
    Name(name) += Decimal(value);
    return *this;
  }
  Fields& Flag(WideView name, bool value) {
    Name(name) += value ? WideView(u"true") : WideView(u"false");
    return *this;
  }
  Fields& Text(WideView name, WideView value) { return Raw(name, JsonEscape(value)); }
  // For fixed words, which need no escape.
  Fields& Raw(WideView name, WideView value) {
    ((Name(name) += u'"') += value) += u'"';
    return *this;
  }
  Wide Payload() && { return std::move(json_ += u'}'); }

 private:
  static constexpr std::size_t kUsualPayload = 256;

  Wide& Name(WideView name) { return ((json_ += u",\"") += name) += u"\":"; }

  Wide json_;
};

struct EventRoad {
  std::shared_ptr<PaneWindow> window;
  std::weak_ptr<CPptPane> pane;
  std::uint64_t runId;

  // `addFields` runs on the window thread.
  template <typename AddFields>
  void Send(const char16_t* name, AddFields addFields) const {
    PostToPane(window, [to = pane, id = runId, name, add = std::move(addFields)] {
      if (const std::shared_ptr<CPptPane> held = to.lock()) {
        Fields fields(id);
        add(fields);
        held->browser().CallPage(name, std::move(fields).Payload());
      }
    });
  }
};

void AddNothing(Fields&) {}

}  // namespace

void FillRunSink(CPptPane& pane, std::uint64_t runId, RunSink& sink) {
  const EventRoad road{pane.window(), pane.weak_from_this(), runId};
  sink.onRunStarted = [road] { road.Send(u"onRunStarted", AddNothing); };
  sink.onScanProgress = [road](std::int32_t current, std::int32_t total, const Wide& phase) {
    // The phase is one of the run's own fixed words, so it goes in unescaped.
    road.Send(u"onScanProgress", [current, total, phase](Fields& fields) {
      fields.Number(u"current", current).Number(u"total", total).Raw(u"phase", phase);
    });
  };
  sink.onReady = [road](std::int32_t total, std::int32_t translatable) {
    road.Send(u"onReady", [total, translatable](Fields& fields) {
      fields.Number(u"total", total).Number(u"translatable", translatable);
    });
  };
  sink.onProgress = [road](std::int32_t unit, std::int32_t total, bool skipped,
                           const Wide& original, const Wide& translated) {
    road.Send(u"onProgress", [unit, total, skipped, original, translated](Fields& fields) {
      fields.Number(u"wordIndex", unit)
          .Number(u"total", total)
          .Flag(u"skipped", skipped)
          .Text(u"original", original)
          .Text(u"translated", translated);
    });
  };
  sink.onComplete = [road](std::int64_t elapsedMs, std::int32_t total, bool bilingualCopy) {
    road.Send(u"onComplete", [elapsedMs, total, bilingualCopy](Fields& fields) {
      fields.Number(u"elapsed", elapsedMs)
          .Number(u"total", total)
          .Flag(u"bilingualCopy", bilingualCopy);
    });
  };
  sink.onError = [road](const Wide& code, const Wide& message) {
    road.Send(u"onError", [code, message](Fields& fields) {
      fields.Text(u"code", code).Text(u"message", message);
    });
  };
  sink.onCancelled = [road] { road.Send(u"onCancelled", AddNothing); };
}

}  // namespace quillmarch::addin
