// What is remembered of a request through the page until it has its answer.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

#include "foundation/text/Wide.h"

namespace quillmarch::addin {

// Set once, by any thread.
class RequestEvent {
 public:
  void Set();
  bool IsSet();
  // False when `ms` of real time have gone.
  bool Wait(std::uint32_t ms);

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool set_ = false;
};

struct PendingTranslateRequest {
  std::uint64_t runId = 0;
  Wide requestId;
  bool ok = false;
  std::vector<Wide> translations;
  std::vector<Wide> unitIds;
  Wide code;
  Wide message;
  bool done = false;
  RequestEvent event;
};

struct PendingTerminologyRequest {
  Wide requestId;
  Wide resultJson;  // the page's object as it came
  Wide code;
  Wide message;
  bool ok = false;
  bool done = false;
  RequestEvent event;
};

}  // namespace quillmarch::addin
