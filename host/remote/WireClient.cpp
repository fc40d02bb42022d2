#include "host/remote/WireClient.h"

namespace quillmarch::host {

namespace {

constexpr std::size_t kCodeBytes = 4;

WireWriter RequestTo(WireOp op, WireHandle handle) {
  WireWriter request;
  request.Byte(static_cast<std::uint8_t>(op));
  request.Long(handle);
  return request;
}

}  // namespace

ResultCode WireClient::Ask(const WireWriter& request, std::string& reply) {
  reply = exchange_(request.bytes(), true);
  WireReader in(reply);
  const ResultCode code = in.Code();
  if (!in.ok()) return kDisconnected;
  reply.erase(0, kCodeBytes);
  return code;
}

ResultCode WireClient::Root(WireObject& out) {
  WireWriter request;
  request.Byte(static_cast<std::uint8_t>(WireOp::kRoot));
  std::string reply;
  const ResultCode code = Ask(request, reply);
  if (Succeeded(code)) out = WireReader(reply).Object();
  return code;
}

ResultCode WireClient::IdOfName(WireHandle handle, WideView name, DispId& id) {
  WireWriter request = RequestTo(WireOp::kIdOfName, handle);
  request.Text(name);
  std::string reply;
  const ResultCode code = Ask(request, reply);
  if (Succeeded(code)) id = static_cast<DispId>(WireReader(reply).Word());
  return code;
}

ResultCode WireClient::Invoke(WireHandle handle, DispId id, std::uint16_t flags,
                              const ParamBlock& params, Variant& result) {
  WireWriter request = RequestTo(WireOp::kInvoke, handle);
  request.Word(static_cast<std::uint32_t>(id));
  request.Short(flags);
  request.Byte(params.namedPut ? 1 : 0);
  request.Word(static_cast<std::uint32_t>(params.reversedArgs.size()));
  for (const Variant& argument : params.reversedArgs) request.Value(argument, give_);
  std::string reply;
  const ResultCode code = Ask(request, reply);
  result.Clear();
  if (Succeeded(code)) result = WireReader(reply).Value(take_);
  return code;
}

ResultCode WireClient::QueryTyped(WireHandle handle, const InterfaceId& iid, WireObject& out) {
  WireWriter request = RequestTo(WireOp::kQueryTyped, handle);
  request.Iid(iid);
  std::string reply;
  const ResultCode code = Ask(request, reply);
  if (Succeeded(code)) out = WireReader(reply).Object();
  return code;
}

void WireClient::Release(WireHandle handle) {
  exchange_(RequestTo(WireOp::kRelease, handle).bytes(), false);
}

}  // namespace quillmarch::host
