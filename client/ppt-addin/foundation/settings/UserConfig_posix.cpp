#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "foundation/settings/UserConfig.h"

namespace quillmarch {

namespace {

// A file that only this process writes. A second writer is refused, as an exclusive open refuses
// it on Windows.
class ExclusiveFile {
 public:
  explicit ExclusiveFile(const std::string& path)
      : file_(open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600)) {
    if (file_ < 0) return;
    // The name may have moved on between the open and the lock: then this is somebody's finished
    // file and not ours to empty.
    struct stat named {};
    struct stat opened {};
    held_ = flock(file_, LOCK_EX | LOCK_NB) == 0 && fstat(file_, &opened) == 0 &&
            stat(path.c_str(), &named) == 0 && named.st_ino == opened.st_ino &&
            named.st_dev == opened.st_dev && ftruncate(file_, 0) == 0;
    if (!held_ && errno == 0) errno = EWOULDBLOCK;
  }
  ~ExclusiveFile() {
    if (file_ >= 0) close(file_);
  }
  ExclusiveFile(const ExclusiveFile&) = delete;
  ExclusiveFile& operator=(const ExclusiveFile&) = delete;

  bool held() const { return held_; }
  bool Write(const std::string& text) const {
    for (std::size_t at = 0; at < text.size();) {
      const ssize_t piece = write(file_, text.data() + at, text.size() - at);
      if (piece < 0 && errno == EINTR) continue;
      if (piece <= 0) return false;
      at += static_cast<std::size_t>(piece);
    }
    return true;
  }

 private:
  int file_;
  bool held_ = false;
};

}  // namespace

bool WriteConfigAtomic(WideView path, const std::string& text, std::uint32_t* errorOut) {
  const std::string target = ToUtf8(path);
  const std::string temporary = target + ".tmp";
  errno = 0;
  const ExclusiveFile file(temporary);
  if (file.held() && file.Write(text) && rename(temporary.c_str(), target.c_str()) == 0) {
    return true;
  }
  if (errorOut != nullptr) *errorOut = static_cast<std::uint32_t>(errno);
  if (file.held()) unlink(temporary.c_str());
  return false;
}

}  // namespace quillmarch
