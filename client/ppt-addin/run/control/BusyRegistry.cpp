#include "run/control/BusyRegistry.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace quillmarch::addin {

namespace {

using BusyPair = std::pair<std::uintptr_t, const void*>;

std::vector<BusyPair>& Registry() {
  static std::vector<BusyPair> pairs;
  return pairs;
}

}  // namespace

bool EnterBusy(std::uintptr_t presentation, const void* owner) {
  auto& pairs = Registry();
  const bool busy = std::any_of(pairs.begin(), pairs.end(),
                                [&](const BusyPair& pair) { return pair.first == presentation; });
  if (!busy) pairs.emplace_back(presentation, owner);
  return !busy;
}

void LeaveBusy(std::uintptr_t presentation, const void* owner) {
  auto& pairs = Registry();
  const auto found = std::find(pairs.begin(), pairs.end(), BusyPair(presentation, owner));
  if (found != pairs.end()) pairs.erase(found);
}

}  // namespace quillmarch::addin
