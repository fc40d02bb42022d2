#include "host/cli/TokenFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "host/cli/Sentences.h"
#include "host/cli/TerminalText.h"

namespace quillmarch::host {

namespace {

constexpr std::streamsize kLongestToken = 8192;

}  // namespace

bool ReadTokenFile(const std::string& path, std::string& token, std::string& error) {
  std::ifstream file(path, std::ios::binary);
  std::string text(static_cast<std::size_t>(kLongestToken) + 1, '\0');
  if (file) file.read(text.data(), kLongestToken + 1);
  // A folder opens like a file and fails at the first read.
  if (!file.is_open() || file.bad() || (file.fail() && !file.eof())) {
    error = CannotSentence("read the token file " + PlainLine(path),
                           errno == ENOENT ? "no such file" : std::strerror(errno));
    return false;
  }
  text.resize(static_cast<std::size_t>(file.gcount()));

  const char* const blanks = " \t\r\n";
  const std::size_t begin = std::min(text.find_first_not_of(blanks), text.size());
  token = text.substr(begin, text.find_first_of(blanks, begin) - begin);
  const bool visible =
      std::all_of(token.begin(), token.end(), [](char c) { return c > ' ' && c < '\x7F'; });
  if (token.empty() || !visible || token.size() > static_cast<std::size_t>(kLongestToken)) {
    error = CannotSentence("use the token file " + PlainLine(path), "it holds no usable token");
    return false;
  }
  return true;
}

}  // namespace quillmarch::host
