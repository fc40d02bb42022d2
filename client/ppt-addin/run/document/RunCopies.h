// The copies of slides that receive the translations of a bilingual run. Plain records; host thread
// only.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

namespace quillmarch::addin {

// The bilingual copy of one source slide.
struct CopyInfo {
  std::int32_t copyId = 0;     // SlideID, 0 when unknown
  std::int32_t copyIndex = 0;  // SlideIndex when it was made or found
  std::int32_t sourceId = 0;
};

struct RunCopies {
  bool bilingual = false;
  std::map<std::int32_t, std::int32_t> slideIdBySource;
  std::map<std::int32_t, CopyInfo> copyBySource;
  std::vector<CopyInfo> copyPairs;  // those that this run made
};

}  // namespace quillmarch::addin
