#include "host/package/zip/ZipDirectory.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace quillmarch::host {

namespace {

constexpr std::size_t kEndBytes = 22;
constexpr std::size_t kCountAt = 10;
constexpr std::size_t kCommentBytes = 0xFFFF;
constexpr std::size_t kLocatorBytes = 20;
constexpr std::size_t kLocatorOffsetAt = 8;
constexpr std::size_t kEnd64CountAt = 32;
constexpr std::size_t kLengthAt = 12;  // of the directory, in the end record
constexpr std::size_t kStartAt = 16;
constexpr std::uint64_t kElsewhere = 0xFFFFFFFF;  // the 64-bit form has the number
// Of an entry in the directory, and of the header before its data.
constexpr std::size_t kEntryBytes = 46;
constexpr std::size_t kEntryFlagsAt = 8;
constexpr std::size_t kNameLengthAt = 28;
constexpr std::size_t kExtraLengthAt = 30;
constexpr std::size_t kCommentLengthAt = 32;
constexpr std::size_t kHeaderAt = 42;
constexpr std::size_t kHeaderFlagsAt = 6;
constexpr std::uint64_t kNameIsUtf8 = 0x800;

std::uint64_t Number(const char* at, std::size_t bytes) {
  std::uint64_t value = 0;
  for (std::size_t i = bytes; i-- > 0;) value = value << 8 | static_cast<unsigned char>(at[i]);
  return value;
}

// Where the end record begins in the archive's last bytes; npos when there is none.
std::size_t EndRecord(const std::string& tail) {
  const std::size_t end = tail.rfind("PK\5\6");
  return end != std::string::npos && end + kEndBytes > tail.size() ? std::string::npos : end;
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool Read(const OutputFile& file, std::uint64_t offset, std::size_t length, std::string& bytes) {
  bytes.resize(length);
  return file.ReadAt(offset, bytes.data(), length);
}

}  // namespace

std::uint64_t DeclaredEntries(const InputFile& file) {
  const std::uint64_t tailBytes =
      std::min<std::uint64_t>(file.Size(), kEndBytes + kCommentBytes + kLocatorBytes);
  std::string tail(static_cast<std::size_t>(tailBytes), '\0');
  tail.resize(file.ReadAt(file.Size() - tailBytes, tail.data(), tail.size()));
  const std::size_t end = EndRecord(tail);
  if (end == std::string::npos) return 0;
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

bool AgreeEntryFlags(OutputFile& archive) {
  const std::uint64_t size = archive.Size();
  std::string tail;
  const auto tailBytes =
      static_cast<std::size_t>(std::min<std::uint64_t>(size, kEndBytes + kCommentBytes));
  if (!Read(archive, size - tailBytes, tailBytes, tail)) return false;
  const std::size_t end = EndRecord(tail);
  if (end == std::string::npos) return false;
  const std::uint64_t length = Number(&tail[end + kLengthAt], 4);
  const std::uint64_t start = Number(&tail[end + kStartAt], 4);
  if (length == kElsewhere || start == kElsewhere) return true;
  if (start + length > size) return false;

  std::string directory;
  if (!Read(archive, start, static_cast<std::size_t>(length), directory)) return false;
  bool changed = false;
  for (std::size_t at = 0; at + kEntryBytes <= directory.size();) {
    if (directory.compare(at, 4, "PK\1\2") != 0) return false;
    char* const entry = &directory[at];
    const std::size_t name = Number(entry + kNameLengthAt, 2);
    const std::uint64_t header = Number(entry + kHeaderAt, 4);
    if (at + kEntryBytes + name > directory.size()) return false;
    if (header != kElsewhere && IsAscii({entry + kEntryBytes, name})) {
      std::string flags;
      if (!Read(archive, header + kHeaderFlagsAt, 2, flags)) return false;
      if (((Number(flags.data(), 2) ^ Number(entry + kEntryFlagsAt, 2)) & kNameIsUtf8) != 0) {
        char& high = entry[kEntryFlagsAt + 1];
        high = static_cast<char>(high ^ static_cast<char>(kNameIsUtf8 >> 8));
        changed = true;
      }
    }
    at += kEntryBytes + name + Number(entry + kExtraLengthAt, 2) +
          Number(entry + kCommentLengthAt, 2);
  }
  return !changed || archive.Write(start, directory.data(), directory.size());
}

}  // namespace quillmarch::host
