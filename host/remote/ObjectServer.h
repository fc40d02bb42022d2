// Serves automation objects to a program elsewhere, over the wire of Wire.h. Any object will do:
// what it answers with is handed out in its turn. Host thread only.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "host/remote/Wire.h"

namespace quillmarch::host {

// What a test makes go wrong with calls of the objects below the root; the root itself always
// answers.
struct ServerFaults {
  std::int64_t failAt = 0;  // counts down with each call; the one that brings it to 0 fails
  std::int64_t more = 0;    // how many fail after that one
  ResultCode code = kFail;
  bool refuseNames = false;  // no name is found
  bool refuseTypes = false;  // no published interface is answered to
};

class ObjectServer {
 public:
  ObjectServer() = default;
  ObjectServer(const ObjectServer&) = delete;
  ObjectServer& operator=(const ObjectServer&) = delete;

  void SetRoot(ObjectRef root) { root_ = std::move(root); }

  // The reply's body; empty for a request that wants none. A request that is not understood gives
  // kInvalidArgument.
  std::string Answer(std::string_view request);

  // References that the other side holds.
  std::size_t liveHandles() const { return objects_.size(); }
  // The other side has gone.
  void ReleaseAll() { objects_.clear(); }

  ServerFaults faults;

 private:
  ResultCode Call(WireOp op, AutomationObject& object, WireReader& in, WireWriter& out);
  ResultCode Invoke(AutomationObject& object, WireReader& in, WireWriter& out);
  WireObject Hand(const ObjectRef& object);
  bool FailsNow(AutomationObject& object);

  ObjectRef root_;
  std::map<WireHandle, ObjectRef> objects_;
  WireHandle lastHandle_ = 0;
};

}  // namespace quillmarch::host
