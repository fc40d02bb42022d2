#include "host/package/InputFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace quillmarch::host {

namespace {

constexpr mode_t kPermissionBits = 07777;

FileState StateOf(const struct stat& status) {
  return {status.st_dev, status.st_ino, static_cast<std::uint64_t>(status.st_size),
          status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

std::string Reason(int error) {
  if (error == ENOENT) return "No such file.";
  return std::string(std::strerror(error)) + ".";
}

}  // namespace

std::optional<FileState> FileStateAt(const std::string& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  return StateOf(status);
}

InputFile::~InputFile() {
  if (handle_ >= 0) close(handle_);
}

std::string InputFile::Open(const std::string& path) {
  // Without O_NONBLOCK a named pipe would hold us until somebody writes to it.
  handle_ = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (handle_ < 0) return Reason(errno);
  struct stat status = {};
  if (fstat(handle_, &status) != 0) return Reason(errno);
  if (S_ISDIR(status.st_mode)) return "It is a folder, not a file.";
  if (!S_ISREG(status.st_mode)) return "It is not a regular file.";
  if (status.st_size == 0) return "The file is empty.";
  opened_ = StateOf(status);
  permissions_ = status.st_mode & kPermissionBits;
  return {};
}

bool InputFile::WasChanged() const {
  struct stat now = {};
  return fstat(handle_, &now) != 0 || StateOf(now) != opened_;
}

std::string InputFile::OpenBytes(std::string_view bytes) {
  if (bytes.empty()) return "The file is empty.";
  handle_ = memfd_create("package", MFD_CLOEXEC);
  for (std::size_t at = 0; handle_ >= 0 && at < bytes.size();) {
    const ssize_t put = write(handle_, bytes.data() + at, bytes.size() - at);
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) return "There is not enough memory to open the file.";
    at += static_cast<std::size_t>(put);
  }
  if (handle_ < 0) return "There is not enough memory to open the file.";
  struct stat status = {};
  if (fstat(handle_, &status) != 0) return Reason(errno);
  opened_ = StateOf(status);
  return {};
}

bool InputFile::IsFileAt(const std::string& path) const {
  const std::optional<FileState> there = FileStateAt(path);
  return there && there->device == opened_.device && there->inode == opened_.inode;
}

std::size_t InputFile::ReadAt(std::uint64_t offset, void* to, std::size_t length) const {
  std::size_t done = 0;
  while (done < length) {
    const ssize_t got = pread(handle_, static_cast<char*>(to) + done, length - done,
                              static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

}  // namespace quillmarch::host
