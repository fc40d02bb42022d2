// Work for a few threads, shared fairly between clients, with an end.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace quillmarch::service {

// Clients take turns, and none has more than half of the threads, so that the slow work of one
// leaves threads for the others. A client's own work is begun in order.
class WorkQueue {
 public:
  static constexpr std::size_t kMostWaiting = 512;
  static constexpr std::size_t kMostWaitingOfAClient = 64;

  explicit WorkQueue(std::size_t threads);
  ~WorkQueue();  // works off what waits
  WorkQueue(const WorkQueue&) = delete;
  WorkQueue& operator=(const WorkQueue&) = delete;

  // False when too much waits already.
  bool Add(const std::string& client, std::function<void()> work);

 private:
  struct Client {
    std::deque<std::function<void()>> waiting;
    std::size_t running = 0;
  };
  void Work();
  // The client whose turn it is; end() when nobody's work may begin.
  std::map<std::string, Client>::iterator Next();

  const std::size_t mostOfAClient_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::map<std::string, Client> clients_;
  std::string last_;  // whose turn it was
  std::size_t waiting_ = 0;
  bool ending_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace quillmarch::service
