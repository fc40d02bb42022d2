#include "support/LogCapture.h"

#include <algorithm>

#include "foundation/log/DebugOutput.h"
#include "foundation/text/Wide.h"

namespace quillmarch::addin::test {

LogCapture::LogCapture() {
  SetDebugListener([this](WideView text) {
    if (text == u"\r\n") return;  // each line's end comes by itself
    const std::lock_guard lock(mutex_);
    lines_.push_back(ToUtf8(text));
  });
}

LogCapture::~LogCapture() {
  SetDebugListener({});
}

std::vector<std::string> LogCapture::lines() const {
  const std::lock_guard lock(mutex_);
  return lines_;
}

bool LogCapture::Has(const std::string& line) const {
  return Count(line) > 0;
}

int LogCapture::Count(const std::string& line) const {
  const std::lock_guard lock(mutex_);
  return static_cast<int>(std::count(lines_.begin(), lines_.end(), line));
}

int LogCapture::CountContaining(const std::string& text) const {
  const std::lock_guard lock(mutex_);
  return static_cast<int>(std::count_if(lines_.begin(), lines_.end(), [&](const std::string& line) {
    return line.find(text) != std::string::npos;
  }));
}

std::string LogCapture::Joined() const {
  std::string all;
  for (const std::string& line : lines()) all += line + "\n";
  return all;
}

}  // namespace quillmarch::addin::test
