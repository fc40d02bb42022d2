// Who may use the service, and how much: bearer tokens with optional names and credits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/text/Result.h"

namespace quillmarch::service {

// A token stays usable for a request that began with it when the table is loaded anew without it.
struct Token {
  std::string secret;
  std::string name;  // for logs
  bool limited = false;
  std::uint64_t credits = 0;  // where limited
  std::uint64_t used = 0;     // guarded by the table
};
using TokenHandle = std::shared_ptr<Token>;

// Credits are counted in UTF-16 units of source text that were translated, since the service's
// start. All functions may be called on any thread.
class TokenTable {
 public:
  // Replaces the table by the file's lines and `more` tokens without a limit; an empty path reads
  // no file. A line is "token", "token credits" or either followed by "name=..."; without a name
  // the log calls it by its line, "line-3". Blank lines and lines that begin with # are skipped. A
  // token that was in the table before keeps what it has used. Fails, and changes nothing, when the
  // file can't be read, may be read by everybody, has a malformed line or no token at all.
  Result<void> Load(const std::string& path, const std::vector<std::string>& more);

  // With no token at all, everybody is served.
  bool Open() const;
  // The token of an Authorization header's value; null when it is not one of ours.
  TokenHandle Find(std::string_view authorization) const;
  // Takes credits; false and nothing taken when fewer are left.
  bool Take(Token& token, std::uint64_t credits);
  void GiveBack(Token& token, std::uint64_t credits);

 private:
  mutable std::mutex mutex_;
  std::vector<TokenHandle> tokens_;
};

}  // namespace quillmarch::service
