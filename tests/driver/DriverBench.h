// A driver over the fake host, with a service on loopback whose engine the test scripts.
#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/driver/RunDriver.h"
#include "host/thread/HostCallGuard.h"
#include "host/thread/LoopThread.h"
#include "service/Service.h"
#include "support/FakeHost.h"

namespace quillmarch::host::test {

using namespace addin;
using namespace addin::test;

// Puts "T(" and ")" around each text. Can be told to fail, and to hold its answers back.
class HeldEngine final : public service::Engine {
 public:
  struct Control {
    std::mutex mutex;
    std::condition_variable changed;
    bool hold = false;
    int asked = 0;
    service::EngineResult failure;  // given when it has a message
    std::vector<service::EngineRequest> requests;
  };
  explicit HeldEngine(std::shared_ptr<Control> control) : control_(std::move(control)) {}
  const char* name() const override { return "held"; }
  service::EngineResult Translate(const service::EngineRequest& request,
                                  const std::atomic<bool>& stop) override;

 private:
  std::shared_ptr<Control> control_;
};

class DriverBench {
 public:
  explicit DriverBench(ClockMode mode = ClockMode::kUnpaced);
  ~DriverBench();
  DriverBench(const DriverBench&) = delete;
  DriverBench& operator=(const DriverBench&) = delete;

  FakePresentation& deck() { return *host.presentations.front(); }
  // The token that the service wants unless the test changes the request.
  RunRequest Request() const;
  RunListener Listener();
  void RunToEnd();
  void RunToEnd(const RunRequest& request);
  void Hold();
  // A run whose worker waits inside its first request.
  bool StartHeld();
  void Release();
  // Names alone, without scan and progress.
  std::vector<std::string> MainEvents() const;

  FakeHost host;
  LoopThread loop;
  HostCallGuard guard;
  std::shared_ptr<HeldEngine::Control> engine = std::make_shared<HeldEngine::Control>();
  std::unique_ptr<service::Service> service;
  std::unique_ptr<RunDriver> driver;
  std::vector<std::string> events;  // name and payload
  std::vector<DrivenRun> reports;
};

}  // namespace quillmarch::host::test
