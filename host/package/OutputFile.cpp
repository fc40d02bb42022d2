#include "host/package/OutputFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <vector>

namespace quillmarch::host {

namespace {

constexpr int kMostLinks = 40;  // as many as the kernel follows
constexpr int kNameTries = 16;
constexpr std::size_t kCopyBytes = 256 << 10;
constexpr mode_t kAnybodyWrites = S_IWUSR | S_IWGRP | S_IWOTH;

std::string Sentence(const char* what, int error) {
  return std::string(what) + ": " + std::strerror(error) + ".";
}

// The file that a chain of symbolic links ends at, which need not exist.
std::filesystem::path FollowLinks(std::filesystem::path path) {
  std::error_code ignored;
  for (int i = 0; i < kMostLinks && std::filesystem::is_symlink(path, ignored); ++i) {
    const std::filesystem::path next = std::filesystem::read_symlink(path, ignored);
    if (ignored) break;
    path = next.is_absolute() ? next : path.parent_path() / next;
  }
  return path;
}

std::string FolderOf(const std::string& path) {
  const std::string folder = std::filesystem::path(path).parent_path().string();
  return folder.empty() ? "." : folder;
}

std::string RandomSuffix() {
  constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
  std::random_device device;
  std::uniform_int_distribution<std::size_t> pick(0, sizeof kLetters - 2);
  std::string suffix;
  for (int i = 0; i < 8; ++i) suffix += kLetters[pick(device)];
  return suffix;
}

}  // namespace

OutputFile::~OutputFile() {
  if (handle_ >= 0) close(handle_);
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

std::string OutputFile::Open(const std::string& target) {
  target_ = FollowLinks(target).string();
  struct stat status = {};
  if (stat(target_.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode)) return "It cannot be written: there is a folder of that name.";
    if (!S_ISREG(status.st_mode)) return "It cannot be written: it is not a regular file.";
    // A rename asks only the folder, and root is refused nothing; a file that was made read-only
    // is meant to stay as it is.
    if ((status.st_mode & kAnybodyWrites) == 0 ||
        faccessat(AT_FDCWD, target_.c_str(), W_OK, AT_EACCESS) != 0) {
      return "It cannot be written: the file that stands there is read-only.";
    }
  }
  for (int i = 0; i < kNameTries && handle_ < 0; ++i) {
    temporary_ = FolderOf(target_) + "/.quillmarch-" + RandomSuffix();
    handle_ = open(temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (handle_ < 0 && errno != EEXIST) break;
  }
  if (handle_ < 0) {
    temporary_.clear();
    return Sentence("It cannot be written, its folder takes no new file", errno);
  }
  return {};
}

std::string OutputFile::OpenInMemory() {
  handle_ = memfd_create("package", MFD_CLOEXEC);
  return handle_ < 0 ? Sentence("It cannot be written", errno) : std::string();
}

bool OutputFile::Replaces(const InputFile& input) const {
  return input.IsFileAt(target_);
}

bool OutputFile::Write(std::uint64_t offset, const void* from, std::size_t length) {
  const char* at = static_cast<const char*>(from);
  while (length > 0 && error_ == 0) {
    const ssize_t put = pwrite(handle_, at, length, static_cast<off_t>(offset));
    if (put < 0) {
      if (errno != EINTR) error_ = errno;
      continue;
    }
    at += put;
    length -= static_cast<std::size_t>(put);
    offset += static_cast<std::uint64_t>(put);
  }
  return error_ == 0;
}

std::uint64_t OutputFile::Size() const {
  struct stat status = {};
  return fstat(handle_, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

bool OutputFile::ReadAt(std::uint64_t offset, void* to, std::size_t length) const {
  char* at = static_cast<char*>(to);
  while (length > 0) {
    const ssize_t got = pread(handle_, at, length, static_cast<off_t>(offset));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    at += got;
    length -= static_cast<std::size_t>(got);
    offset += static_cast<std::uint64_t>(got);
  }
  return true;
}

bool OutputFile::CopyFrom(const InputFile& input, std::uint64_t length) {
  std::vector<char> buffer(static_cast<std::size_t>(std::min<std::uint64_t>(length, kCopyBytes)));
  for (std::uint64_t at = 0; at < length && error_ == 0;) {
    const auto wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), length - at));
    if (input.ReadAt(at, buffer.data(), wanted) != wanted) {
      error_ = EIO;
    } else {
      Write(at, buffer.data(), wanted);
    }
    at += wanted;
  }
  return error_ == 0;
}

std::string OutputFile::Failure() const {
  return error_ == 0 ? std::string() : Sentence("It cannot be written", error_);
}

std::string OutputFile::Commit() {
  struct stat status = {};
  if (error_ == 0 && stat(target_.c_str(), &status) == 0) {
    // The owner can be given only by root; without it the bits still hold.
    if (fchown(handle_, status.st_uid, status.st_gid) != 0) errno = 0;
    if (fchmod(handle_, status.st_mode & 07777) != 0) error_ = errno;
  }
  if (error_ == 0 && fsync(handle_) != 0) error_ = errno;
  if (error_ == 0 && std::rename(temporary_.c_str(), target_.c_str()) != 0) error_ = errno;
  if (error_ != 0) return Failure();
  temporary_.clear();
  // The name is durable once the folder is; a file system that cannot do that keeps the file.
  const int folder = open(FolderOf(target_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder >= 0) {
    fsync(folder);
    close(folder);
  }
  return {};
}

}  // namespace quillmarch::host
