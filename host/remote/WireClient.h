// The other side of the wire: asks an ObjectServer and reads its replies. One thread.
#pragma once

#include <functional>
#include <span>
#include <string>

#include "host/remote/Wire.h"

namespace quillmarch::host {

class WireClient {
 public:
  // Hands a request's body over and gives the reply's body; with `wantsReply` false, and when the
  // connection is lost, nothing.
  using Exchange = std::function<std::string(const std::string& request, bool wantsReply)>;
  // How objects of this side travel, and how handles become objects here.
  using Give = std::function<WireObject(const ObjectRef&)>;
  using Take = std::function<ObjectRef(const WireObject&)>;

  WireClient(Exchange exchange, Give give, Take take)
      : exchange_(std::move(exchange)), give_(std::move(give)), take_(std::move(take)) {}

  ResultCode Root(WireObject& out);
  ResultCode IdOfName(WireHandle handle, WideView name, DispId& id);
  ResultCode Invoke(WireHandle handle, DispId id, std::uint16_t flags, const ParamBlock& params,
                    Variant& result);
  ResultCode QueryTyped(WireHandle handle, const InterfaceId& iid, WireObject& out);
  void Release(WireHandle handle);

 private:
  // kDisconnected without a reply.
  ResultCode Ask(const WireWriter& request, std::string& reply);

  Exchange exchange_;
  Give give_;
  Take take_;
};

// What a call gives when the server has gone, as calls to a host that has gone do.
inline constexpr ResultCode kDisconnected = MakeResult(0x80010108);

}  // namespace quillmarch::host
