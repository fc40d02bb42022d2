// A log that lines are appended to, on a file or standard error.
#pragma once

#include <fstream>
#include <mutex>
#include <string>

#include "foundation/text/Result.h"

namespace quillmarch::service {

// All functions may be called on any thread.
class LogFile {
 public:
  // An empty path is standard error. Called again, it opens the file anew, which is what a program
  // that renames logs wants; on failure the old file stays in use.
  Result<void> Open(const std::string& path);
  void Write(const std::string& line);

 private:
  std::mutex mutex_;
  std::ofstream file_;
  bool toFile_ = false;
};

}  // namespace quillmarch::service
