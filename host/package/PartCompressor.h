// Deflates edited parts as they are put, on a thread of its own beside the caller's.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

// A part as it will stand in the archive.
struct PackedPart {
  std::string deflated;
  std::uint64_t size = 0;  // inflated
  std::uint32_t crc = 0;
};

// One part on its way; handed back and forth by PartCompressor alone.
struct PackingJob {
  std::string bytes;  // emptied once packed
  PackedPart packed;
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

  // Queues the part. While more waits than kMostWaitingBytes the caller's own thread packs, so
  // memory stays bounded and neither processor idles. `crc` is the CRC-32 of `bytes`.
  std::shared_ptr<PackingJob> Put(std::string bytes, std::uint32_t crc);
  // The part once packed; null when memory ran out. The calling thread packs it itself when no
  // other has begun.
  const PackedPart* Wait(const std::shared_ptr<PackingJob>& job);

  static constexpr std::size_t kMostWaitingBytes = 2 << 20;

 private:
  void Work();
  void Pack(PackingJob& job);

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::shared_ptr<PackingJob>> waiting_;
  std::size_t waitingBytes_ = 0;
  bool stop_ = false;
  std::thread worker_;
};
