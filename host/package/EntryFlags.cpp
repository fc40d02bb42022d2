#include "host/package/EntryFlags.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace {

// Of the end of the directory, an entry of it and the header before an entry's data.
constexpr std::size_t kEndSize = 22;
constexpr std::size_t kEntrySize = 46;
constexpr std::uint64_t kEndSignature = 0x06054b50;
constexpr std::uint64_t kEntrySignature = 0x02014b50;
constexpr std::size_t kMostComment = 0xFFFF;
constexpr std::uint64_t kElsewhere = 0xFFFFFFFF;  // the 64-bit form has the number
constexpr std::uint64_t kNameIsUtf8 = 0x800;

std::uint64_t NumberAt(const std::string& bytes, std::size_t at, std::size_t length) {
  std::uint64_t number = 0;
  for (std::size_t i = length; i-- > 0;) {
    number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
  }
  return number;
}

bool IsAscii(const std::string& bytes, std::size_t at, std::size_t length) {
  return std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                     bytes.begin() + static_cast<std::ptrdiff_t>(at + length),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool Read(const OutputFile& file, std::uint64_t offset, std::size_t length, std::string& bytes) {
  bytes.resize(length);
  return file.ReadAt(offset, bytes.data(), length);
}

}  // namespace

bool AgreeEntryFlags(OutputFile& archive) {
  const std::uint64_t size = archive.Size();
  std::string tail;
  const auto tailSize =
      static_cast<std::size_t>(std::min<std::uint64_t>(size, kEndSize + kMostComment));
  if (tailSize < kEndSize || !Read(archive, size - tailSize, tailSize, tail)) return false;
  std::size_t end = tailSize - kEndSize;
  while (NumberAt(tail, end, 4) != kEndSignature) {
    if (end-- == 0) return false;
  }
  const std::uint64_t length = NumberAt(tail, end + 12, 4);
  const std::uint64_t start = NumberAt(tail, end + 16, 4);
  if (length == kElsewhere || start == kElsewhere) return true;
  if (start + length > size) return false;

  std::string directory;
  if (!Read(archive, start, static_cast<std::size_t>(length), directory)) return false;
  bool changed = false;
  for (std::size_t at = 0; at + kEntrySize <= directory.size();) {
    if (NumberAt(directory, at, 4) != kEntrySignature) return false;
    const std::size_t name = NumberAt(directory, at + 28, 2);
    const std::uint64_t header = NumberAt(directory, at + 42, 4);
    const std::uint64_t flags = NumberAt(directory, at + 8, 2);
    std::string own;
    if (at + kEntrySize + name > directory.size()) return false;
    if (header != kElsewhere && IsAscii(directory, at + kEntrySize, name)) {
      if (!Read(archive, header + 6, 2, own)) return false;
      if (((NumberAt(own, 0, 2) ^ flags) & kNameIsUtf8) != 0) {
        directory[at + 9] = static_cast<char>(directory[at + 9] ^ (kNameIsUtf8 >> 8));
        changed = true;
      }
    }
    at += kEntrySize + name + NumberAt(directory, at + 30, 2) + NumberAt(directory, at + 32, 2);
  }
  return !changed || archive.Write(start, directory.data(), directory.size());
}
