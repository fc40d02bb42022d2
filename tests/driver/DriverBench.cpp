#include "driver/DriverBench.h"

#include <chrono>
#include <stdexcept>

#include "foundation/transport/Endpoint.h"

namespace quillmarch::host::test {

using namespace addin;
using namespace addin::test;

namespace {

constexpr const char* kToken = "bench-token";

}  // namespace

service::EngineResult HeldEngine::Translate(const service::EngineRequest& request,
                                            const std::atomic<bool>& stop) {
  std::unique_lock lock(control_->mutex);
  control_->requests.push_back(request);
  ++control_->asked;
  control_->changed.notify_all();
  while (control_->hold && !stop) {
    control_->changed.wait_for(lock, std::chrono::milliseconds(10));
  }
  if (!control_->failure.message.empty()) return control_->failure;
  service::EngineResult result;
  result.ok = true;
  for (const std::string& text : request.texts) result.translations.push_back("T(" + text + ")");
  return result;
}

DriverBench::DriverBench(ClockMode mode) : loop(mode), guard(loop) {
  host.AddPresentation();
  service::ServiceOptions options;
  options.tokens = {kToken};
  std::string error;
  auto started = service::Service::Start(options, std::make_unique<HeldEngine>(engine));
  if (!started) throw std::runtime_error(started.error().words);
  service = std::move(started).value();
  ReplaceDefaultEndpoint({u"127.0.0.1", service->port(), false});
  driver = std::make_unique<RunDriver>(host.Application(), loop);
}

DriverBench::~DriverBench() {
  Release();
  driver.reset();
}

RunRequest DriverBench::Request() const {
  RunRequest request;
  request.targetLang = u"es";
  request.accessToken = ToWide(kToken);
  return request;
}

RunListener DriverBench::Listener() {
  RunListener listener;
  listener.onEvent = [this](const PageCall& event) {
    events.push_back(ToUtf8(event.name) + ToUtf8(event.payload));
  };
  listener.onEnded = [this](const DrivenRun& report) { reports.push_back(report); };
  return listener;
}

void DriverBench::RunToEnd() {
  RunToEnd(Request());
}

void DriverBench::RunToEnd(const RunRequest& request) {
  const std::size_t before = reports.size();
  driver->Start(request, Listener());
  loop.RunUntil([this, before] { return reports.size() > before; });
}

void DriverBench::Hold() {
  const std::lock_guard lock(engine->mutex);
  engine->hold = true;
}

bool DriverBench::StartHeld() {
  Hold();
  if (!driver->Start(Request(), Listener())) return false;
  loop.PumpPending();
  std::unique_lock lock(engine->mutex);
  engine->changed.wait(lock, [&] { return engine->asked >= 1; });
  return true;
}

void DriverBench::Release() {
  const std::lock_guard lock(engine->mutex);
  engine->hold = false;
  engine->changed.notify_all();
}

std::vector<std::string> DriverBench::MainEvents() const {
  std::vector<std::string> names;
  for (const std::string& event : events) {
    const std::string name = event.substr(0, event.find('{'));
    if (name != "onScanProgress" && name != "onProgress") names.push_back(name);
  }
  return names;
}

}  // namespace quillmarch::host::test
