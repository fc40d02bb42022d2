// Makes and deflates edited parts as they are put, on a thread of its own beside the caller's.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace quillmarch::host {

// A part as it will stand in the archive.
struct PackedPart {
  std::string deflated;
  std::uint64_t size = 0;  // inflated
  std::uint32_t crc = 0;
};

// A part's bytes before they are packed.
struct PartBytes {
  std::string bytes;
  std::uint32_t crc = 0;  // CRC-32
  bool original = false;  // they are what the archive holds already, and nothing is packed
};

// One part on its way; handed back and forth by PartCompressor alone.
struct PackingJob {
  std::function<PartBytes()> make;  // emptied once packed
  std::size_t weight = 0;
  PackedPart packed;
  bool original = false;
  bool taken = false;
  bool done = false;
  bool failed = false;  // memory ran out
};

class PartCompressor {
 public:
  PartCompressor() = default;
  PartCompressor(const PartCompressor&) = delete;
  PartCompressor& operator=(const PartCompressor&) = delete;
  // Drops what is still waiting.
  ~PartCompressor();

  // Queues the part. `make` is called once, on any thread; `weight` is about how many bytes of
  // memory it holds until then. While more waits than kMostWaitingBytes the caller's own thread
  // packs, so memory stays bounded and neither processor idles.
  std::shared_ptr<PackingJob> Put(std::size_t weight, std::function<PartBytes()> make);
  // Returns once the part is packed, or found to be the original; false when memory ran out. The
  // calling thread packs it itself when no other has begun.
  bool Wait(const std::shared_ptr<PackingJob>& job);

  static constexpr std::size_t kMostWaitingBytes = 2 << 20;

 private:
  void Work();
  void Pack(PackingJob& job);
  void Take(PackingJob& job);

  std::mutex mutex_;
  std::condition_variable work_;  // for the worker
  std::condition_variable done_;  // for who waits for a part
  std::deque<std::shared_ptr<PackingJob>> waiting_;
  std::size_t waitingBytes_ = 0;
  bool stop_ = false;
  std::thread worker_;
};

}  // namespace quillmarch::host
