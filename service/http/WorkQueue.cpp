#include "service/http/WorkQueue.h"

#include <algorithm>
#include <utility>

namespace quillmarch::service {

WorkQueue::WorkQueue(std::size_t threads) : mostOfAClient_(std::max<std::size_t>(1, threads / 2)) {
  for (std::size_t i = 0; i < threads; ++i) threads_.emplace_back([this] { Work(); });
}

WorkQueue::~WorkQueue() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

bool WorkQueue::Add(const std::string& client, std::function<void()> work) {
  {
    const std::lock_guard lock(mutex_);
    const auto found = clients_.find(client);
    const std::size_t own = found == clients_.end() ? 0 : found->second.waiting.size();
    if (waiting_ == kMostWaiting || own == kMostWaitingOfAClient) return false;
    clients_[client].waiting.push_back(std::move(work));
    ++waiting_;
  }
  changed_.notify_one();
  return true;
}

std::map<std::string, WorkQueue::Client>::iterator WorkQueue::Next() {
  auto next = clients_.upper_bound(last_);
  for (std::size_t i = 0; i < clients_.size(); ++i, ++next) {
    if (next == clients_.end()) next = clients_.begin();
    if (!next->second.waiting.empty() && next->second.running < mostOfAClient_) return next;
  }
  return clients_.end();
}

void WorkQueue::Work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    const auto next = Next();
    if (next == clients_.end()) {
      if (ending_ && waiting_ == 0) return;
      changed_.wait(lock);
      continue;
    }
    Client& client = next->second;
    last_ = next->first;
    std::function<void()> work = std::move(client.waiting.front());
    client.waiting.pop_front();
    --waiting_;
    ++client.running;
    lock.unlock();
    work();
    work = nullptr;
    lock.lock();
    // Still the same place: a client with running work is not removed.
    if (--client.running == 0 && client.waiting.empty()) clients_.erase(next);
    changed_.notify_all();
  }
}

}  // namespace quillmarch::service
