#include "host/package/PartCompressor.h"

#include <libdeflate.h>

#include <new>
#include <system_error>
#include <utility>
#include <vector>

namespace {

constexpr int kLevel = 6;
constexpr std::size_t kKeptScratchBytes = 4 << 20;

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
  changed_.notify_all();
  if (worker_.joinable()) worker_.join();
}

// Runs without the lock: a taken job belongs to the thread that took it.
void PartCompressor::Pack(PackingJob& job) {
  bool failed = false;
  try {
    job.packed.size = job.bytes.size();
    failed = !Deflate(job.bytes, job.packed.deflated);
  } catch (const std::bad_alloc&) {
    failed = true;
  }
  std::string().swap(job.bytes);
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    job.failed = failed;
    job.done = true;
  }
  changed_.notify_all();
}

void PartCompressor::Work() {
  std::unique_lock<std::mutex> lock(mutex_);
  while (true) {
    changed_.wait(lock, [&] { return stop_ || !waiting_.empty(); });
    if (stop_) return;
    const std::shared_ptr<PackingJob> job = std::move(waiting_.front());
    waiting_.pop_front();
    if (job->taken) continue;
    job->taken = true;
    waitingBytes_ -= job->bytes.size();
    lock.unlock();
    Pack(*job);
    lock.lock();
  }
}

std::shared_ptr<PackingJob> PartCompressor::Put(std::string bytes, std::uint32_t crc) {
  auto job = std::make_shared<PackingJob>();
  job->bytes = std::move(bytes);
  job->packed.crc = crc;
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
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ours = waitingBytes_ + job->bytes.size() > kMostWaitingBytes;
    if (ours) {
      job->taken = true;
    } else {
      waitingBytes_ += job->bytes.size();
      waiting_.push_back(job);
    }
  }
  if (ours) {
    Pack(*job);
  } else {
    changed_.notify_all();
  }
  return job;
}

const PackedPart* PartCompressor::Wait(const std::shared_ptr<PackingJob>& job) {
  std::unique_lock<std::mutex> lock(mutex_);
  if (!job->taken) {
    job->taken = true;
    waitingBytes_ -= job->bytes.size();
    lock.unlock();
    Pack(*job);
    lock.lock();
  }
  changed_.wait(lock, [&] { return job->done; });
  return job->failed ? nullptr : &job->packed;
}
