// Keeps the log lines that are written while it lives. One at a time.
#pragma once

#include <mutex>
#include <string>
#include <vector>

namespace quillmarch::addin::test {

class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  // Lines in UTF-8, without prefix and line end.
  std::vector<std::string> lines() const;
  bool Has(const std::string& line) const;
  int Count(const std::string& line) const;
  // How many lines hold the text.
  int CountContaining(const std::string& text) const;
  std::string Joined() const;

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
};

}  // namespace quillmarch::addin::test
