#include "host/package/ZipDirectory.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace {

constexpr std::size_t kEndBytes = 22;
constexpr std::size_t kCountAt = 10;
constexpr std::size_t kCommentBytes = 0xFFFF;
constexpr std::size_t kLocatorBytes = 20;
constexpr std::size_t kLocatorOffsetAt = 8;
constexpr std::size_t kEnd64CountAt = 32;

std::uint64_t Number(const char* at, std::size_t bytes) {
  std::uint64_t value = 0;
  for (std::size_t i = bytes; i-- > 0;) value = value << 8 | static_cast<unsigned char>(at[i]);
  return value;
}

}  // namespace

std::uint64_t DeclaredEntries(const InputFile& file) {
  const std::uint64_t tailBytes =
      std::min<std::uint64_t>(file.Size(), kEndBytes + kCommentBytes + kLocatorBytes);
  std::string tail(static_cast<std::size_t>(tailBytes), '\0');
  tail.resize(file.ReadAt(file.Size() - tailBytes, tail.data(), tail.size()));
  const std::size_t end = tail.rfind("PK\5\6");
  if (end == std::string::npos || end + kEndBytes > tail.size()) return 0;
  std::uint64_t count = Number(&tail[end + kCountAt], 2);
  if (end >= kLocatorBytes && tail.compare(end - kLocatorBytes, 4, "PK\6\7") == 0) {
    char record[kEnd64CountAt + 8] = {};
    const std::uint64_t at = Number(&tail[end - kLocatorBytes + kLocatorOffsetAt], 8);
    if (at < file.Size() && file.ReadAt(at, record, sizeof record) == sizeof record) {
      count = std::max(count, Number(record + kEnd64CountAt, 8));
    }
  }
  return count;
}
