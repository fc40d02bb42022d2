// The pipelines of one pair of languages, shared fairly between clients.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "service/engines/ApertiumProcess.h"

namespace quillmarch::service {

class ApertiumPool {
 public:
  // A pipeline takes about 100 MB, so there are only as many as let a second client work while the
  // first one's text takes its time.
  static constexpr std::size_t kPipelines = 2;
  static constexpr std::size_t kPipelinesOfAClient = 1;

  ApertiumPool(std::string modeFile, std::chrono::milliseconds silenceLimit);

  class Lease {
   public:
    Lease() = default;
    Lease(ApertiumPool& pool, std::string client, ApertiumProcess& process)
        : pool_(&pool), client_(std::move(client)), process_(&process) {}
    Lease(Lease&& other) noexcept
        : pool_(std::exchange(other.pool_, nullptr)),
          client_(std::move(other.client_)),
          process_(other.process_) {}
    Lease& operator=(Lease&&) = delete;
    ~Lease() {
      if (pool_ != nullptr) pool_->Release(client_, *process_);
    }
    explicit operator bool() const { return pool_ != nullptr; }
    ApertiumProcess* operator->() const { return process_; }

   private:
    ApertiumPool* pool_ = nullptr;
    std::string client_;
    ApertiumProcess* process_ = nullptr;
  };

  // Waits for a pipeline, in the order of arrival among those that may have one; empty when `stop`
  // becomes true first. A pipeline is started when it is first used.
  Lease Acquire(const std::string& client, const std::atomic<bool>& stop);

 private:
  struct Waiting {
    const std::string& client;
    ApertiumProcess* process = nullptr;
  };
  void Release(const std::string& client, ApertiumProcess& process);
  void Grant();

  const std::string modeFile_;
  const std::chrono::milliseconds silenceLimit_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<std::unique_ptr<ApertiumProcess>> all_;
  std::vector<ApertiumProcess*> idle_;
  std::deque<Waiting*> waiting_;
  std::map<std::string, std::size_t> held_;  // pipelines by client
};

}  // namespace quillmarch::service
