// Who may use the service, and how much: bearer tokens with optional credits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmarch::service {

// Credits are counted in UTF-16 units of source text that were translated, since the service's
// start. All functions may be called on any thread.
class TokenTable {
 public:
  // Adds the file's lines, each "token" or "token credits"; blank lines and lines that begin with
  // # are passed over. False and a sentence when the file can't be read, a line is malformed or no
  // token is in it.
  bool AddFile(const std::string& path, std::string& error);
  // Without a limit.
  void Add(std::string_view token);

  // With no token at all, everybody is served.
  bool Open() const { return entries_.empty(); }
  // The token of an Authorization header's value; absent when it is not one of ours.
  std::optional<std::size_t> Find(std::string_view authorization) const;
  // Takes credits; false and nothing taken when fewer are left.
  bool Take(std::size_t token, std::uint64_t credits);
  void GiveBack(std::size_t token, std::uint64_t credits);

 private:
  struct Entry {
    std::string token;
    bool limited = false;
    std::uint64_t left = 0;
  };
  std::vector<Entry> entries_;
  std::mutex mutex_;
};

}  // namespace quillmarch::service
