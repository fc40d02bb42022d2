#include "host/driver/PhaseMeter.h"

#include "host/model/CallCount.h"

namespace quillmarch::host {

PhaseMeter::PhaseMeter()
    : since_(std::chrono::steady_clock::now()),
      invokes_(HostCallCount().invokes),
      lookups_(HostCallCount().nameLookups) {}

PhaseCost PhaseMeter::Next() {
  const PhaseMeter next;
  const PhaseCost cost{std::chrono::duration<double, std::milli>(next.since_ - since_).count(),
                       next.invokes_ - invokes_, next.lookups_ - lookups_};
  *this = next;
  return cost;
}

}  // namespace quillmarch::host
