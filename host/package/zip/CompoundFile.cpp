#include "host/package/zip/CompoundFile.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

namespace quillmarch::host {

namespace {

constexpr std::string_view kSignature = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
constexpr std::size_t kEntryBytes = 128;  // a directory entry; sectors are multiples of it
constexpr std::size_t kNameLengthAt = 64;
constexpr std::size_t kTypeAt = 66;
constexpr char kStreamType = 2;
constexpr std::size_t kChunkBytes = 1 << 20;
// Directories stand near the front or near the end; a huge file is not read whole for a sentence.
constexpr std::uint64_t kSearchedBytes = 256ull << 20;

bool IsStream(const char* entry, std::string_view name) {
  const auto length = static_cast<std::size_t>(static_cast<unsigned char>(entry[kNameLengthAt])) +
                      (static_cast<std::size_t>(entry[kNameLengthAt + 1]) << 8);
  if (entry[kTypeAt] != kStreamType || length != (name.size() + 1) * 2) return false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (entry[2 * i] != name[i] || entry[2 * i + 1] != 0) return false;
  }
  return true;
}

}  // namespace

CompoundKind CompoundKindOf(const InputFile& file) {
  char head[8] = {};
  if (file.ReadAt(0, head, sizeof head) != sizeof head) return CompoundKind::kNone;
  if (std::string_view(head, sizeof head) != kSignature) return CompoundKind::kNone;

  // Every aligned place is looked at rather than the chain followed: a damaged or truncated file
  // still tells what it was.
  CompoundKind kind = CompoundKind::kOther;
  std::vector<char> chunk(kChunkBytes);
  const std::uint64_t end = std::min(file.Size(), kSearchedBytes);
  for (std::uint64_t at = 0; at < end; at += kChunkBytes) {
    const std::size_t got = file.ReadAt(at, chunk.data(), kChunkBytes);
    for (std::size_t i = 0; i + kEntryBytes <= got; i += kEntryBytes) {
      if (IsStream(&chunk[i], "EncryptedPackage")) return CompoundKind::kEncrypted;
      if (IsStream(&chunk[i], "PowerPoint Document")) kind = CompoundKind::kPresentation;
      // "Book" is what Excel 5 and 95 wrote.
      if (IsStream(&chunk[i], "Workbook") || IsStream(&chunk[i], "Book")) {
        kind = CompoundKind::kWorkbook;
      }
    }
  }
  return kind;
}

std::string CompoundFileSentence(const InputFile& file) {
  switch (CompoundKindOf(file)) {
    case CompoundKind::kNone:
      return {};
    case CompoundKind::kEncrypted:
      return "The file is password-protected (encrypted); remove its password in PowerPoint first.";
    case CompoundKind::kPresentation:
      return "The file is an old .ppt file; save it as .pptx in PowerPoint first.";
    default:
      return "The file is an OLE compound file, not a .pptx file.";
  }
}

}  // namespace quillmarch::host
