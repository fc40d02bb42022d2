#include "service/engines/RunMemory.h"

#include <utility>

namespace quillmarch::service {

void RunMemory::Note(const std::string& run, const std::string& language, bool hasPair) {
  if (run.empty()) return;
  const std::lock_guard lock(mutex_);
  auto found = runs_.find(run);
  if (found == runs_.end()) {
    if (runs_.size() == kMostRuns) {
      runs_.erase(byAge_.front());
      byAge_.pop_front();
    }
    found = runs_.try_emplace(run).first;
    found->second.age = byAge_.insert(byAge_.end(), run);
  } else {
    byAge_.splice(byAge_.end(), byAge_, found->second.age);
  }
  Recognised& recognised = found->second.recognised;
  if (hasPair || !recognised.hasPair) recognised = {language, hasPair};
}

RunMemory::Recognised RunMemory::Last(const std::string& run) {
  const std::lock_guard lock(mutex_);
  const auto found = runs_.find(run);
  return found == runs_.end() ? Recognised{} : found->second.recognised;
}

}  // namespace quillmarch::service
