#include "host/package/zip/PartCompressor.h"

#include <libdeflate.h>

#include <exception>
#include <system_error>
#include <utility>
#include <vector>

namespace quillmarch::host {

namespace {

constexpr int kLevel = 6;
constexpr std::size_t kKeptScratchBytes = 4 << 20;
// A sleeping worker is woken for this many parts at once, since waking it costs about as much as
// packing one. Fewer wait for more, or for whoever asks for them.
constexpr std::size_t kWakeParts = 6;
constexpr std::size_t kWakeBytes = 512 << 10;

struct FreeCompressor {
  void operator()(libdeflate_compressor* compressor) const {
    libdeflate_free_compressor(compressor);
  }
};

// A compressor serves one thread at a time, so each thread that packs keeps its own.
struct Deflater {
  std::unique_ptr<libdeflate_compressor, FreeCompressor> compressor{
      libdeflate_alloc_compressor(kLevel)};
  std::vector<char> scratch;
};

bool Deflate(const std::string& bytes, std::string& deflated) {
  thread_local Deflater deflater;
  if (!deflater.compressor) return false;
  const std::size_t bound =
      libdeflate_deflate_compress_bound(deflater.compressor.get(), bytes.size());
  if (deflater.scratch.size() < bound) deflater.scratch.resize(bound);
  const std::size_t size =
      libdeflate_deflate_compress(deflater.compressor.get(), bytes.data(), bytes.size(),
                                  deflater.scratch.data(), deflater.scratch.size());
  deflated.assign(deflater.scratch.data(), size);
  if (deflater.scratch.size() > kKeptScratchBytes) std::vector<char>().swap(deflater.scratch);
  return size > 0;
}

}  // namespace

PartCompressor::~PartCompressor() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stop_ = true;
  }
  work_.notify_all();
  if (worker_.joinable()) worker_.join();
}

// Runs without the lock: a taken job belongs to the thread that took it.
void PartCompressor::Pack(PackingJob& job) {
  bool failed = false;
  try {
    PartBytes part = job.make();
    job.original = part.original;
    if (!part.original) {
      job.packed.size = part.bytes.size();
      job.packed.crc = part.crc;
      failed = !Deflate(part.bytes, job.packed.deflated);
    }
  } catch (const std::exception&) {
    failed = true;
  }
  job.make = nullptr;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    job.failed = failed;
    job.done = true;
  }
  done_.notify_all();
}

void PartCompressor::Take(PackingJob& job) {
  job.taken = true;
  waitingBytes_ -= job.weight;
}

void PartCompressor::Work() {
  std::unique_lock<std::mutex> lock(mutex_);
  while (true) {
    work_.wait(lock, [&] {
      return stop_ || waiting_.size() >= kWakeParts || waitingBytes_ >= kWakeBytes;
    });
    while (!stop_ && !waiting_.empty()) {
      const std::shared_ptr<PackingJob> job = std::move(waiting_.front());
      waiting_.pop_front();
      if (job->taken) continue;
      Take(*job);
      lock.unlock();
      Pack(*job);
      lock.lock();
    }
    if (stop_) return;
  }
}

std::shared_ptr<PackingJob> PartCompressor::Put(std::size_t weight,
                                                std::function<PartBytes()> make) {
  auto job = std::make_shared<PackingJob>();
  job->make = std::move(make);
  job->weight = weight;
  if (!worker_.joinable()) {
    try {
      worker_ = std::thread([this] { Work(); });
    } catch (const std::system_error&) {
      // No thread to be had: the caller's own does all the work.
      job->taken = true;
      Pack(*job);
      return job;
    }
  }
  bool ours = false;
  bool wake = false;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ours = waitingBytes_ + weight > kMostWaitingBytes;
    if (ours) {
      job->taken = true;
    } else {
      waitingBytes_ += weight;
      waiting_.push_back(job);
      wake = waiting_.size() >= kWakeParts || waitingBytes_ >= kWakeBytes;
    }
  }
  if (ours) {
    Pack(*job);
  } else if (wake) {
    work_.notify_one();
  }
  return job;
}

bool PartCompressor::Wait(const std::shared_ptr<PackingJob>& job) {
  std::unique_lock<std::mutex> lock(mutex_);
  if (!job->taken) {
    Take(*job);
    lock.unlock();
    Pack(*job);
    lock.lock();
  }
  done_.wait(lock, [&] { return job->done; });
  return !job->failed;
}

}  // namespace quillmarch::host
