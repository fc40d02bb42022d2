#include "host/package/OutputFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <random>
#include <string_view>
#include <system_error>
#include <vector>

namespace quillmarch::host {

namespace {

constexpr int kMostLinks = 40;  // as many as the kernel follows
constexpr int kNameTries = 16;
constexpr std::size_t kCopyBytes = 256 << 10;
constexpr mode_t kAnybodyWrites = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr mode_t kOwnerBits = S_IRUSR | S_IWUSR;
constexpr mode_t kPermissionBits = 07777;
constexpr mode_t kReadWriteBits = 0666;
constexpr std::string_view kTemporaryName = ".quillmarch-";
constexpr std::size_t kSuffixLetters = 8;
// A running process holds a lock on its temporary file, but for the moment between making and
// locking it.
constexpr std::time_t kSurelyLockedSeconds = 60;

std::string Sentence(int error) {
  if (error == ENOENT) return "There is no such folder.";
  return std::string(std::strerror(error)) + ".";
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
  for (std::size_t i = 0; i < kSuffixLetters; ++i) suffix += kLetters[pick(device)];
  return suffix;
}

// Removes a temporary file whose process was killed: nobody holds its lock any more.
void RemoveIfStale(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) return;
  struct stat status = {};
  const bool ours = fstat(file, &status) == 0 && S_ISREG(status.st_mode) &&
                    status.st_uid == geteuid() &&
                    status.st_mtime + kSurelyLockedSeconds < std::time(nullptr);
  if (ours && flock(file, LOCK_EX | LOCK_NB) == 0) unlink(path.c_str());
  close(file);
}

void RemoveStaleFiles(const std::string& folder) {
  std::error_code failed;
  for (std::filesystem::directory_iterator entry(folder, failed), end; !failed && entry != end;
       entry.increment(failed)) {
    const std::string name = entry->path().filename().string();
    if (name.size() == kTemporaryName.size() + kSuffixLetters && name.starts_with(kTemporaryName)) {
      RemoveIfStale(entry->path().string());
    }
  }
}

}  // namespace

OutputFile::~OutputFile() {
  if (handle_ >= 0) close(handle_);
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

std::string OutputFile::Open(const std::string& target, mode_t permissions) {
  target_ = FollowLinks(target).string();
  found_ = FileStateAt(target_);
  struct stat status = {};
  if (stat(target_.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode)) return "There is a folder of that name.";
    if (!S_ISREG(status.st_mode)) return "It is not a regular file.";
    // A rename asks only the folder, and root is refused nothing; a file that was made read-only
    // is meant to stay as it is.
    if ((status.st_mode & kAnybodyWrites) == 0 ||
        faccessat(AT_FDCWD, target_.c_str(), W_OK, AT_EACCESS) != 0) {
      return "The existing file is read-only.";
    }
    permissions = status.st_mode;
  }
  const std::string folder = FolderOf(target_);
  RemoveStaleFiles(folder);
  for (int i = 0; i < kNameTries && handle_ < 0; ++i) {
    temporary_ = folder + "/" + std::string(kTemporaryName) + RandomSuffix();
    handle_ = open(temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC,
                   (permissions & kReadWriteBits) | kOwnerBits);
    if (handle_ < 0 && errno != EEXIST) break;
  }
  if (handle_ < 0) {
    temporary_.clear();
    return errno == ENOENT ? Sentence(errno) : "Its folder takes no new file: " + Sentence(errno);
  }
  flock(handle_, LOCK_EX | LOCK_NB);
  return {};
}

std::string OutputFile::OpenInMemory() {
  handle_ = memfd_create("package", MFD_CLOEXEC);
  return handle_ < 0 ? Sentence(errno) : std::string();
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

bool OutputFile::CopyFrom(const InputFile& input, std::uint64_t from, std::uint64_t length,
                          std::uint64_t to) {
  std::vector<char> buffer(static_cast<std::size_t>(std::min<std::uint64_t>(length, kCopyBytes)));
  for (std::uint64_t done = 0; done < length && error_ == 0;) {
    const auto wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), length - done));
    if (input.ReadAt(from + done, buffer.data(), wanted) != wanted) {
      inputFailed_ = true;
      error_ = EIO;
    } else {
      Write(to + done, buffer.data(), wanted);
    }
    done += wanted;
  }
  return error_ == 0;
}

std::string OutputFile::Failure() const {
  if (inputFailed_) return "The deck's own file can no longer be read whole.";
  return error_ == 0 ? std::string() : Sentence(error_);
}

std::string OutputFile::Commit() {
  struct stat status = {};
  if (error_ == 0 && stat(target_.c_str(), &status) == 0) {
    // Only root can pass the owner on; without it the bits still hold.
    if (fchown(handle_, status.st_uid, status.st_gid) != 0) errno = 0;
    if (fchmod(handle_, status.st_mode & kPermissionBits) != 0) error_ = errno;
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
