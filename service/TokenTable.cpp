#include "service/TokenTable.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <sstream>
#include <utility>

namespace quillmarch::service {

namespace {

constexpr std::string_view kScheme = "bearer ";
constexpr std::string_view kNameKey = "name=";
constexpr std::size_t kLongestName = 40;

bool IsBearer(std::string_view authorization) {
  if (authorization.size() <= kScheme.size()) return false;
  for (std::size_t i = 0; i < kScheme.size(); ++i) {
    const char c = authorization[i];
    if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c) != kScheme[i]) return false;
  }
  return true;
}

// Takes the same time wherever the first difference is, so that a token can't be guessed letter by
// letter.
bool SameToken(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  unsigned difference = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    difference |= static_cast<unsigned char>(a[i]) ^ static_cast<unsigned char>(b[i]);
  }
  return difference == 0;
}

bool IsName(std::string_view text) {
  return !text.empty() && text.size() <= kLongestName &&
         std::all_of(text.begin(), text.end(),
                     [](char c) { return c > ' ' && c < '\x7f' && c != '='; });
}

// False when the line is malformed.
bool ReadLine(const std::string& line, Token& token) {
  std::istringstream words(line);
  words >> token.secret;
  if (token.secret.empty() || token.secret[0] == '#') {
    token.secret.clear();
    return true;
  }
  std::string word;
  words >> word;
  if (!word.empty() && !std::string_view(word).starts_with(kNameKey)) {
    const char* end = word.data() + word.size();
    const auto read = std::from_chars(word.data(), end, token.credits);
    if (read.ec != std::errc() || read.ptr != end) return false;
    token.limited = true;
    word.clear();
    words >> word;
  }
  if (word.empty()) return true;
  if (!std::string_view(word).starts_with(kNameKey)) return false;
  token.name = word.substr(kNameKey.size());
  return IsName(token.name) && !(words >> word);
}

Result<std::vector<TokenHandle>> ReadFile(const std::string& path) {
  const std::string file = "The token file " + path;
  std::ifstream in(path);
  struct stat status {};
  if (!in || stat(path.c_str(), &status) != 0) {
    return Error{ErrorCode::kInputOutput,
                 "Cannot read the token file " + path + ": " + std::strerror(errno) + "."};
  }
  if ((status.st_mode & (S_IROTH | S_IWOTH)) != 0) {
    return Error{ErrorCode::kDenied,
                 file + " is open to every user of this machine; run chmod o-rw " + path + "."};
  }
  std::vector<TokenHandle> tokens;
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    const std::string place = std::to_string(++number);
    auto token = std::make_shared<Token>();
    if (!ReadLine(line, *token)) {
      return Error{ErrorCode::kDamaged, "Line " + place + " of the token file " + path +
                                            " is neither a token nor a token with its credits."};
    }
    if (token->secret.empty()) continue;
    if (token->name.empty()) token->name = "line-" + place;
    tokens.push_back(std::move(token));
  }
  // A file that opens but can't be read to its end, such as a folder.
  if (in.bad() || tokens.empty()) return Error{ErrorCode::kDamaged, file + " holds no token."};
  return tokens;
}

}  // namespace

Result<void> TokenTable::Load(const std::string& path, const std::vector<std::string>& more) {
  std::vector<TokenHandle> tokens;
  if (!path.empty()) {
    Result<std::vector<TokenHandle>> read = ReadFile(path);
    if (!read) return std::move(read).error();
    tokens = std::move(read).value();
  }
  for (std::size_t i = 0; i < more.size(); ++i) {
    auto token = std::make_shared<Token>();
    token->secret = more[i];
    token->name = "given-" + std::to_string(i + 1);
    tokens.push_back(std::move(token));
  }
  const std::lock_guard lock(mutex_);
  for (TokenHandle& token : tokens) {
    for (const TokenHandle& before : tokens_) {
      if (before->secret != token->secret) continue;
      // A request under way may still take from the handle it has, so the handle itself stays.
      before->name = token->name;
      before->limited = token->limited;
      before->credits = token->credits;
      token = before;
      break;
    }
  }
  tokens_ = std::move(tokens);
  return {};
}

bool TokenTable::Open() const {
  const std::lock_guard lock(mutex_);
  return tokens_.empty();
}

TokenHandle TokenTable::Find(std::string_view authorization) const {
  if (!IsBearer(authorization)) return nullptr;
  const std::string_view secret = authorization.substr(kScheme.size());
  const std::lock_guard lock(mutex_);
  TokenHandle found;
  for (const TokenHandle& token : tokens_) {
    if (SameToken(token->secret, secret) && !found) found = token;
  }
  return found;
}

bool TokenTable::Take(Token& token, std::uint64_t credits) {
  const std::lock_guard lock(mutex_);
  if (token.limited) {
    const std::uint64_t left = token.credits > token.used ? token.credits - token.used : 0;
    if (left < credits) return false;
  }
  token.used += credits;
  return true;
}

void TokenTable::GiveBack(Token& token, std::uint64_t credits) {
  const std::lock_guard lock(mutex_);
  token.used -= std::min(token.used, credits);
}

}  // namespace quillmarch::service
