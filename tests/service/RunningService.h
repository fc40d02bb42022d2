// A service under test on a free port, with its log lines.
#pragma once

#include <gtest/gtest.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "service/LoopbackClient.h"
#include "service/ScriptedEngine.h"
#include "service/Service.h"

namespace quillmarch::service {

// What an engine waits for until a test, or a stop, lets it go.
class Gate {
 public:
  void Open() {
    const std::lock_guard lock(mutex_);
    open_ = true;
    changed_.notify_all();
  }
  void Arrive() {
    const std::lock_guard lock(mutex_);
    ++arrived_;
    changed_.notify_all();
  }
  void WaitArrived(int count = 1) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return arrived_ >= count; });
  }
  // As an engine should: returns at a stop as well.
  void Wait(const std::atomic<bool>& stop) {
    std::unique_lock lock(mutex_);
    while (!open_ && !stop) changed_.wait_for(lock, std::chrono::milliseconds(5));
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool open_ = false;
  int arrived_ = 0;
};

class RunningService {
 public:
  explicit RunningService(ServiceOptions options = {}, ScriptedEngine::Answer script = Echo) {
    options.requestLog = [this](const std::string& line) {
      const std::lock_guard lock(mutex_);
      lines_.push_back(line);
    };
    options.eventLog = [this](const std::string& line) {
      const std::lock_guard lock(mutex_);
      events_.push_back(line);
    };
    auto started = Service::Start(options, std::make_unique<ScriptedEngine>(std::move(script)));
    if (started) {
      service = std::move(started).value();
    } else {
      ADD_FAILURE() << started.error().words;
    }
  }

  std::uint16_t port() const { return service->port(); }
  HttpReply Post(const std::string& body, const std::vector<std::string>& headers = {}) const {
    return HttpRequest("POST", LocalUrl(port()), body, headers);
  }
  // After a stop, when all lines are there.
  std::vector<std::string> StopAndGetLog() {
    service->Stop();
    const std::lock_guard lock(mutex_);
    return lines_;
  }
  std::vector<std::string> StopAndGetEvents() {
    service->Stop();
    const std::lock_guard lock(mutex_);
    return events_;
  }

 private:
  std::mutex mutex_;
  std::vector<std::string> lines_;
  std::vector<std::string> events_;

 public:
  std::unique_ptr<Service> service;
};

inline constexpr char kOneText[] = R"({"texts":["Plan"],"sourceLang":"en","targetLang":"es"})";

}  // namespace quillmarch::service
