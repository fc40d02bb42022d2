#include "service/LogFile.h"

#include <cerrno>
#include <cstring>
#include <iostream>
#include <utility>

namespace quillmarch::service {

Result<void> LogFile::Open(const std::string& path) {
  if (path.empty()) return {};
  std::ofstream file(path, std::ios::app);
  if (!file) {
    return Error{ErrorCode::kInputOutput,
                 "Cannot write the log file " + path + ": " + std::strerror(errno) + "."};
  }
  const std::lock_guard lock(mutex_);
  file_ = std::move(file);
  toFile_ = true;
  return {};
}

void LogFile::Write(const std::string& line) {
  const std::lock_guard lock(mutex_);
  (toFile_ ? static_cast<std::ostream&>(file_) : std::cerr) << line << std::endl;
}

}  // namespace quillmarch::service
