// Which language a run's texts were last recognised in. What one run showed never decides another's
// translation, whether of the same client or of another.
#pragma once

#include <cstddef>
#include <list>
#include <map>
#include <mutex>
#include <string>

namespace quillmarch::service {

// All functions may be called on any thread. Only the latest runs are remembered.
class RunMemory {
 public:
  struct Recognised {
    std::string language;  // ISO 639-3; empty when nothing was recognised yet
    bool hasPair = false;
  };
  // A language with a pair stays when one without is noted after it. An empty run is not noted.
  void Note(const std::string& run, const std::string& language, bool hasPair);
  Recognised Last(const std::string& run);

  static constexpr std::size_t kMostRuns = 256;

 private:
  struct Entry {
    Recognised recognised;
    std::list<std::string>::iterator age;
  };
  std::mutex mutex_;
  std::list<std::string> byAge_;  // the one noted last is at the end
  std::map<std::string, Entry> runs_;
};

}  // namespace quillmarch::service
