#include "windows/host/RemoteWorld.h"

#include <oleauto.h>

#include <list>
#include <utility>
#include <vector>

#include "foundation/automation/ComObject.h"
#include "foundation/automation/ComValues.h"
#include "foundation/system/WinText.h"

namespace quillmarch::addin::winhost {

namespace {

constexpr std::size_t kMostUnsent = 16384;

InterfaceId ToInterfaceId(REFIID iid) {
  InterfaceId out = {static_cast<std::uint32_t>(iid.Data1), iid.Data2, iid.Data3, {}};
  for (std::size_t i = 0; i < sizeof out.data4; ++i) out.data4[i] = iid.Data4[i];
  return out;
}

}  // namespace

// One handle behind IDispatch. Its references are those of the object that it belongs to.
class RemoteFace final : public IDispatch {
 public:
  RemoteFace(RemoteObject& owner, host::WireHandle handle) : owner_(owner), handle_(handle) {}
  virtual ~RemoteFace() = default;
  RemoteFace(const RemoteFace&) = delete;
  RemoteFace& operator=(const RemoteFace&) = delete;

  host::WireHandle handle() const { return handle_; }
  RemoteObject& owner() const { return owner_; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** out) override {
    *out = nullptr;
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO*, UINT*) override;

 private:
  RemoteObject& owner_;
  host::WireHandle handle_;
};

// One object of the other end. The first face is its identity.
class RemoteObject {
 public:
  RemoteObject(RemoteWorld& world, const host::WireObject& object)
      : world_(world), identity_(object.identity), first_(*this, object.handle) {
    world_.live_[identity_] = this;
  }
  ~RemoteObject() {
    world_.live_.erase(identity_);
    for (const auto& [iid, face] : faces_) {
      if (face.handle() != first_.handle()) world_.client_.Release(face.handle());
    }
    world_.client_.Release(first_.handle());
  }
  RemoteObject(const RemoteObject&) = delete;
  RemoteObject& operator=(const RemoteObject&) = delete;

  RemoteWorld& world() const { return world_; }
  IDispatch* first() { return &first_; }

  HRESULT Query(REFIID iid, void** out);
  ULONG AddRef() {
    ++world_.references_;
    return ++references_;
  }
  ULONG Release() {
    --world_.references_;
    const ULONG left = --references_;
    if (left == 0) const std::unique_ptr<RemoteObject> last(this);
    return left;
  }

 private:
  RemoteWorld& world_;
  const std::uint64_t identity_;
  RemoteFace first_;
  std::list<std::pair<IID, RemoteFace>> faces_;
  ULONG references_ = 0;
};

HRESULT RemoteObject::Query(REFIID iid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  IDispatch* found = nullptr;
  if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch)) {
    found = &first_;
  } else {
    host::WireObject typed;
    // Asked each time, so that the other end may answer otherwise the next time.
    const ResultCode code = world_.client_.QueryTyped(first_.handle(), ToInterfaceId(iid), typed);
    if (Failed(code)) return code;
    for (auto& [known, face] : faces_) {
      if (known == iid) found = &face;
    }
    if (found == nullptr) {
      faces_.emplace_back(std::piecewise_construct, std::forward_as_tuple(iid),
                          std::forward_as_tuple(*this, typed.handle));
      found = &faces_.back().second;
    } else {
      world_.client_.Release(typed.handle);
    }
  }
  AddRef();
  *out = found;
  return S_OK;
}

HRESULT RemoteFace::QueryInterface(REFIID iid, void** out) {
  return owner_.Query(iid, out);
}
ULONG RemoteFace::AddRef() {
  return owner_.AddRef();
}
ULONG RemoteFace::Release() {
  return owner_.Release();
}

HRESULT RemoteFace::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (count != 1) return DISP_E_UNKNOWNNAME;
  ids[0] = DISPID_UNKNOWN;
  DispId id = 0;
  const ResultCode code = owner_.world().client_.IdOfName(handle_, FromWinText(names[0]), id);
  if (Succeeded(code)) ids[0] = id;
  return code;
}

HRESULT RemoteFace::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                           EXCEPINFO*, UINT*) {
  std::vector<Variant> arguments;
  for (UINT i = 0; i < params->cArgs; ++i) arguments.push_back(FromCom(params->rgvarg[i]));
  const bool put = params->cNamedArgs == 1 && params->rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
  // The last reference may go inside the call.
  const ComPtr<IDispatch> self(this);
  Variant value;
  const ResultCode code =
      owner_.world().client_.Invoke(handle_, id, flags, ParamBlock{arguments, put}, value);
  if (Failed(code) || result == nullptr) return code;
  return ToCom(value, *result);
}

// ---- The world
// -----------------------------------------------------------------------------------

RemoteWorld::RemoteWorld(std::uint16_t port)
    : client_([this](const std::string& request,
                     bool wantsReply) { return Exchange(request, wantsReply); },
              [this](const ObjectRef& object) -> host::WireObject {
                const auto* const face = dynamic_cast<RemoteFace*>(DispatchOf(object.get()));
                return face == nullptr ? host::WireObject{} : host::WireObject{face->handle(), 0};
              },
              [this](const host::WireObject& object) { return WrapDispatch(Take(object).get()); }) {
  WSADATA data;
  WSAStartup(MAKEWORD(2, 2), &data);
  socket_ = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    Disconnect();
    return;
  }
  const BOOL on = TRUE;
  setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
}

RemoteWorld::~RemoteWorld() {
  Disconnect();
  WSACleanup();
}

void RemoteWorld::Disconnect() {
  if (socket_ != INVALID_SOCKET) closesocket(std::exchange(socket_, INVALID_SOCKET));
}

std::string RemoteWorld::Exchange(const std::string& request, bool wantsReply) {
  if (!connected()) return {};
  host::WireWriter message;
  message.Word(static_cast<std::uint32_t>(request.size()));
  unsent_ += message.bytes() + request;
  if (!wantsReply && unsent_.size() < kMostUnsent) return {};
  const std::string bytes = std::exchange(unsent_, std::string());
  for (std::size_t sent = 0; sent < bytes.size();) {
    const int put = send(socket_, bytes.data() + sent, static_cast<int>(bytes.size() - sent), 0);
    if (put <= 0) {
      Disconnect();
      return {};
    }
    sent += static_cast<std::size_t>(put);
  }
  if (!wantsReply) return {};
  const auto read = [this](std::size_t size) {
    std::string into(size, '\0');
    for (std::size_t got = 0; got < size;) {
      const int more = recv(socket_, into.data() + got, static_cast<int>(size - got), 0);
      if (more <= 0) {
        Disconnect();
        return std::string();
      }
      got += static_cast<std::size_t>(more);
    }
    return into;
  };
  const std::string length = read(sizeof(std::uint32_t));
  return length.empty() ? std::string() : read(host::WireReader(length).Word());
}

ComPtr<IDispatch> RemoteWorld::Take(const host::WireObject& object) {
  if (object.handle == 0) return {};
  const auto known = live_.find(object.identity);
  if (known != live_.end()) {
    client_.Release(object.handle);
    return ComPtr<IDispatch>(known->second->first());
  }
  // Lives from its first reference to its last.
  auto made = std::make_unique<RemoteObject>(*this, object);
  return ComPtr<IDispatch>(made.release()->first());
}

ComPtr<IDispatch> RemoteWorld::Root() {
  host::WireObject root;
  return Succeeded(client_.Root(root)) ? Take(root) : ComPtr<IDispatch>();
}

}  // namespace quillmarch::addin::winhost
