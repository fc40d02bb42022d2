#include "host/cli/WrittenOutputs.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>
#include <vector>

#include "foundation/system/KnownFolders.h"
#include "foundation/text/Wide.h"
#include "host/package/InputFile.h"
#include "host/package/OutputFile.h"
#include "host/package/zip/ZipArchive.h"

namespace quillmarch::host {

namespace fs = std::filesystem;

namespace {

constexpr char kListName[] = "outputs";
constexpr std::uintmax_t kMostListBytes = 256 << 10;
constexpr std::size_t kKeptLines = 2000;
constexpr std::size_t kPieceBytes = 256 << 10;
constexpr mode_t kPrivate = 0600;
constexpr std::uint64_t kHashStart = 0xCBF29CE484222325;  // FNV-1a, 64 bits
constexpr std::uint64_t kHashFactor = 0x100000001B3;

struct Stamp {
  std::uint64_t place = 0;  // the path's hash
  std::uint64_t size = 0;
  std::uint32_t crc = 0;
};

fs::path ListPath() {
  const Wide folder = GetUserDataDir();
  return folder.empty() ? fs::path() : fs::path(ToUtf8(folder)) / kListName;
}

std::optional<Stamp> StampOf(const std::string& path) {
  std::error_code failed;
  const std::string place = fs::canonical(path, failed).string();
  InputFile file;
  if (failed || !file.Open(place).empty()) return std::nullopt;
  Stamp stamp{kHashStart, file.Size(), 0};
  for (const char c : place) {
    stamp.place = (stamp.place ^ static_cast<unsigned char>(c)) * kHashFactor;
  }
  std::string piece(kPieceBytes, '\0');
  for (std::uint64_t at = 0; at < file.Size();) {
    const std::size_t got = file.ReadAt(at, piece.data(), piece.size());
    if (got == 0) return std::nullopt;
    stamp.crc = Crc32(std::string_view(piece).substr(0, got), stamp.crc);
    at += got;
  }
  return stamp;
}

std::string LineOf(const Stamp& stamp) {
  char line[64];
  std::snprintf(line, sizeof line, "%016" PRIx64 " %" PRIu64 " %08" PRIx32 "\n", stamp.place,
                stamp.size, stamp.crc);
  return line;
}

bool ReadLine(const std::string& line, Stamp& stamp) {
  return std::sscanf(line.c_str(), "%" SCNx64 " %" SCNu64 " %" SCNx32, &stamp.place, &stamp.size,
                     &stamp.crc) == 3;
}

// Keeps the latest lines of a list that has grown long.
void Shorten(const fs::path& list) {
  std::error_code failed;
  if (fs::file_size(list, failed) < kMostListBytes || failed) return;
  std::vector<std::string> lines;
  std::ifstream file(list);
  for (std::string line; std::getline(file, line);) lines.push_back(line + "\n");
  OutputFile shorter;
  if (!shorter.Open(list.string(), kPrivate).empty()) return;
  std::uint64_t at = 0;
  for (std::size_t i = lines.size() - std::min(lines.size(), kKeptLines); i < lines.size(); ++i) {
    shorter.Write(at, lines[i].data(), lines[i].size());
    at += lines[i].size();
  }
  shorter.Commit();
}

}  // namespace

OutputOrigin OriginOf(const std::string& path) {
  const std::optional<Stamp> now = StampOf(path);
  if (!now) return OutputOrigin::kUnknown;
  OutputOrigin origin = OutputOrigin::kUnknown;
  std::ifstream list(ListPath());
  for (std::string line; std::getline(list, line);) {
    Stamp then;
    if (!ReadLine(line, then) || then.place != now->place) continue;
    origin = then.size == now->size && then.crc == now->crc ? OutputOrigin::kOurs
                                                            : OutputOrigin::kEdited;
  }
  return origin;
}

void RememberOutput(const std::string& path) {
  const fs::path list = ListPath();
  const std::optional<Stamp> stamp = StampOf(path);
  if (list.empty() || !stamp) return;
  std::error_code failed;
  fs::create_directories(list.parent_path(), failed);
  Shorten(list);
  // One write at the end of the file: commands that run at the same time do not mix their lines.
  const int file = open(list.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, kPrivate);
  if (file < 0) return;
  const std::string line = LineOf(*stamp);
  [[maybe_unused]] const ssize_t written = write(file, line.data(), line.size());
  close(file);
}

}  // namespace quillmarch::host
