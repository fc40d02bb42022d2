#include "service/TokenTable.h"

#include <charconv>
#include <fstream>
#include <sstream>

namespace quillmarch::service {

namespace {

constexpr std::string_view kScheme = "bearer ";

bool IsBearer(std::string_view authorization) {
  if (authorization.size() <= kScheme.size()) return false;
  for (std::size_t i = 0; i < kScheme.size(); ++i) {
    const char c = authorization[i];
    if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c) != kScheme[i]) return false;
  }
  return true;
}

// Takes the same time wherever the first difference stands, so that a token can't be guessed
// letter by letter.
bool SameToken(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  unsigned difference = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    difference |= static_cast<unsigned char>(a[i]) ^ static_cast<unsigned char>(b[i]);
  }
  return difference == 0;
}

}  // namespace

bool TokenTable::AddFile(const std::string& path, std::string& error) {
  std::ifstream file(path);
  if (!file) {
    error = "The token file " + path + " can't be read.";
    return false;
  }
  bool any = false;
  int number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    std::istringstream words(line);
    Entry entry;
    std::string credits;
    std::string more;
    words >> entry.token >> credits >> more;
    if (entry.token.empty() || entry.token[0] == '#') continue;
    if (!credits.empty()) {
      const char* end = credits.data() + credits.size();
      const auto read = std::from_chars(credits.data(), end, entry.left);
      if (read.ec != std::errc() || read.ptr != end || !more.empty()) {
        error = "Line " + std::to_string(number) + " of the token file " + path +
                " is neither a token nor a token with its credits.";
        return false;
      }
      entry.limited = true;
    }
    entries_.push_back(std::move(entry));
    any = true;
  }
  // A file that opens but can't be read to its end, such as a folder.
  if (file.bad() || !any) {
    error = "The token file " + path + " holds no token.";
    return false;
  }
  return true;
}

void TokenTable::Add(std::string_view token) {
  Entry entry;
  entry.token = token;
  entries_.push_back(std::move(entry));
}

std::optional<std::size_t> TokenTable::Find(std::string_view authorization) const {
  if (!IsBearer(authorization)) return std::nullopt;
  const std::string_view token = authorization.substr(kScheme.size());
  std::optional<std::size_t> found;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (SameToken(entries_[i].token, token) && !found) found = i;
  }
  return found;
}

bool TokenTable::Take(std::size_t token, std::uint64_t credits) {
  const std::lock_guard lock(mutex_);
  Entry& entry = entries_[token];
  if (!entry.limited) return true;
  if (entry.left < credits) return false;
  entry.left -= credits;
  return true;
}

void TokenTable::GiveBack(std::size_t token, std::uint64_t credits) {
  const std::lock_guard lock(mutex_);
  if (entries_[token].limited) entries_[token].left += credits;
}

}  // namespace quillmarch::service
