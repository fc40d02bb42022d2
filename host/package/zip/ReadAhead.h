// Work that will be asked for soon, done on a thread of its own beside the caller's, such as
// reading the next slides while one is walked.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <list>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace quillmarch::host {

// All members but the work itself are for one thread, which may do some of the work too.
template <typename T>
class ReadAhead {
 public:
  using Work = std::function<T()>;
  // While results of more than `mostBytes` wait to be taken, no further work is begun. `bytesOf`
  // is called on the thread that did the work.
  ReadAhead(std::size_t mostBytes, std::function<std::size_t(const T&)> bytesOf)
      : mostBytes_(mostBytes), bytesOf_(std::move(bytesOf)) {}
  ReadAhead(const ReadAhead&) = delete;
  ReadAhead& operator=(const ReadAhead&) = delete;
  ~ReadAhead() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      stop_ = true;
    }
    wake_.notify_all();
    if (worker_.joinable()) worker_.join();
  }

  // Several at once, since waking the worker costs about as much as a small piece of its work.
  void Start(std::vector<std::pair<std::uint64_t, Work>> pieces) {
    if (pieces.empty()) return;
    if (!worker_.joinable()) {
      try {
        worker_ = std::thread([this] { Run(); });
      } catch (const std::system_error&) {
        return;  // No thread to be had: the caller does it all when it comes to it.
      }
    }
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      for (auto& [key, work] : pieces) jobs_.push_back({key, std::move(work)});
    }
    wake_.notify_one();
  }

  // What was started under `key`. While it is under way the caller does other pieces that wait,
  // and sleeps when there are none. Nothing when it was never started, has not been begun (it then
  // never will be) or threw: the caller does it itself.
  std::optional<T> Take(std::uint64_t key) {
    std::unique_lock<std::mutex> lock(mutex_);
    const auto job = Find(key);
    if (job == jobs_.end()) return std::nullopt;
    while (job->state == State::kRunning) {
      const auto other = Next();
      if (other == jobs_.end()) {
        done_.wait(lock, [&] { return job->state != State::kRunning; });
      } else {
        Do(*other, lock);
      }
    }
    std::optional<T> result = std::move(job->result);
    const bool full = readyBytes_ > mostBytes_;
    readyBytes_ -= job->bytes;
    jobs_.erase(job);
    const bool mayGoOn = full && Next() != jobs_.end();
    lock.unlock();
    if (mayGoOn) wake_.notify_one();
    return result;
  }

  // Forgets everything started under a smaller key.
  void DropBelow(std::uint64_t key) {
    std::unique_lock<std::mutex> lock(mutex_);
    const bool full = readyBytes_ > mostBytes_;
    for (auto job = jobs_.begin(); job != jobs_.end();) {
      if (job->key >= key) {
        ++job;
        continue;
      }
      done_.wait(lock, [&] { return job->state != State::kRunning; });
      readyBytes_ -= job->bytes;
      job = jobs_.erase(job);
    }
    const bool mayGoOn = full && Next() != jobs_.end();
    lock.unlock();
    if (mayGoOn) wake_.notify_one();
  }

 private:
  enum class State : std::uint8_t { kWaiting, kRunning, kDone };
  struct Job {
    std::uint64_t key = 0;
    Work work;
    State state = State::kWaiting;
    std::optional<T> result{};
    std::size_t bytes = 0;
  };
  using Jobs = std::list<Job>;

  typename Jobs::iterator Find(std::uint64_t key) {
    auto job = jobs_.begin();
    while (job != jobs_.end() && job->key != key) ++job;
    return job;
  }
  typename Jobs::iterator Next() {
    auto job = jobs_.begin();
    if (readyBytes_ > mostBytes_) return jobs_.end();
    while (job != jobs_.end() && job->state != State::kWaiting) ++job;
    return job;
  }

  // The lock is let go of while the piece is done.
  void Do(Job& job, std::unique_lock<std::mutex>& lock) {
    job.state = State::kRunning;
    lock.unlock();
    std::optional<T> result;
    std::size_t bytes = 0;
    try {
      result.emplace(job.work());
      bytes = bytesOf_(*result);
    } catch (const std::exception&) {
      result.reset();
    }
    lock.lock();
    job.result = std::move(result);
    job.bytes = bytes;
    readyBytes_ += bytes;
    job.state = State::kDone;
  }

  void Run() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (true) {
      wake_.wait(lock, [&] { return stop_ || Next() != jobs_.end(); });
      if (stop_) return;
      Do(*Next(), lock);
      done_.notify_one();
    }
  }

  const std::size_t mostBytes_;
  const std::function<std::size_t(const T&)> bytesOf_;
  std::mutex mutex_;
  std::condition_variable wake_;  // for the worker
  std::condition_variable done_;  // for who asks for a result
  Jobs jobs_;
  std::size_t readyBytes_ = 0;  // of results not yet taken
  bool stop_ = false;
  std::thread worker_;
};

}  // namespace quillmarch::host
