#include "host/remote/ObjectServer.h"

#include <exception>
#include <utility>
#include <vector>

namespace quillmarch::host {

namespace {

// Nobody calls with more; refused before anything is allocated.
constexpr std::uint32_t kMostArguments = 64;

}  // namespace

WireObject ObjectServer::Hand(const ObjectRef& object) {
  objects_[++lastHandle_] = object;
  return {lastHandle_, object->Identity()};
}

bool ObjectServer::FailsNow(AutomationObject& object) {
  if (&object == root_.get() || faults.failAt == 0) return false;
  if (--faults.failAt != 0) return false;
  // The next call is at the same place again.
  if (faults.more > 0) {
    --faults.more;
    faults.failAt = 1;
  }
  return true;
}

std::string ObjectServer::Answer(std::string_view request) {
  WireReader in(request);
  const auto op = static_cast<WireOp>(in.Byte());
  WireWriter out;
  ResultCode code = kInvalidArgument;
  if (op == WireOp::kRoot) {
    code = root_ ? kOk : kFail;
    if (root_) out.Object(Hand(root_));
  } else {
    const WireHandle handle = in.Long();
    const auto found = objects_.find(handle);
    if (op == WireOp::kRelease) {
      if (found == objects_.end()) return {};
      const ObjectRef last = std::exchange(found->second, ObjectRef());
      objects_.erase(found);
      return {};
    }
    if (found != objects_.end()) {
      // Inside the call the other side's last reference may not go, yet the object may call out.
      const ObjectRef held = found->second;
      try {
        code = Call(op, *held.get(), in, out);
      } catch (const std::exception&) {
        code = kFail;
      }
    }
  }
  WireWriter reply;
  reply.Code(code);
  return Failed(code) ? reply.bytes() : reply.bytes() + out.bytes();
}

ResultCode ObjectServer::Call(WireOp op, AutomationObject& object, WireReader& in,
                              WireWriter& out) {
  const bool isRoot = &object == root_.get();
  if (op == WireOp::kInvoke) return Invoke(object, in, out);
  if (op == WireOp::kIdOfName) {
    const Wide name = in.Text();
    if (!in.AtEnd()) return kInvalidArgument;
    if (FailsNow(object)) return faults.code;
    if (faults.refuseNames && !isRoot) return kUnknownName;
    DispId id = 0;
    const ResultCode code = object.IdOfName(name, id);
    out.Word(static_cast<std::uint32_t>(id));
    return code;
  }
  if (op == WireOp::kQueryTyped) {
    const InterfaceId iid = in.Iid();
    if (!in.AtEnd()) return kInvalidArgument;
    if (FailsNow(object)) return faults.code;
    if (faults.refuseTypes && !isRoot) return kNoInterface;
    ObjectRef typed;
    const ResultCode code = object.QueryTyped(iid, typed);
    if (Failed(code)) return code;
    if (!typed) return kNoInterface;
    out.Object(Hand(typed));
    return code;
  }
  return kInvalidArgument;
}

ResultCode ObjectServer::Invoke(AutomationObject& object, WireReader& in, WireWriter& out) {
  const auto id = static_cast<DispId>(in.Word());
  const std::uint16_t flags = in.Short();
  const bool namedPut = in.Byte() != 0;
  const std::uint32_t count = in.Word();
  if (!in.ok() || count > kMostArguments) return kInvalidArgument;
  std::vector<Variant> arguments;
  for (std::uint32_t i = 0; i < count; ++i) {
    arguments.push_back(in.Value([this](const WireObject& argument) {
      const auto found = objects_.find(argument.handle);
      return found == objects_.end() ? ObjectRef() : found->second;
    }));
  }
  if (!in.AtEnd()) return kInvalidArgument;
  if (FailsNow(object)) return faults.code;
  Variant result;
  const ResultCode code = object.Invoke(id, flags, ParamBlock{arguments, namedPut}, &result);
  if (Failed(code)) return code;
  out.Value(result, [this](const ObjectRef& given) { return Hand(given); });
  return code;
}

}  // namespace quillmarch::host
