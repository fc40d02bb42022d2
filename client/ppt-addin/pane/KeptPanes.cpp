#include "pane/KeptPanes.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "pane/CPptPane.h"

namespace quillmarch::addin {

namespace {

// Never destroyed: at the process's end workers may still be busy.
std::vector<RunReferences>& KeptPanes() {
  static auto& panes = *std::make_unique<std::vector<RunReferences>>().release();
  return panes;
}

}  // namespace

void KeepPane(RunReferences references) {
  KeptPanes().push_back(std::move(references));
}

std::size_t ReleaseEndedPanes() {
  std::vector<RunReferences>& kept = KeptPanes();
  const auto ended = std::stable_partition(kept.begin(), kept.end(), [](const RunReferences& one) {
    return one.pane->run().WorkerRunning();
  });
  // Destroyed once the list is in order again: a pane's end may run anything.
  const std::vector<RunReferences> released(std::make_move_iterator(ended),
                                            std::make_move_iterator(kept.end()));
  kept.erase(ended, kept.end());
  return kept.size();
}

}  // namespace quillmarch::addin
