// The objects of an ObjectServer as automation objects again, so that tests can ask them as they
// ask any other.
#pragma once

#include <memory>

#include "foundation/automation/Automation.h"
#include "host/remote/ObjectServer.h"
#include "host/remote/WireClient.h"

namespace quillmarch::host::test {

class RemoteLink {
 public:
  explicit RemoteLink(ObjectServer& server);
  ObjectRef Root();
  ObjectRef Wrap(const WireObject& object);

  WireClient client;
  bool connected = true;
};

class RemoteObject final : public AutomationObject {
 public:
  RemoteObject(RemoteLink& link, const WireObject& object) : link_(link), object_(object) {}
  virtual ~RemoteObject() { link_.client.Release(object_.handle); }
  RemoteObject(const RemoteObject&) = delete;
  RemoteObject& operator=(const RemoteObject&) = delete;

  void AddRef() override { ++references_; }
  void Release() override {
    if (--references_ == 0) const std::unique_ptr<RemoteObject> last(this);
  }
  ResultCode IdOfName(WideView name, DispId& id) override {
    return link_.client.IdOfName(object_.handle, name, id);
  }
  ResultCode Invoke(DispId id, std::uint16_t flags, const ParamBlock& params,
                    Variant* result) override {
    Variant value;
    const ResultCode code = link_.client.Invoke(object_.handle, id, flags, params, value);
    if (result != nullptr) *result = std::move(value);
    return code;
  }
  ResultCode QueryTyped(const InterfaceId& iid, ObjectRef& out) override {
    WireObject typed;
    const ResultCode code = link_.client.QueryTyped(object_.handle, iid, typed);
    if (Succeeded(code)) out = link_.Wrap(typed);
    return code;
  }
  std::uintptr_t Identity() override { return object_.identity; }
  const WireObject& object() const { return object_; }

 private:
  RemoteLink& link_;
  WireObject object_;
  int references_ = 1;
};

inline RemoteLink::RemoteLink(ObjectServer& server)
    : client([this, &server](const std::string& request,
                             bool) { return connected ? server.Answer(request) : std::string(); },
             [](const ObjectRef& object) {
               const auto* const remote = dynamic_cast<const RemoteObject*>(object.get());
               return remote != nullptr ? remote->object() : WireObject{};
             },
             [this](const WireObject& object) { return Wrap(object); }) {}

inline ObjectRef RemoteLink::Root() {
  WireObject root;
  return Succeeded(client.Root(root)) ? Wrap(root) : ObjectRef();
}

inline ObjectRef RemoteLink::Wrap(const WireObject& object) {
  return ObjectRef::Adopt(std::make_unique<RemoteObject>(*this, object).release());
}

}  // namespace quillmarch::host::test
