// Wraps any application object, and every object that comes out of it, so that the k-th call fails.
// With no k it only counts. Host thread only; must outlive every object that it wrapped.
#pragma once

#include <cstdint>

#include "foundation/automation/AutomationObject.h"
#include "foundation/automation/Variant.h"

namespace quillmarch::addin::test {

enum class FaultMode {
  kLateBound,  // counts and fails calls of the late-bound road
  kTyped,      // those of the typed road
  kBoth,       // those of either; where the caller then asks the same object by the other road,
               // that call fails as well
};

class FaultyHost {
 public:
  // `failAt` is 1-based; 0 fails nothing.
  explicit FaultyHost(FaultMode mode = FaultMode::kBoth, std::int64_t failAt = 0)
      : mode_(mode), failAt_(failAt) {}
  FaultyHost(const FaultyHost&) = delete;
  FaultyHost& operator=(const FaultyHost&) = delete;

  ObjectRef Wrap(const ObjectRef& object, bool typed = false);

  std::int64_t lateBoundCalls() const { return lateBound_; }
  std::int64_t typedCalls() const { return typed_; }
  // Calls that the mode looks at.
  std::int64_t countedCalls() const;
  bool failed() const { return failed_; }

  // For the wrappers: whether this call is to fail.
  bool FailsNow(bool typed, std::uintptr_t identity);

 private:
  FaultMode mode_;
  std::int64_t failAt_;
  std::int64_t lateBound_ = 0;
  std::int64_t typed_ = 0;
  bool failed_ = false;
  // The call just failed, so that its other road can fail too.
  bool echo_ = false;
  bool echoTyped_ = false;
  std::uintptr_t echoIdentity_ = 0;
};

}  // namespace quillmarch::addin::test
