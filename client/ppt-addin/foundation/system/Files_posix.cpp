#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <memory>

#include "foundation/system/Files.h"

namespace quillmarch {

const char16_t kPathSeparator = u'/';

namespace {

constexpr std::uint64_t kUnitsPerSecond = 10000000;  // 100 ns
constexpr std::int64_t kSecondsFrom1601To1970 = 11644473600;
constexpr std::size_t kReadChunk = 65536;

std::uint64_t FileTimeOf(const timespec& t) {
  return static_cast<std::uint64_t>(t.tv_sec + kSecondsFrom1601To1970) * kUnitsPerSecond +
         static_cast<std::uint64_t>(t.tv_nsec) / 100;
}

void FactsOf(const struct stat& info, FileFacts& facts) {
  facts.isFolder = S_ISDIR(info.st_mode);
  facts.size = static_cast<std::uint64_t>(info.st_size);
  facts.lastWrite = FileTimeOf(info.st_mtim);
}

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  int get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }

 private:
  int fd_;
};

bool IsFolder(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool MakeFolders(const std::string& path) {
  if (::mkdir(path.c_str(), 0700) == 0) return true;
  if (errno == EEXIST) return IsFolder(path);
  const std::size_t slash = path.find_last_of('/');
  if (errno != ENOENT || slash == std::string::npos || slash == 0) return false;
  return MakeFolders(path.substr(0, slash)) && (::mkdir(path.c_str(), 0700) == 0 || IsFolder(path));
}

}  // namespace

bool CreateFolder(WideView path) {
  return !path.empty() && MakeFolders(ToUtf8(path));
}

bool ProbeFile(WideView path) {
  const std::string name = ToUtf8(path);
  {
    const Descriptor file(::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    if (!file) return false;
  }
  ::unlink(name.c_str());
  return true;
}

bool AppendToFile(WideView path, std::string_view bytes) {
  const Descriptor file(
      ::open(ToUtf8(path).c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
  if (!file) return false;
  while (!bytes.empty()) {
    const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool ReadWholeFile(WideView path, std::string& bytes) {
  bytes.clear();
  // Not blocking, as a FIFO in the place of a file would hold the caller for ever.
  const Descriptor file(::open(ToUtf8(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat info {};
  if (!file || ::fstat(file.get(), &info) != 0) return false;
  if (!S_ISREG(info.st_mode)) {
    errno = EINVAL;
    return false;
  }
  std::string read;
  // One byte more than it has, so that the end shows at once.
  std::size_t chunk = std::min(kReadChunk, static_cast<std::size_t>(info.st_size) + 1);
  for (;; chunk = kReadChunk) {
    const std::size_t have = read.size();
    read.resize(have + chunk);
    const ssize_t got = ::read(file.get(), read.data() + have, chunk);
    if (got < 0 && errno == EINTR) {
      read.resize(have);
      continue;
    }
    if (got < 0) return false;
    read.resize(have + static_cast<std::size_t>(got));
    // A regular file gives less than was asked for at its end only.
    if (static_cast<std::size_t>(got) < chunk) break;
  }
  bytes = std::move(read);
  return true;
}

std::uint32_t LastFileError() {
  return static_cast<std::uint32_t>(errno);
}

bool ReadFileFacts(WideView path, FileFacts& facts) {
  struct stat info {};
  if (::stat(ToUtf8(path).c_str(), &info) != 0) return false;
  facts.name = LastComponent(path);
  FactsOf(info, facts);
  return true;
}

std::vector<FileFacts> ListFolder(WideView folder) {
  std::vector<FileFacts> entries;
  const std::string name = ToUtf8(folder);
  const std::unique_ptr<DIR, int (*)(DIR*)> dir(::opendir(name.c_str()), ::closedir);
  if (!dir) return entries;
  while (const dirent* entry = ::readdir(dir.get())) {
    const std::string_view child(entry->d_name);
    if (child == "." || child == "..") continue;
    struct stat info {};
    if (::fstatat(::dirfd(dir.get()), entry->d_name, &info, 0) != 0) continue;
    FileFacts facts;
    facts.name = ToWide(child);
    FactsOf(info, facts);
    entries.push_back(std::move(facts));
  }
  return entries;
}

bool DeleteOneFile(WideView path) {
  return ::unlink(ToUtf8(path).c_str()) == 0;
}

bool MoveOneFile(WideView from, WideView to) {
  return std::rename(ToUtf8(from).c_str(), ToUtf8(to).c_str()) == 0;
}

std::uint64_t FileTimeNow() {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  return FileTimeOf(now);
}

}  // namespace quillmarch
