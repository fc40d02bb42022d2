// The headless host's objects as COM objects: every call of the add-in goes over loopback to the
// process that holds the deck. Generic: a proxy knows names, ids, values and handles, and answers
// to whichever interfaces the object at the other end says it has. One thread.
#pragma once

#include <windows.h>
#include <winsock2.h>

#include <oaidl.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "foundation/automation/ComPtr.h"
#include "host/remote/WireClient.h"

namespace quillmarch::addin::winhost {

class RemoteObject;

class RemoteWorld {
 public:
  // Connects to quillmarch-host on this machine.
  explicit RemoteWorld(std::uint16_t port);
  ~RemoteWorld();
  RemoteWorld(const RemoteWorld&) = delete;
  RemoteWorld& operator=(const RemoteWorld&) = delete;

  bool connected() const { return socket_ != INVALID_SOCKET; }
  // From here on every call finds that the host has gone.
  void Disconnect();

  // The desk that opens decks.
  ComPtr<IDispatch> Root();

  // COM references on proxies, of everybody.
  long references() const { return references_; }
  // Proxies that somebody holds.
  std::size_t objects() const { return live_.size(); }

 private:
  friend class RemoteObject;
  friend class RemoteFace;

  std::string Exchange(const std::string& request, bool wantsReply);
  ComPtr<IDispatch> Take(const host::WireObject& object);

  SOCKET socket_ = INVALID_SOCKET;
  std::string unsent_;  // messages that want no reply go with the next that does
  host::WireClient client_;
  // By identity: two handles of one object are one object here too.
  std::map<std::uint64_t, RemoteObject*> live_;
  long references_ = 0;
};

}  // namespace quillmarch::addin::winhost
