// How many of each kind of resource the add-in holds right now. Each type that owns one carries a
// LiveCount, so that a test can tell that all of them came back. Any thread.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>

namespace quillmarch {

enum class LiveKind {
  kComObject,      // our own objects that a host or the browser holds; they keep the module loaded
  kHostReference,  // references to objects of the host
  kBrowser,        // references to objects of the browser
  kWindow,
  kTimer,
  kThread,
  kGdiObject,
  kFile,
  kRegistryKey,
  kConnection,  // handles of the transport
  kKinds
};

inline constexpr std::size_t kLiveKinds = static_cast<std::size_t>(LiveKind::kKinds);

inline std::array<std::atomic<long>, kLiveKinds>& LiveCounts() {
  static std::array<std::atomic<long>, kLiveKinds> counts{};
  return counts;
}

// One resource, as long as this lives.
template <LiveKind kind>
class LiveCount {
 public:
  LiveCount() { ++LiveCounts()[static_cast<std::size_t>(kind)]; }
  LiveCount(const LiveCount&) : LiveCount() {}
  LiveCount& operator=(const LiveCount&) { return *this; }
  ~LiveCount() { --LiveCounts()[static_cast<std::size_t>(kind)]; }
};

}  // namespace quillmarch
